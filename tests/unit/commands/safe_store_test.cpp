// Backups and the journal of a sending: what is written when, what the next start offers, what a sweep takes.
#include "commands/SafeStore.h"

#include <gtest/gtest.h>
#include <QSet>

#include "core/ValueFileFormat.h"
#include "fakes/FakeFileSystem.h"
#include "unit/commands/SafeRuns.h"

namespace kalivor::test {
namespace {

const QString kFolder = Native(u"/werte/Sicherungen"_s);
const QString kBase = Native(u"/werte/Sicherungen/2026-11-12 16-40-05 AB1-123.4"_s);
const QString kJournal = Native(u"/zustand/Sendung.txt"_s);
const QString kSecond = Native(u"/zustand/Sendung-2.txt"_s);

QDateTime At(const QString& text) {
  return QDateTime::fromString(text, Qt::ISODate);
}

class SafeStoreTest : public testing::Test {
 protected:
  SafeStoreTest() { plant.module->Userpath = Native(u"/werte"_s); }

  SafeStore Program() {
    SafeWorld world;
    world.stateFolder = Native(u"/zustand"_s);
    world.programVersion = u"0.1.0"_s;
    world.deviceOfPort = [](int number) { return u"/dev/ttyUSB%1"_s.arg(number); };
    world.take = [this](const QString& path) {
      if (taken.contains(path)) return false;
      taken.insert(path);
      return true;
    };
    world.now = [this] { return now; };
    return {files, world};
  }

  /// Every program has ended.
  void EndAll() { taken.clear(); }

  [[nodiscard]] QByteArray Stored(const QString& path) const { return files.files.value(path).bytes; }
  [[nodiscard]] std::optional<Sending> Journal(const QString& path = kJournal) const {
    return ParseSending(Stored(path));
  }

  /// What the next start offers.
  std::optional<Sending> Offered() {
    EndAll();
    SafeStore next = Program();
    EXPECT_EQ(next.Load(), QString());
    EndAll();
    return next.Unfinished();
  }

  /// A program that ended after so many words of these values.
  SafeRun Interrupted(const QList<int>& chosen, int words) {
    SafeRun run = plant.Run(chosen);
    SafeStore store = Program();
    EXPECT_EQ(store.Begin(*plant.module, run), QString());
    EXPECT_EQ(plant.Write(store, run, words), QString());
    EndAll();
    return run;
  }

  static QStringList Names(const std::vector<NamedWords>& values) {
    QStringList names;
    for (const NamedWords& value : values)
      names.append(value.Variable);
    return names;
  }

