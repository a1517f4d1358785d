// What is done with values is told once at its end, and what was not done is not told.
#include <gtest/gtest.h>

#include "commands/TransferCommands.h"
#include "core/Busy.h"
#include "core/ControllerValues.h"
#include "core/ValueFiles.h"
#include "fakes/SafeSite.h"

namespace kalivor::test {
namespace {

using Outcome = ParameterResult::Outcome;

/// A deed, and copies of what it pointed to.
struct ToldDeed {
  Deed deed;
  std::vector<ParameterResult> results;
  std::vector<SafeValue> values;
};

class Deeds : public testing::Test, protected SafeSite {
 protected:
  Deeds() {
    module.Userpath = u"/werte"_s;
    module.Dateiname = u"/werte/a.qpf"_s;
    StartWithFiles();
    core.OnDeed = [this](const Deed& deed) {
      ToldDeed& kept = told.emplace_back(ToldDeed{deed, {}, {}});
      if (deed.walk != nullptr) kept.results = deed.walk->results;
      if (deed.run != nullptr) kept.values = deed.run->values;
    };
  }

  /// The one deed told since the last look.
  ToldDeed Told() {
    EXPECT_EQ(told.size(), 1u);
    ToldDeed only = told.empty() ? ToldDeed() : told.front();
    told.clear();
    return only;
  }

  void ExpectTold(DeedKind kind, bool aborted = false) {
    const ToldDeed deed = Told();
    EXPECT_EQ(deed.deed.kind, kind);
    EXPECT_EQ(deed.deed.aborted, aborted);
  }

  /// The tree cannot be built any more: a run-time error behind every walk.
  void SpoilTree() { module.Par[1].Zahl1 = 10; }

  std::vector<ToldDeed> told;
};

TEST_F(Deeds, PlainTransfersAreToldWithTheirResults) {
  CommandEmpfangen_Click(core);
  ToldDeed deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Received);
  EXPECT_FALSE(deed.deed.aborted);
  ASSERT_EQ(deed.results.size(), 4u);
  EXPECT_EQ(deed.results[0].outcome, Outcome::Received);

  module.SetNumber(1, 7, ValueSource::Edited);
  CommandVergleichen_Click(core);
  deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Compared);
  EXPECT_EQ(deed.results[0].outcome, Outcome::Differs);

  CommandSenden_Click(core);
  deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Sent);
  EXPECT_EQ(deed.results[0].outcome, Outcome::Sent);
  EXPECT_TRUE(deed.deed.before.empty());
}

TEST_F(Deeds, TheDoorsOfTheCommandLineTellAsWell) {
  TransferOutcome outcome;
  RunReceive(core, outcome);
  ExpectTold(DeedKind::Received);
}

TEST_F(Deeds, ATransferThatDidNotTakePlaceIsNotTold) {
  SilenceAll();
  CommandEmpfangen_Click(core);
  CommandVergleichen_Click(core);
  CommandSenden_Click(core);
  EXPECT_TRUE(told.empty());
}

TEST_F(Deeds, ATransferOfNothingIsNotTold) {
  for (int i = 1; i < module.ParCount; ++i)
    module.ParNode[i] = kFalse;
  CommandEmpfangen_Click(core);
  EXPECT_TRUE(told.empty());
}

TEST_F(Deeds, AnAbortedTransferIsToldWithWhatWasDone) {
  model.OnResponse = [this](const QByteArray& request, sim::Response&) {
    if (request.contains("1F02")) module.Abbruch = kTrue;
  };
  CommandEmpfangen_Click(core);
  const ToldDeed deed = Told();
  EXPECT_TRUE(deed.deed.aborted);
  EXPECT_EQ(deed.results.size(), 2u);
}

TEST_F(Deeds, ARuntimeErrorIsAnAbortAndPasses) {
  SpoilTree();
  EXPECT_THROW(CommandEmpfangen_Click(core), RuntimeError);
  ExpectTold(DeedKind::Received, true);
  EXPECT_THROW(CommandStandard_Click(core), RuntimeError);
  ExpectTold(DeedKind::Reset, true);
  files.files[u"/werte/a.qpf"_s] = {ValueFileImage(module, u"AB1-123.4"_s), {}};
  EXPECT_THROW(ReadValueFile(core), RuntimeError);
  ExpectTold(DeedKind::Loaded, true);
}

TEST_F(Deeds, ASendingThatReadsTheOtherPlantTypeHasReceived) {
  memory.SetWord(0x2000, 1);
  choice.answers = {2};
  CommandSenden_Click(core);
  const ToldDeed deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Received);
  EXPECT_FALSE(deed.deed.aborted);
  EXPECT_EQ(deed.results.size(), 4u);
}

