// Faults: their notation, what each does to a reply, and that a seed repeats them.
#include "sim/Faults.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <set>

#include "fakes/QtPrinters.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

const QByteArray kRequest = Sealed("#0102R1F00");
const QByteArray kReply = Sealed("10102R0ABC");
constexpr int kRounds = 500;

const QStringList& AllFaults() {
  static const QStringList names = {u"silent"_s,       u"late:350"_s,     u"lost-byte"_s, u"doubled-byte"_s,
                                    u"flipped-bit"_s,  u"bad-checksum"_s, u"split"_s,     u"noise"_s,
                                    u"error-04"_s,     u"wrong-length"_s, u"echo-only"_s, u"unplug"_s,
                                    u"foreign-reply"_s};
  return names;
}

Faults With(const QString& fault, quint32 seed = 1) {
  Faults faults(seed);
  faults.Add(ParseFault(fault).value());
  return faults;
}

/// The bytes of a response that is one chunk without pause.
QByteArray BytesOf(const Response& response) {
  EXPECT_EQ(response.chunks.size(), 1U);
  EXPECT_FALSE(response.unplug);
  if (response.chunks.empty()) return {};
  EXPECT_EQ(response.chunks[0].pause_ms, 0);
  return response.chunks[0].bytes;
}

/// The distinct bytes that a fault makes of kReply in many exchanges.
std::set<QByteArray> Outcomes(const QString& fault) {
  Faults faults = With(fault);
  std::set<QByteArray> outcomes;
  for (int i = 0; i < kRounds; ++i)
    outcomes.insert(BytesOf(faults.Apply(kRequest, kReply, false)));
  return outcomes;
}

bool HasRightChecksum(const QByteArray& reply) {
  return Sealed(reply.chopped(kTelegramTail)) == reply;
}

TEST(ParseFault, ReadsKindRateAndCount) {
  EXPECT_EQ(ParseFault(u"silent"_s), (FaultRule{{FaultKind::Silent, 0, {}}, 1, {}}));
  EXPECT_EQ(ParseFault(u"lost-byte:0.25"_s), (FaultRule{{FaultKind::LostByte, 0, {}}, 0.25, {}}));
  EXPECT_EQ(ParseFault(u"unplug:1:3"_s), (FaultRule{{FaultKind::Unplug, 0, {}}, 1, 3}));
  EXPECT_EQ(ParseFault(u"late:350"_s), (FaultRule{{FaultKind::Late, 350, {}}, 1, {}}));
  EXPECT_EQ(ParseFault(u"late:350:0.5:2"_s), (FaultRule{{FaultKind::Late, 350, {}}, 0.5, 2}));
  EXPECT_EQ(ParseFault(u"ignore-write:0.5:2"_s), (FaultRule{{FaultKind::IgnoreWrite, 0, {}}, 0.5, 2}));
  EXPECT_EQ(ParseFault(u"swap:7"_s), (FaultRule{{FaultKind::Swap, 0, {}, 7}, 1, {}}));
  EXPECT_EQ(ParseFault(u"error-07:0.5"_s), (FaultRule{{FaultKind::Error, 0, "07"}, 0.5, {}}));
}

TEST(ParseFault, RefusesEverythingElse) {
  EXPECT_EQ(ParseFault(u"swap:2147483648"_s), std::nullopt);
  for (const QString& text : {u"swap"_s,        u"swap:"_s,         u"swap:0"_s,     u"swap:x"_s,
                              u"swap:1:1"_s,    u"ignored-write"_s, u""_s,           u"loud"_s,
                              u"Silent"_s,      u"late"_s,          u"late:"_s,      u"late:x"_s,
                              u"late:-1"_s,     u"late:9999999"_s,  u"silent:"_s,    u"silent:1.5"_s,
                              u"silent:-0.1"_s, u"silent:nan"_s,    u"silent:0,5"_s, u"silent:1:0"_s,
                              u"silent:1:x"_s,  u"silent:1:1:1"_s,  u"error-"_s,     u"error-4"_s,
                              u"error-044"_s,   u"error- 4"_s,      u"error-ä4"_s,   u"error"_s}) {
    EXPECT_EQ(ParseFault(text), std::nullopt) << text.toStdString();
  }
}

