// The computer's clock.
#pragma once

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

  /// Signals do not cut the sleep short, and setting the clock does not change it.
  void Sleep(double seconds) override;

 private:
  // The last second that was asked for, since 1970 and since midnight: the time is asked for many times in
  // one second, and to find the hour in it takes longer than all the rest.
  mutable std::optional<std::time_t> second_;
  mutable int secondOfDay_ = 0;
};

}  // namespace kalivor::platform
