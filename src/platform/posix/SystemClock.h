// The computer's clock.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

#include "platform/Clock.h"

namespace kalivor::platform {

/// Lets sleeps of the calling thread end as exactly as the system can, instead of some 50 µs late.
void LowerTimerSlack();

class SystemClock final : public Clock {
 public:
  /// Lowers the timer slack of the calling thread, which is to be the one that sleeps.
  SystemClock() { LowerTimerSlack(); }

  [[nodiscard]] double SecondsSinceMidnight() const override;

  /// Signals do not cut the sleep short, and setting the clock does not change it. Ends as exactly as it can:
  /// sleeps less by as much as the system usually wakes a sleeper too late, but no more than 80 µs, and
  /// watches the clock for what is then left.
  void Sleep(double seconds) override;

 private:
  // The last second that was asked for, since 1970 and since midnight: the time is asked for many times in
  // one second, and to find the hour in it takes longer than all the rest.
  mutable std::optional<std::time_t> second_;
  mutable int secondOfDay_ = 0;
  std::int64_t lateness_ns_ = 0;  // how late a sleep usually ends
};

}  // namespace kalivor::platform
