// The two parameter editors, opened from the tree.
#include <QWindow>

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class EditorsTest : public GuiTest {
 protected:
  [[nodiscard]] QDialog& Number() { return desktop->editors.number; }
  [[nodiscard]] QDialog& Text() { return desktop->editors.text; }
  [[nodiscard]] QString Field(QWidget& editor, const QString& name) {
    return In<QLineEdit>(editor, name).text();
  }
  [[nodiscard]] QString Label(QWidget& editor, const QString& name) {
    return In<QLabel>(editor, name).text();
  }

  void Type(QWidget& editor, const QString& text) {
    auto& field = In<QLineEdit>(editor, u"TextWert"_s);
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Delete);
    field.insert(text);
  }

  /// Edits the numeric parameter 1 as `typed` with these decimals, and says what is stored.
  qint32 Edit(qint16 shown, qint16 dropped, const QString& typed) {
    ParameterRecord& record = desktop->module.Par[1];
    record.Zahl1 = shown;
    record.Zahl2 = dropped;
    record.Min = -2'000'000'000;
    record.Max = 2'000'000'000;
    record.Wert = 77;
    Open(u"sK 1"_s);
    Type(Number(), typed);
    Click(Number(), u"OKButton"_s);
    return record.Wert;
  }
};

TEST_F(EditorsTest, TheNumericEditorHasItsControls) {
  Start();
  Open(u"sK 1"_s);
  ASSERT_TRUE(Number().isVisible());
  EXPECT_FALSE(Number().isModal());
  EXPECT_EQ(Number().objectName(), u"DialogEdit"_s);
  EXPECT_EQ(Number().windowTitle(), u"Edit Parameter"_s);
  EXPECT_EQ(In<QPushButton>(Number(), u"CommandStd"_s).text(), u"<"_s);
  EXPECT_EQ(In<QPushButton>(Number(), u"OKButton"_s).text(), u"OK"_s);
  EXPECT_EQ(In<QPushButton>(Number(), u"CancelButton"_s).text(), u"Abbrechen"_s);
  EXPECT_TRUE(In<QPushButton>(Number(), u"OKButton"_s).isDefault());
  for (const QString& name : {u"TextVon"_s, u"TextBis"_s, u"TextStd"_s})
    EXPECT_TRUE(In<QLineEdit>(Number(), name).isReadOnly()) << name.toStdString();
  EXPECT_FALSE(In<QLineEdit>(Number(), u"TextWert"_s).isReadOnly());
  for (const QString& name : {u"Nr"_s, u"Treedex"_s})
    EXPECT_FALSE(In<QLineEdit>(Number(), name).isVisible()) << name.toStdString();
  EXPECT_EQ(In<QLineEdit>(Number(), u"TextVon"_s).accessibleName(), u"Minimum"_s);
  EXPECT_EQ(In<QLineEdit>(Number(), u"TextBis"_s).accessibleName(), u"Maximum"_s);
  EXPECT_EQ(In<QLineEdit>(Number(), u"TextStd"_s).accessibleName(), u"Standard"_s);
  EXPECT_EQ(In<QLineEdit>(Number(), u"TextWert"_s).accessibleName(), u"Wert"_s);
}

TEST_F(EditorsTest, TheNumericEditorIsDesignedWithTheseTexts) {
  ui::DialogEdit editor;
  EXPECT_EQ(Label(editor, u"LabelName"_s), u"Name"_s);
  EXPECT_EQ(Field(editor, u"TextWert"_s), u"Wert"_s);
  for (const QString& name : {u"TextVon"_s, u"TextBis"_s, u"TextStd"_s, u"Nr"_s, u"Treedex"_s})
    EXPECT_EQ(Field(editor, name), QString()) << name.toStdString();
  EXPECT_EQ(Label(editor, u"LabelHilfetext"_s), QString());
}

TEST_F(EditorsTest, TheStringEditorIsDesignedWithTheseTexts) {
  ui::DialogEditString editor;
  EXPECT_EQ(Label(editor, u"LabelName"_s), u"Name"_s);
  EXPECT_EQ(Field(editor, u"TextWert"_s), u"Wert"_s);
  EXPECT_EQ(Label(editor, u"LabelHilfetext"_s), u"Hilfetext"_s);
  EXPECT_EQ(Field(editor, u"Nr"_s), QString());
}

