// The lists and trees on the screen keep the contracts, and do what only a widget can get wrong.
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include "contract/SelectionListContract.h"
#include "contract/TreeViewContract.h"
#include "platform/gui/FixedFont.h"
#include "platform/qt/QtListBox.h"
#include "platform/qt/QtTreeView.h"
#include "platform/qt/ShownText.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

const platform::EventGuard kRun = [](const std::function<void()>& handler) { handler(); };

struct QtListBoxHarness {
  QtListBoxHarness() { widget.show(); }
  SelectionList& List() { return list; }

  // With the keyboard from the first entry downwards would pass the others, so by the entry itself.
  void UserSelects(int position) {
    widget.showPopup();
    QAbstractItemView* view = widget.view();
    view->setCurrentIndex(widget.model()->index(position, 0));
    QTest::keyClick(view, Qt::Key_Return);
  }

  platform::DropDownList widget;
  SelectionList list;
  platform::QtListBox box{widget, list, kRun};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, SelectionListContract, QtListBoxHarness);

struct QtTreeViewHarness {
  QtTreeViewHarness() {
    widget.resize(600, 400);
    widget.show();
  }
  platform::TreeView& Tree() { return tree; }
  [[nodiscard]] bool Visible() const { return widget.isVisible(); }

  void UserChecks(int node, bool on) {
    if (tree.Checked(node) != on) Key(node, Qt::Key_Space);
  }
  void UserExpands(int node) { Key(node, Qt::Key_Plus); }
  void UserCollapses(int node) { Key(node, Qt::Key_Minus); }
  void UserClicks(int node) {
    widget.expand(tree.Index(1));
    QTest::mouseClick(widget.viewport(), Qt::LeftButton, {}, TextOf(node));
  }

  void Key(int node, Qt::Key key) {
    widget.setCurrentIndex(tree.Index(node));
    QTest::keyClick(&widget, key);
  }

  // A point on the node's text, behind its check box.
  [[nodiscard]] QPoint TextOf(int node) const {
    const QRect row = widget.visualRect(tree.Index(node));
    return {row.left() + 40, row.center().y()};
  }

  // The check box stands at the beginning of the row, the branch sign before it.
  [[nodiscard]] QPoint CheckBoxOf(int node) const {
    const QRect row = widget.visualRect(tree.Index(node));
    return {row.left() + 9, row.center().y()};
  }
  [[nodiscard]] QPoint BranchSignOf(int node) const {
    const QRect row = widget.visualRect(tree.Index(node));
    return {row.left() - widget.indentation() / 2, row.center().y()};
  }

  platform::NodeTree widget;
  platform::QtTreeView tree{widget, kRun};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, TreeViewContract, QtTreeViewHarness);

class QtListBoxTest : public testing::Test {
 protected:
  QtListBoxTest() {
    for (const QString& text : {u"eins"_s, u"zwei"_s, u"drei"_s})
      list.Add(text);
    list.OnChange = [this] { ++changes; };
    widget.show();
  }

  void Wheel(QWidget& target) {
    QWheelEvent event(QPointF(5, 5), target.mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&target, &event);
  }

  platform::DropDownList widget;
  int guarded = 0;
  SelectionList list;
  platform::QtListBox box{widget, list, [this](const std::function<void()>& handler) {
                            ++guarded;
                            handler();
                          }};
  int changes = 0;
};

TEST_F(QtListBoxTest, TheWheelOverTheClosedListChangesNothing) {
  list.Select(0);
  Wheel(widget);
  EXPECT_EQ(list.Position(), 0);
  EXPECT_EQ(widget.currentIndex(), 0);
}

TEST_F(QtListBoxTest, ArrowKeysOnTheClosedListAreTheUsersChanges) {
  list.Select(0);
  QTest::keyClick(&widget, Qt::Key_Down);
  EXPECT_EQ(list.Position(), 1);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(guarded, 1) << "the user's change runs inside the guard, the program's does not";
}

// The toolkit selects the first entry by itself, which would make the user's choice of it no change.
TEST_F(QtListBoxTest, AFilledListShowsNoSelection) {
  EXPECT_EQ(widget.currentIndex(), -1);
  QTest::keyClick(&widget, Qt::Key_Down);
  EXPECT_EQ(list.Position(), 0);
  EXPECT_EQ(changes, 1);
}

TEST_F(QtListBoxTest, TheProgramsErrorsPassToTheProgram) {
  list.OnChange = [] { throw RuntimeError(RuntimeError::Kind::FileError); };
  EXPECT_EQ(ThrownKind([this] { list.Select(1); }), RuntimeError::Kind::FileError);
  EXPECT_EQ(guarded, 0);
}

