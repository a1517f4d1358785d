// The main window: its controls, their places, the settings, closing.
#include <QComboBox>
#include <QGroupBox>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>

#include "gui/GuiFixture.h"
#include "ui/main/WindowGeometry.h"

namespace kalivor::test {
namespace {

class MainWindowTest : public GuiTest {};

int Twips(int pixels) {
  return qRound(pixels * 1440 / QGuiApplication::primaryScreen()->logicalDotsPerInchX());
}

int Pixels(double twips) {
  return qRound(twips * QGuiApplication::primaryScreen()->logicalDotsPerInchX() / 1440);
}

TEST_F(MainWindowTest, HasItsTitleAndIcon) {
  Start();
  EXPECT_EQ(desktop->main.objectName(), u"frmMain"_s);
  EXPECT_EQ(desktop->main.windowTitle(), u"KALIVOR"_s);
  EXPECT_EQ(desktop->main.windowIcon().availableSizes().size(), 7);
}

struct ButtonTexts {
  QString name, caption, toolTip;

  friend void PrintTo(const ButtonTexts& button, std::ostream* stream) {
    *stream << button.name.toStdString();
  }
};

class MainWindowButtons : public GuiTest, public testing::WithParamInterface<ButtonTexts> {};

TEST_P(MainWindowButtons, HaveTheirTexts) {
  Start();
  const auto& button = Main<QPushButton>(GetParam().name);
  EXPECT_EQ(button.text(), GetParam().caption);
  EXPECT_EQ(button.toolTip(), GetParam().toolTip);
  EXPECT_TRUE(button.isVisible());
  EXPECT_TRUE(button.isEnabled());
}

INSTANTIATE_TEST_SUITE_P(
    All, MainWindowButtons,
    testing::Values(
        ButtonTexts{u"CommandEmpfangen"_s, u"Empfangen"_s,
                    u"Empfängt alle angekreuzten Parameter vom angeschlossenen Regler."_s},
        ButtonTexts{u"CommandSenden"_s, u"Senden"_s,
                    u"Sendet alle angekreuzten Parameter an den angeschlossenen Regler."_s},
        ButtonTexts{u"CommandStandard"_s, u"Standard"_s,
                    u"Setzt alle angekreuzten Parameter auf den jeweiligen Standardwert."_s},
        ButtonTexts{
            u"CommandVergleichen"_s, u"Vergleichen"_s,
            u"Vergleicht alle angekreuzten Parameter mit den entsprechenden im angeschlossenen Regler "
            "und meldet alle Abweichungen."_s}),
    [](const auto& test) { return test.param.name.toStdString(); });

TEST_F(MainWindowTest, TheListsStandInTheirFrames) {
  Start();
  EXPECT_EQ(Main<QGroupBox>(u"Frame1"_s).title(), u"Versionsnummer"_s);
  EXPECT_EQ(Main<QGroupBox>(u"Frame2"_s).title(), u"Anlageart"_s);
  auto& versions = In<QComboBox>(Main<QGroupBox>(u"Frame1"_s), u"ComboVN"_s);
  auto& plants = In<QComboBox>(Main<QGroupBox>(u"Frame2"_s), u"ComboArt"_s);
  EXPECT_FALSE(versions.isEditable());
  EXPECT_EQ(versions.accessibleName(), u"Versionsnummer"_s);
  EXPECT_EQ(plants.accessibleName(), u"Anlageart"_s);
  EXPECT_EQ(versions.count(), 3);
  EXPECT_EQ(versions.currentText(), u"AB1-123.4"_s);
  EXPECT_EQ(plants.count(), 3);
  EXPECT_EQ(plants.currentText(), QString());
}

TEST_F(MainWindowTest, AnEmptyListShowsItsDesignedText) {
  files.files.clear();
  Start();
  EXPECT_EQ(box.Take().size(), 1U);
  EXPECT_EQ(Main<QComboBox>(u"ComboVN"_s).count(), 0);
  EXPECT_EQ(Main<QComboBox>(u"ComboVN"_s).placeholderText(), u"Versionsnummer"_s);
  EXPECT_EQ(Main<QComboBox>(u"ComboArt"_s).placeholderText(), u"Art"_s);
}

TEST_F(MainWindowTest, TheFormHasItsFont) {
  Start();
  const QString family =
      QFontDatabase::hasFamily(u"MS Sans Serif"_s) ? u"MS Sans Serif"_s : QApplication::font().family();
  EXPECT_EQ(desktop->main.font().family(), family);
  EXPECT_EQ(Main<QPushButton>(u"CommandSenden"_s).font().family(), family);
  EXPECT_EQ(desktop->main.font().pointSizeF(), QApplication::font().pointSizeF());
}

TEST_F(MainWindowTest, TheTreeHasTheFixedFont) {
  Start();
  const QString family = QFontDatabase::hasFamily(u"Lucida Console"_s)
                             ? u"Lucida Console"_s
                             : QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
  EXPECT_EQ(TreeWidget().font().family(), family);
  EXPECT_EQ(TreeWidget().accessibleName(), u"Parameter"_s);
}

TEST_F(MainWindowTest, StartsReadyWithTheTreeOfTheFirstVersion) {
  Start();
  ExpectReady();
  EXPECT_EQ(Tree().Count(), 1 + 3 + 7);
  EXPECT_TRUE(Tree().Expanded(1));
  EXPECT_EQ(Main<QStatusBar>(u"sbStatusBar"_s).findChildren<QLabel*>().size(), 2);
  EXPECT_EQ(Main<QLabel>(u"file"_s).text(), QString());
}

// Two readings: the list's change handler runs the lower levels once by itself and once through the plant
// types.
TEST_F(MainWindowTest, StartReadsTheDefinitionsTwice) {
  Load();
  files.reads.clear();
  desktop->Start();
  EXPECT_EQ(files.reads.count(kFolder + u"VF.INI"_s), 1);
  EXPECT_EQ(files.reads.count(kFolder + u"/EINS.TXT"_s), 2);
}

TEST_F(MainWindowTest, StartConfiguresThePort) {
  settings.values[u"Schnittstelle"_s] = u"3"_s;
  settings.values[u"Adresse"_s] = u"17"_s;
  Start();
  const PortRecord& port = desktop->wiring.host.Ports[kSlot];
  EXPECT_EQ(port.PortNr, 3);
  EXPECT_EQ(port.Adr, 17);
  EXPECT_EQ(port.Settings, u"9600,o,7,1"_s);
}

TEST_F(MainWindowTest, TheTabOrderFollowsTheEye) {
  Start();
  desktop->main.activateWindow();
  QStringList order{QApplication::focusWidget() ? desktop->main.focusWidget()->objectName() : QString()};
  for (int i = 0; i < 6; ++i) {
    QTest::keyClick(desktop->main.focusWidget(), Qt::Key_Tab);
    order.append(desktop->main.focusWidget()->objectName());
  }
  EXPECT_EQ(order.join(u' '),
            u"ComboVN ComboArt TreeView CommandEmpfangen CommandSenden CommandStandard CommandVergleichen"_s);
}

TEST_F(MainWindowTest, TheTreeFillsWhatTheStripsLeave) {
  Start();
  QWidget& body = Main<QWidget>(u"body"_s);
  desktop->main.resize(800, 600 + desktop->main.menuBar()->height());
  QCoreApplication::processEvents();
  ASSERT_EQ(body.height() + desktop->main.statusBar()->height(), 600) << "the inner height is to be 600";
  EXPECT_EQ(TreeWidget().geometry(), QRect(0, 50, 800, 500));
  for (const QString& name :
       {u"CommandEmpfangen"_s, u"CommandSenden"_s, u"CommandStandard"_s, u"CommandVergleichen"_s}) {
    EXPECT_EQ(Main<QPushButton>(name).y(), 555);
  }
}

TEST_F(MainWindowTest, ButtonsAndFramesStayWhereTheyWereDesigned) {
  Start();
  const auto places = [this] {
    QList<QRect> list{Main<QWidget>(u"Frame1"_s).geometry(), Main<QWidget>(u"Frame2"_s).geometry()};
    for (const QString& name : {u"CommandEmpfangen"_s, u"CommandVergleichen"_s}) {
      const QRect button = Main<QWidget>(name).geometry();
      list.append(QRect(button.left(), 0, button.width(), button.height()));
    }
    return list;
  };
  const QList<QRect> before = places();
  desktop->main.resize(1000, 900);
  QCoreApplication::processEvents();
  EXPECT_EQ(places(), before);
}

// Everything that is visible has room for what it shows, and nothing covers anything else.
class MainWindowFonts : public GuiTest, public testing::WithParamInterface<double> {
 public:
  ~MainWindowFonts() override {
    desktop.reset();
    QApplication::setFont(before_);
  }

