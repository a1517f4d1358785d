// The computer's clock.
#pragma once

#include "platform/Clock.h"

namespace kalivor::platform {

class SystemClock final : public Clock {
 public:
  /// Lets sleeps of the calling thread, which is to be the one that sleeps, end when they shall: the system
  /// otherwise adds up to 50 µs to each.
  SystemClock();

  [[nodiscard]] double SecondsSinceMidnight() const override;

  /// Signals do not cut the sleep short, and setting the clock does not change it.
  void Sleep(double seconds) override;
};

}  // namespace kalivor::platform
