#include "core/Progress.h"

namespace kalivor {

double Stopwatch::Passed_s() {
  const double now = clock_->SecondsSinceMidnight();
  if (now > last_) passed_ += now - last_;
  last_ = now;
  return passed_;
}

Progress::Progress(Core& core, ProgressForm& form, const QString& work)
    : core_(core), form_(form), watch_(core.clock) {
  form_.Show(work);
  core_.events.ProcessPending();
}

void Progress::Begin(int total, const QString& work) {
  if (!work.isEmpty()) form_.Show(work);
  total_ = total;
  done_ = 0;
  watch_ = Stopwatch(core_.clock);
}

void Progress::Done() {
  ++done_;
  const double passed_s = watch_.Passed_s();
  if (done_ < total_ && pause_.Remaining() > 0) return;
  constexpr int kPause_ms = 100;
  pause_ = SoftTimer(core_.clock, kPause_ms);
  form_.Step(done_, total_, passed_s / done_ * (total_ - done_));
  core_.events.ProcessPending();
}

bool Progress::GoOn() {
  core_.events.ProcessPending();
  return core_.module.Abbruch == kFalse;
}

}  // namespace kalivor
