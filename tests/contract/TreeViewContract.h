// What every implementation of TreeView has to do. Each one is run through the same tests.
#pragma once

#include <gtest/gtest.h>
#include <vector>

#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"
#include "platform/TreeView.h"

namespace kalivor::test {

/// `Harness` is default-constructible and offers
///   platform::TreeView& Tree();
///   bool Visible();                        // the whole tree is shown
///   void UserChecks(int node, bool on);    // and the other things that only the user can do
///   void UserExpands(int node);
///   void UserCollapses(int node);
///   void UserClicks(int node);
/// Instantiate with INSTANTIATE_TYPED_TEST_SUITE_P(Name, TreeViewContract, Harness).
template <typename Harness>
class TreeViewContract : public testing::Test {
 protected:
  TreeViewContract() {
    const auto recorder = [this](const char* what) {
      return [this, what](int node) { calls.push_back(what + std::to_string(node)); };
    };
    tree.OnCheck = recorder("check ");
    tree.OnExpand = recorder("expand ");
    tree.OnCollapse = recorder("collapse ");
    tree.OnClick = recorder("click ");
  }

  // Root 1 with the groups 2 (leaves 3 and 4) and 5 (leaf 6).
  void Build() {
    EXPECT_EQ(tree.Add(0, QStringLiteral("R"), QStringLiteral("Anlage")), 1);
    EXPECT_EQ(tree.Add(1, QStringLiteral("K 1"), QStringLiteral("Antrieb")), 2);
    EXPECT_EQ(tree.Add(2, QStringLiteral("sK 1"), QStringLiteral("Drehzahl")), 3);
    EXPECT_EQ(tree.Add(2, QStringLiteral("sK 2"), QStringLiteral("Druck")), 4);
    EXPECT_EQ(tree.Add(1, QStringLiteral("K 2"), QStringLiteral("Heizung")), 5);
    EXPECT_EQ(tree.Add(5, QStringLiteral("sK 3"), QStringLiteral("Temperatur")), 6);
  }

