// The computer's clock.
#include "platform/posix/SystemClock.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <gtest/gtest.h>
#include <QByteArray>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <utility>

#include "platform/posix/MonotonicTime.h"
#include "unit/posix/RepeatedSignal.h"

namespace kalivor::platform {
namespace {

class TimeZone {
 public:
  explicit TimeZone(const char* name) : before_(qgetenv("TZ")) {
    setenv("TZ", name, 1);
    tzset();
  }
  ~TimeZone() {
    if (before_.isNull()) {
      unsetenv("TZ");
    } else {
      setenv("TZ", before_.constData(), 1);
    }
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  QByteArray before_;
};

double SecondsSinceUtcMidnight() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<double>(now.tv_sec % 86400) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void ExpectOffset(const SystemClock& clock, const char* zone, int offset_s) {
  const double before = SecondsSinceUtcMidnight();
  const double local = clock.SecondsSinceMidnight();
  const double after = SecondsSinceUtcMidnight();
  EXPECT_GE(local, 0);
  EXPECT_LT(local, 86400);
  const auto since = [&](double start) { return std::fmod(local - start - offset_s + 3 * 86400.0, 86400.0); };
  // The reading lies between the two others, all taken around the same day.
  EXPECT_LE(since(before), std::fmod(after - before + 86400.0, 86400.0) + 1e-6) << zone;
}

TEST(SystemClock, TellsLocalTimeOfDay) {
  for (const auto& [zone, offset_s] :
       {std::pair("UTC0", 0), std::pair("TST-5:30", 5 * 3600 + 1800), std::pair("TST11", -11 * 3600)}) {
    const TimeZone set(zone);
    ExpectOffset(SystemClock(), zone, offset_s);
  }
}

// The hour of one second is not that of the next.
TEST(SystemClock, GoesOnFromSecondToSecond) {
  const TimeZone set("TST-5:30");
  SystemClock clock;
  for (int i = 0; i < 8; ++i) {
    ExpectOffset(clock, "TST-5:30", 5 * 3600 + 1800);
    clock.Sleep(0.15);
  }
}

TEST(SystemClock, SleepingTakesHardlyAnyProcessorTime) {
  SystemClock clock;
  rusage before{};
  getrusage(RUSAGE_THREAD, &before);
  constexpr int kSleeps = 50;
  for (int i = 0; i < kSleeps; ++i)
    clock.Sleep(0.004);
  rusage after{};
  getrusage(RUSAGE_THREAD, &after);
  const auto used_us = [](const rusage& usage) {
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1'000'000 + usage.ru_utime.tv_usec +
           usage.ru_stime.tv_usec;
  };
  // A twentieth of the time would be 10 ms.
  EXPECT_LT(used_us(after) - used_us(before), 10'000);
}

TEST(SystemClock, SignalsDoNotCutASleepShort) {
  SystemClock clock;
  const test::RepeatedSignal signal(5);
  const auto start = MonotonicNow_ns();
  clock.Sleep(0.06);
  EXPECT_GE(MonotonicNow_ns() - start, 60'000'000);
  EXPECT_GT(signal.Count(), 1);
}

TEST(SystemClock, LowersTheTimerSlack) {
  ASSERT_EQ(prctl(PR_SET_TIMERSLACK, 50000UL, 0UL, 0UL, 0UL), 0);
  const SystemClock clock;
  EXPECT_EQ(prctl(PR_GET_TIMERSLACK, 0UL, 0UL, 0UL, 0UL), 1);
}

TEST(MonotonicTime, RoundsUpAndBoundsDurations) {
  EXPECT_EQ(NanosecondsOf(0), 0);
  EXPECT_EQ(NanosecondsOf(-1), 0);
  EXPECT_EQ(NanosecondsOf(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(NanosecondsOf(1.5), 1'500'000'000);
  EXPECT_EQ(NanosecondsOf(1e-12), 1);
  EXPECT_EQ(NanosecondsOf(std::numeric_limits<double>::infinity()), 365LL * 86400 * kNanosecondsPerSecond);
  EXPECT_EQ(ToTimespec(2'000'000'007).tv_sec, 2);
  EXPECT_EQ(ToTimespec(2'000'000'007).tv_nsec, 7);
}

}  // namespace
}  // namespace kalivor::platform