TEST_F(Deeds, ASendingThatTheUserForgoesIsNotTold) {
  memory.SetWord(0x2000, 1);
  choice.answers = {kNoAnswer};
  CommandSenden_Click(core);
  EXPECT_TRUE(told.empty());
}

TEST_F(Deeds, StandardValuesAreToldWithThoseBefore) {
  module.SetNumber(1, 7, ValueSource::Edited);
  CommandStandard_Click(core);
  const ToldDeed deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Reset);
  ASSERT_EQ(deed.deed.before.size(), 5u);
  EXPECT_EQ(deed.deed.before[1].number, 7);
}

TEST_F(Deeds, FilesAreToldWithTheirPath) {
  ASSERT_TRUE(WriteValueFile(core));
  ToldDeed deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Saved);
  EXPECT_EQ(deed.deed.file, u"/werte/a.qpf"_s);

  module.SetNumber(1, 7, ValueSource::Edited);
  ASSERT_TRUE(ReadValueFile(core));
  deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Loaded);
  EXPECT_EQ(deed.deed.file, u"/werte/a.qpf"_s);
  EXPECT_EQ(deed.deed.before[1].number, 7);
  EXPECT_EQ(module.Par[1].Wert, 1500);
}

TEST_F(Deeds, AFileOfAnotherVersionHasNoValuesBefore) {
  files.files[u"/werte/a.qpf"_s] = {ValueFileImage(module, u"AB1-124.0"_s), {}};
  choice.answers = {2};
  ASSERT_TRUE(ReadValueFile(core));
  const ToldDeed deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Loaded);
  EXPECT_TRUE(deed.deed.before.empty());
}

TEST_F(Deeds, FilesThatFailAreNotTold) {
  EXPECT_FALSE(ReadValueFile(core));
  files.files[u"/werte/a.qpf"_s] = {ValueFileImage(module, u"unbekannt"_s), {}};
  EXPECT_FALSE(ReadValueFile(core));
  files.writeError = u"Platte voll."_s;
  EXPECT_FALSE(WriteValueFile(core));
  EXPECT_EQ(TakeBoxes(box).size(), 3);
  EXPECT_TRUE(told.empty());
}

TEST_F(Deeds, ASafeSendingIsToldWhenItHasWritten) {
  SafeRun run = ReadToSend(context);
  EXPECT_TRUE(told.empty()) << "the user still chooses";
  WriteChosen(context, run);
  const ToldDeed deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::SentSafely);
  EXPECT_FALSE(deed.deed.aborted);
  EXPECT_EQ(deed.values.front().state, SafeState::Verified);

  SafeRun back = ReadToTakeBack(context, run);
  WriteChosen(context, back);
  ExpectTold(DeedKind::Restored);
}

TEST_F(Deeds, ASafeSendingThatDidNotBeginIsNotTold) {
  SafeRun run = ReadToSend(context);
  SilenceAll();
  WriteChosen(context, run);
  EXPECT_FALSE(run.error.isEmpty());
  EXPECT_TRUE(told.empty());
}

TEST_F(Deeds, ASafeSendingThatLosesTheControllerIsAnAbort) {
  SafeRun run = ReadToSend(context);
  model.OnResponse = [this](const QByteArray& request, sim::Response&) {
    if (request.contains("W1F")) SilenceAll();
  };
  WriteChosen(context, run);
  ExpectTold(DeedKind::SentSafely, true);
}

TEST_F(Deeds, ASafeReceivingIsToldWhenItIsTakenOver) {
  SafeRun run = ReadToReceive(context);
  EXPECT_TRUE(told.empty());
  EXPECT_EQ(TakeOverChosen(core, run), 4);
  const ToldDeed deed = Told();
  EXPECT_EQ(deed.deed.kind, DeedKind::Received);
  EXPECT_EQ(deed.values.size(), 4u);
}

TEST_F(Deeds, CheckingAndTheListsComparisonHaveCompared) {
  (void)ReadToVerify(context);
  EXPECT_EQ(told.at(0).values.size(), 4u);
  ExpectTold(DeedKind::Compared);
  EXPECT_TRUE(ReadControllerValues(core, progress).Ok());
  EXPECT_EQ(told.at(0).values.size(), 4u);
  ExpectTold(DeedKind::Compared);
  SilenceAll();
  (void)ReadToVerify(context);
  EXPECT_FALSE(ReadControllerValues(core, progress).Ok());
  EXPECT_TRUE(told.empty());
}

}  // namespace
}  // namespace kalivor::test
