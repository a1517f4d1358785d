// The careful line: what is done when an attempt fails, in the time of a fake clock.
#include "comm/CarefulLine.h"

#include <gtest/gtest.h>

#include <map>

#include "comm/COM_A.h"
#include "fakes/FakeClock.h"
#include "fakes/QtPrinters.h"
#include "sim/SimulatedLine.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr double kRest_s = 2;
constexpr double kReplyTime_s = 0.4;
constexpr double kTolerance_s = 0.001;

/// A time between two requests that is `expected_s` and the pause of the plain line behind it.
void ExpectGap(double gap_s, double expected_s) {
  EXPECT_GE(gap_s, expected_s - kTolerance_s);
  EXPECT_LE(gap_s, expected_s + 0.02 + kTolerance_s);
}
constexpr double kGoesOnAtOnce_s = 0.03;  // the pause that the plain line has as well

/// A controller "AB1-123.4" on a line in virtual time, and the careful line to it.
struct Rig {
  test::FakeClock clock;
  sim::Memory memory;
  sim::Controller station{memory, 1, FixedText<2>(u"WR"_s), "AB1-04D2"};
  sim::Faults faults;
  sim::LineModel model;
  sim::SimulatedLine line{clock, model};
  TH timers{clock};
  Module1 module;
  COM_T_frm host{module, line, timers};

  std::map<int, std::vector<sim::Chunk>> replies;  // in place of the good one, by exchange from 1 on
  std::function<void(int exchange)> onRequest = [](int) {};
  std::vector<double> requests_s;  // by FakeClock::passed

  std::function<bool()> goOn = [] { return true; };
  COM_A controller{module, module, host, [](const QString&) {}};
  CarefulLine careful = controller.AskingCarefully([this] { return goOn(); });

  explicit Rig(const sim::LineOptions& options = {}) : model(station, faults, options) {
    module.Versionen.resize(2);
    module.Versionen[1].Kennung = u"WR"_s;
    module.VersionList.Add(u"AB1-123.4"_s);
    module.VersionList.Select(0);
    controller.Configure(kSlot, kSettings9600);
    memory.SetWord(0x1F00, 0x04D2);
    memory.SetWord(0x1F02, 0xFFFF);
    model.OnResponse = [this](const QByteArray&, sim::Response& response) {
      requests_s.push_back(clock.passed);
      const int number = static_cast<int>(requests_s.size());
      if (const auto reply = replies.find(number); reply != replies.end()) response.chunks = reply->second;
      onRequest(number);
    };
  }

  /// The requests from the first to the last one of `count` are not answered.
  void Silence(int first, int count = 1) {
    for (int i = 0; i < count; ++i)
      replies[first + i] = {};
  }

  [[nodiscard]] int Exchanges() const { return static_cast<int>(requests_s.size()); }

  /// Between request `number` and the next one.
  [[nodiscard]] double Gap_s(int number) const {
    const auto index = static_cast<std::size_t>(number);
    return requests_s.at(index) - requests_s.at(index - 1);
  }

  /// Bodies of the requests so far: "R1F00 v00".
  [[nodiscard]] QString Requests() const {
    QStringList bodies;
    for (const QByteArray& frame : line.sent.chopped(1).split('\r'))
      bodies.append(QString::fromLatin1(frame.mid(5).chopped(2)));
    return bodies.join(u' ');
  }
};

QByteArray Reply(const QByteArray& letterAndPayload) {
  return sim::Sealed("10102" + letterAndPayload);
}

// A line on which nothing goes wrong: the exchanges are those of the plain one.

TEST(CarefulLine, ReadsAWordOnce) {
  Rig rig;
  EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
  EXPECT_EQ(rig.careful.Read(0x1F02, 0xFFFF).word, 0xFFFF);
  EXPECT_EQ(rig.Requests(), u"R1F00 R1F02");
  EXPECT_LT(rig.Gap_s(1), kGoesOnAtOnce_s);
  EXPECT_EQ(rig.careful.FailedAttempts(), 0);
}

