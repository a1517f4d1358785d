// Reading the checked parameters into a set: what is asked, what stays as it was, how it ends.
#include "core/ControllerValues.h"

#include "core/Busy.h"
#include "core/Refresh.h"
#include "fakes/Installation.h"
#include "sim/Telegram.h"

namespace kalivor::test {
namespace {

class FakeProgress final : public ProgressForm {
 public:
  struct Called {
    int done = 0;
    int total = 0;
    double remaining_s = 0;
    double at = 0;  // seconds since the clock's start
  };

  explicit FakeProgress(const FakeClock& clock) : clock_(clock) {}

  bool visible = false;
  QString work;
  std::vector<Called> steps;

  void Show(const QString& text) override {
    visible = true;
    work = text;
  }
  void Step(int done, int total, double remaining_s) override {
    EXPECT_TRUE(visible);
    steps.push_back({done, total, remaining_s, clock_.passed});
  }
  void Hide() override { visible = false; }

 private:
  const FakeClock& clock_;
};

class ControllerValues : public testing::Test, protected Installation {
 protected:
  FakeProgress progress{clock};

  ControllerValues() {
    StartWithFiles();
    report.lines = {u"Bisheriges"_s};
    main.tree.rebuilt = 0;
  }

  /// Has `count` int parameters, whose values are their numbers.
  void SetParameters(int count) {
    QStringList lines;
    for (int i = 0; i < count; ++i) {
      const QString address = QString::number(0x2000 + 2 * i, 16).toUpper();
      lines.append(u"G  P%1  0  9  0  -  0  0  int  %2  P%1  -  -"_s.arg(i + 1).arg(address));
      Store(static_cast<quint16>(0x2000 + 2 * i), {static_cast<quint16>(i + 1)});
    }
    SetDefinitions(u"A.TXT"_s, lines);
    Refresh(core, 5);
    line.sent.clear();
    main.tree.rebuilt = 0;
  }

  SetResult Read() { return ReadControllerValues(core, progress); }

