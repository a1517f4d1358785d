// Telegrams, written as transcripts: what goes out, what comes back and when, and what the program makes of
// it.
#include <gtest/gtest.h>

#include "base/Windows1252.h"
#include "comm/COM_T.h"
#include "unit/comm/Channel.h"

using namespace Qt::StringLiterals;
using kalivor::test::Answer;
using kalivor::test::Channel;
using kalivor::test::kTimeTolerance_s;
using kalivor::test::Summed;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

const QString kSilent = u"ERROR: kein Empfang"_s;
const QString kNoDevice =
    u" Unerwarteter Fehler beim Abrufen des Device Control Block (DCB) für den Anschluß."_s;

class Telegram : public testing::Test {
 protected:
  // One attempt to read address 1F00.
  QString Read(qint16 slot = kSlot) { return transport.Transact(slot, u"R1F00"_s, true); }

  // The same, without a reply being wanted.
  QString Tell(qint16 slot = kSlot) { return transport.Transact(slot, u"R1F00"_s, false); }

  // Seconds from the last request to the close of the port.
  [[nodiscard]] double Lasted_s() const { return line.closes_s.back() - line.outputs.back().at_s; }

  Channel channel;
  test::FakeSerialControl& line = channel.line;
  COM_T transport{channel.host};
};

const char* const kRead = "#0102R1F000F\r";

// The request.

struct FrameExample {
  qint16 address;
  QString body;
  QByteArray frame;
};

void PrintTo(const FrameExample& example, std::ostream* out) {
  PrintTo(example.frame, out);
}

class Frame : public Telegram, public testing::WithParamInterface<FrameExample> {};

TEST_P(Frame, IsBuilt) {
  channel.host.Ports[1].Adr = GetParam().address;
  line.Expect(GetParam().frame).Silence();
  EXPECT_EQ(transport.Transact(1, GetParam().body, true), kSilent);
}

INSTANTIATE_TEST_SUITE_P(Known, Frame,
                         testing::Values(FrameExample{1, u"v00"_s, "#0102v00BC\r"},       //
                                         FrameExample{17, u"R1F00"_s, "#1102R1F0010\r"},  //
                                         FrameExample{255, u"v00"_s, "#FF02v00E7\r"},     //
                                         FrameExample{1, u"W1F00FFFF"_s, "#0102W1F00FFFF2C\r"},
                                         FrameExample{1, u""_s, "#0102E6\r"}));

// Only two digits of the address are sent.
INSTANTIATE_TEST_SUITE_P(AddressDigits, Frame,
                         testing::Values(FrameExample{0, u"v00"_s, Summed("#0002v00")},
                                         FrameExample{256, u"v00"_s, Summed("#0002v00")},
                                         FrameExample{-1, u"v00"_s, Summed("#FF02v00")},
                                         FrameExample{10, u"v00"_s, Summed("#0A02v00")}));

// Characters go out, and are summed up, as bytes of the code page.
INSTANTIATE_TEST_SUITE_P(CodePage, Frame,
                         testing::Values(FrameExample{1, u"ä€"_s, Summed("#0102\xE4\x80")},
                                         FrameExample{1, u"\u4E2D"_s, Summed("#0102?")}));

TEST_F(Telegram, TheOperationsOnTheLineHaveTheirOrder) {
  line.Expect(kRead).Reply("10102R04D220\r");
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_EQ(line.log, (QStringList{u"open 1 9600,o,7,1"_s, u"clear out"_s, u"clear in"_s,  //
                                   u"rts up"_s, u"output"_s, u"threshold 1"_s,             //
                                   u"rts down"_s,                                          //
                                   u"rts down"_s, u"clear out"_s, u"clear in"_s, u"close"_s}));
  EXPECT_TRUE(line.outputs[0].rts);
  EXPECT_EQ(channel.host.Ports[1].Offen, 0);
}

TEST_F(Telegram, TheSlotGivesPortAndSettings) {
  channel.host.Ports[2] = {kFalse, 5, 16, 17, u"19200,o,7,1"_s};
  line.Expect("#1102R1F0010\r").Reply(Answer("04D2"));
  EXPECT_EQ(Read(2), u"04D2"_s);
  EXPECT_EQ(line.opens[0].number, 5);
  EXPECT_EQ(line.opens[0].settings, u"19200,o,7,1"_s);
}

TEST_F(Telegram, SlotsOutside0To3AreRefused) {
  for (const qint16 slot : {qint16{-1}, qint16{4}}) {
    EXPECT_EQ(ThrownKind([&] { (void)Read(slot); }), RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { (void)transport.SendReceive(slot, u"x"_s, true); }),
              RuntimeError::Kind::Bounds);
  }
  EXPECT_TRUE(line.log.isEmpty());
}

