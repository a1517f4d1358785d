#include "commands/OptionsCommands.h"

#include "base/Paths.h"
#include "core/Refresh.h"

namespace kalivor {
namespace {

constexpr int kAddresses = 256;

int PositionIn(int count, int position) {
  return position >= 0 && position < count ? position : -1;
}

}  // namespace

OptionsContent OptionsOf(const Module1& module) {
  return {PositionIn(platform::kLargestPortNumber, module.Schnittstelle - 1), PositionIn(kAddresses, module.Adresse),
          module.Inipath + module.Inifile, false};
}

void ApplyOptions(Core& core, const OptionsContent& content) {
  Module1& module = core.module;
  if (module.BusyDepth > 0) return;
  // The port list begins with COM1, the address list with 0.
  if (content.portPosition >= 0) module.Schnittstelle = static_cast<qint16>(content.portPosition + 1);
  if (content.addressPosition >= 0) module.Adresse = static_cast<qint16>(content.addressPosition);
  (void)core.controller.Configure(kSlot, kSettings9600);
  if (!content.pathChanged) return;

  const QString& path = content.tablePath;
  qsizetype folder = path.size();
  while (folder > 0 && !IsSeparator(path.at(folder - 1)))
    --folder;
  if (folder == 0) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
  module.Inipath = path.left(folder);
  module.Inifile = path.sliced(folder);
  Refresh(core, 5);
}

}  // namespace kalivor
