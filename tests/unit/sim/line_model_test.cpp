// When bytes arrive: pacing, echo, rates, requests in pieces.
#include "sim/LineModel.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

const QByteArray kRequest = Sealed("#0102R1F00");  // 13 characters
const QByteArray kReply = Sealed("10102R0ABC");    // 13 characters
constexpr double kCharacter9600_s = 10.0 / 9600;

struct Arrival {
  double time;
  QByteArray bytes;
};

class LineModelTest : public ::testing::Test {
 protected:
  Memory memory;
  Controller controller{memory, 1, FixedText<2>(u"WR"_s), "HZL-0078"};
  Faults faults;
  LineOptions options;
  std::unique_ptr<LineModel> model;

  void SetUp() override { memory.SetWord(0x1F00, 0x0ABC); }

  LineModel& Line() {
    if (!model) model = std::make_unique<LineModel>(controller, faults, options);
    return *model;
  }

  /// Everything that is under way, one entry for each time.
  std::vector<Arrival> Arrivals() {
    std::vector<Arrival> arrivals;
    for (std::optional<double> next; (next = Line().NextTime()) && !Line().Unplugged(*next);) {
      arrivals.push_back({*next, Line().TakeDue(*next)});
    }
    return arrivals;
  }

  QByteArray AllBytes() {
    QByteArray bytes;
    for (const Arrival& arrival : Arrivals())
      bytes += arrival.bytes;
    return bytes;
  }
};

TEST_F(LineModelTest, AnswersAtOnceWithoutPacing) {
  Line().Receive(5, kRequest, 9600);
  EXPECT_EQ(Line().NextTime(), 5);
  EXPECT_EQ(Line().TakeDue(4.999), "");
  EXPECT_EQ(Line().TakeDue(5), kReply);
  EXPECT_EQ(Line().NextTime(), std::nullopt);
}

TEST_F(LineModelTest, AcknowledgesAWriteAndDoesNotKeepIt) {
  faults.Add({{FaultKind::IgnoreWrite, 0, {}}, 1, 1});
  Line().Receive(1, kRequest, 9600);
  EXPECT_EQ(AllBytes(), kReply);
  Line().Receive(2, Sealed("#0102W1F001111"), 9600);
  EXPECT_EQ(AllBytes(), Sealed("10102W"));
  EXPECT_EQ(memory.Word(0x1F00), 0x0ABC);
  Line().Receive(3, Sealed("#0102W1F002222"), 9600);
  EXPECT_EQ(AllBytes(), Sealed("10102W"));
  EXPECT_EQ(memory.Word(0x1F00), 0x2222);
}

TEST_F(LineModelTest, AnotherControllerTakesThePlaceOfTheFirst) {
  Memory otherMemory;
  Controller other(otherMemory, 1, FixedText<2>(u"WR"_s), NextVersionPayload("HZL-0078"));
  Line().SetOther(other);
  faults.Add({{FaultKind::Swap, 0, {}, 2}, 1, {}});
  Line().Receive(1, Sealed("#0102v00"), 9600);
  EXPECT_EQ(AllBytes(), Sealed("10102vHZL-0078"));
  Line().Receive(2, Sealed("#0102v00"), 9600);
  EXPECT_EQ(AllBytes(), Sealed("10102vHZL-0079"));
  Line().Receive(3, Sealed("#0102W1F001111"), 9600);
  EXPECT_EQ(AllBytes(), Sealed("10102W"));
  EXPECT_EQ(memory.Word(0x1F00), 0x0ABC);
  EXPECT_EQ(otherMemory.Word(0x1F00), 0x1111);
}

TEST_F(LineModelTest, WithoutAnotherControllerTheFirstOneStays) {
  faults.Add({{FaultKind::Swap, 0, {}, 1}, 1, {}});
  Line().Receive(1, kRequest, 9600);
  EXPECT_EQ(AllBytes(), kReply);
}