TEST(CarefulLine, WritesAWordOnce) {
  Rig rig;
  EXPECT_EQ(rig.careful.Write(0x1F00, 0x0ABC), QString());
  EXPECT_EQ(rig.memory.Word(0x1F00), 0x0ABC);
  EXPECT_EQ(rig.Requests(), u"W1F000ABC");
}

TEST(CarefulLine, TellsTheVersion) {
  Rig rig;
  const Identification identified = rig.careful.Identify();
  EXPECT_TRUE(identified.succeeded);
  EXPECT_EQ(identified.text, u"AB1-123.4");
  EXPECT_EQ(rig.careful.AskVersion().text, u"AB1-123.4");
  EXPECT_EQ(rig.Requests(), u"v00 v00");
  EXPECT_LT(rig.Gap_s(1), kGoesOnAtOnce_s);
}

TEST(CarefulLine, SendsTheTelegramsOfThePlainLine) {
  Rig plain;
  qint16 word = 0;
  EXPECT_TRUE(plain.controller.ReadInt(kSlot, word, u"1F00"_s));
  EXPECT_TRUE(plain.controller.WriteWord(kSlot, 0x0ABC, u"1F02"_s));
  EXPECT_TRUE(plain.controller.AskVersion(kSlot).succeeded);
  Rig rig;
  EXPECT_TRUE(rig.careful.Read(0x1F00).word);
  EXPECT_EQ(rig.careful.Write(0x1F02, 0x0ABC), QString());
  EXPECT_TRUE(rig.careful.Identify().succeeded);
  EXPECT_EQ(rig.line.sent, plain.line.sent);
  EXPECT_EQ(rig.requests_s, plain.requests_s);
}

// After a failed attempt.

struct Failure {
  const char* name;
  std::vector<sim::Chunk> chunks;  // of the reply to the request to read a word
  double known_s;                  // when it can be told that it is one
  const char* text;
};

void PrintTo(const Failure& failure, std::ostream* out) {
  *out << failure.name;
}

class Failures : public testing::TestWithParam<Failure> {};

TEST_P(Failures, AreFollowedByARestAndTwoReadingsThatAgree) {
  Rig rig;
  (void)rig.careful.Identify();  // the header is known
  rig.replies[2] = GetParam().chunks;
  EXPECT_EQ(rig.careful.Read(0x1F00, 0x04D2).word, 0x04D2);
  EXPECT_EQ(rig.Requests(), u"v00 R1F00 R1F00 R1F00");
  ExpectGap(rig.Gap_s(2), GetParam().known_s + kRest_s);
  EXPECT_LT(rig.Gap_s(3), kGoesOnAtOnce_s);
  EXPECT_EQ(rig.careful.FailedAttempts(), 1);
}