  FakeFileSystem files;
  SafePlant plant;
  QSet<QString> taken;
  QDateTime now = At(u"2026-11-12T16:40:05.789+01:00"_s);
};

// --- the backup ---

TEST_F(SafeStoreTest, TheBackupIsAValueFileAndItsText) {
  SafeStore store = Program();
  SafeRun run = plant.Run({1, 3});
  run.values[4].before.reset();  // could not be read
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(run.backup, kBase + u".qpf"_s);

  const ValueFileContent content = ParseValueFile(Stored(kBase + u".qpf"_s));
  EXPECT_EQ(content.recordLength, kCurrentRecord_bytes);
  EXPECT_EQ(content.version, u"AB1-123.4"_s);
  EXPECT_EQ(content.storedCount, 6);
  ASSERT_EQ(content.records.size(), 5U) << "all that was read, not only what is chosen";
  EXPECT_EQ(content.records[0].Variable, u"zahl"_s);
  EXPECT_EQ(content.records[0].Wert, 0x2020);
  EXPECT_EQ(content.records[1].Wert, 0x20202020);
  EXPECT_EQ(content.records[4].Variable, u"feld"_s);
  EXPECT_EQ(content.records[4].Typ, u"int"_s);

  const std::optional<Backup> backup = ParseBackup(Stored(kBase + u".txt"_s));
  ASSERT_TRUE(backup);
  EXPECT_EQ(backup->head.time, At(u"2026-11-12T16:40:05+01:00"_s)) << "to the second";
  EXPECT_EQ(backup->head.version, u"AB1-123.4"_s);
  EXPECT_EQ(backup->head.plantType, u"B"_s);
  EXPECT_EQ(backup->head.plant, 1);
  EXPECT_EQ(backup->head.address, 7);
  EXPECT_EQ(backup->head.port, u"COM2 /dev/ttyUSB2"_s);
  EXPECT_EQ(backup->head.programVersion, u"0.1.0"_s);
  EXPECT_EQ(Names(backup->values), (QStringList{u"zahl"_s, u"lang"_s, u"hoch"_s, u"tief"_s, u"feld"_s}));
  EXPECT_EQ(backup->words, run.before);
}

TEST_F(SafeStoreTest, WithoutABackupNothingIsSent) {
  for (const int good : {0, 1}) {
    SafeStore store = Program();
    files.writeError = u"Kein Platz."_s;
    files.goodWrites = good;
    SafeRun run = plant.Run({1});
    EXPECT_EQ(store.Begin(*plant.module, run),
              u"Die Sicherung kann nicht angelegt werden; es wurde nichts gesendet.\r\n"_s + kBase +
                  (good == 0 ? u".qpf"_s : u".txt"_s) + u"\r\nKein Platz."_s);
    EXPECT_EQ(run.backup, QString());
    EXPECT_NE(store.Before(0x1F00), QString());
    files.writeError.clear();
    EXPECT_TRUE(ListBackups(files, kFolder).backups.empty()) << good;
    EXPECT_FALSE(files.files.contains(kJournal));
    files.files.clear();
    EndAll();
  }
}

TEST_F(SafeStoreTest, AFolderThatCannotBeReadHasNoBackup) {
  SafeStore store = Program();
  files.AddFailure(kFolder, u"Keine Berechtigung."_s);
  SafeRun run = plant.Run({1});
  EXPECT_EQ(store.Begin(*plant.module, run),
            u"Die Sicherung kann nicht angelegt werden; es wurde nichts gesendet.\r\n"_s + kFolder +
                u"\r\nKeine Berechtigung."_s);
}

TEST_F(SafeStoreTest, ATakenNameGetsANumber) {
  for (const QString& present : {u".qpf"_s, u".txt"_s, u".QPF"_s}) {
    files.files.clear();
    files.files[kBase + present] = {"old", {}};
    SafeStore store = Program();
    SafeRun run = plant.Run({1});
    EXPECT_EQ(store.Begin(*plant.module, run), QString());
    EXPECT_EQ(run.backup, kBase + u" (10).qpf"_s);
    EXPECT_EQ(Stored(kBase + present), "old");
    EXPECT_TRUE(ReadBackup(files, run.backup).error.isEmpty());
    EndAll();
  }
}

// They may look at the folder before either of them has written.
TEST_F(SafeStoreTest, ProgramsOfTheSameSecondNeverTakeTheSameName) {
  SafeStore first = Program();
  SafeStore second = Program();
  SafeRun one = plant.Run({1});
  SafeRun other = plant.Run({1});
  EXPECT_EQ(first.Begin(*plant.module, one), QString());
  files.files.remove(kBase + u".qpf"_s);
  files.files.remove(kBase + u".txt"_s);
  EXPECT_EQ(second.Begin(*plant.module, other), QString());
  EXPECT_EQ(other.backup, kBase + u" (2).qpf"_s);
}

TEST_F(SafeStoreTest, WhatFileSystemsRefuseInANameIsReplaced) {
  SafeStore store = Program();
  SafeRun run = plant.Run({1});
  run.version = u"A/B\\C:D*E?F\"G<H>I|J\tK ä. "_s;
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(run.backup, Native(kFolder + u"/2026-11-12 16-40-05 A_B_C_D_E_F_G_H_I_J_K ä..qpf"_s));
  EXPECT_EQ(ReadBackup(files, run.backup).backup.head.version, run.version);
}

TEST_F(SafeStoreTest, ARunThatHasABackupMakesNoOther) {
  SafeStore store = Program();
  SafeRun run = plant.Run({1});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run), QString());
  store.End(run);
  const QByteArray before = Stored(kBase + u".txt"_s);
  const auto count = files.files.size();
  run.before[0x1F00] = 0xFFFF;
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(files.files.size(), count);
  EXPECT_EQ(Stored(kBase + u".txt"_s), before);
}

// --- the journal ---

TEST_F(SafeStoreTest, TheJournalNamesTheChosenValuesAndEveryWordBeforeItIsWritten) {
  SafeStore store = Program();
  SafeRun run = plant.Run({1, 3, 4});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  std::optional<Sending> journal = Journal();
  ASSERT_TRUE(journal);
  EXPECT_EQ(journal->backup, run.backup);
  EXPECT_EQ(journal->head, ReadBackup(files, run.backup).backup.head);
  EXPECT_EQ(Names(journal->values), (QStringList{u"zahl"_s, u"hoch"_s, u"tief"_s}));
  EXPECT_EQ(journal->wanted, (std::vector<CodedWord>{{0x1F00, 0xFFFF, 11}, {0x1F06, 0xFFFF, 13 << 8 | 14}}))
      << "both bytes joined";
  EXPECT_EQ(journal->before, (ControllerImage{{0x1F00, 0x2020}, {0x1F06, 0x2020}}));
  EXPECT_TRUE(journal->begun.empty());
  EXPECT_EQ(store.Before(0x1F06), QString());
  EXPECT_EQ(Journal()->begun, std::vector<quint16>{0x1F06});
  EXPECT_EQ(store.Before(0x1F00), QString());
  EXPECT_EQ(store.Before(0x1F06), QString());
  EXPECT_EQ(Journal()->begun, (std::vector<quint16>{0x1F06, 0x1F00})) << "each once";
}

