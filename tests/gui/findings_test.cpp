// The window with the findings about the definition files.
#include "ui/findings/FindingsWindow.h"

#include <QAction>
#include <QClipboard>
#include <QHeaderView>
#include <QTableView>

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class FindingsTest : public GuiTest {
 protected:
  FindingsTest() {
    QString lines;
    for (int number = 0; number < 12; ++number)
      lines += u"Gruppe  Größe%1  0  9  0  -  0  0  int  1E%2  p%1  -  -\r\n"_s.arg(number).arg(
          2 * number, 2, 16, QChar(u'0'));
    // Line 3 and 11 have a type that there is not, line 2 is too short.
    lines.replace(u"Größe9  0  9  0  -  0  0  int"_s, u"Größe9  0  9  0  -  0  0  foo"_s);
    lines.replace(u"Größe1  0  9  0  -  0  0  int"_s, u"Größe1  0  9  0  -  0  0  foo"_s);
    files.AddText(
        kFolder + u"VF.INI"_s,
        u"Version  Adressen  Definitionen  Anlagen  Kennung\r\nAB1-123.4  -  EINS.TXT  - -  WW\r\n"_s);
    files.AddText(kFolder + u"/EINS.TXT"_s, u"Kopf\r\n"_s + lines);
  }

  void Open() { Main<QAction>(u"mnuWerkzeugePruefen"_s).trigger(); }
  ui::FindingsWindow& Window() { return *desktop->findings; }
  QTableView& Table() { return In<QTableView>(Window(), u"Findings"_s); }
  // As the user presses it: shortcuts go first.
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    Window().activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &Window(); }));
    QTest::keyClick(Window().windowHandle(), key, modifiers);
  }
  QString Summary() { return In<QLabel>(Window(), u"Summary"_s).text(); }
  QString Cell(int row, int column) { return Table().model()->index(row, column).data().toString(); }
  QStringList Column(int column) {
    QStringList cells;
    for (int row = 0; row < Table().model()->rowCount(); ++row)
      cells << Cell(row, column);
    return cells;
  }
  void SortBy(int column) {
    QHeaderView& header = *Table().horizontalHeader();
    const QPoint place(header.sectionViewportPosition(column) + header.sectionSize(column) / 2,
                       header.height() / 2);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
  }
  static QString Clipboard() { return QGuiApplication::clipboard()->text(); }
};

TEST_F(FindingsTest, ShowsWhatTheCheckFinds) {
  Start();
  Open();
  const std::vector<Finding> expected = CheckDefinitions(files, kFolder, desktop->module.Inifile);
  ASSERT_EQ(expected.size(), 3);
  ASSERT_EQ(Table().model()->rowCount(), 3);
  for (int row = 0; row < 3; ++row) {
    const Finding& finding = expected[static_cast<std::size_t>(row)];
    EXPECT_EQ(Cell(row, 0), finding.file);
    EXPECT_EQ(Cell(row, 1), QString::number(finding.line));
    EXPECT_EQ(Cell(row, 2), finding.error ? u"Fehler"_s : u"Warnung"_s);
    EXPECT_EQ(Cell(row, 3), finding.text);
  }
  EXPECT_EQ(Summary(), u"2 Fehler, 1 Warnung in 2 Dateien"_s);
  EXPECT_TRUE(In<QLabel>(Window(), u"Checked"_s).text().endsWith(u": "_s + kFolder + u"VF.INI"_s));
  EXPECT_TRUE(Window().isVisible());
  EXPECT_EQ(Window().windowTitle(), u"Definitionen prüfen"_s);
  EXPECT_EQ(Table().accessibleName(), u"Befunde"_s);
  EXPECT_EQ(Window().focusWidget(), &Table());
}

TEST_F(FindingsTest, NothingIsReadUntilTheUserWantsIt) {
  Start();
  EXPECT_EQ(desktop->findings, nullptr);
  Open();
  const qsizetype reads = files.reads.size();
  EXPECT_GT(reads, 0);
  Window().close();
  Window().show();
  EXPECT_EQ(files.reads.size(), reads);
}

TEST_F(FindingsTest, LinesAreSortedAsNumbers) {
  Start();
  Open();
  const QStringList found = Column(1);
  SortBy(1);
  EXPECT_EQ(Column(1), (QStringList{u"2"_s, u"3"_s, u"11"_s}));
  SortBy(1);
  EXPECT_EQ(Column(1), (QStringList{u"11"_s, u"3"_s, u"2"_s}));
  SortBy(1);
  EXPECT_EQ(Column(1), found) << "in the order in which they were found";
  SortBy(2);
  EXPECT_EQ(Column(2), (QStringList{u"Fehler"_s, u"Fehler"_s, u"Warnung"_s}));
}

