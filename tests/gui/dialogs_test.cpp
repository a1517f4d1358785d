// The two questions, and the message box.
#include <QMessageBox>
#include <QTimer>
#include <QWindow>

#include "core/Busy.h"
#include "gui/GuiFixture.h"
#include "platform/qt/QtMessageBox.h"

namespace kalivor::test {
namespace {

class DialogsTest : public GuiTest {};

// What belongs to the active window counts as active for the toolkit's own waiting.
bool WaitForKeyboard(const QWidget& window) {
  return QTest::qWaitFor([&window] { return QApplication::activeWindow() == &window; });
}

TEST_F(DialogsTest, TheChoiceShowsItsTexts) {
  Start();
  desktop->auswahl.Show(u"Eins\n\rzwei\r\ndrei"_s, u"PC: A & B"_s, u"Regler: C"_s);
  EXPECT_TRUE(desktop->auswahl.isVisible());
  EXPECT_FALSE(desktop->auswahl.isModal());
  EXPECT_EQ(desktop->auswahl.objectName(), u"DlgAuswahl"_s);
  EXPECT_EQ(desktop->auswahl.windowTitle(), u"Wählen"_s);
  EXPECT_EQ(In<QLabel>(desktop->auswahl, u"Label1"_s).text(), u"Eins\nzwei\ndrei"_s);
  EXPECT_EQ(In<QPushButton>(desktop->auswahl, u"Button1"_s).text(), u"PC: A && B"_s)
      << "shows as one ampersand";
  EXPECT_EQ(In<QPushButton>(desktop->auswahl, u"Button2"_s).text(), u"Regler: C"_s);
}

TEST_F(DialogsTest, TheButtonsOfTheChoiceAnswerAndHide) {
  Start();
  for (const qint16 answer : {qint16{1}, qint16{2}}) {
    desktop->module.Antwort = -1;
    desktop->auswahl.Show(u"?"_s, u"a"_s, u"b"_s);
    Click(desktop->auswahl, u"Button%1"_s.arg(answer));
    EXPECT_EQ(desktop->module.Antwort, answer);
    EXPECT_FALSE(desktop->auswahl.isVisible());
  }
}

TEST_F(DialogsTest, TheChoiceCannotBeClosedWithoutAnAnswer) {
  Start();
  desktop->module.Antwort = -1;
  desktop->auswahl.Show(u"?"_s, u"a"_s, u"b"_s);
  EXPECT_FALSE(desktop->auswahl.close());
  QTest::keyClick(&desktop->auswahl, Qt::Key_Escape);
  EXPECT_TRUE(desktop->auswahl.isVisible());
  EXPECT_EQ(desktop->module.Antwort, -1);
  EXPECT_FALSE(desktop->auswahl.windowFlags() & Qt::WindowCloseButtonHint);
}

/// The choice as the user finds it, with the keyboard.
class ChoiceKeyboardTest : public GuiTest {
 protected:
  void Ask() {
    desktop->main.ShowAgain();
    ASSERT_TRUE(WaitForKeyboard(desktop->main));
    desktop->module.Antwort = -1;
    desktop->auswahl.Show(u"?"_s, u"a"_s, u"b"_s);
    ASSERT_TRUE(WaitForKeyboard(desktop->auswahl));
  }
  void Press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
  [[nodiscard]] static QString Focus() { return QApplication::focusWidget()->objectName(); }
};

// Whoever was typing or pressing keys when it appeared has not read it.
TEST_F(ChoiceKeyboardTest, NoKeyAnswersBeforeTab) {
  Start();
  // Once more after an answer: the button that gave it must not have kept the focus.
  for (int times = 0; times < 2; ++times) {
    ASSERT_NO_FATAL_FAILURE(Ask());
    for (const QString& name : {u"Button1"_s, u"Button2"_s}) {
      EXPECT_FALSE(In<QPushButton>(desktop->auswahl, name).isDefault()) << name.toStdString();
      EXPECT_FALSE(In<QPushButton>(desktop->auswahl, name).hasFocus()) << name.toStdString();
    }
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Escape})
      Press(key);
    EXPECT_EQ(desktop->module.Antwort, -1);
    EXPECT_TRUE(desktop->auswahl.isVisible());
    Press(Qt::Key_Tab);
    EXPECT_EQ(Focus(), u"Button1"_s);
    Press(Qt::Key_Space);
    EXPECT_EQ(desktop->module.Antwort, 1);
  }
}

TEST_F(ChoiceKeyboardTest, EnterAndSpacePressTheButtonThatTabHasReached) {
  Start();
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
    ASSERT_NO_FATAL_FAILURE(Ask());
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab);
    EXPECT_EQ(Focus(), u"Button2"_s);
    Press(key);
    EXPECT_EQ(desktop->module.Antwort, 2);
    EXPECT_FALSE(desktop->auswahl.isVisible());
  }
}