TEST_P(Failures, AreTriedThreeTimes) {
  Rig rig;
  (void)rig.careful.Identify();
  for (int number = 2; number <= 5; ++number)
    rig.replies[number] = GetParam().chunks;
  const WordReading reading = rig.careful.Read(0x1F00);
  EXPECT_FALSE(reading.word);
  EXPECT_EQ(reading.failure, QString::fromUtf8(GetParam().text));
  EXPECT_EQ(rig.Exchanges(), 4);
  EXPECT_EQ(rig.careful.FailedAttempts(), 3);
  // The next operation rests as well.
  (void)rig.careful.Write(0x1F00, 1);
  ExpectGap(rig.Gap_s(4), GetParam().known_s + kRest_s);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Failures,
    testing::Values(
        Failure{"NoReply", {}, kReplyTime_s, "ERROR: kein Empfang"},
        Failure{"HalfAReply", {{0, "10102R0"}}, kReplyTime_s, "ERROR: ungültiger Empfang:  (10102R0)."},
        Failure{"WrongSum", {{0, "10102R04D2FF\r"}}, 0, "ERROR:  Checksumme Falsch"},
        Failure{"Refusal", {{0, Reply("?05")}}, 0, "ERROR:  Code 05 Falsche Anzahl Parameter"},
        Failure{"TooShort", {{0, Reply("R4D2")}}, 0, "ERROR: unerwartete Antwort: 4D2"},
        Failure{"TooLong", {{0, Reply("R004D2")}}, 0, "ERROR: unerwartete Antwort: 004D2"},
        Failure{"NoHex", {{0, Reply("R04G2")}}, 0, "ERROR: unerwartete Antwort: 04G2"},
        Failure{"SignedHex", {{0, Reply("R-4D2")}}, 0, "ERROR: unerwartete Antwort: -4D2"},
        Failure{"OtherStation",
                {{0, sim::Sealed("10202R04D2")}},
                0,
                "ERROR: Antwort mit anderem Kopf: 10202R04D221"},
        Failure{"OtherMode",
                {{0, sim::Sealed("10103R04D2")}},
                0,
                "ERROR: Antwort mit anderem Kopf: 10103R04D221"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(CarefulLine, TheFirstGoodReplyDecidesOnTheHeader) {
  Rig rig;
  rig.replies[1] = {{0, sim::Sealed("20102vAB1-04D2")}};
  EXPECT_TRUE(rig.careful.Identify().succeeded);
  EXPECT_FALSE(rig.careful.Read(0x1F00).word);
  EXPECT_EQ(rig.Exchanges(), 4);
}

TEST(CarefulLine, AFailureIsNoHeader) {
  Rig rig;
  rig.replies[1] = {{0, "30102R04D2FF\r"}};
  EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
}

TEST(CarefulLine, RestsForTheStoredTime) {
  for (const auto& [stored_ms, rest_s] :
       {std::pair{500, 0.5}, {550, 0.55}, {3100, 3.1}, {30000, 30.0}, {499, 0.5}, {0, 0.5}, {-5, 0.5}}) {
    Rig rig;
    rig.module.Ruhezeit = static_cast<qint16>(stored_ms);
    rig.Silence(1);
    EXPECT_TRUE(rig.careful.Read(0x1F00).word);
    ExpectGap(rig.Gap_s(1), kReplyTime_s + rest_s);
  }
}

TEST(CarefulLine, EachCharacterBeginsTheRestAnew) {
  Rig rig;
  // A half reply, and something more now and then: the last of it 3.9 s after the time-out.
  rig.replies[1] = {{0, "1"}, {1900, "x"}, {1999, "y\r"}, {401, "z"}};
  EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
  ExpectGap(rig.Gap_s(1), 1.9 + 1.999 + 0.401 + kRest_s);
}

TEST(CarefulLine, ALineThatIsNeverSilentEndsTheOperation) {
  Rig rig;
  // For 25 s, which is longer than ten rests.
  rig.replies[1] = std::vector<sim::Chunk>(250, sim::Chunk{100, "#"});
  const WordReading reading = rig.careful.Read(0x1F00);
  EXPECT_FALSE(reading.word);
  EXPECT_EQ(rig.Exchanges(), 1);
  EXPECT_GE(rig.clock.passed, 10 * kRest_s);
  EXPECT_LE(rig.clock.passed, 10 * kRest_s + 1.5);
  EXPECT_FALSE(rig.line.IsOpen());
  // The next operation lets it come to rest first.
  EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
  ExpectGap(rig.Gap_s(1), 25 + kRest_s);
}

TEST(CarefulLine, TheCallerEndsTheRest) {
  Rig rig;
  int asked = 0;
  double last_s = 0;
  rig.Silence(1);
  rig.goOn = [&] {
    if (asked > 0) {
      EXPECT_LE(rig.clock.passed - last_s, 0.1 + kTolerance_s);
    }
    last_s = rig.clock.passed;
    return ++asked < 8;
  };
  const WordReading reading = rig.careful.Read(0x1F00);
  EXPECT_FALSE(reading.word);
  EXPECT_EQ(reading.failure, u"ERROR: kein Empfang");
  EXPECT_EQ(asked, 8);
  EXPECT_EQ(rig.Exchanges(), 1);
  EXPECT_FALSE(rig.line.IsOpen());
  EXPECT_NEAR(rig.clock.passed, kReplyTime_s + 0.7, 0.05);
  // It still has to rest, and the caller may still not want it.
  EXPECT_EQ(rig.careful.Write(0x1F00, 1), u"ERROR: Abbruch");
  EXPECT_FALSE(rig.careful.AskVersion().succeeded);
  EXPECT_EQ(rig.Exchanges(), 1);
}

TEST(CarefulLine, TheCallerIsNotAskedWhereNothingFails) {
  Rig rig;
  rig.goOn = [] { return false; };
  EXPECT_TRUE(rig.careful.Identify().succeeded);
  EXPECT_TRUE(rig.careful.Read(0x1F00, 1).word);
  EXPECT_EQ(rig.careful.Write(0x1F00, 1), QString());
}

// Second readings.

TEST(CarefulLine, ReadsTheUnexpectedTwice) {
  Rig rig;
  EXPECT_EQ(rig.careful.Read(0x1F00, 0x1111).word, 0x04D2);
  EXPECT_EQ(rig.Requests(), u"R1F00 R1F00");
  EXPECT_LT(rig.Gap_s(1), kGoesOnAtOnce_s);
  EXPECT_EQ(rig.careful.FailedAttempts(), 0);
}

TEST(CarefulLine, BelievesTwoReadingsThatAgreeOnly) {
  Rig rig;
  rig.replies[1] = {{0, Reply("R04D3")}};
  // 04D3 and 04D2: a rest, and then twice what is there.
  EXPECT_EQ(rig.careful.Read(0x1F00, 0x1111).word, 0x04D2);
  EXPECT_EQ(rig.Exchanges(), 4);
  ExpectGap(rig.Gap_s(2), kRest_s);
}

TEST(CarefulLine, AfterADisagreementEvenTheExpectedIsReadTwice) {
  Rig rig;
  rig.replies[1] = {{0, Reply("R04D3")}};
  rig.replies[2] = {{0, Reply("R04D4")}};
  EXPECT_EQ(rig.careful.Read(0x1F00, 0x04D2).word, 0x04D2);
  EXPECT_EQ(rig.Exchanges(), 4);
}

TEST(CarefulLine, GivesUpWhereReadingsNeverAgree) {
  Rig rig;
  rig.Silence(1);
  rig.replies[2] = {{0, Reply("R04D3")}};
  rig.replies[4] = {{0, Reply("R04D5")}};
  const WordReading reading = rig.careful.Read(0x1F00);
  EXPECT_FALSE(reading.word);
  EXPECT_EQ(reading.failure, u"ERROR: zwei verschiedene Antworten");
  EXPECT_EQ(rig.Exchanges(), 5);
}

TEST(CarefulLine, AFailedSecondReadingIsAFailedAttempt) {
  Rig rig;
  rig.Silence(2);
  EXPECT_EQ(rig.careful.Read(0x1F00, 0x1111).word, 0x04D2);
  EXPECT_EQ(rig.Exchanges(), 4);
  ExpectGap(rig.Gap_s(2), kReplyTime_s + kRest_s);
}

// Writing and identifying.

TEST(CarefulLine, WritesUpToThreeTimesAndRestsBetweenThem) {
  Rig rig;
  rig.Silence(1, 2);
  EXPECT_EQ(rig.careful.Write(0x1F00, 0x0ABC), QString());
  EXPECT_EQ(rig.Requests(), u"W1F000ABC W1F000ABC W1F000ABC");
  ExpectGap(rig.Gap_s(1), kReplyTime_s + kRest_s);
  ExpectGap(rig.Gap_s(2), kReplyTime_s + kRest_s);

  rig.Silence(4, 4);
  EXPECT_EQ(rig.careful.Write(0x1F00, 0x0ABC), u"ERROR: kein Empfang");
  EXPECT_EQ(rig.Exchanges(), 6);
}

TEST(CarefulLine, AsksForTheVersionUpToThreeTimesAtOneRate) {
  Rig rig;
  rig.Silence(1);
  rig.replies[2] = {{0, Reply("v04D2")}};  // the reply to a read
  EXPECT_EQ(rig.careful.AskVersion().text, u"AB1-123.4");
  ExpectGap(rig.Gap_s(1), kReplyTime_s + kRest_s);
  ExpectGap(rig.Gap_s(2), kRest_s);
  EXPECT_EQ(rig.host.Ports[kSlot].Settings, kSettings9600);

  rig.Silence(4, 4);
  const Identification failed = rig.careful.AskVersion();
  EXPECT_FALSE(failed.succeeded);
  EXPECT_EQ(failed.text, u"ERROR: kein Empfang");
  EXPECT_EQ(rig.Exchanges(), 6);
}

TEST(CarefulLine, AVersionHasToBeOne) {
  for (const QByteArray& payload : {QByteArray("vAB1-04D"), QByteArray("vAB1-04G2"), QByteArray("R04D2")}) {
    Rig rig;
    rig.replies[1] = rig.replies[2] = rig.replies[3] = {{0, Reply(payload)}};
    const Identification failed = rig.careful.AskVersion();
    EXPECT_FALSE(failed.succeeded);
    EXPECT_EQ(failed.text, u"ERROR: unerwartete Antwort: "_s + QString::fromLatin1(payload.mid(1)));
    EXPECT_EQ(rig.careful.FailedAttempts(), 3);
  }
}

TEST(CarefulLine, IdentifiesAtTheOtherRatesWithARestBetweenThem) {
  Rig rig({.rate = 19200});
  EXPECT_EQ(rig.careful.Identify().text, u"AB1-123.4");
  EXPECT_EQ(rig.host.Ports[kSlot].Settings, kSettings19200);
  // The request at 9600 baud reached nobody.
  EXPECT_NEAR(rig.requests_s.at(0), kReplyTime_s + kRest_s, 2 * kGoesOnAtOnce_s);
  EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
}

TEST(CarefulLine, ComesBackToTheLowRateWhereNobodyAnswers) {
  Rig rig({.rate = 4800});
  EXPECT_FALSE(rig.careful.Identify().succeeded);
  EXPECT_EQ(rig.host.Ports[kSlot].Settings, kSettings9600);
  EXPECT_EQ(rig.careful.FailedAttempts(), 3);
}

// The port.

TEST(CarefulLine, APortThatIsNotAvailableIsAFailure) {
  Rig rig;
  rig.line.openable = false;
  const WordReading reading = rig.careful.Read(0x1F00);
  EXPECT_EQ(reading.failure, u"ERROR: COM 1 nicht verfügber");
  EXPECT_EQ(rig.careful.FailedAttempts(), 3);
  EXPECT_NEAR(rig.clock.passed, 2 * kRest_s, 0.1);
}

TEST(CarefulLine, APortThatComesBackServesAgain) {
  Rig rig;
  int asked = 0;
  rig.line.openable = false;
  rig.goOn = [&] {
    if (++asked == 5) rig.line.openable = true;
    return true;
  };
  EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
  EXPECT_EQ(rig.Requests(), u"R1F00 R1F00");
}

TEST(CarefulLine, ADeviceThatIsPulledOutAndPutInServesAgain) {
  for (const int back : {3, 12}) {
    Rig rig;
    int asked = 0;
    rig.onRequest = [&](int number) {
      if (number == 1) rig.line.Unplug();
    };
    rig.goOn = [&] {
      if (++asked == back) rig.line.PlugIn();
      return true;
    };
    EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
    EXPECT_EQ(rig.Requests(), u"R1F00 R1F00 R1F00");
    EXPECT_GE(rig.Gap_s(1), kRest_s);
    EXPECT_FALSE(rig.line.IsOpen());
  }
}

TEST(CarefulLine, ADeviceThatVanishesDuringTheRestIsWaitedFor) {
  Rig rig;
  int asked = 0;
  rig.Silence(1);
  rig.goOn = [&] {
    ++asked;
    if (asked == 4) rig.line.Unplug();
    if (asked == 9) rig.line.PlugIn();
    return true;
  };
  EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2);
  EXPECT_GE(rig.Gap_s(1), kRest_s);
}

TEST(CarefulLine, AnUnpluggedDeviceThatStaysAwayEndsTheOperation) {
  Rig rig;
  rig.line.Unplug();
  EXPECT_EQ(rig.careful.Write(0x1F00, 1), u"ERROR: COM 1 nicht verfügber");
  EXPECT_LT(rig.clock.passed, 10);
}

// The clock.

TEST(CarefulLine, MidnightLosesNothingButTime) {
  for (double before_s = 0.001; before_s < 4; before_s += 0.05) {
    Rig rig;
    rig.Silence(1);
    rig.clock.now = 86400 - before_s;
    const WordReading reading = rig.careful.Read(0x1F00);
    if (reading.word) {
      EXPECT_EQ(reading.word, 0x04D2);
    } else {
      // The rest was given up; the next operation begins with another one.
      EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2) << before_s;
    }
    EXPECT_GE(rig.Gap_s(1), kRest_s) << before_s;
  }
}

// Late replies: each exchange of a small set is answered late once, by every time.

class LateReplies : public testing::TestWithParam<int> {};

TEST_P(LateReplies, MeetNobodyWhoWaits) {
  for (const sim::LineOptions& options : {sim::LineOptions{}, sim::LineOptions{0, true, true}}) {
    for (int delay_ms = 350; delay_ms <= 2000; ++delay_ms) {
      Rig rig(options);
      rig.memory.SetWord(0x1F04, 0x1234);
      rig.faults.Plan(GetParam(), {sim::FaultKind::Late, delay_ms});
      EXPECT_EQ(rig.careful.Identify().text, u"AB1-123.4") << delay_ms;
      EXPECT_EQ(rig.careful.Read(0x1F00).word, 0x04D2) << delay_ms;
      EXPECT_EQ(rig.careful.Read(0x1F02, 0xFFFF).word, 0xFFFF) << delay_ms;
      EXPECT_EQ(rig.careful.Read(0x1F04, 0xFFFF).word, 0x1234) << delay_ms;
      EXPECT_EQ(rig.careful.Write(0x1F06, 0x5678), QString()) << delay_ms;
      EXPECT_EQ(rig.careful.Read(0x1F06, 0x5678).word, 0x5678) << delay_ms;
      EXPECT_EQ(rig.careful.AskVersion().text, u"AB1-123.4") << delay_ms;
      EXPECT_LE(rig.careful.FailedAttempts(), 1) << delay_ms;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(OfExchange, LateReplies, testing::Range(1, 9));

TEST(CarefulLine, AControllerThatIsAlwaysLateIsNeverMisunderstood) {
  for (int delay_ms = 350; delay_ms <= 2000; delay_ms += 7) {
    Rig rig;
    rig.faults.Add({{sim::FaultKind::Late, delay_ms}, 1, {}});
    const WordReading first = rig.careful.Read(0x1F00);
    const WordReading second = rig.careful.Read(0x1F02, 0x04D2);
    EXPECT_EQ(first.word.value_or(0x04D2), 0x04D2) << delay_ms;
    EXPECT_EQ(second.word.value_or(0xFFFF), 0xFFFF) << delay_ms;
    EXPECT_EQ(first.word.has_value(), delay_ms < 400) << delay_ms;
  }
}

}  // namespace
}  // namespace kalivor
