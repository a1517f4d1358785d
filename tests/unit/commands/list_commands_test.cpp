// What the parameter list does: marks, typed values, taking over.
#include "commands/ListCommands.h"

#include "core/Busy.h"
#include "core/TreeTexts.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

using Verdict = TypedValue::Verdict;

/// Three numbers, the second of them hidden by the plant type, and a text, all unchecked.
struct Listed : Installation {
  Listed() {
    for (const QString& type : {u"int"_s, u"int"_s, u"long"_s, u"string8"_s}) {
      ParameterRecord& record = AddParameter(type, u"1F00"_s, u"V%1"_s.arg(module.ParCount));
      record.Rubrik = u"G"_s;
      record.Name = u"N"_s;
      record.Zahl1 = 1;
      record.Min = 50;
      record.Max = 1000;
      record.Zusatz = u"Luft"_s;
    }
    module.Par[2].Zusatz = u"Wasser"_s;
    module.PlantTypeList.Add(u"Luft"_s);
    module.PlantTypeList.Select(0);
    for (int i = 1; i <= 4; ++i)
      module.ParNode[i] = kFalse;
    BuildTree(core);
    main.tree.rebuilt = 0;
  }

  [[nodiscard]] int Node(int index) { return main.tree.Find(ParameterKey(index)); }
  [[nodiscard]] QString Marks() {
    QString marks;
    for (int i = 1; i < module.ParCount; ++i)
      marks += module.ParNode[i] != kFalse ? u'x' : u'-';
    return marks;
  }
  [[nodiscard]] QString NodeMarks() {
    QString marks;
    for (int i = 1; i < module.ParCount; ++i)
      marks += Node(i) == 0 ? u' ' : main.tree.Checked(Node(i)) ? u'x' : u'-';
    return marks;
  }

  /// A row of the list that compares with `number`, checked.
  [[nodiscard]] ListRow Row(int index, qint32 number, bool outside = false) {
    ListRow row;
    row.index = index;
    row.checked = true;
    row.difference = Difference::Different;
    row.comparison = ParameterValue{number, {}};
    row.comparisonOutside = outside;
    return row;
  }
};

ParameterRecord Number(qint32 min, qint32 max, qint16 decimals, qint16 dropped = 0) {
  ParameterRecord record;
  record.Typ = u"long"_s;
  record.Min = min;
  record.Max = max;
  record.Zahl1 = decimals;
  record.Zahl2 = dropped;
  return record;
}

ParameterRecord Text(const QString& type) {
  ParameterRecord record;
  record.Typ = type;
  return record;
}

// --- marks ---

TEST(ListMarks, AreTheTreesOwn) {
  Listed pc;
  const int indexes[] = {1, 2};
  MarkParameters(pc.core, indexes, true);
  EXPECT_EQ(pc.Marks(), u"xx--"_s);
  EXPECT_EQ(pc.NodeMarks(), u"x --"_s);
  MarkOnly(pc.core, std::array{2, 3});
  EXPECT_EQ(pc.Marks(), u"-xx-"_s);
  EXPECT_EQ(pc.NodeMarks(), u"- x-"_s);
  MarkOnly(pc.core, {});
  EXPECT_EQ(pc.Marks(), u"----"_s);
  EXPECT_EQ(pc.NodeMarks(), u"- --"_s);
}

TEST(ListMarks, AreNeitherHandedUpNorDown) {
  Listed pc;
  MarkParameters(pc.core, std::array{1, 3, 4}, true);
  EXPECT_FALSE(pc.main.tree.Checked(pc.main.tree.Find(GroupKey(1))));
  EXPECT_FALSE(pc.main.tree.Checked(pc.main.tree.Find(RootKey())));
  EXPECT_EQ(pc.main.tree.rebuilt, 0);
}

// A group's mark is that of the parameter of its number, whose node stays as it is until the tree is rebuilt.
TEST(ListMarks, OnlyTheNodesOfChangedMarksAreTouched) {
  Listed pc;
  pc.module.ParNode[1] = kTrue;
  MarkParameters(pc.core, std::array{3}, true);
  EXPECT_EQ(pc.NodeMarks(), u"- x-"_s);
}

TEST(ListMarks, StayWhileAnOperationIsUnderWay) {
  Listed pc;
  pc.module.BusyDepth = 1;
  MarkParameters(pc.core, std::array{1}, true);
  EXPECT_EQ(pc.Marks(), u"----"_s);
  pc.module.ParNode[3] = kTrue;
  MarkOnly(pc.core, {});
  EXPECT_EQ(pc.Marks(), u"--x-"_s);
}

TEST(ListMarks, ParametersThatAreNotThereAreNone) {
  Listed pc;
  MarkParameters(pc.core, std::array{-1, 0, 5, 3000}, true);
  EXPECT_EQ(pc.Marks(), u"----"_s);
  EXPECT_EQ(pc.module.ParNode[5], kFalse);
}

