// F1 in every window, and the manual that it opens.
#include <QComboBox>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPrintDialog>
#include <QTemporaryDir>

#include "fakes/ThrownKind.h"
#include "gui/GuiFixture.h"
#include "platform/qt/ManualHelp.h"
#include "ui/about/frmAbout.h"
#include "ui/main/HelpKey.h"

namespace kalivor::test {
namespace {

class HelpTest : public GuiTest {
 protected:
  void SetUp() override { Start(); }

  /// The page that F1 opens in `widget`.
  QString PageBy(QWidget& widget) {
    help.pages.clear();
    QTest::keyClick(&widget, Qt::Key_F1);
    EXPECT_EQ(help.pages.size(), 1);
    return help.pages.value(0);
  }
};

TEST_F(HelpTest, EveryWindowOpensItsPage) {
  EXPECT_EQ(PageBy(desktop->main), u"hauptfenster"_s);
  EXPECT_EQ(PageBy(TreeWidget()), u"hauptfenster"_s);
  EXPECT_EQ(PageBy(Main<QPushButton>(u"CommandSenden"_s)), u"hauptfenster"_s);
  EXPECT_EQ(PageBy(In<QLineEdit>(desktop->editors.number, u"TextWert"_s)), u"parameter#zahleneditor"_s);
  EXPECT_EQ(PageBy(In<QLineEdit>(desktop->editors.text, u"TextWert"_s)), u"parameter#texteditor"_s);
  EXPECT_EQ(PageBy(In<QPlainTextEdit>(desktop->reportDialog, u"TextBox"_s)), u"uebertragung#report"_s);
  EXPECT_EQ(PageBy(In<QPushButton>(desktop->auswahl, u"Button1"_s)), u"fragen"_s);
  EXPECT_EQ(PageBy(desktop->achtung), u"fragen"_s);
  ui::frmAbout about(&desktop->main, [] {});
  EXPECT_EQ(PageBy(about), u"info"_s);
}

TEST_F(HelpTest, EveryPageOfTheOptionsHasItsPlace) {
  const QMap<QString, QString> places{{u"mnuOptioenSchnittstelle"_s, u"optionen#schnittstelle"_s},
                                      {u"mnuOptioenRegler"_s, u"optionen#regler"_s},
                                      {u"mnuOptioenFiles"_s, u"optionen#dateien"_s}};
  for (const QString& item : places.keys()) {
    desktop->main.findChild<QAction*>(item)->trigger();
    EXPECT_EQ(PageBy(desktop->options), places[item]);
  }
}

TEST_F(HelpTest, WindowsOfTheToolkitHaveTheirPages) {
  QMessageBox message;
  message.setObjectName(u"MessageBox"_s);
  EXPECT_EQ(ui::ManualPageOf(message), u"meldungen"_s);
  QPrintDialog print;
  print.setObjectName(u"CDlg"_s);
  EXPECT_EQ(ui::ManualPageOf(print), u"drucken"_s);
  const QFileDialog open(nullptr, u"Öffnen"_s);
  EXPECT_EQ(ui::ManualPageOf(open), u"wertedateien"_s);
  const QFileDialog browse(nullptr, u"Parameterfile"_s);
  EXPECT_EQ(ui::ManualPageOf(browse), u"optionen#dateien"_s);
  const QFileDialog exported(nullptr, u"Exportieren"_s);
  EXPECT_EQ(ui::ManualPageOf(exported), u"parameterliste"_s);
  const QWidget unknown;
  EXPECT_EQ(ui::ManualPageOf(unknown), u"index"_s);
}

TEST_F(HelpTest, AnOpenMenuAndAnOpenListBelongToTheirWindow) {
  EXPECT_EQ(ui::ManualPageOf(Main<QMenu>(u"mnuFile"_s)), u"hauptfenster"_s);
  EXPECT_EQ(ui::ManualPageOf(*Main<QComboBox>(u"ComboVN"_s).view()), u"hauptfenster"_s);
}

TEST_F(HelpTest, OtherKeysAndABusyWindowOpenNothing) {
  QTest::keyClick(&desktop->main, Qt::Key_F1, Qt::ShiftModifier);
  QTest::keyClick(&desktop->main, Qt::Key_F2);
  ToBusy(desktop->core);
  QTest::keyClick(&desktop->main, Qt::Key_F1);
  FromBusy(desktop->core);
  EXPECT_EQ(help.pages, QStringList());
}

TEST_F(HelpTest, AFailureIsShownAndTheProgramGoesOn) {
  help.failure = u"Das Handbuch wurde nicht gefunden: /weg"_s;
  EXPECT_EQ(PageBy(desktop->main), u"hauptfenster"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, help.failure);
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
  ExpectReady();
}

class ManualTest : public testing::Test {
 protected:
  platform::ManualHelp Help(const QStringList& folders) {
    return {folders, [this](const QUrl& url) {
              shown.append(url);
              return canShow;
            }};
  }

  /// An empty page of that name in `folder`.
  static void AddPage(const QTemporaryDir& folder, const QString& name) {
    QFile file(folder.filePath(name + u".html"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  }

  QTemporaryDir first;
  QTemporaryDir second;
  QList<QUrl> shown;
  bool canShow = true;
};

TEST_F(ManualTest, ShowsThePageOfTheFirstFolderThatHasIt) {
  AddPage(second, u"optionen"_s);
  Help({first.path(), second.path()}).ShowPage(u"optionen#regler"_s);
  AddPage(first, u"optionen"_s);
  Help({first.path(), second.path()}).ShowPage(u"optionen"_s);
  QUrl place = QUrl::fromLocalFile(second.filePath(u"optionen.html"_s));
  place.setFragment(u"regler"_s);
  EXPECT_EQ(shown, (QList<QUrl>{place, QUrl::fromLocalFile(first.filePath(u"optionen.html"_s))}));
}

TEST_F(ManualTest, AMissingManualIsNamed) {
  try {
    Help({first.path(), second.path()}).ShowPage(u"optionen"_s);
    FAIL() << "nothing thrown";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Description(),
              u"Das Handbuch wurde nicht gefunden: "_s + QDir::toNativeSeparators(first.path()));
  }
  EXPECT_TRUE(shown.isEmpty());
}

TEST_F(ManualTest, ASystemWithoutABrowserIsSaid) {
  AddPage(first, u"info"_s);
  canShow = false;
  try {
    Help({first.path()}).ShowPage(u"info"_s);
    FAIL() << "nothing thrown";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Description(), u"Das Handbuch kann nicht geöffnet werden: "_s +
                                       QDir::toNativeSeparators(first.filePath(u"info.html"_s)));
  }
}

TEST_F(ManualTest, LiesBesideTheInstalledOrTheBuiltProgram) {
  EXPECT_EQ(platform::ManualFolders(u"/usr/bin"_s, u"../share/doc/kalivor/handbuch"),
            (QStringList{u"/usr/share/doc/kalivor/handbuch"_s, u"/usr/docs/handbuch"_s}));
  EXPECT_EQ(platform::ManualFolders(u"C:/KALIVOR"_s, u"handbuch").at(0), u"C:/KALIVOR/handbuch"_s);
  EXPECT_EQ(platform::ManualFolders(u"/k/build/dev/src"_s, u""_s).at(1), u"/k/build/dev/docs/handbuch"_s);
}

TEST_F(ManualTest, IsNoHelpFileOfAHelpViewer) {
  EXPECT_EQ(Help({first.path()}).HelpFile(), QString());
}

}  // namespace
}  // namespace kalivor::test