// Each number with its name before it and its unit behind it, on one line.
TEST_F(EditorsTest, EveryNumberHasItsVisibleLabelAndUnit) {
  Start();
  Open(u"sK 1"_s);
  QCoreApplication::processEvents();
  const QList<QLabel*> units = Number().findChildren<QLabel*>(u"LabelEinheit"_s);
  ASSERT_EQ(units.size(), 4);
  const std::pair<QString, QString> rows[] = {{u"TextWert"_s, u"Wert"_s},
                                              {u"TextStd"_s, u"Standard"_s},
                                              {u"TextVon"_s, u"Minimum"_s},
                                              {u"TextBis"_s, u"Maximum"_s}};
  for (const auto& [name, caption] : rows) {
    const QRect field = In<QWidget>(Number(), name).geometry();
    const auto labelOnLine = [&](const QString& text, bool before) {
      for (const QLabel* label : Number().findChildren<QLabel*>()) {
        const QRect place = label->geometry();
        const bool beside = before ? place.right() < field.left() : place.left() > field.right();
        if (label->isVisible() && label->text() == text && beside && place.top() <= field.center().y() &&
            place.bottom() >= field.center().y())
          return true;
      }
      return false;
    };
    EXPECT_TRUE(labelOnLine(caption, true)) << caption.toStdString();
    EXPECT_TRUE(labelOnLine(u"1/m "_s, false)) << caption.toStdString();
  }
  Open(u"sK 4"_s);
  for (const QLabel* unit : units)
    EXPECT_EQ(unit->text(), u"°C  "_s);
}

TEST_F(EditorsTest, TheButtonForTheStandardIsSquareAndBesideItsBox) {
  Start();
  Open(u"sK 1"_s);
  QCoreApplication::processEvents();
  const QRect button = In<QPushButton>(Number(), u"CommandStd"_s).geometry();
  const QRect field = In<QLineEdit>(Number(), u"TextStd"_s).geometry();
  EXPECT_EQ(button.width(), button.height());
  EXPECT_EQ(button.height(), field.height());
  EXPECT_EQ(button.top(), field.top());
  EXPECT_GT(button.left(), field.right());
  EXPECT_LE(button.left() - field.right(), 8);
}

TEST_F(EditorsTest, BoxesThatCannotBeTypedIntoLookSo) {
  Start();
  Open(u"sK 1"_s);
  // In the background, in light colours and in dark ones chosen meanwhile.
  const QPalette before = QApplication::palette();
  for (const bool dark : {false, true}) {
    QPalette palette = before;
    if (dark) {
      palette.setColor(QPalette::Window, QColor(42, 46, 50));
      palette.setColor(QPalette::Base, QColor(27, 30, 32));
      palette.setColor(QPalette::Text, Qt::white);
      QApplication::setPalette(palette);
      QCoreApplication::processEvents();
    }
    const auto inside = [this](const QString& name) {
      auto& field = In<QLineEdit>(Number(), name);
      field.deselect();
      return field.grab().toImage().pixelColor(field.width() - 6, field.height() / 2);
    };
    for (const QString& name : {u"TextVon"_s, u"TextBis"_s, u"TextStd"_s})
      EXPECT_EQ(inside(name), palette.color(QPalette::Window)) << name.toStdString() << dark;
    EXPECT_EQ(inside(u"TextWert"_s), palette.color(QPalette::Base)) << dark;
  }
  QApplication::setPalette(before);
}

TEST_F(EditorsTest, TheHelpTextHasAirAboveIt) {
  Start();
  Open(u"sK 1"_s);
  Open(u"sK 3"_s);
  QCoreApplication::processEvents();
  const auto gap = [](const QWidget& above, const QWidget& below) {
    return below.y() - (above.y() + above.height());
  };
  const int number = gap(In<QLineEdit>(Number(), u"TextBis"_s), In<QLabel>(Number(), u"LabelHilfetext"_s));
  const int text = gap(In<QLineEdit>(Text(), u"TextWert"_s), In<QLabel>(Text(), u"LabelHilfetext"_s));
  const int row = gap(In<QLineEdit>(Number(), u"TextVon"_s), In<QLineEdit>(Number(), u"TextBis"_s));
  EXPECT_GE(number, 2 * row);
  EXPECT_EQ(text, number);
}

TEST_F(EditorsTest, StayAboveTheMainWindow) {
  Start();
  Open(u"sK 1"_s);
  Open(u"sK 3"_s);
  EXPECT_EQ(Number().windowHandle()->transientParent(), desktop->main.windowHandle());
  EXPECT_EQ(Text().windowHandle()->transientParent(), desktop->main.windowHandle());
}

