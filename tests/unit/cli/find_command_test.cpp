// `find`: the lines of those who answer, the sentences of the others, and which ports are asked.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "core/LineFinding.h"
#include "fakes/LinesByDevice.h"
#include "unit/cli/CliTest.h"

namespace kalivor::cli {
namespace {

using platform::PortEntry;
using platform::PortState;

const QString kFirst = u"/dev/ttyS0"_s;
const QString kSecond = u"/dev/ttyUSB0"_s;
const QString kNetwork = u"socket://192.0.2.7:4001"_s;

/// The controller is at the second of two ports.
class FindTest : public CliTest {
 protected:
  test::LinesByDevice lines{ports};
  sim::Faults noFaults;
  sim::Memory noMemory;
  sim::Controller nobody{noMemory, 99, u"WR"_s, *sim::VersionPayload(u"AB1-123.4"_s)};
  sim::LineModel silence{nobody, noFaults};
  sim::SimulatedLine silentLine{clock, silence};

  FindTest() {
    ports.entries = {PortEntry{1, kFirst},
                     PortEntry{2, kSecond, u"Maker Adapter"_s, u"A12345"_s, u"1-1.2"_s}};
    lines.lines = {{kFirst, &silentLine}, {kSecond, &line}};
    memory.SetWord(0x0100, 1);
  }

  int Find(const QStringList& arguments = {}) {
    out.str({});
    err.str({});
    World world{
        out, err, settings, files, lines, clock, u"/programm"_s, ports, [this] { return interrupted; }, safe};
    return cli::Run(QStringList{u"find"_s} + arguments, world);
  }