TEST_F(QtListBoxTest, ADisabledListKeepsItsPositionWhateverTheWidgetIsTold) {
  list.Select(1);
  widget.setEnabled(false);
  widget.setCurrentIndex(2);
  EXPECT_EQ(list.Position(), 1);
  EXPECT_EQ(widget.currentIndex(), 1);
  EXPECT_EQ(changes, 1);
}

class QtTreeViewTest : public testing::Test {
 protected:
  QtTreeViewTest() {
    const auto recorder = [this](const char* what) {
      return [this, what](int node) { calls.push_back(what + std::to_string(node)); };
    };
    tree.OnCheck = recorder("check ");
    tree.OnExpand = recorder("expand ");
    tree.OnCollapse = recorder("collapse ");
    tree.OnClick = recorder("click ");
    Build(2, 3);
  }

  void Build(int groups, int leaves) {
    tree.SetVisible(false);
    tree.Clear();
    tree.Add(0, u"R"_s, u"Anlage"_s);
    tree.SetExpanded(1, true);
    for (int group = 1; group <= groups; ++group) {
      const int parent = tree.Add(1, u"K %1"_s.arg(group), u"Gruppe"_s);
      for (int leaf = 1; leaf <= leaves; ++leaf)
        tree.Add(parent, u"sK %1 %2"_s.arg(group).arg(leaf), QString(93, u'x'));
    }
    tree.SetVisible(true);
  }

  void Click(QPoint point) { QTest::mouseClick(widget.viewport(), Qt::LeftButton, {}, point); }

  using Calls = std::vector<std::string>;
  QtTreeViewHarness harness;
  platform::NodeTree& widget = harness.widget;
  platform::QtTreeView& tree = harness.tree;
  Calls calls;
};

TEST_F(QtTreeViewTest, AClickOnTheTextOpensAndNothingElse) {
  Click(harness.TextOf(2));
  EXPECT_EQ(calls, Calls{"click 2"});
  EXPECT_FALSE(tree.Checked(2));
}

TEST_F(QtTreeViewTest, AClickOnTheCheckBoxChecksAndDoesNotOpen) {
  Click(harness.CheckBoxOf(2));
  EXPECT_EQ(calls, Calls{"check 2"});
  EXPECT_TRUE(tree.Checked(2));
  Click(harness.TextOf(2));
  EXPECT_EQ(calls, (Calls{"check 2", "click 2"})) << "the next click opens again";
}

TEST_F(QtTreeViewTest, AClickOnTheBranchSignExpandsAndDoesNotOpen) {
  Click(harness.BranchSignOf(2));
  EXPECT_EQ(calls, Calls{"expand 2"});
  EXPECT_TRUE(tree.Expanded(2));
  Click(harness.BranchSignOf(2));
  EXPECT_EQ(calls, (Calls{"expand 2", "collapse 2"}));
}

TEST_F(QtTreeViewTest, ADoubleClickOpensOnce) {
  tree.SetExpanded(2, true);
  const QPoint point = harness.TextOf(3);
  QTest::mouseClick(widget.viewport(), Qt::LeftButton, {}, point);
  QTest::mouseDClick(widget.viewport(), Qt::LeftButton, {}, point);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "click 3"), 1);
}

TEST_F(QtTreeViewTest, EnterOpensTheCurrentNode) {
  harness.Key(2, Qt::Key_Return);
  harness.Key(1, Qt::Key_Enter);
  EXPECT_EQ(calls, (Calls{"click 2", "click 1"}));
}

TEST_F(QtTreeViewTest, ArrowKeysMoveWithoutOpening) {
  harness.Key(1, Qt::Key_Down);
  EXPECT_EQ(widget.currentIndex(), tree.Index(2));
  EXPECT_EQ(calls, Calls{});
  QTest::keyClick(&widget, Qt::Key_Right);
  QTest::keyClick(&widget, Qt::Key_Left);
  EXPECT_EQ(calls, (Calls{"expand 2", "collapse 2"}));
}

TEST_F(QtTreeViewTest, GoingToANodeExpandsWhatItLiesInAsTheUserDoes) {
  widget.resize(400, 60);
  tree.GoTo(9);
  EXPECT_EQ(widget.currentIndex(), tree.Index(9));
  EXPECT_EQ(calls, Calls{"expand 6"});
  EXPECT_TRUE(tree.Expanded(6));
  const QRect row = widget.visualRect(tree.Index(9));
  EXPECT_GE(row.top(), 0);
  EXPECT_LE(row.bottom(), widget.viewport()->height());
}

