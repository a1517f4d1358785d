// What is done with a controller stands in the history afterwards; the program neither waits nor fails for
// it.
#include "history/Recorder.h"

#include <gtest/gtest.h>
#include <QFile>
#include <QTemporaryDir>
#include <mutex>

#include "commands/TransferCommands.h"
#include "core/ControllerValues.h"
#include "core/ValueFiles.h"
#include "fakes/SafeSite.h"

namespace kalivor::history {
namespace {

using namespace test;

class RecorderTest : public testing::Test, protected SafeSite {
 protected:
  RecorderTest() {
    module.Userpath = u"/werte"_s;
    module.Dateiname = u"/werte/a.qpf"_s;
    module.Adresse = 1;
    StartWithFiles();
    settings.keeps = true;
    settings.technician = u"Meier"_s;
    recorder.Use(settings);
  }

  std::unique_ptr<history::Store> Opened() {
    recorder.Settle();
    EXPECT_EQ(failures, QStringList());
    return history::Store::Open(place, Access::Read).store;
  }

  /// The newest entry and its changed values: "1: 12.34 -> 150.0 geprüft".
  Entry Newest() {
    const auto opened = Opened();
    if (!opened) return {};
    const std::vector<Entry> entries = opened->Entries();
    if (entries.empty()) return {};
    changes.clear();
    for (const Change& change : opened->Changes(entries[0].id))
      changes << u"%1: %2 -> %3 %4"_s
                     .arg(QString::number(change.number), change.before, change.after, change.state)
                     .trimmed();
    return entries[0];
  }

  int Entries() {
    const auto opened = Opened();
    return opened ? static_cast<int>(opened->Entries().size()) : 0;
  }

  QTemporaryDir folder;
  StoreWorld place{folder.filePath(u"Verlauf.sqlite"_s), u"1.2.3"_s, u"Werkstatt"_s,
                   [] { return QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC); }};
  HistorySettings settings;
  QStringList failures;
  Recorder recorder{{core, host.Exchanges, [](int number) { return u"/dev/ttyS%1"_s.arg(number); }, place,
                     [this](const QString& text) { failures << text; }}};
  QStringList changes;
};

TEST_F(RecorderTest, WithoutTheUsersWishNothingIsKept) {
  recorder.Use({});
  EXPECT_FALSE(core.OnDeed.Listens());
  CommandEmpfangen_Click(core);
  recorder.Settle();
  EXPECT_FALSE(QFile::exists(place.file));
}

TEST_F(RecorderTest, BeforeTheFirstDeedThereIsNoFile) {
  EXPECT_TRUE(core.OnDeed.Listens());
  recorder.Settle();
  EXPECT_FALSE(QFile::exists(place.file));
}

TEST_F(RecorderTest, AnEntrySaysWhoDidWhatWhere) {
  settings.plant = QUuid();
  CommandEmpfangen_Click(core);
  const Entry entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Received);
  EXPECT_EQ(entry.stamp.technician, u"Meier"_s);
  EXPECT_EQ(entry.stamp.time, place.now());
  EXPECT_EQ(entry.pc, u"Werkstatt"_s);
  EXPECT_EQ(entry.program, u"1.2.3"_s);
  EXPECT_EQ(entry.version, u"AB1-123.4"_s);
  EXPECT_EQ(entry.plantType, module.PlantTypeList.SelectedText());
  EXPECT_EQ(entry.address, 1);
  EXPECT_EQ(entry.port, u"COM1 /dev/ttyS1"_s);
  EXPECT_EQ(entry.outcome, u"4 Werte"_s);
  EXPECT_TRUE(entry.quality.startsWith(QString::number(host.Exchanges.OfTransfer().All())))
      << entry.quality.toStdString();
  EXPECT_EQ(entry.held, u"1-4"_s);
  EXPECT_EQ(changes, QStringList()) << "the first time that it is seen";
}

TEST_F(RecorderTest, ReceivedIsComparedWithWhatWasSeenLast) {
  CommandEmpfangen_Click(core);
  memory.SetWord(0x1F00, 1235);
  CommandEmpfangen_Click(core);
  EXPECT_EQ(Newest().changes, 1);
  EXPECT_EQ(changes, QStringList{u"1: 123.4 -> 123.5"_s});
}

