// Rebuilding from a level downwards: what each level does, in which order, and how often at start and later.
#include "core/Refresh.h"

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

using Kind = RuntimeError::Kind;

QStringList Entries(const SelectionList& list) {
  QStringList entries;
  for (int i = 0; i < list.Count(); ++i)
    entries.append(list.Text(i));
  return entries;
}

const QString kParameter = u"G  N  0  9  5  -  0  0  int  1F00  V  Luft  -"_s;

/// Started with one version whose column of plant types is `plants`.
struct WithPlants : Installation {
  explicit WithPlants(const QString& plants) {
    SetVersions({u"V1  -  A.TXT  "_s + plants + u"  WR"_s});
    SetDefinitions(u"A.TXT"_s, {kParameter});
    Start();
  }
};

struct Started : Installation {
  Started() { StartWithFiles(); }
};

// --- at start ---

TEST(Refresh, AtStartReadsTheTableOnceAndTheRestTwice) {
  Installation site;
  site.AddFiles();
  ConnectHandlers(site.core);
  Refresh(site.core, 5);
  EXPECT_EQ(site.files.reads, (QStringList{u"ini/VF.INI"_s, u"ini//A.TXT"_s, u"ini//A.TXT"_s}));
  EXPECT_EQ(site.main.tree.rebuilt, 2);
  EXPECT_EQ(site.module.VersionIndex, 1);
  EXPECT_TRUE(site.Rests());
}

TEST(Refresh, WithoutAHandlerLevel5StopsAfterTheTable) {
  Installation site;
  site.AddFiles();
  Refresh(site.core, 5);
  EXPECT_EQ(site.module.VersionIndex, 0);
  EXPECT_EQ(site.files.reads, QStringList{u"ini/VF.INI"_s});
  EXPECT_EQ(site.main.tree.rebuilt, 0);
}

TEST(Refresh, LevelFiveReplacesTheVersionsOfBefore) {
  Started site;
  site.SetVersions({u"V9  -  A.TXT  -  WR"_s});
  Refresh(site.core, 5);
  EXPECT_EQ(Entries(site.module.VersionList), QStringList{u"V9"_s});
}

TEST(Refresh, AMissingTableIsReportedAndLeavesAReadyWindow) {
  Installation site;
  site.Start();
  EXPECT_EQ(TakeBoxes(site.box),
            QStringList{Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\nDatei nicht gefunden.\r\n"_s) +
                        u"Ueberprüfen Sie die Einstellungen in Optionen -> Dateien\r\n"_s});
  EXPECT_EQ(site.module.VersionList.Count(), 0);
  EXPECT_EQ(site.module.ParCount, 1);
  EXPECT_TRUE(site.Rests());
}

TEST(Refresh, ATableThatVanishesLeavesTheOldTreeInPlace) {
  Started site;
  site.files.files.remove(u"ini/VF.INI"_s);
  const int before = site.main.tree.rebuilt;
  Refresh(site.core, 5);
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
  EXPECT_EQ(site.main.tree.rebuilt, before);
  EXPECT_EQ(site.module.VersionIndex, 1);
  EXPECT_EQ(site.module.PlantTypeList.Count(), 2);
}

TEST(Refresh, AnUnreadableDefinitionFileAtStartIsReportedWithBothPaths) {
  Installation site;
  site.AddFiles();
  site.files.AddFailure(u"ini//A.TXT"_s, u"Zugriff verweigert."_s);
  site.Start();
  EXPECT_EQ(
      TakeBoxes(site.box),
      QStringList{Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\nZugriff verweigert.: ini//A.TXT\r\n"_s) +
                  u"Ueberprüfen Sie die Einstellungen in Optionen -> Dateien\r\n"_s});
  EXPECT_EQ(site.module.VersionList.Count(), 2);
  EXPECT_EQ(site.main.tree.rebuilt, 0);
  EXPECT_TRUE(site.Rests());
}

// --- what is wrong with a definition file ---

/// Something wrong in the last line of a definition file, and what the user reads of it.
struct Fault {
  QStringList lines;
  QString description;
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.lines.last().toStdString();
}

class FaultyDefinitions : public testing::TestWithParam<Fault> {};

