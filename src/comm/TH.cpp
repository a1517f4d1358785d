#include "comm/TH.h"

namespace kalivor {

double SoftTimer::Remaining() const {
  if (clock_ == nullptr) return 0;
  const double passed = clock_->SecondsSinceMidnight() - TimerStart;
  return passed < 0 || passed >= TimerDauer ? 0 : TimerDauer - passed;
}

void TH::Wait(int number) {
  while (!TimerExpired(number))
    clock_.Sleep(Remaining(number));
}

}  // namespace kalivor
