// Time for measuring waits: it runs evenly, whatever the user does to the clock.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ctime>

namespace kalivor::platform {

inline constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

[[nodiscard]] inline std::int64_t MonotonicNow_ns() {
  timespec now{};
  (void)clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::int64_t>(now.tv_sec) * kNanosecondsPerSecond + now.tv_nsec;
}

/// Rounded up, so that a wait is never too short; 0 when not positive, at most a year.
[[nodiscard]] inline std::int64_t NanosecondsOf(double seconds) {
  constexpr double kLongest_s = 365.0 * 86400;
  if (!(seconds > 0)) return 0;
  return static_cast<std::int64_t>(std::ceil(std::min(seconds, kLongest_s) * kNanosecondsPerSecond));
}

/// `nanoseconds` must not be negative.
[[nodiscard]] inline timespec ToTimespec(std::int64_t nanoseconds) {
  timespec time{};
  time.tv_sec = static_cast<time_t>(nanoseconds / kNanosecondsPerSecond);
  time.tv_nsec = static_cast<long>(nanoseconds % kNanosecondsPerSecond);
  return time;
}

}  // namespace kalivor::platform
