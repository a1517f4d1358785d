#include "sim/Station.h"

#include "base/Paths.h"
#include "core/DefinitionFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

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
  const int position = controller.isEmpty() ? 0 : module.VersionList.Find(controller);
  if (position < 0 || position >= module.VersionList.Count()) {
    return u"Unbekannte Reglerversion: "_s + controller;
  }
  module.VersionList.Select(position);
  const VersionRecord& version = module.SelectedVersion();
  try {
    ReadDefinitions(module, files, DefinitionPath(module, version.DefDatei), HasAddressList(version));
  } catch (const RuntimeError& error) {
    return u"Fehler beim Lesen der Definitionen: "_s + error.Description();
  }
  if (!HasAddressList(version)) return {};
  const QString path = DefinitionPath(module, version.AdrDatei);
  try {
    ReadAddressList(module, files, path);
  } catch (const RuntimeError& error) {
    return OnOneLine(ReadFailure(path, error));
  }
  return {};
}

QString SetUp(Station& station, platform::FileSystem& files, const QString& version, int address) {
  QString fault = LoadDefinitions(station.module, files, version);
  if (!fault.isEmpty()) return fault;
  const VersionRecord& selected = station.module.SelectedVersion();
  const std::optional<QByteArray> payload = VersionPayload(selected.Version);
  if (!payload) {
    return u"Kein Regler kann sich mit der Version „"_s + selected.Version +
           u"“ melden: Sie muss aus drei oder vier Zeichen, „-“ und einer Nummer wie 012.0 bestehen."_s;
  }
  for (Memory* memory : {&station.memory, &station.otherMemory}) {
    memory->LoadStandards(station.module);
    (void)memory->SetPlantNumber(station.module, 0);
  }
  station.controller.emplace(station.memory, address, selected.Kennung, *payload);
  station.other.emplace(station.otherMemory, address, selected.Kennung, NextVersionPayload(*payload));
  return {};
}

}  // namespace kalivor::sim