// The sum is kept in 16 bits with a sign: 266 times "z" still fit, one more does not.
TEST_F(Telegram, TheChecksumOfARequestCanOverflow) {
  line.Expect("#0102" + QByteArray(266, 'z') + "AA\r").Silence();
  EXPECT_EQ(transport.Transact(1, QString(266, u'z'), true), kSilent);
  EXPECT_EQ(ThrownKind([&] { (void)transport.Transact(1, QString(267, u'z'), true); }),
            RuntimeError::Kind::Overflow);
  EXPECT_EQ(line.opens.size(), 1U) << "it overflows before the port is opened";
}

TEST_F(Telegram, TheChecksumOfAReplyCanOverflow) {
  line.Expect(kRead).Reply(Answer(QByteArray(300, 'z')));
  EXPECT_EQ(ThrownKind([&] { (void)Read(); }), RuntimeError::Kind::Overflow);
  EXPECT_FALSE(line.IsOpen());
  EXPECT_EQ(channel.host.Ports[1].Offen, 0);
}

// The reply.

struct ReplyExample {
  QByteArray reply;
  QString result;
};

void PrintTo(const ReplyExample& example, std::ostream* out) {
  PrintTo(example.reply, out);
}

class Reply : public Telegram, public testing::WithParamInterface<ReplyExample> {};

