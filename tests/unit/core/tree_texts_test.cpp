// The parameter tree: lines in columns, what is shown, keys, groups, marks.
#include "core/ParameterTypes.h"
#include "core/TreeTexts.h"

#include <optional>

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

ParameterRecord Drehzahl() {
  ParameterRecord record;
  record.Rubrik = u"Antrieb"_s;
  record.Name = u"Drehzahl"_s;
  record.Wert = 1500;
  record.Max = 30000;
  record.Standard = 1500;
  record.Einheit = u"1/m"_s;
  record.Zahl1 = 1;
  record.Typ = u"int"_s;
  return record;
}

/// Parameters of the given groups, all shown.
struct Grouped : Installation {
  explicit Grouped(const QStringList& groups) {
    for (const QString& group : groups)
      AddParameter(u"int"_s, QString()).Rubrik = group;
    for (int i = 0; i <= module.ParCount; ++i)
      module.ParNode[i] = kTrue;
  }

  QStringList Keys() const {
    QStringList keys;
    for (int node = 1; node <= main.tree.Count(); ++node)
      keys.append(main.tree.Key(node));
    return keys;
  }
};

// --- lines ---

TEST(ParamText, ShowsValueUnitAndLimitsInColumns) {
  const QString line = ParamText(Drehzahl());
  EXPECT_EQ(line, u"Drehzahl"_s + QString(42, u'.') + u"   150.0 1/m |     0.0 |  3000.0 |   150.0 "_s);
  EXPECT_EQ(line.size(), 93);
  EXPECT_EQ(line.indexOf(u'|') + 1, 64);
}

TEST(ParamText, KeepsAUnitOfFourCharacters) {
  ParameterRecord record;
  record.Name = u"Druck"_s;
  record.Wert = 1230;
  record.Max = 99990;
  record.Standard = 1000;
  record.Einheit = u"mbar"_s;
  record.Zahl1 = record.Zahl2 = 1;
  EXPECT_EQ(ParamText(record),
            u"Druck"_s + QString(45, u'.') + u"    12.3 mbar|     0.0 |   999.9 |    10.0 "_s);
}

TEST(ParamText, AUnitStaysInItsColumns) {
  for (const QString& unit : {u""_s, u"h"_s, u"1/m"_s, u"mbar"_s}) {
    ParameterRecord record = Drehzahl();
    record.Einheit = unit;
    EXPECT_EQ(ParamText(record).indexOf(u'|') + 1, 64);
  }
}

TEST(ParamText, ATextHasNoColumnsBehindItsValue) {
  ParameterRecord record;
  record.Name = u"Name"_s;
  record.Typ = u"string4"_s;
  record.WertText = u"AB "_s;
  const QString expected = u"Name"_s + QString(46, u'.') + u" AB "_s;
  EXPECT_EQ(ParamText(record), expected);
  EXPECT_EQ(ParamTextShort(record), expected);
}

TEST(ParamText, OnlyTheWholeWordStringMakesAText) {
  ParameterRecord record = Drehzahl();
  record.WertText = u"AB"_s;
  record.Typ = u"str20"_s;
  EXPECT_FALSE(IsStringForTree(record));
  EXPECT_EQ(ParamText(record), ParamText(Drehzahl()));
  record.Typ = u"string"_s;
  EXPECT_TRUE(IsStringForTree(record));
}

TEST(ParamText, KeepsALongName) {
  ParameterRecord record = Drehzahl();
  record.Name = QString(55, u'n');
  EXPECT_TRUE(ParamText(record).startsWith(record.Name + u"   150.0"_s));
  EXPECT_EQ(ParamText(record).indexOf(u'|') + 1, 69);
}

TEST(ParamText, ScalesTheValue) {
  struct {
    qint32 value;
    qint16 decimals, dropped;
    QString column;
  } const cases[] = {
      {1234, 2, 0, u"    12.34"_s},  {1234, 1, 1, u"    12.3 "_s},
      {1234, 0, 0, u"  1234   "_s},  {1239, 1, 1, u"    12.3 "_s},  // dropped, not rounded
      {-50, 2, 0, u"     0.50"_s},                                  // loses its sign
      {-1234, 2, 0, u"   -12.34"_s},
  };
  for (const auto& example : cases) {
    ParameterRecord record = Drehzahl();
    record.Wert = example.value;
    record.Zahl1 = example.decimals;
    record.Zahl2 = example.dropped;
    EXPECT_EQ(ParamText(record).sliced(50, 9), example.column) << example.value;
  }
}