TEST_F(LineModelTest, PacesEveryByteByTenBits) {
  options.paced = true;
  for (const int baud : {9600, 19200}) {
    const double start = 100.0 + baud;
    Line().Receive(start, kRequest, baud);
    const std::vector<Arrival> arrivals = Arrivals();
    ASSERT_EQ(arrivals.size(), 13U);
    for (std::size_t i = 0; i < arrivals.size(); ++i) {
      // 13 characters of the request, then the reply's up to this one.
      EXPECT_NEAR(arrivals[i].time, start + (14.0 + static_cast<double>(i)) * 10 / baud, 1e-9);
      EXPECT_EQ(arrivals[i].bytes, kReply.mid(static_cast<qsizetype>(i), 1));
    }
  }
}

TEST_F(LineModelTest, DoesNotDriftOverManyExchanges) {
  options.paced = true;
  double now = 0;
  for (int i = 0; i < 2000; ++i) {
    Line().Receive(now, kRequest, 9600);
    now = Arrivals().back().time;
  }
  EXPECT_NEAR(now, 2000 * 26 * kCharacter9600_s, 1e-6);
}

TEST_F(LineModelTest, CountsTheWireTimeOfARequestFromItsFirstByte) {
  options.paced = true;
  Line().Receive(1, kRequest.left(5), 9600);
  Line().Receive(1.001, kRequest.mid(5), 9600);  // while the first five are still on the wire
  EXPECT_NEAR(Line().SentUntil(), 1 + 13 * kCharacter9600_s, 1e-9);
  EXPECT_NEAR(Line().NextTime().value(), 1 + 14 * kCharacter9600_s, 1e-9);
}

TEST_F(LineModelTest, WaitsForTheEndOfARequest) {
  for (const char byte : kRequest.chopped(1))
    Line().Receive(1, QByteArrayView(&byte, 1), 9600);
  EXPECT_EQ(Line().NextTime(), std::nullopt);
  Line().Receive(1.5, "\r", 9600);
  EXPECT_EQ(AllBytes(), kReply);
}

TEST_F(LineModelTest, GivesUpARequestThatPausesTooLong) {
  Line().Receive(1, kRequest.left(5), 9600);
  Line().Receive(1 + LineModel::kQuiet_s + 0.01, kRequest.mid(5), 9600);
  EXPECT_EQ(AllBytes(), "");
}

TEST_F(LineModelTest, BeginsAnewAtEveryStartCharacter) {
  Line().Receive(1, "noise#0102R1F" + kRequest, 9600);
  EXPECT_EQ(AllBytes(), kReply);
}

TEST_F(LineModelTest, DropsGarbageWithoutEnd) {
  Line().Receive(1, '#' + QByteArray(10000, 'x') + '\r', 9600);
  EXPECT_EQ(AllBytes(), "");
  Line().Receive(1, kRequest, 9600);
  EXPECT_EQ(AllBytes(), kReply);
}

TEST_F(LineModelTest, KeepsARequestThatComesDuringAReply) {
  options.paced = true;
  Line().Receive(1, kRequest, 9600);
  QByteArray bytes = Line().TakeDue(1 + 20 * kCharacter9600_s);
  EXPECT_EQ(bytes, kReply.left(7));
  Line().Receive(1 + 20 * kCharacter9600_s, Sealed("#0102v00"), 9600);
  EXPECT_EQ(bytes + AllBytes(), kReply + Sealed("10102vHZL-0078"));
}

TEST_F(LineModelTest, SendsRepliesOneAfterTheOther) {
  options.paced = true;
  faults.Plan(1, {FaultKind::Late, 500, {}});
  Line().Receive(1, kRequest, 9600);
  Line().Receive(1.2, Sealed("#0102v00"), 9600);
  const std::vector<Arrival> arrivals = Arrivals();
  EXPECT_NEAR(arrivals.front().time, 1.5 + 14 * kCharacter9600_s, 1e-9);
  EXPECT_NEAR(arrivals.back().time, 1.5 + (13 + 13 + 17) * kCharacter9600_s, 1e-9);
  EXPECT_EQ(arrivals.size(), 13U + 17U);
}