TEST_P(Reply, IsUnderstood) {
  line.Expect(kRead).Reply(GetParam().reply);
  EXPECT_EQ(Read(), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Good, Reply,
                         testing::Values(ReplyExample{"10102R04D220\r", u"04D2"_s},  //
                                         ReplyExample{"10102R46\r", u""_s},          //
                                         ReplyExample{Answer("04D20"), u"04D20"_s},  //
                                         ReplyExample{Answer("AB1-04D2 V7"), u"AB1-04D2 V7"_s},
                                         ReplyExample{Answer("\xE4\x80"), u"ä€"_s}));

// Neither the header nor the letter behind it is looked at.
INSTANTIATE_TEST_SUITE_P(AnyHeader, Reply,
                         testing::Values(ReplyExample{Summed("?????R04D2"), u"04D2"_s},
                                         ReplyExample{Summed("     W04D2"), u"04D2"_s}));

INSTANTIATE_TEST_SUITE_P(Terminators, Reply,
                         testing::Values(ReplyExample{"10102R04D220\n", u"04D2"_s},    //
                                         ReplyExample{"10102R04D220\x0B", u"04D2"_s},  //
                                         ReplyExample{"10102R04D220\x0C", u"04D2"_s},  //
                                         ReplyExample{"10102R04D220\x03", u"04D2"_s}));

INSTANTIATE_TEST_SUITE_P(
    Incomplete, Reply,
    testing::Values(ReplyExample{"1010\r", u"ERROR: unvollständige Antwort: 1010\r"_s},
                    ReplyExample{"\r", u"ERROR: unvollständige Antwort: \r"_s},
                    ReplyExample{"10102?0\r", u"ERROR: unvollständige Antwort: 10102?0\r"_s},
                    ReplyExample{"10102R4\n", u"ERROR: unvollständige Antwort: 10102R4\n"_s}));

INSTANTIATE_TEST_SUITE_P(
    ErrorCodes, Reply,
    testing::Values(ReplyExample{Summed("10102?02"), u"ERROR:  Code 02 Falscher Serialmode"_s},
                    ReplyExample{"10102?0400\r", u"ERROR:  Code 04 Falsches Kennzeichen"_s},
                    ReplyExample{Summed("10102?05"), u"ERROR:  Code 05 Falsche Anzahl Parameter"_s},
                    ReplyExample{Summed("10102?06"), u"ERROR:  Code 06 Falsches Zeichen"_s},
                    ReplyExample{Summed("10102?07"), u"ERROR:  Code 07 Falsche Datensatznummer"_s},
                    ReplyExample{"10102?0399\r", u"ERROR:  Code 03"_s},
                    ReplyExample{Summed("10102?ZZ"), u"ERROR:  Code ZZ"_s},
                    ReplyExample{Summed("10102?"), u"ERROR:  Code 33"_s},
                    ReplyExample{Summed("10102?02 und mehr"), u"ERROR:  Code 02 Falscher Serialmode"_s}));

INSTANTIATE_TEST_SUITE_P(BadChecksums, Reply,
                         testing::Values(ReplyExample{"10102R04D221\r", u"ERROR:  Checksumme Falsch"_s},
                                         ReplyExample{"10102RFFFF5e\r", u"ERROR:  Checksumme Falsch"_s},
                                         ReplyExample{"10102R04D320\r", u"ERROR:  Checksumme Falsch"_s},
                                         ReplyExample{"10102R47\r", u"ERROR:  Checksumme Falsch"_s}));

TEST_F(Telegram, TheChecksumIsWrittenInCapitals) {
  line.Expect(kRead).Reply("10102RFFFF5E\r");
  EXPECT_EQ(Read(), u"FFFF"_s);
}

TEST_F(Telegram, AReplyMayComeInPieces) {
  line.Expect(kRead).Reply("1", 10).Reply("0102R0", 100).Reply("4D22", 100).Reply("0", 100).Reply("\r", 80);
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_NEAR(Lasted_s(), 0.390, kTimeTolerance_s) << "it must be taken as soon as it is complete";
}

// Whatever length was expected.
TEST_F(Telegram, AReplyOfAnotherLengthIsTakenWhenItHasEnded) {
  line.Expect(kRead).Reply("1", 10).Reply(Answer({}).sliced(1), 8);
  EXPECT_EQ(Read(), QString());
  EXPECT_NEAR(Lasted_s(), 0.018, kTimeTolerance_s);
  line.Expect(kRead).Reply(Answer("123456"));
  EXPECT_EQ(Read(), u"123456"_s);
}

// Too short for a reply, but a line.
TEST_F(Telegram, AShortLineIsTakenWhenItHasEnded) {
  line.Expect(kRead).Reply("1", 10).Reply("\r", 5).Reply("0102R04D220\r", 50);
  EXPECT_EQ(Read(), u"ERROR: unvollständige Antwort: 1\r"_s);
  EXPECT_NEAR(Lasted_s(), 0.015, kTimeTolerance_s);
}

TEST_F(Telegram, RawExchangeReturnsTheLineWithItsEnd) {
  line.Expect("xyz").Reply("10102R04D220\r");
  EXPECT_EQ(transport.SendReceive(1, u"xyz"_s, true), u"10102R04D220\r"_s);
}

// The echo.

TEST_F(Telegram, AnEchoOnItsOwnIsSkipped) {
  line.Expect(kRead).Echo().Reply("10102R04D220\r", 30);
  EXPECT_EQ(Read(), u"04D2"_s);
}

TEST_F(Telegram, AnEchoIsCutOffInFrontOfTheReply) {
  line.Expect(kRead).Reply("#0102R1F000F\r10102R04D220\r");
  EXPECT_EQ(Read(), u"04D2"_s);
}

TEST_F(Telegram, AnEchoMayComeInPieces) {
  line.Expect(kRead).Reply("#0102R", 5).Reply("1F000F\r10102", 5).Reply("R04D220\r", 5);
  EXPECT_EQ(Read(), u"04D2"_s);
}

// The reply is known by its first character alone.
TEST_F(Telegram, AReplyLikeAnEchoIsTakenForOne) {
  line.Expect(kRead).Reply("#0102R04D212\r");
  EXPECT_EQ(Read(), kSilent);
  EXPECT_NEAR(Lasted_s(), 0.401, kTimeTolerance_s) << "a fresh wait follows the echo";
}

TEST_F(Telegram, AnEchoIsCutByTheLengthOfTheRequestOnly) {
  line.Expect(kRead).Reply("#garbage....\r10102R04D220\r");
  EXPECT_EQ(Read(), u"04D2"_s);
}

// What is longer than the request and ends with no line end is not the beginning of the reply.
TEST_F(Telegram, AFragmentBehindTheEchoIsDropped) {
  line.Expect(kRead).Reply("#0102R1F000Fx10102R\x03").Reply("10102R04D220\r", 20);
  EXPECT_EQ(Read(), u"04D2"_s) << "the next line replaces the fragment";
}

TEST_F(Telegram, WhatStandsBehindALineDoesNotReachTheNextExchange) {
  line.Expect(kRead).Reply(Answer("0001") + Answer("0002"));
  line.Expect(kRead).Reply(Answer("0003"), 10);
  EXPECT_EQ(Read(), u"0001"_s);
  EXPECT_EQ(Read(), u"0003"_s);
  channel.host.KeepOpen = kTrue;
  line.Expect(kRead).Reply(Answer("0004") + Answer("0005"));
  line.Expect(kRead).Reply(Answer("0006"), 10);
  EXPECT_EQ(Read(), u"0004"_s);
  EXPECT_EQ(Read(), u"0006"_s) << "nor where the port stays open";
}

TEST_F(Telegram, AReplyWithoutHashIsNoEcho) {
  line.Expect(kRead).Reply("0102R1F000F\r").Reply("10102R04D220\r", 20);
  EXPECT_EQ(Read(), u"ERROR:  Checksumme Falsch"_s);
}

TEST_F(Telegram, RtsIsDroppedBetweenTheEchoAndTheReply) {
  line.Expect(kRead).Echo().Reply(Answer("04D2"), 30);
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_EQ(line.log.count(u"rts down"_s), 3) << "after the echo, after the reply, before closing";
}

TEST_F(Telegram, EchoesForEverEnd) {
  line.Expect(kRead).Babble("#..\r", 10);
  EXPECT_EQ(Read(), kSilent);
  EXPECT_NEAR(Lasted_s(), 1.2, 0.02);
  EXPECT_FALSE(line.IsOpen());
}

TEST_F(Telegram, EchoesForEverEndOnEverySlotWithinThreeTimeOuts) {
  for (const qint16 slot : {qint16{0}, qint16{2}, qint16{3}}) {
    Channel other;
    other.SetUp(slot);
    other.line.Expect(kRead).Babble("#..\r", 10);
    EXPECT_EQ(COM_T(other.host).Transact(slot, u"R1F00"_s, true), kSilent);
    EXPECT_NEAR(other.line.closes_s.back() - other.line.outputs.back().at_s, slot == 2 ? 3.6 : 1.2, 0.02)
        << slot;
  }
}

TEST_F(Telegram, ALineThatBeginsTooLateBehindEchoesIsNotWaitedFor) {
  line.Expect(kRead).Reply("#1\r", 390).Reply("#2\r", 390).Reply("10102R", 390);
  EXPECT_EQ(Read(), kSilent);
  EXPECT_NEAR(Lasted_s(), 1.2, kTimeTolerance_s);
}

// Time-outs.

TEST_F(Telegram, SilenceEndsWithTheTimeOutOfTheSlot) {
  for (int slot = 0; slot <= 3; ++slot) {
    Channel other;
    other.SetUp(slot);
    other.line.Expect(kRead).Silence();
    EXPECT_EQ(COM_T(other.host).Transact(static_cast<qint16>(slot), u"R1F00"_s, true), kSilent);
    EXPECT_NEAR(other.line.closes_s.back() - other.line.outputs.back().at_s, slot == 2 ? 1.2 : 0.4,
                kTimeTolerance_s)
        << slot;
  }
}

TEST_F(Telegram, AReplyBeforeTheTimeOutIsInTime) {
  line.Expect(kRead).Reply(Answer("04D2"), 399);
  EXPECT_EQ(Read(), u"04D2"_s);
}

TEST_F(Telegram, AReplyAfterTheTimeOutIsLate) {
  line.Expect(kRead).Reply(Answer("04D2"), 401);
  EXPECT_EQ(Read(), kSilent);
}

TEST_F(Telegram, OnSlot2ThereIsThreeTimesTheTime) {
  channel.SetUp(2);
  line.Expect(kRead).Reply("1", 1190).Reply("0102R04D220\r", 1190);
  EXPECT_EQ(Read(2), u"04D2"_s);
}

TEST_F(Telegram, TheFirstCharacterStartsTheTimeAnew) {
  line.Expect(kRead).Reply("10102R", 390).Reply("04D220\r", 390);
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_NEAR(Lasted_s(), 0.780, kTimeTolerance_s);
}

TEST_F(Telegram, FurtherCharactersDoNot) {
  line.Expect(kRead).Reply("10102R", 100).Reply("04", 300).Reply("D220\r", 300);
  EXPECT_EQ(Read(), u"ERROR: ungültiger Empfang:  (10102R04)."_s);
  EXPECT_NEAR(Lasted_s(), 0.500, kTimeTolerance_s);
}

TEST_F(Telegram, TheWaitAfterAnEchoIsFresh) {
  line.Expect(kRead).Echo(350).Reply("10102R", 350).Reply("04D220\r", 350);
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_NEAR(Lasted_s(), 1.050, kTimeTolerance_s);
}

TEST_F(Telegram, ALineWithoutEndIsReported) {
  line.Expect(kRead).Reply("10102R").Silence();
  EXPECT_EQ(Read(), u"ERROR: ungültiger Empfang:  (10102R)."_s);
  EXPECT_NEAR(Lasted_s(), 0.401, kTimeTolerance_s);
}

TEST_F(Telegram, BabbleWithoutLineEndsEnds) {
  line.Expect(kRead).Babble("x", 10);
  EXPECT_EQ(Read(), u"ERROR: ungültiger Empfang:  ("_s + QString(41, u'x') + u")."_s);
  EXPECT_NEAR(Lasted_s(), 0.410, kTimeTolerance_s);
}

// At midnight every running timer expires.
TEST_F(Telegram, AWaitEndsAtMidnight) {
  channel.clock.now = 86399.9;
  line.Expect(kRead).Silence();
  EXPECT_EQ(Read(), kSilent);
  EXPECT_NEAR(Lasted_s(), 0.1, kTimeTolerance_s);
}

TEST_F(Telegram, AReplyAfterMidnightIsLate) {
  channel.clock.now = 86399.9;
  line.Expect(kRead).Reply(Answer("04D2"), 101);
  EXPECT_EQ(Read(), kSilent);
  EXPECT_NEAR(Lasted_s(), 0.1, kTimeTolerance_s);
}

TEST_F(Telegram, AReplyThatCrossesMidnightIsCutOff) {
  channel.clock.now = 86399.9;
  line.Expect(kRead).Reply("10102R", 50).Reply("04D220\r", 51);
  EXPECT_EQ(Read(), u"ERROR: ungültiger Empfang:  (10102R)."_s);
  EXPECT_NEAR(Lasted_s(), 0.1, kTimeTolerance_s);
}

TEST_F(Telegram, AReplyBeforeMidnightIsTaken) {
  channel.clock.now = 86399.9;
  line.Expect(kRead).Reply(Answer("04D2"), 50);
  EXPECT_EQ(Read(), u"04D2"_s);
}

TEST_F(Telegram, APauseThatCrossesMidnightIsOver) {
  channel.clock.now = 86399.98;
  line.Expect(kRead).Reply(Answer("04D2"), 10);
  EXPECT_EQ(Read(), u"04D2"_s);
  channel.clock.Advance(0.015);
  line.Expect(kRead).Reply(Answer("04D2"));
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_EQ(channel.clock.slept, 0);
}

// No reply wanted.

TEST_F(Telegram, WithoutAReplySilenceIsNoFailure) {
  for (const int slot : {1, 2}) {
    channel.SetUp(slot);
    line.Expect(kRead).Silence();
    EXPECT_EQ(Tell(static_cast<qint16>(slot)), u""_s);
    EXPECT_NEAR(Lasted_s(), 0.1, kTimeTolerance_s) << "the shortest time-out, on every slot";
  }
}

TEST_F(Telegram, WithoutAReplyALineIsIgnored) {
  line.Expect(kRead).Reply("10102?0200\r", 40);
  EXPECT_EQ(Tell(), u""_s);
  EXPECT_NEAR(Lasted_s(), 0.040, kTimeTolerance_s);
  EXPECT_EQ(line.log.count(u"rts down"_s), 1) << "only closing drops RTS then";
}

TEST_F(Telegram, WithoutAReplyAnEchoIsEnough) {
  line.Expect(kRead).Echo(40).Reply(Answer("04D2"), 10);
  EXPECT_EQ(Tell(), u""_s);
  EXPECT_NEAR(Lasted_s(), 0.040, kTimeTolerance_s);
}

TEST_F(Telegram, WithoutAReplyALineWithoutEndIsStillReported) {
  line.Expect(kRead).Reply("10102R", 40);
  EXPECT_EQ(Tell(), u"ERROR: ungültiger Empfang:  (10102R)."_s);
  EXPECT_NEAR(Lasted_s(), 0.140, kTimeTolerance_s);
}

TEST_F(Telegram, WithoutAReplyAMissingPortIsStillReported) {
  line.absent = true;
  EXPECT_EQ(Tell(), u"ERROR: COM 1 nicht verfügber"_s);
}

// Failures of the port.

TEST_F(Telegram, AMissingPortIsNamed) {
  line.absent = true;
  channel.host.Ports[1].PortNr = 3;
  EXPECT_EQ(Read(), u"ERROR: COM 3 nicht verfügber"_s);
  EXPECT_EQ(transport.SendReceive(1, u"x"_s, true), u"ERROR: COM 3 nicht verfügber"_s);
  channel.host.Ports[1].PortNr = -1;
  EXPECT_EQ(Read(), u"ERROR: COM-1 nicht verfügber"_s);
  EXPECT_TRUE(line.outputs.empty());
  EXPECT_FALSE(channel.timers.TimerExpired(kPauseTimer)) << "the pause follows a failed attempt, too";
}

TEST_F(Telegram, APortThatCannotBeEmptiedIsNotUsed) {
  line.clearInFails = true;
  EXPECT_EQ(Read(), u"ERROR: COM 1 nicht verfügber"_s);
  EXPECT_TRUE(line.outputs.empty());
  EXPECT_FALSE(line.IsOpen());
  EXPECT_EQ(channel.host.Ports[1].Offen, 0);
}

TEST_F(Telegram, ALineThatVanishesEndsTheWaitAtOnce) {
  line.Expect(kRead).Vanish(50);
  EXPECT_EQ(Read(), kSilent + u" () "_s + kNoDevice);
  EXPECT_NEAR(Lasted_s(), 0.050, kTimeTolerance_s);
}

TEST_F(Telegram, ALineThatVanishesInsideAReplyEndsTheWaitAtOnce) {
  line.Expect(kRead).Reply("1010", 10).Vanish(50);
  EXPECT_EQ(Read(), u"ERROR: ungültiger Empfang:  (1010). (1010) "_s + kNoDevice);
  EXPECT_NEAR(Lasted_s(), 0.060, kTimeTolerance_s);
}

TEST_F(Telegram, ALineThatVanishesBehindTheReplyDoesNotMatter) {
  line.Expect(kRead).Reply(Answer("04D2"), 10).Vanish();
  EXPECT_EQ(Read(), u"04D2"_s);
}

TEST_F(Telegram, WhatArrivedBeforeTheRequestIsDiscarded) {
  line.Expect(kRead).Reply(Answer("0001"),
                           410);  // too late for the first attempt, in the pause of the second
  line.Expect(kRead).Reply(Answer("0002"), 10);
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 2), u"0002"_s);
}