TEST_F(EditorsTest, TheNumericEditorShowsTheParameter) {
  Start();
  desktop->module.Par[1].Wert = 12345;
  Open(u"sK 1"_s);
  EXPECT_EQ(Label(Number(), u"LabelName"_s), u"Drehzahl"_s);
  EXPECT_EQ(Field(Number(), u"TextWert"_s), u"1234.5"_s);
  EXPECT_EQ(Field(Number(), u"TextVon"_s), u"0"_s);
  EXPECT_EQ(Field(Number(), u"TextBis"_s), u"3000"_s);
  EXPECT_EQ(Field(Number(), u"TextStd"_s), u"150"_s);
  EXPECT_EQ(Label(Number(), u"LabelEinheit"_s), u"1/m "_s);
  EXPECT_EQ(Label(Number(), u"LabelHilfetext"_s), u"Drehzahl des Motors\nin 1/m"_s);
  EXPECT_EQ(Field(Number(), u"Nr"_s), u"1"_s);
  EXPECT_EQ(Field(Number(), u"Treedex"_s), u"3"_s);
}

TEST_F(EditorsTest, NumbersHaveAPointInEveryLocale) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::German));
  Start();
  desktop->module.Par[6].Wert = 1234;
  Open(u"sK 6"_s);
  EXPECT_EQ(Field(Number(), u"TextWert"_s), u"12.34"_s);
  Click(Number(), u"CancelButton"_s);
  desktop->module.Par[6].Wert = -50;
  Open(u"sK 6"_s);
  EXPECT_EQ(Field(Number(), u"TextWert"_s), u"-0.5"_s);
  QLocale::setDefault(before);
}

TEST_F(EditorsTest, AmpersandsInNamesAreShown) {
  Start();
  Open(u"sK 6"_s);
  EXPECT_EQ(Label(Number(), u"LabelName"_s), u"Vorlauf & Rücklauf"_s);
  EXPECT_EQ(In<QLabel>(Number(), u"LabelName"_s).textFormat(), Qt::PlainText);
}

