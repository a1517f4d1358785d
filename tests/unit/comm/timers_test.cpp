// Soft timers over the time of day.
#include <gtest/gtest.h>

#include "comm/TH.h"
#include "fakes/FakeClock.h"
#include "fakes/ThrownKind.h"

using kalivor::test::FakeClock;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

TEST(Timers, AreExpiredBeforeTheirFirstStart) {
  FakeClock clock;
  const TH timers(clock);
  for (int number = 0; number <= 5; ++number) {
    EXPECT_TRUE(timers.TimerExpired(number)) << number;
    EXPECT_EQ(timers.Remaining(number), 0) << number;
  }
}

TEST(Timers, ExpireWhenTheirDurationIsOver) {
  FakeClock clock;
  TH timers(clock);
  clock.now = 10.0;
  timers.StartTimer(2, 20);
  EXPECT_FALSE(timers.TimerExpired(2));
  clock.now = 10.015;
  EXPECT_FALSE(timers.TimerExpired(2));
  EXPECT_NEAR(timers.Remaining(2), 0.005, 1e-9);
  clock.now = 10.021;
  EXPECT_TRUE(timers.TimerExpired(2));
  EXPECT_EQ(timers.Remaining(2), 0);
}

TEST(Timers, AreExpiredExactlyAtTheirDuration) {
  FakeClock clock;
  TH timers(clock);
  clock.now = 8;
  timers.StartTimer(1, 500);  // a fraction without rounding
  clock.now = 8.5;
  EXPECT_TRUE(timers.TimerExpired(1));
}

TEST(Timers, OfNoDurationAreExpiredAtOnce) {
  FakeClock clock;
  TH timers(clock);
  timers.StartTimer(1, 0);
  EXPECT_TRUE(timers.TimerExpired(1));
}

// Single precision steps by 7.8 ms at this hour: a pause of 20 ms would end after 16 or after 24.
TEST(Timers, AreExactLateInTheDay) {
  for (const double start : {86390.001, 86390.003, 86390.0055, 86390.0071}) {
    FakeClock clock;
    TH timers(clock);
    clock.now = start;
    timers.StartTimer(2, 20);
    clock.now = start + 0.0199;
    EXPECT_FALSE(timers.TimerExpired(2)) << start;
    clock.now = start + 0.0201;
    EXPECT_TRUE(timers.TimerExpired(2)) << start;
  }
}

TEST(Timers, AreExpiredPastMidnight) {
  FakeClock clock;
  TH timers(clock);
  clock.now = 86399.99;
  timers.StartTimer(2, 20);
  EXPECT_FALSE(timers.TimerExpired(2));
  clock.now = 0.0;
  EXPECT_TRUE(timers.TimerExpired(2));
  EXPECT_EQ(timers.Remaining(2), 0);
}

TEST(Timers, AreExpiredWhenTheClockIsSetBack) {
  FakeClock clock;
  TH timers(clock);
  clock.now = 1000;
  timers.StartTimer(1, 400);
  clock.now = 999.9;
  EXPECT_TRUE(timers.TimerExpired(1));
}

TEST(Timers, AreIndependent) {
  FakeClock clock;
  TH timers(clock);
  for (int number = 0; number <= 5; ++number)
    timers.StartTimer(number, 100 * (number + 1));
  clock.Advance(0.350);
  for (int number = 0; number <= 5; ++number)
    EXPECT_EQ(timers.TimerExpired(number), number <= 2) << number;
}

TEST(Timers, CanBeStartedAgain) {
  FakeClock clock;
  TH timers(clock);
  timers.StartTimer(1, 100);
  clock.Advance(0.090);
  timers.StartTimer(1, 100);
  clock.Advance(0.090);
  EXPECT_FALSE(timers.TimerExpired(1));
  clock.Advance(0.011);
  EXPECT_TRUE(timers.TimerExpired(1));
}

TEST(Timers, AreNumbered0To5) {
  FakeClock clock;
  TH timers(clock);
  for (const int number : {-1, 6}) {
    EXPECT_EQ(ThrownKind([&] { timers.StartTimer(number, 1); }), RuntimeError::Kind::Bounds) << number;
    EXPECT_EQ(ThrownKind([&] { (void)timers.TimerExpired(number); }), RuntimeError::Kind::Bounds) << number;
    EXPECT_EQ(ThrownKind([&] { (void)timers.Remaining(number); }), RuntimeError::Kind::Bounds) << number;
    EXPECT_EQ(ThrownKind([&] { timers.Wait(number); }), RuntimeError::Kind::Bounds) << number;
  }
}

TEST(Timers, WaitingSleepsForTheRestOfTheTime) {
  FakeClock clock;
  TH timers(clock);
  timers.StartTimer(2, 20);
  clock.Advance(0.005);
  timers.Wait(2);
  EXPECT_TRUE(timers.TimerExpired(2));
  EXPECT_NEAR(clock.slept, 0.015, 1e-9);
}

TEST(Timers, WaitingForAnExpiredOneDoesNotSleep) {
  FakeClock clock;
  TH timers(clock);
  timers.Wait(2);
  timers.StartTimer(2, 20);
  clock.Advance(0.030);
  timers.Wait(2);
  EXPECT_EQ(clock.slept, 0);
}

// A clock whose sleep ends early, as one interrupted by a signal does.
class ImpatientClock final : public platform::Clock {
 public:
  double now = 100;
  int sleeps = 0;

  [[nodiscard]] double SecondsSinceMidnight() const override { return now; }
  void Sleep(double) override {
    ++sleeps;
    now += 0.004;
  }
};

TEST(Timers, WaitingGoesOnAfterASleepThatEndedEarly) {
  ImpatientClock clock;
  TH timers(clock);
  timers.StartTimer(2, 10);
  timers.Wait(2);
  EXPECT_EQ(clock.sleeps, 3);
}

}  // namespace
}  // namespace kalivor
