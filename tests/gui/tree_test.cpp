// The parameter tree of the main window as the user works with it.
#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>

#include "commands/TreeCommands.h"
#include "core/Refresh.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class TreeTest : public GuiTest {
 protected:
  [[nodiscard]] bool Shown(const QString& key) { return Tree().Checked(Node(key)); }
  [[nodiscard]] qint16 Mark(int slot) { return desktop->module.ParNode[slot]; }

  /// The user chooses an entry of a list with the keyboard.
  void Choose(const QString& list, int position) {
    auto& widget = Main<QComboBox>(list);
    widget.showPopup();
    widget.view()->setCurrentIndex(widget.model()->index(position, 0));
    QTest::keyClick(widget.view(), Qt::Key_Return);
  }
};

TEST_F(TreeTest, ShowsItsThreeLevels) {
  Start();
  EXPECT_EQ(Tree().Key(1), u"R"_s);
  EXPECT_EQ(Tree().Key(2), u"K 1"_s);
  EXPECT_EQ(Tree().Key(3), u"sK 1"_s);
  EXPECT_EQ(Tree().Text(3),
            u"Drehzahl"_s + QString(42, u'.') + u"   150.0 1/m |     0.0 |  3000.0 |   150.0 "_s);
  EXPECT_TRUE(Tree().Text(2).startsWith(u"Antrieb "_s));
  EXPECT_TRUE(Tree().Expanded(1));
  EXPECT_FALSE(Tree().Expanded(2));
}

TEST_F(TreeTest, ScreenReadersFindTheRowsByTheirTexts) {
  Start();
  QAccessibleInterface* tree = QAccessible::queryAccessibleInterface(&TreeWidget());
  ASSERT_NE(tree, nullptr);
  EXPECT_EQ(tree->role(), QAccessible::Tree);
  EXPECT_EQ(tree->text(QAccessible::Name), u"Parameter"_s);
  QStringList rows;
  for (int i = 0; i < tree->childCount(); ++i)
    rows.append(tree->child(i)->text(QAccessible::Name));
  EXPECT_TRUE(rows.contains(Tree().Text(2))) << rows.join(u'\n').toStdString();
}

TEST_F(TreeTest, NodesKnowTheirNumbers) {
  Start();
  EXPECT_EQ(Nummer(desktop->core, Node(u"R"_s)), 0);
  EXPECT_EQ(Nummer(desktop->core, Node(u"K 2"_s)), 2);
  EXPECT_EQ(Nummer(desktop->core, Node(u"sK 7"_s)), 7);
}

TEST_F(TreeTest, UncheckingAParameterChangesItAlone) {
  Start();
  Toggle(u"sK 4"_s);
  EXPECT_FALSE(Shown(u"sK 4"_s));
  EXPECT_EQ(Mark(4), kFalse);
  EXPECT_TRUE(Shown(u"K 2"_s));
  EXPECT_TRUE(Shown(u"R"_s));
  EXPECT_EQ(Mark(5), kTrue);
}

// The group's own mark is kept in the slot of parameter 2, whose box is not changed by it.
TEST_F(TreeTest, UncheckingAGroupUnchecksItsParameters) {
  Start();
  Toggle(u"K 2"_s);
  for (const QString& key : {u"sK 4"_s, u"sK 5"_s, u"sK 6"_s})
    EXPECT_FALSE(Shown(key)) << key.toStdString();
  for (const int slot : {2, 4, 5, 6})
    EXPECT_EQ(Mark(slot), kFalse) << slot;
  for (const int slot : {0, 1, 3, 7})
    EXPECT_EQ(Mark(slot), kTrue) << slot;
  EXPECT_TRUE(Shown(u"sK 2"_s)) << "until the tree is rebuilt";
  Refresh(desktop->core, 2);
  EXPECT_FALSE(Shown(u"sK 2"_s));
}

TEST_F(TreeTest, TheRootChecksAndUnchecksEverything) {
  Start();
  Toggle(u"R"_s);
  for (int node = 1; node <= Tree().Count(); ++node)
    EXPECT_FALSE(Tree().Checked(node)) << node;
  for (int slot = 0; slot <= 7; ++slot)
    EXPECT_EQ(Mark(slot), kFalse) << slot;
  Toggle(u"R"_s);
  for (int node = 1; node <= Tree().Count(); ++node)
    EXPECT_TRUE(Tree().Checked(node)) << node;
  for (int slot = 0; slot <= 7; ++slot)
    EXPECT_EQ(Mark(slot), kTrue) << slot;
}

TEST_F(TreeTest, ExpandingAndCollapsingIsRecorded) {
  Start();
  GoTo(u"K 2"_s);
  QTest::keyClick(&TreeWidget(), Qt::Key_Plus);
  EXPECT_EQ(desktop->module.NodeState[2], kTrue);
  Refresh(desktop->core, 2);
  EXPECT_TRUE(Tree().Expanded(Node(u"K 2"_s))) << "a rebuild keeps it";
  GoTo(u"K 2"_s);
  QTest::keyClick(&TreeWidget(), Qt::Key_Minus);
  EXPECT_EQ(desktop->module.NodeState[2], kFalse);
}

