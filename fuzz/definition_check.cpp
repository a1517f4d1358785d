// The check of definition files: any bytes as one of the files; what it lets pass can be read.
#include <algorithm>
#include <memory>

#include "PlainReading.h"
#include "Targets.h"
#include "World.h"
#include "check/DefinitionCheck.h"
#include "core/DefinitionFiles.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

const QString kTable = u"ini/VF.INI"_s;
const QString kDefinitions = u"ini//A.TXT"_s;
const QString kAddresses = u"ini//A.ADR"_s;

// What takes the input's place is put back by the next one.
void PutFiles(World& world, int which, QByteArrayView bytes) {
  static const QByteArray table = "h\nAB1-123.4  A.ADR  A.TXT  Luft -  WR\n";
  static const QByteArray tableWithoutList = "h\nAB1-123.4  -  A.TXT  Luft -  WR\n";
  static const QByteArray definitions = "h\nA  Drehzahl  0  30  15  1/m  1  0  int  x[3]  N1  Luft  -\n";
  static const QByteArray addresses = "h\nN1  1F00\n";
  auto& files = world.files.files;
  files[kTable] = which == 0 ? bytes.toByteArray() : which == 3 ? table : tableWithoutList;
  files[kDefinitions] = which == 1 ? bytes.toByteArray() : definitions;
  files[kAddresses] = which == 3 ? bytes.toByteArray() : addresses;
  if (which == 2) {
    files[kTable] = table;
    files[kDefinitions] = bytes.toByteArray();
  }
}

// The program reads what the check has nothing against, and can show it.
void CheckReadable(World& world, bool hasList) {
  world.module.Versionen.resize(2);
  world.module.Versionen[1].DefDatei = u"A.TXT"_s;
  world.module.Versionen[1].AdrDatei = hasList ? u"A.ADR"_s : u"-"_s;
  world.box.texts.clear();
  ReadSelectedDefinitions(world.core);
  ReadSelectedAddresses(world.core);
  Require(world.box.texts.isEmpty(), "an accepted address list can be read");
  BuildTree(world.core);
  for (int i = 1; i < world.module.ParCount; ++i)
    Require(!world.module.Par[i].VarAdresse.isEmpty(), "an accepted parameter has an address");
}

}  // namespace

void DefinitionCheck(QByteArrayView input) {
  static const std::unique_ptr<World> made = [] {
    std::unique_ptr<World> world = WorldWithoutLine();
    world->module.VersionList.Add(u"AB1-123.4"_s);
    world->module.VersionList.Select(0);
    world->module.PlantTypeList.Add({});
    world->module.PlantTypeList.Select(0);
    return world;
  }();
  if (input.isEmpty()) return;
  World& world = *made;
  const int which = input.front() & 3;
  PutFiles(world, which, input.sliced(1));
  std::vector<Finding> findings;
  try {
    findings = CheckDefinitions(world.files, u"ini"_s, u"VF.INI"_s);
  } catch (const RuntimeError& error) {
    Require(which == 0 && error.GetKind() == RuntimeError::Kind::FileError,
            "only an unreadable table ends the check");
    return;
  }
  for (const Finding& finding : findings) {
    Require(!finding.text.isEmpty() && finding.line >= 0, "a finding has a text");
    Require(std::none_of(finding.text.begin(), finding.text.end(), [](QChar c) { return c < u' '; }),
            "a finding fits into a line");
  }
  const bool accepted =
      std::none_of(findings.begin(), findings.end(), [](const Finding& f) { return f.error; });
  if (accepted && which != 0) CheckReadable(world, which >= 2);
}

}  // namespace kalivor::fuzz
