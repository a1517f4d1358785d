// What is unsaved: the file that keeps it, what is offered, and what restoring makes of the table.
#include "commands/Recovery.h"

#include <QSet>
#include <QTimeZone>

#include "commands/EditorCommands.h"
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"
#include "core/ValueFiles.h"
#include "fakes/FakeFileDialogs.h"
#include "unit/core/Recording.h"

namespace kalivor::test {
namespace {

const QString kFolder = Native(u"/zustand/KALIVOR"_s);
const QString kFile = Native(u"/zustand/KALIVOR/Wiederherstellung.json"_s);
const QString kSecond = Native(u"/zustand/KALIVOR/Wiederherstellung-2.json"_s);
const QString kDamaged = Native(u"/zustand/KALIVOR/Wiederherstellung.defekt.json"_s);

QDateTime At(const QString& text) {
  return QDateTime::fromString(text, Qt::ISODate);
}

/// Several programs of one user on one disk.
struct Disk {
  FakeFileSystem files;
  QSet<QString> taken;
  QDateTime now = At(u"2026-11-12T16:40:00+01:00"_s);

  Recovery Program() {
    return Recovery(files, {kFolder,
                            [this](const QString& path) {
                              if (taken.contains(path)) return false;
                              taken.insert(path);
                              return true;
                            },
                            [this] { return now; }});
  }

  /// Every program has ended.
  void EndAll() { taken.clear(); }

