// The two parameter editors, opened from the tree.
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
  EXPECT_EQ(In<QLineEdit>(Text(), u"TextWert"_s).maxLength(), 8);
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
  EXPECT_EQ(In<QLineEdit>(Text(), u"TextWert"_s).maxLength(), 32767) << "no limit";
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
  desktop->main.ComboVN().Select(1);
  EXPECT_FALSE(Number().isVisible());
  EXPECT_FALSE(Text().isVisible());
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
  Open(u"sK 1"_s);
  desktop->main.ComboArt().Select(1);
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