 protected:
  MainWindowFonts() : before_(QApplication::font()) {
    QFont font = before_;
    font.setPointSizeF(before_.pointSizeF() * GetParam());
    QApplication::setFont(font);
  }

  static void ExpectNothingCut(QWidget& window) {
    for (const auto* button : window.findChildren<QPushButton*>()) {
      if (!button->isVisible()) continue;
      EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()))
          << button->objectName().toStdString();
      EXPECT_GE(button->height(), button->fontMetrics().height() + 4) << button->objectName().toStdString();
      EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()))
          << button->objectName().toStdString();
    }
    for (const auto* label : window.findChildren<QLabel*>()) {
      if (!label->isVisible() || label->minimumWidth() == 1) continue;
      const int height =
          label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
      EXPECT_GE(label->height(), height) << label->objectName().toStdString();
      if (!label->wordWrap()) {
        EXPECT_GE(label->width(), label->sizeHint().width()) << label->objectName().toStdString();
      }
    }
    for (const auto* edit : window.findChildren<QLineEdit*>()) {
      if (!edit->isVisible()) continue;
      EXPECT_GE(edit->height(), edit->fontMetrics().height()) << edit->objectName().toStdString();
    }
  }

  static void ExpectNothingCovered(const QList<QWidget*>& widgets) {
    for (qsizetype i = 0; i < widgets.size(); ++i) {
      for (qsizetype j = i + 1; j < widgets.size(); ++j) {
        const QRect a(widgets[i]->mapToGlobal(QPoint()), widgets[i]->size());
        const QRect b(widgets[j]->mapToGlobal(QPoint()), widgets[j]->size());
        EXPECT_FALSE(a.intersects(b))
            << widgets[i]->objectName().toStdString() << " and " << widgets[j]->objectName().toStdString();
      }
    }
  }

 private:
  QFont before_;
};