TEST_P(FaultyDefinitions, AreNamedWithTheirLineAtTheStart) {
  Installation site;
  site.AddFiles();
  site.SetDefinitions(u"A.TXT"_s, GetParam().lines);
  site.Start();
  EXPECT_EQ(TakeBoxes(site.box), QStringList{Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\n"_s) +
                                             GetParam().description.arg(Native(u"ini//A.TXT"_s)) +
                                             u"\r\nUeberprüfen Sie die Einstellungen in Optionen -> "
                                             "Dateien\r\n"_s});
  EXPECT_TRUE(site.Rests());
}

TEST_P(FaultyDefinitions, AreNamedWithTheirLineWhenTheVersionChanges) {
  Started site;
  site.files.AddText(u"ini//B.ADR"_s, u"Heading\r\n_abc  1F00\r\n"_s);
  site.SetDefinitions(u"B.TXT"_s, GetParam().lines);
  EXPECT_EQ(ThrownText([&] { site.module.VersionList.Select(1); }),
            GetParam().description.arg(Native(u"ini//B.TXT"_s)));
  EXPECT_TRUE(site.Rests());
}

TEST_P(FaultyDefinitions, AreNamedWithTheirLineWhenThePlantTypeChanges) {
  Started site;
  site.SetDefinitions(u"A.TXT"_s, GetParam().lines);
  EXPECT_EQ(ThrownText([&] { site.module.PlantTypeList.Select(1); }),
            GetParam().description.arg(Native(u"ini//A.TXT"_s)));
  EXPECT_TRUE(site.Rests());
}

INSTANTIATE_TEST_SUITE_P(
    Each, FaultyDefinitions,
    testing::Values(Fault{{kParameter, u"G  N  0  4294967295  5  -  0  0  int  1F00  V  Luft  -"_s},
                          u"Zahl außerhalb des zulässigen Bereichs.: %1, Zeile 3"_s},
                    Fault{QStringList(kLastParameter + 1, kParameter),
                          u"Index außerhalb des zulässigen Bereichs.: %1, Zeile 2002"_s},
                    // The text of its tree node does not come about. Neither the plant type's record nor a
                    // blank line is a parameter, and both are lines.
                    Fault{{u"NoRubrik  Anlage  0  9  0  -  0  0  int  2000  ANL  -  -"_s, u""_s, kParameter,
                           u"G  N  0  9  5  -  5  5  int  1F00  V  Luft  -"_s},
                          u"Zahl außerhalb des zulässigen Bereichs.: %1, Zeile 5"_s}));

TEST(Refresh, AFaultOfTheTreeNamesTheFileThatTheParametersCameFrom) {
  WithPlants site(u"A B"_s);
  site.SetDefinitions(u"A.TXT"_s, {u"G  N  0  9  5  -  5  5  int  1F00  V  B  -"_s});
  site.module.PlantTypeList.Select(1);  // does not show it
  // Neither a folder chosen since, nor a table read since, is where the tree came from.
  site.module.Inipath = u"other/"_s;
  site.module.Versionen.clear();
  site.module.Par[1].Zusatz = u"A"_s;
  EXPECT_EQ(ThrownText([&] { Refresh(site.core, 2); }),
            Native(u"Zahl außerhalb des zulässigen Bereichs.: ini//A.TXT, Zeile 2"_s));
}

// --- the version ---

TEST(Refresh, AnotherVersionReadsItsFilesTwice) {
  Started site;
  site.files.reads.clear();
  site.main.tree.rebuilt = 0;
  site.module.VersionList.Select(1);
  EXPECT_EQ(site.module.VersionIndex, 2);
  EXPECT_EQ(site.files.reads,
            (QStringList{u"ini//B.TXT"_s, u"ini//B.ADR"_s, u"ini//B.TXT"_s, u"ini//B.ADR"_s}));
  EXPECT_EQ(site.main.tree.rebuilt, 2);
  EXPECT_EQ(site.module.ParCount, 2);
  EXPECT_EQ(site.module.Par[1].VarAdresse, u"1F06"_s);
}

TEST(Refresh, TheSameVersionAgainReadsNothing) {
  Started site;
  site.files.reads.clear();
  site.module.VersionList.Select(0);
  EXPECT_EQ(site.files.reads, QStringList());
}

