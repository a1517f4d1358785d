// The options dialog: its controls, pages and buttons, with the real widgets.
#include <QComboBox>
#include <QLineEdit>
#include <QTabWidget>
#include <QWheelEvent>
#include <QWindow>

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class OptionsTest : public GuiTest {
 protected:
  void SetUp() override { Start(); }

  /// Opens the dialog as the menu item does.
  void OpenPage(const QString& menuItem) {
    desktop->main.findChild<QAction*>(menuItem)->trigger();
    QCoreApplication::processEvents();
  }

  QTabWidget& Tabs() { return In<QTabWidget>(desktop->options, u"tbsOptions"_s); }
  QComboBox& Port() { return In<QComboBox>(desktop->options, u"ComboSchnittstelle"_s); }
  QComboBox& Address() { return In<QComboBox>(desktop->options, u"ComboAdresse"_s); }
  QLineEdit& Path() { return In<QLineEdit>(desktop->options, u"TextVerzParameter"_s); }
};

TEST_F(OptionsTest, HasItsPagesListsAndButtons) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  EXPECT_EQ(desktop->options.windowTitle(), u"Optionen"_s);
  ASSERT_EQ(Tabs().count(), 3);
  EXPECT_EQ(Tabs().tabText(0), u"Schnittstelle"_s);
  EXPECT_EQ(Tabs().tabText(1), u"Regler"_s);
  EXPECT_EQ(Tabs().tabText(2), u"Dateien"_s);
  EXPECT_EQ(Tabs().tabToolTip(0), u"Optionen für die Serielle Schnittstelle festlegen"_s);
  EXPECT_EQ(Tabs().tabToolTip(1), u"Optionen des angeschlossenen Reglers festlegen"_s);
  EXPECT_EQ(Tabs().tabToolTip(2), QString());
  ASSERT_EQ(Port().count(), 8);
  EXPECT_EQ(Port().itemText(0), u"COM1"_s);
  EXPECT_EQ(Port().itemText(7), u"COM8"_s);
  ASSERT_EQ(Address().count(), 256);
  EXPECT_EQ(Address().itemText(0), u" 0"_s);
  EXPECT_EQ(Address().itemText(255), u" 255"_s);
  EXPECT_EQ(In<QPushButton>(desktop->options, u"cmdOK"_s).text(), u"OK"_s);
  EXPECT_EQ(In<QPushButton>(desktop->options, u"cmdApply"_s).text(), u"Übernehmen"_s);
  EXPECT_EQ(In<QPushButton>(desktop->options, u"cmdCancel"_s).text(), u"Abbrechen"_s);
  EXPECT_EQ(In<QPushButton>(desktop->options, u"CommandBrowse"_s).text(), u"Browse"_s);
}

TEST_F(OptionsTest, ThePagesAreNamedByTheKeysOfTheirTabs) {
  EXPECT_EQ(Tabs().widget(0)->objectName(), u"GroupSchnittstelle"_s);
  EXPECT_EQ(Tabs().widget(1)->objectName(), u"GroupRegler"_s);
  EXPECT_EQ(Tabs().widget(2)->objectName(), u"GroupVerzeichnisse"_s);
  EXPECT_TRUE(Tabs().widget(2)->isAncestorOf(&Path()));
}

TEST_F(OptionsTest, StaysAboveTheMainWindow) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  EXPECT_EQ(desktop->options.windowHandle()->transientParent(), desktop->main.windowHandle());
}

TEST_F(OptionsTest, OpensWithTheFocusInTheFieldOfThePage) {
  const struct {
    QString item;
    const QWidget& field;
  } pages[] = {{u"mnuOptioenFiles"_s, Path()},
               {u"mnuOptioenRegler"_s, Address()},
               {u"mnuOptioenSchnittstelle"_s, Port()}};
  for (const bool staysOpen : {false, true}) {
    for (const auto& page : pages) {
      OpenPage(page.item);
      ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &desktop->options; }));
      EXPECT_EQ(QApplication::focusWidget(), &page.field) << page.item.toStdString();
      if (!staysOpen) desktop->options.close();
    }
  }
}

TEST_F(OptionsTest, ShowsFortyFiveCharactersOfThePathAndAllOfItAsToolTip) {
  const QString path = u"/anlagen/"_s + QString(300, u'0') + u"/VF.INI"_s;
  desktop->module.Inipath = path.chopped(6);
  desktop->module.Inifile = path.right(6);
  OpenPage(u"mnuOptioenFiles"_s);
  const int frame = 2 * Path().style()->pixelMetric(QStyle::PM_DefaultFrameWidth) + 4;
  EXPECT_GE(Path().width() - frame, Path().fontMetrics().horizontalAdvance(path.right(45)));
  EXPECT_EQ(Path().toolTip(), path);
  Path().setText(u"/neu/VF.INI"_s);
  EXPECT_EQ(Path().toolTip(), u"/neu/VF.INI"_s);
}