TEST_P(MainWindowFonts, NothingIsCutOrCovered) {
  Start();
  QCoreApplication::processEvents();
  ExpectNothingCut(desktop->main);
  QList<QWidget*> parts{desktop->main.menuBar(), desktop->main.statusBar(), &TreeWidget()};
  for (const QString& name : {u"Frame1"_s, u"Frame2"_s, u"CommandEmpfangen"_s, u"CommandSenden"_s,
                              u"CommandStandard"_s, u"CommandVergleichen"_s}) {
    parts.append(&Main<QWidget>(name));
  }
  ExpectNothingCovered(parts);
  auto& list = Main<QComboBox>(u"ComboVN"_s);
  EXPECT_GE(list.height(), list.fontMetrics().height() + 4);
  EXPECT_TRUE(list.parentWidget()->contentsRect().contains(list.geometry()));
}

TEST_P(MainWindowFonts, NoDialogCutsItsTexts) {
  Start();
  Open(u"sK 1"_s);
  Open(u"sK 3"_s);
  desktop->auswahl.Show(
      u"Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\rBitte:"_s,
      u"PC     (Senden Abbrechen)  : AB1-123.4"_s, u"Regler (Werte neu Einlesen): AB1-012.0"_s);
  desktop->achtung.Show(u"Wirklich?"_s);
  desktop->report.Show();
  QCoreApplication::processEvents();
  for (QWidget* window :
       std::initializer_list<QWidget*>{&desktop->editors.number, &desktop->editors.text, &desktop->auswahl,
                                       &desktop->achtung, &desktop->reportDialog}) {
    ASSERT_TRUE(window->isVisible());
    ExpectNothingCut(*window);
  }
}