TEST(ParamTextShort, EndsWithTheUnit) {
  EXPECT_EQ(ParamTextShort(Drehzahl()), ParamText(Drehzahl()).left(63));
}

TEST(GroupText, CarriesEmptyColumns) {
  EXPECT_EQ(GroupText(u"Antrieb"_s), u"Antrieb"_s + QString(56, u' ') + u"|      |      |"_s);
  EXPECT_EQ(GroupText(u"Antrieb"_s).indexOf(u'|') + 1, 64) << "under the parameters' first column";
}

TEST(TreeKeys, CarryNumbersWithALeadingBlank) {
  EXPECT_EQ(RootKey(), u"R"_s);
  EXPECT_EQ(GroupKey(3), u"K 3"_s);
  EXPECT_EQ(GroupKey(12), u"K 12"_s);
  EXPECT_EQ(ParameterKey(17), u"sK 17"_s);
}

// --- what is shown ---

TEST(ShowParam, LooksForThePlantTypeAnywhereInTheText) {
  struct {
    QString plant, types;
    bool shown;
  } const cases[] = {
      {u"A"_s, u"AB C"_s, true}, {u"C"_s, u"AB C"_s, true}, {u"AB"_s, u"A"_s, false}, {u""_s, u""_s, true},
      {u""_s, u"A"_s, true},     {u"a"_s, u"A"_s, false},   {u"A"_s, u""_s, false},
  };
  for (const auto& example : cases)
    EXPECT_EQ(ShowParam(example.plant, example.types), example.shown)
        << testing::PrintToString(example.plant + u'/' + example.types);
}

TEST(BuildTree, ShowsTheParametersOfThePlantTypeOnly) {
  Grouped site({u"A"_s, u"B"_s, u"B"_s});
  site.module.Par[1].Zusatz = u"Wasser"_s;
  site.module.Par[2].Zusatz = u"Luft Wasser"_s;
  site.module.Par[3].Zusatz = u"Luft"_s;
  site.module.PlantTypeList.Add(QString());
  site.module.PlantTypeList.Add(u"Luft"_s);
  site.module.PlantTypeList.Select(1);
  BuildTree(site.core);
  EXPECT_EQ(site.Keys(), (QStringList{u"R"_s, u"K 1"_s, u"sK 2"_s, u"sK 3"_s}));
  site.module.PlantTypeList.Select(0);
  BuildTree(site.core);
  EXPECT_EQ(site.Keys(), (QStringList{u"R"_s, u"K 1"_s, u"sK 1"_s, u"K 2"_s, u"sK 2"_s, u"sK 3"_s}));
}

TEST(BuildTree, WithoutAPlantTypeEverythingIsShown) {
  Grouped site({u"A"_s});
  site.module.Par[1].Zusatz = u"Wasser"_s;
  BuildTree(site.core);
  EXPECT_EQ(site.Keys(), (QStringList{u"R"_s, u"K 1"_s, u"sK 1"_s}));
}

// --- nodes ---

TEST(BuildTree, TheRootCarriesTheHeadings) {
  Grouped site({});
  BuildTree(site.core);
  ASSERT_EQ(site.main.tree.Count(), 1);
  const QString heading = site.main.tree.Text(1);
  EXPECT_EQ(heading, u"Anlage"_s + QString(57, u' ') + u"Wert          Min.       Max.       Standard"_s);
  EXPECT_EQ(heading.size(), 107);
  EXPECT_EQ(heading.indexOf(u"Standard"_s) + 1, 100);
  EXPECT_TRUE(site.main.tree.Expanded(1));
}

TEST(BuildTree, EveryChangeOfTheGroupStartsANewOne) {
  Grouped site({u"A"_s, u"A"_s, u"B"_s, u"A"_s});
  BuildTree(site.core);
  EXPECT_EQ(site.Keys(),
            (QStringList{u"R"_s, u"K 1"_s, u"sK 1"_s, u"sK 2"_s, u"K 2"_s, u"sK 3"_s, u"K 3"_s, u"sK 4"_s}));
  const FakeTree& tree = site.main.tree;
  EXPECT_EQ(tree.Text(2), GroupText(u"A"_s));
  EXPECT_EQ(tree.Text(3), ParamText(site.module.Par[1]));
  EXPECT_EQ(tree.FirstChild(1), 2);
  EXPECT_EQ(tree.LastChild(1), 7);
  EXPECT_EQ(tree.FirstChild(2), 3);
  EXPECT_EQ(tree.LastChild(2), 4);
}

