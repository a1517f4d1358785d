// The hidden menu items: what they say, and that they do nothing else.
#include "commands/MenuCommands.h"

#include "fakes/FakeForms.h"
#include "fakes/FakeHelp.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

TEST(MenuCommands, ItemsWithoutFunctionSaySo) {
  FakeMessageBox box;
  mnuFileNew_Click(box);
  mnuFileSend_Click(box);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0].text, u"Code für 'mnuFileNew_Click' hinzufügen."_s);
  EXPECT_EQ(boxes[1].text, u"Code für 'mnuFileSend_Click' hinzufügen."_s);
  EXPECT_EQ(boxes[0].title, QString());
}

TEST(MenuCommands, EditingTheDataMissesItsObject) {
  EXPECT_EQ(ThrownKind([] { mnuDatenEdit_Click(); }), RuntimeError::Kind::MissingObject);
}

TEST(MenuCommands, WithoutAHelpFileBothHelpItemsSaySo) {
  FakeMessageBox box;
  FakeHelp help;
  mnuHelpContents_Click(box, help);
  mnuHelpSearchForHelpOn_Click(box, help);
  for (const auto& shown : box.Take()) {
    EXPECT_EQ(
        shown.text,
        u"Hilfeinhalt konnte nicht angezeigt werden. Dieser Anwendung ist keine Hilfedatei zugeordnet."_s);
    EXPECT_EQ(shown.title, u"KALIVOR"_s);
    EXPECT_EQ(shown.icon, platform::MessageBox::Icon::Information);
  }
  EXPECT_TRUE(help.opened.empty());
}

TEST(MenuCommands, TheHelpViewerIsAskedForContentsOrKeyword) {
  FakeMessageBox box;
  FakeHelp help;
  help.file = u"kalivor.hlp"_s;
  mnuHelpContents_Click(box, help);
  mnuHelpSearchForHelpOn_Click(box, help);
  EXPECT_EQ(help.opened, (std::vector<int>{3, 261}));
}

TEST(MenuCommands, AFailingHelpViewerIsReportedInAPlainBox) {
  FakeMessageBox box;
  FakeHelp help;
  help.file = u"kalivor.hlp"_s;
  help.failure = u"Das Hilfeprogramm fehlt."_s;
  mnuHelpContents_Click(box, help);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, u"Das Hilfeprogramm fehlt."_s);
  EXPECT_EQ(boxes[0].title, QString());
}

}  // namespace
}  // namespace kalivor::test
