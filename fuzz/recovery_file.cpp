// File of unsaved values: any bytes; what is offered, what restoring makes of the table, what is set aside.
#include <array>
#include <memory>

#include "Targets.h"
#include "World.h"
#include "commands/DamagedFile.h"
#include "commands/Recovery.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

constexpr int kParameters = 6;
const QString kFolder = u"state"_s;
const QString kPath = u"state/Wiederherstellung.json"_s;

struct NoDialogs final : platform::FileDialogs {
  [[nodiscard]] QString OpenFile(const QString&, const QString&, const QString&) override { return {}; }
  [[nodiscard]] QString SaveFile(const QString&, const QString&) override { return {}; }
};

// Two versions, of which the handlers are missing: nothing is read when one is selected.
std::unique_ptr<World> MakeWorld() {
  std::unique_ptr<World> world = WorldWithoutLine();
  Module1& module = world->module;
  module.Versionen.resize(4);
  for (const int row : {1, 2}) {
    module.Versionen[static_cast<std::size_t>(row)].Anlagen = u" A "_s;
    module.VersionList.Add(row == 1 ? u"v"_s : u"w"_s);
  }
  for (const QString& plantType : {u""_s, u"A"_s})
    module.PlantTypeList.Add(plantType);
  return world;
}

void Reset(World& world) {
  Module1& module = world.module;
  module.VersionList.Select(0);
  module.PlantTypeList.Select(0);
  module.ParCount = kParameters + 1;
  for (int i = 1; i <= kParameters; ++i) {
    ParameterRecord record;
    // An array, and what occurs once.
    record.Variable = i <= 2 ? u"f"_s : u"a%1"_s.arg(i);
    record.VarAdresse = i == 6 ? QString() : u"1F0%1"_s.arg(i);
    record.Typ = i % 3 == 0 ? u"string8"_s : u"int"_s;
    record.Zusatz = i == 1 ? u"A"_s : u"B"_s;
    record.Wert = i;
    record.WertText = u"alt"_s;
    module.Par[i] = record;
  }
  module.Dateiname = u"old"_s;
  world.box.texts.clear();
}

bool Same(const KeptTable& left, const KeptTable& right) {
  const auto same = [](const SetValue& a, const SetValue& b) {
    return a.Variable == b.Variable && a.Typ == b.Typ && a.VarAdresse == b.VarAdresse &&
           a.element == b.element && a.value == b.value;
  };
  return left.time == right.time && left.plantType == right.plantType && left.valueFile == right.valueFile &&
         left.set.version == right.set.version && left.unsaved == right.unsaved &&
         std::ranges::equal(left.set.values, right.set.values, same);
}

bool IsOld(const ParameterRecord& record, int index) {
  return record.Wert == index && record.WertText == u"alt";
}

bool ComesFrom(const KeptTable& kept, const ParameterRecord& record) {
  return std::ranges::any_of(kept.set.values, [&](const SetValue& value) {
    return value.Variable == record.Variable && value.value == ParameterValue{record.Wert, record.WertText};
  });
}

void CheckRestoring(World& world, const KeptTable& kept) {
  NoDialogs dialogs;
  QString shown;
  const FileCommandContext context{world.core, dialogs, [&shown](const QString& path) { shown = path; }};
  int saved = 0;
  const bool known = (kept.set.version == u"v" || kept.set.version == u"w") &&
                     (kept.plantType.isEmpty() || kept.plantType == u"A");
  const Module1& module = world.module;
  Require(RestoreTable(context, kept, [&saved](int) { ++saved; }) == known, "known versions and plant types");
  Require(module.BusyDepth == 0, "the program is ready again");
  Require(module.Dateiname == (known ? kept.valueFile : u"old"_s), "the current file");
  Require(module.VersionList.SelectedText() == (known ? kept.set.version : u"v"_s), "the version");
  Require(saved <= kParameters, "each parameter once");
  for (int i = 1; i <= kParameters; ++i) {
    const ParameterRecord& record = module.Par[i];
    Require(record.Typ == (i % 3 == 0 ? u"string8"_s : u"int"_s), "types are those of the definitions");
    Require(IsOld(record, i) || (known && ComesFrom(kept, record)), "a value is the old one or the kept one");
  }
}

}  // namespace

void RecoveryFile(QByteArrayView input) {
  static const std::unique_ptr<World> made = MakeWorld();
  static const QDateTime now(QDate(2026, 11, 22), QTime(12, 0), Qt::UTC);
  World& world = *made;
  world.files.files.clear();
  const QByteArray bytes = input.toByteArray();
  world.files.files[kPath] = bytes;
  Recovery recovery(world.files, {kFolder, [](const QString&) { return true; }, [] { return now; }});

  const std::optional<KeptTable> parsed = ParseKeptTable(bytes);
  const QString told = recovery.Load();
  Require(recovery.Offered().has_value() == parsed.has_value(), "what can be read is offered");
  Require(told.isEmpty() == (parsed.has_value() || bytes.isEmpty()), "a damaged file is told");
  const bool damaged = !told.isEmpty();
  Require(world.files.files.value(kPath) == (damaged ? QByteArray() : bytes) &&
              world.files.files.contains(DamagedName(kPath)) == damaged &&
              (!damaged || world.files.files.value(DamagedName(kPath)) == bytes),
          "damaged bytes are set aside");
  if (!parsed) return;

  const std::optional<KeptTable> again = ParseKeptTable(ComposeKeptTable(*parsed));
  Require(again.has_value() && Same(*again, *parsed), "what is written reads back the same");
  Require(parsed->UnsavedCount() > 0, "there is something to restore");
  Require(RecoveryText(*parsed, now).contains(u"Wert"), "there is something to offer");
  Reset(world);
  CheckRestoring(world, *parsed);
  Require(recovery.Keep(*parsed).isEmpty(), "it can be kept again");
  Require(ParseKeptTable(world.files.files.value(kPath)).has_value(), "and read again");
}

}  // namespace kalivor::fuzz