TEST_F(RecorderTest, WhatCouldNotBeReadIsSaidAndNotGuessed) {
  module.Par[2].VarAdresse.clear();
  model.OnResponse = [this](const QByteArray& request, sim::Response& response) {
    if (request.contains("R1F07")) response.chunks.clear();
  };
  CommandEmpfangen_Click(core);
  const Entry entry = Newest();
  EXPECT_EQ(entry.outcome, u"2 Werte, 1 nicht gelesen, 1 ohne Adresse"_s);
  EXPECT_EQ(entry.held, u"1,4"_s);
  EXPECT_EQ(changes, (QStringList{u"2:  ->  keine Adresse"_s, u"3:  ->  nicht gelesen"_s}));
}

TEST_F(RecorderTest, SentIsComparedWithWhatWasSeenLast) {
  CommandEmpfangen_Click(core);
  module.SetNumber(1, 1500, ValueSource::Edited);
  CommandSenden_Click(core);
  const Entry entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Sent);
  EXPECT_EQ(entry.outcome, u"4 Werte"_s);
  EXPECT_EQ(changes, QStringList{u"1: 123.4 -> 150.0"_s});
}

TEST_F(RecorderTest, AComparisonHasBothSidesAndLeavesTheTable) {
  CommandVergleichen_Click(core);
  const Entry entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Compared);
  EXPECT_EQ(entry.outcome, u"4 verschieden"_s);
  EXPECT_EQ(changes.value(0), u"1: 150.0 -> 123.4 verschieden"_s);
  EXPECT_EQ(module.Par[1].Wert, 1500);
  const SetResult held = Opened()->Values(entry, true);
  ASSERT_EQ(held.set.values.size(), 4u);
  EXPECT_EQ(held.set.values[0].value.number, 1234) << "what the controller holds";
}

TEST_F(RecorderTest, ASafeComparisonSaysTheSame) {
  CommandVergleichen_Click(core);
  const Entry plain = Newest();
  const QStringList plainChanges = changes;
  (void)ReadToVerify(context);
  const Entry safe = Newest();
  EXPECT_EQ(changes, plainChanges);
  EXPECT_EQ(safe.outcome, plain.outcome);
  EXPECT_EQ(safe.held, plain.held);
  EXPECT_EQ(safe.set, plain.set);
  EXPECT_TRUE(ReadControllerValues(core, progress).Ok());
  EXPECT_EQ(Newest().set, plain.set);
  EXPECT_EQ(Entries(), 3);
}

TEST_F(RecorderTest, ASafeSendingKnowsWhatWasThere) {
  module.ParNode[2] = module.ParNode[3] = kFalse;
  SafeRun run = ReadToSend(context);
  WriteChosen(context, run);
  Entry entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::SentSafely);
  EXPECT_EQ(entry.outcome, u"2 geprüft"_s);
  EXPECT_EQ(entry.held, u"1,4"_s);
  EXPECT_EQ(changes, (QStringList{u"1: 123.4 -> 150.0 geprüft"_s, u"4: WXYZ -> ABCD geprüft"_s}));
  SafeRun back = ReadToTakeBack(context, run);
  WriteChosen(context, back);
  entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Restored);
  EXPECT_EQ(changes, (QStringList{u"1: 150.0 -> 123.4 geprüft"_s, u"4: ABCD -> WXYZ geprüft"_s}));
}

TEST_F(RecorderTest, ARepeatedSendingSaysOnlyWhatItHasDone) {
  module.ParNode[2] = module.ParNode[3] = kFalse;
  SafeRun run = ReadToSend(context);
  model.OnResponse = [](const QByteArray& request, sim::Response& response) {
    if (!request.contains("W1F08")) return;
    response.chunks.clear();
    response.ignoresWrite = true;
  };
  WriteChosen(context, run);
  EXPECT_EQ(Newest().changes, 2);
  EXPECT_EQ(changes.first(), u"1: 123.4 -> 150.0 geprüft"_s);
  model.OnResponse = [](const QByteArray&, sim::Response&) {};
  EXPECT_EQ(ChooseFailed(run), 1);
  WriteChosen(context, run);
  EXPECT_EQ(Newest().changes, 1);
  EXPECT_TRUE(changes.first().startsWith(u"4: "_s)) << changes.first().toStdString();
  EXPECT_EQ(Entries(), 2);
}