  [[nodiscard]] QByteArray Stored(const QString& path) { return files.files.value(path).bytes; }
};

KeptTable Table(const QList<int>& unsaved, int count = 3) {
  KeptTable kept;
  kept.time = At(u"2026-11-12T16:40:00.250+01:00"_s);
  kept.plantType = u"B"_s;
  kept.valueFile = u"C:\\Werte\\Größe €.qpf"_s;
  kept.set.version = u"AB1-123.4"_s;
  for (int i = 0; i < count; ++i) {
    kept.set.values.push_back(
        {u"v%1"_s.arg(i), u"int"_s, u"1F0%1"_s.arg(i), 0, {i * 7 - 7, u"t\"%1"_s.arg(i)}});
    kept.unsaved.push_back(unsaved.contains(i));
  }
  return kept;
}

void ExpectSame(const KeptTable& left, const KeptTable& right) {
  EXPECT_EQ(left.time, right.time);
  EXPECT_EQ(left.plantType, right.plantType);
  EXPECT_EQ(left.valueFile, right.valueFile);
  EXPECT_EQ(left.set.version, right.set.version);
  EXPECT_EQ(left.unsaved, right.unsaved);
  ASSERT_EQ(left.set.values.size(), right.set.values.size());
  for (std::size_t i = 0; i < left.set.values.size(); ++i) {
    const SetValue& a = left.set.values[i];
    const SetValue& b = right.set.values[i];
    EXPECT_EQ(a.Variable, b.Variable);
    EXPECT_EQ(a.Typ, b.Typ);
    EXPECT_EQ(a.VarAdresse, b.VarAdresse);
    EXPECT_EQ(a.element, b.element);
    EXPECT_EQ(a.value, b.value);
  }
}

// --- the file ---

TEST(RecoveryFile, ReadsBackTheSame) {
  KeptTable kept = Table({0, 2});
  kept.set.values[1].value = {std::numeric_limits<qint32>::min(), {}};
  kept.set.values[2].value = {std::numeric_limits<qint32>::max(), u" Ä\\\n\u20ac "_s};
  kept.set.values.push_back({u"v1"_s, u"string8"_s, {}, 1, {}});
  kept.unsaved.push_back(false);
  const std::optional<KeptTable> read = ParseKeptTable(ComposeKeptTable(kept));
  ASSERT_TRUE(read);
  ExpectSame(*read, kept);
  EXPECT_EQ(read->UnsavedCount(), 2);
}

TEST(RecoveryFile, TellsItsTimeWithTheZone) {
  EXPECT_TRUE(ComposeKeptTable(Table({0})).contains("\"Zeit\": \"2026-11-12T16:40:00.250+01:00\""));
  KeptTable kept = Table({0});
  kept.time = QDateTime(QDate(2026, 7, 1), QTime(12, 0), QTimeZone("Europe/Berlin"));
  EXPECT_TRUE(ComposeKeptTable(kept).contains("\"Zeit\": \"2026-07-01T12:00:00.000+02:00\""));
}

TEST(RecoveryFile, RefusesEverythingElse) {
  const QByteArray good =
      R"({"Format": 1, "Zeit": "2026-11-12T16:40:00+01:00", "Version": "v", "Anlageart": "", "Wertedatei": "",)"
      R"("Werte": [{"Variable": "a", "Typ": "int", "Zahl": 5, "Ungespeichert": true}]})";
  ASSERT_TRUE(ParseKeptTable(good));
  const std::pair<QByteArray, QByteArray> damages[] = {
      {"{\"F", "{\"G"},
      {"1,", "2,"},
      {"1,", "\"1\","},
      {"2026-11-12", "2026-13-12"},
      {"\"2026-11-12T16:40:00+01:00\"", "5"},
      {"\"v\"", "null"},
      {"\"Anlageart\": \"\"", "\"Anlageart\": []"},
      {"\"Wertedatei\": \"\",", ""},
      {"[{", "{\"x\":{"},
      {"[{\"Variable\"", "[3, {\"Variable\""},
      {"[{\"Variable\"", "[{}, {\"Variable\""},
      {"\"a\"", "7"},
      {"\"int\"", "true"},
      {"5", "5.5"},
      {"5", "2147483648"},
      {"5", "-2147483649"},
      {"5", "1e300"},
      {"5", "\"5\""},
      {"5", "null"},
      {"\"Zahl\": 5", "\"Text\": 5"},
      {"\"Zahl\": 5", "\"Adresse\": 5"},
      {"true", "1"},
      {"true", "false"},
      {"]}", "]"},
  };
  for (const auto& [part, damage] : damages) {
    QByteArray bytes = good;
    const qsizetype at = bytes.indexOf(part);
    ASSERT_GE(at, 0) << part.toStdString();
    bytes.replace(at, part.size(), damage);
    EXPECT_FALSE(ParseKeptTable(bytes)) << bytes.toStdString();
  }
  for (const QByteArray& bytes : {QByteArray(), QByteArray("x"), QByteArray("[]"), QByteArray("{}"),
                                  QByteArray(1'000'000, '['), QByteArray(1'000'000, '\0')})
    EXPECT_FALSE(ParseKeptTable(bytes));
  EXPECT_TRUE(ParseKeptTable(ComposeKeptTable(Table({1}, kLastParameter))));
  EXPECT_FALSE(ParseKeptTable(ComposeKeptTable(Table({1}, kLastParameter + 1)))) << "no table is that long";
}

TEST(RecoveryFile, TheTextTellsHowManyAndWhen) {
  const KeptTable kept = Table({0, 2});
  const auto text = [&](const QString& now) { return RecoveryText(kept, At(now)); };
  EXPECT_EQ(text(u"2026-11-12T23:59:59+01:00"_s), u"2 Werte von heute 16:40");
  EXPECT_EQ(text(u"2026-11-13T00:00:00+01:00"_s), u"2 Werte von gestern 16:40");
  EXPECT_EQ(text(u"2026-11-14T00:00:00+01:00"_s), u"2 Werte vom 12.11.2026 16:40");
  EXPECT_EQ(text(u"2026-11-13T00:30:00+09:00"_s), u"2 Werte von heute 00:40")
      << "as the clock on the wall shows it now";
  EXPECT_EQ(text(u"2026-11-11T12:00:00+01:00"_s), u"2 Werte vom 12.11.2026 16:40")
      << "the clock was set back";
  EXPECT_EQ(RecoveryText(Table({1}), kept.time), u"1 Wert von heute 16:40");
}

// --- what is written when ---

TEST(Recovery, WritesNothingWithoutNeed) {
  Disk disk;
  Recovery program = disk.Program();
  EXPECT_EQ(program.Load(), QString());
  EXPECT_FALSE(program.Offered());
  EXPECT_EQ(program.Keep(Table({})), QString());
  EXPECT_EQ(program.Keep(Table({}), true), QString());
  EXPECT_TRUE(disk.files.files.isEmpty());
  EXPECT_TRUE(disk.taken.isEmpty());
}

TEST(Recovery, OffersAfterACrashWhatWasUnsaved) {
  Disk disk;
  {
    Recovery program = disk.Program();
    EXPECT_EQ(program.Load(), QString());
    EXPECT_EQ(program.Keep(Table({0, 1})), QString());
  }
  disk.EndAll();
  Recovery next = disk.Program();
  EXPECT_EQ(next.Load(), QString());
  ASSERT_TRUE(next.Offered());
  ExpectSame(*next.Offered(), Table({0, 1}));
  EXPECT_EQ(disk.files.files.keys(), QList<FileName>{FileName(kFile)});
}

TEST(Recovery, EmptiesTheFileWhenNothingIsUnsavedAnyMore) {
  Disk disk;
  Recovery program = disk.Program();
  EXPECT_EQ(program.Keep(Table({0})), QString());
  EXPECT_EQ(program.Keep(Table({})), QString());
  EXPECT_EQ(disk.Stored(kFile), QByteArray());
  disk.EndAll();
  Recovery next = disk.Program();
  EXPECT_EQ(next.Load(), QString());
  EXPECT_FALSE(next.Offered());
}

// Closing asks nothing.
TEST(Recovery, ANormalEndKeepsTheLastStateForOneStart) {
  Disk disk;
  EXPECT_EQ(disk.Program().Keep(Table({0}), true), QString());
  disk.EndAll();
  {
    Recovery next = disk.Program();
    EXPECT_EQ(next.Load(), QString());
    EXPECT_TRUE(next.Offered());
    EXPECT_EQ(next.Keep(Table({})), QString()) << "reading the definitions changes the table";
    EXPECT_NE(disk.Stored(kFile), QByteArray()) << "it might crash as well";
    EXPECT_EQ(next.Keep(Table({}), true), QString());
  }
  EXPECT_EQ(disk.Stored(kFile), QByteArray());
}

TEST(Recovery, WhatIsUnsavedNowTakesThePlaceOfWhatIsOffered) {
  Disk disk;
  EXPECT_EQ(disk.Program().Keep(Table({0})), QString());
  disk.EndAll();
  Recovery next = disk.Program();
  EXPECT_EQ(next.Load(), QString());
  EXPECT_EQ(next.Keep(Table({1, 2})), QString());
  EXPECT_EQ(ParseKeptTable(disk.Stored(kFile))->UnsavedCount(), 2);
  EXPECT_EQ(next.Offered()->UnsavedCount(), 1) << "for the rest of this run";
  EXPECT_EQ(next.Keep(Table({})), QString());
  EXPECT_EQ(disk.Stored(kFile), QByteArray());
}

TEST(Recovery, ProgramsAtTheSameTimeHaveFilesOfTheirOwn) {
  Disk disk;
  Recovery first = disk.Program();
  Recovery second = disk.Program();
  EXPECT_EQ(second.Keep(Table({1, 2})), QString());
  EXPECT_EQ(first.Keep(Table({0})), QString());
  EXPECT_EQ(ParseKeptTable(disk.Stored(kFile))->UnsavedCount(), 2);
  EXPECT_EQ(ParseKeptTable(disk.Stored(kSecond))->UnsavedCount(), 1);
  Recovery third = disk.Program();
  EXPECT_EQ(third.Load(), QString());
  EXPECT_FALSE(third.Offered()) << "they are still at work";
  disk.EndAll();
  Recovery fourth = disk.Program();
  Recovery fifth = disk.Program();
  EXPECT_EQ(fourth.Load(), QString());
  EXPECT_EQ(fifth.Load(), QString());
  EXPECT_EQ(fourth.Offered()->UnsavedCount(), 2);
  EXPECT_EQ(fifth.Offered()->UnsavedCount(), 1);
}

// It ended while this program was at work: the next start is to offer that.
TEST(Recovery, LeavesWhatAnotherProgramHasLeft) {
  Disk disk;
  Recovery late = disk.Program();
  EXPECT_EQ(late.Load(), QString());
  EXPECT_EQ(disk.Program().Keep(Table({0, 1}), true), QString());
  disk.EndAll();
  EXPECT_EQ(late.Keep(Table({2})), QString());
  EXPECT_EQ(ParseKeptTable(disk.Stored(kFile))->UnsavedCount(), 2);
  EXPECT_EQ(ParseKeptTable(disk.Stored(kSecond))->UnsavedCount(), 1);
}

TEST(Recovery, ADamagedFileIsToldOnceAndSetAside) {
  Disk disk;
  disk.files.files[kFile] = {"{\"Format\": 1", {}};
  Recovery program = disk.Program();
  EXPECT_EQ(
      program.Load(),
      u"Die Datei mit den nicht gespeicherten Werten ist beschädigt und kann nicht benutzt werden:\r\n"_s +
          kDamaged);
  EXPECT_FALSE(program.Offered());
  EXPECT_EQ(disk.Stored(kDamaged), "{\"Format\": 1");
  EXPECT_EQ(disk.Stored(kFile), QByteArray());
  EXPECT_EQ(program.Keep(Table({0})), QString());
  EXPECT_EQ(ParseKeptTable(disk.Stored(kFile))->UnsavedCount(), 1);
  disk.EndAll();
  EXPECT_EQ(disk.Program().Load(), QString());
}

TEST(Recovery, ADamagedFileThatCannotBeSetAsideStays) {
  Disk disk;
  disk.files.files[kFile] = {"x", {}};
  disk.files.writeError = u"Kein Platz."_s;
  Recovery program = disk.Program();
  EXPECT_TRUE(program.Load().endsWith(kFile + u"\r\nKein Platz."_s));
  disk.files.writeError.clear();
  EXPECT_EQ(program.Keep(Table({0})), QString());
  EXPECT_EQ(disk.Stored(kFile), "x");
  EXPECT_NE(disk.Stored(kSecond), QByteArray());
}

TEST(Recovery, AFileThatCannotBeReadIsToldAndStays) {
  Disk disk;
  disk.files.AddFailure(kFile, u"Keine Berechtigung."_s);
  Recovery program = disk.Program();
  EXPECT_EQ(program.Load(),
            u"Was beim letzten Mal nicht gespeichert wurde, kann nicht gelesen werden:\r\n"_s + kFile +
                u"\r\nKeine Berechtigung."_s);
  EXPECT_EQ(program.Keep(Table({0})), QString());
  EXPECT_EQ(disk.files.files.value(kFile).error, u"Keine Berechtigung.");
  EXPECT_NE(disk.Stored(kSecond), QByteArray());
}

TEST(Recovery, AFailureIsToldOnceInARun) {
  Disk disk;
  Recovery program = disk.Program();
  disk.files.writeError = u"Kein Platz."_s;
  EXPECT_EQ(
      program.Keep(Table({0})),
      u"Für den Fall, dass das Programm nicht richtig beendet wird, können nicht gespeicherte Werte nicht "
      "aufgehoben werden:\r\n"_s +
          kFile + u"\r\nKein Platz."_s);
  EXPECT_EQ(program.Keep(Table({0})), QString());
  disk.files.writeError.clear();
  EXPECT_EQ(program.Keep(Table({0})), QString());
  EXPECT_NE(disk.Stored(kFile), QByteArray()) << "the next attempt may do";
}

TEST(Recovery, AFolderThatTakesNothingIsTold) {
  Disk disk;
  Recovery program(disk.files, {kFolder, [](const QString&) { return false; }, [&] { return disk.now; }});
  EXPECT_TRUE(program.Keep(Table({0})).endsWith(u"\r\n"_s + kFolder));
  EXPECT_TRUE(disk.files.files.isEmpty());
}

TEST(Recovery, WithoutAFolderNothingIsKept) {
  FakeFileSystem files;
  Recovery program(files, {});
  EXPECT_EQ(program.Load(), QString());
  EXPECT_EQ(program.Keep(Table({0}), true), QString());
  EXPECT_TRUE(files.files.isEmpty());
  EXPECT_TRUE(files.reads.isEmpty());
}

// --- restoring ---

/// A program whose table can be kept and restored.
struct Restoring : Recording {
  FakeFileDialogs dialogs;
  QString shownFile = u"?"_s;
  FileCommandContext context{core, dialogs, [this](const QString& path) { shownFile = path; }};

