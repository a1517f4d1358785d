#include "commands/OptionsCommands.h"

#include "base/Paths.h"
#include "commands/SettingsTable.h"
#include "core/Refresh.h"

namespace kalivor {
namespace {

// The lists hold what the table of settings offers, from the lowest on.
int PositionOf(const NumberSetting& setting, const Settings& settings) {
  const qint16 number = settings.*setting.member;
  return setting.Offers(number) ? number - setting.lowest : -1;
}

void TakePosition(const NumberSetting& setting, int position, Settings& settings) {
  if (position >= 0) settings.*setting.member = static_cast<qint16>(setting.lowest + position);
}

}  // namespace

OptionsContent OptionsOf(const Settings& settings) {
  return {PositionOf(kSchnittstelle, settings), PositionOf(kAdresse, settings),
          settings.Inipath + settings.Inifile, false};
}

void ApplyOptions(Core& core, const OptionsContent& content) {
  Module1& module = core.module;
  if (module.BusyDepth > 0) return;
  TakePosition(kSchnittstelle, content.portPosition, module);
  TakePosition(kAdresse, content.addressPosition, module);
  (void)core.controller.Configure(kSlot, kSettings9600);
  if (!content.pathChanged) return;

  const PathParts table = SplitPath(content.tablePath);
  module.Inipath = table.folder;
  module.Inifile = table.file;
  Refresh(core, 5);
}

void ApplyConnection(Core& core, int number, qint16 address) {
  OptionsContent content;
  content.portPosition = number - kSchnittstelle.lowest;
  content.addressPosition = address - kAdresse.lowest;
  ApplyOptions(core, content);
}

}  // namespace kalivor