TEST_F(EditorsTest, TheTabOrderOfTheNumericEditorFollowsTheEye) {
  Start();
  Open(u"sK 1"_s);
  QStringList order;
  for (int i = 0; i < 7; ++i) {
    order.append(Number().focusWidget()->objectName());
    QTest::keyClick(Number().focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order.join(u' '), u"TextWert CommandStd TextStd TextVon TextBis OKButton CancelButton"_s);
}

TEST_F(EditorsTest, OkStoresTheValueAndTicksTheNode) {
  Start();
  Toggle(u"sK 1"_s);
  Open(u"sK 1"_s);
  Type(Number(), u"200.5"_s);
  QTest::keyClick(&In<QLineEdit>(Number(), u"TextWert"_s), Qt::Key_Return);
  EXPECT_FALSE(Number().isVisible());
  EXPECT_EQ(desktop->module.Par[1].Wert, 2005);
  EXPECT_TRUE(Tree().Text(3).contains(u"   200.5 1/m |"_s)) << Tree().Text(3).toStdString();
  EXPECT_TRUE(Tree().Checked(3));
  EXPECT_EQ(desktop->module.ParNode[1], kTrue);
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
}

TEST_F(EditorsTest, ValuesAreRoundedAndCutAsTheDecimalsSay) {
  Start();
  EXPECT_EQ(Edit(1, 1, u"12.34"_s), 1230);
  EXPECT_EQ(Edit(1, 1, u"-12.39"_s), -1230);
  EXPECT_EQ(Edit(2, 0, u"0.125"_s), 12);
  EXPECT_EQ(Edit(2, 0, u"0.135"_s), 14);
  EXPECT_EQ(Edit(0, 0, u"2.5"_s), 2);
  EXPECT_EQ(Edit(1, 0, u"12,5"_s), 120) << "a comma ends the number";
  EXPECT_EQ(Edit(1, 0, QString()), 0);
  EXPECT_EQ(Edit(1, 0, u"abc"_s), 0);
}

TEST_F(EditorsTest, TheLimitsThemselvesAreAccepted) {
  Start();
  Open(u"sK 4"_s);
  Type(Number(), u"-10"_s);
  Click(Number(), u"OKButton"_s);
  EXPECT_EQ(desktop->module.Par[4].Wert, -100);
  Open(u"sK 4"_s);
  Type(Number(), u"100"_s);
  Click(Number(), u"OKButton"_s);
  EXPECT_EQ(desktop->module.Par[4].Wert, 1000);
}

TEST_F(EditorsTest, AValueOutsideTheLimitsIsDroppedWithoutAWord) {
  Start();
  Toggle(u"sK 4"_s);
  const QString text = Tree().Text(Node(u"sK 4"_s));
  for (const QString& typed : {u"-10.1"_s, u"100.1"_s}) {
    Open(u"sK 4"_s);
    Type(Number(), typed);
    Click(Number(), u"OKButton"_s);
    EXPECT_FALSE(Number().isVisible());
    EXPECT_EQ(desktop->module.Par[4].Wert, 200);
    EXPECT_EQ(Tree().Text(Node(u"sK 4"_s)), text);
    EXPECT_FALSE(Tree().Checked(Node(u"sK 4"_s)));
    EXPECT_EQ(desktop->module.ParNode[4], kFalse);
  }
}

TEST_F(EditorsTest, AValueTooLargeForTheTableIsReportedAndTheEditorStays) {
  Start();
  ParameterRecord& record = desktop->module.Par[1];
  record.Zahl1 = 2;
  record.Max = 2'147'483'647;
  Open(u"sK 1"_s);
  In<QLineEdit>(Number(), u"TextBis"_s).setText(u"99999999"_s);
  Type(Number(), u"30000000"_s);
  Click(Number(), u"OKButton"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, RuntimeError(RuntimeError::Kind::Overflow).Description());
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
  EXPECT_TRUE(Number().isVisible());
  EXPECT_EQ(record.Wert, 1500);
  EXPECT_EQ(desktop->module.TreeUpdating, kTrue);
}

TEST_F(EditorsTest, TheStandardValueIsTakenByItsButtonAndByAClickIntoIt) {
  Start();
  Open(u"sK 1"_s);
  Type(Number(), u"7"_s);
  Click(Number(), u"CommandStd"_s);
  EXPECT_EQ(Field(Number(), u"TextWert"_s), u"150"_s);
  Type(Number(), u"8"_s);
  QTest::mouseClick(&In<QLineEdit>(Number(), u"TextStd"_s), Qt::LeftButton);
  EXPECT_EQ(Field(Number(), u"TextWert"_s), u"150"_s);
}

// Button, Escape and the window's frame all discard.
class EditorsCancel : public EditorsTest, public testing::WithParamInterface<const char*> {
 protected:
  void Cancel(QDialog& editor) {
    const std::string way = GetParam();
    if (way == "button") Click(editor, u"CancelButton"_s);
    if (way == "escape") QTest::keyClick(&editor, Qt::Key_Escape);
    if (way == "frame") editor.close();
  }
};

TEST_P(EditorsCancel, DiscardsTheNumber) {
  Start();
  Open(u"sK 1"_s);
  Type(Number(), u"200"_s);
  Cancel(Number());
  EXPECT_FALSE(Number().isVisible());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
}

TEST_P(EditorsCancel, DiscardsTheTextAndRebuildsNothing) {
  Start();
  Open(u"sK 3"_s);
  Type(Text(), u"Otto"_s);
  Tree().SetText(1, u"nicht neu gebaut"_s);
  Cancel(Text());
  EXPECT_FALSE(Text().isVisible());
  EXPECT_EQ(desktop->module.Par[3].WertText, u"Anna"_s);
  EXPECT_EQ(Tree().Text(1), u"nicht neu gebaut"_s);
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
}

TEST_P(EditorsCancel, DoesNotWorkWhileBusy) {
  Start();
  Open(u"sK 1"_s);
  const BusyGuard busy(desktop->core);
  EXPECT_FALSE(Number().isEnabled());
  Number().close();
  EXPECT_TRUE(Number().isVisible());
}

INSTANTIATE_TEST_SUITE_P(Ways, EditorsCancel, testing::Values("button", "escape", "frame"));

TEST_F(EditorsTest, TheStringEditorShowsTheParameter) {
  Start();
  Open(u"sK 3"_s);
  ASSERT_TRUE(Text().isVisible());
  EXPECT_FALSE(Text().isModal());
  EXPECT_FALSE(Number().isVisible());
  EXPECT_EQ(Text().objectName(), u"DialogEditString"_s);
  EXPECT_EQ(Text().windowTitle(), u"Edit Parameter"_s);
  EXPECT_EQ(In<QPushButton>(Text(), u"OKButton"_s).text(), u"OK"_s);
  EXPECT_EQ(In<QPushButton>(Text(), u"CancelButton"_s).text(), u"Abbrechen"_s);
  EXPECT_EQ(Label(Text(), u"LabelName"_s), u"Name"_s);
  EXPECT_EQ(Field(Text(), u"TextWert"_s), u"Anna"_s);
  EXPECT_EQ(Label(Text(), u"LabelHilfetext"_s), u"Name des\nAntriebs"_s);
  EXPECT_EQ(Field(Text(), u"Nr"_s), u"3"_s);
  EXPECT_FALSE(In<QLineEdit>(Text(), u"Nr"_s).isVisible());
}

TEST_F(EditorsTest, OnlyTypesOfTheFullWordStringOpenTheStringEditor) {
  Start();
  Open(u"sK 7"_s);
  EXPECT_TRUE(Number().isVisible());
  EXPECT_FALSE(Text().isVisible());
}

TEST_F(EditorsTest, TheStringIsStoredAsTypedAndTheTreeRebuilt) {
  Start();
  Open(u"sK 3"_s);
  Type(Text(), u" Bär  "_s);
  Click(Text(), u"OKButton"_s);
  EXPECT_FALSE(Text().isVisible());
  EXPECT_EQ(desktop->module.Par[3].WertText, u" Bär  "_s);
  EXPECT_TRUE(Tree().Text(Node(u"sK 3"_s)).endsWith(u".  Bär  "_s));
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
  ExpectReady();
}

TEST_F(EditorsTest, TheStringCannotBeTypedLongerThanItsType) {
  Start();
  Open(u"sK 3"_s);
  Type(Text(), u"123456789"_s);
  EXPECT_EQ(Field(Text(), u"TextWert"_s), u"12345678"_s);
  auto& field = In<QLineEdit>(Text(), u"TextWert"_s);
  QTest::keyClicks(&field, u"9"_s);
  field.setCursorPosition(3);
  QTest::keyClicks(&field, u"x3"_s);
  EXPECT_EQ(field.text(), u"12345678"_s) << "nothing is pushed out at the end";
  EXPECT_EQ(field.cursorPosition(), 3);
  field.setSelection(2, 3);
  field.insert(u"abcdef"_s);
  EXPECT_EQ(field.text(), u"12abc678"_s) << "as much as there is room for";
  EXPECT_EQ(field.cursorPosition(), 5);
}

// A value file may hold more than this version's type takes.
TEST_F(EditorsTest, AStringThatIsTooLongStaysUntilItIsEdited) {
  Start();
  desktop->module.Par[3].WertText = u"1234567890"_s;
  Open(u"sK 3"_s);
  EXPECT_EQ(Field(Text(), u"TextWert"_s), u"1234567890"_s);
  Click(Text(), u"OKButton"_s);
  EXPECT_EQ(desktop->module.Par[3].WertText, u"1234567890"_s);
  Open(u"sK 3"_s);
  auto& field = In<QLineEdit>(Text(), u"TextWert"_s);
  field.setCursorPosition(10);
  QTest::keyClick(&field, Qt::Key_Backspace);
  QTest::keyClicks(&field, u"x"_s);
  EXPECT_EQ(field.text(), u"123456789"_s) << "shorter only";
  QTest::keyClick(&field, Qt::Key_Backspace);
  QTest::keyClick(&field, Qt::Key_Backspace);
  QTest::keyClicks(&field, u"xy"_s);
  EXPECT_EQ(field.text(), u"1234567x"_s);
}

// Value files and controllers fill texts up with blanks.
TEST_F(EditorsTest, APaddedStringIsTypedIntoBehindItsLastVisibleCharacter) {
  Start();
  desktop->module.Par[3].WertText = u"Anna    "_s;
  Open(u"sK 3"_s);
  auto& field = In<QLineEdit>(Text(), u"TextWert"_s);
  EXPECT_EQ(field.cursorPosition(), 4);
  EXPECT_FALSE(field.hasSelectedText());
  QTest::keyClicks(&field, u"bel"_s);
  EXPECT_EQ(field.text(), u"Annabel "_s) << "the padding makes room";
  EXPECT_EQ(field.cursorPosition(), 7);
  QTest::keyClicks(&field, u"la"_s);
  EXPECT_EQ(field.text(), u"Annabell"_s);
  Click(Text(), u"CancelButton"_s);
  Open(u"sK 3"_s);
  EXPECT_EQ(field.cursorPosition(), 4) << "each time";
  Click(Text(), u"OKButton"_s);
  EXPECT_EQ(desktop->module.Par[3].WertText, u"Anna    "_s) << "the padding itself is kept";
}

TEST_F(EditorsTest, AStringOfBlanksOnlyIsTypedIntoAtItsBeginning) {
  Start();
  desktop->module.Par[3].WertText = QString(20, u' ');
  Open(u"sK 3"_s);
  auto& field = In<QLineEdit>(Text(), u"TextWert"_s);
  EXPECT_EQ(field.cursorPosition(), 0);
  QTest::keyClicks(&field, u"Bea"_s);
  EXPECT_EQ(field.text(), u"Bea     "_s);
}

TEST_F(EditorsTest, TheLimitOfTheLastStringDoesNotCutTheNext) {
  Start();
  TextEdit content;
  content.TextWert = u"kurz"_s;
  content.MaxLength = 4;
  desktop->editors.ShowTextEditor(content);
  content.TextWert = u"eine längere Angabe"_s;
  content.MaxLength = 20;
  desktop->editors.ShowTextEditor(content);
  EXPECT_EQ(Field(Text(), u"TextWert"_s), u"eine längere Angabe"_s);
  content.MaxLength = 0;
  desktop->editors.ShowTextEditor(content);
  Type(Text(), QString(1000, u'x'));
  EXPECT_EQ(Field(Text(), u"TextWert"_s).size(), 1000) << "no limit";
}

TEST_F(EditorsTest, AnEmptyStringIsStored) {
  Start();
  Open(u"sK 3"_s);
  Type(Text(), QString());
  Click(Text(), u"OKButton"_s);
  EXPECT_EQ(desktop->module.Par[3].WertText, QString());
}

TEST_F(EditorsTest, BrokenNumbersOfTheHiddenFieldsAreReported) {
  Start();
  Open(u"sK 3"_s);
  In<QLineEdit>(Text(), u"Nr"_s).setText(u"2001"_s);
  Click(Text(), u"OKButton"_s);
  In<QLineEdit>(Text(), u"Nr"_s).setText(u"x"_s);
  Click(Text(), u"OKButton"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0].text, RuntimeError(RuntimeError::Kind::Bounds).Description());
  EXPECT_EQ(boxes[1].text, RuntimeError(RuntimeError::Kind::TypeMismatch).Description());
  EXPECT_TRUE(Text().isVisible());
  ExpectReady();
}