// --- the tree ---

TEST(ListTree, ShowsTheNodeOfAParameterThatHasOne) {
  Listed pc;
  ShowInTree(pc.core, 3);
  EXPECT_EQ(pc.main.tree.current, pc.Node(3));
  ShowInTree(pc.core, 2);
  EXPECT_EQ(pc.main.tree.current, pc.Node(3));
  EXPECT_EQ(NodeOfParameter(pc.core, 2), 0);
}

// --- typing ---

TEST(TypedNumbers, WithinTheirLimitsAreComplete) {
  struct {
    ParameterRecord record;
    QString typed;
    qint32 number;
  } const cases[] = {
      {Number(50, 1000, 1), u"5"_s, 50},
      {Number(50, 1000, 1), u"100.0"_s, 1000},
      {Number(50, 1000, 1), u"12,5"_s, 125},
      {Number(50, 1000, 1), u"12.5"_s, 125},
      {Number(50, 1000, 1), u"12,"_s, 120},
      {Number(0, 1000, 1), u",5"_s, 5},
      {Number(-50, 1000, 2), u"-0,50"_s, -50},
      {Number(-50, 1000, 2), u"-0,05"_s, -5},
      {Number(0, 100000, 1, 1), u"12.5"_s, 1250},
      {Number(0, 1000, 0), u" 0012 "_s, 12},
      {Number(-2147483647 - 1, 2147483647, 0), u"-2147483648"_s, -2147483647 - 1},
      {Number(-2147483647 - 1, 2147483647, 0), u"2147483647"_s, 2147483647},
      {Number(-2147483647 - 1, 2147483647, 9), u"2.147483647"_s, 2147483647},
  };
  for (const auto& example : cases) {
    const TypedValue typed = JudgeTyped(example.record, example.typed);
    EXPECT_EQ(typed.verdict, Verdict::Complete) << testing::PrintToString(example.typed);
    EXPECT_EQ(typed.reason, QString());
    EXPECT_EQ(typed.value.number, example.number) << testing::PrintToString(example.typed);
  }
}

TEST(TypedNumbers, ThatCanStillBecomeOneAreIncomplete) {
  struct {
    ParameterRecord record;
    QString typed, reason;
  } const cases[] = {
      {Number(50, 1000, 1), u""_s, u""_s},
      {Number(50, 1000, 1), u"."_s, u""_s},
      {Number(-50, 1000, 1), u"-"_s, u""_s},
      {Number(50, 1000, 1), u"4.9"_s, u"kleiner als 5.0"_s},
      {Number(50, 1000, 1), u"0"_s, u"kleiner als 5.0"_s},
      {Number(-1000, -50, 1), u"-4"_s, u"größer als -5.0"_s},
  };
  for (const auto& example : cases) {
    const TypedValue typed = JudgeTyped(example.record, example.typed);
    EXPECT_EQ(typed.verdict, Verdict::Incomplete) << testing::PrintToString(example.typed);
    EXPECT_EQ(typed.reason, example.reason) << testing::PrintToString(example.typed);
  }
}

TEST(TypedNumbers, ThatNoFurtherDigitMakesPossibleAreRefused) {
  struct {
    ParameterRecord record;
    QString typed, reason;
  } const cases[] = {
      {Number(50, 1000, 1), u"100.1"_s, u"größer als 100.0"_s},
      {Number(50, 1000, 1), u"99999999999999999999999"_s, u"größer als 100.0"_s},
      {Number(50, 1000, 1), u"-"_s, u"kleiner als 5.0"_s},
      {Number(-50, 1000, 2), u"-0.51"_s, u"kleiner als -0.50"_s},
      {Number(-50, 1000, 2), u"-99999999999999999999999"_s, u"kleiner als -0.50"_s},
      {Number(-1000, -50, 1), u"1"_s, u"größer als -5.0"_s},
      {Number(50, 1000, 2), u"1.234"_s, u"höchstens 2 Nachkommastellen"_s},
      {Number(50, 1000, 1, 1), u"1.23"_s, u"höchstens 1 Nachkommastelle"_s},
      {Number(50, 1000, 0), u"1."_s, u"keine Nachkommastellen"_s},
      {Number(50, 1000, 1), u"x"_s, u"keine Zahl"_s},
      {Number(50, 1000, 1), u"1.2.3"_s, u"keine Zahl"_s},
      {Number(50, 1000, 1), u"1-"_s, u"keine Zahl"_s},
      {Number(50, 1000, 1), u"1e2"_s, u"keine Zahl"_s},
      {Number(50, 1000, 1), u"1 0"_s, u"keine Zahl"_s},
      {Number(50, 1000, 1), u"+1"_s, u"keine Zahl"_s},
  };
  for (const auto& example : cases) {
    const TypedValue typed = JudgeTyped(example.record, example.typed);
    EXPECT_EQ(typed.verdict, Verdict::Refused) << testing::PrintToString(example.typed);
    EXPECT_EQ(typed.reason, example.reason) << testing::PrintToString(example.typed);
  }
}

