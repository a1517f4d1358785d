// Definition files through the readers that the other programs use.
#include "sim/Definitions.h"

#include "base/Paths.h"
#include "core/DefinitionFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

// Selects `controller`, or the first version where it is empty. Returns "" or the fault.
QString SelectVersion(VersionTable& table, const QString& controller) {
  const int position = controller.isEmpty() ? 0 : table.VersionList.Find(controller);
  if (position < 0 || position >= table.VersionList.Count()) {
    return u"Unbekannte Reglerversion: "_s + controller;
  }
  table.VersionList.Select(position);
  table.VersionIndex = static_cast<qint16>(position + 1);
  return {};
}

QString OnOneLine(const QString& box) {
  return box.trimmed().replace(u"\r\n"_s, u" | "_s);
}

}  // namespace

QString LoadDefinitions(Module1& module, platform::FileSystem& files, const QString& controller) {
  module.Inipath = WithSeparator(module.Inipath);
  try {
    ReadVersionTable(module, files, VersionTablePath(module));
  } catch (const RuntimeError& error) {
    return OnOneLine(VersionTableFailure(VersionTablePath(module), error));
  }
  QString error = SelectVersion(module, controller);
  if (!error.isEmpty()) return error;
  const VersionRecord& version = module.SelectedVersion();
  try {
    ReadDefinitions(module, files, DefinitionPath(module, version.DefDatei), HasAddressList(version));
  } catch (const RuntimeError& failure) {
    return u"Fehler beim Lesen der Definitionen: "_s + failure.Description();
  }
  if (!HasAddressList(version)) return {};
  const QString path = DefinitionPath(module, version.AdrDatei);
  try {
    ReadAddressList(module, files, path);
  } catch (const RuntimeError& failure) {
    return OnOneLine(ReadFailure(path, failure));
  }
  return {};
}

}  // namespace kalivor::sim
