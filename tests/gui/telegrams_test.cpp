// The window with the telegrams, and the quality of the line in it.
#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTableView>

#include "core/LineHint.h"
#include "gui/GuiFixture.h"
#include "ui/line/TelegramsWindow.h"

namespace kalivor::test {
namespace {

using ui::TelegramsModel;

class TelegramsTest : public GuiTest {
 protected:
  void Show() { Main<QAction>(u"mnuWerkzeugeTelegramme"_s).trigger(); }
  ui::TelegramsWindow& Window() { return *desktop->telegrams; }
  QTableView& Table() { return In<QTableView>(Window(), u"table"_s); }
  QAbstractItemModel& Model() { return *Table().model(); }
  QLabel& Count() { return In<QLabel>(Window(), u"count"_s); }
  QString Cell(int row, int column) { return Model().index(row, column).data().toString(); }
  QStringList Column(int column) {
    QStringList cells;
    for (int row = 0; row < Model().rowCount(); ++row)
      cells << Cell(row, column);
    return cells;
  }
  void Choose(int filter) { In<QComboBox>(Window(), u"filter"_s).setCurrentIndex(filter); }
  void Search(const QString& text) { In<QLineEdit>(Window(), u"search"_s).setText(text); }
  void Receive() { Click(desktop->main, u"CommandEmpfangen"_s); }
  /// Lets the window look at what has come.
  void Live() { QTest::qWait(250); }
  ExchangeLog& Log() { return desktop->wiring.host.Exchanges; }
  // As the user presses it: shortcuts go first.
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    Window().activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &Window(); }));
    QTest::keyClick(Window().windowHandle(), key, modifiers);
  }
  void Fill(int count) {
    const PortRecord port{kFalse, 1, kControllerProtocol, 1, u"9600,o,7,1"_s};
    for (int i = 0; i < count; ++i) {
      Log().Begin(port, u"#0102R1F000F\r"_s);
      Log().Received("10102R04D220\r");
      Log().End(u"10102R04D220\r"_s, true, {});
      Log().Settle();
    }
  }
};

TEST_F(TelegramsTest, WhatWasSentBeforeItWasOpenedIsThere) {
  Start();
  Receive();
  const auto sent = line->sent.count('\r');
  ASSERT_GT(sent, 5);
  Show();
  ASSERT_EQ(Model().rowCount(), 2 * sent);
  EXPECT_EQ(Cell(0, TelegramsModel::Number), u"1");
  EXPECT_EQ(Cell(0, TelegramsModel::Direction), u"Anfrage");
  EXPECT_EQ(Cell(0, TelegramsModel::Attempt), u"1");
  EXPECT_EQ(Cell(0, TelegramsModel::Duration), u"");
  EXPECT_EQ(Cell(0, TelegramsModel::Meaning), u"Gerät 1: Versionsabfrage");
  EXPECT_TRUE(Cell(0, TelegramsModel::Characters).startsWith(u"#0102v00BC"));
  EXPECT_EQ(Cell(1, TelegramsModel::Direction), u"Antwort");
  EXPECT_EQ(Cell(1, TelegramsModel::Duration), u"0");
  EXPECT_EQ(Cell(1, TelegramsModel::Meaning), u"Version AB1-123.4");
  EXPECT_TRUE(Column(TelegramsModel::Meaning).contains(u"Gerät 1: Lesen 1F00, Drehzahl"));
  EXPECT_TRUE(Column(TelegramsModel::Meaning).contains(u"Drehzahl = 150.0 1/m"));
  EXPECT_EQ(Count().text(), u"%1 Anfragen"_s.arg(sent));
  EXPECT_EQ(Window().windowTitle(), u"Telegramme");
  EXPECT_EQ(Table().accessibleName(), u"Telegramme");
}

TEST_F(TelegramsTest, OpeningItSendsNothing) {
  Start();
  const int openings = line->openings;
  Show();
  Live();
  EXPECT_EQ(line->openings, openings);
  EXPECT_TRUE(line->sent.isEmpty());
  EXPECT_EQ(Model().rowCount(), 0);
  EXPECT_TRUE(Count().text().startsWith(u"Noch ist nichts gesendet worden."));
}

