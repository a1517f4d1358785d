// The user's actions on the tree: marks, expanded groups, and which editor a click opens.
#include "commands/TreeCommands.h"

#include "commands/EditorCommands.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"
#include "fakes/Installation.h"
#include "fakes/Walks.h"

namespace kalivor::test {
namespace {

/// Group 1 holds parameters 1 to 5, group 2 holds 6 to 10. The handlers are connected.
struct TwoGroups : Installation {
  FakeTree& tree = main.tree;

  TwoGroups() {
    StartEmpty();
    for (int i = 1; i <= 10; ++i)
      AddParameter(u"int"_s, QString::number(1000 + 2 * i)).Rubrik = i <= 5 ? u"A"_s : u"B"_s;
    for (int i = 0; i <= kLastParameter; ++i)
      module.ParNode[i] = kTrue;
    ConnectHandlers(core);
    BuildTree(core);
  }

  /// The keys of all nodes whose box is ticked.
  QStringList Ticked() const {
    QStringList keys;
    for (int node = 1; node <= tree.Count(); ++node) {
      if (tree.Checked(node)) keys.append(tree.Key(node));
    }
    return keys;
  }

  /// The indexes below 20 whose mark is stored as not checked.
  std::vector<int> Unmarked() const {
    std::vector<int> indexes;
    for (int i = 0; i < 20; ++i) {
      if (module.ParNode[i] == kFalse) indexes.push_back(i);
    }
    return indexes;
  }
};

TEST(Nummer, ReadsTheNumberBehindTheKind) {
  Installation site;
  site.main.tree.Add(0, u"R"_s, QString());
  site.main.tree.Add(1, u"K 12"_s, QString());
  site.main.tree.Add(1, u"sK 17"_s, QString());
  site.main.tree.Add(1, u"K3"_s, QString());  // without the blank its only digit is lost
  site.main.tree.Add(1, u"Rx 5"_s, QString());
  for (const auto& [node, number] : {std::pair{1, 0}, {2, 12}, {3, 17}, {4, 0}, {5, 0}})
    EXPECT_EQ(Nummer(site.core, node), number) << node;
}

// --- marks ---

TEST(TreeCheck, TheRootHandsItsMarkDownToEverything) {
  TwoGroups site;
  site.tree.UserChecks(site.tree.Find(u"R"_s), false);
  EXPECT_EQ(site.Ticked(), QStringList());
  EXPECT_EQ(site.Unmarked(), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  site.tree.UserChecks(site.tree.Find(u"R"_s), true);
  EXPECT_EQ(site.Ticked().size(), site.tree.Count());
  EXPECT_EQ(site.Unmarked(), std::vector<int>{});
}

TEST(TreeCheck, AParameterHandsNothingUp) {
  TwoGroups site;
  site.tree.UserChecks(site.tree.Find(u"sK 7"_s), false);
  EXPECT_EQ(site.Unmarked(), std::vector<int>{7});
  EXPECT_EQ(site.Ticked().size(), site.tree.Count() - 1);
  EXPECT_TRUE(site.tree.Checked(site.tree.Find(u"K 2"_s)));
  EXPECT_TRUE(site.tree.Checked(site.tree.Find(u"R"_s)));
}

TEST(TreeCheck, AGroupKeepsItsMarkWhenItsLastParameterIsUnchecked) {
  TwoGroups site;
  for (int i = 6; i <= 10; ++i)
    site.tree.UserChecks(site.tree.Find(ParameterKey(i)), false);
  EXPECT_TRUE(site.tree.Checked(site.tree.Find(u"K 2"_s)));
}

TEST(TreeCheck, AGroupSharesItsMarkWithTheParameterOfItsNumber) {
  TwoGroups site;
  site.tree.UserChecks(site.tree.Find(u"K 2"_s), false);
  EXPECT_EQ(site.Unmarked(), (std::vector<int>{2, 6, 7, 8, 9, 10}));
  EXPECT_TRUE(site.tree.Checked(site.tree.Find(u"sK 2"_s))) << "its box follows at the next rebuild only";
  EXPECT_TRUE(site.tree.Checked(site.tree.Find(u"K 1"_s)));
  EXPECT_TRUE(site.tree.Checked(site.tree.Find(u"R"_s)));
  Send(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"W10020000"_s, u"W10060000"_s, u"W10080000"_s, u"W10100000"_s}))
      << "the stored mark counts";
  Refresh(site.core, 2);
  EXPECT_FALSE(site.tree.Checked(site.tree.Find(u"sK 2"_s)));
}

TEST(TreeCheck, AGroupTickedAgainChecksItsParameters) {
  TwoGroups site;
  site.tree.UserChecks(site.tree.Find(u"R"_s), false);
  site.tree.UserChecks(site.tree.Find(u"K 1"_s), true);
  EXPECT_EQ(site.Ticked(), (QStringList{u"K 1"_s, u"sK 1"_s, u"sK 2"_s, u"sK 3"_s, u"sK 4"_s, u"sK 5"_s}));
  EXPECT_EQ(site.Unmarked(), (std::vector<int>{0, 6, 7, 8, 9, 10}));
}

TEST(TreeCheck, WithoutChildrenOnlyTheNodeItselfChanges) {
  Installation site;
  ConnectHandlers(site.core);
  BuildTree(site.core);
  site.main.tree.UserChecks(1, true);
  EXPECT_EQ(site.module.ParNode[0], kTrue);
  EXPECT_EQ(site.module.ParNode[1], kFalse);
}

TEST(TreeCheck, WhatThePlantTypeHidesKeepsItsMark) {
  TwoGroups site;
  site.module.PlantTypeList.Add(u"Luft"_s);
  site.module.PlantTypeList.OnChange = nullptr;
  site.module.PlantTypeList.Select(0);
  site.module.Par[3].Zusatz = u"Luft"_s;
  BuildTree(site.core);
  site.tree.UserChecks(site.tree.Find(u"R"_s), false);
  EXPECT_EQ(site.Unmarked(), (std::vector<int>{0, 1, 3})) << "root, group 1 and the one parameter shown";
}

TEST(TreeCheck, AnotherPlantTypeChecksAndCollapsesEverythingAgain) {
  Installation site;
  site.StartWithFiles();
  site.main.tree.UserChecks(site.main.tree.Find(u"R"_s), false);
  site.main.tree.UserExpands(site.main.tree.Find(u"K 1"_s));
  site.module.PlantTypeList.Select(1);
  for (int node = 1; node <= site.main.tree.Count(); ++node) {
    EXPECT_TRUE(site.main.tree.Checked(node)) << node;
    EXPECT_EQ(site.main.tree.Expanded(node), node == 1) << node;
  }
}

TEST(TreeCheck, ANumberBeyondTheTableIsAnError) {
  Installation site;
  ConnectHandlers(site.core);
  site.main.tree.Add(0, u"sK 2001"_s, QString());
  site.main.tree.Add(0, u"K 2001"_s, QString());
  EXPECT_EQ(ThrownKind([&] { site.main.tree.UserChecks(1, true); }), RuntimeError::Kind::Bounds);
  EXPECT_EQ(ThrownKind([&] { site.main.tree.UserExpands(2); }), RuntimeError::Kind::Bounds);
  EXPECT_EQ(ThrownKind([&] { site.main.tree.UserCollapses(2); }), RuntimeError::Kind::Bounds);
}

// --- expanded groups ---

TEST(TreeExpansion, IsStoredForGroupsOnly) {
  TwoGroups site;
  site.tree.UserExpands(site.tree.Find(u"K 2"_s));
  EXPECT_EQ(site.module.NodeState[2], kTrue);
  site.tree.UserCollapses(site.tree.Find(u"K 2"_s));
  EXPECT_EQ(site.module.NodeState[2], kFalse);
  for (const QString& key : {u"R"_s, u"sK 2"_s}) {
    site.module.NodeState[0] = site.module.NodeState[2] = 5;
    site.tree.UserExpands(site.tree.Find(key));
    site.tree.UserCollapses(site.tree.Find(key));
    EXPECT_EQ(site.module.NodeState[0], 5);
    EXPECT_EQ(site.module.NodeState[2], 5);
  }
}

TEST(TreeExpansion, SurvivesARebuild) {
  TwoGroups site;
  site.tree.UserExpands(site.tree.Find(u"K 2"_s));
  Refresh(site.core, 2);
  EXPECT_TRUE(site.tree.Expanded(site.tree.Find(u"K 2"_s)));
  EXPECT_FALSE(site.tree.Expanded(site.tree.Find(u"K 1"_s)));
}

TEST(TreeExpansion, WithAnEditorOpenOnlyCollapsingIsStored) {
  TwoGroups site;
  site.tree.UserClicks(site.tree.Find(u"sK 1"_s));
  site.tree.UserExpands(site.tree.Find(u"K 1"_s));
  EXPECT_EQ(site.module.NodeState[1], kFalse);
  site.module.NodeState[1] = kTrue;
  site.tree.UserCollapses(site.tree.Find(u"K 1"_s));
  EXPECT_EQ(site.module.NodeState[1], kFalse);
  EditorHidden(site.module, false);
  site.tree.UserExpands(site.tree.Find(u"K 1"_s));
  EXPECT_EQ(site.module.NodeState[1], kTrue);
}

TEST(TreeClick, OnAGroupStoresWhetherItIsExpanded) {
  TwoGroups site;
  site.tree.SetExpanded(site.tree.Find(u"K 2"_s), true);
  site.tree.UserClicks(site.tree.Find(u"K 2"_s));
  EXPECT_EQ(site.module.NodeState[2], kTrue);
  site.tree.SetExpanded(site.tree.Find(u"K 2"_s), false);
  site.tree.UserClicks(site.tree.Find(u"K 2"_s));
  EXPECT_EQ(site.module.NodeState[2], kFalse);
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
}

TEST(TreeClick, OnTheRootDoesNothing) {
  TwoGroups site;
  const auto before = site.module.NodeState;
  site.tree.UserClicks(site.tree.Find(u"R"_s));
  EXPECT_EQ(site.module.NodeState, before);
  EXPECT_TRUE(site.editors.numberEdits.empty());
}

// --- editors ---

TEST(TreeClick, OnANumberOpensTheNumericEditor) {
  TwoGroups site;
  ParameterRecord& record = site.module.Par[7];
  record.Name = u"Drehzahl"_s;
  record.Wert = 1234;
  record.Min = -50;
  record.Max = 1200;
  record.Standard = 5;
  record.Zahl1 = record.Zahl2 = 1;
  record.Einheit = u"1/m"_s;
  record.Hilfetext = u"a\\b"_s;
  const int node = site.tree.Find(u"sK 7"_s);
  site.tree.UserClicks(node);
  ASSERT_EQ(site.editors.numberEdits.size(), 1U);
  const NumberEdit& shown = site.editors.numberEdits[0];
  EXPECT_EQ(shown.LabelName, u"Drehzahl"_s);
  EXPECT_EQ(shown.TextWert, u"12.34"_s);
  EXPECT_EQ(shown.TextVon, u"-0.5"_s);
  EXPECT_EQ(shown.TextBis, u"12"_s);
  EXPECT_EQ(shown.TextStd, u"0.05"_s);
  EXPECT_EQ(shown.LabelEinheit, u"1/m "_s);
  EXPECT_EQ(shown.LabelHilfetext, u"a\r\nb"_s);
  EXPECT_EQ(shown.Nr, u"7"_s);
  EXPECT_EQ(shown.Treedex, QString::number(node));
  EXPECT_EQ(site.module.TreeUpdating, kTrue);
  EXPECT_TRUE(site.editors.textEdits.empty());
}

TEST(TreeClick, OnATextOpensTheTextEditor) {
  TwoGroups site;
  ParameterRecord& record = site.module.Par[7];
  record.Typ = u"string20"_s;
  record.Name = u"Kennwort"_s;
  record.WertText = u"AB "_s;
  record.Hilfetext = u"a\\\\b"_s;
  site.tree.UserClicks(site.tree.Find(u"sK 7"_s));
  ASSERT_EQ(site.editors.textEdits.size(), 1U);
  const TextEdit& shown = site.editors.textEdits[0];
  EXPECT_EQ(shown.LabelName, u"Kennwort"_s);
  EXPECT_EQ(shown.TextWert, u"AB "_s);
  EXPECT_EQ(shown.MaxLength, 20);
  EXPECT_EQ(shown.LabelHilfetext, u"a\r\n\r\nb"_s);
  EXPECT_EQ(shown.Nr, u"7"_s);
  EXPECT_EQ(site.module.TreeUpdating, kTrue);
  EXPECT_TRUE(site.editors.numberEdits.empty());
}

TEST(TreeClick, EveryTypeButStringOpensTheNumericEditor) {
  for (const QString& type : {u"int"_s, u"long"_s, u"char"_s, u"str20"_s, u"float"_s, u"String"_s}) {
    TwoGroups site;
    site.module.Par[7].Typ = type;
    site.tree.UserClicks(site.tree.Find(u"sK 7"_s));
    EXPECT_EQ(site.editors.numberEdits.size(), 1U) << testing::PrintToString(type);
  }
}

TEST(TreeClick, BeyondTheTableDoesNothing) {
  Installation site;
  ConnectHandlers(site.core);
  site.main.tree.Add(0, u"sK 2001"_s, QString());
  site.main.tree.UserClicks(1);
  EXPECT_TRUE(site.editors.numberEdits.empty());
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
}

TEST(TreeClick, AnEditorThatCannotBeFilledDoesNotOpen) {
  struct {
    qint16 decimals, dropped;
    RuntimeError::Kind error;
  } const cases[] = {
      {32767, 1, RuntimeError::Kind::Overflow},       // their sum leaves its field
      {-400, 0, RuntimeError::Kind::DivisionByZero},  // ten to that power is zero
      {-308, 0, RuntimeError::Kind::Overflow},
  };
  for (const auto& example : cases) {
    TwoGroups site;
    site.module.Par[7].Wert = 2000000000;
    site.module.Par[7].Zahl1 = example.decimals;
    site.module.Par[7].Zahl2 = example.dropped;
    EXPECT_EQ(ThrownKind([&] { site.tree.UserClicks(site.tree.Find(u"sK 7"_s)); }), example.error);
    EXPECT_TRUE(site.editors.numberEdits.empty());
    EXPECT_EQ(site.module.TreeUpdating, kFalse);
  }
}

}  // namespace
}  // namespace kalivor::test
