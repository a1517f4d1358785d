// Keeping exchanges asks for no memory: every request to the heap of the process is counted.
#include <gtest/gtest.h>

#include "Allocations.h"
#include "comm/COM_T_frm.h"
#include "comm/ExchangeLog.h"
#include "fakes/FakeClock.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

class ExchangeHeap : public testing::Test {
 protected:
  ExchangeHeap() {
    versions.VersionList.Add(u"AB1-123.4"_s);
    versions.VersionList.Select(0);
    log.NameVersionsOf(versions);
  }

  /// Requests to the heap while so many exchanges with this result are kept.
  long Requests(int count, const QString& result) {
    const long before = bench::HeapRequests();
    for (int i = 0; i < count; ++i) {
      log.Begin(port, request);
      log.Received(reply);
      log.End(result, true, none);
      log.Judge(result);
      clock.Advance(0.03);
    }
    log.Settle();
    return bench::HeapRequests() - before;
  }

  test::FakeClock clock;
  VersionTable versions;
  ExchangeLog log{clock};
  const PortRecord port{kFalse, 1, kControllerProtocol, 1, u"9600,o,7,1"_s};
  const QString request = u"#0102R1F000F\r"_s;
  const QByteArray reply = "10102R04D220\r";
  const QString none;
};

TEST_F(ExchangeHeap, RequestsAreCounted) {
  const long before = bench::HeapRequests();
  const QString made(100, u'x');
  EXPECT_GT(bench::HeapRequests(), before) << made.size();
}

TEST_F(ExchangeHeap, GoodExchangesAskForNothing) {
  EXPECT_EQ(Requests(2 * ExchangeLog::kKept + 1, u"04D2"_s), 0)
      << "neither while the log fills nor when it is full";
  EXPECT_EQ(log.SinceStart().good, 2 * ExchangeLog::kKept + 1);
}

TEST_F(ExchangeHeap, FailedOnesShareTheTextThatThereIs) {
  EXPECT_EQ(Requests(ExchangeLog::kKept + 1, u"ERROR:  Checksumme Falsch"_s), 0);
  EXPECT_EQ(log.SinceStart().damaged, ExchangeLog::kKept + 1);
}

}  // namespace
}  // namespace kalivor
