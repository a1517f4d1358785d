// What a clock tells and how it sleeps, whatever the system.
#include <gtest/gtest.h>
#include <QElapsedTimer>
#include <QTime>
#include <algorithm>
#include <cmath>
#include <limits>

#include "kalivor/System.h"

namespace kalivor::test {
namespace {

using Clock = platform::native::Clock;

TEST(Clock, TellsLocalTimeOfDay) {
  const Clock clock;
  const auto now = [] { return QTime::currentTime().msecsSinceStartOfDay() / 1000.0; };
  const double before = now();
  const double told = clock.SecondsSinceMidnight();
  const double after = now();
  EXPECT_GE(told, 0);
  EXPECT_LT(told, 86400);
  // Midnight can lie between the readings, and the others know milliseconds only.
  const auto since = [](double from, double to) { return std::fmod(to - from + 86400, 86400); };
  EXPECT_LE(since(before, told), since(before, after) + 0.002);
}

TEST(Clock, ResolvesMicroseconds) {
  const Clock clock;
  // Whole multiples of 10 µs could only come from a coarser clock, not a hundred times in a row.
  int finer = 0;
  for (int i = 0; i < 100; ++i) {
    const double steps = clock.SecondsSinceMidnight() * 1e5;
    if (std::abs(steps - std::round(steps)) > 1e-3) ++finer;
  }
  EXPECT_GT(finer, 0);
}

TEST(Clock, SleepsAtLeastAsLongAsAsked) {
  Clock clock;
  for (const double seconds : {0.0001, 0.002, 0.02}) {
    QElapsedTimer timer;
    timer.start();
    clock.Sleep(seconds);
    EXPECT_GE(static_cast<double>(timer.nsecsElapsed()), seconds * 1e9);
  }
}

TEST(Clock, SleepsNoLongerThanAMillisecondMore) {
  Clock clock;
  // A machine that is busy with other programs wakes a sleeper late now and then, but not always.
  double least_s = 1;
  for (int i = 0; i < 50; ++i) {
    QElapsedTimer timer;
    timer.start();
    clock.Sleep(0.003);
    least_s = std::min(least_s, static_cast<double>(timer.nsecsElapsed()) * 1e-9);
  }
  EXPECT_LT(least_s, 0.004);
}

// Would never return if these were taken for long times.
TEST(Clock, DoesNotSleepForNothing) {
  Clock clock;
  clock.Sleep(0);
  clock.Sleep(-1);
  clock.Sleep(std::numeric_limits<double>::quiet_NaN());
  clock.Sleep(-std::numeric_limits<double>::infinity());
}

}  // namespace
}  // namespace kalivor::test
