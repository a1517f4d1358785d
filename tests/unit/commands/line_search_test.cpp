// Searching for controllers: whom the search asks, what it finds, and that nothing else changes.
#include "commands/LineSearch.h"

#include "core/Busy.h"
#include "fakes/FakePortDirectory.h"
#include "fakes/Installation.h"
#include "fakes/LinesByDevice.h"
#include "sim/Telegram.h"

namespace kalivor::test {
namespace {

using platform::PortEntry;
using platform::PortState;

class Steps final : public ProgressForm {
 public:
  bool visible = false;
  int shown = 0;
  int lastDone = 0;
  int lastTotal = 0;
  double lastRemaining_s = -1;
  std::function<void()> onStep;

  void Show(const QString&) override {
    visible = true;
    ++shown;
  }
  void Step(int done, int total, double remaining_s) override {
    EXPECT_LE(done, total);
    EXPECT_GE(remaining_s, 0);
    lastDone = done;
    lastTotal = total;
    lastRemaining_s = remaining_s;
    if (onStep) onStep();
  }
  void Hide() override { visible = false; }
};

/// A controller at a line of its own.
struct Place {
  sim::Memory memory;
  sim::Controller station;
  sim::Faults faults;
  sim::LineModel model;
  sim::SimulatedLine line;

  Place(FakeClock& clock, int address, const QString& version, const sim::LineOptions& options = {})
      : station(memory, address, FixedText<2>(u"WR"_s), *sim::VersionPayload(version)),
        model(station, faults, options),
        line(clock, model) {}
};

const QString kFirst = u"/dev/ttyS0"_s;
const QString kSecond = u"/dev/ttyUSB0"_s;

/// The selected port is the first of two; each has a line of its own. The controller of the installation is
/// at the first one, with address 1.
class SearchTest : public testing::Test, protected Installation {
 protected:
  FakePortDirectory ports;
  LinesByDevice lines{ports};
  Wiring routed{module, timers, lines, {main, report, choice, editors, box, files, events}};
  Steps progress;
  LineSearchRequest request;

  explicit SearchTest(const sim::LineOptions& options = {}) : Installation(u"AB1-123.4"_s, options) {
    StartWithFiles();
    ports.entries = {PortEntry{1, kFirst}, PortEntry{2, kSecond}};
    lines.lines[kFirst] = &line;
    request.ports = {ports.entries.first()};
    routed.host.ConfigurePort(kSlot, kControllerProtocol, 1, 1, u"19200,o,7,1"_s);
    line.sent.clear();
    lines.opened.clear();
  }

  LineSearch Search() { return SearchLine(routed.core, routed.host, ports, request, progress); }

  /// The one finding of the one port.
  PortFinding Finding() {
    const LineSearch search = Search();
    EXPECT_FALSE(search.Found());
    EXPECT_EQ(search.ports.size(), 1U);
    EXPECT_EQ(search.ports.front().text, FindingText(search.ports.front().finding, request.EveryAddress()));
    return search.ports.front().finding;
  }