TEST(TypedTexts, HaveTheLengthAndTheCharactersThatTheControllerKnows) {
  EXPECT_EQ(JudgeTyped(Text(u"string8"_s), u"Größe €8"_s).verdict, Verdict::Complete);
  EXPECT_EQ(JudgeTyped(Text(u"string8"_s), u"Größe €8"_s).value.text, u"Größe €8"_s);
  EXPECT_EQ(JudgeTyped(Text(u"string8"_s), u""_s).verdict, Verdict::Complete);
  EXPECT_EQ(JudgeTyped(Text(u"string"_s), QString(300, u'x')).verdict, Verdict::Complete);
  EXPECT_EQ(JudgeTyped(Text(u"string8"_s), u"123456789"_s).reason, u"höchstens 8 Zeichen"_s);
  EXPECT_EQ(JudgeTyped(Text(u"string8"_s), u"Ω"_s).reason, u"„Ω“ kennt der Regler nicht"_s);
  EXPECT_EQ(JudgeTyped(Text(u"string8"_s), u"a\tb"_s).reason, u"keine Steuerzeichen"_s);
  for (const QString& refused : {u"123456789"_s, u"Ω"_s, u"a\tb"_s})
    EXPECT_EQ(JudgeTyped(Text(u"string8"_s), refused).verdict, Verdict::Refused);
}

TEST(TypedValues, OfTypesWithoutAnEditorAreRefused) {
  for (const QString& type : {u"float"_s, u"str20"_s}) {
    EXPECT_FALSE(CanBeEdited(Text(type))) << type.toStdString();
    EXPECT_EQ(JudgeTyped(Text(type), u"0"_s).verdict, Verdict::Refused) << type.toStdString();
  }
  EXPECT_FALSE(CanBeEdited(Number(0, 10, 5, 5)));
  EXPECT_FALSE(CanBeEdited(Number(0, 10, -1)));
  EXPECT_TRUE(CanBeEdited(Number(0, 10, 9)));
  EXPECT_TRUE(CanBeEdited(Text(u"string"_s)));
}

// --- editing ---

TEST(ListEditing, StoresANumberAsTheEditorDoes) {
  Listed pc;
  EXPECT_TRUE(EditParameter(pc.core, 1, u"12,5"_s));
  EXPECT_EQ(pc.module.Par[1].Wert, 125);
  EXPECT_EQ(pc.Marks(), u"x---"_s);
  EXPECT_EQ(pc.NodeMarks(), u"x --"_s);
  EXPECT_EQ(pc.main.tree.Text(pc.Node(1)), ParamText(pc.module.Par[1]));
  EXPECT_EQ(pc.main.tree.rebuilt, 0);
}

TEST(ListEditing, StoresTheNumberOfAHiddenParameterToo) {
  Listed pc;
  EXPECT_TRUE(EditParameter(pc.core, 2, u"12,5"_s));
  EXPECT_EQ(pc.module.Par[2].Wert, 125);
  EXPECT_EQ(pc.Marks(), u"-x--"_s);
}

TEST(ListEditing, StoresATextAndRebuildsTheTree) {
  Listed pc;
  EXPECT_TRUE(EditParameter(pc.core, 4, u"Süd"_s));
  EXPECT_EQ(pc.module.Par[4].WertText, u"Süd"_s);
  EXPECT_EQ(pc.main.tree.rebuilt, 1);
  EXPECT_TRUE(pc.Rests());
}

TEST(ListEditing, StoresNothingThatIsNotComplete) {
  Listed pc;
  for (const QString& typed : {u""_s, u"4.9"_s, u"100.1"_s, u"x"_s}) {
    EXPECT_FALSE(EditParameter(pc.core, 1, typed)) << typed.toStdString();
    EXPECT_EQ(pc.module.Par[1].Wert, 0);
  }
  EXPECT_FALSE(EditParameter(pc.core, 4, u"123456789"_s));
  EXPECT_EQ(pc.module.Par[4].WertText, QString());
  EXPECT_EQ(pc.Marks(), u"----"_s);
}

TEST(ListEditing, StoresNothingWhileAnOperationIsUnderWay) {
  Listed pc;
  pc.module.BusyDepth = 1;
  EXPECT_FALSE(EditParameter(pc.core, 1, u"12"_s));
  EXPECT_EQ(pc.module.Par[1].Wert, 0);
}