// A size that the user has not chosen has to be large enough; one that he has is his.
TEST_P(MainWindowFonts, AStoredSizeCountsMoreThanTheFont) {
  settings.values[u"MainWidth"_s] = u"3000"_s;
  settings.values[u"MainHeight"_s] = u"3000"_s;
  Start();
  QCoreApplication::processEvents();
  EXPECT_EQ(desktop->main.size(), QSize(Pixels(3000), Pixels(3000)));
}

INSTANTIATE_TEST_SUITE_P(Scales, MainWindowFonts, testing::Values(1.0, 1.5, 2.0));

TEST_F(MainWindowTest, FirstStartUsesTheDefaults) {
  settings.values.clear();
  Load();
  EXPECT_EQ(desktop->main.pos(), QPoint(Pixels(1000), Pixels(1000)));
  EXPECT_EQ(desktop->main.size(), QSize(Pixels(6500), Pixels(6500)));
  EXPECT_EQ(desktop->module.Adresse, 1);
  EXPECT_EQ(desktop->module.Schnittstelle, 1);
  EXPECT_EQ(desktop->module.Inifile, u"VF.INI"_s);
  EXPECT_EQ(desktop->module.Inipath, u"/programm"_s);
  EXPECT_EQ(desktop->module.Userpath, u"/programm"_s);
}

TEST_F(MainWindowTest, TheStoredPlaceComesBack) {
  settings.values[u"MainLeft"_s] = u"1500"_s;
  settings.values[u"MainTop"_s] = u"750.5"_s;
  settings.values[u"MainWidth"_s] = u"9000"_s;
  settings.values[u"MainHeight"_s] = u"7500,5"_s;
  Load();
  EXPECT_EQ(desktop->main.pos(), QPoint(Pixels(1500), Pixels(750.5)));
  EXPECT_EQ(desktop->main.size(), QSize(Pixels(9000), Pixels(7500.5)));
}

// Also where it is smaller than what the window shows: the stored place is the user's.
TEST_F(MainWindowTest, ASmallStoredWindowIsNeitherEnlargedNorMovedInAnyNumberOfRuns) {
  const QMap<QString, QString> places[] = {{{u"MainLeft"_s, u"600"_s},
                                            {u"MainTop"_s, u"600"_s},
                                            {u"MainWidth"_s, u"6000"_s},
                                            {u"MainHeight"_s, u"4500"_s}},
                                           {{u"MainLeft"_s, u"1500"_s},
                                            {u"MainTop"_s, u"1500"_s},
                                            {u"MainWidth"_s, u"1500"_s},
                                            {u"MainHeight"_s, u"750"_s}}};
  for (const auto& place : places) {
    settings.values.insert(place);
    for (int run = 0; run < 3; ++run) {
      Start();
      QCoreApplication::processEvents();
      EXPECT_EQ(desktop->main.size(),
                QSize(Pixels(place[u"MainWidth"_s].toDouble()), Pixels(place[u"MainHeight"_s].toDouble())));
      EXPECT_TRUE(desktop->main.close());
      for (auto value = place.begin(); value != place.end(); ++value)
        EXPECT_EQ(settings.values[value.key()], value.value()) << value.key().toStdString() << run;
    }
  }
}

TEST_F(MainWindowTest, TheLayoutTakesAnyHeight) {
  Start();
  const int menu = desktop->main.menuBar()->height();
  for (const int inner : {300, 120, 100, 60, 30}) {
    desktop->main.resize(500, inner + menu);
    QCoreApplication::processEvents();
    ASSERT_EQ(desktop->main.height(), inner + menu);
    EXPECT_EQ(TreeWidget().pos(), QPoint(0, 50)) << inner;
    EXPECT_EQ(TreeWidget().height(), std::max(inner - 100, 0)) << inner;
    EXPECT_EQ(Main<QPushButton>(u"CommandSenden"_s).y(), inner - 45) << inner;
  }
}