  /// What comes back in place of the controller's reply.
  void Answer(const QByteArray& characters) {
    model.OnResponse = [characters](const QByteArray&, sim::Response& response) {
      response.chunks = {{0, characters}};
    };
  }
};

TEST_F(SearchTest, FindsTheControllerAndReadsItsPlantNumber) {
  memory.SetWord(0x2000, 1);
  const LineSearch search = Search();
  ASSERT_EQ(search.ports.size(), 1U);
  ASSERT_EQ(search.ports.front().answers.size(), 1U);
  const FoundController& found = search.ports.front().answers.front();
  EXPECT_EQ(search.ports.front().port.device, kFirst);
  EXPECT_EQ(found.settings, u"9600,o,7,1"_s);
  EXPECT_EQ(found.address, 1);
  EXPECT_EQ(found.version, u"AB1-123.4"_s);
  EXPECT_TRUE(found.known);
  EXPECT_EQ(found.plant, 1);
  EXPECT_EQ(found.plantName, u"Luft"_s);
  EXPECT_EQ(PlantText(found), u"Luft (1)"_s);
  EXPECT_FALSE(found.echo);
  EXPECT_EQ(search.ports.front().text, QString());
  EXPECT_TRUE(search.Found());
  // What has answered is not asked at the other rate.
  EXPECT_EQ(Lines(Requests()), u"v00 | R2000"_s);
}

TEST_F(SearchTest, ChangesNothing) {
  memory.SetWord(0x2000, 1);
  const Module1 before = module;
  const PortRecord lineBefore = routed.host.Ports[kSlot];
  const QStringList reportBefore = report.lines;
  request.ports = ports.entries;
  request.range = {0, 3};
  (void)Search();
  EXPECT_EQ(module.VersionIndex, before.VersionIndex);
  EXPECT_EQ(module.VersionList.Position(), before.VersionList.Position());
  EXPECT_EQ(module.PlantTypeList.Position(), before.PlantTypeList.Position());
  EXPECT_EQ(module.Adresse, before.Adresse);
  EXPECT_EQ(module.Schnittstelle, before.Schnittstelle);
  EXPECT_EQ(module.ReglerVersion, before.ReglerVersion);
  for (int i = 0; i <= module.ParCount; ++i)
    EXPECT_EQ(module.Par[i], before.Par[i]) << i;
  EXPECT_EQ(routed.host.Ports[kSlot], lineBefore);
  EXPECT_EQ(ports.Overriding(1), QString());
  EXPECT_EQ(report.lines, reportBefore);
  EXPECT_FALSE(report.shown);
  EXPECT_TRUE(Rests());
  EXPECT_FALSE(progress.visible);
}

TEST_F(SearchTest, APlantNumberIsReadAsItsOwnVersionSays) {
  // The other version of the table, with other letters and another place, while the first one is selected.
  SetVersions({u"AB1-123.4  -  A.TXT  Luft -  WR"_s, u"AB1-124.0  -  C.TXT  Eins Zwei Drei  wr"_s});
  SetDefinitions(u"C.TXT"_s, {u"NoRubrik  Anlage  0  9  0  -  0  0  int  3000  ANL  -  -"_s});
  Start();
  Place place(clock, 1, u"AB1-124.0"_s);
  sim::Controller other(place.memory, 1, FixedText<2>(u"wr"_s), *sim::VersionPayload(u"AB1-124.0"_s));
  sim::LineModel otherModel(other, place.faults);
  sim::SimulatedLine otherLine(clock, otherModel);
  place.memory.SetWord(0x3000, 2);
  lines.lines[kFirst] = &otherLine;
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  const FoundController& found = search.ports.front().answers.front();
  EXPECT_EQ(found.plant, 2);
  EXPECT_EQ(found.plantName, u"Zwei"_s);
  EXPECT_EQ(module.VersionList.SelectedText(), u"AB1-123.4"_s);
  // Whoever reads the log knows whose letters they are.
  routed.host.Exchanges.Settle();
  EXPECT_EQ(routed.host.Exchanges.Numbered(routed.host.Exchanges.Last()).version, u"AB1-124.0"_s);
  EXPECT_EQ(module.VersionList.Position(), 0);
}

TEST_F(SearchTest, AVersionWithoutPlantRecordHasTheFirstPlant) {
  Place place(clock, 1, u"AB1-124.0"_s);
  lines.lines[kFirst] = &place.line;
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  EXPECT_EQ(search.ports.front().answers.front().plant, 0);
  EXPECT_EQ(PlantText(search.ports.front().answers.front()), u"0"_s);
}

TEST_F(SearchTest, AVersionOutsideTheTableIsUnknown) {
  Place place(clock, 1, u"XYZ-999.9"_s);
  lines.lines[kFirst] = &place.line;
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  const FoundController& found = search.ports.front().answers.front();
  EXPECT_EQ(found.version, u"XYZ-999.9"_s);
  EXPECT_FALSE(found.known);
  EXPECT_FALSE(found.plant);
  EXPECT_EQ(PlantText(found), u"unbekannt"_s);
  EXPECT_EQ(place.line.sent.count('\r'), 1);
}

TEST_F(SearchTest, AShortVersionIsAnAnswerAllTheSame) {
  Answer(sim::Sealed("10102vA"));
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  EXPECT_EQ(search.ports.front().answers.front().version, u"A-000.0"_s);
  EXPECT_FALSE(search.ports.front().answers.front().known);
}

TEST_F(SearchTest, APlantNumberThatCannotBeReadIsUnknown) {
  Silence(2, 3);
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  EXPECT_TRUE(search.ports.front().answers.front().known);
  EXPECT_FALSE(search.ports.front().answers.front().plant);
  EXPECT_TRUE(report.lines.isEmpty() || !report.lines.last().contains(u"ERROR"_s));
}

TEST_F(SearchTest, UnreadableDefinitionsHideThePlantAlone) {
  files.files.remove(u"ini//A.TXT"_s);
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  EXPECT_TRUE(search.ports.front().answers.front().known);
  EXPECT_FALSE(search.ports.front().answers.front().plant);
  EXPECT_TRUE(TakeBoxes(box).isEmpty());
}

TEST_F(SearchTest, Silent) {
  SilenceAll();
  EXPECT_EQ(Finding().kind, LineFinding::Silent);
  // Both rates, one attempt each.
  EXPECT_EQ(Lines(lines.opened), u"/dev/ttyS0 9600,o,7,1 | /dev/ttyS0 19200,o,7,1"_s);
  EXPECT_EQ(Lines(Requests()), u"v00 | v00"_s);
}

TEST_F(SearchTest, WhatWentOverTheLineBeforeIsNoPartOfIt) {
  faults.Plan(1, {sim::FaultKind::Error, 0, "04"});
  faults.Add({});
  (void)routed.controller.ReadVersion(kSlot);
  EXPECT_EQ(Finding().kind, LineFinding::Silent);
}

TEST_F(SearchTest, EchoOnly) {
  faults.Add({{sim::FaultKind::EchoOnly}, 1, {}});
  EXPECT_EQ(Finding().kind, LineFinding::EchoOnly);
}

TEST_F(SearchTest, Garbled) {
  Answer("\x02?\x03?z");
  EXPECT_EQ(Finding().kind, LineFinding::Garbled);
}

TEST_F(SearchTest, DamagedReply) {
  faults.Add({{sim::FaultKind::BadChecksum}, 1, {}});
  EXPECT_EQ(Finding().kind, LineFinding::Damaged);
}

TEST_F(SearchTest, AnotherDevice) {
  Answer("Printer ready, paper A4\r\n");
  EXPECT_EQ(Finding(),
            (PortFinding{LineFinding::OtherText, u"Printer ready, paper A4"_s, -1, u"9600,o,7,1"_s}));
}

TEST_F(SearchTest, Refusal) {
  faults.Add({{sim::FaultKind::Error, 0, "04"}, 1, {}});
  EXPECT_EQ(Finding(),
            (PortFinding{LineFinding::Refused, u"Code 04 Falsches Kennzeichen"_s, 1, u"9600,o,7,1"_s}));
}

TEST_F(SearchTest, InUse) {
  line.openable = false;
  ports.entries.first().state = PortState::InUse;
  ports.entries.first().remark = u"Das Programm minicom hat sie geöffnet."_s;
  EXPECT_EQ(Finding(), (PortFinding{LineFinding::InUse, u"Das Programm minicom hat sie geöffnet."_s}));
  EXPECT_EQ(lines.opened.size(), 1);
}

TEST_F(SearchTest, NoPermission) {
  line.openable = false;
  ports.entries.first().state = PortState::NoPermission;
  EXPECT_EQ(Finding().kind, LineFinding::NoPermission);
}

TEST_F(SearchTest, AMissingPortIsNotAskedAndNoOtherInItsPlace) {
  request.ports = {PortEntry{4, {}, {}, {}, {}, PortState::Missing, u"Adapter A12345"_s}};
  EXPECT_EQ(Finding(), (PortFinding{LineFinding::Missing, u"Adapter A12345"_s}));
  EXPECT_TRUE(lines.opened.isEmpty());
}

TEST_F(SearchTest, ANumberWithoutADeviceIsNotAskedAndNoOtherInItsPlace) {
  request.ports = {PortEntry{5}};
  request.ports.front().remark = u"Gibt es nicht."_s;
  EXPECT_EQ(Finding(), (PortFinding{LineFinding::NotOpened, u"Gibt es nicht."_s}));
  EXPECT_TRUE(lines.opened.isEmpty());
}

TEST_F(SearchTest, ADeviceThatNobodyHasBoundIsNotMissed) {
  // The directory tells so of what stands in for a number.
  line.openable = false;
  request.ports = {PortEntry{0, kFirst}};
  ports.entries = {PortEntry{1, kFirst, {}, {}, {}, PortState::Missing}};
  EXPECT_EQ(Finding().kind, LineFinding::NotOpened);
}

TEST_F(SearchTest, APortThatCannotBeOpenedForAnotherReason) {
  line.openable = false;
  const PortFinding finding = Finding();
  EXPECT_FALSE(line.Fault().isEmpty());
  EXPECT_EQ(finding, (PortFinding{LineFinding::NotOpened, line.Fault()}));
}

TEST_F(SearchTest, UnpluggedDuringTheSearch) {
  request.range = {0, 255};
  faults.Add({{sim::FaultKind::Silent}, 1, {}});
  progress.onStep = [this] {
    if (progress.lastDone >= 5) line.Unplug();
  };
  EXPECT_EQ(Finding().kind, LineFinding::Unplugged);
  EXPECT_LE(lines.opened.size(), 8);
}

TEST_F(SearchTest, UnpluggedDuringTheLastExchange) {
  faults.Plan(2, {sim::FaultKind::Unplug});
  faults.Plan(1, {sim::FaultKind::Silent});
  EXPECT_EQ(Finding().kind, LineFinding::Unplugged);
}

TEST_F(SearchTest, AbortInTheMiddle) {
  SilenceAll();
  request.ports = ports.entries;
  lines.lines[kSecond] = &line;
  request.range = {0, 255};
  progress.onStep = [this] {
    if (progress.lastDone == 10) module.Abbruch = kTrue;
  };
  const PortRecord before = routed.host.Ports[kSlot];
  const LineSearch search = Search();
  EXPECT_TRUE(search.aborted);
  EXPECT_EQ(lines.opened.size(), 10);
  EXPECT_EQ(search.ports.size(), 2U);
  EXPECT_EQ(search.ports.at(0).finding.kind, LineFinding::Silent);
  EXPECT_EQ(search.ports.at(1).finding.kind, LineFinding::NotAsked);
  EXPECT_EQ(routed.host.Ports[kSlot], before);
  EXPECT_TRUE(Rests());
}

TEST_F(SearchTest, AnExceptionLeavesTheChannelAsItWas) {
  SilenceAll();
  request.ports = {ports.entries.last()};
  lines.lines[kSecond] = &line;
  progress.onStep = [] { throw RuntimeError(RuntimeError::Kind::Overflow); };
  const PortRecord before = routed.host.Ports[kSlot];
  EXPECT_THROW((void)Search(), RuntimeError);
  EXPECT_EQ(routed.host.Ports[kSlot], before);
  EXPECT_EQ(ports.Overriding(1), QString());
  EXPECT_TRUE(Rests());
  EXPECT_FALSE(progress.visible);
}

TEST_F(SearchTest, NeedsTheLineForItself) {
  const BusyGuard busy(routed.core);
  const LineSearch search = Search();
  EXPECT_FALSE(search.error.isEmpty());
  EXPECT_TRUE(search.ports.empty());
  EXPECT_TRUE(lines.opened.isEmpty());
}

TEST_F(SearchTest, IsBusyMeanwhile) {
  bool busy = false;
  progress.onStep = [&] { busy = busy || (!main.enabled && module.BusyDepth == 1); };
  (void)Search();
  EXPECT_TRUE(busy);
}

TEST_F(SearchTest, EveryPortIsAskedThroughTheSelectedNumber) {
  module.Schnittstelle = 2;
  Place place(clock, 1, u"AB1-124.0"_s);
  lines.lines[kSecond] = &place.line;
  request.ports = ports.entries;
  const LineSearch search = Search();
  ASSERT_EQ(search.ports.size(), 2U);
  ASSERT_EQ(search.ports.at(0).answers.size(), 1U);
  ASSERT_EQ(search.ports.at(1).answers.size(), 1U);
  EXPECT_EQ(search.ports.at(0).answers.front().version, u"AB1-123.4"_s);
  EXPECT_EQ(search.ports.at(1).answers.front().version, u"AB1-124.0"_s);
  EXPECT_EQ(ports.Overriding(2), QString());
}

TEST_F(SearchTest, AnOverrideOfTheSelectedNumberComesBack) {
  ports.Override(1, kSecond);
  request.ports = {PortEntry{0, kFirst}};
  EXPECT_TRUE(Search().Found());
  EXPECT_EQ(ports.Overriding(1), kSecond);
}

TEST_F(SearchTest, ARawNetworkLineIsAskedOnce) {
  SilenceAll();
  request.ports = {
      PortEntry{0, u"socket://192.0.2.7:4001"_s, {}, {}, {}, PortState::Free, {}, {}, {}, false}};
  lines.lines[u"socket://192.0.2.7:4001"_s] = &line;
  EXPECT_EQ(Finding().kind, LineFinding::Silent);
  EXPECT_EQ(lines.opened.size(), 1);
}

TEST_F(SearchTest, ARawNetworkLineHasNoRate) {
  request.ports = {
      PortEntry{0, u"socket://192.0.2.7:4001"_s, {}, {}, {}, PortState::Free, {}, {}, {}, false}};
  lines.lines[u"socket://192.0.2.7:4001"_s] = &line;
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  EXPECT_EQ(search.ports.front().answers.front().settings, QString());
}

TEST_F(SearchTest, TwoControllersAtOneLine) {
  sim::Memory second;
  sim::Controller beside(second, 5, FixedText<2>(u"WR"_s), *sim::VersionPayload(u"AB1-124.0"_s));
  model.AddBeside(beside);
  request.range = {0, 6};
  const LineSearch search = Search();
  const std::vector<FoundController>& answers = search.ports.front().answers;
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers.at(0).address, 1);
  EXPECT_EQ(answers.at(0).version, u"AB1-123.4"_s);
  EXPECT_EQ(answers.at(1).address, 5);
  EXPECT_EQ(answers.at(1).version, u"AB1-124.0"_s);
}

TEST_F(SearchTest, TheStoredAddressIsAskedFirstAndOnce) {
  SilenceAll();
  request.address = 2;
  request.range = {1, 3};
  (void)Search();
  QStringList addresses;
  for (const QByteArray& frame : line.sent.chopped(1).split('\r'))
    addresses.append(QString::fromLatin1(frame.mid(1, 2)));
  EXPECT_EQ(Lines(addresses), u"02 | 02 | 01 | 01 | 03 | 03"_s);
}

TEST_F(SearchTest, EveryAddressTakesItsTimeOutsAndNoMore) {
  SilenceAll();
  request.range = {0, 255};
  const double begun_s = clock.passed;
  EXPECT_EQ(Finding().kind, LineFinding::Silent);
  constexpr double kTimeOuts_s = 256 * 2 * 0.420;
  const double taken_s = clock.passed - begun_s;
  EXPECT_EQ(lines.opened.size(), 512);
  RecordProperty("taken_s", std::to_string(taken_s));
  EXPECT_LE(taken_s, kTimeOuts_s * 1.02);
  EXPECT_GE(taken_s, kTimeOuts_s * 0.99);
  EXPECT_EQ(progress.lastDone, 512);
  EXPECT_EQ(progress.lastTotal, 512);
}

TEST_F(SearchTest, TheRemainingTimeLeavesOutWhatIsNotAsked) {
  SilenceAll();
  request.ports = {ports.entries.last(), ports.entries.first()};
  (void)Search();
  // One attempt to open the port that is not there, two exchanges at the other.
  EXPECT_EQ(progress.lastTotal, 3);
  EXPECT_EQ(progress.lastDone, 3);
}

TEST_F(SearchTest, TheRemainingTimeLeavesOutTheOtherRateOfAnAnswer) {
  request.range = {0, 2};
  EXPECT_TRUE(Search().Found());
  EXPECT_EQ(lines.opened.size(), 6) << "five questions for a version, one for the plant number";
  EXPECT_EQ(progress.lastDone, 5);
  EXPECT_EQ(progress.lastTotal, 5);
}

class SlowSearch : public SearchTest {
 protected:
  SlowSearch() : SearchTest({.rate = 19200, .paced = true, .echo = true}) {}
};

TEST_F(SlowSearch, FindsTheOtherRateAndSeesTheEcho) {
  const LineSearch search = Search();
  ASSERT_TRUE(search.Found());
  const FoundController& found = search.ports.front().answers.front();
  EXPECT_EQ(found.settings, u"19200,o,7,1"_s);
  EXPECT_TRUE(found.echo);
  // Eleven characters out, seventeen back, ten bits each.
  EXPECT_NEAR(found.answer_ms, 28 * 10 * 1000.0 / 19200, 1);
}

}  // namespace
}  // namespace kalivor::test