// A turn of the wheel over the window must not set another port or station.
TEST_F(OptionsTest, TheWheelOverTheClosedListsChangesNothing) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  for (QComboBox* list : {&Port(), &Address()}) {
    list->setCurrentIndex(3);
    for (const int turn : {-120, 120}) {
      QWheelEvent event(QPointF(5, 5), list->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, turn), Qt::NoButton,
                        Qt::NoModifier, Qt::NoScrollPhase, false);
      QApplication::sendEvent(list, &event);
      EXPECT_EQ(list->currentIndex(), 3) << list->objectName().toStdString();
    }
  }
}

TEST_F(OptionsTest, EachMenuItemOpensItsPageAlsoWhenItIsOpenAlready) {
  OpenPage(u"mnuOptioenFiles"_s);
  EXPECT_EQ(Tabs().currentIndex(), 2);
  OpenPage(u"mnuOptioenRegler"_s);
  EXPECT_EQ(Tabs().currentIndex(), 1);
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  EXPECT_EQ(Tabs().currentIndex(), 0);
}

TEST_F(OptionsTest, ShowsThePresentSettingsWhenItOpens) {
  desktop->module.Schnittstelle = 3;
  desktop->module.Adresse = 0;
  OpenPage(u"mnuOptioenFiles"_s);
  EXPECT_EQ(Port().currentText(), u"COM3"_s);
  EXPECT_EQ(Address().currentText(), u" 0"_s);
  EXPECT_EQ(Path().text(), kFolder + u"VF.INI"_s);
}

TEST_F(OptionsTest, StandsInTheMiddleOfTheScreen) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  const QPoint middle = desktop->options.screen()->availableGeometry().center();
  const QPoint away = desktop->options.geometry().center() - middle;
  // The window's frame is not known before it is shown.
  EXPECT_LE(away.manhattanLength(), 40);
}

TEST_F(OptionsTest, SettingsOutsideTheListsSelectNothingAndStay) {
  desktop->module.Schnittstelle = 9;
  desktop->module.Adresse = 300;
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  EXPECT_EQ(Port().currentText(), QString());
  EXPECT_EQ(Address().currentText(), QString());
  Click(desktop->options, u"cmdOK"_s);
  EXPECT_EQ(desktop->module.Schnittstelle, 9);
  EXPECT_EQ(desktop->module.Adresse, 300);
}

TEST_F(OptionsTest, KeepsWhatWasChosenWhenAnotherMenuItemIsChosenMeanwhile) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  Port().setCurrentText(u"COM8"_s);
  OpenPage(u"mnuOptioenFiles"_s);
  Path().setText(u"/neu/T.INI"_s);
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  EXPECT_EQ(Port().currentText(), u"COM8"_s);
  EXPECT_EQ(Path().text(), u"/neu/T.INI"_s);
}

TEST_F(OptionsTest, CtrlTabGoesRoundThePages) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  for (const int page : {1, 2, 0}) {
    QTest::keyClick(&desktop->options, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(Tabs().currentIndex(), page);
  }
}

TEST_F(OptionsTest, ApplyingStoresPortAndAddressAndStaysOpen) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  Port().setCurrentText(u"COM3"_s);
  Address().setCurrentText(u" 17"_s);
  Click(desktop->options, u"cmdApply"_s);
  EXPECT_EQ(desktop->module.Schnittstelle, 3);
  EXPECT_EQ(desktop->module.Adresse, 17);
  EXPECT_TRUE(desktop->options.isVisible());
  EXPECT_TRUE(files.reads.isEmpty());
}

TEST_F(OptionsTest, OkAppliesAndCloses) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  Port().setCurrentText(u"COM8"_s);
  Click(desktop->options, u"cmdOK"_s);
  EXPECT_EQ(desktop->module.Schnittstelle, 8);
  EXPECT_FALSE(desktop->options.isVisible());
}

TEST_F(OptionsTest, CancelClosesWithoutApplyingAndForgetsTheChange) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  Port().setCurrentText(u"COM8"_s);
  Click(desktop->options, u"cmdCancel"_s);
  EXPECT_EQ(desktop->module.Schnittstelle, 1);
  EXPECT_FALSE(desktop->options.isVisible());
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  EXPECT_EQ(Port().currentText(), u"COM1"_s);
}

