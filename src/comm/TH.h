// Six soft timers over the time of day.
#pragma once

#include "base/BoundedArray.h"
#include "platform/Clock.h"

namespace kalivor {

/// What each timer is for; timer 0 is unused.
enum TimerNumber : int {
  kReplyTimer = 1,     ///< reply time-out
  kPauseTimer = 2,     ///< pause of the line after a port close
  kRawQuietTimer = 3,  ///< quiet time that ends raw reception
  kCloseTimer = 4,     ///< kept: started with every port close, never tested; it tells when that was
  kReportTimer = 5,    ///< pacing of the report's repaints
};

/// A start time and a duration.
class SoftTimer {
 public:
  /// Expired from the beginning.
  SoftTimer() = default;

  /// Starts now. `clock` must outlive the timer.
  SoftTimer(const platform::Clock& clock, int duration_ms)
      : clock_(&clock), TimerStart(clock.SecondsSinceMidnight()), TimerDauer(duration_ms / 1000.0) {}

  /// Seconds until the timer expires; 0 when it has, and also when the clock shows a time before the start:
  /// every timer expires at midnight at the latest.
  [[nodiscard]] double Remaining() const;

 private:
  const platform::Clock* clock_ = nullptr;
  double TimerStart = 0;  // seconds since midnight
  double TimerDauer = 0;  // seconds; double, as 20 ms late in the day are below the steps of a float
};

class TH {
 public:
  explicit TH(platform::Clock& clock) : clock_(clock) {}

  /// Starts timer `number` (0..5) with a duration. Any other number throws RuntimeError (Bounds), here and
  /// in the operations below.
  void StartTimer(int number, int duration_ms) { timers_[number] = SoftTimer(clock_, duration_ms); }

  /// True when the duration is over, and also when the clock has passed midnight since the start.
  [[nodiscard]] bool TimerExpired(int number) const { return Remaining(number) <= 0; }

  /// Seconds until the timer expires, 0 when it has.
  [[nodiscard]] double Remaining(int number) const { return timers_[number].Remaining(); }

  /// Sleeps until the timer has expired.
  void Wait(int number);

  [[nodiscard]] const platform::Clock& GetClock() const { return clock_; }

 private:
  platform::Clock& clock_;
  BoundedArray<SoftTimer, 5> timers_;
};

}  // namespace kalivor
