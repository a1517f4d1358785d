// A clock that stands still until somebody sleeps.
#pragma once

#include <cmath>
#include <limits>

#include "platform/Clock.h"

namespace kalivor::test {

class FakeClock final : public platform::Clock {
 public:
  double now = 36000;  ///< seconds since midnight
  double slept = 0;    ///< all sleeping so far, in seconds
  double passed = 0;   ///< all time so far, in seconds; goes on past midnight

  [[nodiscard]] double SecondsSinceMidnight() const override { return now; }

  void Sleep(double seconds) override {
    if (seconds <= 0) return;
    slept += seconds;
    Advance(seconds);
  }

  /// Moves on by at least `seconds` as the clock shows them, past midnight if need be. Rounding up matters:
  /// else a sleep shorter than one step of a double would never end.
  void Advance(double seconds) {
    const double before = now;
    now += seconds;
    if (now - before < seconds) now = std::nextafter(now, std::numeric_limits<double>::infinity());
    passed += now - before;
    if (now >= 86400) now -= 86400;
  }
};

}  // namespace kalivor::test