TEST(Refresh, AnUnreadableDefinitionFilePassesAndLeavesAReadyWindow) {
  Started site;
  site.files.AddFailure(u"ini//B.TXT"_s, u"Zugriff verweigert."_s);
  site.main.tree.rebuilt = 0;
  EXPECT_EQ(ThrownKind([&] { site.module.VersionList.Select(1); }), Kind::FileError);
  EXPECT_EQ(site.module.ParCount, 1);
  EXPECT_EQ(site.main.tree.rebuilt, 0);
  EXPECT_TRUE(site.Rests());
}

// --- the plant types ---

TEST(Refresh, EveryBlankClosesAPlantType) {
  struct {
    QString column;
    QStringList entries;
    bool visible;
  } const cases[] = {
      {u"A"_s, {u""_s}, false},  // what stands behind the last blank is not taken over
      {u"A B"_s, {u""_s, u"A"_s}, true},
      {u"A B C"_s, {u""_s, u"A"_s, u"B"_s}, true},
  };
  for (const auto& example : cases) {
    WithPlants site(example.column);
    EXPECT_EQ(Entries(site.module.PlantTypeList), example.entries);
    EXPECT_EQ(site.module.PlantTypeList.Position(), 0);
    EXPECT_EQ(site.main.plantSelectorVisible, example.visible);
  }
}

TEST(Refresh, AVersionWithSeveralPlantTypesShowsTheSelectorAgain) {
  Started site;
  EXPECT_TRUE(site.main.plantSelectorVisible);
  site.module.VersionList.Select(1);
  EXPECT_FALSE(site.main.plantSelectorVisible);
  site.module.VersionList.Select(0);
  EXPECT_TRUE(site.main.plantSelectorVisible);
}

TEST(Refresh, WithoutAVersionThePlantTypesStay) {
  Started site;
  site.module.VersionIndex = 0;
  Refresh(site.core, 4);
  EXPECT_EQ(site.module.PlantTypeList.Count(), 2);
}

TEST(Refresh, AnotherPlantTypeReadsTheDefinitionsOnceAndShowsItsParameters) {
  Started site;
  site.files.reads.clear();
  site.main.tree.rebuilt = 0;
  EXPECT_NE(site.main.tree.Find(u"sK 3"_s), 0);
  site.module.PlantTypeList.Select(1);
  EXPECT_EQ(site.files.reads, QStringList{u"ini//A.TXT"_s});
  EXPECT_EQ(site.main.tree.rebuilt, 1);
  EXPECT_EQ(site.main.tree.Find(u"sK 3"_s), 0);
  EXPECT_NE(site.main.tree.Find(u"sK 4"_s), 0);
}

TEST(Refresh, ThePlantTypeRecordTakesThePositionOfTheListIfItHasAnAddress) {
  Started site;
  site.module.PlantTypeList.Select(1);
  EXPECT_EQ(site.module.Par[0].Wert, 1);

  WithPlants without(u"A B"_s);
  without.module.Par[0].Wert = 77;
  without.module.PlantTypeList.Select(1);
  EXPECT_EQ(without.module.Par[0].Wert, 77);
}

TEST(TakePlantType, WithoutASelectionItIsMinusOne) {
  Installation site;
  site.module.Par[0].VarAdresse = u"2000"_s;
  TakePlantType(site.module);
  EXPECT_EQ(site.module.Par[0].Wert, -1);
}

// --- values, marks, editors ---

TEST(Refresh, FromLevelThreeOnEveryValueIsTheStandard) {
  Started site;
  for (const int level : {3, 4, 5}) {
    site.module.Par[1].Wert = 7;
    site.module.Par[4].WertText = u"x"_s;
    Refresh(site.core, level);
    EXPECT_EQ(site.module.Par[1].Wert, 1500) << level;
    EXPECT_EQ(site.module.Par[4].WertText, u"ABCD"_s) << level;
  }
}

TEST(Refresh, LevelTwoKeepsValuesAndMarksAndShowsThem) {
  Started site;
  site.module.Par[1].Wert = 7;
  site.module.ParNode[1] = kFalse;
  site.module.NodeState[1] = kTrue;
  Refresh(site.core, 2);
  EXPECT_EQ(site.module.Par[1].Wert, 7);
  EXPECT_EQ(site.module.ParNode[1], kFalse);
  EXPECT_EQ(site.module.NodeState[1], kTrue);
  const int node = site.main.tree.Find(u"sK 1"_s);
  EXPECT_TRUE(site.main.tree.Text(node).contains(u"     0.7 1/m "_s));
  EXPECT_FALSE(site.main.tree.Checked(node));
}