// --- taking over ---

TEST(TakingOver, MeansCheckedDifferentReadRows) {
  Listed pc;
  std::vector<ListRow> rows(5, pc.Row(1, 100));
  rows[1].checked = false;
  rows[2].difference = Difference::OtherType;
  rows[3].difference = Difference::Equal;
  rows[4].comparison.reset();
  EXPECT_EQ(RowsToTakeOver(rows).size(), 1U);
  pc.choice.answers = {2};
  TakeOver(pc.core, rows);
  ASSERT_EQ(pc.choice.asked.size(), 1U);
  EXPECT_EQ(pc.choice.asked[0].question, u"1 Wert übernehmen?"_s);
  EXPECT_EQ(pc.choice.asked[0].first, u"Übernehmen"_s);
  EXPECT_EQ(pc.choice.asked[0].second, u"Abbrechen"_s);
  EXPECT_EQ(pc.module.Par[1].Wert, 0);
}

TEST(TakingOver, GivesThePcTheComparisonValues) {
  Listed pc;
  ListRow text = pc.Row(4, 0);
  text.comparison = ParameterValue{0, u"Nordflügel"_s};
  std::vector<ValueSource> sources;
  pc.module.OnValue = [&](const ValueChange& change) { sources.push_back(change.source); };
  pc.choice.answers = {1};
  EXPECT_EQ(TakeOver(pc.core, std::array{pc.Row(1, 100), pc.Row(2, 200), text}), 3);
  EXPECT_EQ(pc.choice.asked[0].question, u"3 Werte übernehmen?"_s);
  EXPECT_EQ(pc.module.Par[1].Wert, 100);
  EXPECT_EQ(pc.module.Par[2].Wert, 200);
  EXPECT_EQ(pc.module.Par[4].WertText, u"Nordflüg"_s);
  EXPECT_EQ(sources, std::vector(3, ValueSource::TakenOver));
  EXPECT_EQ(pc.main.tree.rebuilt, 1);
  EXPECT_EQ(pc.main.tree.Text(pc.Node(1)), ParamText(pc.module.Par[1]));
  EXPECT_TRUE(pc.Rests());
}

TEST(TakingOver, AsksASecondTimeAboutWhatIsOutside) {
  struct {
    qint16 answer;
    qint32 inside, outside;
  } const cases[] = {{1, 100, 2000}, {2, 100, 0}, {kNoAnswer, 0, 0}};
  for (const auto& example : cases) {
    Listed pc;
    pc.choice.answers = {1, example.answer};
    TakeOver(pc.core, std::array{pc.Row(1, 100), pc.Row(3, 2000, true)});
    ASSERT_EQ(pc.choice.asked.size(), 2U);
    EXPECT_EQ(pc.choice.asked[0].question, u"2 Werte übernehmen?"_s);
    EXPECT_EQ(pc.choice.asked[1].question,
              u"1 Wert davon liegt außerhalb seiner Grenzen.\r\nAuch diesen übernehmen?"_s);
    EXPECT_EQ(pc.choice.asked[1].second, u"Ohne diesen"_s);
    EXPECT_EQ(pc.module.Par[1].Wert, example.inside) << example.answer;
    EXPECT_EQ(pc.module.Par[3].Wert, example.outside) << example.answer;
  }
}

TEST(TakingOver, OfNothingButOutsideOnesCanBeGivenUp) {
  Listed pc;
  pc.choice.answers = {1, 2, 1, 2};
  EXPECT_EQ(TakeOver(pc.core, std::array{pc.Row(1, 2000, true)}), 0);
  EXPECT_EQ(TakeOver(pc.core, std::array{pc.Row(1, 2000, true), pc.Row(3, 2000, true)}), 0);
  EXPECT_EQ(pc.choice.asked[1].question,
            u"Der Wert liegt außerhalb seiner Grenzen.\r\nTrotzdem übernehmen?"_s);
  EXPECT_EQ(pc.choice.asked[1].second, u"Abbrechen"_s);
  EXPECT_EQ(pc.choice.asked[3].question,
            u"Alle Werte liegen außerhalb ihrer Grenzen.\r\nTrotzdem übernehmen?"_s);
  EXPECT_EQ(pc.module.Par[1].Wert, 0);
  EXPECT_EQ(pc.main.tree.rebuilt, 0);
}

TEST(TakingOver, AsksNothingWithoutRowsOrWhileAnOperationIsUnderWay) {
  Listed pc;
  EXPECT_EQ(TakeOver(pc.core, {}), 0);
  pc.module.BusyDepth = 1;
  EXPECT_EQ(TakeOver(pc.core, std::array{pc.Row(1, 100)}), 0);
  EXPECT_TRUE(pc.choice.asked.empty());
}

}  // namespace
}  // namespace kalivor::test