// Line errors.

struct EventExample {
  int event;
  QString text;
};

void PrintTo(const EventExample& example, std::ostream* out) {
  PrintTo(example.text, out);
}

class LineError : public Telegram, public testing::WithParamInterface<EventExample> {};

TEST_P(LineError, IsAppendedToSilence) {
  line.Expect(kRead).Event(GetParam().event, 10);
  EXPECT_EQ(Read(), kSilent + u" () "_s + GetParam().text);
}

TEST_P(LineError, IsAppendedToALineWithoutEnd) {
  line.Expect(kRead).Reply("10102R").Event(GetParam().event, 10);
  EXPECT_EQ(Read(), u"ERROR: ungültiger Empfang:  (10102R). (10102R) "_s + GetParam().text);
}

TEST_P(LineError, IsAppendedToAMissingPort) {
  line.absent = true;
  line.eventOnOpen = GetParam().event;
  EXPECT_EQ(Read(), u"ERROR: COM 1 nicht verfügber () "_s + GetParam().text);
}

TEST_P(LineError, DoesNotMatterWithAReply) {
  line.Expect(kRead).Event(GetParam().event, 10).Reply(Answer("04D2"));
  EXPECT_EQ(Read(), u"04D2"_s);
}

TEST_P(LineError, IsNotAppendedToFaultyReplies) {
  line.Expect(kRead).Event(GetParam().event, 10).Reply("10102R04D221\r");
  EXPECT_EQ(Read(), u"ERROR:  Checksumme Falsch"_s);
}

