// The computer's clock.
#pragma once

#include "platform/Clock.h"

namespace kalivor::platform {

class SystemClock final : public Clock {
 public:
  [[nodiscard]] double SecondsSinceMidnight() const override;

  /// Signals do not cut the sleep short, and setting the clock does not change it.
  void Sleep(double seconds) override;
};

}  // namespace kalivor::platform
