// The computer's clock.
#include "platform/posix/SystemClock.h"

#include <sys/prctl.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/MonotonicTime.h"

namespace kalivor::platform {
namespace {

constexpr std::int64_t kMostLateness_ns = 80'000;

}  // namespace

void LowerTimerSlack() {
  // 1 ns is the least; 0 would restore the default. Without it sleeps are only less exact.
  (void)prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
}

double SystemClock::SecondsSinceMidnight() const {
  timespec now{};
  (void)clock_gettime(CLOCK_REALTIME, &now);
  if (second_ != now.tv_sec) {
    tm local{};
    if (localtime_r(&now.tv_sec, &local) == nullptr) return 0;
    // A leap second belongs to the last second of its minute, so that the day keeps its 86400 seconds.
    secondOfDay_ = local.tm_hour * 3600 + local.tm_min * 60 + std::min(local.tm_sec, 59);
    second_ = now.tv_sec;
  }
  return secondOfDay_ + static_cast<double>(now.tv_nsec) * 1e-9;
}

void SystemClock::Sleep(double seconds) {
  if (!(seconds > 0)) return;
  const std::int64_t start_ns = MonotonicNow_ns();
  const std::int64_t end_ns = start_ns + NanosecondsOf(seconds);
  const std::int64_t wake_ns = end_ns - lateness_ns_;
  if (wake_ns > start_ns) {
    const timespec wake = ToTimespec(wake_ns);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &wake, nullptr) == EINTR) {
    }
    // A running mean; one sleep that was late because the machine was busy must not count for much.
    const std::int64_t late_ns = std::min(MonotonicNow_ns() - wake_ns, kMostLateness_ns);
    lateness_ns_ += (late_ns - lateness_ns_) / 8;
  }
  while (MonotonicNow_ns() < end_ns) {
  }
}

}  // namespace kalivor::platform
