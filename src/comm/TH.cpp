#include "comm/TH.h"

#include <algorithm>

namespace kalivor {

double SoftTimer::Remaining() const {
  constexpr double kDay_s = 86400;
  if (clock_ == nullptr) return 0;
  const double now = clock_->SecondsSinceMidnight();
  const double passed = now - TimerStart;
  return passed < 0 || passed >= TimerDauer ? 0 : std::min(TimerDauer - passed, kDay_s - now);
}

void TH::Wait(int number) {
  while (!TimerExpired(number))
    clock_.Sleep(Remaining(number));
}

}  // namespace kalivor
