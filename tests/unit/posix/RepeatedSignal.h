// Interrupts the system calls of the test again and again.
#pragma once

#include <sys/time.h>

#include <csignal>

namespace kalivor::test {

class RepeatedSignal {
 public:
  explicit RepeatedSignal(int interval_ms) {
    struct sigaction action {};
    action.sa_handler = [](int) { count_ = count_ + 1; };
    sigaction(SIGALRM, &action, &before_);
    count_ = 0;
    const timeval interval{0, interval_ms * 1000L};
    const itimerval timer{interval, interval};
    setitimer(ITIMER_REAL, &timer, nullptr);
  }
  ~RepeatedSignal() {
    const itimerval off{};
    setitimer(ITIMER_REAL, &off, nullptr);
    sigaction(SIGALRM, &before_, nullptr);
  }
  RepeatedSignal(const RepeatedSignal&) = delete;
  RepeatedSignal& operator=(const RepeatedSignal&) = delete;

  [[nodiscard]] int Count() const { return count_; }

 private:
  static inline volatile sig_atomic_t count_ = 0;
  struct sigaction before_ {};
};

}  // namespace kalivor::test
