// The OK of the two editors: limits, the stored value, and what changes in the tree.
#include "commands/EditorCommands.h"

#include "core/TreeTexts.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

using Kind = RuntimeError::Kind;

/// Two numbers and a text in the tree, all unchecked.
struct Editing : Installation {
  Editing() {
    for (const QString& type : {u"int"_s, u"int"_s, u"string4"_s}) {
      ParameterRecord& record = AddParameter(type, u"1F00"_s);
      record.Rubrik = u"G"_s;
      record.Name = u"N"_s;
      record.Zahl1 = 1;
      record.Max = 1000;
    }
    for (int i = 1; i <= 3; ++i)
      module.ParNode[i] = kFalse;
    BuildTree(core);
  }

  /// What the editor shows for parameter 2, with `typed` as value.
  NumberEdit Typed(const QString& typed) {
    NumberEdit content = NumberEditOf(module, 2, main.tree.Find(u"sK 2"_s));
    content.TextWert = typed;
    return content;
  }
};

ParameterRecord Record(qint16 decimals, qint16 dropped) {
  ParameterRecord record;
  record.Zahl1 = decimals;
  record.Zahl2 = dropped;
  return record;
}

// --- the stored value ---

TEST(EditedValue, KeepsTheDecimalsAndDropsFurtherDigits) {
  struct {
    qint16 decimals, dropped;
    QString typed;
    qint32 stored;
  } const cases[] = {
      {1, 1, u"12.34"_s, 1230},
      {1, 1, u"-12.39"_s, -1230},
      {0, 2, u"12.99"_s, 1200},
      {2, 0, u"12.34"_s, 1234},
      // Half to even, of the number as the machine holds it.
      {2, 0, u"0.125"_s, 12},
      {2, 0, u"0.135"_s, 14},
      {2, 0, u"0.145"_s, 14},
      {0, 0, u"2.5"_s, 2},
      {0, 0, u"3.5"_s, 4},
      {0, 0, u"-2.5"_s, -2},
      // A comma ends the number; letters and nothing are 0.
      {1, 0, u"12,5"_s, 120},
      {0, 0, u""_s, 0},
      {0, 0, u"abc"_s, 0},
      {0, 0, u"1 000"_s, 1000},
      {0, 0, u"1e3"_s, 1000},
      {0, 0, u".5"_s, 0},
      {0, 0, u"7x"_s, 7},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(EditedValue(Record(example.decimals, example.dropped), u"-10000"_s, example.typed, u"10000"_s),
              example.stored)
        << testing::PrintToString(example.typed);
  }
}

TEST(EditedValue, BothLimitsAreIncluded) {
  struct {
    QString typed;
    bool accepted;
  } const cases[] = {{u"-0.5"_s, true},  {u"12"_s, true},     {u"-0.51"_s, false},
                     {u"12.1"_s, false}, {u"12.04"_s, false},  // outside before it is rounded
                     {u""_s, true}};
  for (const auto& example : cases) {
    EXPECT_EQ(EditedValue(Record(1, 0), u"-0.5"_s, example.typed, u"12"_s).has_value(), example.accepted)
        << testing::PrintToString(example.typed);
  }
}

TEST(EditedValue, AnEmptyValueOutsideTheLimitsIsDropped) {
  EXPECT_EQ(EditedValue(Record(0, 0), u"1"_s, u""_s, u"9"_s), std::nullopt);
}

TEST(EditedValue, RefusesWhatDoesNotFit) {
  struct {
    qint16 decimals, dropped;
    QString typed;
  } const cases[] = {
      {2, 0, u"30000000"_s}, {0, 0, u"2147483648"_s}, {0, 10, u"0"_s}, {0, 0, u"1e999"_s}, {400, 0, u"1"_s}};
  for (const auto& example : cases) {
    EXPECT_EQ(ThrownKind([&] {
                (void)EditedValue(Record(example.decimals, example.dropped), u"-1e300"_s, example.typed,
                                  u"1e300"_s);
              }),
              Kind::Overflow)
        << testing::PrintToString(example.typed);
  }
  EXPECT_EQ(EditedValue(Record(0, 0), u"-1e300"_s, u"-2147483648"_s, u"1e300"_s), -2147483647 - 1);
}

// --- OK of the numeric editor ---

TEST(NumberEditor, OkStoresShowsAndChecks) {
  Editing site;
  EXPECT_TRUE(DialogEdit_OK(site.core, site.Typed(u"12.3"_s)));
  EXPECT_EQ(site.module.Par[2].Wert, 123);
  EXPECT_EQ(site.module.ParNode[2], kTrue);
  const int node = site.main.tree.Find(u"sK 2"_s);
  EXPECT_EQ(site.main.tree.Text(node), ParamText(site.module.Par[2]));
  EXPECT_TRUE(site.main.tree.Text(node).contains(u"    12.3 "_s));
  EXPECT_TRUE(site.main.tree.Checked(node));
}

