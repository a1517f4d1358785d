// The print frame: toolbar, status bar, printing.
#include <QCloseEvent>
#include <QStatusBar>

#include "print/WindowSite.h"

namespace kalivor::test {
namespace {

using print::LineRange;

TEST(PrintFrame, HasItsButtonsInOrder) {
  WindowSite site;
  EXPECT_EQ(site.frame.objectName(), u"MDIFormPrint"_s);
  EXPECT_EQ(site.frame.windowTitle(), u"Print Preview"_s);
  QStringList buttons;
  for (const QAction* action : site.Find<QToolBar>(u"Toolbar1"_s)->actions()) {
    const auto* button = qobject_cast<QToolButton*>(
        site.Find<QToolBar>(u"Toolbar1"_s)->widgetForAction(const_cast<QAction*>(action)));
    ASSERT_NE(button, nullptr);
    buttons.append(button->objectName() + u'=' + button->text());
    EXPECT_EQ(button->toolTip(), QString());
  }
  EXPECT_EQ(buttons,
            (QStringList{u"Drucken=Drucken  "_s, u"SeiteDrucken=Seite Drucken  "_s,
                         u"Ausrichtung=Ausrichtung  "_s, u"Format=1:2  "_s, u"Abbrechen=Schliessen  "_s,
                         u"back=<<           "_s, u"fwd=>>           "_s}));
}

TEST(PrintFrame, TheScaleButtonHasAMenu) {
  WindowSite site;
  const QMenu* menu = site.Find<QToolButton>(u"Format"_s)->menu();
  ASSERT_NE(menu, nullptr);
  QStringList entries;
  for (const QAction* action : menu->actions())
    entries.append(action->objectName() + u'=' + action->text());
  EXPECT_EQ(entries, (QStringList{u"eins=1:1"_s, u"zwei=1:2"_s, u"vier=1:4"_s}));
}

TEST(PrintFrame, OpensWithPage1AtHalfSize) {
  WindowSite site;
  EXPECT_EQ(site.frame.Preview(), nullptr);
  site.Open();
  EXPECT_TRUE(site.frame.isVisible());
  EXPECT_FALSE(site.frame.isModal());
  EXPECT_TRUE(site.Preview().isVisible());
  EXPECT_EQ(site.Preview().objectName(), u"FormPrintPreview"_s);
  EXPECT_EQ(site.Preview().windowTitle(), u"Print Preview"_s);
  EXPECT_EQ(site.Status(), u"Seite  1 von 3"_s);
  EXPECT_EQ(site.Preview().Masstab, 2);
  EXPECT_EQ(site.Preview().size(), QSize(400, 554)) << "6000 by 8315 twips";
  EXPECT_EQ(site.Preview().pos(), QPoint(16, 16)) << "240 twips";
}

TEST(PrintFrame, TheFirstFooterHasThePageTextAlready) {
  WindowSite site;
  site.Open();
  EXPECT_TRUE(site.Preview().Footer().contains(u"   Seite  1 von 3   "_s));
}

// --- scale ---

TEST(PrintFrame, FormatTogglesBetweenTwoScales) {
  WindowSite site;
  site.Open();
  site.Press(u"Format"_s);
  EXPECT_EQ(site.Caption(), u"1:1  "_s);
  EXPECT_EQ(site.Preview().size(), QSize(800, 1108));
  site.Press(u"Format"_s);
  EXPECT_EQ(site.Caption(), u"1:2  "_s);
  EXPECT_EQ(site.Preview().size(), QSize(400, 554));
}

TEST(PrintFrame, TheMenuSetsTheScaleButNever4) {
  WindowSite site;
  site.Open();
  site.Choose(u"vier"_s);
  EXPECT_EQ(site.Caption(), u"1:1  "_s);
  site.Choose(u"vier"_s);
  EXPECT_EQ(site.Caption(), u"1:2  "_s);
  site.Choose(u"eins"_s);
  EXPECT_EQ(site.Caption(), u"1:1  "_s);
  EXPECT_EQ(site.Preview().Masstab, 1);
  site.Choose(u"eins"_s);
  EXPECT_EQ(site.Caption(), u"1:1  "_s);
  site.Choose(u"zwei"_s);
  EXPECT_EQ(site.Caption(), u"1:2  "_s);
  EXPECT_EQ(site.Preview().Masstab, 2);
}

TEST(PrintFrame, TheScaleDoesNotTurnThePage) {
  WindowSite site;
  site.Open();
  site.Press(u"fwd"_s);
  site.Press(u"Format"_s);
  EXPECT_EQ(site.Preview().View().lines, (LineRange{58, 114}));
}

// --- pages ---

TEST(PrintFrame, TurnsPagesBetweenFirstAndLast) {
  WindowSite site;
  site.Open();
  const QStringList expected{u"Seite  1 von 3"_s, u"Seite  2 von 3"_s, u"Seite  3 von 3"_s,
                             u"Seite  3 von 3"_s, u"Seite  2 von 3"_s, u"Seite  1 von 3"_s,
                             u"Seite  1 von 3"_s};
  QStringList seen;
  for (const QString& key : {u"back"_s, u"fwd"_s, u"fwd"_s, u"fwd"_s, u"back"_s, u"back"_s, u"back"_s}) {
    site.Press(key);
    seen.append(site.Status());
    EXPECT_TRUE(site.Preview().Footer().contains(site.Status())) << "laid out again";
  }
  EXPECT_EQ(seen, expected);
}

TEST(PrintFrame, TurningPastTheEndSelectsAndLaysOutAllTheSame) {
  WindowSite site(20);
  site.Open();
  site.printer.paperSize = 1;
  site.Press(u"fwd"_s);
  EXPECT_EQ(TakeBoxes(site.box).size(), 1) << "a layout looks at the paper";
  site.printer.paperSize = 1;
  site.Press(u"back"_s);
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
  EXPECT_EQ(site.Preview().Page, 1);
}

TEST(PrintFrame, TurnsThePaper) {
  WindowSite site;
  site.Open();
  site.Press(u"fwd"_s);
  site.Press(u"Ausrichtung"_s);
  EXPECT_EQ(site.printer.orientation, kLandscape);
  EXPECT_EQ(site.Preview().size(), QSize(554, 400));
  EXPECT_EQ(site.Preview().MaxPage, 5);
  EXPECT_EQ(site.Preview().Page, 2);
}

// --- printing ---

TEST(PrintFrame, PrintsAllPages) {
  WindowSite site;
  site.module.Kopien = 2;
  site.Open();
  site.Press(u"Drucken"_s);
  EXPECT_EQ(site.printer.jobs, (std::vector<int>{6}));
  EXPECT_EQ(site.Preview().Masstab, 1);
  EXPECT_EQ(site.Caption(), u"1:2  "_s) << "the caption is left alone";
  EXPECT_EQ(site.Preview().size(), QSize(800, 1108));
  EXPECT_EQ(site.Status(), u"Seite  3 von 3"_s);
  site.Press(u"fwd"_s);
  EXPECT_EQ(site.Status(), u"Seite  4 von 3"_s);
  EXPECT_LT(site.Preview().View().lines.last, site.Preview().View().lines.first) << "an empty page";
  site.Press(u"back"_s);
  EXPECT_EQ(site.Status(), u"Seite  3 von 3"_s);
}

TEST(PrintFrame, PrintsThePageShown) {
  WindowSite site;
  site.module.Kopien = 2;
  site.Open();
  site.Press(u"fwd"_s);
  QStringList printed;
  site.printer.onPage = [&] { printed.append(site.Preview().Footer()); };
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(site.printer.jobs, (std::vector<int>{1, 1}));
  ASSERT_EQ(printed.size(), 2);
  EXPECT_TRUE(printed[0].contains(u"Seite  2 von 3"_s));
}

TEST(PrintFrame, TakesNoInputWhilePrinting) {
  WindowSite site;
  site.Open();
  int asked = 0;
  site.printer.onPage = [&] {
    ++asked;
    EXPECT_FALSE(site.frame.isEnabled());
    EXPECT_FALSE(site.main.enabled) << "nor does the main window";
    EXPECT_FALSE(site.frame.close());
    EXPECT_TRUE(site.frame.isVisible());
  };
  for (const QString& key : {u"Drucken"_s, u"SeiteDrucken"_s}) {
    asked = 0;
    site.Press(key);
    EXPECT_GT(asked, 0);
    EXPECT_TRUE(site.frame.isEnabled());
    EXPECT_TRUE(site.main.enabled);
  }
}

TEST(PrintFrame, ClicksOnItWhilePrintingAreLost) {
  WindowSite site;
  site.Open();
  auto* button = site.Find<QToolButton>(u"Drucken"_s);
  site.printer.onPage = [&] {
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      QCoreApplication::postEvent(
          button, new QMouseEvent(type, QPointF(5, 5), button->mapToGlobal(QPointF(5, 5)), Qt::LeftButton,
                                  Qt::LeftButton, Qt::NoModifier));
    }
  };
  site.Press(u"Drucken"_s);
  QCoreApplication::processEvents();
  EXPECT_EQ(site.printer.jobs.size(), 1);
}

TEST(PrintFrame, ShowsEachPageWhileItIsPrinted) {
  WindowSite site;
  site.Open();
  std::vector<QPixmap> seen;
  site.printer.onPage = [&] { seen.push_back(site.Preview().grab()); };
  site.Press(u"Drucken"_s);
  ASSERT_EQ(seen.size(), 3);
  EXPECT_NE(seen[0].toImage(), seen[1].toImage());
}

TEST(PrintFrame, AFailureShowsABoxAndTheFrameGoesOn) {
  WindowSite site;
  site.Open();
  site.printer.failAtPage = 2;
  site.Press(u"Drucken"_s);
  EXPECT_EQ(TakeBoxes(site.box), (QStringList{u"Fehler beim Zugriff auf eine Datei."_s}));
  EXPECT_TRUE(site.frame.isEnabled());
  EXPECT_TRUE(site.main.enabled);
  EXPECT_TRUE(site.printer.jobs.empty());
  EXPECT_EQ(site.printer.aborted, 1);
  site.printer.missing = true;
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
}

TEST(PrintFrame, AListThatIsTooLongShowsABox) {
  WindowSite site;
  site.Open();
  site.Fill(2001);
  for (int i = 1; i < site.module.ParCount; ++i)
    site.module.Par[i].Rubrik = QString::number(i % 40);
  site.Press(u"Ausrichtung"_s);
  EXPECT_EQ(TakeBoxes(site.box), (QStringList{u"Index außerhalb des zulässigen Bereichs."_s}));
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
  site.Press(u"fwd"_s);
}

// --- closing ---

TEST(PrintFrame, SchliessenHidesItAndItStartsAgain) {
  WindowSite site;
  site.Open();
  print::FormPrintPreview* before = site.frame.Preview();
  site.Press(u"fwd"_s);
  site.Press(u"Format"_s);
  site.Press(u"Abbrechen"_s);
  EXPECT_FALSE(site.frame.isVisible());
  site.Fill(20);
  site.Open();
  EXPECT_TRUE(site.frame.isVisible());
  EXPECT_EQ(site.frame.Preview(), before) << "it is kept";
  EXPECT_EQ(site.Status(), u"Seite  1 von 1"_s);
  EXPECT_EQ(site.Preview().Masstab, 2);
  EXPECT_EQ(site.Caption(), u"1:1  "_s) << "the caption is left alone";
}

TEST(PrintFrame, ClosingTheWindowHidesIt) {
  WindowSite site;
  site.Open();
  EXPECT_TRUE(site.frame.close());
  site.Open();
  EXPECT_TRUE(site.frame.isVisible());
}

TEST(PrintFrame, AHiddenPreviewComesBackWithTheFrame) {
  WindowSite site;
  site.Open();
  site.Preview().CommandAbbrechen();
  EXPECT_FALSE(site.Preview().isVisible());
  EXPECT_TRUE(site.frame.isVisible());
  site.Open();
  EXPECT_TRUE(site.Preview().isVisible());
}

// --- keyboard ---

TEST(PrintFrame, EveryButtonCanBeReachedAndPressedByKey) {
  WindowSite site;
  site.Open();
  QApplication::setActiveWindow(&site.frame);
  auto* first = site.Find<QToolButton>(u"Drucken"_s);
  first->setFocus();
  QStringList order;
  for (int i = 0; i < 7; ++i) {
    order.append(site.frame.focusWidget()->objectName());
    QTest::keyClick(site.frame.focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order, (QStringList{u"Drucken"_s, u"SeiteDrucken"_s, u"Ausrichtung"_s, u"Format"_s,
                                u"Abbrechen"_s, u"back"_s, u"fwd"_s}));
  QTest::keyClick(site.Find<QToolButton>(u"fwd"_s), Qt::Key_Space);
  EXPECT_EQ(site.Status(), u"Seite  2 von 3"_s);
}

// Whatever has the focus: a button, or the page that could be scrolled instead.
TEST(PrintFrame, PageUpAndPageDownTurnThePages) {
  WindowSite site;
  site.Open();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&site.frame));
  site.Press(u"Format"_s);
  site.frame.resize(400, 300);
  for (QWidget* focus : {static_cast<QWidget*>(site.Find<QToolButton>(u"Drucken"_s)),
                         static_cast<QWidget*>(site.frame.findChild<QScrollArea*>())}) {
    focus->setFocus();
    QTest::keyClick(focus, Qt::Key_PageDown);
    EXPECT_EQ(site.Status(), u"Seite  2 von 3"_s);
    EXPECT_TRUE(site.Preview().Footer().contains(u"Seite  2 von 3"_s)) << "as the button does";
    QTest::keyClick(focus, Qt::Key_PageUp);
    EXPECT_EQ(site.Status(), u"Seite  1 von 3"_s);
    QTest::keyClick(focus, Qt::Key_PageUp);
    EXPECT_EQ(site.Status(), u"Seite  1 von 3"_s);
  }
}

TEST(PrintFrame, EscapeIsSchliessen) {
  WindowSite site;
  site.Open();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&site.frame));
  QTest::keyClick(&site.frame, Qt::Key_Escape);
  EXPECT_FALSE(site.frame.isVisible());
  site.Open();
  EXPECT_TRUE(site.frame.isVisible());
}

TEST(PrintFrame, ItsKeysDoNothingWhilePrinting) {
  WindowSite site;
  site.Open();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&site.frame));
  int asked = 0;
  site.printer.onPage = [&] {
    ++asked;
    const double page = site.Preview().Page;
    for (const Qt::Key key : {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Escape})
      QTest::keyClick(site.frame.windowHandle(), key);
    EXPECT_EQ(site.Preview().Page, page);
    EXPECT_TRUE(site.frame.isVisible());
  };
  site.Press(u"Drucken"_s);
  EXPECT_EQ(asked, 3);
}

}  // namespace
}  // namespace kalivor::test
