// The receive button: following the controller's version and plant type, the report, the end.
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "fakes/Installation.h"
#include "sim/Telegram.h"

namespace kalivor::test {
namespace {

const QString kDone = u"Empfangen beendet"_s;
const QString kAborted = u"Empfangen abgebrochen"_s;

/// Started and connected to a controller of the version.
struct Site : Installation {
  explicit Site(const QString& version = u"AB1-123.4"_s, const sim::LineOptions& options = {})
      : Installation(version, options) {
    StartWithFiles();
    files.reads.clear();
  }

  QString Report() const { return Lines(report.lines); }
};

TEST(ReceiveCommand, TakesOverTheCheckedValues) {
  Site site;
  site.module.ParNode[2] = kFalse;
  const TransferOutcome outcome = CommandEmpfangen_Click(site.core);
  EXPECT_TRUE(outcome.transferred);
  EXPECT_EQ(outcome.walk.Failures(), 0);
  EXPECT_EQ(site.module.Par[1].Wert, 1234);
  EXPECT_EQ(site.module.Par[2].Wert, 65536) << "not checked";
  EXPECT_EQ(site.module.Par[3].Wert, 0x22);
  EXPECT_EQ(site.module.Par[4].WertText, u"WXYZ"_s);
  EXPECT_EQ(site.Report(), u"Empfangen..... | "_s + kDone);
  EXPECT_TRUE(site.report.shown);
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, ShowsTheValuesInTheTree) {
  Site site;
  CommandEmpfangen_Click(site.core);
  EXPECT_TRUE(site.main.tree.Text(site.main.tree.Find(u"sK 1"_s)).contains(u"   123.4 1/m "_s));
  EXPECT_EQ(site.files.reads, QStringList()) << "nothing is read again for it";
}

TEST(ReceiveCommand, AsksForVersionAndPlantTypeBeforeTheValues) {
  Site site;
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"v00"_s, u"R2000"_s, u"R1F00"_s, u"R1F02"_s, u"R1F04"_s,
                                          u"R1F07"_s, u"R1F08"_s, u"R1F0A"_s}));
  EXPECT_EQ(site.module.ReglerVersion, u"AB1-123.4"_s);
}

TEST(ReceiveCommand, IsBusyWhileItRuns) {
  Site site;
  int dots = 0;
  site.report.onDot = [&] {
    ++dots;
    EXPECT_EQ(site.module.BusyDepth, 1);
    EXPECT_FALSE(site.main.enabled);
    EXPECT_EQ(site.main.state, u"Busy"_s);
    EXPECT_TRUE(site.report.abortEnabled);
    EXPECT_FALSE(site.report.okEnabled);
  };
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(dots, 4);
}

TEST(ReceiveCommand, DoesNothingWhileAnotherOperationRuns) {
  Site site;
  site.module.BusyDepth = 1;
  EXPECT_FALSE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.Requests(), QStringList());
  EXPECT_EQ(site.Report(), QString());
  EXPECT_EQ(site.module.BusyDepth, 1);
}

TEST(ReceiveCommand, WithoutACheckedParameterReadsNoValue) {
  Site site;
  for (int i = 0; i <= 4; ++i)
    site.module.ParNode[i] = kFalse;
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"v00"_s, u"R2000"_s}));
  EXPECT_EQ(site.Report(), u"Empfangen.. | "_s + kDone);
}

TEST(ReceiveCommand, ReportsWarningsAndFailuresInTheOrderOfTheTable) {
  Installation site;
  site.SetVersions({u"AB1-123.4  -  A.TXT  -  WR"_s});
  site.SetDefinitions(u"A.TXT"_s, {u"G  Eins  0  9  5  -  0  0  int  1F00  V1  -  -"_s,
                                   u"G  Zwei  0  9  5  -  0  0  int  -  N2  -  -"_s,
                                   u"G  Drei  0  9  5  -  0  0  int  1F04  V3  -  -"_s});
  site.Start();
  site.module.Par[2].VarAdresse.clear();
  site.Silence(3, 3);
  EXPECT_EQ(CommandEmpfangen_Click(site.core).walk.Failures(), 2);
  EXPECT_EQ(site.report.lines,
            (QStringList{u"Empfangen..."_s, u"Warnung: Variabel <N2> nicht bekannt."_s, u"Fehler bei Zwei"_s,
                         u"ERROR: kein Empfang"_s, u"Fehler bei: V3."_s, kDone}));
}

// --- the version ---

TEST(ReceiveCommand, SwitchesToTheControllersVersion) {
  Site site(u"AB1-124.0"_s);
  for (int i = 0; i <= 4; ++i)
    site.module.ParNode[i] = kFalse;
  EXPECT_TRUE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.module.VersionList.Position(), 1);
  EXPECT_EQ(site.module.VersionIndex, 2);
  EXPECT_EQ(site.Readings(u"B.TXT"_s), 2);
  EXPECT_EQ(site.module.Par[1].Wert, 0x1122) << "every parameter of it is checked";
  EXPECT_EQ(site.Report(), u"Empfangen... | "_s + kDone);
}