TEST_F(RecorderTest, ASafeReceivingIsOneOfReceiving) {
  CommandEmpfangen_Click(core);
  memory.SetWord(0x1F00, 1235);
  SafeRun run = ReadToReceive(context);
  EXPECT_EQ(TakeOverChosen(core, run), 1);
  const Entry entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Received);
  EXPECT_EQ(entry.outcome, u"4 Werte"_s);
  EXPECT_EQ(entry.held, u"1-4"_s);
  EXPECT_EQ(changes, QStringList{u"1: 123.4 -> 123.5"_s});
}

TEST_F(RecorderTest, FilesAndStandardValuesChangeTheTableAlone) {
  ASSERT_TRUE(WriteValueFile(core));
  Entry entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Saved);
  EXPECT_EQ(entry.outcome, u"4 Werte"_s);
  EXPECT_EQ(entry.remark, u"/werte/a.qpf"_s);
  EXPECT_EQ(entry.port, QString());
  EXPECT_EQ(entry.quality, QString());
  EXPECT_EQ(entry.held, QString());
  module.SetNumber(1, 7, ValueSource::Edited);
  ASSERT_TRUE(ReadValueFile(core));
  entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Loaded);
  EXPECT_EQ(entry.outcome, u"1 Wert geändert"_s);
  EXPECT_EQ(changes, QStringList{u"1: 0.7 -> 150.0"_s});
  CommandStandard_Click(core);
  entry = Newest();
  EXPECT_EQ(entry.kind, DeedKind::Reset);
  EXPECT_EQ(entry.outcome, u"kein Wert geändert"_s);
}

TEST_F(RecorderTest, AnAbortedReceivingHasWhatWasRead) {
  model.OnResponse = [this](const QByteArray& request, sim::Response&) {
    if (request.contains("1F02")) module.Abbruch = kTrue;
  };
  CommandEmpfangen_Click(core);
  EXPECT_EQ(Newest().outcome, u"2 Werte, abgebrochen"_s);
  EXPECT_EQ(Newest().held, u"1-2"_s);
}

TEST_F(RecorderTest, WhereNothingWasReadThereIsNoEntry) {
  CommandEmpfangen_Click(core);
  // Version and plant number still arrive.
  model.OnResponse = [](const QByteArray& request, sim::Response& response) {
    if (request.contains("R1F")) response.chunks.clear();
  };
  CommandEmpfangen_Click(core);
  EXPECT_EQ(Entries(), 1);
  // Whether something was written nobody knows.
  model.OnResponse = [](const QByteArray& request, sim::Response& response) {
    if (request.contains("W1F")) response.chunks.clear();
  };
  CommandSenden_Click(core);
  EXPECT_EQ(TakeBoxes(box), QStringList{u"Fehler bei: N4[1]"_s});
  EXPECT_EQ(Newest().outcome, u"4 nicht gesendet"_s);
  EXPECT_EQ(Entries(), 2);
}

TEST_F(RecorderTest, AFileThatCannotBeWrittenIsSaidAndStopsNothing) {
  const QString blocked = folder.filePath(u"Datei"_s);
  QFile file(blocked);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  place.file = blocked + u"/Verlauf.sqlite"_s;
  std::mutex mutex;
  QStringList said;
  {
    Recorder blind({core, host.Exchanges, {}, place, [&](const QString& text) {
                      const std::lock_guard lock(mutex);
                      said << text;
                    }});
    blind.Use(settings);
    EXPECT_TRUE(CommandEmpfangen_Click(core).transferred);
    EXPECT_TRUE(CommandEmpfangen_Click(core).transferred);
    blind.Settle();
  }
  ASSERT_EQ(said.size(), 2) << "when it fails and at the end, not for each entry: "
                            << said.join(u'|').toStdString();
  EXPECT_TRUE(said.back().endsWith(u"Es fehlen darin: 2."));
  EXPECT_FALSE(core.OnDeed.Listens()) << "the recorder is gone";
}

}  // namespace
}  // namespace kalivor::history
