// The report: lines, their continuation, repaints and the two buttons.
#include "core/Report.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeForms.h"
#include "fakes/NullForms.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

class ReportTest : public testing::Test {
 protected:
  Module1 module;
  PlainReportView view;
  FakeEvents events;
  FakeClock clock;
  TH timers{clock};
  Report report{module, view, events, timers};
};

TEST_F(ReportTest, IsEmptyAndPaintedOnceAtFirst) {
  EXPECT_EQ(report.Text(), QString());
  EXPECT_EQ(view.lines, QStringList());
  EXPECT_EQ(events.processed, 1);
}

TEST_F(ReportTest, EveryLineEndsWithALineBreak) {
  report.Add(u"a"_s);
  EXPECT_EQ(report.Text(), u"a\r\n"_s);
  report.Add(u"b"_s);
  EXPECT_EQ(report.Text(), u"a\r\nb\r\n"_s);
  EXPECT_EQ(view.lines, (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(ReportTest, AContinuationStaysInTheLastLine) {
  report.Add(u"a"_s);
  report.AddC(u"b"_s);
  report.AddC(u"c"_s);
  EXPECT_EQ(report.Text(), u"abc\r\n"_s);
  EXPECT_EQ(view.lines, QStringList{u"abc"_s});
}

TEST_F(ReportTest, AnEmptyLineCanBeContinued) {
  report.Add(QString());
  report.AddC(u"."_s);
  EXPECT_EQ(report.Text(), u".\r\n"_s);
}

TEST_F(ReportTest, AnEmptyReportCannotBeContinued) {
  EXPECT_EQ(ThrownKind([&] { report.AddC(u"b"_s); }), RuntimeError::Kind::InvalidArgument);
  report.Add(u"a"_s);
  report.OKButton_Click();
  EXPECT_EQ(ThrownKind([&] { report.AddC(u"b"_s); }), RuntimeError::Kind::InvalidArgument);
  EXPECT_EQ(report.Text(), QString());
}

TEST_F(ReportTest, EveryLineIsPaintedAtOnce) {
  events.processed = 0;
  for (int i = 1; i <= 3; ++i) {
    report.Add(u"a"_s);
    EXPECT_EQ(events.processed, i);
  }
}

TEST_F(ReportTest, ContinuationsArePaintedAtMostTwiceASecond) {
  report.Add(u"a"_s);
  events.processed = 0;
  constexpr int kDots = 160;
  for (int i = 0; i < kDots; ++i) {
    clock.Advance(0.0625);  // an exact eighth of the pause
    report.AddC(u"."_s);
    EXPECT_EQ(events.processed, (i + 1) / 8) << i;
  }
  EXPECT_EQ(view.lines.last().size(), 1 + kDots) << "no dot is lost";
}

TEST_F(ReportTest, ANewLinePutsTheNextRepaintOff) {
  report.Add(u"a"_s);
  clock.Advance(0.4);
  report.Add(u"b"_s);
  events.processed = 0;
  clock.Advance(0.4);
  report.AddC(u"."_s);
  EXPECT_EQ(events.processed, 0);
  clock.Advance(0.2);
  report.AddC(u"."_s);
  EXPECT_EQ(events.processed, 1);
}

TEST_F(ReportTest, AbortRequestsItAndLeavesTheLinesVisible) {
  report.Show();
  report.Add(u"a"_s);
  report.Command_Abbruch_Click();
  EXPECT_EQ(module.Abbruch, kTrue);
  EXPECT_TRUE(view.visible);
  EXPECT_EQ(report.Text(), u"a\r\n"_s);
  EXPECT_EQ(view.lines, QStringList{u"a"_s});
}

TEST_F(ReportTest, AnAbortArrivesWhileALineIsPainted) {
  events.onProcess = [&] { report.Command_Abbruch_Click(); };
  report.Add(u"a"_s);
  EXPECT_EQ(module.Abbruch, kTrue);
}

TEST_F(ReportTest, OkClearsAndHides) {
  report.Show();
  report.Add(u"a"_s);
  report.OKButton_Click();
  EXPECT_FALSE(view.visible);
  EXPECT_EQ(report.Text(), QString());
  EXPECT_EQ(view.lines, QStringList());
  EXPECT_EQ(module.Abbruch, kFalse);
}

TEST_F(ReportTest, ShowsAndSwitchesItsButtons) {
  report.Show();
  EXPECT_TRUE(view.visible);
  report.SetOkEnabled(false);
  report.SetAbortEnabled(true);
  EXPECT_FALSE(view.okEnabled);
  EXPECT_TRUE(view.abortEnabled);
}

}  // namespace
}  // namespace kalivor::test