TEST_P(LineError, DoesNotMatterWithoutAWantedReply) {
  line.Expect(kRead).Event(GetParam().event, 10);
  EXPECT_EQ(Tell(), u""_s);
}

INSTANTIATE_TEST_SUITE_P(
    Events, LineError,
    testing::Values(
        EventExample{1001, u" Es wurde ein Anhaltesignal (Break-Signal) empfangen."_s},
        EventExample{
            1004, u" Datenblockfehler (Framing Error). Die Hardware hat einen Datenblockfehler entdeckt."_s},
        EventExample{1006,
                     u" Anschlußüberlauf (Port Overrun). Es ist ein Zeichen verlorengegangen, da die "
                     u"Hardware nicht in "
                     "der Lage war, dieses Zeichen zu lesen, bevor das nächste Zeichen eintraf."_s},
        EventExample{
            1008, u" Überlauf des Empfangspuffers (Receive Buffer Overflow). Der Empfangspuffer ist voll."_s},
        EventExample{1009,
                     u" Paritätsfehler (Parity Error). Die Hardware hat einen Paritätsfehler entdeckt."_s},
        EventExample{
            1010,
            u" Sendepuffer voll (Transmit Buffer Full). Bei dem Versuch, ein Zeichen in die Warteschlange "
            "aufzunehmen, wurde festgestellt, daß der Sendepuffer voll war."_s},
        EventExample{1011, kNoDevice}));