TEST(ReceiveCommand, CanBeAbortedAfterItSwitchedTheVersion) {
  Site site(u"AB1-124.0"_s);
  site.report.onDot = [&] {
    EXPECT_TRUE(site.report.abortEnabled);
    site.module.Abbruch = kTrue;
  };
  EXPECT_FALSE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Empfangen... | "_s + kAborted);
  EXPECT_EQ(site.module.Abbruch, kFalse);
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, RefusesAVersionThatThePcDoesNotKnow) {
  Site site(u"XYZ-001.0"_s);
  EXPECT_FALSE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Empfangen.. | Unbekannte ReglerVersion: XYZ-001.0 | "_s + kAborted);
  EXPECT_EQ(site.Requests(), QStringList{u"v00"_s});
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, TellsVersionsApartByCase) {
  Site site(u"ab1-123.4"_s);
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.Report(), u"Empfangen.. | Unbekannte ReglerVersion: ab1-123.4 | "_s + kAborted);
}

TEST(ReceiveCommand, TakesTheFirstOfTwoEqualVersions) {
  Installation site;
  site.AddFiles();
  site.SetVersions({u"AB1-123.4  -  A.TXT  -  WR"_s, u"AB1-123.4  B.ADR  B.TXT  -  WR"_s});
  site.Start();
  site.module.VersionList.Select(1);
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.module.VersionList.Position(), 0);
}

TEST(ReceiveCommand, ASilentControllerEndsIt) {
  Site site;
  site.SilenceAll();
  EXPECT_FALSE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Empfangen.. | ERROR: kein Empfang | "_s + kAborted);
  EXPECT_EQ(site.Requests(), (QStringList{u"v00"_s, u"v00"_s, u"v00"_s})) << "once at every line rate";
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, AClosedPortEndsIt) {
  Site site;
  site.line.openable = false;
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.Report(), u"Empfangen.. | ERROR: COM 1 nicht verfügber | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, FindsAControllerAtTheOtherLineRate) {
  Site site(u"AB1-123.4"_s, {19200, false, false});
  EXPECT_TRUE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.module.Par[1].Wert, 1234);
  EXPECT_EQ(site.host.Ports[kSlot].Settings, u"19200,o,7,1"_s);
}

// --- the plant type ---

TEST(ReceiveCommand, SwitchesToTheControllersPlantType) {
  Site site;
  site.Store(0x2000, {1});
  EXPECT_TRUE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.module.PlantTypeList.Position(), 1);
  EXPECT_EQ(site.module.Par[0].Wert, 1);
  EXPECT_EQ(site.Readings(u"A.TXT"_s), 2) << "by the list's handler, and once more";
  EXPECT_EQ(site.module.Par[1].Wert, 1234);
  EXPECT_EQ(site.module.Par[3].Wert, 0x22) << "what the plant type hides is received too";
  EXPECT_EQ(site.Report(), u"Empfangen...... | "_s + kDone);
}

TEST(ReceiveCommand, APlantNumberThatIsTooLargeReceivesNothing) {
  Site site;
  site.Store(0x2000, {3});
  EXPECT_FALSE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.Report(), u"Empfangen.. | Empfangene Anlagennummer ( 3) zu gross | "_s + kDone);
  EXPECT_EQ(site.module.Par[1].Wert, 1500);
  EXPECT_EQ(site.module.PlantTypeList.Position(), 0);
}

TEST(ReceiveCommand, APlantNumberEqualToTheCountFailsAtTheSelection) {
  Site site;
  site.Store(0x2000, {2});
  EXPECT_EQ(ThrownKind([&] { CommandEmpfangen_Click(site.core); }), RuntimeError::Kind::InvalidSelection);
  EXPECT_EQ(site.Report(), u"Empfangen.. | "_s + kAborted);
  EXPECT_EQ(site.module.Par[0].Wert, 2);
  EXPECT_EQ(site.module.PlantTypeList.Position(), 0);
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, WithoutAPlantNumberReceivesNothingWhereThereIsAChoice) {
  Site unreadable;
  unreadable.Silence(2, 3);
  const TransferOutcome outcome = CommandEmpfangen_Click(unreadable.core);
  EXPECT_FALSE(outcome.transferred);
  EXPECT_EQ(outcome.walk.Failures(), 1);
  EXPECT_EQ(unreadable.Report(), u"Empfangen.. | ERROR: kein Empfang | Fehler bei: ANL[0] | "_s + kDone);
  EXPECT_EQ(unreadable.module.Par[1].Wert, 1500);

  Site negative;
  negative.Store(0x2000, {0xFFFF});
  CommandEmpfangen_Click(negative.core);
  EXPECT_EQ(negative.Report(), u"Empfangen.. | "_s + kDone);
  EXPECT_EQ(negative.module.Par[1].Wert, 1500);
}