// The first column from the left that a caption of this button colours differently than no caption.
int FirstColumnOfCaption(QPushButton& button) {
  const QString caption = button.text();
  const QImage with = button.grab().toImage();
  button.setText(QString());
  const QImage without = button.grab().toImage();
  button.setText(caption);
  for (int x = 0; x < with.width(); ++x) {
    for (int y = 0; y < with.height(); ++y) {
      if (with.pixel(x, y) != without.pixel(x, y)) return x;
    }
  }
  return -1;
}

// Their columns are laid out with blanks and stand below each other.
TEST_F(DialogsTest, TheCaptionsOfTheChoiceAreLeftAligned) {
  Start();
  desktop->auswahl.Show(u"?"_s, u"PC: A"_s, u"PC: A and much that follows it"_s);
  QCoreApplication::processEvents();
  const int first = FirstColumnOfCaption(In<QPushButton>(desktop->auswahl, u"Button1"_s));
  EXPECT_GE(first, 6) << "too near the frame";
  EXPECT_LT(first, 40);
  EXPECT_EQ(FirstColumnOfCaption(In<QPushButton>(desktop->auswahl, u"Button2"_s)), first);
}

TEST_F(DialogsTest, TheWarningIsAnsweredWithYesOrNo) {
  Start();
  EXPECT_EQ(desktop->achtung.windowTitle(), u"Achtung!"_s);
  EXPECT_EQ(desktop->achtung.objectName(), u"DlgAchtung"_s);
  EXPECT_EQ(In<QPushButton>(desktop->achtung, u"OKButton"_s).text(), u"Ja"_s);
  EXPECT_EQ(In<QPushButton>(desktop->achtung, u"CancelButton"_s).text(), u"Nein"_s);
  desktop->module.Antwort = -1;
  desktop->achtung.Show(u"Eins\n\rzwei"_s);
  EXPECT_FALSE(desktop->achtung.isModal());
  EXPECT_EQ(In<QLabel>(desktop->achtung, u"Label1"_s).text(), u"Eins\nzwei"_s);
  Click(desktop->achtung, u"OKButton"_s);
  EXPECT_EQ(desktop->module.Antwort, 1);
  EXPECT_FALSE(desktop->achtung.isVisible());
  desktop->achtung.Show(u"?"_s);
  Click(desktop->achtung, u"CancelButton"_s);
  EXPECT_EQ(desktop->module.Antwort, 0);
  EXPECT_FALSE(desktop->achtung.isVisible());
}

// A key pressed too early is no consent.
TEST_F(DialogsTest, NoHasTheFocusOfTheWarning) {
  Start();
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space}) {
    desktop->main.ShowAgain();
    ASSERT_TRUE(WaitForKeyboard(desktop->main));
    desktop->module.Antwort = -1;
    desktop->achtung.Show(u"?"_s);
    ASSERT_TRUE(WaitForKeyboard(desktop->achtung));
    ASSERT_EQ(QApplication::focusWidget(), &In<QPushButton>(desktop->achtung, u"CancelButton"_s));
    QTest::keyClick(QApplication::focusWidget(), key);
    EXPECT_EQ(desktop->module.Antwort, 0);
  }
}

TEST_F(DialogsTest, QuestionsStayAboveTheMainWindow) {
  Start();
  desktop->auswahl.Show(u"?"_s, u"a"_s, u"b"_s);
  desktop->achtung.Show(u"?"_s);
  for (const QWidget* question : std::initializer_list<QWidget*>{&desktop->auswahl, &desktop->achtung}) {
    EXPECT_EQ(question->windowHandle()->transientParent(), desktop->main.windowHandle())
        << question->objectName().toStdString();
  }
}

TEST_F(DialogsTest, ClosingTheWarningIsNo) {
  Start();
  desktop->module.Antwort = -1;
  desktop->achtung.Show(u"?"_s);
  desktop->achtung.close();
  EXPECT_EQ(desktop->module.Antwort, 0);
  desktop->module.Antwort = -1;
  desktop->achtung.Show(u"?"_s);
  QTest::keyClick(&desktop->achtung, Qt::Key_Escape);
  EXPECT_EQ(desktop->module.Antwort, 0);
  EXPECT_FALSE(desktop->achtung.isVisible());
}

TEST_F(DialogsTest, AskingLeavesTheMainWindowDisabledUntilTheAnswer) {
  Start();
  const BusyGuard busy(desktop->core);
  int waits = 0;
  events.onWait = [&] {
    if (++waits < 3) return;
    EXPECT_FALSE(desktop->main.isEnabled());
    EXPECT_TRUE(desktop->auswahl.isEnabled());
    Click(desktop->auswahl, u"Button2"_s);
  };
  EXPECT_EQ(AskChoice(desktop->core, u"?"_s, u"a"_s, u"b"_s), 2);
  EXPECT_EQ(waits, 3);
}

/// What a message box on the screen looked like before its OK was pressed.
struct SeenBox {
  QString title, text;
  QStringList buttons;
  bool modal = false;
  QWidget* owner = nullptr;
};