TEST_F(Telegram, OtherEventsAreNoLineErrors) {
  for (const int event : {1, 2, 1000, 1002, 1003, 1005, 1007, 1012, -1}) {
    line.Expect(kRead).Event(event, 10);
    EXPECT_EQ(Read(), kSilent) << event;
  }
}

TEST_F(Telegram, ALineErrorDoesNotReachTheNextExchange) {
  line.Expect(kRead).Event(platform::kCommEventParity, 10);
  EXPECT_EQ(Read(),
            u"ERROR: kein Empfang ()  Paritätsfehler (Parity Error). Die Hardware hat einen "
            "Paritätsfehler entdeckt."_s);
  line.Expect(kRead).Silence();
  EXPECT_EQ(Read(), kSilent);
}

TEST_F(Telegram, ALineErrorBehindAnEchoShowsNoPartOfTheEcho) {
  line.Expect(kRead).Echo().Event(platform::kCommEventBreak, 10);
  EXPECT_EQ(Read(), u"ERROR: kein Empfang ()  Es wurde ein Anhaltesignal (Break-Signal) empfangen."_s);
}

// Raw reception.

TEST_F(Telegram, Protocols15To17AreReceivedByLine) {
  for (const qint16 protocol : {qint16{15}, qint16{16}, qint16{17}}) {
    channel.SetUp(1, protocol);
    line.Expect(kRead).Reply(Answer("04D2"));
    EXPECT_EQ(Read(), u"04D2"_s) << protocol;
    EXPECT_NEAR(Lasted_s(), 0.001, kTimeTolerance_s) << "the end of the line ends the reception";
  }
}

TEST_F(Telegram, AllOtherProtocolsAreReceivedUntilASecondOfQuiet) {
  for (const qint16 protocol : {qint16{0}, qint16{14}, qint16{18}, qint16{19}, qint16{-1}}) {
    channel.SetUp(1, protocol);
    line.Expect("x").Reply("ab", 10).Reply("c\r", 900).Reply("d", 900);
    EXPECT_EQ(transport.SendReceive(1, u"x"_s, true), u"abc\rd"_s) << protocol;
    EXPECT_NEAR(Lasted_s(), 2.810, kTimeTolerance_s);
  }
}

