// Taking steps back and doing them again: menu, shortcuts, editors, busy state, the status bar.
#include <QAction>
#include <QStatusBar>
#include <QToolButton>

#include "commands/OptionsCommands.h"
#include "core/ValueFiles.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class UndoTest : public GuiTest {
 protected:
  QAction& Action(const QString& name) { return *desktop->main.findChild<QAction*>(name); }
  [[nodiscard]] QString UndoCaption() { return Action(u"mnuWerkzeugeRueckgaengig"_s).text(); }
  [[nodiscard]] QString RedoCaption() { return Action(u"mnuWerkzeugeWiederholen"_s).text(); }
  [[nodiscard]] bool CanUndo() { return Action(u"mnuWerkzeugeRueckgaengig"_s).isEnabled(); }
  [[nodiscard]] bool CanRedo() { return Action(u"mnuWerkzeugeWiederholen"_s).isEnabled(); }

  /// Ctrl and the key, in the main window.
  void Press(Qt::Key key) {
    desktop->main.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&desktop->main));
    QTest::keyClick(desktop->main.windowHandle(), key, Qt::ControlModifier);
  }
  void Undo() { Press(Qt::Key_Z); }
  void Redo() { Press(Qt::Key_Y); }

  /// Opens the editor of a parameter, types the value and accepts it.
  void Edit(int index, const QString& value) {
    Open(u"sK %1"_s.arg(index));
    QWidget& editor = EditorOf(index);
    In<QLineEdit>(editor, u"TextWert"_s).setText(value);
    Click(editor, u"OKButton"_s);
  }
  QWidget& EditorOf(int index) {
    if (index == 3) return desktop->editors.text;
    return desktop->editors.number;
  }

  [[nodiscard]] QString Value(int index) {
    const ParameterRecord& record = desktop->module.Par[index];
    return record.WertText.isEmpty() ? QString::number(record.Wert) : record.WertText;
  }
  [[nodiscard]] QString NodeText(int index) { return Tree().Text(Node(u"sK %1"_s.arg(index))); }
};

TEST_F(UndoTest, NothingToTakeBackAtFirst) {
  Start();
  EXPECT_FALSE(CanUndo());
  EXPECT_FALSE(CanRedo());
  EXPECT_EQ(UndoCaption(), u"&Rückgängig"_s);
  EXPECT_EQ(RedoCaption(), u"&Wiederholen"_s);
  Undo();
  Redo();
  EXPECT_EQ(Value(1), u"1500"_s);
}

TEST_F(UndoTest, AnEditByKeyboard) {
  Start();
  Edit(1, u"20"_s);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Ändern: Drehzahl"_s);
  EXPECT_TRUE(CanUndo());
  EXPECT_FALSE(CanRedo());
  Undo();
  EXPECT_EQ(Value(1), u"1500"_s);
  EXPECT_TRUE(NodeText(1).contains(u" 150.0 "_s)) << NodeText(1).toStdString();
  EXPECT_FALSE(CanUndo());
  EXPECT_EQ(UndoCaption(), u"&Rückgängig"_s);
  EXPECT_EQ(RedoCaption(), u"&Wiederholen: Ändern: Drehzahl"_s);
  Redo();
  EXPECT_EQ(Value(1), u"200"_s);
  EXPECT_TRUE(NodeText(1).contains(u"  20.0 "_s)) << NodeText(1).toStdString();
  EXPECT_FALSE(CanRedo());
  ExpectReady();
}

TEST_F(UndoTest, ItemsOfTheMenuDoTheSame) {
  Start();
  Edit(3, u"Berta"_s);
  Action(u"mnuWerkzeugeRueckgaengig"_s).trigger();
  EXPECT_EQ(Value(3), u"Anna"_s);
  Action(u"mnuWerkzeugeWiederholen"_s).trigger();
  EXPECT_EQ(Value(3), u"Berta"_s);
}

TEST_F(UndoTest, AmpersandsOfNamesStayInTheCaption) {
  Start();
  Edit(6, u"20"_s);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Ändern: Vorlauf && Rücklauf"_s);
}

