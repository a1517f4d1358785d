// The window with the report for a support desk.
#include "ui/line/DiagnosisWindow.h"

#include <QAction>
#include <QTextBrowser>

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class DiagnosisTest : public GuiTest {
 protected:
  DiagnosisTest() {
    AddDefinitions(files);
    UseController(u"AB1-123.4"_s);
    computer = [] {
      return ui::Computer{
          {{u"Rechner"_s, u"pc17"_s}, {u"Benutzer"_s, u"meier"_s}}, u"meier"_s, u"pc17"_s, u"/home/meier"_s};
    };
  }

  void Open() { Main<QAction>(u"mnuWerkzeugeDiagnose"_s).trigger(); }
  ui::DiagnosisWindow& Window() { return *desktop->diagnosis; }
  QTextBrowser& Preview() { return In<QTextBrowser>(Window(), u"Preview"_s); }
  QString Shown() { return Preview().toPlainText(); }
  void Press(Qt::Key key) {
    Window().activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &Window(); }));
    QTest::keyClick(Window().windowHandle(), key);
  }
};

TEST_F(DiagnosisTest, ShowsTheReport) {
  Start();
  Open();
  EXPECT_TRUE(Window().isVisible());
  EXPECT_EQ(Window().windowTitle(), u"Diagnosebericht"_s);
  EXPECT_EQ(Preview().accessibleName(), u"Vorschau des Berichts"_s);
  EXPECT_EQ(Window().focusWidget(), &Preview());
  for (const QString& text : {u"Programm und System"_s, u"Schnittstellen"_s, u"Qualität der Leitung"_s,
                              u"Seit dem Start wurde nichts gesendet."_s})
    EXPECT_TRUE(Shown().contains(text)) << text.toStdString();
}

TEST_F(DiagnosisTest, NamesAreLeftOutUntilTheUserWantsThem) {
  Start();
  Open();
  EXPECT_FALSE(Shown().contains(u"meier"_s));
  EXPECT_FALSE(Shown().contains(u"pc17"_s));
  In<QCheckBox>(Window(), u"LeaveOutNames"_s).click();
  EXPECT_TRUE(Shown().contains(u"meier"_s));
  EXPECT_TRUE(Shown().contains(u"pc17"_s));
  Window().close();
  Open();
  EXPECT_FALSE(Shown().contains(u"meier"_s)) << "the next time it begins anew";
}

TEST_F(DiagnosisTest, FoldersAreLeftOutUntilTheUserWantsThem) {
  Start();
  desktop->module.Userpath = u"/home/meier/werte"_s;
  Open();
  EXPECT_FALSE(Shown().contains(u"werte"_s));
  In<QCheckBox>(Window(), u"LeaveOutFolders"_s).click();
  EXPECT_TRUE(Shown().contains(u"/home/…/werte"_s)) << "names are another matter";
}

TEST_F(DiagnosisTest, TheReportIsSavedAsItIsShown) {
  Start();
  Open();
  dialogs.answers = {kFolder + u"bericht"_s};
  Click(Window(), u"Save"_s);
  ASSERT_EQ(dialogs.shown.size(), 1U);
  EXPECT_EQ(dialogs.shown[0].title, u"Diagnosebericht speichern"_s);
  const QString html = QString::fromUtf8(files.files[kFolder + u"bericht.html"_s].bytes);
  EXPECT_TRUE(html.startsWith(u"<!DOCTYPE html>"_s));
  EXPECT_TRUE(html.contains(u"Programm und System"_s));
  EXPECT_FALSE(html.contains(u"meier"_s));
}

TEST_F(DiagnosisTest, WhatCannotBeSavedIsSaidInABox) {
  Start();
  Open();
  files.writeError = u"Kein Platz."_s;
  dialogs.answers = {kFolder + u"bericht.html"_s};
  Click(Window(), u"Save"_s);
  EXPECT_EQ(box.Take().size(), 1);
}

// What the line has carried, its picture, and the lines of a report that has been closed since.
TEST_F(DiagnosisTest, SaysWhatATransferWasLike) {
  Start();
  Click(desktop->main, u"CommandEmpfangen"_s);
  const QString first = desktop->report.Text().section(u"\r\n"_s, 0, 0);
  ASSERT_FALSE(first.isEmpty());
  Click(desktop->reportDialog, u"OKButton"_s);
  Open();
  EXPECT_TRUE(Shown().contains(first)) << Shown().toStdString();
  EXPECT_TRUE(Shown().contains(u"Anfragen seit dem Start: "_s));
  EXPECT_EQ(Shown().count(QChar::ObjectReplacementCharacter), 2) << "a picture each";
  EXPECT_FALSE(Preview().document()->resource(QTextDocument::ImageResource, QUrl(u"bild:0"_s)).isNull());
}

TEST_F(DiagnosisTest, F5AndTheButtonLookAgain) {
  Start();
  Open();
  EXPECT_FALSE(Shown().contains(u"/dev/neu"_s));
  ports.entries = {platform::PortEntry{1, u"/dev/neu"_s}};
  Press(Qt::Key_F5);
  EXPECT_TRUE(Shown().contains(u"/dev/neu"_s));
  ports.entries.clear();
  Click(Window(), u"CollectAgain"_s);
  EXPECT_FALSE(Shown().contains(u"/dev/neu"_s));
}

TEST_F(DiagnosisTest, NothingIsFetched) {
  Start();
  Open();
  const QUrl file = QUrl::fromLocalFile(QStringLiteral(KALIVOR_SOURCE_DIR "/docs/images/main.png"));
  ASSERT_TRUE(QFile::exists(file.toLocalFile()));
  EXPECT_EQ(Preview().document()->resource(QTextDocument::ImageResource, file).toByteArray(), QByteArray());
  EXPECT_TRUE(Preview().document()->resource(QTextDocument::ImageResource, file).value<QPixmap>().isNull());
}

TEST_F(DiagnosisTest, TakesNoInputWhileALineIsBusy) {
  Start();
  Open();
  ToBusy(desktop->core);
  EXPECT_FALSE(Window().isEnabled());
  FromBusy(desktop->core);
  EXPECT_TRUE(Window().isEnabled());
}

TEST_F(DiagnosisTest, HasItsPageOfTheManualAndGoesWithEscape) {
  Start();
  Open();
  Press(Qt::Key_F1);
  EXPECT_EQ(help.pages, QStringList{u"diagnose"_s});
  Press(Qt::Key_Escape);
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(DiagnosisTest, ComesBackWhereItWasLeft) {
  Start();
  Open();
  Window().setGeometry(40, 30, 600, 320);
  Window().close();
  UseController(u"AB1-123.4"_s);
  Start();
  Open();
  EXPECT_EQ(Window().geometry(), QRect(40, 30, 600, 320));
}

}  // namespace
}  // namespace kalivor::test