TEST_F(LineModelTest, EchoesEveryByteWhileItArrives) {
  options.paced = true;
  options.echo = true;
  Line().Receive(1, kRequest, 9600);
  const std::vector<Arrival> arrivals = Arrivals();
  QByteArray bytes;
  for (std::size_t i = 0; i < arrivals.size(); ++i) {
    EXPECT_NEAR(arrivals[i].time, 1 + static_cast<double>(i + 1) * kCharacter9600_s, 1e-9);
    bytes += arrivals[i].bytes;
  }
  EXPECT_EQ(bytes, kRequest + kReply);
}

TEST_F(LineModelTest, EchoesInFrontOfALateReply) {
  options.echo = true;
  faults.Plan(1, {FaultKind::Late, 500, {}});
  Line().Receive(1, kRequest, 9600);
  Line().Receive(1.2, Sealed("#0202v00"), 9600);
  EXPECT_EQ(Line().TakeDue(1.2), kRequest + Sealed("#0202v00"));
  EXPECT_EQ(Line().NextTime(), 1.5);
  EXPECT_EQ(AllBytes(), kReply);
}

TEST_F(LineModelTest, EchoesWhatNobodyAnswers) {
  options.echo = true;
  Line().Receive(1, "abc", 9600);
  EXPECT_EQ(AllBytes(), "abc");
}

TEST_F(LineModelTest, UnderstandsItsRateOnly) {
  options.rate = 19200;
  Line().Receive(1, kRequest, 9600);
  EXPECT_EQ(AllBytes(), "");
  EXPECT_EQ(faults.Exchanges(), 0);
  Line().Receive(2, kRequest, 19200);
  EXPECT_EQ(AllBytes(), kReply);
}

TEST_F(LineModelTest, DoesNotJoinPiecesOfDifferentRates) {
  options.rate = 19200;
  Line().Receive(1, kRequest.left(5), 19200);
  Line().Receive(1, kRequest.mid(5, 3), 9600);
  Line().Receive(1, kRequest.mid(5), 19200);
  EXPECT_EQ(AllBytes(), "");
}

TEST_F(LineModelTest, UnderstandsEveryRateWhereNoneIsGiven) {
  Line().Receive(1, kRequest, 38400);
  EXPECT_EQ(AllBytes(), kReply);
}

TEST_F(LineModelTest, SplitsAReplyByAPause) {
  options.paced = true;
  faults.Plan(1, {FaultKind::Split, 0, {}});
  Line().Receive(1, kRequest, 9600);
  const std::vector<Arrival> arrivals = Arrivals();
  int pauses = 0;
  for (std::size_t i = 1; i < arrivals.size(); ++i) {
    const double gap = arrivals[i].time - arrivals[i - 1].time;
    if (gap < 2 * kCharacter9600_s) continue;
    ++pauses;
    EXPECT_NEAR(gap, 0.15 + kCharacter9600_s, 1e-9);
  }
  EXPECT_EQ(pauses, 1);
}

TEST_F(LineModelTest, VanishesWhenTheRequestHasArrived) {
  options.paced = true;
  faults.Plan(1, {FaultKind::Unplug, 0, {}});
  Line().Receive(1, kRequest, 9600);
  const double end = 1 + 13 * kCharacter9600_s;
  EXPECT_NEAR(Line().NextTime().value(), end, 1e-9);
  EXPECT_FALSE(Line().Unplugged(end - 1e-6));
  EXPECT_TRUE(Line().Unplugged(end + 1e-6));
  Line().PlugIn();
  EXPECT_FALSE(Line().Unplugged(end + 1e-6));
  EXPECT_EQ(Line().NextTime(), std::nullopt);
}

