// A clock whose time passes by sleeping, and that is set at given moments.
#pragma once

#include <cmath>
#include <vector>

#include "platform/Clock.h"

namespace kalivor::campaign {

class StepClock final : public platform::Clock {
 public:
  /// A moment at which somebody sets the clock.
  struct Step {
    double at_s;  ///< on the time that passes
    double by_s;
  };

  /// What the clock shows at the beginning, in seconds since midnight.
  explicit StepClock(double start_s) : shift_s_(start_s) {}

  /// Seconds since the beginning; they only grow, whatever the clock shows.
  [[nodiscard]] double Passed() const { return passed_s_; }

  void Plan(const Step& step) { steps_.push_back(step); }

  /// Nobody sets the clock any more.
  void ForgetSteps() { steps_.clear(); }

  /// The clock was set or passed midnight between two moments of the time that passes.
  [[nodiscard]] bool Disturbed(double from_s, double until_s) const {
    for (const double at_s : disturbances_) {
      if (at_s >= from_s && at_s <= until_s) return true;
    }
    return false;
  }

  [[nodiscard]] double SecondsSinceMidnight() const override { return shown_s_; }

  void Sleep(double seconds) override {
    if (seconds > 0) Advance(seconds);
  }

  /// Lets at least `seconds` pass.
  void Advance(double seconds) {
    constexpr double rounding_s = 1e-9;  // else a sleep shorter than one step of a double would never end
    passed_s_ += seconds + rounding_s;
    for (const Step& step : steps_) {
      if (step.at_s > done_s_ && step.at_s <= passed_s_) {
        shift_s_ += step.by_s;
        disturbances_.push_back(passed_s_);
      }
    }
    done_s_ = passed_s_;
    constexpr double day_s = 86400;
    const double before = shown_s_;
    shown_s_ = std::fmod(passed_s_ + shift_s_, day_s);
    if (shown_s_ < 0) shown_s_ += day_s;
    if (shown_s_ < before) disturbances_.push_back(passed_s_);
  }

 private:
  double passed_s_ = 0;
  double done_s_ = 0;
  double shift_s_;
  double shown_s_ = shift_s_;
  std::vector<Step> steps_;
  std::vector<double> disturbances_;
};

}  // namespace kalivor::campaign
