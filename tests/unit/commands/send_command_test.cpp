// The send button: what it asks before anything is written, and what each answer does.
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

const QString kDone = u"Senden beendet"_s;
const QString kAborted = u"Senden abgebrochen"_s;

/// Started, connected to a controller of the version.
struct Site : Installation {
  explicit Site(const QString& version = u"AB1-123.4"_s) : Installation(version) {
    StartWithFiles();
    files.reads.clear();
  }

  QString Report() const { return Lines(report.lines); }

  QStringList Writes() const { return Requests().filter(u"W"_s); }
};

const QStringList kAllWrites{u"W1F0005DC"_s, u"W1F020001"_s, u"W1F040000"_s,
                             u"W1F07112D"_s, u"W1F084142"_s, u"W1F0A4344"_s};

TEST(SendCommand, WritesTheCheckedValues) {
  Site site;
  const auto before = site.module.Par;
  EXPECT_TRUE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.Requests().mid(0, 2), (QStringList{u"v00"_s, u"R2000"_s}));
  EXPECT_EQ(site.Writes(), kAllWrites);
  EXPECT_EQ(site.Report(), u"Senden...... | "_s + kDone);
  EXPECT_EQ(site.module.Par, before);
  EXPECT_EQ(site.module.ReglerVersion, u"AB1-123.4"_s);
  EXPECT_TRUE(site.report.shown);
  EXPECT_TRUE(site.Rests());
}

TEST(SendCommand, LeavesOutUncheckedParameters) {
  Site site;
  site.module.ParNode[2] = site.module.ParNode[4] = kFalse;
  CommandSenden_Click(site.core);
  EXPECT_EQ(site.Writes(), (QStringList{u"W1F0005DC"_s, u"W1F07112D"_s}));
}

TEST(SendCommand, DoesNothingWhileAnotherOperationRuns) {
  Site site;
  site.module.BusyDepth = 1;
  CommandSenden_Click(site.core);
  EXPECT_EQ(site.Requests(), QStringList());
  EXPECT_EQ(site.Report(), QString());
}