TEST_F(SafeStoreTest, OneByteOfAWordIsWantedAlone) {
  SafeStore store = Program();
  SafeRun run = plant.Run({4});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(Journal()->wanted, (std::vector<CodedWord>{{0x1F06, 0x00FF, 14}}));
}

TEST_F(SafeStoreTest, WithoutAJournalNothingIsSent) {
  const QString noJournal = u"Was gesendet wird, kann nicht festgehalten werden; es wurde nichts gesendet."_s;
  {
    SafeStore store = Program();
    files.writeError = u"Kein Platz."_s;
    files.goodWrites = 2;
    SafeRun run = plant.Run({1});
    EXPECT_EQ(store.Begin(*plant.module, run), noJournal + u"\r\n"_s + kJournal + u"\r\nKein Platz."_s);
    EXPECT_NE(store.Before(0x1F00), QString());
    files.writeError.clear();
    EndAll();
  }
  SafeRun run = plant.Run({1});
  SafeStore nowhere(files, {});
  EXPECT_EQ(nowhere.Load(), QString());
  EXPECT_EQ(nowhere.Begin(*plant.module, run),
            noJournal + u"\r\nEs gibt keinen Ordner für den Zustand des Programms."_s);
  SafeWorld refusing;
  refusing.stateFolder = Native(u"/zustand"_s);
  refusing.take = [](const QString&) { return false; };
  EXPECT_EQ(SafeStore(files, refusing).Begin(*plant.module, run),
            noJournal + u"\r\n"_s + Native(u"/zustand"_s));
  run.before.erase(0x1F00);
  EXPECT_EQ(Program().Begin(*plant.module, run),
            noJournal + u"\r\nWas der Regler vorher enthielt, ist nicht bekannt."_s);
}

TEST_F(SafeStoreTest, AWordThatCannotBeKeptEndsTheWriting) {
  SafeStore store = Program();
  SafeRun run = plant.Run({1, 2});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(store.Before(0x1F00), QString());
  files.writeError = u"Kein Platz."_s;
  const QString error = u"Was gesendet wird, kann nicht mehr festgehalten werden.\r\n"_s + kJournal;
  EXPECT_EQ(store.Before(0x1F02), error + u"\r\nKein Platz."_s);
  files.writeError.clear();
  EXPECT_EQ(store.Before(0x1F02), error) << "a part of the line may be there";
  EXPECT_EQ(Journal()->begun, std::vector<quint16>{0x1F00});
}

TEST_F(SafeStoreTest, ARunOfWhichEverythingIsKnownLeavesNothing) {
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  SafeRun run = plant.Run({1, 2, 5});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run), QString());
  run.values[1].state = SafeState::Failed;
  run.values[4].state = SafeState::Deviating;
  store.End(run);
  EXPECT_FALSE(store.Unfinished());
  EXPECT_EQ(Stored(kJournal), QByteArray());
  EXPECT_FALSE(Offered());
}

TEST_F(SafeStoreTest, AnUnfinishedRunIsOfferedAtOnceAndAfterTheNextStart) {
  SafeStore store = Program();
  SafeRun run = plant.Run({1, 2});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run, 2), QString());
  EXPECT_FALSE(store.Unfinished()) << "it is under way";
  store.End(run);
  ASSERT_TRUE(store.Unfinished());
  EXPECT_EQ(store.Unfinished()->begun, (std::vector<quint16>{0x1F00, 0x1F02}));
  EXPECT_EQ(ValuesBegun(*plant.module, *store.Unfinished()), 1);
  EXPECT_EQ(Offered(), store.Unfinished());
}

TEST_F(SafeStoreTest, AnEndWithoutABeginningChangesNothing) {
  Interrupted({1, 2}, 1);
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  SafeRun run = plant.Run({1, 2}, SafeKind::Finish);
  run.backup = store.Unfinished()->backup;
  files.writeError = u"Kein Platz."_s;
  EXPECT_NE(store.Begin(*plant.module, run), QString());
  files.writeError.clear();
  store.End(run);
  EXPECT_TRUE(store.Unfinished());
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run), QString());
  store.End(run);
  EXPECT_FALSE(store.Unfinished());
  run.values[1].state = SafeState::Unverified;
  store.End(run);
  EXPECT_FALSE(store.Unfinished());
}

// --- the next start ---

TEST_F(SafeStoreTest, AProgramThatEndsBeforeTheFirstWordLeavesNoOffer) {
  Interrupted({1, 2}, 0);
  EXPECT_TRUE(Journal());
  EXPECT_FALSE(Offered());
  EXPECT_EQ(Stored(kJournal), QByteArray());
  EXPECT_EQ(ListBackups(files, kFolder).backups.size(), 1U) << "the backup stays";
}