TEST_F(TreeTest, WithAnEditorOpenOnlyCollapsingIsRecorded) {
  Start();
  Open(u"sK 1"_s);
  EXPECT_EQ(desktop->module.TreeUpdating, kTrue);
  GoTo(u"K 2"_s);
  QTest::keyClick(&TreeWidget(), Qt::Key_Plus);
  EXPECT_EQ(desktop->module.NodeState[2], kFalse);
  desktop->module.NodeState[2] = kTrue;
  QTest::keyClick(&TreeWidget(), Qt::Key_Minus);
  EXPECT_EQ(desktop->module.NodeState[2], kFalse);
  Click(desktop->editors.number, u"CancelButton"_s);
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
  QTest::keyClick(&TreeWidget(), Qt::Key_Plus);
  EXPECT_EQ(desktop->module.NodeState[2], kTrue);
}

TEST_F(TreeTest, AClickOnAGroupStoresItsState) {
  Start();
  desktop->module.NodeState[1] = kTrue;
  Open(u"K 1"_s);
  EXPECT_EQ(desktop->module.NodeState[1], kFalse);
  Open(u"R"_s);
  EXPECT_FALSE(desktop->editors.number.isVisible());
  EXPECT_FALSE(desktop->editors.text.isVisible());
}

TEST_F(TreeTest, ChoosingAVersionRebuildsEverythingForIt) {
  Start();
  Toggle(u"sK 4"_s);
  GoTo(u"K 1"_s);
  QTest::keyClick(&TreeWidget(), Qt::Key_Plus);
  Choose(u"ComboVN"_s, 1);
  EXPECT_EQ(desktop->module.VersionIndex, 2);
  EXPECT_EQ(Tree().Count(), 1 + 4 + 8);
  EXPECT_TRUE(Shown(u"sK 4"_s));
  EXPECT_FALSE(Tree().Expanded(Node(u"K 1"_s)));
  EXPECT_EQ(files.reads.count(kFolder + u"/ZWEI.TXT"_s), 2);
  ExpectReady();
}

TEST_F(TreeTest, ChoosingThePresentVersionAgainReadsNothing) {
  Start();
  Choose(u"ComboVN"_s, 0);
  EXPECT_EQ(files.reads, QStringList());
}

TEST_F(TreeTest, ChoosingAPlantTypeShowsItsParametersAllChecked) {
  Start();
  Toggle(u"sK 4"_s);
  Choose(u"ComboArt"_s, 2);
  EXPECT_EQ(Node(u"sK 2"_s), 0) << "of plant A only";
  EXPECT_NE(Node(u"sK 5"_s), 0) << "of plant B only";
  EXPECT_TRUE(Shown(u"sK 4"_s));
  EXPECT_EQ(desktop->module.Par[0].Wert, 2);
  Choose(u"ComboArt"_s, 1);
  EXPECT_NE(Node(u"sK 2"_s), 0);
  EXPECT_EQ(Node(u"sK 5"_s), 0);
}

TEST_F(TreeTest, AVersionWithoutItsFileIsReportedAndTheProgramGoesOn) {
  Start();
  files.files.remove(kFolder + u"/ZWEI.TXT"_s);
  Choose(u"ComboVN"_s, 1);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
  EXPECT_TRUE(boxes[0].text.contains(u"ZWEI.TXT"_s)) << boxes[0].text.toStdString();
  ExpectReady();
  EXPECT_EQ(desktop->module.TreeUpdating, kFalse);
  Choose(u"ComboVN"_s, 0);
  EXPECT_EQ(Tree().Count(), 11);
}

TEST_F(TreeTest, ARecordThatCannotBeShownLeavesTheTreeVisible) {
  Start();
  files.AddText(kFolder + u"/ZWEI.TXT"_s,
                u"Kopf\r\nEins  Gut  0  10  5  -  0  0  int  1F00  a  A  -\r\n"
                "Eins  Zu viele Stellen  0  10  5  -  5  5  int  1F02  b  A  -\r\n"_s);
  Choose(u"ComboVN"_s, 1);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text,
            u"Zahl außerhalb des zulässigen Bereichs.: /def/"_s + QDir::separator() + u"ZWEI.TXT, Zeile 3"_s);
  EXPECT_EQ(Tree().Count(), 3) << "what was added before remains";
  ExpectReady();
}

TEST_F(TreeTest, AMissingVersionTableIsReportedAtTheStart) {
  files.files.clear();
  Start();
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_TRUE(boxes[0].text.startsWith(u"Fehler beim Lesen von\r\n/def/VF.INI\r\n"_s));
  EXPECT_TRUE(boxes[0].text.endsWith(u"\r\nUeberprüfen Sie die Einstellungen in Optionen -> Dateien\r\n"_s));
  ExpectReady();
}

}  // namespace
}  // namespace kalivor::test
