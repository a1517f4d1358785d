// What the controller understands: version query with its rates, reading and writing words.
#include <gtest/gtest.h>
#include <limits>

#include "comm/COM_A.h"
#include "fakes/FakeForms.h"
#include "unit/comm/Channel.h"

using namespace Qt::StringLiterals;
using kalivor::test::Answer;
using kalivor::test::Channel;
using kalivor::test::Request;
using kalivor::test::Summed;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

const QString kSilent = u"ERROR: kein Empfang"_s;
const char* const kVersionQuery = "#0102v00BC\r";

class ControllerCommands : public testing::Test {
 protected:
  ControllerCommands() {
    // Two controller versions with different letters; the first one is selected.
    channel.module.Versionen.resize(4);
    channel.module.Versionen[1].Kennung = u"WR"_s;
    channel.module.Versionen[2].Kennung = u"sl"_s;
    channel.module.VersionList.Add(u"AB1-123.4"_s);
    channel.module.VersionList.Add(u"AB1-200.0"_s);
    channel.module.VersionList.Select(0);
  }

  [[nodiscard]] QStringList SettingsOfRequests() const {
    QStringList settings;
    for (const auto& output : line.outputs)
      settings.append(output.settings);
    return settings;
  }

  Channel channel;
  test::FakeSerialControl& line = channel.line;
  test::FakeMainForm main;
  test::FakeReportForm report;
  COM_A commands{channel.module, channel.module, channel.host,
                 [this](const QString& text) { report.Add(text); }};
};

// The version.

struct VersionExample {
  QByteArray payload;
  QString text;
};

void PrintTo(const VersionExample& example, std::ostream* out) {
  PrintTo(example.payload, out);
}

class VersionText : public ControllerCommands, public testing::WithParamInterface<VersionExample> {};