TEST_F(FindingsTest, CopiesTheHighlightedRowsOrAll) {
  Start();
  Open();
  SortBy(1);
  const auto rowText = [this](int row) {
    return (QStringList{Cell(row, 0), Cell(row, 1), Cell(row, 2), Cell(row, 3)}).join(u'\t') + u'\n';
  };
  const QString titles = u"Datei\tZeile\tSchwere\tText\n"_s;
  Press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(Clipboard(), titles + rowText(0) + rowText(1) + rowText(2));
  Table().selectRow(1);
  Press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(Clipboard(), titles + rowText(1));
  Table().clearSelection();
  Table().horizontalHeader()->moveSection(3, 0);
  Click(Window(), u"Copy"_s);
  EXPECT_TRUE(Clipboard().startsWith(u"Text\tDatei\tZeile\tSchwere\n"_s)) << "as the columns stand";
}

TEST_F(FindingsTest, F5AndTheButtonCheckAgain) {
  Start();
  Open();
  AddDefinitions(files);
  files.AddText(kFolder + u"VF.INI"_s,
                u"Version  Adressen  Definitionen  Anlagen  Kennung\r\nAB1-123.4  -  GUT.TXT  -  WR\r\n"_s);
  files.AddText(kFolder + u"/GUT.TXT"_s, u"Kopf\r\nGruppe  Name  0  9  0  -  0  0  int  1E00  p  -  -\r\n"_s);
  Press(Qt::Key_F5);
  EXPECT_EQ(Summary(), u"Keine Beanstandungen"_s);
  EXPECT_EQ(Table().model()->rowCount(), 0);
  files.AddText(kFolder + u"/GUT.TXT"_s, u"Kopf\r\nzu kurz\r\n"_s);
  Click(Window(), u"CheckAgain"_s);
  EXPECT_EQ(Summary(), u"1 Fehler in 1 Datei"_s);
}

TEST_F(FindingsTest, AnUnreadableTableIsSaidInABox) {
  Start();
  files.AddFailure(kFolder + u"VF.INI"_s, u"Keine Berechtigung zum Lesen der Datei."_s);
  Open();
  EXPECT_EQ(box.Take().size(), 1);
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(FindingsTest, WhatIsNoLongerKnownGoesWhenTheCheckFails) {
  Start();
  Open();
  files.AddFailure(kFolder + u"VF.INI"_s, u"Keine Berechtigung zum Lesen der Datei."_s);
  Press(Qt::Key_F5);
  EXPECT_EQ(box.Take().size(), 1);
  EXPECT_TRUE(Window().isVisible());
  EXPECT_EQ(Table().model()->rowCount(), 0);
  EXPECT_EQ(Summary(), u"Nicht geprüft"_s);
}

TEST_F(FindingsTest, TakesNoInputWhileALineIsBusy) {
  Start();
  Open();
  ToBusy(desktop->core);
  EXPECT_FALSE(Window().isEnabled());
  FromBusy(desktop->core);
  EXPECT_TRUE(Window().isEnabled());
  Window().close();
  ToBusy(desktop->core);
  Open();
  FromBusy(desktop->core);
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(FindingsTest, ComesBackAsItWasLeft) {
  Start();
  Open();
  Window().setGeometry(40, 30, 600, 320);
  Table().horizontalHeader()->moveSection(2, 0);
  SortBy(1);
  EXPECT_TRUE(desktop->main.close()) << "with the window open";
  EXPECT_FALSE(Window().isVisible());
  UseController(u"AB1-123.4"_s);
  Start();
  Open();
  EXPECT_EQ(Window().geometry(), QRect(40, 30, 600, 320));
  EXPECT_EQ(Table().horizontalHeader()->visualIndex(2), 0);
  EXPECT_EQ(Column(1), (QStringList{u"2"_s, u"3"_s, u"11"_s}));
}

TEST_F(FindingsTest, HasItsPageOfTheManualAndGoesWithEscape) {
  Start();
  Open();
  Press(Qt::Key_F1);
  EXPECT_EQ(help.pages, QStringList{u"definitionen"_s});
  Press(Qt::Key_Escape);
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(FindingsTest, ALongTextCanBeReadAsAWhole) {
  Start();
  Open();
  Window().resize(400, 400);
  QTest::qWait(0);
  QTableView& table = Table();
  for (int row = 0; row < 3; ++row) {
    const QModelIndex index = table.model()->index(row, 3);
    const QRect room = table.visualRect(index);
    const int lines = table.fontMetrics()
                          .boundingRect(QRect(0, 0, room.width() - 8, 10'000), Qt::TextWordWrap, Cell(row, 3))
                          .height();
    EXPECT_GE(room.height(), lines) << row;
  }
}

}  // namespace
}  // namespace kalivor::test
