// A serial port with a simulated controller at its other end, in the time of a given clock: for tests that
// run whole transfers without waiting.
#pragma once

#include <algorithm>
#include <utility>

#include "platform/Clock.h"
#include "platform/SerialControl.h"
#include "sim/LineModel.h"

namespace kalivor::test {

/// Waiting sleeps on the clock, which is to advance by it. Bytes that arrive while the port is closed are
/// lost.
class SimulatedLine final : public platform::SerialControl {
 public:
  /// `clock` and `model` must outlive the line.
  SimulatedLine(platform::Clock& clock, sim::LineModel& model) : clock_(clock), model_(model) {}

  /// False: the port cannot be opened (absent, in use).
  bool openable = true;

  /// A line error (a kCommEvent… number) that CommEvent() reports as long as it is set; 0 for none.
  int lineError = 0;

  /// How often the port was opened, and every byte that was sent.
  int openings = 0;
  QByteArray sent;

  /// The line vanishes now, or comes back.
  void Unplug() { unplugged_ = true; }
  void PlugIn();

  [[nodiscard]] bool Open(int number, const QString& settings) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return open_; }
  bool SetRts(bool raised) override;
  bool ClearInBuffer() override;
  bool ClearOutBuffer() override;
  void SetSThreshold(int characters) override;
  void Output(const QByteArray& characters) override;
  [[nodiscard]] int InBufferCount() override;
  [[nodiscard]] QByteArray Input() override;
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override;
  [[nodiscard]] int CommEvent() override;

 private:
  // Steps of the clock are rounded; what is due within this time is due now.
  static constexpr double kRounding_s = 1e-9;
  static constexpr double kShortestSleep_s = 1e-6;
  static constexpr double kDay_s = 86400;

  double Now();
  bool Gone();
  void Settle();

  platform::Clock& clock_;
  sim::LineModel& model_;
  bool open_ = false;
  bool unplugged_ = false;
  int baud_ = 0;
  int sendThreshold_ = 0;
  bool sendEventDue_ = false;
  int event_ = platform::kCommEventNone;
  QByteArray input_;
  double passed_ = 0;     // seconds since the first look at the clock, without its backward jumps
  double lastLook_ = -1;  // seconds since midnight
};

inline void SimulatedLine::PlugIn() {
  unplugged_ = false;
  model_.PlugIn();
}

inline bool SimulatedLine::Open(int /*number*/, const QString& settings) {
  ++openings;
  const int baud = settings.section(u',', 0, 0).toInt();
  Close();
  event_ = platform::kCommEventNone;
  if (!openable || baud <= 0 || Gone()) return false;
  (void)model_.TakeDue(Now());
  baud_ = baud;
  open_ = true;
  return true;
}

inline void SimulatedLine::Close() {
  open_ = false;
  input_.clear();
  sendEventDue_ = false;
}

inline bool SimulatedLine::SetRts(bool /*raised*/) {
  return open_ && !Gone();
}

inline bool SimulatedLine::ClearInBuffer() {
  Settle();
  input_.clear();
  return open_ && !Gone();
}

inline bool SimulatedLine::ClearOutBuffer() {
  return open_ && !Gone();
}

inline void SimulatedLine::SetSThreshold(int characters) {
  sendThreshold_ = characters;
}

inline void SimulatedLine::Output(const QByteArray& characters) {
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

inline int SimulatedLine::InBufferCount() {
  Settle();
  return static_cast<int>(input_.size());
}

inline QByteArray SimulatedLine::Input() {
  Settle();
  return std::exchange(input_, {});
}

inline platform::InputWait SimulatedLine::WaitForInput(double seconds) {
  const double end = Now() + std::max(0.0, seconds);
  for (;;) {
    Settle();
    if (!input_.isEmpty()) return platform::InputWait::Input;
    if (!open_ || Gone()) return platform::InputWait::LineGone;
    const double now = Now();
    if (now + kRounding_s >= end) return platform::InputWait::TimedOut;
    const double wake = std::min(end, model_.NextTime().value_or(end));
    clock_.Sleep(std::max(wake - now, kShortestSleep_s));
  }
}

inline int SimulatedLine::CommEvent() {
  Settle();
  if (open_ && Gone()) event_ = platform::kCommEventDeviceControlBlock;
  return lineError != platform::kCommEventNone ? lineError : event_;
}

// Seconds that only grow: the clock starts again at midnight, and a test may set it back.
inline double SimulatedLine::Now() {
  const double look = clock_.SecondsSinceMidnight();
  if (lastLook_ >= 0) {
    double step = look - lastLook_;
    if (step < -kDay_s / 2) step += kDay_s;
    passed_ += std::max(0.0, step);
  }
  lastLook_ = look;
  return passed_;
}

inline bool SimulatedLine::Gone() {
  return unplugged_ || model_.Unplugged(Now() + kRounding_s);
}

// Takes over what has arrived, and reports the end of sending.
inline void SimulatedLine::Settle() {
  const double now = Now() + kRounding_s;
  const QByteArray arrived = model_.TakeDue(now);
  if (!open_ || unplugged_) return;
  input_ += arrived;
  if (!sendEventDue_ || sendThreshold_ <= 0 || model_.SentUntil() > now) return;
  sendEventDue_ = false;
  if (event_ == platform::kCommEventNone) event_ = platform::kCommEventSendDone;
  if (OnComm) OnComm();
}

}  // namespace kalivor::test