TEST_F(MainWindowTest, SettingsThatAreNoNumbersAreReportedAndReplaced) {
  settings.values[u"MainWidth"_s] = u"breit"_s;
  settings.values[u"Adresse"_s] = u"abc"_s;
  settings.values[u"Schnittstelle"_s] = u"40000"_s;
  settings.values[u"Inifile"_s] = u"ANDERE.INI"_s;
  Load();
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 3U);
  for (const auto& shown : boxes)
    EXPECT_EQ(shown.title, u"KALIVOR"_s);
  EXPECT_EQ(boxes[1].text, RuntimeError(RuntimeError::Kind::TypeMismatch).Description());
  EXPECT_EQ(boxes[2].text, RuntimeError(RuntimeError::Kind::Overflow).Description());
  EXPECT_EQ(desktop->main.width(), Pixels(6500));
  EXPECT_EQ(desktop->module.Adresse, 1);
  EXPECT_EQ(desktop->module.Schnittstelle, 1);
  EXPECT_EQ(desktop->module.Inifile, u"ANDERE.INI"_s) << "loading goes on";
}

TEST_F(MainWindowTest, ClosingStoresPlaceAndSettings) {
  Start();
  desktop->main.setGeometry(200, 150, 500, 450);
  QCoreApplication::processEvents();
  desktop->module.Adresse = 9;
  desktop->module.Userpath = u"C:\\Werte"_s;
  EXPECT_TRUE(desktop->main.close());
  EXPECT_EQ(settings.values[u"MainLeft"_s], QString::number(Twips(desktop->main.x())));
  EXPECT_EQ(settings.values[u"MainTop"_s], QString::number(Twips(desktop->main.y())));
  EXPECT_EQ(settings.values[u"MainWidth"_s], QString::number(Twips(500)));
  EXPECT_EQ(settings.values[u"MainHeight"_s], QString::number(Twips(450)));
  EXPECT_EQ(settings.values[u"Adresse"_s], u"9"_s);
  EXPECT_EQ(settings.values[u"Schnittstelle"_s], u"1"_s);
  EXPECT_EQ(settings.values[u"Userpath"_s], u"C:\\Werte"_s);
  EXPECT_EQ(settings.values[u"Inipath"_s], kFolder);
  EXPECT_EQ(settings.values[u"Inifile"_s], u"VF.INI"_s);
}

class MainWindowStates : public GuiTest, public testing::WithParamInterface<Qt::WindowState> {};

TEST_P(MainWindowStates, KeepTheStoredPlaceButStoreTheRest) {
  settings.values[u"MainWidth"_s] = u"7000"_s;
  Start();
  desktop->main.setWindowState(GetParam());
  QCoreApplication::processEvents();
  desktop->module.Adresse = 9;
  EXPECT_TRUE(desktop->main.close());
  EXPECT_EQ(settings.values[u"MainWidth"_s], u"7000"_s);
  EXPECT_FALSE(settings.values.contains(u"MainLeft"_s));
  EXPECT_EQ(settings.values[u"Adresse"_s], u"9"_s);
}

INSTANTIATE_TEST_SUITE_P(NotNormal, MainWindowStates,
                         testing::Values(Qt::WindowMaximized, Qt::WindowMinimized, Qt::WindowFullScreen));

TEST_F(MainWindowTest, ClosingSaysThatTheSettingsCouldNotBeStored) {
  Start();
  settings.failure = u"Die Einstellungen konnten nicht gespeichert werden:\r\n/a/b.ini"_s;
  EXPECT_TRUE(desktop->main.close());
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, settings.failure);
  EXPECT_FALSE(desktop->main.isVisible());
}

TEST_F(MainWindowTest, TheEndOfTheSessionIsNotHeldUpByABox) {
  Start();
  settings.failure = u"Die Einstellungen konnten nicht gespeichert werden:\r\n/a/b.ini"_s;
  desktop->main.EndSession();
  EXPECT_FALSE(desktop->main.isVisible());
  EXPECT_TRUE(box.Take().empty());
}

TEST_F(MainWindowTest, ClosingTakesTheOtherWindowsAlong) {
  Start();
  Open(u"sK 1"_s);
  desktop->report.Show();
  EXPECT_TRUE(desktop->main.close());
  EXPECT_FALSE(desktop->editors.number.isVisible());
  EXPECT_FALSE(desktop->reportDialog.isVisible());
}