TEST_F(SafeStoreTest, AProgramThatEndsInTheMiddleLeavesAllOfItsSending) {
  const SafeRun run = Interrupted({1, 2, 5}, 2);
  const std::optional<Sending> sending = Offered();
  ASSERT_TRUE(sending);
  EXPECT_EQ(sending->begun, (std::vector<quint16>{0x1F00, 0x1F02}));
  EXPECT_EQ(Names(sending->values), (QStringList{u"zahl"_s, u"lang"_s, u"text"_s}));
  EXPECT_EQ(sending->backup, run.backup);
  for (const auto& [address, word] : sending->before)
    EXPECT_EQ(word, 0x2020) << address;
}

TEST_F(SafeStoreTest, ATornLineDoesNotSpoilWhatFollows) {
  Interrupted({1, 2}, 1);
  files.files[kJournal].bytes += "Begonnen: 1F";
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  SafeRun run = plant.Run({2}, SafeKind::Finish);
  run.backup = store.Unfinished()->backup;
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(store.Before(0x1F02), QString());
  EXPECT_EQ(Journal()->begun, (std::vector<quint16>{0x1F00, 0x1F02}));
}

TEST_F(SafeStoreTest, ADamagedJournalIsToldAndSetAside) {
  Interrupted({1, 2}, 1);
  files.files[kJournal].bytes[20] ^= 1;
  const QByteArray damaged = Stored(kJournal);
  SafeStore store = Program();
  EXPECT_EQ(store.Load(),
            u"Die Datei mit der unterbrochenen Sendung ist beschädigt und kann nicht benutzt werden:\r\n"_s +
                Native(u"/zustand/Sendung.defekt.txt"_s));
  EXPECT_FALSE(store.Unfinished());
  EXPECT_EQ(Stored(u"/zustand/Sendung.defekt.txt"_s), damaged);
  EXPECT_EQ(Stored(kJournal), QByteArray());
}

TEST_F(SafeStoreTest, AJournalThatCannotBeReadIsToldAndStays) {
  files.AddFailure(kJournal, u"Keine Berechtigung."_s);
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), u"Die unterbrochene Sendung vom letzten Mal kann nicht gelesen werden:\r\n"_s +
                              kJournal + u"\r\nKeine Berechtigung."_s);
  SafeRun run = plant.Run({1});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_TRUE(Journal(kSecond));
}

TEST_F(SafeStoreTest, ProgramsAtTheSameTimeHaveJournalsOfTheirOwn) {
  SafeStore first = Program();
  SafeStore second = Program();
  SafeRun one = plant.Run({1});
  SafeRun other = plant.Run({2});
  EXPECT_EQ(first.Begin(*plant.module, one), QString());
  EXPECT_EQ(second.Begin(*plant.module, other), QString());
  EXPECT_EQ(first.Before(0x1F00), QString());
  EXPECT_EQ(second.Before(0x1F02), QString());
  EXPECT_EQ(Journal()->begun, std::vector<quint16>{0x1F00});
  EXPECT_EQ(Journal(kSecond)->begun, std::vector<quint16>{0x1F02});
  SafeStore third = Program();
  EXPECT_EQ(third.Load(), QString());
  EXPECT_FALSE(third.Unfinished()) << "they are still at work";
  EndAll();
  SafeStore fourth = Program();
  SafeStore fifth = Program();
  EXPECT_EQ(fourth.Load(), QString());
  EXPECT_EQ(fifth.Load(), QString());
  EXPECT_EQ(fourth.Unfinished()->begun, std::vector<quint16>{0x1F00});
  EXPECT_EQ(fifth.Unfinished()->begun, std::vector<quint16>{0x1F02});
}

// What a journal without any word hides is offered all the same.
TEST_F(SafeStoreTest, AJournalBehindAnEmptyOneIsFound) {
  SafeRun one = plant.Run({1});
  SafeRun other = plant.Run({2});
  {
    SafeStore first = Program();
    SafeStore second = Program();
    EXPECT_EQ(first.Begin(*plant.module, one), QString());
    EXPECT_EQ(second.Begin(*plant.module, other), QString());
    EXPECT_EQ(second.Before(0x1F02), QString());
  }
  EndAll();
  SafeStore next = Program();
  EXPECT_EQ(next.Load(), QString());
  ASSERT_TRUE(next.Unfinished());
  EXPECT_EQ(next.Unfinished()->begun, std::vector<quint16>{0x1F02});
}