TEST(ParseFault, NamesEveryKindAsItIsWritten) {
  for (const QString& name : AllFaults() + QStringList{u"ignore-write"_s, u"swap:7"_s}) {
    EXPECT_EQ(FaultName(ParseFault(name)->fault), name.section(u':', 0, 0));
  }
}

TEST(Faults, LeaveTheReplyAloneWithoutRules) {
  Faults faults;
  EXPECT_EQ(faults.Apply(kRequest, kReply, true), (Response{{{0, kReply}}, false, {}}));
}

TEST(Faults, SilentSendsNothing) {
  const Response response = With(u"silent"_s).Apply(kRequest, kReply, false);
  EXPECT_TRUE(response.chunks.empty());
  EXPECT_FALSE(response.unplug);
  EXPECT_EQ(response.fault->kind, FaultKind::Silent);
}

TEST(Faults, LateSendsTheReplyAfterThePause) {
  EXPECT_EQ(With(u"late:350"_s).Apply(kRequest, kReply, false).chunks, (std::vector<Chunk>{{350, kReply}}));
}

TEST(Faults, LostByteRemovesOneByteAnywhere) {
  std::set<QByteArray> expected;
  for (int i = 0; i < kReply.size(); ++i)
    expected.insert(QByteArray(kReply).remove(i, 1));
  EXPECT_EQ(Outcomes(u"lost-byte"_s), expected);
}

TEST(Faults, DoubledByteRepeatsOneByteAnywhere) {
  std::set<QByteArray> expected;
  for (int i = 0; i < kReply.size(); ++i)
    expected.insert(QByteArray(kReply).insert(i, kReply.at(i)));
  EXPECT_EQ(Outcomes(u"doubled-byte"_s), expected);
}

TEST(Faults, FlippedBitInvertsOneOfTheSevenDataBitsOfOneByte) {
  std::set<QByteArray> expected;
  for (int i = 0; i < kReply.size(); ++i) {
    for (int bit = 0; bit < 7; ++bit) {
      QByteArray flipped = kReply;
      flipped[i] = static_cast<char>(flipped.at(i) ^ (1 << bit));
      expected.insert(flipped);
    }
  }
  std::set<QByteArray> outcomes;
  Faults faults = With(u"flipped-bit"_s);
  for (int i = 0; i < 4 * kRounds; ++i)
    outcomes.insert(BytesOf(faults.Apply(kRequest, kReply, false)));
  EXPECT_EQ(outcomes, expected);
}

TEST(Faults, BadChecksumChangesNothingButTheChecksum) {
  for (const QByteArray& reply : Outcomes(u"bad-checksum"_s)) {
    EXPECT_EQ(reply.size(), kReply.size());
    EXPECT_TRUE(reply.startsWith(kReply.chopped(kTelegramTail)));
    EXPECT_FALSE(HasRightChecksum(reply));
    EXPECT_EQ(reply.back(), '\r');
  }
}

TEST(Faults, SplitPausesInsideTheReplyForLessThanTheTimeOut) {
  Faults faults = With(u"split"_s);
  std::set<qsizetype> cuts;
  for (int i = 0; i < kRounds; ++i) {
    const Response response = faults.Apply(kRequest, kReply, false);
    ASSERT_EQ(response.chunks.size(), 2U);
    EXPECT_EQ(response.chunks[0].pause_ms, 0);
    EXPECT_EQ(response.chunks[1].pause_ms, kSplitPause_ms);
    EXPECT_EQ(response.chunks[0].bytes + response.chunks[1].bytes, kReply);
    cuts.insert(response.chunks[0].bytes.size());
  }
  EXPECT_EQ(static_cast<qsizetype>(cuts.size()), kReply.size() - 1);
  EXPECT_EQ(*cuts.begin(), 1);
  EXPECT_LT(kSplitPause_ms, 400);
}

