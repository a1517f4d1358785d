// What is kept of the exchanges, and how they are counted.
#include "comm/ExchangeLog.h"

#include <gtest/gtest.h>

#include "comm/COM_A.h"
#include "unit/comm/Channel.h"

using namespace Qt::StringLiterals;
using kalivor::test::Answer;
using kalivor::test::Channel;

namespace kalivor {
namespace {

const char* const kRead = "#0102R1F000F\r";

class Exchanges : public testing::Test {
 protected:
  Exchanges() {
    channel.module.Versionen.resize(2);
    channel.module.Versionen[1].Kennung = u"WR"_s;
    channel.module.VersionList.Add(u"AB1-123.4"_s);
    channel.module.VersionList.Select(0);
    log.NameVersionsOf(channel.module);
  }

  void Read() {
    (void)transport.Transact(kSlot, u"R1F00"_s, true);
    log.Settle();
  }
  [[nodiscard]] const Exchange& Newest() const { return log.Numbered(log.Last()); }

  Channel channel;
  test::FakeSerialControl& line = channel.line;
  ExchangeLog& log = channel.host.Exchanges;
  COM_T transport{channel.host};
};

TEST_F(Exchanges, NothingIsKeptAtFirst) {
  log.Settle();
  EXPECT_EQ(log.Count(), 0);
  EXPECT_GT(log.First(), log.Last());
  EXPECT_EQ(log.SinceStart(), LineQuality());
}

TEST_F(Exchanges, AGoodOneIsKeptWithItsCharactersAndTimes) {
  line.Expect(kRead).Echo(10).Reply(Answer("04D2"), 20);
  const double begin_s = channel.clock.SecondsSinceMidnight();
  Read();
  ASSERT_EQ(log.Count(), 1);
  const Exchange& kept = log.At(0);
  EXPECT_EQ(kept.number, 1);
  EXPECT_EQ(kept.request.View(), kRead);
  EXPECT_EQ(kept.received.View(), kRead + Answer("04D2"));
  EXPECT_NEAR(kept.at_s, begin_s, 1e-6);
  EXPECT_NEAR(kept.answer_s, 0.030, 1e-6);
  EXPECT_EQ(kept.end, ExchangeEnd::Good);
  EXPECT_EQ(kept.attempt, 1);
  EXPECT_EQ(kept.portNumber, 1);
  EXPECT_EQ(kept.address, 1);
  EXPECT_EQ(kept.settings, u"9600,o,7,1");
  EXPECT_EQ(kept.version, u"AB1-123.4");
  EXPECT_EQ(kept.failure, u"");
}

TEST_F(Exchanges, EveryEndHasItsKind) {
  const struct {
    QByteArray received;
    ExchangeEnd end;
    QString failure;
  } rows[] = {
      {"", ExchangeEnd::Silent, u"ERROR: kein Empfang"_s},
      {kRead, ExchangeEnd::EchoOnly, u"ERROR: kein Empfang"_s},
      {"10102R04D221\r", ExchangeEnd::Damaged, u"ERROR:  Checksumme Falsch"_s},
      {"10102R04", ExchangeEnd::Damaged, u"ERROR: ungültiger Empfang:  (10102R04)."_s},
      {"10102?0700\r", ExchangeEnd::Refused, u"ERROR:  Code 07 Falsche Datensatznummer"_s},
      {QByteArray(kRead) + "10102?0700\r", ExchangeEnd::Refused,
       u"ERROR:  Code 07 Falsche Datensatznummer"_s},
  };
  for (const auto& row : rows) {
    auto& exchange = line.Expect(kRead);
    if (!row.received.isEmpty()) exchange.Reply(row.received);
    Read();
    EXPECT_EQ(Newest().end, row.end) << row.received.constData();
    EXPECT_EQ(Newest().failure, row.failure);
    EXPECT_EQ(Newest().received.View(), row.received);
  }
  line.absent = true;
  Read();
  EXPECT_EQ(Newest().end, ExchangeEnd::NoPort);
  EXPECT_EQ(Newest().failure, u"ERROR: COM 1 nicht verfügber");
}

TEST_F(Exchanges, AttemptsAreNumberedAndCounted) {
  line.Expect(kRead).Silence();
  line.Expect(kRead).Reply("10102R04D221\r");
  line.Expect(kRead).Reply(Answer("04D2"), 95);
  (void)transport.SendWithRetry(kSlot, u"R1F00"_s, true, 3);
  line.Expect(kRead).Reply(Answer("04D2"), 20);
  Read();
  std::vector<int> attempts;
  for (int i = 0; i < log.Count(); ++i)
    attempts.push_back(log.At(i).attempt);
  EXPECT_EQ(attempts, (std::vector<int>{1, 2, 3, 1}));
  const LineQuality& quality = log.SinceStart();
  EXPECT_EQ(quality.good, 1);
  EXPECT_EQ(quality.repeated, 1);
  EXPECT_EQ(quality.silent, 1);
  EXPECT_EQ(quality.damaged, 1);
  EXPECT_EQ(quality.All(), 4);
  EXPECT_EQ(quality.answers[2], 1);
  EXPECT_EQ(quality.answers[9], 1);
  EXPECT_NEAR(quality.slowest_s, 0.095, 1e-6);
}

TEST_F(Exchanges, ATransferIsCountedFromItsFirstExchange) {
  line.Expect(kRead).Silence();
  Read();
  log.BeginTransfer();
  EXPECT_EQ(log.OfTransfer().All(), 1) << "as long as nothing comes, the last transfer is shown";
  EXPECT_EQ(log.TransferFirst(), 1);
  line.Expect(kRead).Reply(Answer("04D2"));
  Read();
  EXPECT_EQ(log.OfTransfer().All(), 1);
  EXPECT_EQ(log.OfTransfer().good, 1);
  EXPECT_EQ(log.TransferFirst(), 2);
  EXPECT_EQ(log.SinceStart().All(), 2);
}

TEST_F(Exchanges, AReplyOfAnotherLengthIsNoGoodOne) {
  COM_A controller(channel.module, channel.module, channel.host, [](const QString&) {});
  line.Expect(kRead).Reply(Answer("04D2F"));
  qint16 value = 0;
  EXPECT_FALSE(controller.ReadInt(kSlot, value, u"1F00"_s));
  log.Settle();
  EXPECT_EQ(Newest().end, ExchangeEnd::Damaged);
  EXPECT_EQ(Newest().failure, u"ERROR: unerwartete Antwort: 04D2F");
}

TEST_F(Exchanges, WithoutAnExchangeNothingIsJudged) {
  log.Judge(u"ERROR: kein Empfang"_s);
  EXPECT_EQ(log.Count(), 0);
  line.Expect(kRead).Reply(Answer("04D2"));
  Read();
  log.Judge(u"ERROR: kein Empfang"_s);
  EXPECT_EQ(Newest().end, ExchangeEnd::Good) << "what has been counted does not change any more";
}

TEST_F(Exchanges, LineErrorsAreKept) {
  line.Expect(kRead).Event(platform::kCommEventParity, 10);
  Read();
  EXPECT_EQ(Newest().lineError, platform::kCommEventParity);
  line.Expect(kRead).Reply(Answer("04D2"));
  Read();
  EXPECT_EQ(Newest().lineError, 0);
}

TEST_F(Exchanges, AnEchoAloneIsCountedApart) {
  line.Expect(kRead).Reply(kRead);
  Read();
  EXPECT_EQ(log.SinceStart().echoOnly, 1);
  EXPECT_EQ(log.SinceStart().silent, 0);
  EXPECT_EQ(log.SinceStart().Failed(), 1);
}

TEST_F(Exchanges, EachIsToldOnceWhenItIsSettled) {
  std::vector<qint64> told;
  log.OnSettled = [&told](const Exchange& exchange) { told.push_back(exchange.number); };
  line.Expect(kRead).Reply(Answer("04D2"));
  line.Expect(kRead).Reply(Answer("04D2"));
  (void)transport.Transact(kSlot, u"R1F00"_s, true);
  EXPECT_TRUE(told.empty());
  (void)transport.Transact(kSlot, u"R1F00"_s, true);
  EXPECT_EQ(told, (std::vector<qint64>{1}));
  log.Settle();
  log.Settle();
  EXPECT_EQ(told, (std::vector<qint64>{1, 2}));
}

TEST_F(Exchanges, TheOldestMakeRoom) {
  const PortRecord port{kFalse, 1, kControllerProtocol, 1, u"9600,o,7,1"_s};
  const int all = ExchangeLog::kKept + 3;
  for (int i = 1; i <= all; ++i) {
    EXPECT_EQ(log.Count(), std::min(i - 1, ExchangeLog::kKept));
    log.Begin(port, u"#0102R1F000F\r");
    log.End(u"10102R04D220\r"_s, true, {});
    log.Settle();
  }
  EXPECT_EQ(log.Count(), ExchangeLog::kKept);
  EXPECT_EQ(log.At(0).number, 4);
  EXPECT_EQ(log.At(ExchangeLog::kKept - 1).number, all);
  EXPECT_EQ(log.SinceStart().good, all);
}

TEST_F(Exchanges, WhatIsTooLongIsCountedOnly) {
  line.Expect(kRead).Reply(QByteArray(500, 'x'));
  Read();
  EXPECT_EQ(Newest().received.count, 500);
  EXPECT_EQ(Newest().received.View(), QByteArray(160, 'x'));
  EXPECT_FALSE(Newest().received.Whole());
}

}  // namespace
}  // namespace kalivor