TEST_F(UndoTest, NamesThatDoNotFitAreCut) {
  Start();
  desktop->module.Par[1].Name = u"a\tb "_s + QString(100, u'x');
  Edit(1, u"20"_s);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Ändern: a b "_s + QString(47, u'x') + u'…');
}

TEST_F(UndoTest, ANewStepEndsWhatCouldBeDoneAgain) {
  Start();
  Edit(1, u"20"_s);
  Undo();
  Edit(2, u"100"_s);
  EXPECT_FALSE(CanRedo());
  EXPECT_EQ(RedoCaption(), u"&Wiederholen"_s);
}

TEST_F(UndoTest, AReceive) {
  Start();
  far->memory.SetWord(0x1F00, 7);
  far->memory.SetWord(0x1F20, 9);
  Click(desktop->main, u"CommandEmpfangen"_s);
  // And the text whose type has no length, of which nothing can be read.
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Empfangen, 3 Werte"_s);
  Undo();
  EXPECT_EQ(Value(1), u"1500"_s);
  EXPECT_EQ(Value(4), u"200"_s);
  ExpectReady();
}

TEST_F(UndoTest, OpeningAFileIsAStepAlsoAtTheStart) {
  Start();
  desktop->module.Dateiname = u"/a.qpf"_s;
  ASSERT_TRUE(WriteValueFile(desktop->core));
  Edit(1, u"20"_s);
  desktop->OpenFile(u"/a.qpf"_s);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Laden, 1 Wert"_s);
  Undo();
  EXPECT_EQ(Value(1), u"200"_s);
  EXPECT_EQ(desktop->module.Dateiname, u"/a.qpf"_s) << "the file stays the current one";
}

TEST_F(UndoTest, TheStandardButton) {
  Start();
  Edit(1, u"20"_s);
  Click(desktop->main, u"CommandStandard"_s);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Standardwerte, 1 Wert"_s);
  Undo();
  EXPECT_EQ(Value(1), u"200"_s);
}

// The lists, and the frame of the plant types, follow on the screen.
TEST_F(UndoTest, AVersionSwitch) {
  Start();
  auto& versions = Main<QComboBox>(u"ComboVN"_s);
  auto& plants = Main<QComboBox>(u"ComboArt"_s);
  Edit(1, u"20"_s);
  plants.setCurrentIndex(1);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Anlageart A"_s);
  Toggle(u"sK 2"_s);
  versions.setCurrentIndex(2);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Reglerversion LFT-020.5"_s);
  EXPECT_FALSE(Main<QWidget>(u"Frame2"_s).isVisible());
  EXPECT_EQ(plants.count(), 1);
  Undo();
  EXPECT_EQ(versions.currentText(), u"AB1-123.4"_s);
  EXPECT_EQ(plants.count(), 3);
  EXPECT_EQ(plants.currentText(), u"A"_s);
  EXPECT_TRUE(Main<QWidget>(u"Frame2"_s).isVisible());
  EXPECT_FALSE(Tree().Checked(Node(u"sK 2"_s))) << "its mark";
  Undo();
  EXPECT_EQ(plants.currentText(), QString());
  EXPECT_EQ(Value(1), u"200"_s);
  Undo();
  EXPECT_EQ(Value(1), u"1500"_s);
  Redo();
  Redo();
  Redo();
  EXPECT_EQ(versions.currentText(), u"LFT-020.5"_s);
  EXPECT_FALSE(Main<QWidget>(u"Frame2"_s).isVisible());
  // What is selected next goes on from there.
  versions.setCurrentIndex(0);
  EXPECT_EQ(plants.count(), 3);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Reglerversion AB1-123.4"_s);
}

// Lists of the same length with other entries.
TEST_F(UndoTest, OtherPlantTypesOfTheSameNumber) {
  files.AddText(kFolder + u"VF.INI"_s,
                u"Version  Adressen  Definitionen  Anlagen  Kennung\r\n"
                "AB1-123.4  -  EINS.TXT  A B -  WR\r\n"
                "AB1-012.0  -  ZWEI.TXT  C D -  WR\r\n"_s);
  Start();
  auto& plants = Main<QComboBox>(u"ComboArt"_s);
  Main<QComboBox>(u"ComboVN"_s).setCurrentIndex(1);
  EXPECT_EQ(plants.itemText(1), u"C"_s);
  Undo();
  EXPECT_EQ(plants.itemText(1), u"A"_s);
}