  [[nodiscard]] KeptTable Kept() {
    return KeptTableOf(
        module, [this](int index) { return log.Unsaved(index); }, At(u"2026-11-12T16:40:00+01:00"_s));
  }
  bool Restore(const KeptTable& kept) {
    bool restored = false;
    Do([&] { restored = RestoreTable(context, kept, [this](int index) { log.TakeAsSaved(index); }); });
    return restored;
  }
  /// The second version.
  void SelectOther() {
    module.VersionList.Select(1);
    steps.clear();
  }
  [[nodiscard]] QList<int> Unsaved() const {
    QList<int> indices;
    for (int i = 1; i < module.ParCount; ++i) {
      if (log.Unsaved(i)) indices.append(i);
    }
    return indices;
  }
};

/// A table of the first version and its second plant type, saved, then changed in one place.
KeptTable Crashed() {
  Restoring site;
  site.Do([&] { site.module.PlantTypeList.Select(1); });
  site.module.SetNumber(1, 77, ValueSource::Edited);
  site.module.SetText(4, u"Haus"_s, ValueSource::Edited);
  site.module.Dateiname = u"/werte/a.qpf"_s;
  EXPECT_TRUE(WriteValueFile(site.core));
  site.module.SetNumber(2, -5, ValueSource::Edited);
  return *ParseKeptTable(ComposeKeptTable(site.Kept()));
}

TEST(Restoring, MakesTheTableWhatItWas) {
  const KeptTable kept = Crashed();
  EXPECT_EQ(kept.UnsavedCount(), 1);
  Restoring site;
  site.SelectOther();
  const auto before = site.Copy();
  ASSERT_TRUE(site.Restore(kept));
  EXPECT_EQ(site.module.VersionList.SelectedText(), u"AB1-123.4");
  EXPECT_EQ(site.module.PlantTypeList.SelectedText(), u"Luft");
  EXPECT_EQ(site.module.Par[1].Wert, 77);
  EXPECT_EQ(site.module.Par[2].Wert, -5);
  EXPECT_EQ(site.module.Par[4].WertText, u"Haus");
  EXPECT_EQ(site.Unsaved(), QList<int>{2}) << "the file holds the others";
  EXPECT_EQ(site.module.Dateiname, u"/werte/a.qpf");
  EXPECT_EQ(site.shownFile, u"/werte/a.qpf");
  EXPECT_EQ(site.main.tree.Text(site.main.tree.Find(ParameterKey(1))), ParamText(site.module.Par[1]));
  EXPECT_EQ(site.module.BusyDepth, 0);
  EXPECT_EQ(site.steps.size(), 1U) << "one step";
  EXPECT_TRUE(site.Names().front().startsWith(u"Wiederherstellen, ")) << site.Names().front().toStdString();
  site.Undo();
  EXPECT_EQ(TableDifference(*before, site.module), QString());
}

TEST(Restoring, TheSelectedVersionIsNotReadAnew) {
  Restoring site;
  site.module.SetNumber(1, 77, ValueSource::Edited);
  const KeptTable kept = site.Kept();
  site.module.SetNumber(1, 78, ValueSource::Edited);
  site.module.ParNode[1] = kFalse;
  site.files.reads.clear();
  ASSERT_TRUE(site.Restore(kept));
  EXPECT_EQ(site.module.Par[1].Wert, 77);
  EXPECT_EQ(site.Unsaved(), QList<int>{1});
  EXPECT_EQ(site.files.reads, QStringList());
  EXPECT_EQ(site.module.ParNode[1], kFalse) << "marks are no values";
  EXPECT_GT(site.editors.hidden, 0) << "an editor would show what was";
}

TEST(Restoring, UnknownVersionsAndPlantTypesChangeNothing) {
  Restoring site;
  site.module.Dateiname = u"a.qpf"_s;
  const auto before = site.Copy();
  KeptTable kept = site.Kept();
  kept.unsaved.front() = true;
  kept.set.values.front().value.number = 5;
  for (const auto& [version, plantType, reason] :
       {std::tuple{u"AB9-999.9"_s, kept.plantType, u"Unbekannte ReglerVersion: AB9-999.9"_s},
        std::tuple{u""_s, kept.plantType, u"Unbekannte ReglerVersion: "_s},
        std::tuple{kept.set.version, u"Dampf"_s, u"Unbekannte Anlageart: Dampf"_s},
        std::tuple{u"AB1-124.0"_s, u"Dampf"_s, u"Unbekannte Anlageart: Dampf"_s}}) {
    KeptTable other = kept;
    other.set.version = version;
    other.plantType = plantType;
    EXPECT_FALSE(site.Restore(other));
    const auto boxes = site.box.Take();
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes.front().text, u"Die Werte können nicht wiederhergestellt werden.\r\n"_s + reason);
    EXPECT_EQ(TableDifference(*before, site.module), QString());
    EXPECT_EQ(site.module.Dateiname, u"a.qpf");
    EXPECT_EQ(site.steps.size(), 0U);
  }
}

TEST(Restoring, TellsWhatDoesNotFitTheDefinitions) {
  Restoring site;
  KeptTable kept = site.Kept();
  kept.unsaved.assign(kept.unsaved.size(), true);
  kept.set.values[0].value.number = 5;
  kept.set.values[1].Variable = u"gibtsnicht"_s;
  ASSERT_TRUE(site.Restore(kept));
  EXPECT_EQ(site.module.Par[1].Wert, 5);
  auto boxes = site.box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes.front().text, u"1 Wert passt nicht zu den Definitionen und wurde nicht wiederhergestellt.");
  kept.set.values[0].Typ = u"string8"_s;
  kept.set.values[0].value = {0, u"x"_s};
  ASSERT_TRUE(site.Restore(kept));
  EXPECT_EQ(site.module.Par[1].Wert, 5) << "a text is no number";
  EXPECT_EQ(site.module.Par[1].WertText, QString());
  boxes = site.box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes.front().text,
            u"2 Werte passen nicht zu den Definitionen und wurden nicht wiederhergestellt.");
}

TEST(Restoring, DefinitionsThatCannotBeReadLeaveATreeOfWhatIsThere) {
  const KeptTable kept = Crashed();
  Restoring site;
  site.SelectOther();
  for (auto file = site.files.files.begin(); file != site.files.files.end(); ++file) {
    if (!file.key().text.endsWith(u"VF.INI")) *file = {{}, u"Ein-/Ausgabefehler."_s};
  }
  EXPECT_FALSE(site.Do([&] { (void)RestoreTable(site.context, kept, [](int) {}); }));
  EXPECT_EQ(site.module.BusyDepth, 0);
  EXPECT_EQ(site.main.tree.Count(), site.module.ParCount) << "the root, no groups without parameters";
}

}  // namespace
}  // namespace kalivor::test