  /// What a reading must leave alone.
  void ExpectUntouched(const Module1& before) const {
    for (int i = 0; i < module.ParCount; ++i)
      EXPECT_EQ(module.Par[i], before.Par[i]) << i;
    EXPECT_EQ(module.ParNode, before.ParNode);
    EXPECT_EQ(module.VersionList.Position(), before.VersionList.Position());
    EXPECT_EQ(module.PlantTypeList.Position(), before.PlantTypeList.Position());
    EXPECT_EQ(report.lines, QStringList{u"Bisheriges"_s});
    EXPECT_FALSE(report.shown);
    EXPECT_EQ(main.tree.rebuilt, 0);
    EXPECT_TRUE(Rests());
    EXPECT_FALSE(progress.visible);
  }
};

TEST_F(ControllerValues, ReadsTheCheckedOnesAndNothingElse) {
  module.ParNode[3] = kFalse;
  const Module1 before = module;
  const SetResult read = Read();
  ASSERT_TRUE(read.Ok()) << read.error.toStdString();
  EXPECT_FALSE(read.aborted);
  EXPECT_EQ(Lines(Requests()),
            u"v00 | R2000 | R1F00 | R1F00 | R1F02 | R1F04 | R1F04 | R1F08 | R1F08 | R1F0A | R1F0A | v00 | "
            "R2000"_s)
      << "what differs is read twice, and the controller identified at both ends";
  EXPECT_EQ(read.set.origin, Origin::Controller);
  EXPECT_EQ(read.set.name, u"Regler"_s);
  EXPECT_EQ(read.set.version, u"AB1-123.4"_s);
  EXPECT_TRUE(read.set.partial);
  ASSERT_EQ(read.set.values.size(), 3U);
  EXPECT_EQ(read.set.values[0].value.number, 0x04D2);
  EXPECT_EQ(read.set.values[1].value.number, 65538);
  EXPECT_EQ(read.set.values[2].value.text, u"WXYZ"_s);
  EXPECT_EQ(read.set.values[2].Variable, u"N4"_s);
  EXPECT_EQ(read.set.values[2].VarAdresse, u"1F08"_s);
  ExpectUntouched(before);
  EXPECT_EQ(module.ReglerVersion, u"AB1-123.4"_s);
}

TEST_F(ControllerValues, ReadsWhatThePlantTypeHides) {
  module.PlantTypeList.Select(1);
  const SetResult read = Read();
  EXPECT_EQ(read.set.values.size(), 4U);
  EXPECT_EQ(read.set.values.at(2).value.number, 0x22);
}

TEST_F(ControllerValues, KeepsTheNumbersOfArrayElements) {
  module.Par[2].Variable = u"N1"_s;
  module.ParNode[1] = kFalse;
  EXPECT_EQ(Read().set.values.at(0).element, 1);
}

TEST_F(ControllerValues, WhatCannotBeReadIsNotRead) {
  module.SetNumber(2, 77, ValueSource::Edited);
  const Module1 before = module;
  Silence(5, 3);  // the first word of the long, all its attempts
  const SetResult read = Read();
  ASSERT_TRUE(read.Ok());
  ASSERT_EQ(read.set.values.size(), 4U);
  EXPECT_TRUE(read.set.values[0].read);
  EXPECT_FALSE(read.set.values[1].read);
  EXPECT_EQ(read.set.values[1].value, ParameterValue()) << "no old value";
  EXPECT_TRUE(read.set.values[2].read);
  ExpectUntouched(before);
}

TEST_F(ControllerValues, ATextThatIsReadInPartIsNotRead) {
  for (const int checked : {1, 2, 3})
    module.ParNode[checked] = kFalse;
  Silence(5, 3);  // its second word
  const SetResult read = Read();
  EXPECT_FALSE(read.set.values.at(0).read);
  EXPECT_EQ(read.set.values.at(0).value.text, QString());
}

TEST_F(ControllerValues, WithoutAddressNothingIsAsked) {
  module.Par[2].VarAdresse.clear();
  const SetResult read = Read();
  EXPECT_FALSE(read.set.values.at(1).read);
  EXPECT_FALSE(Requests().contains(u"R1F02"_s));
  EXPECT_EQ(progress.steps.back().done, 4);
}

TEST_F(ControllerValues, UnknownTypesAreLeftOut) {
  module.Par[2].Typ = u"byte"_s;
  const SetResult read = Read();
  EXPECT_EQ(read.set.values.size(), 3U);
  EXPECT_EQ(progress.steps.back().total, 3);
}

TEST_F(ControllerValues, ReadsNothingWhereNothingIsChecked) {
  for (int i = 0; i <= 4; ++i)
    module.ParNode[i] = kFalse;
  const SetResult read = Read();
  EXPECT_TRUE(read.Ok());
  EXPECT_TRUE(read.set.values.empty());
  EXPECT_EQ(Lines(Requests()), u"v00 | R2000 | v00 | R2000"_s);
}

// --- no set ---

TEST_F(ControllerValues, WithoutAnAnswerThereIsNoSet) {
  const Module1 before = module;
  SilenceAll();
  const SetResult read = Read();
  EXPECT_TRUE(read.error.startsWith(u"ERROR: "_s)) << read.error.toStdString();
  EXPECT_EQ(Lines(Requests()), u"v00 | v00 | v00"_s) << "at the present rate and at both others";
  ExpectUntouched(before);
}

TEST_F(ControllerValues, AnotherVersionIsNotRead) {
  module.VersionList.Select(1);
  line.sent.clear();
  main.tree.rebuilt = 0;
  const Module1 before = module;
  const SetResult read = Read();
  EXPECT_EQ(read.error, u"Andere ReglerVersion: AB1-123.4\r\nAusgewählt ist AB1-124.0."_s);
  EXPECT_EQ(Lines(Requests()), u"v00"_s);
  ExpectUntouched(before);
}

TEST(ControllerValuesOf, AnUnknownVersionAreNotRead) {
  Installation site(u"ZZ9-999.9"_s);
  site.StartWithFiles();
  FakeProgress progress(site.clock);
  EXPECT_EQ(ReadControllerValues(site.core, progress).error, u"Unbekannte ReglerVersion: ZZ9-999.9"_s);
  EXPECT_EQ(Lines(site.Requests()), u"v00"_s);
  EXPECT_TRUE(site.Rests());
}

TEST_F(ControllerValues, APortThatCannotBeOpenedIsNoAnswer) {
  line.openable = false;
  EXPECT_FALSE(Read().Ok());
  EXPECT_TRUE(Rests());
}

TEST_F(ControllerValues, IsRefusedWhileAnOperationIsUnderWay) {
  const WaitingGuard waiting(core);
  EXPECT_EQ(Read().error, u"Es wird noch gearbeitet; die Werte des Reglers wurden nicht gelesen."_s);
  EXPECT_TRUE(Requests().isEmpty());
  EXPECT_TRUE(progress.work.isEmpty()) << "the form does not show";
}

TEST_F(ControllerValues, AReplyThatIsNoNumberIsNotRead) {
  model.OnResponse = [](const QByteArray& request, sim::Response& response) {
    if (request.contains("R1F00")) response.chunks = {{0, sim::Sealed("10102RG000")}};
  };
  const Module1 prepared = module;
  EXPECT_FALSE(Read().set.values.at(0).read);
  ExpectUntouched(prepared);
}

TEST_F(ControllerValues, AControllerThatFallsSilentIsNoSet) {
  Silence(5, 100);
  EXPECT_EQ(Read().error, u"Der Regler antwortet nicht mehr.\r\nkein Empfang"_s);
  EXPECT_TRUE(Rests());
}

// --- abort ---

TEST_F(ControllerValues, IsBusyMeanwhileAndCanBeAborted) {
  SetParameters(100);
  bool busy = false;
  events.onProcess = [&] {
    busy = busy || (!main.enabled && main.state == u"Busy"_s && module.BusyDepth == 1);
    if (!progress.steps.empty()) module.Abbruch = kTrue;
  };
  const Module1 before = module;
  const SetResult read = Read();
  EXPECT_TRUE(busy);
  EXPECT_TRUE(read.Ok());
  EXPECT_TRUE(read.aborted);
  ASSERT_EQ(static_cast<int>(read.set.values.size()), progress.steps.back().done);
  EXPECT_LT(read.set.values.size(), 100U);
  EXPECT_EQ(module.Abbruch, kFalse) << "the request is done with";
  ExpectUntouched(before);
}

TEST_F(ControllerValues, AnAbortBehindTheLastOneIsNone) {
  SetParameters(1);
  events.onProcess = [&] {
    if (!progress.steps.empty()) module.Abbruch = kTrue;
  };
  EXPECT_FALSE(Read().aborted);
}

// --- progress ---

TEST_F(ControllerValues, ShowsTheCountAndTheTimeThatIsLeft) {
  SetParameters(200);
  events.processed = 0;
  const double begun = clock.passed;
  ASSERT_TRUE(Read().Ok());
  const double needed = clock.passed - begun;
  EXPECT_EQ(progress.work, u"Regler lesen"_s);
  ASSERT_GT(progress.steps.size(), 10U);
  EXPECT_EQ(progress.steps.back().done, 200);
  EXPECT_EQ(progress.steps.back().total, 200);
  EXPECT_EQ(progress.steps.back().remaining_s, 0);
  for (std::size_t i = 1; i + 1 < progress.steps.size(); ++i) {
    EXPECT_GE(progress.steps[i].at - progress.steps[i - 1].at, 0.1) << i;
    EXPECT_NEAR(progress.steps[i].remaining_s, begun + needed - progress.steps[i].at, 0.1 * needed) << i;
  }
  EXPECT_EQ(events.processed, static_cast<int>(progress.steps.size()) + 1) << "and once for the form itself";
}

TEST_F(ControllerValues, MidnightMakesNoTimeNegative) {
  SetParameters(200);
  clock.now = 86399.5;
  ASSERT_TRUE(Read().Ok());
  for (const FakeProgress::Called& step : progress.steps)
    EXPECT_GE(step.remaining_s, 0);
}

}  // namespace
}  // namespace kalivor::test