TEST_F(UndoTest, AnOpenEditorIsClosedFirst) {
  Start();
  Edit(1, u"20"_s);
  Open(u"sK 1"_s);
  In<QLineEdit>(desktop->editors.number, u"TextWert"_s).setText(u"30"_s);
  Undo();
  EXPECT_FALSE(desktop->editors.number.isVisible());
  EXPECT_EQ(Value(1), u"1500"_s) << "what was typed is dropped";
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
  Open(u"sK 3"_s);
  Redo();
  EXPECT_FALSE(desktop->editors.text.isVisible());
  EXPECT_EQ(Value(1), u"200"_s);
}

// Without a step an editor has no reason to close.
TEST_F(UndoTest, AnOpenEditorStaysWhereThereIsNothingToTakeBack) {
  Start();
  Open(u"sK 1"_s);
  desktop->undo.Undo();
  EXPECT_TRUE(desktop->editors.number.isVisible());
}

TEST_F(UndoTest, NothingIsTakenBackWhileBusy) {
  Start();
  Edit(1, u"20"_s);
  int moments = 0;
  events.onPending = [&] {
    if (moments++ > 0) return;
    desktop->main.activateWindow();
    QTest::keyClick(desktop->main.windowHandle(), Qt::Key_Z, Qt::ControlModifier);
    desktop->undo.Undo();
    Action(u"mnuWerkzeugeRueckgaengig"_s).trigger();
    EXPECT_EQ(Value(1), u"200"_s);
  };
  far->memory.SetWord(0x1F00, 200);
  Click(desktop->main, u"CommandVergleichen"_s);
  EXPECT_GT(moments, 0);
  EXPECT_EQ(Value(1), u"200"_s);
  Undo();
  EXPECT_EQ(Value(1), u"1500"_s);
}

TEST_F(UndoTest, AnAbortedReceiveCanBeTakenBack) {
  Start();
  far->memory.SetWord(0x1F00, 7);
  int dots = 0;
  events.onPending = [&] {
    clock.Sleep(1000);
    if (++dots == 4) desktop->module.Abbruch = kTrue;
  };
  Click(desktop->main, u"CommandEmpfangen"_s);
  EXPECT_EQ(Value(1), u"7"_s);
  Undo();
  EXPECT_EQ(Value(1), u"1500"_s);
  ExpectReady();
}

TEST_F(UndoTest, OtherFilesEndTheHistory) {
  Start();
  Edit(1, u"20"_s);
  EXPECT_TRUE(desktop->options.OnApply({0, 1, kFolder + u"VF.INI"_s, false}));
  EXPECT_TRUE(CanUndo()) << "a port is nothing of the table";
  EXPECT_TRUE(desktop->options.OnApply({0, 1, kFolder + u"VF.INI"_s, true}));
  EXPECT_FALSE(CanUndo());
  EXPECT_EQ(UndoCaption(), u"&Rückgängig"_s);
}

TEST_F(UndoTest, AnErrorKeepsWhatItHadChangedAsAStep) {
  Start();
  desktop->guard([this] {
    desktop->module.SetNumber(1, 7, ValueSource::Edited);
    throw RuntimeError(RuntimeError::Kind::Overflow);
  });
  EXPECT_EQ(box.Take().size(), 1U);
  EXPECT_EQ(UndoCaption(), u"&Rückgängig: Ändern: Drehzahl"_s);
}

