// The steps of the safe commands: what each of them wants, when it refuses, and how a sending is finished or
// taken back.
#include "commands/SafeCommands.h"

#include <gtest/gtest.h>

#include "core/Busy.h"
#include "fakes/SafeSite.h"

namespace kalivor::test {
namespace {

class SafeCommands : public testing::Test, protected SafeSite {
 protected:
  sim::Memory before;

  SafeCommands() {
    module.Userpath = u"/werte"_s;
    StartWithFiles();
    before = memory;
  }

  [[nodiscard]] static const SafeValue& ValueAt(const SafeRun& run, int index) {
    for (const SafeValue& value : run.values)
      if (value.index == index) return value;
    throw std::out_of_range("no such value");
  }

  /// A sending that a program left behind that ended after `words` words of N2 and N4.
  Sending LeftBehind(int words) {
    SafeRun run = ReadToSend(context);
    for (SafeValue& value : run.values)
      value.chosen = value.index == 2 || value.index == 4;
    Sending sending{{}, u"/werte/Sicherungen/a.qpf"_s, {}, {}, {}, {}};
    sending.head.version = module.VersionList.SelectedText();
    sending.head.plantType = module.PlantTypeList.SelectedText();
    for (const SafeValue& value : run.values) {
      if (!value.chosen) continue;
      sending.values.push_back(NameOf(module.Par[value.index]));
      for (const CodedWord& word : value.words) {
        sending.wanted.push_back(word);
        sending.before[word.address] = run.before.at(word.address);
        if (words-- <= 0) continue;
        sending.begun.push_back(word.address);
        memory.SetWord(word.address, word.bits);
      }
    }
    line.sent.clear();
    progress.shown = false;
    return sending;
  }

  [[nodiscard]] quint16 Word(quint16 address) const { return memory.Word(address); }