TEST(ReceiveCommand, ASinglePlantTypeNeedsNoNumber) {
  Site site;
  site.SetVersions({u"AB1-123.4  -  A.TXT  Luft  WR"_s});
  Refresh(site.core, 5);
  site.Store(0x2000, {0xFFFF});
  EXPECT_TRUE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.module.Par[1].Wert, 1234);
}

TEST(ReceiveCommand, WithoutAnAddressThePlantTypeIsTheFirst) {
  Site site;
  site.module.Par[0].VarAdresse.clear();
  site.module.PlantTypeList.OnChange = nullptr;
  site.module.PlantTypeList.Select(1);
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.module.PlantTypeList.Position(), 0);
}

// --- abort and errors ---

TEST(ReceiveCommand, AnAbortKeepsWhatWasReceived) {
  Site site;
  site.report.onDot = [&] { site.module.Abbruch = kTrue; };
  EXPECT_FALSE(CommandEmpfangen_Click(site.core).transferred);
  EXPECT_EQ(site.module.Par[1].Wert, 1234);
  EXPECT_EQ(site.module.Par[2].Wert, 65536);
  EXPECT_EQ(site.Report(), u"Empfangen... | "_s + kAborted);
  EXPECT_TRUE(site.main.tree.Text(site.main.tree.Find(u"sK 1"_s)).contains(u"   123.4 "_s));
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, AnAbortCountsWherePlantTypesDoNotMatchToo) {
  Site site;
  site.Store(0x2000, {3});
  site.model.OnResponse = [&](const QByteArray&, sim::Response&) { site.module.Abbruch = kTrue; };
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.report.lines.last(), kAborted);
}

TEST(ReceiveCommand, AnErrorAddsTheAbortLineAndPasses) {
  Site site;
  site.model.OnResponse = [](const QByteArray& request, sim::Response& response) {
    if (request.contains("R1F02")) response.chunks = {{0, sim::Sealed("10102RG000")}};
  };
  EXPECT_EQ(ThrownKind([&] { CommandEmpfangen_Click(site.core); }), RuntimeError::Kind::Overflow);
  EXPECT_EQ(site.Report(), u"Empfangen... | "_s + kAborted);
  EXPECT_EQ(site.module.Par[1].Wert, 1234);
  // The tree shows what was taken over before.
  EXPECT_TRUE(site.main.tree.Text(site.main.tree.Find(u"sK 1"_s)).contains(u"123.4 "_s));
  EXPECT_TRUE(site.Rests());
}

TEST(ReceiveCommand, AVersionWhoseFilesAreMissingEndsIt) {
  Site site(u"AB1-124.0"_s);
  site.files.files.remove(u"ini//B.TXT"_s);
  EXPECT_EQ(ThrownKind([&] { CommandEmpfangen_Click(site.core); }), RuntimeError::Kind::FileError);
  EXPECT_EQ(site.Report(), u"Empfangen.. | "_s + kAborted);
  EXPECT_TRUE(site.Rests());
}

// --- standard ---

TEST(StandardCommand, ResetsEveryParameterCheckedOrNot) {
  Site site;
  for (int i = 1; i <= 4; ++i)
    site.module.Par[i].Wert = 7;
  site.module.Par[4].WertText = u"x"_s;
  site.module.ParNode[2] = kFalse;
  CommandStandard_Click(site.core);
  EXPECT_EQ(site.module.Par[1].Wert, 1500);
  EXPECT_EQ(site.module.Par[2].Wert, 65536);
  EXPECT_EQ(site.module.Par[3].Wert, 45);
  EXPECT_EQ(site.module.Par[4].WertText, u"ABCD"_s);
  EXPECT_EQ(site.module.ParNode[2], kFalse) << "the marks stay";
}

TEST(StandardCommand, ShowsTheValuesWithoutReportOrTraffic) {
  Site site;
  site.module.Par[1].Wert = 7;
  CommandStandard_Click(site.core);
  EXPECT_TRUE(site.main.tree.Text(site.main.tree.Find(u"sK 1"_s)).contains(u"   150.0 1/m "_s));
  EXPECT_EQ(site.report.lines, QStringList());
  EXPECT_FALSE(site.report.shown);
  EXPECT_EQ(site.Requests(), QStringList());
}

TEST(StandardCommand, DoesNothingWhileAnotherOperationRuns) {
  Site site;
  site.module.Par[1].Wert = 7;
  site.module.BusyDepth = 1;
  CommandStandard_Click(site.core);
  EXPECT_EQ(site.module.Par[1].Wert, 7);
}

}  // namespace
}  // namespace kalivor::test