// 64 MiB hold as many steps as anybody makes; a smaller stack shows what happens then.
TEST_F(UndoTest, TheOldestStepsGoWhereThereIsNoRoom) {
  Start();
  ChangeLog& log = desktop->changes;
  ui::UndoStack small(desktop->core, log, 10'000);
  const auto edit = [&](int length) {
    log.Begin();
    desktop->module.SetText(3, QString(length, u'x'), ValueSource::Edited);
    log.End();
  };
  for (int length = 1000; length < 1010; ++length)
    edit(length);
  int taken = 0;
  for (; !small.UndoName().isEmpty(); ++taken)
    small.Undo();
  EXPECT_EQ(taken, 2) << "4 KB each";
  EXPECT_EQ(Value(3).size(), 1007);
  for (; !small.RedoName().isEmpty(); --taken)
    small.Redo();
  EXPECT_EQ(taken, 0);
  EXPECT_EQ(Value(3).size(), 1009);
  edit(10'000);
  EXPECT_EQ(small.UndoName(), QString()) << "larger than all the room";
  edit(10);
  EXPECT_EQ(small.UndoName(), QString()) << "so is its way back";
  edit(11);
  EXPECT_EQ(small.UndoName(), u"Ändern: Name"_s);
}

TEST(UndoStack, Has64MiB) {
  EXPECT_EQ(ui::UndoStack::kMost_bytes, 67'108'864);
}

TEST_F(UndoTest, TheStatusBarTellsWhatIsOutside) {
  Start();
  auto& outside = Main<QToolButton>(u"outside"_s);
  EXPECT_FALSE(outside.isVisible());
  desktop->guard([this] { desktop->module.SetNumber(1, 30'001, ValueSource::Edited); });
  EXPECT_FALSE(outside.isVisible()) << "nothing was loaded or received";
  far->memory.SetWord(0x1F00, 30'002);
  far->memory.SetWord(0x1F20, 2000);
  Click(desktop->main, u"CommandEmpfangen"_s);
  EXPECT_TRUE(outside.isVisible());
  EXPECT_EQ(outside.text(), u"2 Werte außerhalb"_s);
  Edit(4, u"20"_s);
  EXPECT_EQ(outside.text(), u"1 Wert außerhalb"_s);
  Edit(1, u"20"_s);
  EXPECT_FALSE(outside.isVisible());
  Undo();
  EXPECT_EQ(outside.text(), u"1 Wert außerhalb"_s);
  EXPECT_TRUE(outside.isVisible());
}

TEST_F(UndoTest, AClickOnItShowsTheListOfThem) {
  Start();
  far->memory.SetWord(0x1F20, 2000);
  Click(desktop->main, u"CommandEmpfangen"_s);
  auto& outside = Main<QToolButton>(u"outside"_s);
  QTest::mouseClick(&outside, Qt::LeftButton);
  ASSERT_NE(desktop->list, nullptr);
  EXPECT_TRUE(desktop->list->isVisible());
  EXPECT_TRUE(In<QPushButton>(*desktop->list, u"filterOutside"_s).isChecked());
  desktop->list->close();
  outside.setFocus();
  QTest::keyClick(&outside, Qt::Key_Space);
  EXPECT_TRUE(desktop->list->isVisible());
}

TEST_F(UndoTest, TheFieldIsReachedBehindTheButtonsAndHasAName) {
  Start();
  far->memory.SetWord(0x1F20, 2000);
  Click(desktop->main, u"CommandEmpfangen"_s);
  desktop->reportDialog.hide();
  auto& outside = Main<QToolButton>(u"outside"_s);
  EXPECT_EQ(outside.accessibleDescription(), u"Werte außerhalb ihrer Grenzen"_s);
  EXPECT_GE(outside.width(), outside.fontMetrics().horizontalAdvance(outside.text()));
  EXPECT_GE(outside.height(), outside.fontMetrics().height());
  EXPECT_TRUE(desktop->main.statusBar()->rect().contains(outside.geometry()));
  desktop->main.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&desktop->main));
  Main<QPushButton>(u"CommandVergleichen"_s).setFocus();
  QTest::keyClick(desktop->main.focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(desktop->main.focusWidget(), &outside);
  QTest::keyClick(desktop->main.focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(desktop->main.focusWidget()->objectName(), u"ComboVN"_s);
}

}  // namespace
}  // namespace kalivor::test