TEST(SendCommand, AnAbortEndsIt) {
  Site site;
  site.report.onDot = [&] { site.module.Abbruch = kTrue; };
  EXPECT_FALSE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.Writes(), QStringList{u"W1F0005DC"_s});
  EXPECT_EQ(site.Report(), u"Senden... | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(SendCommand, AnErrorAddsTheAbortLineAndPasses) {
  Site site;
  site.module.Par[3].Wert = 2147483647;
  site.module.Par[3].VarAdresse = u"1F06"_s;
  EXPECT_EQ(ThrownKind([&] { CommandSenden_Click(site.core); }), RuntimeError::Kind::Overflow);
  EXPECT_EQ(site.Report(), u"Senden.... | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

// --- the version ---

TEST(SendCommand, ASilentControllerCountsAsAnUnknownVersion) {
  Site site;
  site.SilenceAll();
  EXPECT_FALSE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Senden.. | Unbekannte ReglerVersion: ERROR: kein Empfang | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(SendCommand, RefusesAnUnknownVersionWithoutAsking) {
  Site site(u"XYZ-001.0"_s);
  CommandSenden_Click(site.core);
  EXPECT_EQ(site.Report(), u"Senden.. | Unbekannte ReglerVersion: XYZ-001.0 | "_s + kAborted);
  EXPECT_TRUE(site.choice.asked.empty());
}

TEST(SendCommand, AsksWhereTheVersionsDiffer) {
  Site site(u"AB1-124.0"_s);
  site.choice.answers = {1};
  CommandSenden_Click(site.core);
  ASSERT_EQ(site.choice.asked.size(), 1U);
  EXPECT_EQ(site.choice.asked[0].question,
            u"Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r"
            "Der Befehl Senden kann nicht ausgeführt werden.\n\r\n\rBitte wählen Sie:"_s);
  EXPECT_EQ(site.choice.asked[0].first, u"PC     (Senden Abbrechen)  : AB1-123.4"_s);
  EXPECT_EQ(site.choice.asked[0].second, u"Regler (Werte neu Einlesen): AB1-124.0"_s);
  EXPECT_EQ(site.main.shownAgain, 1);
}

TEST(SendCommand, KeepingThePcsVersionChangesNothing) {
  Site site(u"AB1-124.0"_s);
  site.choice.answers = {1};
  const auto before = site.module.Par;
  EXPECT_FALSE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.Requests(), QStringList{u"v00"_s});
  EXPECT_EQ(site.module.Par, before);
  EXPECT_EQ(site.module.VersionList.Position(), 0);
  EXPECT_EQ(site.files.reads, QStringList());
  EXPECT_EQ(site.Report(), u"Senden.. | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(SendCommand, TakingTheControllersVersionReceivesInsteadOfSending) {
  Site site(u"AB1-124.0"_s);
  site.choice.answers = {2};
  EXPECT_FALSE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.module.VersionList.Position(), 1);
  EXPECT_EQ(site.module.VersionIndex, 2);
  EXPECT_EQ(site.Readings(u"B.TXT"_s), 4) << "twice by the list's handler, twice by the rebuild after it";
  EXPECT_EQ(site.Requests(), (QStringList{u"v00"_s, u"R1F06"_s})) << "the plant type is not asked for";
  EXPECT_EQ(site.module.Par[1].Wert, 0x1122);
  EXPECT_TRUE(site.main.tree.Text(site.main.tree.Find(u"sK 1"_s)).contains(u"   438.6 1/m "_s));
  EXPECT_EQ(site.Report(), u"Senden... | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(SendCommand, FailuresOfThatReceiveAreCounted) {
  Site site(u"AB1-124.0"_s);
  site.choice.answers = {2};
  site.Silence(2, 3);
  EXPECT_EQ(CommandSenden_Click(site.core).walk.Failures(), 1);
  EXPECT_EQ(site.Report(), u"Senden.. | ERROR: kein Empfang | Fehler bei: _abc. | "_s + kAborted);
}

// --- the plant type ---

TEST(SendCommand, AsksWhereThePlantTypesDiffer) {
  Site site;
  site.Store(0x2000, {1});
  site.choice.answers = {1};
  CommandSenden_Click(site.core);
  ASSERT_EQ(site.choice.asked.size(), 1U);
  EXPECT_EQ(site.choice.asked[0].question,
            u"Die Anlageart auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r\n\r"
            "Bitte wählen Sie:"_s);
  EXPECT_EQ(site.choice.asked[0].first, u"PC: "_s);
  EXPECT_EQ(site.choice.asked[0].second, u"Regler: Luft"_s);
  EXPECT_EQ(site.main.shownAgain, 1);
}

TEST(SendCommand, ThePcsPlantTypeIsWrittenBeforeTheValues) {
  Site site;
  site.module.PlantTypeList.Select(1);
  site.choice.answers = {1};
  EXPECT_TRUE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.Writes(), QStringList{u"W20000001"_s} + kAllWrites);
  EXPECT_EQ(site.choice.asked[0].first, u"PC: Luft"_s);
  EXPECT_EQ(site.choice.asked[0].second, u"Regler: "_s);
  EXPECT_EQ(site.Report(), u"Senden...... | "_s + kDone);
}

TEST(SendCommand, APlantTypeThatCannotBeWrittenDoesNotStopIt) {
  Site site;
  site.Store(0x2000, {1});
  site.choice.answers = {1};
  site.Silence(3, 3);
  const TransferOutcome outcome = CommandSenden_Click(site.core);
  EXPECT_TRUE(outcome.transferred);
  EXPECT_EQ(outcome.walk.Failures(), 1);
  EXPECT_EQ(site.Writes().mid(3), kAllWrites);
  EXPECT_EQ(site.Report(), u"Senden.. | ERROR: kein Empfang | Fehler bei: ANL.... | "_s + kDone);
}

TEST(SendCommand, WithoutAnAddressThePlantTypeIsAskedForButNotWritten) {
  Site site;
  site.module.PlantTypeList.Select(1);
  site.module.Par[0].VarAdresse.clear();
  site.choice.answers = {1};
  EXPECT_TRUE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.Writes(), kAllWrites);
}

TEST(SendCommand, TakingTheControllersPlantTypeReceivesInsteadOfSending) {
  Site site;
  site.Store(0x2000, {1});
  site.choice.answers = {2};
  EXPECT_FALSE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.module.PlantTypeList.Position(), 1);
  EXPECT_EQ(site.Readings(u"A.TXT"_s), 2);
  EXPECT_EQ(site.Writes(), QStringList());
  EXPECT_EQ(site.module.Par[1].Wert, 1234);
  EXPECT_TRUE(site.main.tree.Text(site.main.tree.Find(u"sK 1"_s)).contains(u"   123.4 1/m "_s));
  EXPECT_EQ(site.Report(), u"Senden...... | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(SendCommand, APlantNumberThatIsTooLargeSendsNothing) {
  Site site;
  site.Store(0x2000, {3});
  EXPECT_FALSE(CommandSenden_Click(site.core).transferred);
  EXPECT_EQ(site.Writes(), QStringList());
  EXPECT_EQ(site.Report(), u"Senden.. | Empfangene Anlagennummer ( 3) zu gross | "_s + kAborted);
  EXPECT_TRUE(site.choice.asked.empty());
}

TEST(SendCommand, APlantNumberEqualToTheCountCanOnlyBeOverwritten) {
  Site kept;
  kept.Store(0x2000, {2});
  kept.choice.answers = {1};
  EXPECT_TRUE(CommandSenden_Click(kept.core).transferred);
  EXPECT_EQ(kept.choice.asked[0].second, u"Regler: "_s);
  EXPECT_EQ(kept.memory.Word(0x2000), 0);

  Site taken;
  taken.Store(0x2000, {2});
  taken.choice.answers = {2};
  EXPECT_EQ(ThrownKind([&] { CommandSenden_Click(taken.core); }), RuntimeError::Kind::InvalidSelection);
  EXPECT_EQ(taken.Report(), u"Senden.. | "_s + kAborted);
  EXPECT_TRUE(taken.Rests());
}

TEST(SendCommand, WithoutAPlantNumberNothingIsSent) {
  Site unreadable;
  unreadable.Silence(2, 3);
  const TransferOutcome outcome = CommandSenden_Click(unreadable.core);
  EXPECT_EQ(outcome.walk.Failures(), 1);
  EXPECT_EQ(unreadable.Report(), u"Senden.. | ERROR: kein Empfang | Fehler bei: ANL[0] | "_s + kAborted);

  // A single plant type makes no difference here.
  Site single;
  single.SetVersions({u"AB1-123.4  -  A.TXT  Luft  WR"_s});
  Refresh(single.core, 5);
  single.Store(0x2000, {0xFFFF});
  EXPECT_FALSE(CommandSenden_Click(single.core).transferred);
  EXPECT_EQ(single.Report(), u"Senden.. | "_s + kAborted);
  EXPECT_EQ(single.Writes(), QStringList());
}

}  // namespace
}  // namespace kalivor::test