TEST_F(Telegram, RawReceptionEndsAfterASecondOfQuiet) {
  channel.SetUp(1, 0);
  line.Expect("x").Reply("ab", 10).Reply("c", 1001);
  EXPECT_EQ(transport.SendReceive(1, u"x"_s, true), u"ab"_s);
}

TEST_F(Telegram, RawReceptionKeepsTheEcho) {
  channel.SetUp(1, 0);
  line.Expect("#x\r").Echo().Reply("#y\r");
  EXPECT_EQ(transport.SendReceive(1, u"#x\r"_s, true), u"#x\r#y\r"_s);
}

// Its own start character would be code 2, but it is received raw before that could matter.
TEST_F(Telegram, Protocol18KeepsAnEchoWithEitherStartCharacter) {
  channel.SetUp(1, 18);
  line.Expect("#x\r").Echo().Reply("y\r");
  EXPECT_EQ(transport.SendReceive(1, u"#x\r"_s, true), u"#x\ry\r"_s);
  line.Expect("\x02x\r").Echo().Reply("y\r");
  EXPECT_EQ(transport.SendReceive(1, u"\u0002x\r"_s, true), u"\u0002x\ry\r"_s);
}

TEST_F(Telegram, RawReceptionIsReturnedAlsoWithoutAWantedReply) {
  channel.SetUp(1, 0);
  line.Expect("x").Reply("ab", 10);
  EXPECT_EQ(transport.SendReceive(1, u"x"_s, false), u"ab"_s);
}

TEST_F(Telegram, RawReceptionHasNoLineErrors) {
  channel.SetUp(1, 0);
  line.Expect("x").Reply("ab", 10).Event(platform::kCommEventParity);
  EXPECT_EQ(transport.SendReceive(1, u"x"_s, true), u"ab"_s);
}

TEST_F(Telegram, RawReceptionOfNothingIsSilence) {
  channel.SetUp(1, 0);
  line.Expect("x").Silence();
  EXPECT_EQ(transport.SendReceive(1, u"x"_s, true), kSilent);
  EXPECT_NEAR(Lasted_s(), 0.4, kTimeTolerance_s);
}

TEST_F(Telegram, RawReceptionEndsWithTheLine) {
  channel.SetUp(1, 0);
  line.Expect("x").Reply("ab", 10).Vanish(50);
  EXPECT_EQ(transport.SendReceive(1, u"x"_s, true), u"ab"_s);
  EXPECT_NEAR(Lasted_s(), 0.060, kTimeTolerance_s);
}

TEST_F(Telegram, RawReceptionKeepsRtsUpUntilTheClose) {
  channel.SetUp(1, 0);
  line.Expect("x").Reply("ab", 10);
  EXPECT_EQ(transport.SendReceive(1, u"x"_s, true), u"ab"_s);
  EXPECT_EQ(line.log.count(u"rts down"_s), 1);
}

// Pauses and retries.

TEST_F(Telegram, TheLineRestsFor20MsBetweenTwoExchanges) {
  for (int i = 0; i < 5; ++i) {
    line.Expect(kRead).Reply(Answer("04D2"));
    EXPECT_EQ(Read(), u"04D2"_s);
  }
  for (std::size_t i = 1; i < 5; ++i) {
    const double pause_s = line.outputs[i].at_s - line.closes_s[i - 1];
    EXPECT_GE(pause_s, 0.020 - 1e-9);
    EXPECT_NEAR(pause_s, 0.020, kTimeTolerance_s) << "and not longer than needed";
  }
}

TEST_F(Telegram, TheLineRestsAsLongLateInTheDay) {
  channel.clock.now = 86300.003;
  for (int i = 0; i < 5; ++i) {
    line.Expect(kRead).Reply(Answer("04D2"), 1.7);
    EXPECT_EQ(Read(), u"04D2"_s);
  }
  for (std::size_t i = 1; i < 5; ++i) {
    EXPECT_NEAR(line.outputs[i].at_s - line.closes_s[i - 1], 0.020, kTimeTolerance_s);
  }
}

TEST_F(Telegram, APauseThatIsOverIsNotRepeated) {
  line.Expect(kRead).Reply(Answer("04D2"));
  EXPECT_EQ(Read(), u"04D2"_s);
  channel.clock.Advance(0.1);
  line.Expect(kRead).Reply(Answer("04D2"));
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_EQ(channel.clock.slept, 0);
}

TEST_F(Telegram, TheLineRestsAfterATrialOfThePort) {
  ASSERT_EQ(channel.host.ConfigurePort(1, 16, 1, 1, u"9600,o,7,1"_s), u""_s);
  line.Expect(kRead).Reply(Answer("04D2"));
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_GE(line.outputs[0].at_s - line.closes_s[0], 0.020 - 1e-9);
}