TEST_F(OptionsTest, ABrowsedFileIsReadOnce) {
  files.AddText(u"/neu/T.INI"_s, u"Kopf\nXY1-100.0  -  C.TXT  A  WR\n"_s);
  files.AddText(u"/neu//C.TXT"_s, u"Kopf\n"_s);
  OpenPage(u"mnuOptioenFiles"_s);
  dialogs.answers.push_back(u"/neu/T.INI"_s);
  Click(desktop->options, u"CommandBrowse"_s);
  ASSERT_EQ(dialogs.shown.size(), 1U);
  EXPECT_FALSE(dialogs.shown[0].save);
  EXPECT_EQ(dialogs.shown[0].title, u"Parameterfile"_s);
  EXPECT_EQ(dialogs.shown[0].folder, kFolder);
  EXPECT_EQ(dialogs.shown[0].filter, u"Alle Dateien (*.*)|*.*"_s);
  EXPECT_EQ(Path().text(), u"/neu/T.INI"_s);
  Click(desktop->options, u"cmdApply"_s);
  EXPECT_EQ(desktop->module.VersionList.SelectedText(), u"XY1-100.0"_s);
  files.reads.clear();
  Click(desktop->options, u"cmdApply"_s);
  EXPECT_TRUE(files.reads.isEmpty());
}

// It may be the old name of a new file.
TEST_F(OptionsTest, TheSameFileBrowsedForIsReadAnew) {
  OpenPage(u"mnuOptioenFiles"_s);
  dialogs.answers.push_back(Path().text());
  Click(desktop->options, u"CommandBrowse"_s);
  Click(desktop->options, u"cmdApply"_s);
  EXPECT_EQ(files.reads.count(kFolder + u"VF.INI"_s), 1);
}

TEST_F(OptionsTest, ACancelledBrowseChangesNothing) {
  dialogs.answers = {{}};
  OpenPage(u"mnuOptioenFiles"_s);
  Click(desktop->options, u"CommandBrowse"_s);
  Click(desktop->options, u"cmdApply"_s);
  EXPECT_TRUE(files.reads.isEmpty());
}

TEST_F(OptionsTest, APathWithoutFolderIsSaidAndTheDialogStays) {
  OpenPage(u"mnuOptioenFiles"_s);
  Path().setText(u"VF.INI"_s);
  Click(desktop->options, u"cmdOK"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, u"Ungültiges Argument."_s);
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
  EXPECT_TRUE(desktop->options.isVisible());
  EXPECT_EQ(desktop->module.Inipath, kFolder);
}

TEST_F(OptionsTest, ARefusedPathIsReadOnceItHasBeenCorrected) {
  OpenPage(u"mnuOptioenFiles"_s);
  Path().setText(u"VF.INI"_s);
  Click(desktop->options, u"cmdApply"_s);
  EXPECT_EQ(box.Take().size(), 1U);
  EXPECT_TRUE(files.reads.isEmpty());
  Path().setText(kFolder + u"VF.INI"_s);
  Click(desktop->options, u"cmdOK"_s);
  EXPECT_FALSE(files.reads.isEmpty());
  EXPECT_FALSE(desktop->options.isVisible());
}

TEST_F(OptionsTest, AMissingTableIsSaidAndEmptiesTheListOfVersions) {
  OpenPage(u"mnuOptioenFiles"_s);
  Path().setText(u"/fehlt/T.INI"_s);
  Click(desktop->options, u"cmdOK"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_TRUE(boxes[0].text.startsWith(u"Fehler beim Lesen von\r\n/fehlt/T.INI\r\n"_s))
      << boxes[0].text.toStdString();
  EXPECT_EQ(desktop->module.VersionList.Count(), 0);
  EXPECT_EQ(desktop->module.Inipath, u"/fehlt/"_s);
  EXPECT_FALSE(desktop->options.isVisible());
  ExpectReady();
}

TEST_F(OptionsTest, EachPortNamesItsDeviceWhenTheListOpens) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  ports.entries = {{2, u"/dev/ttyUSB0"_s}};
  QTest::keyClick(&Port(), Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(Port().itemData(0, Qt::ToolTipRole).toString(), u"nicht vorhanden"_s);
  EXPECT_EQ(Port().itemData(1, Qt::ToolTipRole).toString(), u"/dev/ttyUSB0"_s);
  Port().hidePopup();
  // The adapter has been pulled out.
  ports.entries.clear();
  QTest::mousePress(&Port(), Qt::LeftButton);
  EXPECT_EQ(Port().itemData(1, Qt::ToolTipRole).toString(), u"nicht vorhanden"_s);
  Port().hidePopup();
}

TEST_F(OptionsTest, TakesNoInputWhileAnOperationIsUnderWay) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  ToBusy(desktop->core);
  EXPECT_FALSE(desktop->options.isEnabled());
  desktop->options.close();
  EXPECT_TRUE(desktop->options.isVisible());
  FromBusy(desktop->core);
  EXPECT_TRUE(desktop->options.isEnabled());
}

TEST_F(OptionsTest, ClosingByTheFrameIsCancel) {
  OpenPage(u"mnuOptioenSchnittstelle"_s);
  Port().setCurrentText(u"COM8"_s);
  desktop->options.close();
  EXPECT_FALSE(desktop->options.isVisible());
  EXPECT_EQ(desktop->module.Schnittstelle, 1);
}

}  // namespace
}  // namespace kalivor::test