TEST_F(TelegramsTest, ItLivesWhileATransferRuns) {
  Start();
  Show();
  std::vector<int> rows;
  events.onPending = [&] {
    EXPECT_TRUE(Window().isEnabled());
    EXPECT_FALSE(desktop->main.isEnabled());
    QTest::qWait(210);
    rows.push_back(Model().rowCount());
    EXPECT_FALSE(In<QPushButton>(Window(), u"save"_s).isEnabled())
        << "a question for a file holds the transfer up";
  };
  Receive();
  events.onPending = {};
  ASSERT_GE(rows.size(), 2U);
  EXPECT_LT(rows.front(), rows.back());
  Live();
  EXPECT_EQ(Model().rowCount(), 2 * line->sent.count('\r')) << "the last one as well";
  EXPECT_TRUE(In<QPushButton>(Window(), u"save"_s).isEnabled());
}

TEST_F(TelegramsTest, WhatIsClosedIsNotUpdated) {
  Start();
  Show();
  Window().close();
  Receive();
  Live();
  EXPECT_EQ(Model().rowCount(), 0);
  Show();
  EXPECT_EQ(Model().rowCount(), 2 * line->sent.count('\r'));
}

TEST_F(TelegramsTest, Filters) {
  Start();
  far->faults.Plan(2, {sim::FaultKind::BadChecksum});
  Receive();
  Show();
  const int all = Model().rowCount();
  Choose(1);
  ASSERT_EQ(Model().rowCount(), 2);
  EXPECT_TRUE(Cell(1, TelegramsModel::Meaning).startsWith(u"Prüfsumme falsch, "));
  EXPECT_EQ(Count().text(), u"1 von %1 Anfragen"_s.arg(all / 2));
  Choose(2);
  ASSERT_EQ(Model().rowCount(), 2);
  EXPECT_EQ(Cell(0, TelegramsModel::Attempt), u"2");
  EXPECT_TRUE(Cell(0, TelegramsModel::Meaning).endsWith(u"(2. Versuch)"));
  Choose(3);
  EXPECT_EQ(Model().rowCount(), all);
  Receive();
  Live();
  EXPECT_LT(Model().rowCount(), 2 * line->sent.count('\r')) << "the new transfer only";
  EXPECT_EQ(Cell(0, TelegramsModel::Number), QString::number(all / 2 + 1));
  Choose(0);
  EXPECT_EQ(Model().rowCount(), 2 * line->sent.count('\r'));
}

TEST_F(TelegramsTest, SearchingGoesFromHitToHit) {
  Start();
  Receive();
  Show();
  Search(u"drehzahl"_s);
  const int all = Model().rowCount();
  QTest::keyClick(&In<QLineEdit>(Window(), u"search"_s), Qt::Key_Return);
  const int first = Table().currentIndex().row();
  EXPECT_EQ(Cell(first, TelegramsModel::Meaning), u"Gerät 1: Lesen 1F00, Drehzahl");
  Click(Window(), u"findNext"_s);
  EXPECT_EQ(Table().currentIndex().row(), first + 1);
  Click(Window(), u"findNext"_s);
  EXPECT_EQ(Table().currentIndex().row(), first) << "around";
  In<QCheckBox>(Window(), u"onlyHits"_s).setChecked(true);
  EXPECT_EQ(Model().rowCount(), 2);
  In<QCheckBox>(Window(), u"onlyHits"_s).setChecked(false);
  EXPECT_EQ(Model().rowCount(), all);
  Search(u"R1F00"_s);
  Click(Window(), u"findNext"_s);
  EXPECT_EQ(Table().currentIndex().row(), first) << "among the characters";
  Search(u"gibt es nicht"_s);
  Click(Window(), u"findNext"_s);
  EXPECT_TRUE(Count().text().endsWith(u"„gibt es nicht“ kommt nicht vor"));
}

