// The report dialog.
#include <QScrollBar>

#include <QWindow>

#include "gui/GuiFixture.h"
#include "platform/gui/FixedFont.h"

namespace kalivor::test {
namespace {

class ReportTest : public GuiTest {
 protected:
  [[nodiscard]] ui::DialogReport& Dialog() { return desktop->reportDialog; }
  [[nodiscard]] QPlainTextEdit& TextBox() { return In<QPlainTextEdit>(Dialog(), u"TextBox"_s); }
  [[nodiscard]] bool Enabled(const QString& button) { return In<QPushButton>(Dialog(), button).isEnabled(); }
};

TEST_F(ReportTest, HasItsControls) {
  Start();
  EXPECT_EQ(Dialog().objectName(), u"DialogReport"_s);
  EXPECT_EQ(Dialog().windowTitle(), u"Report"_s);
  EXPECT_EQ(In<QPushButton>(Dialog(), u"Command_Abbruch"_s).text(), u"Abbrechen"_s);
  EXPECT_EQ(In<QPushButton>(Dialog(), u"CommandPrint"_s).text(), u"Print"_s);
  EXPECT_EQ(In<QPushButton>(Dialog(), u"OKButton"_s).text(), u"OK"_s);
  EXPECT_EQ(TextBox().font().family(), platform::FixedFont().family());
  EXPECT_TRUE(TextBox().isReadOnly());
  EXPECT_EQ(TextBox().accessibleName(), u"Report"_s);
  EXPECT_EQ(ReportText(), QString()) << "cleared when it is loaded";
  EXPECT_FALSE(Dialog().isVisible());
  EXPECT_FALSE(Dialog().isModal());
}

TEST_F(ReportTest, ADialogThatNobodyHasLoadedHoldsItsDesignedText) {
  const ui::DialogReport fresh;
  EXPECT_EQ(fresh.findChild<QPlainTextEdit*>(u"TextBox"_s)->toPlainText(), u"Textbox\n"_s);
}

TEST_F(ReportTest, AddStartsALineAndAddCContinuesIt) {
  Start();
  desktop->report.Add(u"a"_s);
  desktop->report.AddC(u"b"_s);
  desktop->report.AddC(u"c"_s);
  EXPECT_EQ(desktop->report.Text(), u"abc\r\n"_s);
  EXPECT_EQ(ReportText(), u"abc\n"_s);
  desktop->report.Add(u"d"_s);
  EXPECT_EQ(ReportText(), u"abc\nd\n"_s);
}

TEST_F(ReportTest, AddCOnAnEmptyReportIsRefused) {
  Start();
  EXPECT_THROW(desktop->report.AddC(u"x"_s), RuntimeError);
  EXPECT_EQ(ReportText(), QString());
}

TEST_F(ReportTest, ScrollsToTheLastLine) {
  Start();
  desktop->report.Show();
  for (int i = 0; i < 200; ++i)
    desktop->report.Add(u"Zeile %1"_s.arg(i));
  EXPECT_EQ(TextBox().verticalScrollBar()->value(), TextBox().verticalScrollBar()->maximum());
  EXPECT_GT(TextBox().verticalScrollBar()->maximum(), 0);
}

// Long lines are shown as several; nothing is cut.
TEST_F(ReportTest, ALongLineOfDotsStaysReadable) {
  Start();
  desktop->report.Show();
  desktop->report.Add(u"Empfangen.."_s);
  for (int i = 0; i < 2000; ++i)
    desktop->report.AddC(u"."_s);
  QCoreApplication::processEvents();
  EXPECT_EQ(TextBox().horizontalScrollBar()->maximum(), 0);
  EXPECT_EQ(ReportText().size(), 11 + 2000 + 1);
}

// Lines are painted at once, dots at most twice a second.
TEST_F(ReportTest, LetsTheWindowPaintItselfAsSpecified) {
  Start();
  int passes = 0;
  events.onPending = [&passes] { ++passes; };
  desktop->report.Add(u"a"_s);
  EXPECT_EQ(passes, 1);
  for (int i = 0; i < 100; ++i)
    desktop->report.AddC(u"."_s);
  EXPECT_EQ(passes, 1) << "no time has passed";
  clock.Advance(0.5);
  desktop->report.AddC(u"."_s);
  desktop->report.AddC(u"."_s);
  EXPECT_EQ(passes, 2);
}

// Counts the characters that the document changes, as rewriting the text would make long reports slow.
TEST_F(ReportTest, AppendingTouchesTheEndOnly) {
  Start();
  for (int i = 0; i < 1000; ++i)
    desktop->report.Add(u"Zeile"_s);
  qint64 touched = 0;
  QObject::connect(TextBox().document(), &QTextDocument::contentsChange, &TextBox(),
                   [&touched](int, int removed, int added) { touched += removed + added; });
  desktop->report.Add(u"abc"_s);
  for (int i = 0; i < 10; ++i)
    desktop->report.AddC(u"."_s);
  EXPECT_LE(touched, 2 * (4 + 10));
}

TEST_F(ReportTest, ButtonsFollowTheBusyState) {
  Start();
  EXPECT_TRUE(Enabled(u"OKButton"_s));
  EXPECT_FALSE(Enabled(u"Command_Abbruch"_s));
  EXPECT_TRUE(Enabled(u"CommandPrint"_s));
  const BusyGuard busy(desktop->core);
  EXPECT_FALSE(Enabled(u"OKButton"_s));
  EXPECT_TRUE(Enabled(u"Command_Abbruch"_s));
  EXPECT_FALSE(Enabled(u"CommandPrint"_s));
}

TEST_F(ReportTest, OkClearsAndHides) {
  Start();
  desktop->report.Show();
  desktop->report.Add(u"a"_s);
  Click(Dialog(), u"OKButton"_s);
  EXPECT_FALSE(Dialog().isVisible());
  EXPECT_EQ(ReportText(), QString());
  EXPECT_EQ(desktop->report.Text(), QString());
}

TEST_F(ReportTest, AbortAsksToStopAndKeepsTheLines) {
  Start();
  desktop->report.Show();
  const BusyGuard busy(desktop->core);
  desktop->report.Add(u"a"_s);
  Click(Dialog(), u"Command_Abbruch"_s);
  EXPECT_EQ(desktop->module.Abbruch, kTrue);
  EXPECT_TRUE(Dialog().isVisible());
  EXPECT_EQ(ReportText(), u"a\n"_s);
}

class ReportClosing : public ReportTest, public testing::WithParamInterface<bool> {
 protected:
  void CloseIt() {
    if (GetParam()) {
      Dialog().close();
    } else {
      QTest::keyClick(&Dialog(), Qt::Key_Escape);
    }
  }
};

TEST_P(ReportClosing, IsOkWhileIdle) {
  Start();
  desktop->report.Show();
  desktop->report.Add(u"a"_s);
  CloseIt();
  EXPECT_FALSE(Dialog().isVisible());
  EXPECT_EQ(desktop->report.Text(), QString());
}

TEST_P(ReportClosing, IsAbortWhileBusy) {
  Start();
  desktop->report.Show();
  const BusyGuard busy(desktop->core);
  desktop->report.Add(u"a"_s);
  CloseIt();
  EXPECT_TRUE(Dialog().isVisible());
  EXPECT_EQ(desktop->module.Abbruch, kTrue);
  EXPECT_EQ(ReportText(), u"a\n"_s);
}

INSTANTIATE_TEST_SUITE_P(ByFrameAndByEscape, ReportClosing, testing::Bool());

TEST_F(ReportTest, PrintPrintsTheText) {
  Start();
  desktop->report.Show();
  desktop->report.Add(u"a"_s);
  desktop->report.Add(u"b"_s);
  Click(Dialog(), u"CommandPrint"_s);
  EXPECT_EQ(printed, QStringList(u"a\r\nb\r\n"_s));
  EXPECT_EQ(ReportText(), u"a\nb\n"_s);
}

TEST_F(ReportTest, APrintThatFailsShowsABoxAndLosesNothing) {
  Start();
  desktop->report.Show();
  desktop->report.Add(u"a"_s);
  onPrint = [] { throw RuntimeError(RuntimeError::Kind::FileError, u"Die Datei"_s); };
  Click(Dialog(), u"CommandPrint"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1);
  EXPECT_EQ(boxes[0].text, u"Die Datei"_s);
  EXPECT_TRUE(Dialog().isVisible());
  EXPECT_EQ(ReportText(), u"a\n"_s);
  onPrint = {};
  Click(Dialog(), u"CommandPrint"_s);
  EXPECT_EQ(printed, QStringList(u"a\r\n"_s));
}

TEST_F(ReportTest, StaysAboveTheMainWindowWithoutBeingItsChild) {
  Start();
  desktop->report.Show();
  EXPECT_EQ(Dialog().parentWidget(), nullptr);
  EXPECT_EQ(Dialog().windowHandle()->transientParent(), desktop->main.windowHandle());
}

}  // namespace
}  // namespace kalivor::test
