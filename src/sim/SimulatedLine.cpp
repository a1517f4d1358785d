// The serial interface on top of the line model, waiting on a clock.
#include "sim/SimulatedLine.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

// Steps of the clock are rounded; what is due within this time is due now.
constexpr double kRounding_s = 1e-9;
constexpr double kShortestSleep_s = 1e-6;
constexpr double kDay_s = 86400;

}  // namespace

void SimulatedLine::PlugIn() {
  unplugged_ = false;
  model_.PlugIn();
}

bool SimulatedLine::Open(int /*number*/, const QString& settings) {
  ++openings;
  const int baud = settings.section(u',', 0, 0).toInt();
  Close();
  event_ = platform::kCommEventNone;
  fault_.clear();
  if (!openable || baud <= 0 || Gone()) {
    fault_ = u"Die simulierte Leitung ist nicht zu öffnen."_s;
    return false;
  }
  (void)model_.TakeDue(Now());
  baud_ = baud;
  open_ = true;
  return true;
}

void SimulatedLine::Close() {
  open_ = false;
  input_.clear();
  sendEventDue_ = false;
}

bool SimulatedLine::SetRts(bool /*raised*/) {
  return open_ && !Gone();
}

bool SimulatedLine::ClearInBuffer() {
  Settle();
  input_.clear();
  return open_ && !Gone();
}

bool SimulatedLine::ClearOutBuffer() {
  return open_ && !Gone();
}

void SimulatedLine::SetSThreshold(int characters) {
  sendThreshold_ = characters;
}

void SimulatedLine::Output(const QByteArray& characters) {
  if (!open_ || Gone()) return;
  if (characters.size() > kOutputLimit_bytes) {
    event_ = platform::kCommEventTransmitFull;
    if (OnComm) OnComm();
    return;
  }
  sent += characters;
  model_.Receive(Now(), characters, baud_);
  sendEventDue_ = true;
}

int SimulatedLine::InBufferCount() {
  Settle();
  return static_cast<int>(input_.size());
}

QByteArray SimulatedLine::Input() {
  Settle();
  return std::exchange(input_, {});
}

platform::InputWait SimulatedLine::WaitForInput(double seconds) {
  const double end = Now() + std::max(0.0, seconds);
  for (;;) {
    Settle();
    if (!input_.isEmpty()) return platform::InputWait::Input;
    if (!open_ || Gone()) {
      if (open_) fault_ = u"Die simulierte Leitung ist weg."_s;
      return platform::InputWait::LineGone;
    }
    const double now = Now();
    if (now + kRounding_s >= end) {
      // However short it is, the time passes: the caller may wait for the rest of its own again.
      clock_.Sleep(end - now);
      return platform::InputWait::TimedOut;
    }
    const double wake = std::min(end, model_.NextTime().value_or(end));
    clock_.Sleep(std::max(wake - now, kShortestSleep_s));
  }
}

int SimulatedLine::CommEvent() {
  Settle();
  if (open_ && Gone()) event_ = platform::kCommEventDeviceControlBlock;
  return lineError != platform::kCommEventNone ? lineError : event_;
}

// Seconds that only grow: the clock starts again at midnight, and a test may set it back.
double SimulatedLine::Now() {
  const double look = clock_.SecondsSinceMidnight();
  if (lastLook_ >= 0) {
    double step = look - lastLook_;
    if (step < -kDay_s / 2) step += kDay_s;
    passed_ += std::max(0.0, step);
  }
  lastLook_ = look;
  return passed_;
}

bool SimulatedLine::Gone() {
  return unplugged_ || model_.Unplugged(Now() + kRounding_s);
}

// Takes over what has arrived, and reports the end of sending.
void SimulatedLine::Settle() {
  const double now = Now() + kRounding_s;
  const QByteArray arrived = model_.TakeDue(now);
  if (!open_ || unplugged_) return;
  input_ += arrived;
  if (!sendEventDue_ || sendThreshold_ <= 0 || model_.SentUntil() > now) return;
  sendEventDue_ = false;
  if (event_ == platform::kCommEventNone) event_ = platform::kCommEventSendDone;
  if (OnComm) OnComm();
}

}  // namespace kalivor::sim