TEST(Faults, NoisePutsPrintableBytesInFront) {
  std::set<qsizetype> lengths;
  for (const QByteArray& bytes : Outcomes(u"noise"_s)) {
    ASSERT_TRUE(bytes.endsWith(kReply));
    const QByteArray noise = bytes.chopped(kReply.size());
    lengths.insert(noise.size());
    for (const char byte : noise)
      EXPECT_TRUE(byte >= ' ' && byte <= '~');
  }
  EXPECT_EQ(lengths, (std::set<qsizetype>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Faults, ErrorSendsAnErrorReply) {
  EXPECT_EQ(BytesOf(With(u"error-07"_s).Apply(kRequest, kReply, false)), Sealed("10102?07"));
  EXPECT_EQ(BytesOf(With(u"error-XY"_s).Apply(kRequest, kReply, false)), Sealed("10102?XY"));
}

TEST(Faults, WrongLengthHasAnotherPayloadLengthAndTheRightChecksum) {
  std::set<qsizetype> changes;
  for (const QByteArray& reply : Outcomes(u"wrong-length"_s)) {
    EXPECT_TRUE(HasRightChecksum(reply));
    EXPECT_TRUE(reply.startsWith("10102R0A"));
    changes.insert(reply.size() - kReply.size());
  }
  EXPECT_EQ(changes, (std::set<qsizetype>{-2, -1, 1, 2}));
}

TEST(Faults, WrongLengthOfAReplyWithoutPayloadIsLonger) {
  Faults faults = With(u"wrong-length"_s);
  for (int i = 0; i < 50; ++i) {
    const QByteArray reply = BytesOf(faults.Apply(kRequest, Sealed("10102W"), false));
    EXPECT_TRUE(reply.startsWith("10102W"));
    EXPECT_GT(reply.size(), Sealed("10102W").size());
    EXPECT_TRUE(HasRightChecksum(reply));
  }
}

TEST(Faults, EchoOnlySendsTheRequestBackUnlessTheLineDoesSoAnyway) {
  EXPECT_EQ(BytesOf(With(u"echo-only"_s).Apply(kRequest, kReply, false)), kRequest);
  EXPECT_TRUE(With(u"echo-only"_s).Apply(kRequest, kReply, true).chunks.empty());
}

TEST(Faults, UnplugEndsTheLineWithoutAReply) {
  const Response response = With(u"unplug"_s).Apply(kRequest, kReply, false);
  EXPECT_TRUE(response.chunks.empty());
  EXPECT_TRUE(response.unplug);
}

TEST(Faults, ForeignReplyIsIntactAndComesFromElsewhere) {
  const QByteArray before = Sealed("10102R5555");
  Faults faults = With(u"foreign-reply"_s);
  int ofTheExchangeBefore = 0;
  int ofAnotherStation = 0;
  for (int i = 0; i < kRounds; ++i) {
    (void)faults.Apply(kRequest, before, false);
    const QByteArray reply = BytesOf(faults.Apply(kRequest, kReply, false));
    EXPECT_NE(reply, kReply);
    EXPECT_TRUE(HasRightChecksum(reply));
    EXPECT_EQ(reply.size(), kReply.size());
    EXPECT_EQ(reply.at(5), 'R');
    ofTheExchangeBefore += reply == before ? 1 : 0;
    ofAnotherStation += reply.mid(1, 2) != "01" ? 1 : 0;
  }
  EXPECT_EQ(ofTheExchangeBefore + ofAnotherStation, kRounds);
  EXPECT_GT(ofTheExchangeBefore, kRounds / 4);
  EXPECT_GT(ofAnotherStation, kRounds / 4);
}

TEST(Faults, IgnoreWriteStrikesAcknowledgedWritesAlone) {
  Faults faults = With(u"ignore-write:1:1"_s);
  for (const QByteArray& other : {kReply, Sealed("10102vHZL-0078"), Sealed("10102?05")}) {
    EXPECT_EQ(faults.Apply(kRequest, other, false), (Response{{{0, other}}, false, {}}));
  }
  const QByteArray acknowledged = Sealed("10102W");
  const Response response = faults.Apply(Sealed("#0102W1F000001"), acknowledged, false);
  EXPECT_TRUE(response.ignoresWrite);
  EXPECT_EQ(BytesOf(response), acknowledged);
  EXPECT_FALSE(faults.Apply(Sealed("#0102W1F000001"), acknowledged, false).ignoresWrite);
}

TEST(Faults, SwapBeginsAtItsExchangeAndLastsAndLeavesEveryReply) {
  Faults faults = With(u"swap:3"_s);
  faults.Add(*ParseFault(u"swap:5"_s));
  faults.Add(*ParseFault(u"late:7:1:1"_s));
  for (int number = 1; number <= 6; ++number) {
    EXPECT_EQ(faults.Swapped(), number >= 3);
    const Response response = faults.Apply(kRequest, kReply, false);
    EXPECT_EQ(response.chunks, (std::vector<Chunk>{{number == 1 ? 7 : 0, kReply}}));
    if (number != 1) {
      EXPECT_EQ(response.fault.has_value(), number == 3);
    }
  }
}

TEST(Faults, NobodyIsSwappedWithoutBeingAskedFor) {
  Faults faults = With(u"silent"_s);
  EXPECT_FALSE(faults.Swapped());
}

TEST(Faults, StrikeAtTheirRate) {
  Faults never = With(u"silent:0"_s);
  Faults sometimes = With(u"silent:0.25"_s);
  int struck = 0;
  for (int i = 0; i < 4000; ++i) {
    EXPECT_FALSE(never.Apply(kRequest, kReply, false).fault);
    struck += sometimes.Apply(kRequest, kReply, false).fault ? 1 : 0;
  }
  // Four standard deviations around 1000; the seed is fixed.
  EXPECT_NEAR(struck, 1000, 110);
}

TEST(Faults, StrikeAtMostAsOftenAsTheirCount) {
  Faults faults = With(u"silent:1:2"_s);
  EXPECT_TRUE(faults.Apply(kRequest, kReply, false).fault);
  EXPECT_TRUE(faults.Apply(kRequest, kReply, false).fault);
  EXPECT_FALSE(faults.Apply(kRequest, kReply, false).fault);
}

TEST(Faults, TakeTheFirstRuleThatStrikes) {
  Faults faults;
  faults.Add(*ParseFault(u"silent:1:1"_s));
  faults.Add(*ParseFault(u"error-04"_s));
  EXPECT_EQ(faults.Apply(kRequest, kReply, false).fault->kind, FaultKind::Silent);
  EXPECT_EQ(faults.Apply(kRequest, kReply, false).fault->kind, FaultKind::Error);
}

TEST(Faults, StrikeAtPlannedExchanges) {
  Faults faults;
  faults.Plan(2, {FaultKind::Late, 500, {}});
  EXPECT_FALSE(faults.Apply(kRequest, kReply, false).fault);
  EXPECT_EQ(faults.Apply(kRequest, kReply, false).chunks, (std::vector<Chunk>{{500, kReply}}));
  EXPECT_FALSE(faults.Apply(kRequest, kReply, false).fault);
  EXPECT_EQ(faults.Exchanges(), 3);
}

class EveryFault : public ::testing::TestWithParam<QString> {
 protected:
  static std::vector<Response> Responses(quint32 seed) {
    Faults faults = With(GetParam() + u":0.5"_s, seed);
    std::vector<Response> responses;
    for (unsigned i = 0; i < 200; ++i) {
      responses.push_back(faults.Apply(kRequest, Sealed("10102R" + Hex(i * 77, 4)), i % 2 == 0));
    }
    return responses;
  }
};

TEST_P(EveryFault, RepeatsWithTheSameSeedOnly) {
  EXPECT_EQ(Responses(7), Responses(7));
  EXPECT_NE(Responses(7), Responses(8));
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryFault, ::testing::ValuesIn(AllFaults()), [](const auto& kind) {
  std::string name;
  for (const QChar c : kind.param) {
    if (c.isLetterOrNumber()) name += static_cast<char>(c.unicode());
  }
  return name;
});

// The generator is part of what a seed promises: these bytes must not change from one system to another.
TEST(Faults, AreTheSameOnEverySystem) {
  Faults faults = With(u"lost-byte"_s, 42);
  std::vector<qsizetype> lost;
  for (int i = 0; i < 6; ++i) {
    const QByteArray bytes = BytesOf(faults.Apply(kRequest, "abcdefghijklm\r", false));
    qsizetype at = 0;
    while (at < bytes.size() && bytes.at(at) == "abcdefghijklm\r"[at])
      ++at;
    lost.push_back(at);
  }
  EXPECT_EQ(lost, (std::vector<qsizetype>{11, 2, 10, 8, 6, 1}));
}

}  // namespace
}  // namespace kalivor::sim