TEST_F(MainWindowTest, IsNotClosedWhileBusy) {
  Start();
  ToBusy(desktop->core);
  EXPECT_EQ(State(), u"Busy"_s);
  EXPECT_FALSE(desktop->main.isEnabled());
  EXPECT_FALSE(desktop->main.close());
  EXPECT_TRUE(desktop->main.isVisible());
  EXPECT_FALSE(settings.values.contains(u"Adresse"_s));
  FromBusy(desktop->core);
  EXPECT_TRUE(desktop->main.close());
}

TEST_F(MainWindowTest, TheEndOfTheSessionAsksToStopAndClosesAfterwards) {
  Start();
  ToBusy(desktop->core);
  desktop->main.EndSession();
  EXPECT_EQ(desktop->module.Abbruch, kTrue);
  EXPECT_TRUE(desktop->main.isVisible());
  FromBusy(desktop->core);
  QCoreApplication::processEvents();
  EXPECT_FALSE(desktop->main.isVisible());
  EXPECT_TRUE(settings.values.contains(u"Adresse"_s));
}

TEST_F(MainWindowTest, TheEndOfTheSessionClosesAnIdleWindowAtOnce) {
  Start();
  desktop->main.EndSession();
  EXPECT_FALSE(desktop->main.isVisible());
}

TEST_F(MainWindowTest, BusyDisablesTheEditorsAndEnablesTheAbortButton) {
  Start();
  ToBusy(desktop->core);
  ToBusy(desktop->core);
  EXPECT_FALSE(desktop->editors.number.isEnabled());
  EXPECT_FALSE(desktop->editors.text.isEnabled());
  EXPECT_TRUE(desktop->reportDialog.isEnabled());
  EXPECT_TRUE(desktop->auswahl.isEnabled());
  EXPECT_TRUE(In<QPushButton>(desktop->reportDialog, u"Command_Abbruch"_s).isEnabled());
  EXPECT_FALSE(In<QPushButton>(desktop->reportDialog, u"OKButton"_s).isEnabled());
  FromBusy(desktop->core);
  EXPECT_FALSE(desktop->main.isEnabled()) << "only the outermost pair acts";
  FromBusy(desktop->core);
  ExpectReady();
}

TEST_F(MainWindowTest, TheFocusComesBackAfterAnOperation) {
  Start();
  desktop->main.activateWindow();
  Main<QPushButton>(u"CommandStandard"_s).setFocus();
  QTest::keyClick(desktop->main.focusWidget(), Qt::Key_Space);
  ASSERT_NE(desktop->main.focusWidget(), nullptr);
  EXPECT_EQ(desktop->main.focusWidget()->objectName(), u"CommandStandard"_s);
}

TEST_F(MainWindowTest, ALongFileNameDoesNotWidenTheWindow) {
  Start();
  const int width = desktop->main.minimumSizeHint().width();
  const QString path(400, u'x');
  desktop->main.ShowFile(path);
  QCoreApplication::processEvents();
  EXPECT_EQ(Main<QLabel>(u"file"_s).text(), path);
  EXPECT_EQ(Main<QLabel>(u"file"_s).toolTip(), path);
  EXPECT_EQ(desktop->main.minimumSizeHint().width(), width);
}

TEST_F(MainWindowTest, AVersionWithoutPlantTypesHidesTheirList) {
  Start();
  desktop->module.VersionList.Select(2);
  EXPECT_EQ(desktop->module.PlantTypeList.Count(), 1);
  EXPECT_FALSE(Main<QWidget>(u"Frame2"_s).isVisible());
  EXPECT_FALSE(desktop->module.PlantTypeOffered);
  desktop->module.VersionList.Select(0);
  EXPECT_TRUE(Main<QWidget>(u"ComboArt"_s).isVisible());
}