TEST(NumberEditor, OkTouchesNoOtherParameter) {
  Editing site;
  const ParameterRecord first = site.module.Par[1];
  DialogEdit_OK(site.core, site.Typed(u"12.3"_s));
  EXPECT_EQ(site.module.Par[1], first);
  EXPECT_EQ(site.module.ParNode[1], kFalse);
  EXPECT_FALSE(site.main.tree.Checked(site.main.tree.Find(u"sK 1"_s)));
  EXPECT_FALSE(site.main.tree.Checked(site.main.tree.Find(u"K 1"_s)));
}

TEST(NumberEditor, AValueOutsideTheLimitsIsDroppedWithoutAMessage) {
  for (const QString& typed : {u"-0.1"_s, u"100.1"_s}) {
    Editing site;
    const int node = site.main.tree.Find(u"sK 2"_s);
    const QString text = site.main.tree.Text(node);
    EXPECT_FALSE(DialogEdit_OK(site.core, site.Typed(typed)));
    EXPECT_EQ(site.module.Par[2].Wert, 0);
    EXPECT_EQ(site.module.ParNode[2], kFalse);
    EXPECT_EQ(site.main.tree.Text(node), text);
    EXPECT_FALSE(site.main.tree.Checked(node));
  }
}

TEST(NumberEditor, AnErrorStoresNothing) {
  struct {
    QString number, node, typed;
    qint16 decimals;
    Kind error;
  } const cases[] = {
      {u"x"_s, u"3"_s, u"1"_s, 0, Kind::TypeMismatch},
      {u""_s, u"3"_s, u"1"_s, 0, Kind::TypeMismatch},
      {u"2001"_s, u"3"_s, u"1"_s, 0, Kind::Bounds},
      {u"-1"_s, u"3"_s, u"1"_s, 0, Kind::Bounds},
      {u"2"_s, u"99"_s, u"1"_s, 0, Kind::Bounds},
      {u"2"_s, u"x"_s, u"1"_s, 0, Kind::TypeMismatch},
      {u"2"_s, u"4"_s, u"30000000"_s, 2, Kind::Overflow},
      {u"2"_s, u"4"_s, u"0"_s, 10, Kind::Overflow},  // the line of the tree cannot be made
  };
  for (const auto& example : cases) {
    Editing site;
    site.module.Par[2].Zahl1 = example.decimals;
    const auto before = site.module.Par;
    NumberEdit content;
    content.Nr = example.number;
    content.Treedex = example.node;
    content.TextWert = example.typed;
    content.TextBis = u"99999999"_s;
    EXPECT_EQ(ThrownKind([&] { (void)DialogEdit_OK(site.core, content); }), example.error);
    EXPECT_EQ(site.module.Par, before);
    EXPECT_EQ(site.module.ParNode[2], kFalse);
    EXPECT_FALSE(site.main.tree.Checked(site.main.tree.Find(u"sK 2"_s)));
  }
}

TEST(NumberEditOf, RefusesAnIndexOutsideTheTable) {
  Editing site;
  EXPECT_EQ(ThrownKind([&] { (void)NumberEditOf(site.module, 2001, 1); }), Kind::Bounds);
  EXPECT_EQ(ThrownKind([&] { (void)TextEditOf(site.module, -1); }), Kind::Bounds);
}

// --- OK of the text editor ---

TEST(TextEditor, OkStoresTheTextAsTypedAndRebuildsTheTree) {
  for (const QString& typed : {u" längerer Text "_s, QString()}) {
    Editing site;
    site.module.TreeUpdating = kTrue;
    TextEdit content = TextEditOf(site.module, 3);
    content.TextWert = typed;
    DialogEditString_OK(site.core, content);
    EXPECT_EQ(site.module.Par[3].WertText, typed);
    EXPECT_TRUE(site.main.tree.Text(site.main.tree.Find(u"sK 3"_s)).endsWith(u". "_s + typed));
    EXPECT_EQ(site.module.TreeUpdating, kFalse);
    EXPECT_EQ(site.module.ParNode[3], kFalse) << "a text is not checked by editing it";
    EXPECT_TRUE(site.Rests());
  }
}

TEST(TextEditor, AnErrorChangesNothing) {
  for (const auto& [number, error] : {std::pair{u"x"_s, Kind::TypeMismatch}, {u"2001"_s, Kind::Bounds}}) {
    Editing site;
    const auto before = site.module.Par;
    const int rebuilt = site.main.tree.rebuilt;
    TextEdit content;
    content.Nr = number;
    content.TextWert = u"neu"_s;
    EXPECT_EQ(ThrownKind([&] { DialogEditString_OK(site.core, content); }), error);
    EXPECT_EQ(site.module.Par, before);
    EXPECT_EQ(site.main.tree.rebuilt, rebuilt);
  }
}

TEST(Editors, TheLastOneHiddenClearsTheFlag) {
  Module1 module;
  module.TreeUpdating = kTrue;
  EditorHidden(module, true);
  EXPECT_EQ(module.TreeUpdating, kTrue);
  EditorHidden(module, false);
  EXPECT_EQ(module.TreeUpdating, kFalse);
}

}  // namespace
}  // namespace kalivor::test
