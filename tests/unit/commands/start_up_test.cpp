// The order of work at start, and the guard around every event.
#include "commands/StartUp.h"

#include "commands/EventBoundary.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

TEST(StartUp, BuildsEverythingAndThenTheChannel) {
  Installation site;
  site.module.Adresse = 17;
  site.module.Schnittstelle = 3;
  site.AddFiles();
  site.Start();
  EXPECT_EQ(site.module.ParCount, 5);
  EXPECT_EQ(site.main.tree.Count(), 8);
  EXPECT_EQ(site.host.Ports[kSlot], (PortRecord{kFalse, 3, 16, 17, u"9600,o,7,1"_s}));
  EXPECT_EQ(site.line.openings, 1) << "the port is tried once";
  EXPECT_TRUE(site.Rests());
}

TEST(StartUp, ThePortIsTriedAfterEverythingElse) {
  Installation site;
  site.AddFiles();
  site.main.tree.onRebuild = [&] { EXPECT_EQ(site.line.openings, 0); };
  site.Start();
  EXPECT_EQ(site.main.tree.rebuilt, 2);
  EXPECT_EQ(site.line.openings, 1);
}

TEST(StartUp, APortThatCannotBeOpenedIsNoReasonToComplain) {
  Installation site;
  site.AddFiles();
  site.line.openable = false;
  site.Start();
  EXPECT_EQ(site.host.Ports[kSlot].PortNr, 1);
  EXPECT_EQ(site.report.lines, QStringList());
}

TEST(StartUp, WithoutDefinitionsTheChannelIsReadyAllTheSame) {
  Installation site;
  site.Start();
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
  EXPECT_EQ(site.host.Ports[kSlot].Settings, u"9600,o,7,1"_s);
  EXPECT_TRUE(site.Rests());
}

// --- the event boundary ---

TEST(EventBoundary, ShowsAnErrorAndGoesOn) {
  FakeMessageBox box;
  EXPECT_FALSE(RunHandler(box, [] { throw RuntimeError(RuntimeError::Kind::Bounds, u"Zu groß."_s); }));
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, u"Zu groß."_s);
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
}

TEST(EventBoundary, IsSilentWithoutAnError) {
  FakeMessageBox box;
  bool ran = false;
  EXPECT_TRUE(RunHandler(box, [&] { ran = true; }));
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace kalivor::test