TEST_F(TelegramsTest, PausedItStaysAsItIs) {
  Start();
  Receive();
  Show();
  const int rows = Model().rowCount();
  const QString first = Cell(0, TelegramsModel::Time);
  QPushButton& pause = In<QPushButton>(Window(), u"pause"_s);
  pause.click();
  clock.Advance(100);
  Fill(ExchangeLog::kKept + 5);
  Live();
  EXPECT_EQ(Model().rowCount(), rows);
  EXPECT_EQ(Cell(0, TelegramsModel::Time), first) << "although the log has given it up";
  EXPECT_TRUE(Count().text().contains(u"angehalten"));
  Choose(1);
  EXPECT_EQ(Model().rowCount(), 0);
  Choose(0);
  EXPECT_EQ(Model().rowCount(), rows);
  pause.click();
  EXPECT_EQ(Model().rowCount(), 2 * ExchangeLog::kKept);
  EXPECT_TRUE(Count().text().contains(u"ältere sind nicht mehr da"));
}

TEST_F(TelegramsTest, ItFollowsTheEndUnlessTheUserLooksElsewhere) {
  Start();
  Fill(500);
  Show();
  QScrollBar& bar = *Table().verticalScrollBar();
  EXPECT_EQ(bar.value(), bar.maximum());
  Fill(10);
  Live();
  EXPECT_EQ(bar.value(), bar.maximum());
  bar.setValue(100);
  Fill(10);
  Live();
  EXPECT_EQ(bar.value(), 100);
  // The first ones make room: the same rows stay in view.
  const QString number = Cell(bar.value(), TelegramsModel::Number);
  Fill(ExchangeLog::kKept - 500);
  Live();
  EXPECT_EQ(Model().rowCount(), 2 * ExchangeLog::kKept);
  EXPECT_EQ(Cell(bar.value(), TelegramsModel::Number), number);
  EXPECT_FALSE(Table().selectionModel()->hasSelection()) << "nobody has marked anything";
}

TEST_F(TelegramsTest, WhatTheLogHasGivenUpSinceIsEmptyNotWrong) {
  Start();
  Fill(ExchangeLog::kKept);
  Show();
  Fill(3);
  EXPECT_EQ(Cell(0, TelegramsModel::Number), u"");
  EXPECT_EQ(Cell(6, TelegramsModel::Number), u"4");
}

TEST_F(TelegramsTest, CopiesTheMarkedRowsOrAll) {
  Start();
  Fill(2);
  Show();
  Click(Window(), u"copy"_s);
  QStringList lines = QGuiApplication::clipboard()->text().split(u'\n', Qt::SkipEmptyParts);
  EXPECT_EQ(lines.size(), 5);
  EXPECT_EQ(lines.value(0), u"Nr\tZeit\tDauer (ms)\tVersuch\tRichtung\tZeichen\tBedeutung");
  Table().selectRow(1);
  Table().setFocus();
  Press(Qt::Key_C, Qt::ControlModifier);
  lines = QGuiApplication::clipboard()->text().split(u'\n', Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), 2);
  EXPECT_TRUE(lines.value(1).endsWith(u"\tDrehzahl = 123.4 1/m")) << lines.value(1).toStdString();
}

TEST_F(TelegramsTest, SavesTheShownOnesAsText) {
  Start();
  Fill(2);
  Show();
  dialogs.answers = {u"/ordner/telegramme"_s};
  Click(Window(), u"save"_s);
  ASSERT_EQ(dialogs.shown.size(), 1U);
  EXPECT_EQ(dialogs.shown[0].title, u"Telegramme speichern");
  const QStringList lines =
      QString::fromUtf8(files.files.value(u"/ordner/telegramme.txt"_s).bytes).split(u'\n');
  ASSERT_EQ(lines.size(), 6);
  EXPECT_EQ(lines[0], u"Leitung: COM1, 9600,o,7,1; ausgewählte Version: AB1-123.4");
  EXPECT_EQ(lines[1].sliced(14), u"PC     > #0102R1F000F␍       Gerät 1: Lesen 1F00, Drehzahl");
  EXPECT_EQ(lines[5], u"");
}

TEST_F(TelegramsTest, NamesFollowTheDefinitions) {
  Start();
  Fill(1);
  Show();
  EXPECT_EQ(Cell(1, TelegramsModel::Meaning), u"Drehzahl = 123.4 1/m");
  desktop->guard([this] { desktop->module.VersionList.Select(2); });
  Live();
  EXPECT_EQ(Cell(1, TelegramsModel::Meaning), u"Wort 04D2") << "it was another version's";
}