TEST_F(Telegram, ADeadLineIsTriedAsOftenAsAllowed) {
  for (int i = 0; i < 3; ++i)
    line.Expect(kRead).Silence();
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 3), kSilent);
  ASSERT_EQ(line.outputs.size(), 3U);
  ASSERT_EQ(line.closes_s.size(), 3U);
  for (std::size_t i = 1; i < 3; ++i)
    EXPECT_GE(line.outputs[i].at_s - line.closes_s[i - 1], 0.020 - 1e-9);
}

TEST_F(Telegram, OnlyTheLastFailureSurvives) {
  line.Expect(kRead).Reply("10102?0399\r");
  line.Expect(kRead).Silence();
  line.Expect(kRead).Reply("10102R04D221\r");
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 3), u"ERROR:  Checksumme Falsch"_s);
}

TEST_F(Telegram, EveryKindOfFailureIsRetried) {
  line.refusedOpens = {1};
  line.Expect(kRead).Reply("10102R").Silence();
  line.Expect(kRead).Reply("1010\r");
  line.Expect(kRead).Reply("10102?0299\r");
  line.Expect(kRead).Reply("10102R04D221\r");
  line.Expect(kRead).Silence();
  line.Expect(kRead).Reply(Answer("04D2"));
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 7), u"04D2"_s);
}

TEST_F(Telegram, TheFirstGoodReplyEndsTheTries) {
  line.Expect(kRead).Silence();
  line.Expect(kRead).Reply(Answer("04D2"));
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 3), u"04D2"_s);
  EXPECT_EQ(line.outputs.size(), 2U);
}

TEST_F(Telegram, EveryCallHasAllItsTries) {
  for (int i = 0; i < 5; ++i)
    line.Expect(kRead).Silence();
  line.Expect(kRead).Reply(Answer("04D2"));
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 3), kSilent);
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 3), u"04D2"_s) << "its third attempt";
}

TEST_F(Telegram, OneTryIsMadeInAnyCase) {
  for (const int maxTries : {1, 0, -1}) {
    line.Expect(kRead).Silence();
    EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, maxTries), kSilent);
  }
}

TEST_F(Telegram, WithoutAWantedReplyThereIsNothingToRetry) {
  line.Expect(kRead).Silence();
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, false, 3), u""_s);
  EXPECT_EQ(line.outputs.size(), 1U);
}

TEST_F(Telegram, ALineThatVanishesFailsTheOtherTriesAtOnce) {
  line.Expect(kRead).Vanish(50);
  EXPECT_EQ(transport.SendWithRetry(1, u"R1F00"_s, true, 3), u"ERROR: COM 1 nicht verfügber"_s);
  EXPECT_EQ(line.opens.size(), 3U);
  EXPECT_LT(channel.clock.passed, 0.2);
}

// Switches.

TEST_F(Telegram, KeepOpenKeepsThePortAndRtsUpBetweenTelegrams) {
  channel.host.KeepOpen = kTrue;
  line.Expect(kRead).Echo().Reply(Answer("0001"), 5);
  line.Expect(kRead).Echo().Reply(Answer("0002"), 5);
  EXPECT_EQ(Read(), u"0001"_s);
  const double end_s = channel.clock.passed;
  EXPECT_EQ(Read(), u"0002"_s);
  EXPECT_EQ(line.opens.size(), 1U);
  EXPECT_TRUE(line.closes_s.empty());
  EXPECT_FALSE(line.log.contains(u"rts down"_s));
  EXPECT_TRUE(line.Rts());
  EXPECT_GE(line.outputs[1].at_s - end_s, 0.020 - 1e-9) << "the pause is kept";
}

TEST_F(Telegram, WhileAPortIsKeptOpenNoOtherSlotHasIt) {
  channel.host.KeepOpen = kTrue;
  channel.SetUp(2);
  line.Expect(kRead).Reply(Answer("0001"));
  EXPECT_EQ(Read(1), u"0001"_s);
  EXPECT_EQ(Read(2), u"ERROR: COM 1 nicht verfügber"_s);
  line.Expect(kRead).Reply(Answer("0002"));
  EXPECT_EQ(Read(1), u"0002"_s);
  EXPECT_EQ(line.opens.size(), 1U);
}

TEST_F(Telegram, SendDoneIsSetWhenTheRequestHasGoneOut) {
  line.Expect(kRead).Event(platform::kCommEventSendDone, 14).Reply(Answer("04D2"), 5);
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_EQ(channel.host.SendDone, -1);
}

TEST_F(Telegram, SendDoneIsClearedWithEveryRequest) {
  channel.host.SendDone = kTrue;
  line.Expect(kRead).Reply(Answer("04D2"), 5);
  EXPECT_EQ(Read(), u"04D2"_s);
  EXPECT_EQ(channel.host.SendDone, 0);
}

}  // namespace
}  // namespace kalivor