  Harness harness;
  platform::TreeView& tree = harness.Tree();
  std::vector<std::string> calls;
};

TYPED_TEST_SUITE_P(TreeViewContract);

TYPED_TEST_P(TreeViewContract, StartsEmpty) {
  EXPECT_EQ(this->tree.Count(), 0);
}

TYPED_TEST_P(TreeViewContract, NumbersNodesInTheOrderOfAdding) {
  this->Build();
  EXPECT_EQ(this->tree.Count(), 6);
  EXPECT_EQ(this->tree.Key(1), QStringLiteral("R"));
  EXPECT_EQ(this->tree.Text(1), QStringLiteral("Anlage"));
  EXPECT_EQ(this->tree.Key(5), QStringLiteral("K 2"));
  EXPECT_EQ(this->tree.Text(6), QStringLiteral("Temperatur"));
}

// A node that is added late to an early parent still gets the next number.
TYPED_TEST_P(TreeViewContract, NumbersDoNotFollowThePlaceInTheTree) {
  this->Build();
  EXPECT_EQ(this->tree.Add(2, QStringLiteral("sK 4"), QStringLiteral("spät")), 7);
  EXPECT_EQ(this->tree.Key(5), QStringLiteral("K 2"));
  EXPECT_EQ(this->tree.Key(7), QStringLiteral("sK 4"));
  EXPECT_EQ(this->tree.LastChild(2), 7);
}

TYPED_TEST_P(TreeViewContract, KnowsFirstAndLastChildren) {
  this->Build();
  EXPECT_EQ(this->tree.FirstChild(1), 2);
  EXPECT_EQ(this->tree.LastChild(1), 5);
  EXPECT_EQ(this->tree.FirstChild(2), 3);
  EXPECT_EQ(this->tree.LastChild(2), 4);
  EXPECT_EQ(this->tree.FirstChild(5), 6);
  EXPECT_EQ(this->tree.LastChild(5), 6);
  EXPECT_EQ(this->tree.FirstChild(3), 0) << "no child";
  EXPECT_EQ(this->tree.LastChild(3), 0);
}

TYPED_TEST_P(TreeViewContract, NodesStartUncheckedAndCollapsed) {
  this->Build();
  for (int node = 1; node <= 6; ++node) {
    EXPECT_FALSE(this->tree.Checked(node)) << node;
    EXPECT_FALSE(this->tree.Expanded(node)) << node;
  }
}

TYPED_TEST_P(TreeViewContract, TextsCanBeReplaced) {
  this->Build();
  this->tree.SetText(3, QStringLiteral("  42 |  "));
  EXPECT_EQ(this->tree.Text(3), QStringLiteral("  42 |  ")) << "blanks belong to the text";
  EXPECT_EQ(this->tree.Key(3), QStringLiteral("sK 1"));
  EXPECT_EQ(this->tree.Text(4), QStringLiteral("Druck"));
}

TYPED_TEST_P(TreeViewContract, CheckMarksAreIndependent) {
  this->Build();
  this->tree.SetChecked(2, true);
  EXPECT_TRUE(this->tree.Checked(2));
  for (const int other : {1, 3, 4, 5, 6})
    EXPECT_FALSE(this->tree.Checked(other)) << other;
  this->tree.SetChecked(3, true);
  this->tree.SetChecked(2, false);
  EXPECT_FALSE(this->tree.Checked(2));
  EXPECT_TRUE(this->tree.Checked(3));
}

TYPED_TEST_P(TreeViewContract, ExpandedStatesAreIndependent) {
  this->Build();
  this->tree.SetExpanded(2, true);
  EXPECT_TRUE(this->tree.Expanded(2)) << "also inside a collapsed parent";
  EXPECT_FALSE(this->tree.Expanded(1));
  EXPECT_FALSE(this->tree.Expanded(5));
  this->tree.SetExpanded(1, true);
  this->tree.SetExpanded(2, false);
  EXPECT_TRUE(this->tree.Expanded(1));
  EXPECT_FALSE(this->tree.Expanded(2));
}

TYPED_TEST_P(TreeViewContract, ChangesByTheProgramRunNoHandler) {
  this->Build();
  this->tree.SetText(3, QStringLiteral("neu"));
  this->tree.SetChecked(2, true);
  this->tree.SetChecked(2, false);
  this->tree.SetExpanded(2, true);
  this->tree.SetExpanded(2, false);
  this->tree.SetVisible(false);
  this->tree.SetVisible(true);
  this->tree.Clear();
  EXPECT_EQ(this->calls, std::vector<std::string>{});
}

TYPED_TEST_P(TreeViewContract, TheUsersChangesRunTheirHandlersOnce) {
  this->Build();
  this->tree.SetExpanded(1, true);
  this->harness.UserExpands(2);
  EXPECT_TRUE(this->tree.Expanded(2));
  this->harness.UserClicks(3);
  this->harness.UserChecks(4, true);
  EXPECT_TRUE(this->tree.Checked(4));
  this->harness.UserCollapses(2);
  EXPECT_FALSE(this->tree.Expanded(2));
  EXPECT_EQ(this->calls, (std::vector<std::string>{"expand 2", "click 3", "check 4", "collapse 2"}));
}

TYPED_TEST_P(TreeViewContract, TheCheckHandlerSeesTheNewState) {
  this->Build();
  this->tree.SetExpanded(1, true);
  std::vector<bool> seen;
  this->tree.OnCheck = [&](int node) { seen.push_back(this->tree.Checked(node)); };
  this->harness.UserChecks(2, true);
  this->harness.UserChecks(2, false);
  EXPECT_EQ(seen, (std::vector<bool>{true, false}));
}

// The handler of a group sets the marks of its parameters.
TYPED_TEST_P(TreeViewContract, ChangesFromInsideAHandlerRunNoHandler) {
  this->Build();
  this->tree.SetExpanded(1, true);
  int runs = 0;
  this->tree.OnCheck = [&](int) {
    ++runs;
    this->tree.SetChecked(3, true);
    this->tree.SetChecked(4, true);
  };
  this->harness.UserChecks(2, true);
  EXPECT_EQ(runs, 1);
  EXPECT_TRUE(this->tree.Checked(3));
  EXPECT_TRUE(this->tree.Checked(4));
}

TYPED_TEST_P(TreeViewContract, WorksWithoutHandlers) {
  this->Build();
  this->tree.OnCheck = this->tree.OnClick = this->tree.OnExpand = this->tree.OnCollapse = nullptr;
  this->tree.SetExpanded(1, true);
  this->harness.UserExpands(2);
  this->harness.UserClicks(3);
  this->harness.UserChecks(3, true);
  this->harness.UserCollapses(2);
  EXPECT_TRUE(this->tree.Checked(3));
  EXPECT_FALSE(this->tree.Expanded(2));
}

TYPED_TEST_P(TreeViewContract, OperationsOnMissingNodesAreRefused) {
  this->Build();
  const auto bounds = RuntimeError::Kind::Bounds;
  for (const int node : {0, -1, 7}) {
    EXPECT_EQ(ThrownKind([&] { (void)this->tree.Key(node); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { (void)this->tree.Text(node); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { this->tree.SetText(node, QString()); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { (void)this->tree.Checked(node); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { this->tree.SetChecked(node, true); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { (void)this->tree.Expanded(node); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { this->tree.SetExpanded(node, true); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { this->tree.GoTo(node); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { (void)this->tree.FirstChild(node); }), bounds) << node;
    EXPECT_EQ(ThrownKind([&] { (void)this->tree.LastChild(node); }), bounds) << node;
  }
}

TYPED_TEST_P(TreeViewContract, AMissingParentIsRefusedAndNothingAdded) {
  this->Build();
  for (const int parent : {-1, 7}) {
    EXPECT_EQ(ThrownKind([&] { (void)this->tree.Add(parent, QStringLiteral("x"), QString()); }),
              RuntimeError::Kind::Bounds);
  }
  EXPECT_EQ(this->tree.Count(), 6);
  EXPECT_EQ(this->tree.Add(0, QStringLiteral("x"), QString()), 7) << "the key must still be free";
}

TYPED_TEST_P(TreeViewContract, AKeyInUseIsRefusedAndNothingAdded) {
  this->Build();
  EXPECT_EQ(ThrownKind([&] { (void)this->tree.Add(5, QStringLiteral("K 1"), QStringLiteral("doppelt")); }),
            RuntimeError::Kind::InvalidArgument);
  EXPECT_EQ(this->tree.Count(), 6);
  EXPECT_EQ(this->tree.LastChild(5), 6);
  EXPECT_EQ(this->tree.Text(2), QStringLiteral("Antrieb"));
}

TYPED_TEST_P(TreeViewContract, ClearingStartsAnew) {
  this->Build();
  this->tree.SetChecked(2, true);
  this->tree.SetExpanded(2, true);
  this->tree.Clear();
  EXPECT_EQ(this->tree.Count(), 0);
  EXPECT_EQ(ThrownKind([&] { (void)this->tree.Text(1); }), RuntimeError::Kind::Bounds);
  this->Build();
  EXPECT_FALSE(this->tree.Checked(2));
  EXPECT_FALSE(this->tree.Expanded(2));
}

TYPED_TEST_P(TreeViewContract, IsShownAndHiddenAsAWhole) {
  EXPECT_TRUE(this->harness.Visible());
  this->tree.SetVisible(false);
  EXPECT_FALSE(this->harness.Visible());
  this->Build();
  this->tree.SetExpanded(2, true);
  this->tree.SetChecked(2, true);
  EXPECT_FALSE(this->harness.Visible()) << "building must not show it";
  this->tree.SetVisible(true);
  EXPECT_TRUE(this->harness.Visible());
  EXPECT_TRUE(this->tree.Expanded(2));
  EXPECT_TRUE(this->tree.Checked(2));
}

REGISTER_TYPED_TEST_SUITE_P(TreeViewContract, StartsEmpty, NumbersNodesInTheOrderOfAdding,
                            NumbersDoNotFollowThePlaceInTheTree, KnowsFirstAndLastChildren,
                            NodesStartUncheckedAndCollapsed, TextsCanBeReplaced, CheckMarksAreIndependent,
                            ExpandedStatesAreIndependent, ChangesByTheProgramRunNoHandler,
                            TheUsersChangesRunTheirHandlersOnce, TheCheckHandlerSeesTheNewState,
                            ChangesFromInsideAHandlerRunNoHandler, WorksWithoutHandlers,
                            OperationsOnMissingNodesAreRefused, AMissingParentIsRefusedAndNothingAdded,
                            AKeyInUseIsRefusedAndNothingAdded, ClearingStartsAnew, IsShownAndHiddenAsAWhole);

}  // namespace kalivor::test
