// The time of day, and sleeping.
#pragma once

namespace kalivor::platform {

class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since local midnight, 0 <= t < 86400, with at least microsecond resolution. Jumps back to 0 at
  /// midnight, and to wherever the user sets the clock.
  [[nodiscard]] virtual double SecondsSinceMidnight() const = 0;

  /// Sleeps in the operating system for at least `seconds`; returns at once when not positive.
  virtual void Sleep(double seconds) = 0;
};

}  // namespace kalivor::platform