TEST_F(QtTreeViewTest, TheAsteriskExpandsEveryNodeOfTheBranch) {
  tree.SetExpanded(1, false);
  harness.Key(1, Qt::Key_Asterisk);
  EXPECT_EQ(calls, (Calls{"expand 1", "expand 2", "expand 6"}));
}

TEST_F(QtTreeViewTest, HandlersOfTheUserRunInsideTheGuard) {
  std::optional<RuntimeError::Kind> caught;
  platform::NodeTree other;
  platform::QtTreeView guarded(
      other, [&caught](const std::function<void()>& handler) { caught = ThrownKind(handler); });
  guarded.Add(0, u"R"_s, u"Anlage"_s);
  guarded.OnClick = [](int) { throw RuntimeError(RuntimeError::Kind::Bounds); };
  other.setCurrentIndex(guarded.Index(1));
  QTest::keyClick(&other, Qt::Key_Return);
  EXPECT_EQ(caught, RuntimeError::Kind::Bounds);
}

TEST_F(QtTreeViewTest, RebuildingKeepsThePlaceAndTheCurrentNode) {
  Build(40, 3);
  widget.resize(300, 200);
  widget.setCurrentIndex(tree.Index(tree.Count() - 3));
  widget.verticalScrollBar()->setValue(20);
  widget.horizontalScrollBar()->setValue(55);
  Build(40, 3);
  QCoreApplication::processEvents();
  EXPECT_EQ(widget.verticalScrollBar()->value(), 20);
  EXPECT_EQ(widget.horizontalScrollBar()->value(), 55);
  EXPECT_EQ(widget.currentIndex(), tree.Index(tree.Count() - 3));
  EXPECT_EQ(calls, Calls{});
}

TEST_F(QtTreeViewTest, ACurrentNodeInACollapsedBranchStaysOutOfSight) {
  tree.SetExpanded(2, true);
  widget.setCurrentIndex(tree.Index(3));
  Build(2, 3);
  EXPECT_EQ(widget.currentIndex(), tree.Index(3));
  EXPECT_FALSE(tree.Expanded(2));
  EXPECT_FALSE(widget.isExpanded(tree.Index(2)));
  EXPECT_EQ(calls, Calls{});
}

TEST_F(QtTreeViewTest, ASmallerTreeIsShownFromItsBeginning) {
  Build(40, 3);
  widget.resize(300, 200);
  widget.verticalScrollBar()->setValue(20);
  Build(1, 1);
  EXPECT_EQ(widget.verticalScrollBar()->value(), 0);
  EXPECT_FALSE(widget.currentIndex().isValid());
}

TEST_F(QtTreeViewTest, EveryTextFitsIntoItsRow) {
  widget.setFont(platform::FixedFont());
  Build(1, 1);
  tree.SetExpanded(2, true);
  const QString longText(150, u'W');
  tree.SetText(3, longText);
  const QRect row = widget.visualRect(tree.Index(3));
  EXPECT_GE(row.width(), widget.fontMetrics().horizontalAdvance(longText) + 20) << "check box and text";
}

// In a font of fixed pitch all characters have one width, so that columns of texts are columns on the screen.
TEST(FixedFont, AllCharactersAreEquallyWide) {
  const QFontMetricsF metrics(platform::FixedFont());
  const double width = metrics.horizontalAdvance(u'0');
  for (const QChar c : u"iW|. 9-ÄÖÜäöüß°"_s)
    EXPECT_DOUBLE_EQ(metrics.horizontalAdvance(c), width) << QString(c).toStdString();
}

TEST(ShownText, PairsOfCrAndLfAreOneBreak) {
  EXPECT_EQ(platform::WithPlainLineBreaks(u"a\r\nb\n\rc"_s), u"a\nb\nc"_s);
  EXPECT_EQ(platform::WithPlainLineBreaks(u"a\n\r\n\rb\r\n\r\nc"_s), u"a\n\nb\n\nc"_s);
  EXPECT_EQ(platform::WithPlainLineBreaks(u"a\nb\rc\n\nd"_s), u"a\nb\nc\n\nd"_s);
  EXPECT_EQ(platform::WithPlainLineBreaks(QString()), QString());
}

TEST(ShownText, CaptionsShowAmpersands) {
  EXPECT_EQ(platform::AsCaption(u"A&B"_s), u"A&&B"_s);
}

}  // namespace
}  // namespace kalivor::test