// The box has an event loop of its own; the timer looks at it there.
SeenBox SeeBox(platform::MessageBox& box, const QString& text, const QString& title) {
  SeenBox seen;
  QTimer::singleShot(0, qApp, [&seen] {
    auto* shown = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (shown == nullptr) return;
    seen = {shown->windowTitle(), shown->text(), {}, shown->isModal(), shown->parentWidget()};
    for (const QAbstractButton* button : shown->buttons())
      seen.buttons.append(button->objectName());
    EXPECT_EQ(shown->textFormat(), Qt::PlainText);
    EXPECT_EQ(shown->buttons().size(), 1);
    EXPECT_EQ(shown->standardButtons(), QMessageBox::Ok);
    shown->accept();
  });
  box.Show(text, title);
  return seen;
}

TEST_F(DialogsTest, TheMessageBoxShowsItsText) {
  platform::QtMessageBox real;
  const SeenBox seen = SeeBox(real, u"Fehler beim Lesen von\r\n<b>\r\nx"_s, u"Titel"_s);
  EXPECT_EQ(seen.title, u"Titel"_s);
  EXPECT_EQ(seen.text, u"Fehler beim Lesen von\n<b>\nx"_s);
  EXPECT_TRUE(seen.modal);
}

TEST_F(DialogsTest, TheMessageBoxLeavesBlanksAndLineBreaksAtTheEndsOfItsText) {
  platform::QtMessageBox real;
  EXPECT_EQ(SeeBox(real, u"  eins\r\nzwei  \r\n"_s, QString()).text, u"  eins\nzwei  \n"_s);
  EXPECT_EQ(SeeBox(real, u"\r\n\r\neins"_s, QString()).text, u"\n\neins"_s);
}

TEST_F(DialogsTest, AMessageBoxWithoutTitleCarriesTheProgramsName) {
  platform::QtMessageBox real;
  int before = 0;
  real.BeforeShow = [&before] { ++before; };
  EXPECT_EQ(SeeBox(real, u"x"_s, QString()).title, u"KALIVOR"_s);
  EXPECT_EQ(before, 1) << "the splash screen hears of it";
}

TEST_F(DialogsTest, AQuestionIsAnsweredByItsButtons) {
  platform::QtMessageBox real;
  const auto answer = [&real](const std::function<void(QMessageBox&)>& user) {
    QTimer::singleShot(0, qApp, [&user] {
      auto* shown = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(shown, nullptr);
      EXPECT_EQ(shown->text(), u"Soll <sie>\nersetzt werden?"_s);
      EXPECT_EQ(shown->textFormat(), Qt::PlainText);
      user(*shown);
    });
    return real.Confirm(u"Soll <sie>\r\nersetzt werden?"_s, u"Ersetzen"_s);
  };
  const auto press = [](QMessageBox& question, const QString& caption) {
    for (QAbstractButton* button : question.buttons()) {
      if (button->text() == caption) button->click();
    }
  };
  EXPECT_TRUE(answer([&](QMessageBox& question) { press(question, u"Ersetzen"_s); }));
  EXPECT_FALSE(answer([&](QMessageBox& question) { press(question, u"Abbrechen"_s); }));
  EXPECT_FALSE(answer([](QMessageBox& question) { QTest::keyClick(&question, Qt::Key_Return); }));
  EXPECT_FALSE(answer([](QMessageBox& question) { QTest::keyClick(&question, Qt::Key_Escape); }));
  EXPECT_FALSE(answer([](QMessageBox& question) { question.close(); }));
}

// It would keep the program from ending.
TEST_F(DialogsTest, AMessageBoxThatWaitsIsClosedAtTheEndOfTheSession) {
  Start();
  platform::QtMessageBox real;
  QTimer::singleShot(0, qApp, [this] { desktop->main.EndSession(); });
  QTimer user;
  user.setSingleShot(true);
  bool neededTheUser = false;
  user.callOnTimeout([&neededTheUser] {
    neededTheUser = true;
    QApplication::activeModalWidget()->close();
  });
  user.start(2000);
  real.Show(u"x"_s, QString(), platform::MessageBox::Icon::None);
  EXPECT_FALSE(neededTheUser);
  EXPECT_FALSE(desktop->main.isVisible());
}

TEST_F(DialogsTest, AMessageBoxHasNoDisabledOwner) {
  Start();
  desktop->main.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&desktop->main));
  platform::QtMessageBox real;
  EXPECT_EQ(SeeBox(real, u"x"_s, QString()).owner, &desktop->main);
  desktop->main.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&desktop->main));
  const BusyGuard busy(desktop->core);
  ASSERT_EQ(QApplication::activeWindow(), &desktop->main);
  EXPECT_EQ(SeeBox(real, u"x"_s, QString()).owner, nullptr);
}

}  // namespace
}  // namespace kalivor::test