TEST(Refresh, LevelThreeChecksAndCollapsesAllButTheLastElement) {
  Started site;
  for (int i = 0; i <= kLastParameter; ++i) {
    site.module.ParNode[i] = 5;
    site.module.NodeState[i] = 5;
  }
  Refresh(site.core, 3);
  for (int i = 0; i < kLastParameter; ++i) {
    EXPECT_EQ(static_cast<quint16>(site.module.ParNode[i]), 65535) << i;
    EXPECT_EQ(site.module.NodeState[i], 0) << i;
  }
  EXPECT_EQ(site.module.ParNode[kLastParameter], 5);
  EXPECT_EQ(site.module.NodeState[kLastParameter], 5);
}

TEST(Refresh, Parameter2000StartsUnchecked) {
  Installation site;
  site.SetVersions({u"V1  -  A.TXT  -  WR"_s});
  site.SetDefinitions(u"A.TXT"_s, QStringList(kLastParameter, kParameter));
  site.Start();
  EXPECT_EQ(site.module.ParCount, 2001);
  EXPECT_EQ(site.module.ParNode[1999], kTrue);
  EXPECT_EQ(site.module.ParNode[2000], kFalse);
  EXPECT_EQ(site.module.Par[2000].Wert, 5) << "the standard value reaches it all the same";
}

TEST(Refresh, MoreThan2000ParametersAreABoundsError) {
  Installation site;
  site.SetVersions({u"V1  -  A.TXT  -  WR"_s});
  site.SetDefinitions(u"A.TXT"_s, QStringList(kLastParameter, kParameter));
  site.Start();
  site.SetDefinitions(u"A.TXT"_s, QStringList(kLastParameter + 1, kParameter));
  EXPECT_EQ(ThrownKind([&] { Refresh(site.core, 3); }), Kind::Bounds);
  EXPECT_TRUE(site.Rests());
}

TEST(Refresh, FromLevelThreeOnTheEditorsAreHidden) {
  Started site;
  site.editors.hidden = 0;
  Refresh(site.core, 2);
  EXPECT_EQ(site.editors.hidden, 0) << "the numbers of parameters and nodes stay the same";
  for (const int level : {3, 4, 5}) {
    site.editors.hidden = 0;
    Refresh(site.core, level);
    EXPECT_GT(site.editors.hidden, 0) << level;
  }
}

TEST(Refresh, ATreeThatCannotBeBuiltLeavesAReadyWindow) {
  Started site;
  site.module.Par[1].Zahl1 = 10;
  EXPECT_EQ(ThrownKind([&] { Refresh(site.core, 2); }), Kind::Overflow);
  EXPECT_TRUE(site.Rests());
  EXPECT_TRUE(site.main.tree.Visible());
}

TEST(Refresh, WithoutParametersTheTreeIsTheRootAlone) {
  Installation site;
  Refresh(site.core, 2);
  EXPECT_EQ(site.main.tree.Count(), 1);
}

TEST(SetStandard, ReachesTheFreeSlotButNotThePlantType) {
  Module1 module;
  for (int i = 0; i <= 4; ++i) {
    module.Par[i].Standard = i + 1;
    module.Par[i].StandardText = QString::number(i);
  }
  module.ParCount = 3;
  SetStandard(module);
  EXPECT_EQ(module.Par[0].Wert, 0);
  EXPECT_EQ(module.Par[1].Wert, 2);
  EXPECT_EQ(module.Par[2].WertText, u"2"_s);
  EXPECT_EQ(module.Par[3].Wert, 4);
  EXPECT_EQ(module.Par[4].Wert, 0);
}

TEST(SetStandard, AFullTableHasNoFreeSlot) {
  const auto module = std::make_unique<Module1>();
  module->ParCount = kLastParameter + 1;
  module->Par[kLastParameter].Standard = 5;
  SetStandard(*module);
  EXPECT_EQ(module->Par[kLastParameter].Wert, 5);
}

}  // namespace
}  // namespace kalivor::test
