// The computer's clock.
#pragma once

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
};

}  // namespace kalivor::platform
