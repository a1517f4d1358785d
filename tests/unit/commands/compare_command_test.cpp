// The compare button: it follows the plant type but refuses another version.
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

const QString kDone = u"Vergleich beendet"_s;
const QString kAborted = u"Vergleich abgebrochen"_s;

/// Started, connected to a controller of the version that holds the standard values.
struct Site : Installation {
  explicit Site(const QString& version = u"AB1-123.4"_s) : Installation(version) {
    StartWithFiles();
    memory.LoadStandards(module);
  }

  QString Report() const { return Lines(report.lines); }
};

TEST(CompareCommand, EqualValuesGiveDotsOnly) {
  Site site;
  const auto before = site.module.Par;
  const int rebuilt = site.main.tree.rebuilt;
  const TransferOutcome outcome = CommandVergleichen_Click(site.core);
  EXPECT_TRUE(outcome.transferred);
  EXPECT_EQ(outcome.walk.Deviations(), 0);
  EXPECT_EQ(site.Report(), u"Vergleichen...... | "_s + kDone);
  EXPECT_EQ(site.module.Par, before);
  EXPECT_EQ(site.main.tree.rebuilt, rebuilt) << "nothing has changed, so nothing is rebuilt";
  EXPECT_TRUE(site.report.shown);
  EXPECT_TRUE(site.Rests());
}

TEST(CompareCommand, ReportsDeviations) {
  Site site;
  site.Store(0x1F00, {1501});
  const TransferOutcome outcome = CommandVergleichen_Click(site.core);
  EXPECT_EQ(outcome.walk.Deviations(), 1);
  EXPECT_EQ(site.report.lines,
            (QStringList{u"Vergleichen.."_s, u"Änderung bei: Drehzahl"_s, u"   PC    :    150.0 "_s,
                         u"   Regler:    150.1 ...."_s, kDone}));
}

TEST(CompareCommand, RefusesAnotherKnownVersion) {
  Site site(u"AB1-124.0"_s);
  EXPECT_FALSE(CommandVergleichen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Vergleichen.. | Andere ReglerVersion: AB1-124.0 | "_s + kAborted);
  EXPECT_EQ(site.module.VersionList.Position(), 0);
  EXPECT_EQ(site.Requests(), QStringList{u"v00"_s});
  EXPECT_TRUE(site.Rests());
}

TEST(CompareCommand, RefusesAnUnknownVersion) {
  Site site(u"XYZ-001.0"_s);
  CommandVergleichen_Click(site.core);
  EXPECT_EQ(site.Report(), u"Vergleichen.. | Unbekannte ReglerVersion: XYZ-001.0 | "_s + kAborted);
}

TEST(CompareCommand, ASilentControllerEndsIt) {
  Site site;
  site.SilenceAll();
  EXPECT_FALSE(CommandVergleichen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Vergleichen.. | ERROR: kein Empfang | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(CompareCommand, AnotherPlantTypeIsTakenOverAndComparedWithTheStandards) {
  Site site;
  site.Store(0x2000, {1});
  site.module.Par[1].Wert = 7;
  site.module.ParNode[1] = kFalse;
  EXPECT_EQ(CommandVergleichen_Click(site.core).walk.Deviations(), 0);
  EXPECT_EQ(site.module.PlantTypeList.Position(), 1);
  EXPECT_EQ(site.module.Par[1].Wert, 1500) << "the change of the plant type discards edited values";
  EXPECT_EQ(site.module.ParNode[1], kTrue);
  EXPECT_EQ(site.Report(), u"Vergleichen...... | "_s + kDone);
}

TEST(CompareCommand, APlantNumberThatIsTooLargeComparesNothing) {
  Site site;
  site.Store(0x2000, {3});
  CommandVergleichen_Click(site.core);
  EXPECT_EQ(site.Report(), u"Vergleichen.. | Empfangene Anlagennummer ( 3) zu gross | "_s + kDone);
}

TEST(CompareCommand, ASinglePlantTypeNeedsNoNumber) {
  Site site;
  site.SetVersions({u"AB1-123.4  -  A.TXT  Luft  WR"_s});
  Refresh(site.core, 5);
  site.Silence(2, 3);
  EXPECT_TRUE(CommandVergleichen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Vergleichen.. | ERROR: kein Empfang | Fehler bei: ANL[0].... | "_s + kDone);
}

TEST(CompareCommand, AnAbortEndsIt) {
  Site site;
  site.report.onDot = [&] { site.module.Abbruch = kTrue; };
  EXPECT_FALSE(CommandVergleichen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Vergleichen... | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(CompareCommand, AnErrorAddsTheAbortLineAndPasses) {
  Site site;
  site.Store(0x2000, {2});
  EXPECT_EQ(ThrownKind([&] { CommandVergleichen_Click(site.core); }), RuntimeError::Kind::InvalidSelection);
  EXPECT_EQ(site.Report(), u"Vergleichen.. | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(CompareCommand, DoesNothingWhileAnotherOperationRuns) {
  Site site;
  site.module.BusyDepth = 1;
  CommandVergleichen_Click(site.core);
  EXPECT_EQ(site.Requests(), QStringList());
  EXPECT_EQ(site.Report(), QString());
}

}  // namespace
}  // namespace kalivor::test