TEST_F(LineModelTest, LetsTheCallerChangeAResponse) {
  Line().OnResponse = [](const QByteArray& request, Response& response) {
    EXPECT_EQ(request, kRequest);
    response.chunks[0].bytes = "changed";
  };
  Line().Receive(1, kRequest, 9600);
  EXPECT_EQ(AllBytes(), "changed");
}

TEST_F(LineModelTest, ControllersBesideAnswerWhatIsForThem) {
  Memory otherMemory;
  otherMemory.SetWord(0x1F00, 0x0DEF);
  Controller other(otherMemory, 2, FixedText<2>(u"WR"_s), "HZL-0079");
  Line().AddBeside(other);
  Line().Receive(1, kRequest, 9600);
  EXPECT_EQ(AllBytes(), kReply);
  Line().Receive(2, Sealed("#0202R1F00"), 9600);
  EXPECT_EQ(AllBytes(), Sealed("10202R0DEF"));
  Line().Receive(3, Sealed("#0302R1F00"), 9600);
  EXPECT_EQ(AllBytes(), "");
}

TEST_F(LineModelTest, AForgottenWriteIsThatOfTheControllerBeside) {
  Memory otherMemory;
  otherMemory.SetWord(0x1F00, 1);
  Controller other(otherMemory, 2, FixedText<2>(u"WR"_s), "HZL-0079");
  Line().AddBeside(other);
  faults.Plan(1, {FaultKind::IgnoreWrite, 0, {}});
  Line().Receive(1, Sealed("#0202W1F000002"), 9600);
  EXPECT_EQ(AllBytes(), Sealed("10202W"));
  EXPECT_EQ(otherMemory.Word(0x1F00), 1);
}

TEST_F(LineModelTest, TracesRequestsRepliesFaultsAndSilence) {
  options.paced = true;
  std::vector<TraceEvent> events;
  Line().OnTrace = [&events](const TraceEvent& event) { events.push_back(event); };
  faults.Plan(2, {FaultKind::Unplug, 0, {}});
  const QByteArray foreign = Sealed("#0202v00");
  Line().Receive(1, kRequest + foreign + kRequest, 9600);

  using Kind = TraceEvent::Kind;
  std::vector<Kind> kinds;
  kinds.reserve(events.size());
  for (const TraceEvent& event : events)
    kinds.push_back(event.kind);
  EXPECT_EQ(kinds, (std::vector<Kind>{Kind::Request, Kind::Reply, Kind::Request, Kind::NoReply, Kind::Request,
                                      Kind::Fault, Kind::Unplug}));
  EXPECT_EQ(events[0].bytes, kRequest);
  EXPECT_NEAR(events[0].time, 1 + 13 * kCharacter9600_s, 1e-9);
  EXPECT_EQ(events[1].bytes, kReply);
  EXPECT_NEAR(events[1].time, 1 + 26 * kCharacter9600_s, 1e-9);
  EXPECT_EQ(events[2].bytes, foreign);
  EXPECT_EQ(events[5].fault, u"unplug"_s);
}

TEST_F(LineModelTest, TracesAReplyInOnePieceAndASilentOneAsNone) {
  std::vector<TraceEvent> events;
  Line().OnTrace = [&events](const TraceEvent& event) { events.push_back(event); };
  faults.Plan(1, {FaultKind::Split, 0, {}});
  faults.Plan(2, {FaultKind::Silent, 0, {}});
  Line().Receive(1, kRequest, 9600);
  Line().Receive(2, kRequest, 9600);
  using Kind = TraceEvent::Kind;
  ASSERT_EQ(events.size(), 6U);
  EXPECT_EQ(events[2].kind, Kind::Reply);
  EXPECT_EQ(events[2].bytes, kReply);
  EXPECT_NEAR(events[2].time, 1 + kSplitPause_ms / 1000.0, 1e-9);
  EXPECT_EQ(events[5].kind, Kind::NoReply);
}

}  // namespace
}  // namespace kalivor::sim