  void ExpectRefused(const SafeRun& run, const QString& error) {
    EXPECT_EQ(run.error, error);
    EXPECT_TRUE(Requests().isEmpty());
    EXPECT_FALSE(progress.shown);
    EXPECT_EQ(run.Chosen(), 0);
  }
};

TEST_F(SafeCommands, ReadTheCheckedParameters) {
  module.ParNode[1] = kFalse;
  const auto expect = [this](const SafeRun& run, SafeKind kind) {
    EXPECT_EQ(run.kind, kind);
    EXPECT_EQ(run.error, QString());
    EXPECT_EQ(run.values.front().index, 2);
    EXPECT_EQ(run.Count(SafeState::Different), static_cast<int>(run.values.size()));
    EXPECT_EQ(ValueAt(run, 4).wanted.text, u"ABCD"_s);
    EXPECT_TRUE(Rests());
  };
  expect(ReadToSend(context), SafeKind::Send);
  expect(ReadToReceive(context), SafeKind::Receive);
  expect(ReadToVerify(context), SafeKind::Verify);
}

TEST_F(SafeCommands, AreBusyWhileTheyWork) {
  bool busy = true;
  model.OnResponse = [&](const QByteArray&, sim::Response&) { busy = busy && module.BusyDepth == 1; };
  SafeRun run = ReadToSend(context);
  WriteChosen(context, run);
  EXPECT_TRUE(busy);
  EXPECT_TRUE(Rests());
}

TEST_F(SafeCommands, WithoutACheckedParameterNothingIsAsked) {
  for (int i = 1; i <= 4; ++i)
    module.ParNode[i] = kFalse;
  ExpectRefused(ReadToSend(context), u"Kein Parameter ist angekreuzt."_s);
  ExpectRefused(ReadToReceive(context), u"Kein Parameter ist angekreuzt."_s);
  ExpectRefused(ReadToVerify(context), u"Kein Parameter ist angekreuzt."_s);
}

TEST_F(SafeCommands, DoNothingWhileAnOperationIsUnderWay) {
  const Sending sending = LeftBehind(1);
  SafeRun run = ReadToSend(context);
  line.sent.clear();
  progress.shown = false;
  const WaitingGuard waiting(core);
  const QString busy = u"Es wird noch gearbeitet."_s;
  int unknown = 0;
  EXPECT_EQ(ReadToSend(context).error, busy);
  EXPECT_EQ(ReadToReceive(context).error, busy);
  EXPECT_EQ(ReadToVerify(context).error, busy);
  EXPECT_EQ(ReadToRestore(context, {sending.head, sending.values, sending.before}, unknown).error, busy);
  EXPECT_EQ(ReadToFinish(context, sending).error, busy);
  EXPECT_EQ(ReadToTakeBack(context, sending).error, busy);
  const int chosen = run.Chosen();
  WriteChosen(context, run);
  EXPECT_EQ(run.error, busy);
  EXPECT_EQ(run.Chosen(), chosen);
  EXPECT_EQ(TakeOverChosen(core, run), 0);
  EXPECT_EQ(module.Par[1].Wert, 1500);
  EXPECT_TRUE(Requests().isEmpty());
  EXPECT_FALSE(progress.shown);
}

TEST_F(SafeCommands, WriteWhatIsChosenAndTakeItBack) {
  SafeRun run = ReadToSend(context);
  WriteChosen(context, run);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(AccountText(run), u"4 geprüft"_s);
  EXPECT_TRUE(files.files.contains(run.backup)) << run.backup.toStdString();
  EXPECT_FALSE(store.Unfinished());
  EXPECT_EQ(Word(0x1F00), 1500);
  SafeRun back = ReadToTakeBack(context, run);
  EXPECT_EQ(back.kind, SafeKind::TakeBack);
  EXPECT_EQ(back.Chosen(), 4);
  WriteChosen(context, back);
  EXPECT_EQ(AccountText(back), u"4 geprüft"_s);
  for (quint16 at = 0x1F00; at <= 0x1F0A; at = static_cast<quint16>(at + 2))
    EXPECT_EQ(Word(at), before.Word(at));
}

TEST_F(SafeCommands, WhereNothingWasWrittenNothingIsTakenBack) {
  const SafeRun run = ReadToSend(context);
  line.sent.clear();
  progress.shown = false;
  ExpectRefused(ReadToTakeBack(context, run), u"Es wurde nichts geschrieben."_s);
}

// --- a backup ---

TEST_F(SafeCommands, RestoreWhatABackupHolds) {
  SafeRun run = ReadToSend(context);
  WriteChosen(context, run);
  const StoredBackup stored = ReadBackup(files, run.backup);
  ASSERT_EQ(stored.error, QString());
  Backup backup = stored.backup;
  backup.values.push_back({u"X"_s, u"1F00"_s, u"int"_s});
  int unknown = -1;
  SafeRun restored = ReadToRestore(context, backup, unknown);
  EXPECT_EQ(restored.kind, SafeKind::Restore);
  EXPECT_EQ(unknown, 1);
  EXPECT_EQ(restored.Chosen(), 4);
  WriteChosen(context, restored);
  EXPECT_EQ(AccountText(restored), u"4 geprüft"_s);
  EXPECT_EQ(Word(0x1F00), before.Word(0x1F00));
  EXPECT_EQ(Word(0x1F0A), before.Word(0x1F0A));
  EXPECT_NE(restored.backup, run.backup) << "of what was there before the restoring";
}

TEST_F(SafeCommands, ABackupOfAnotherSelectionIsRefused) {
  Sending sending = LeftBehind(1);
  Backup backup{sending.head, sending.values, sending.before};
  int unknown = 0;
  backup.head.version = u"AB1-124.0"_s;
  ExpectRefused(ReadToRestore(context, backup, unknown),
                u"Andere ReglerVersion: AB1-124.0\r\nAusgewählt ist AB1-123.4."_s);
  backup.head.version = sending.head.version;
  backup.head.plantType = u"Luft"_s;
  ExpectRefused(ReadToRestore(context, backup, unknown), u"Andere Anlageart: Luft\r\nAusgewählt ist ."_s);
  sending.head.plantType = u"Luft"_s;
  ExpectRefused(ReadToFinish(context, sending), u"Andere Anlageart: Luft\r\nAusgewählt ist ."_s);
  ExpectRefused(ReadToTakeBack(context, sending), u"Andere Anlageart: Luft\r\nAusgewählt ist ."_s);
  backup.head.plantType.clear();
  backup.values = {{u"X"_s, u"1F00"_s, u"int"_s}};
  const SafeRun run = ReadToRestore(context, backup, unknown);
  ExpectRefused(run, u"Kein Wert davon passt zu den Definitionen."_s);
  EXPECT_EQ(run.kind, SafeKind::Restore);
  EXPECT_EQ(unknown, 1);
}

// --- an unfinished sending ---

TEST_F(SafeCommands, FinishASendingThatWasCutOffAnywhere) {
  for (int words = 0; words <= 4; ++words) {
    memory = before;
    const Sending sending = LeftBehind(words);
    SafeRun run = ReadToFinish(context, sending);
    EXPECT_EQ(run.kind, SafeKind::Finish);
    EXPECT_EQ(run.error, QString());
    ASSERT_EQ(run.values.size(), 2U);
    EXPECT_EQ(run.backup, sending.backup);
    EXPECT_EQ(ValueAt(run, 2).wanted.number, 65536);
    EXPECT_EQ(ValueAt(run, 2).before->number, 65538) << "before the sending, not what it has left";
    EXPECT_EQ(ValueAt(run, 4).before->text, u"WXYZ"_s);
    EXPECT_EQ(static_cast<int>(run.begun.size()), words);
    if (run.Chosen() > 0) WriteChosen(context, run);
    EXPECT_EQ(run.error, QString());
    EXPECT_EQ(run.Count(SafeState::Verified) + run.Count(SafeState::Equal), 2);
    EXPECT_EQ(Word(0x1F02), 1);
    EXPECT_EQ(Word(0x1F04), 0);
    EXPECT_EQ(Word(0x1F0A), 0x4344);
    EXPECT_EQ(Word(0x1F00), before.Word(0x1F00)) << "nobody wanted that";
    SafeRun back = ReadToTakeBack(context, run);
    WriteChosen(context, back);
    for (quint16 at = 0x1F00; at <= 0x1F0A; at = static_cast<quint16>(at + 2))
      EXPECT_EQ(Word(at), before.Word(at)) << words;
  }
}

TEST_F(SafeCommands, TakeBackASendingThatWasCutOffAnywhere) {
  for (int words = 1; words <= 4; ++words) {
    memory = before;
    const Sending sending = LeftBehind(words);
    SafeRun run = ReadToTakeBack(context, sending);
    EXPECT_EQ(run.kind, SafeKind::TakeBack);
    EXPECT_EQ(ValueAt(run, 2).wanted.number, 65538);
    EXPECT_EQ(ValueAt(run, 4).wanted.text, u"WXYZ"_s);
    WriteChosen(context, run);
    EXPECT_EQ(run.error, QString());
    for (quint16 at = 0x1F00; at <= 0x1F0A; at = static_cast<quint16>(at + 2))
      EXPECT_EQ(Word(at), before.Word(at)) << words;
  }
}

TEST_F(SafeCommands, FinishOneByteOfAWordAndLeaveTheOther) {
  Sending sending = LeftBehind(0);
  sending.values = {{u"N3"_s, u"1F07"_s, u"char"_s}};
  sending.wanted = {{0x1F06, 0x00FF, 0x002D}};
  sending.before = {{0x1F06, 0x1122}};
  Store(0x1F06, {0x7722});
  SafeRun run = ReadToFinish(context, sending);
  EXPECT_EQ(ValueAt(run, 3).wanted.number, 45);
  WriteChosen(context, run);
  EXPECT_EQ(AccountText(run), u"1 geprüft"_s);
  EXPECT_EQ(Word(0x1F06), 0x772D);
}

TEST_F(SafeCommands, ASendingThatCannotBeReadStaysAsItWas) {
  const Sending sending = LeftBehind(1);
  SilenceAll();
  const SafeRun run = ReadToFinish(context, sending);
  EXPECT_FALSE(run.error.isEmpty());
  EXPECT_EQ(run.Chosen(), 0);
  EXPECT_EQ(ValueAt(run, 2).before, std::nullopt);
}

TEST_F(SafeCommands, TellHowFarASendingHasCome) {
  EXPECT_EQ(UnfinishedText(module, LeftBehind(1)), u"0 von 2 Werten geschrieben"_s);
  memory = before;
  EXPECT_EQ(UnfinishedText(module, LeftBehind(2)), u"1 von 2 Werten geschrieben"_s);
}

// --- what the user decides ---

TEST_F(SafeCommands, ChooseWhatFailedAmongWhatWasChosen) {
  const SafeState states[] = {SafeState::NotRead,   SafeState::Equal,     SafeState::Different,
                              SafeState::Verified,  SafeState::Deviating, SafeState::Failed,
                              SafeState::Unverified};
  SafeRun run;
  for (const SafeState state : states) {
    SafeValue& value = run.values.emplace_back();
    value.state = state;
    value.chosen = true;
  }
  EXPECT_EQ(ChooseFailed(run), 3);
  for (std::size_t i = 0; i < run.values.size(); ++i)
    EXPECT_EQ(run.values[i].chosen, i >= 4) << i;
  run.values[4].chosen = false;
  run.values[5].sendable = false;
  EXPECT_EQ(ChooseFailed(run), 1) << "what has only changed beside them is not to be sent";
}

TEST_F(SafeCommands, TakeOverWhatIsChosen) {
  SafeRun run = ReadToReceive(context);
  ASSERT_EQ(run.Chosen(), 4);
  for (SafeValue& value : run.values)
    value.chosen = value.index == 1 || value.index == 4;
  std::vector<ValueChange> changes;
  module.OnValue = [&](const ValueChange& change) { changes.push_back(change); };
  main.tree.rebuilt = 0;
  EXPECT_EQ(TakeOverChosen(core, run), 2);
  EXPECT_EQ(module.Par[1].Wert, 0x04D2);
  EXPECT_EQ(module.Par[2].Wert, 65536);
  EXPECT_EQ(module.Par[4].WertText, u"WXYZ"_s);
  ASSERT_EQ(changes.size(), 2U);
  EXPECT_EQ(changes[0].source, ValueSource::Received);
  EXPECT_EQ(main.tree.rebuilt, 1);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Equal);
  EXPECT_EQ(ValueAt(run, 2).state, SafeState::Different);
  EXPECT_TRUE(Rests());
}

TEST_F(SafeCommands, TakeOverNothingThatWasNotRead) {
  Silence(3, 3);
  SafeRun run = ReadToReceive(context);
  ASSERT_FALSE(ValueAt(run, 1).controller);
  for (SafeValue& value : run.values)
    value.chosen = value.index == 1;
  main.tree.rebuilt = 0;
  EXPECT_EQ(TakeOverChosen(core, run), 0);
  EXPECT_EQ(module.Par[1].Wert, 1500);
  EXPECT_EQ(main.tree.rebuilt, 0);
}

TEST_F(SafeCommands, HaveTitles) {
  EXPECT_EQ(SafeTitle(SafeKind::Send), u"Sicher senden"_s);
  EXPECT_EQ(SafeTitle(SafeKind::Receive), u"Sicher empfangen"_s);
  EXPECT_EQ(SafeTitle(SafeKind::Verify), u"Prüfen"_s);
  EXPECT_EQ(SafeTitle(SafeKind::Compare), u"Prüfen"_s);
  EXPECT_EQ(SafeTitle(SafeKind::Restore), u"Wiederherstellen"_s);
  EXPECT_EQ(SafeTitle(SafeKind::Finish), u"Zu Ende senden"_s);
  EXPECT_EQ(SafeTitle(SafeKind::TakeBack), u"Zurücknehmen"_s);
}

}  // namespace
}  // namespace kalivor::test