TEST_F(SafeStoreTest, ForgettingEmptiesTheJournalAndKeepsTheBackup) {
  Interrupted({1, 2}, 1);
  SafeStore store = Program();
  EXPECT_EQ(store.Forget(), QString()) << "there is nothing yet";
  EXPECT_EQ(store.Load(), QString());
  files.writeError = u"Kein Platz."_s;
  EXPECT_EQ(store.Forget(), u"Die unterbrochene Sendung kann nicht verworfen werden:\r\n"_s + kJournal +
                                u"\r\nKein Platz."_s);
  EXPECT_TRUE(store.Unfinished());
  files.writeError.clear();
  EXPECT_EQ(store.Forget(), QString());
  EXPECT_FALSE(store.Unfinished());
  EXPECT_FALSE(Offered());
  EXPECT_EQ(ListBackups(files, kFolder).backups.size(), 1U);
}

// --- what belongs together ---

TEST_F(SafeStoreTest, FinishingKeepsWhatWasThereBeforeTheSending) {
  const ControllerImage original = plant.controller;
  Interrupted({1, 2, 5}, 2);
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  const Sending interrupted = *store.Unfinished();
  SafeRun run = plant.Run({2, 5}, SafeKind::Finish);
  run.backup = interrupted.backup;
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(Journal(), interrupted) << "until more is written";
  EXPECT_EQ(plant.Write(store, run, 1), QString());
  std::optional<Sending> sending = Offered();
  ASSERT_TRUE(sending);
  EXPECT_EQ(sending->begun.size(), 3U);
  for (const auto& [address, word] : sending->before)
    EXPECT_EQ(word, original.at(address)) << address;
  EXPECT_EQ(plant.Write(store, run), QString());
  store.End(run);
  EXPECT_FALSE(store.Unfinished());
  EXPECT_FALSE(Offered());
}

// The user ended it, or the controller did not answer: nothing of the run is unknown, but the sending is no
// more finished than before.
TEST_F(SafeStoreTest, AFinishingThatComesToNothingLeavesTheOffer) {
  for (const SafeState state : {SafeState::Unverified, SafeState::Failed, SafeState::Different}) {
    Interrupted({1, 2}, 1);
    SafeStore store = Program();
    EXPECT_EQ(store.Load(), QString());
    const Sending interrupted = *store.Unfinished();
    SafeRun run = plant.Run({2}, SafeKind::Finish);
    run.backup = interrupted.backup;
    EXPECT_EQ(store.Begin(*plant.module, run), QString());
    run.values[1].state = state;
    store.End(run);
    EXPECT_EQ(store.Unfinished(), interrupted);
    EXPECT_EQ(Offered(), interrupted);
    EXPECT_EQ(Program().Load(), QString());
    files.files.clear();
    plant.controller = SafePlant().controller;
    EndAll();
  }
}

// In the middle of it the controller holds a part of the new and a part of the old: both ways stay open.
TEST_F(SafeStoreTest, TakingBackCanBeInterruptedToo) {
  const ControllerImage original = plant.controller;
  Interrupted({1, 2, 5}, 4);
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  const Sending interrupted = *store.Unfinished();
  SafeRun back = plant.Back({1, 2, 5}, interrupted.before);
  EXPECT_EQ(store.Begin(*plant.module, back), QString());
  EXPECT_EQ(Journal(), interrupted) << "nothing is lost before the first word";
  EXPECT_EQ(plant.Write(store, back, 1), QString());
  EXPECT_EQ(Offered(), interrupted);
  EXPECT_EQ(plant.Write(store, back), QString());
  store.End(back);
  EXPECT_EQ(plant.controller, original);
  EXPECT_FALSE(store.Unfinished());
  EXPECT_FALSE(Offered());
}

TEST_F(SafeStoreTest, TakingBackAFinishedSendingGoesOnInItsJournal) {
  const ControllerImage original = plant.controller;
  SafeStore store = Program();
  SafeRun run = plant.Run({1, 2});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run), QString());
  store.End(run);
  EXPECT_EQ(Stored(kJournal), QByteArray());
  SafeRun back = plant.Back({1, 2}, original);
  EXPECT_EQ(store.Begin(*plant.module, back), QString());
  EXPECT_EQ(plant.Write(store, back, 1), QString());
  const std::optional<Sending> sending = Offered();
  ASSERT_TRUE(sending);
  EXPECT_EQ(sending->before, (ControllerImage{{0x1F00, 0x2020}, {0x1F02, 0x2020}, {0x1F04, 0x2020}}));
  EXPECT_EQ(sending->wanted.front().bits, 11) << "what the sending wanted";
}

TEST_F(SafeStoreTest, RepeatingAPartKeepsTheRest) {
  SafeStore store = Program();
  SafeRun run = plant.Run({1, 2});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run, 2), QString());
  store.End(run);
  run.values[0].chosen = false;
  run.values[5].chosen = true;  // one more
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run), QString());
  const std::optional<Sending> sending = Offered();
  ASSERT_TRUE(sending);
  EXPECT_EQ(Names(sending->values), (QStringList{u"zahl"_s, u"lang"_s, u"feld"_s}));
  EXPECT_EQ(sending->begun, (std::vector<quint16>{0x1F00, 0x1F02, 0x1F04, 0x1F0C}));
  EXPECT_EQ(sending->before.at(0x1F00), 0x2020);
}