// Selecting nodes while they are made must not look like the user's doing.
TEST(BuildTree, MarksTheTreeAsChangedByTheProgramMeanwhile) {
  Grouped site({u"A"_s});
  std::optional<qint16> meanwhile;
  bool visible = true;
  site.main.tree.onRebuild = [&] {
    meanwhile = site.module.TreeUpdating;
    visible = site.main.tree.Visible();
  };
  BuildTree(site.core);
  EXPECT_EQ(meanwhile, kTrue);
  EXPECT_FALSE(visible);
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
}

TEST(BuildTree, ParametersWithoutAGroupStandUnderTheRootAtFirst) {
  Grouped site({u""_s, u"A"_s, u""_s});
  BuildTree(site.core);
  EXPECT_EQ(site.Keys(), (QStringList{u"R"_s, u"sK 1"_s, u"K 1"_s, u"sK 2"_s, u"K 2"_s, u"sK 3"_s}));
  EXPECT_EQ(site.main.tree.FirstChild(1), 2);
}

TEST(BuildTree, RestoresTheMarks) {
  Grouped site({u"A"_s, u"A"_s, u"B"_s, u"B"_s});
  site.module.ParNode[3] = kFalse;  // the first parameter of the second group
  BuildTree(site.core);
  const FakeTree& tree = site.main.tree;
  EXPECT_TRUE(tree.Checked(tree.Find(u"R"_s)));
  EXPECT_TRUE(tree.Checked(tree.Find(u"K 1"_s)));
  EXPECT_TRUE(tree.Checked(tree.Find(u"sK 2"_s)));
  EXPECT_FALSE(tree.Checked(tree.Find(u"K 2"_s))) << "a group takes the mark of its first parameter";
  EXPECT_FALSE(tree.Checked(tree.Find(u"sK 3"_s)));
  EXPECT_TRUE(tree.Checked(tree.Find(u"sK 4"_s)));

  site.module.ParNode[0] = kFalse;
  BuildTree(site.core);
  EXPECT_FALSE(tree.Checked(tree.Find(u"R"_s)));
}

TEST(BuildTree, RestoresWhichGroupsAreExpanded) {
  Grouped site({u"A"_s, u"B"_s});
  site.module.NodeState[2] = kTrue;
  BuildTree(site.core);
  EXPECT_FALSE(site.main.tree.Expanded(site.main.tree.Find(u"K 1"_s)));
  EXPECT_TRUE(site.main.tree.Expanded(site.main.tree.Find(u"K 2"_s)));
}

TEST(BuildTree, ReplacesTheTreeOfBefore) {
  Grouped site({u"A"_s, u"B"_s});
  BuildTree(site.core);
  site.module.ParCount = 2;
  BuildTree(site.core);
  EXPECT_EQ(site.Keys(), (QStringList{u"R"_s, u"K 1"_s, u"sK 1"_s}));
}

TEST(BuildTree, HoldsAsManyGroupsAsParameters) {
  QStringList groups;
  for (int i = 1; i < kLastParameter; ++i)
    groups.append(QString::number(i));
  Grouped site(groups);
  site.AddParameter(u"int"_s, QString()).Rubrik = u"last"_s;
  BuildTree(site.core);
  EXPECT_EQ(site.main.tree.Count(), 1 + 2 * kLastParameter);
  EXPECT_EQ(site.main.tree.Key(site.main.tree.Count()), u"sK 2000"_s);
}

TEST(BuildTree, ClearsTheFlagOfItsOwnChanges) {
  Grouped site({u"A"_s});
  site.module.TreeUpdating = kTrue;
  BuildTree(site.core);
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
  EXPECT_TRUE(site.main.tree.Visible());
}

TEST(BuildTree, AnErrorLeavesTheTreeVisible) {
  Grouped site({u"A"_s, u"A"_s});
  site.module.Par[2].Zahl1 = site.module.Par[2].Zahl2 = 5;
  EXPECT_EQ(ThrownKind([&] { BuildTree(site.core); }), RuntimeError::Kind::Overflow);
  EXPECT_TRUE(site.main.tree.Visible());
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
  EXPECT_EQ(site.Keys(), (QStringList{u"R"_s, u"K 1"_s, u"sK 1"_s})) << "the nodes so far stay";
}

}  // namespace
}  // namespace kalivor::test