TEST_F(MainWindowTest, SettingsOfTheCommandLineAreNotStored) {
  settings.values[u"Schnittstelle"_s] = u"2"_s;
  settings.values[u"Inipath"_s] = u"/anders/"_s;
  settings.values[u"Inifile"_s] = u"ANDERE.INI"_s;
  Start({.iniPath = u"/def"_s, .iniFile = u"VF.INI"_s, .port = qint16{5}, .address = {}});
  EXPECT_EQ(desktop->module.Schnittstelle, 5);
  EXPECT_EQ(Tree().Count(), 11) << "the definitions of the command line are read";
  EXPECT_TRUE(desktop->main.close());
  EXPECT_EQ(settings.values[u"Schnittstelle"_s], u"2"_s);
  EXPECT_EQ(settings.values[u"Inipath"_s], u"/anders/"_s);
  EXPECT_EQ(settings.values[u"Inifile"_s], u"ANDERE.INI"_s);
}

TEST_F(MainWindowTest, WhatTheUserChangesDuringSuchARunIsStored) {
  Start({.iniPath = {}, .iniFile = {}, .port = qint16{5}, .address = {}});
  desktop->module.Schnittstelle = 7;
  EXPECT_TRUE(desktop->main.close());
  EXPECT_EQ(settings.values[u"Schnittstelle"_s], u"7"_s);
}

TEST(OnScreen, APlaceOnAScreenStays) {
  const QList<QRect> screens{QRect(0, 0, 1280, 1024), QRect(1280, 0, 1280, 1024)};
  EXPECT_EQ(ui::OnScreen({100, 100, 433, 433}, screens), QRect(100, 100, 433, 433));
  EXPECT_EQ(ui::OnScreen({1400, 900, 433, 433}, screens), QRect(1400, 900, 433, 433))
      << "partly below the lower edge";
}

TEST(OnScreen, APlaceThatCannotBeReachedIsMoved) {
  const QList<QRect> screens{QRect(0, 20, 1280, 1000)};
  EXPECT_EQ(ui::OnScreen({5000, 100, 433, 433}, screens), QRect(831, 100, 433, 433));
  EXPECT_EQ(ui::OnScreen({-2000, -2000, 433, 433}, screens), QRect(0, 20, 433, 433));
  EXPECT_EQ(ui::OnScreen({100, 1010, 433, 433}, screens), QRect(100, 547, 433, 433));
  EXPECT_EQ(ui::OnScreen({-420, 100, 433, 433}, screens), QRect(0, 100, 433, 433))
      << "too little to take hold of";
}

TEST(OnScreen, AWindowLargerThanTheScreenIsMadeToFit) {
  const QList<QRect> screens{QRect(0, 0, 800, 600)};
  const QRect fitting(0, 0, 784, 560);
  EXPECT_EQ(ui::OnScreen({9000, 0, 3000, 2000}, screens), fitting) << "out of reach";
  EXPECT_EQ(ui::OnScreen({0, 0, 3000, 2000}, screens), fitting) << "its upper edge is in reach";
  EXPECT_EQ(ui::OnScreen({0, 0, 400, 2000}, screens), QRect(0, 0, 400, 560)) << "only too high";
}

TEST(OnScreen, AWindowMayLieOnTwoScreens) {
  const QList<QRect> screens{QRect(0, 0, 800, 600), QRect(800, 0, 800, 600)};
  EXPECT_EQ(ui::OnScreen({100, 0, 1400, 500}, screens), QRect(100, 0, 1400, 500));
}

TEST(OnScreen, WithoutAScreenNothingIsChanged) {
  EXPECT_EQ(ui::OnScreen({1, 2, 3, 4}, {}), QRect(1, 2, 3, 4));
}

TEST(LoadGeometry, EnormousNumbersStayNumbers) {
  MemorySettings settings;
  FakeMessageBox box;
  settings.values[u"MainLeft"_s] = u"-1e300"_s;
  settings.values[u"MainWidth"_s] = u"1e300"_s;
  settings.values[u"MainHeight"_s] = u"-5"_s;
  const QRect place = ui::LoadGeometry(settings, box, 96);
  EXPECT_EQ(place.left(), -30000);
  EXPECT_EQ(place.width(), 30000);
  EXPECT_EQ(place.height(), 1);
}

}  // namespace
}  // namespace kalivor::test