TEST_F(SafeStoreTest, AnotherSendingLeavesTheUnfinishedOneAlone) {
  Interrupted({1, 2}, 1);
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  const Sending interrupted = *store.Unfinished();
  now = now.addSecs(1);
  SafeRun run = plant.Run({5});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run, 1), QString());
  EXPECT_EQ(Journal(), interrupted);
  EXPECT_EQ(Names(Journal(kSecond)->values), QStringList{u"text"_s});
  EXPECT_EQ(plant.Write(store, run), QString());
  store.End(run);
  EXPECT_EQ(store.Unfinished(), interrupted);
  EXPECT_EQ(Stored(kSecond), QByteArray());
  SafeRun finish = plant.Run({2}, SafeKind::Finish);
  finish.backup = interrupted.backup;
  EXPECT_EQ(store.Begin(*plant.module, finish), QString());
  EXPECT_EQ(Journal(), interrupted);
  EXPECT_EQ(plant.Write(store, finish), QString());
  store.End(finish);
  EXPECT_FALSE(store.Unfinished());
  EXPECT_EQ(Stored(kJournal), QByteArray());
  EXPECT_FALSE(Offered());
}

// A run-time error ends a run wherever it strikes.
TEST_F(SafeStoreTest, ARunThatComesToNoEndIsUnfinished) {
  SafeStore store = Program();
  SafeRun thrown = plant.Run({1, 2});
  EXPECT_EQ(store.Begin(*plant.module, thrown), QString());
  EXPECT_EQ(plant.Write(store, thrown, 1), QString());
  const std::optional<Sending> left = Journal();
  now = now.addSecs(1);
  SafeRun run = plant.Run({5});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(store.Unfinished(), left);
  EXPECT_EQ(Journal(), left);
  EXPECT_EQ(plant.Write(store, run), QString());
  store.End(run);
  EXPECT_EQ(store.Unfinished(), left);
  SafeRun idle = plant.Run({6});
  EXPECT_EQ(store.Begin(*plant.module, idle), QString());
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(store.Unfinished(), left) << "nothing of the idle one was sent";
}

TEST_F(SafeStoreTest, ARunThatComesToNoEndCanBeForgotten) {
  Interrupted({1, 2}, 1);
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  SafeRun thrown = plant.Run({1, 2}, SafeKind::Finish);
  thrown.backup = store.Unfinished()->backup;
  EXPECT_EQ(store.Begin(*plant.module, thrown), QString());
  EXPECT_EQ(store.Forget(), QString());
  EXPECT_EQ(Stored(kJournal), QByteArray());
  SafeRun run = plant.Run({5});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(Names(Journal()->values), QStringList{u"text"_s});
}

// Two controllers of one kind: what is taken back is the last sending, not the one that waits.
TEST_F(SafeStoreTest, TakingBackTheLastSendingLeavesTheUnfinishedOneAlone) {
  const ControllerImage original = plant.controller;
  Interrupted({1, 2}, 1);
  plant.controller = original;
  SafeStore store = Program();
  EXPECT_EQ(store.Load(), QString());
  const Sending interrupted = *store.Unfinished();
  now = now.addSecs(1);
  SafeRun run = plant.Run({1, 2});
  EXPECT_EQ(store.Begin(*plant.module, run), QString());
  EXPECT_EQ(plant.Write(store, run), QString());
  store.End(run);
  SafeRun back = plant.Back({1, 2}, original);
  EXPECT_EQ(store.Begin(*plant.module, back), QString());
  EXPECT_EQ(plant.Write(store, back), QString());
  store.End(back);
  EXPECT_EQ(store.Unfinished(), interrupted);
  EXPECT_EQ(Journal(), interrupted);
}

// --- the backups ---

class Backups : public testing::Test {
 protected:
  StoredBackup Add(const QString& name, const QString& time) {
    Backup backup{{At(time), u"AB1-123.4"_s, u"B"_s, 1, 7, u"COM2"_s, u"0.1.0"_s},
                  {{u"zahl"_s, u"1F00"_s, u"int"_s}},
                  {{0x1F00, 0x0011}}};
    files.files[kFolder + u'/' + name + u".qpf"_s] = {"values", {}};
    files.files[kFolder + u'/' + name + u".txt"_s] = {ComposeBackup(backup), {}};
    return {Native(kFolder + u'/' + name + u".qpf"_s), backup, {}};
  }

  [[nodiscard]] QStringList Listed() {
    QStringList names;
    const BackupList list = ListBackups(files, kFolder);
    EXPECT_EQ(list.error, QString());
    for (const StoredBackup& stored : list.backups)
      names.append(stored.path.sliced(kFolder.size() + 1).chopped(4));
    return names;
  }

  FakeFileSystem files;
};