  [[nodiscard]] QStringList Asked() const {
    QStringList devices;
    for (const QString& opened : lines.opened)
      devices.append(opened.section(u' ', 0, 0));
    devices.removeDuplicates();
    return devices;
  }
};

TEST_F(FindTest, PrintsALineForEachAnswerAndASentenceForEachOtherPort) {
  EXPECT_EQ(Find(), kDone);
  EXPECT_EQ(Out(), u"/dev/ttyUSB0\t9600\t1\tAB1-123.4\tbekannt\t1\tnein\t0\n"_s);
  EXPECT_EQ(Err(), u"/dev/ttyS0: "_s + FindingText({LineFinding::Silent}, false) + u'\n');
}

TEST_F(FindTest, StoresNothing) {
  (void)Find();
  EXPECT_EQ(settings.saved, 0);
}

TEST_F(FindTest, ItsTelegramsAreTraced) {
  EXPECT_EQ(Find({u"--trace"_s, u"t.txt"_s}), kDone);
  const QString trace = QString::fromUtf8(files.files.value(u"t.txt"_s).bytes);
  EXPECT_EQ(trace.count(u"PC     > "_s), line.sent.count('\r') + silentLine.sent.count('\r'));
  EXPECT_TRUE(trace.startsWith(u"COM1 ist /dev/ttyS0\nLeitung: COM1, 9600,o,7,1; "_s)) << trace.toStdString();
  EXPECT_TRUE(trace.contains(u"COM1 ist /dev/ttyUSB0\n"_s)) << trace.toStdString();
  EXPECT_TRUE(trace.contains(u"Version AB1-123.4 ("_s));
}

TEST_F(FindTest, AnUnknownVersionIsSaidSo) {
  controller.emplace(ControllerOf(u"XYZ-001.0"_s));
  EXPECT_EQ(Find({u"--ports"_s, u"2"_s}), kDone);
  EXPECT_EQ(Out(), u"/dev/ttyUSB0\t9600\t1\tXYZ-001.0\tunbekannt\tunbekannt\tnein\t0\n"_s);
  EXPECT_EQ(Err(), QString());
}

TEST_F(FindTest, AsksTheGivenPortsAlone) {
  EXPECT_EQ(Find({u"--ports"_s, u"/dev/ttyUSB0"_s}), kDone);
  EXPECT_EQ(Asked(), QStringList{kSecond});
  lines.opened.clear();
  EXPECT_EQ(Find({u"--ports"_s, u"1"_s}), kNoTransfer);
  EXPECT_EQ(Asked(), QStringList{kFirst});
  lines.opened.clear();
  EXPECT_EQ(Find({u"--ports"_s, u"2,1"_s}), kDone);
  EXPECT_EQ(Asked(), QStringList({kSecond, kFirst}));
}

TEST_F(FindTest, ThePortOfTheRunIsTheOneThatIsAsked) {
  EXPECT_EQ(Find({u"--port"_s, u"2"_s}), kDone);
  EXPECT_EQ(Asked(), QStringList{kSecond});
  lines.opened.clear();
  EXPECT_EQ(Find({u"--port"_s, kSecond}), kDone);
  EXPECT_EQ(Asked(), QStringList{kSecond});
}

TEST_F(FindTest, ADeviceThatIsNotListedIsAskedAllTheSame) {
  lines.lines[kNetwork] = &line;
  EXPECT_EQ(Find({u"--ports"_s, kNetwork}), kDone);
  EXPECT_EQ(Out(), kNetwork + u"\t-\t1\tAB1-123.4\tbekannt\t1\tnein\t0\n"_s);
}

TEST_F(FindTest, ANumberWithoutADeviceIsNotReplacedByTheSelectedPort) {
  settings.values[u"Settings/Schnittstelle"_s] = u"2"_s;
  EXPECT_EQ(Find({u"--ports"_s, u"5"_s}), kNoTransfer);
  EXPECT_TRUE(lines.opened.isEmpty());
  EXPECT_TRUE(Err().startsWith(u"COM5: Die Schnittstelle ließ sich nicht öffnen."_s)) << err.str();
  EXPECT_TRUE(Err().contains(u"Eine Schnittstelle mit dieser Nummer gibt es nicht."_s));
}

TEST_F(FindTest, AMissingOneIsSaidSo) {
  ports.entries = {PortEntry{3, {}, {}, {}, {}, PortState::Missing, u"usb:0403:6001:A1:0"_s}};
  EXPECT_EQ(Find(), kNoTransfer);
  EXPECT_TRUE(Err().startsWith(u"COM3: Das zugeordnete Gerät ist nicht da"_s)) << err.str();
}

TEST_F(FindTest, WithoutAnyPortItSaysWhatToDo) {
  ports.entries.clear();
  EXPECT_EQ(Find(), kNoTransfer);
  EXPECT_EQ(Out(), QString());
  EXPECT_TRUE(Err().startsWith(u"Es ist keine serielle Schnittstelle da."_s));
}

TEST_F(FindTest, AsksTheStoredAddressOrTheGivenOneAndTheRange) {
  controller.emplace(memory, 7, u"WR"_s, *sim::VersionPayload(u"AB1-123.4"_s));
  EXPECT_EQ(Find({u"--ports=2"_s}), kNoTransfer);
  EXPECT_EQ(Find({u"--ports=2"_s, u"--address=7"_s}), kDone);
  EXPECT_EQ(Find({u"--ports=2"_s, u"--addresses=5-9"_s}), kDone);
  EXPECT_EQ(Out().section(u'\t', 2, 2), u"7"_s);
}

TEST_F(FindTest, DoesWithoutDefinitions) {
  files.files.clear();
  EXPECT_EQ(Find({u"--ports=2"_s}), kDone);
  EXPECT_TRUE(Out().contains(u"AB1-123.4\tunbekannt\tunbekannt"_s));
}

TEST_F(FindTest, AnInterruptEndsIt) {
  interrupted = true;
  EXPECT_EQ(Find({u"--addresses=0-255"_s}), kNoTransfer);
  EXPECT_LE(lines.opened.size(), 2);
  EXPECT_TRUE(Err().endsWith(u"Die Suche wurde abgebrochen.\n"_s)) << err.str();
}

TEST_F(FindTest, JsonHasEverything) {
  EXPECT_EQ(Find({u"--json"_s}), kDone);
  const QJsonObject all = QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).object();
  EXPECT_EQ(all.value(u"aborted"_s), QJsonValue(false));
  const QJsonArray found = all.value(u"ports"_s).toArray();
  ASSERT_EQ(found.size(), 2);
  EXPECT_EQ(found.at(0).toObject().value(u"finding"_s), QJsonValue(u"silent"_s));
  EXPECT_EQ(found.at(0).toObject().value(u"text"_s), QJsonValue(FindingText({LineFinding::Silent}, false)));
  const QJsonObject second = found.at(1).toObject();
  EXPECT_EQ(second.value(u"port"_s), QJsonValue(kSecond));
  EXPECT_EQ(second.value(u"number"_s), QJsonValue(2));
  EXPECT_EQ(second.value(u"serialNumber"_s), QJsonValue(u"A12345"_s));
  const QJsonObject answer = second.value(u"answers"_s).toArray().at(0).toObject();
  EXPECT_EQ(answer.value(u"Rate"_s), QJsonValue(9600));
  EXPECT_EQ(answer.value(u"Version"_s), QJsonValue(u"AB1-123.4"_s));
  EXPECT_EQ(answer.value(u"Anlagennummer"_s), QJsonValue(1));
  EXPECT_EQ(answer.value(u"Anlageart"_s), QJsonValue(u"Heizung"_s));
}

}  // namespace
}  // namespace kalivor::cli