TEST_P(VersionText, IsMadeOfThePayload) {
  line.Expect(kVersionQuery).Reply(Answer(GetParam().payload));
  EXPECT_EQ(commands.ReadVersion(1), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, VersionText,
                         testing::Values(VersionExample{"AB1-04D2", u"AB1-123.4"_s},      //
                                         VersionExample{"ABCD0078", u"ABCD-012.0"_s},     //
                                         VersionExample{"AB1-000A", u"AB1-001.0"_s},      //
                                         VersionExample{"AB1-0000", u"AB1-000.0"_s},      //
                                         VersionExample{"AB1-270F", u"AB1-999.9"_s},      //
                                         VersionExample{"AB1-04d2", u"AB1-123.4"_s},      //
                                         VersionExample{"A-B104D2", u"A-B1-123.4"_s},     //
                                         VersionExample{"AB1-04D2 any", u"AB1-123.4"_s},  //
                                         VersionExample{"AB1-04D", u"AB1-007.7"_s},       //
                                         VersionExample{"AB1-", u"AB1-000.0"_s},          //
                                         VersionExample{"AB", u"AB-000.0"_s},             //
                                         VersionExample{"AB-", u"AB--000.0"_s},           //
                                         VersionExample{"", u"-000.0"_s},                 //
                                         VersionExample{"AB1-xyzw", u"AB1-000.0"_s}));

// Of five digits the first three and the last are kept.
INSTANTIATE_TEST_SUITE_P(FiveDigits, VersionText,
                         testing::Values(VersionExample{"AB1-FFFF", u"AB1-655.5"_s},
                                         VersionExample{"AB1-3039", u"AB1-123.5"_s}));

TEST_F(ControllerCommands, TheVersionIsAskedForOnce) {
  line.Expect(kVersionQuery).Silence();
  EXPECT_EQ(commands.ReadVersion(1), kSilent);
  EXPECT_EQ(line.outputs.size(), 1U);
  EXPECT_TRUE(report.lines.isEmpty()) << "the caller reports it";
}

TEST_F(ControllerCommands, AnErrorReplyToTheVersionQueryIsReturned) {
  line.Expect(kVersionQuery).Reply("10102?0200\r");
  EXPECT_EQ(commands.ReadVersion(1), u"ERROR:  Code 02 Falscher Serialmode"_s);
}

TEST_F(ControllerCommands, OtherProtocolsAreNotAskedForTheirVersion) {
  for (const qint16 protocol : {qint16{0}, qint16{15}, qint16{17}}) {
    channel.SetUp(1, protocol);
    EXPECT_EQ(commands.ReadVersion(1), u"-000.0"_s);
    EXPECT_EQ(commands.Identify(1), u"-000.0"_s);
  }
  EXPECT_TRUE(line.log.isEmpty());
}

TEST_F(ControllerCommands, IdentifyingEndsWithTheFirstAnswer) {
  line.Expect(kVersionQuery).Reply(Answer("AB1-04D2"));
  EXPECT_EQ(commands.Identify(1), u"AB1-123.4"_s);
  EXPECT_EQ(line.opens.size(), 1U) << "nothing is configured anew";
}

TEST_F(ControllerCommands, AControllerAt19200IsFoundAndTheLineStaysThere) {
  line.Expect(kVersionQuery).Silence();
  line.Expect(kVersionQuery).Reply(Answer("AB1-04D2"));
  EXPECT_EQ(commands.Identify(1), u"AB1-123.4"_s);
  EXPECT_EQ(SettingsOfRequests(), (QStringList{u"9600,o,7,1"_s, u"19200,o,7,1"_s}));
  EXPECT_EQ(channel.host.Ports[1].Settings, u"19200,o,7,1"_s);

  line.Expect(Request("R1F00")).Reply(Answer("04D2"));
  qint16 value = 0;
  EXPECT_TRUE(commands.ReadInt(1, value, u"1F00"_s));
  EXPECT_EQ(line.outputs.back().settings, u"19200,o,7,1"_s);

  commands.Configure(1, kSettings9600);
  line.Expect(kVersionQuery).Reply(Answer("AB1-04D2"));
  EXPECT_EQ(commands.Identify(1), u"AB1-123.4"_s);
  EXPECT_EQ(line.outputs.back().settings, u"9600,o,7,1"_s) << "configuring anew sets the rate back";
}

TEST_F(ControllerCommands, AControllerAt9600IsFoundFromTheFastRate) {
  channel.host.Ports[1].Settings = u"19200,o,7,1"_s;
  line.Expect(kVersionQuery).Silence();
  line.Expect(kVersionQuery).Silence();
  line.Expect(kVersionQuery).Reply(Answer("AB1-04D2"));
  EXPECT_EQ(commands.Identify(1), u"AB1-123.4"_s);
  EXPECT_EQ(SettingsOfRequests(), (QStringList{u"19200,o,7,1"_s, u"19200,o,7,1"_s, u"9600,o,7,1"_s}));
  EXPECT_EQ(channel.host.Ports[1].Settings, u"9600,o,7,1"_s);
}

TEST_F(ControllerCommands, ADeadLineCostsThreeQueriesAndTheLastMessageCounts) {
  line.Expect(kVersionQuery).Silence();
  line.Expect(kVersionQuery).Reply("10102?0300\r");
  line.Expect(kVersionQuery).Reply("1010\r");
  EXPECT_EQ(commands.Identify(1), u"ERROR: unvollständige Antwort: 1010\r"_s);
  EXPECT_EQ(SettingsOfRequests(), (QStringList{u"9600,o,7,1"_s, u"19200,o,7,1"_s, u"9600,o,7,1"_s}));
  EXPECT_TRUE(report.lines.isEmpty());
}

TEST_F(ControllerCommands, AMissingPortIsReportedInTheWordsOfTheExchange) {
  line.absent = true;
  EXPECT_EQ(commands.Identify(1), u"ERROR: COM 1 nicht verfügber"_s);
}

TEST_F(ControllerCommands, ChangingTheRateUsesTheStoredAddressAndPort) {
  channel.module.Adresse = 17;
  channel.module.Schnittstelle = 3;
  line.Expect(kVersionQuery).Silence();
  line.Expect(Summed("#1102v00")).Reply(Answer("AB1-04D2"));
  EXPECT_EQ(commands.Identify(1), u"AB1-123.4"_s);
  EXPECT_EQ(channel.host.Ports[1], (PortRecord{kFalse, 3, 16, 17, u"19200,o,7,1"_s}));
  EXPECT_EQ(line.opens.front().number, 1);
  EXPECT_EQ(line.opens.back().number, 3);
}

TEST_F(ControllerCommands, ARateThatCannotBeConfiguredIsTriedAllTheSame) {
  line.refusedOpens = {2};  // the trial of 19200 baud
  line.Expect(kVersionQuery).Silence();
  line.Expect(kVersionQuery).Reply(Answer("AB1-04D2"));
  EXPECT_EQ(commands.Identify(1), u"AB1-123.4"_s);
}

// While an abort is requested no channel is configured, so the rate stays.
TEST_F(ControllerCommands, AfterAnAbortTheThreeQueriesRunAtTheSameRate) {
  channel.module.Abbruch = kTrue;
  for (int i = 0; i < 3; ++i)
    line.Expect(kVersionQuery).Silence();
  EXPECT_EQ(commands.Identify(1), kSilent);
  EXPECT_EQ(SettingsOfRequests(), (QStringList{u"9600,o,7,1"_s, u"9600,o,7,1"_s, u"9600,o,7,1"_s}));
  EXPECT_EQ(line.opens.size(), 3U);
}

TEST_F(ControllerCommands, ConfiguringReturnsTheMessageOfThePort) {
  EXPECT_EQ(commands.Configure(1, kSettings9600), u""_s);
  line.absent = true;
  EXPECT_EQ(
      commands.Configure(1, kSettings9600),
      u"ERROR: COM 1 nicht verfügbar. Ändern Sie die 'CommPort'-Einstellung in einen anderen Anschluß."_s);
}

TEST_F(ControllerCommands, TheSettingsAreThoseOfTheController) {
  EXPECT_EQ(kSettings9600.toString(), u"9600,o,7,1"_s);
  EXPECT_EQ(kSettings19200.toString(), u"19200,o,7,1"_s);
  EXPECT_EQ(kControllerProtocol, 16);
  EXPECT_EQ(kSlot, 1);
}

// Writing a word.

struct WriteExample {
  qint32 value;
  QByteArray digits;
};

void PrintTo(const WriteExample& example, std::ostream* out) {
  PrintTo(example.digits, out);
}

class WriteWordValues : public ControllerCommands, public testing::WithParamInterface<WriteExample> {};

TEST_P(WriteWordValues, SendTheirLow16Bits) {
  line.Expect(Request("W1F00" + GetParam().digits)).Reply(Answer(""));
  EXPECT_TRUE(commands.WriteWord(1, GetParam().value, u"1F00"_s));
}

INSTANTIATE_TEST_SUITE_P(All, WriteWordValues,
                         testing::Values(WriteExample{0, "0000"}, WriteExample{1234, "04D2"},
                                         WriteExample{-1, "FFFF"}, WriteExample{-32768, "8000"},
                                         WriteExample{65535, "FFFF"}, WriteExample{70000, "1170"},
                                         WriteExample{-40000, "63C0"},
                                         WriteExample{std::numeric_limits<qint32>::min(), "0000"},
                                         WriteExample{std::numeric_limits<qint32>::max(), "FFFF"}));

TEST_F(ControllerCommands, AWriteIsFramedAsTheControllerExpectsIt) {
  line.Expect("#0102W1F00FFFF2C\r").Reply("10102W4B\r");
  EXPECT_TRUE(commands.WriteWord(1, -1, u"1F00"_s));
}

TEST_F(ControllerCommands, ThePayloadOfAWriteReplyIsNotExamined) {
  for (const QByteArray& payload : {QByteArray(), QByteArray("x"), QByteArray("FFFF and more")}) {
    line.Expect(Request("W1F000001")).Reply(Answer(payload));
    EXPECT_TRUE(commands.WriteWord(1, 1, u"1F00"_s));
  }
}

TEST_F(ControllerCommands, AFailedWriteIsReportedOnceAfterThreeAttempts) {
  for (int i = 0; i < 3; ++i)
    line.Expect(Request("W1F000001")).Silence();
  EXPECT_FALSE(commands.WriteWord(1, 1, u"1F00"_s));
  EXPECT_EQ(report.lines, QStringList{kSilent});
}

TEST_F(ControllerCommands, OtherProtocolsWriteNothingAndSucceed) {
  channel.SetUp(1, 15);
  EXPECT_TRUE(commands.WriteWord(1, 1, u"1F00"_s));
  EXPECT_TRUE(line.log.isEmpty());
  EXPECT_TRUE(report.lines.isEmpty());
}

// Reading a word.

struct ReadExample {
  QByteArray payload;
  qint16 asInt;
  qint32 asLong;
};

void PrintTo(const ReadExample& example, std::ostream* out) {
  PrintTo(example.payload, out);
}

class ReadValues : public ControllerCommands, public testing::WithParamInterface<ReadExample> {};

TEST_P(ReadValues, AreConverted) {
  line.Expect(Request("R1F00")).Reply(Answer(GetParam().payload));
  qint16 word = 99;
  EXPECT_TRUE(commands.ReadInt(1, word, u"1F00"_s));
  EXPECT_EQ(word, GetParam().asInt);
  line.Expect(Request("R1F00")).Reply(Answer(GetParam().payload));
  qint32 number = 99;
  EXPECT_TRUE(commands.ReadLong(1, number, u"1F00"_s));
  EXPECT_EQ(number, GetParam().asLong);
}

INSTANTIATE_TEST_SUITE_P(All, ReadValues,
                         testing::Values(ReadExample{"0000", 0, 0}, ReadExample{"04D2", 1234, 1234},
                                         ReadExample{"7FFF", 32767, 32767},
                                         ReadExample{"8000", -32768, 32768}, ReadExample{"FFFE", -2, 65534},
                                         ReadExample{"FFFF", -1, 65535}, ReadExample{"ffff", -1, 65535}));

TEST_F(ControllerCommands, APayloadOfAnotherLengthFailsSilently) {
  for (const QByteArray& payload : {QByteArray("04D20"), QByteArray("04D"), QByteArray()}) {
    line.Expect(Request("R1F00")).Reply(Answer(payload));
    qint16 word = 99;
    EXPECT_FALSE(commands.ReadInt(1, word, u"1F00"_s));
    EXPECT_EQ(word, 99);
    line.Expect(Request("R1F00")).Reply(Answer(payload));
    qint32 number = 99;
    EXPECT_FALSE(commands.ReadLong(1, number, u"1F00"_s));
    EXPECT_EQ(number, 99);
  }
  EXPECT_TRUE(report.lines.isEmpty());
}

TEST_F(ControllerCommands, AFailedReadIsReportedOnceAfterThreeAttempts) {
  for (int i = 0; i < 3; ++i)
    line.Expect(Request("R1F00")).Silence();
  qint16 word = 99;
  EXPECT_FALSE(commands.ReadInt(1, word, u"1F00"_s));
  EXPECT_EQ(word, 99);
  EXPECT_EQ(report.lines, QStringList{kSilent});

  line.Expect(Request("R1F00")).Silence();
  line.Expect(Request("R1F00")).Reply("10102?0600\r");
  line.Expect(Request("R1F00")).Reply("10102?0700\r");
  qint32 number = 99;
  EXPECT_FALSE(commands.ReadLong(1, number, u"1F00"_s));
  EXPECT_EQ(number, 99);
  EXPECT_EQ(report.lines, (QStringList{kSilent, u"ERROR:  Code 07 Falsche Datensatznummer"_s}));
}

TEST_F(ControllerCommands, AReadThatSucceedsInTheEndReportsNothing) {
  line.Expect(Request("R1F00")).Silence();
  line.Expect(Request("R1F00")).Reply("10102R04D221\r");
  line.Expect(Request("R1F00")).Reply(Answer("04D2"));
  qint16 word = 99;
  EXPECT_TRUE(commands.ReadInt(1, word, u"1F00"_s));
  EXPECT_EQ(word, 1234);
  EXPECT_TRUE(report.lines.isEmpty());
}

TEST_F(ControllerCommands, OtherProtocolsReadNothingAndFailSilently) {
  channel.SetUp(1, 17);
  qint16 word = 99;
  qint32 number = 99;
  EXPECT_FALSE(commands.ReadInt(1, word, u"1F00"_s));
  EXPECT_FALSE(commands.ReadLong(1, number, u"1F00"_s));
  EXPECT_TRUE(line.log.isEmpty());
  EXPECT_TRUE(report.lines.isEmpty());
}

// What is no hexadecimal number can lie outside the 16-bit range, as its sign comes from the code order.
TEST_F(ControllerCommands, AReplyThatIsNoNumberCanOverflow) {
  line.Expect(Request("R1F00")).Reply(Answer("G000"));
  qint16 word = 99;
  EXPECT_EQ(ThrownKind([&] { (void)commands.ReadInt(1, word, u"1F00"_s); }), RuntimeError::Kind::Overflow);
  EXPECT_EQ(word, 99);
  line.Expect(Request("R1F00")).Reply(Answer("G000"));
  qint32 number = 99;
  EXPECT_TRUE(commands.ReadLong(1, number, u"1F00"_s));
  EXPECT_EQ(number, 0);
}

// Addresses, letters, slots.

TEST_F(ControllerCommands, OnlyTheLastFourCharactersOfAnAddressAreSent) {
  qint16 word = 0;
  line.Expect(Request("R1F02")).Reply(Answer("0001"));
  EXPECT_TRUE(commands.ReadInt(1, word, u"00001F02"_s));
  line.Expect(Request("W1F020001")).Reply(Answer(""));
  EXPECT_TRUE(commands.WriteWord(1, 1, u"00001F02"_s));
}

TEST_F(ControllerCommands, AShorterAddressIsSentAsItIs) {
  qint16 word = 0;
  line.Expect("#0102R129B\r").Reply(Answer("0001"));
  EXPECT_TRUE(commands.ReadInt(1, word, u"12"_s));
  line.Expect(Request("W120001")).Reply(Answer(""));
  EXPECT_TRUE(commands.WriteWord(1, 1, u"12"_s));
  line.Expect(Request("R")).Reply(Answer("0001"));
  EXPECT_TRUE(commands.ReadInt(1, word, u""_s));
}

TEST_F(ControllerCommands, TheLettersBelongToTheSelectedVersion) {
  channel.module.VersionList.Select(1);
  qint16 word = 0;
  qint32 number = 0;
  line.Expect(Request("l1F00")).Reply(Answer("0001"));
  EXPECT_TRUE(commands.ReadInt(1, word, u"1F00"_s));
  line.Expect(Request("l1F00")).Reply(Answer("0001"));
  EXPECT_TRUE(commands.ReadLong(1, number, u"1F00"_s));
  line.Expect(Request("s1F000001")).Reply(Answer(""));
  EXPECT_TRUE(commands.WriteWord(1, 1, u"1F00"_s));
}

// Row 0 of the table is an empty record, whose letters are blanks.
TEST_F(ControllerCommands, WithoutASelectedVersionTheLettersAreBlanks) {
  channel.module.VersionList.Clear();
  qint16 word = 0;
  line.Expect(Request(" 1F00")).Reply(Answer("0001"));
  EXPECT_TRUE(commands.ReadInt(1, word, u"1F00"_s));
  line.Expect(Request(" 1F000001")).Reply(Answer(""));
  EXPECT_TRUE(commands.WriteWord(1, 1, u"1F00"_s));
}

TEST_F(ControllerCommands, AMissingReadLetterIsABlank) {
  channel.module.Versionen[1].Kennung = u"W"_s;
  qint16 word = 0;
  line.Expect(Request(" 1F00")).Reply(Answer("0001"));
  EXPECT_TRUE(commands.ReadInt(1, word, u"1F00"_s));
}

TEST_F(ControllerCommands, TheSlotIsTheCallers) {
  channel.SetUp(2);
  channel.host.Ports[2].Adr = 17;
  line.Expect("#1102R1F0010\r").Reply(Answer("0001"));
  qint16 word = 0;
  EXPECT_TRUE(commands.ReadInt(2, word, u"1F00"_s));
}

TEST_F(ControllerCommands, SlotsOutside0To3AreRefused) {
  qint16 word = 0;
  qint32 number = 0;
  for (const qint16 slot : {qint16{-1}, qint16{4}}) {
    EXPECT_EQ(ThrownKind([&] { (void)commands.Identify(slot); }), RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { (void)commands.WriteWord(slot, 1, u"1F00"_s); }), RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { (void)commands.ReadInt(slot, word, u"1F00"_s); }), RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { (void)commands.ReadLong(slot, number, u"1F00"_s); }),
              RuntimeError::Kind::Bounds);
  }
}

}  // namespace
}  // namespace kalivor