TEST_F(Backups, AreListedFromTheNewestToTheOldest) {
  Add(u"b"_s, u"2026-11-12T16:40:05+01:00"_s);
  Add(u"a"_s, u"2026-11-12T16:40:05Z"_s);
  Add(u"c"_s, u"2025-01-01T00:00:00Z"_s);
  EXPECT_EQ(Listed(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

TEST_F(Backups, OneThatCannotBeUsedIsListedWithTheReason) {
  Add(u"2026-11-11 10-00-00 v"_s, u"2026-11-11T10:00:00Z"_s);
  Add(u"2026-11-12 10-00-00 v"_s, u"2026-11-12T10:00:00Z"_s);
  Add(u"2026-11-13 10-00-00 v"_s, u"2026-11-13T10:00:00Z"_s);
  Add(u"2026-11-14 10-00-00 v"_s, u"2026-11-14T10:00:00Z"_s);
  files.files[kFolder + u"/2026-11-12 10-00-00 v.txt"_s].bytes.chop(1);
  files.AddFailure(kFolder + u"/2026-11-13 10-00-00 v.txt"_s, u"Keine Berechtigung."_s);
  const std::vector<StoredBackup> backups = ListBackups(files, kFolder).backups;
  ASSERT_EQ(backups.size(), 4U);
  EXPECT_EQ(backups[0].error, QString());
  EXPECT_EQ(backups[1].error, u"Keine Berechtigung."_s);
  EXPECT_EQ(backups[2].error, u"Die Sicherung ist beschädigt."_s);
  EXPECT_EQ(backups[2].path, Native(kFolder + u"/2026-11-12 10-00-00 v.qpf"_s));
  EXPECT_EQ(backups[2].backup, Backup());
  EXPECT_EQ(backups[3].error, QString());
}

TEST_F(Backups, OtherFilesAreNone) {
  Add(u"a"_s, u"2026-11-12T16:40:05Z"_s);
  files.files[kFolder + u"/ohne Text.qpf"_s] = {"values", {}};
  files.files[kFolder + u"/Notizen.txt"_s] = {"Text", {}};
  files.files[kFolder + u"/a.pdf"_s] = {"x", {}};
  files.files[kFolder + u"/darin/a.txt"_s] = files.files[kFolder + u"/a.txt"_s];
  EXPECT_EQ(Listed(), QStringList{u"a"_s});
  files.files.remove(kFolder + u"/a.qpf"_s);
  EXPECT_EQ(Listed(), QStringList{u"a"_s}) << "the words are in the text";
}

TEST_F(Backups, AMissingFolderHasNoneAndAnUnreadableOneIsTold) {
  EXPECT_EQ(Listed(), QStringList());
  files.AddFailure(kFolder, u"Keine Berechtigung."_s);
  EXPECT_EQ(ListBackups(files, kFolder).error, u"Die Sicherungen können nicht aufgelistet werden:\r\n"_s +
                                                   kFolder + u"\r\nKeine Berechtigung."_s);
}

TEST_F(Backups, OneIsReadByEitherPath) {
  const StoredBackup stored = Add(u"a.b"_s, u"2026-11-12T16:40:05Z"_s);
  for (const QString& ending : {u".qpf"_s, u".txt"_s}) {
    const StoredBackup read = ReadBackup(files, Native(kFolder + u"/a.b"_s) + ending);
    EXPECT_EQ(read.error, QString());
    EXPECT_EQ(read.path, stored.path);
    EXPECT_EQ(read.backup, stored.backup);
  }
  EXPECT_EQ(ReadBackup(files, u"/x.qpf"_s).error, u"Datei nicht gefunden."_s);
}

TEST_F(Backups, TheFolderLiesUnderThatOfTheValueFiles) {
  Settings settings;
  EXPECT_EQ(BackupFolder(settings), u"Sicherungen"_s);
  settings.Userpath = u"C:\\Werte"_s;
  EXPECT_EQ(BackupFolder(settings), u"C:\\Werte\\Sicherungen"_s);
}

TEST_F(Backups, TheirValuesAreASetWithAddresses) {
  const SafePlant plant;
  StoredBackup stored{u"/a.qpf"_s, {}, {}};
  stored.backup.head.version = u"AB1-123.4"_s;
  stored.backup.words = {{0x1F00, 0xFFFE}, {0x1F02, 1}, {0x1F06, 0x0102}, {0x1F0C, 3}};
  for (int i = 1; i < plant.module->ParCount; ++i)
    stored.backup.values.push_back(NameOf(plant.module->Par[i]));
  stored.backup.values[2].Typ = u"int"_s;     // the definitions know another type
  plant.module->Par[1].Variable = u"feld"_s;  // an array with the sixth
  stored.backup.values[0].Variable = u"feld"_s;
  // What lies behind the last parameter is left over from other definitions.
  plant.module->Par[plant.module->ParCount] = plant.module->Par[6];
  const ValueSet set = BackupValues(*plant.module, stored);
  EXPECT_EQ(set.origin, Origin::File);
  EXPECT_EQ(set.name, u"/a.qpf"_s);
  EXPECT_EQ(set.version, u"AB1-123.4"_s);
  EXPECT_TRUE(set.partial);
  ASSERT_EQ(set.values.size(), 3U) << "of the long and the text words are missing";
  EXPECT_EQ(set.values[0].value.number, -2);
  EXPECT_EQ(set.values[0].element, 0);
  EXPECT_EQ(set.values[1].Variable, u"tief"_s);
  EXPECT_EQ(set.values[1].value.number, 2);
  EXPECT_EQ(set.values[2].VarAdresse, u"1F0C"_s);
  EXPECT_EQ(set.values[2].element, 1);
}

TEST_F(Backups, ASweepKeepsThirtyDaysAndOneOfEachMonthBefore) {
  const QStringList times{u"2026-11-22T10:00:00Z"_s, u"2026-11-01T10:00:00Z"_s, u"2026-11-01T09:00:00Z"_s,
                          u"2026-10-23T12:00:00Z"_s, u"2026-10-23T11:59:59Z"_s, u"2026-10-01T00:00:00Z"_s,
                          u"2026-09-30T23:00:00Z"_s, u"2026-09-30T22:00:00Z"_s, u"2025-09-30T23:00:00Z"_s,
                          u"2027-01-01T00:00:00Z"_s};
  for (const QString& time : times)
    Add(time, time);
  files.files[kFolder + u"/2020-01-01 00-00-00 v.qpf"_s] = {"x", {}};
  files.files[kFolder + u"/2020-01-01 00-00-00 v.txt"_s] = {"damaged", {}};
  const std::vector<StoredBackup> all = ListBackups(files, kFolder).backups;
  ASSERT_EQ(all.size(), 11U);
  const std::vector<StoredBackup> swept = ToSweep(all, At(u"2026-11-22T12:00:00Z"_s));
  QStringList names;
  for (const StoredBackup& stored : swept)
    names.append(stored.path.sliced(kFolder.size() + 1).chopped(4));
  EXPECT_EQ(names, (QStringList{u"2026-10-01T00:00:00Z"_s, u"2026-09-30T22:00:00Z"_s}));
  EXPECT_EQ(Sweep(files, swept), QString());
  EXPECT_EQ(ListBackups(files, kFolder).backups.size(), 9U);
  EXPECT_FALSE(files.files.contains(kFolder + u"/2026-10-01T00:00:00Z.qpf"_s));
  EXPECT_TRUE(ToSweep(ListBackups(files, kFolder).backups, At(u"2026-11-22T12:00:00Z"_s)).empty());
}

TEST_F(Backups, ASweepTellsControllersApart) {
  const QDateTime now = At(u"2026-11-22T12:00:00Z"_s);
  const auto backupOf = [](const QString& time, const QString& version, const QString& plantType,
                           int address) {
    StoredBackup stored;
    stored.backup.head.time = At(time);
    stored.backup.head.version = version;
    stored.backup.head.plantType = plantType;
    stored.backup.head.address = address;
    return stored;
  };
  const QString early = u"2026-08-01T10:00:00Z"_s;
  const StoredBackup last = backupOf(u"2026-08-02T10:00:00Z"_s, u"A"_s, u"p"_s, 1);
  EXPECT_EQ(ToSweep({last, backupOf(early, u"A"_s, u"p"_s, 1)}, now).size(), 1U);
  EXPECT_EQ(ToSweep({last, backupOf(early, u"B"_s, u"p"_s, 1)}, now).size(), 0U);
  EXPECT_EQ(ToSweep({last, backupOf(early, u"A"_s, u"q"_s, 1)}, now).size(), 0U);
  EXPECT_EQ(ToSweep({last, backupOf(early, u"A"_s, u"p"_s, 2)}, now).size(), 0U);
}

TEST_F(Backups, ASweepSaysWhatItCouldNotRemove) {
  const StoredBackup first = Add(u"a"_s, u"2020-01-01T10:00:00Z"_s);
  const StoredBackup second = Add(u"b"_s, u"2020-01-02T10:00:00Z"_s);
  files.writeError = u"Keine Berechtigung."_s;
  files.goodWrites = 1;
  EXPECT_EQ(Sweep(files, {first, second}), u"Nicht alle Sicherungen konnten entfernt werden:\r\n"_s +
                                               first.path + u"\r\nKeine Berechtigung.\r\n"_s +
                                               second.path.chopped(4) + u".txt\r\nKeine Berechtigung."_s);
  EXPECT_EQ(Listed(), QStringList{u"b"_s}) << "a value file alone is no backup";
}

}  // namespace
}  // namespace kalivor::test
