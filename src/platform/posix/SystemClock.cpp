// The computer's clock.
#include "platform/posix/SystemClock.h"

#include <sys/prctl.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/MonotonicTime.h"

namespace kalivor::platform {

SystemClock::SystemClock() {
  // 1 ns is the least; 0 would restore the default.
  (void)prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
}

double SystemClock::SecondsSinceMidnight() const {
  timespec now{};
  tm local{};
  (void)clock_gettime(CLOCK_REALTIME, &now);
  if (localtime_r(&now.tv_sec, &local) == nullptr) return 0;
  // A leap second belongs to the last second of its minute, so that the day keeps its 86400 seconds.
  const int second = local.tm_hour * 3600 + local.tm_min * 60 + std::min(local.tm_sec, 59);
  return second + static_cast<double>(now.tv_nsec) * 1e-9;
}

void SystemClock::Sleep(double seconds) {
  const timespec end = ToTimespec(MonotonicNow_ns() + NanosecondsOf(seconds));
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

}  // namespace kalivor::platform