TEST_F(TelegramsTest, PlaceColumnsHelpAndKeys) {
  Start();
  Show();
  Window().resize(700, 400);
  Table().setColumnWidth(TelegramsModel::Characters, 333);
  QTest::keyClick(&Table(), Qt::Key_F1);
  EXPECT_EQ(help.pages, QStringList{u"telegrammfenster"_s});
  QTest::keyClick(&Window(), Qt::Key_Escape);
  EXPECT_FALSE(Window().isVisible());
  EXPECT_FALSE(settings.values.value(u"TelegrammePlatz"_s).isEmpty());
  EXPECT_FALSE(settings.values.value(u"TelegrammeSpalten"_s).isEmpty());
  Start();
  Show();
  EXPECT_EQ(Window().size(), QSize(700, 400));
  EXPECT_NEAR(Table().columnWidth(TelegramsModel::Characters), 333, 1);
}

TEST_F(TelegramsTest, ThousandsOfRowsScrollSmoothly) {
  Start();
  Fill(ExchangeLog::kKept);
  Show();
  Window().resize(1200, 900);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&Window()));
  QScrollBar& bar = *Table().verticalScrollBar();
  constexpr int kSteps = 50;
  QElapsedTimer time;
  time.start();
  for (int i = 0; i < kSteps; ++i) {
    bar.setValue(bar.maximum() * i / kSteps);
    Table().viewport()->repaint();
  }
  const double each_ms = static_cast<double>(time.nsecsElapsed()) / 1e6 / kSteps;
  RecordProperty("ms", std::to_string(each_ms));
  // Several times what it takes, as the machine may be busy.
  EXPECT_LT(each_ms, 100);
  time.restart();
  Fill(5);
  QMetaObject::invokeMethod(&Window(), [this] { Live(); });
  EXPECT_EQ(Cell(Model().rowCount() - 1, TelegramsModel::Number), QString::number(Log().Last()));
}

// --- quality ---

class QualityTest : public TelegramsTest {
 protected:
  QString Hint() { return In<QLabel>(Window(), u"hint"_s).text(); }
  QString Figures() { return In<QWidget>(Window(), u"picture"_s).accessibleName(); }
};

TEST_F(QualityTest, ThisTransferAndSinceTheStart) {
  Start();
  Show();
  EXPECT_EQ(Hint(), u"Noch ist kein Telegramm gesendet worden.");
  EXPECT_EQ(Figures(), u"Leitungsqualität: noch keine Telegramme");
  Receive();
  const auto sent = line->sent.count('\r');
  Live();
  const QString one = u"Leitungsqualität: %1 Versuche: %1 gut"_s.arg(sent);
  EXPECT_EQ(Figures(), one);
  Receive();
  Live();
  EXPECT_EQ(Figures(), one) << "the second one alone";
  In<QRadioButton>(Window(), u"sinceStart"_s).setChecked(true);
  EXPECT_EQ(Figures(), u"Leitungsqualität: %1 Versuche: %1 gut"_s.arg(2 * sent));
}

TEST_F(QualityTest, ABadLineIsSaidToBeBad) {
  Start();
  Show();
  far->faults.Add({{sim::FaultKind::BadChecksum}, 1, {}});
  Receive();
  Live();
  EXPECT_EQ(
      Hint(),
      u"⚠ Keine einzige Antwort war lesbar. Kabel, Schirm und Adapter prüfen; vielleicht antwortet auch ein "
      "anderes Gerät.");
}

TEST_F(QualityTest, ThePictureIsPaintedInBothPalettes) {
  Start();
  Fill(30);
  Show();
  In<QTabWidget>(Window(), u"tabs"_s).setCurrentIndex(1);
  auto& picture = In<QWidget>(Window(), u"picture"_s);
  EXPECT_GE(picture.width(), 600);
  const auto hasColour = [&picture](const QColor& colour) {
    const QImage image = picture.grab().toImage();
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if (image.pixelColor(x, y) == colour) return true;
    return false;
  };
  EXPECT_TRUE(hasColour(QColor(0x2E, 0x7D, 0x32)));
  QPalette dark;
  dark.setColor(QPalette::Window, Qt::black);
  dark.setColor(QPalette::WindowText, Qt::white);
  picture.setPalette(dark);
  EXPECT_TRUE(hasColour(QColor(0x66, 0xBB, 0x6A)));
}

}  // namespace
}  // namespace kalivor::test