TEST_F(EditorsTest, OneEditorIsUsedForEveryParameterInTurn) {
  Start();
  Open(u"sK 1"_s);
  Type(Number(), u"7"_s);
  Open(u"sK 4"_s);
  EXPECT_EQ(Label(Number(), u"LabelName"_s), u"Solltemperatur"_s);
  EXPECT_EQ(Field(Number(), u"TextWert"_s), u"20"_s);
  Click(Number(), u"OKButton"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
}

TEST_F(EditorsTest, TheTreeCountsAsBeingChangedUntilTheLastEditorCloses) {
  Start();
  Open(u"sK 1"_s);
  Open(u"sK 3"_s);
  Click(Number(), u"CancelButton"_s);
  EXPECT_EQ(desktop->module.TreeUpdating, kTrue);
  Click(Text(), u"CancelButton"_s);
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
}

TEST_F(EditorsTest, AnotherVersionOrPlantTypeClosesTheEditors) {
  Start();
  Open(u"sK 1"_s);
  Open(u"sK 3"_s);
  desktop->module.VersionList.Select(1);
  EXPECT_FALSE(Number().isVisible());
  EXPECT_FALSE(Text().isVisible());
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
  Open(u"sK 1"_s);
  desktop->module.PlantTypeList.Select(1);
  EXPECT_FALSE(Number().isVisible());
}

TEST_F(EditorsTest, TheStandardCommandLeavesAnEditorOpen) {
  Start();
  Open(u"sK 1"_s);
  Click(desktop->main, u"CommandStandard"_s);
  EXPECT_TRUE(Number().isVisible());
}

}  // namespace
}  // namespace kalivor::test
