// A serial line that plays given arrivals after each request, in virtual time and quickly.
#pragma once

#include <algorithm>
#include <functional>

#include "fakes/FakeClock.h"
#include "platform/SerialControl.h"
#include "unit/line/Rules.h"

namespace kalivor::test {

class PlayedLine final : public platform::SerialControl {
 public:
  /// What comes back for a request.
  std::function<std::vector<Arrival>(const QByteArray& request)> answer;

  QByteArray request;  ///< the last one

  explicit PlayedLine(FakeClock& clock) : clock_(clock) {}

  [[nodiscard]] bool Open(int, const QString&) override { return open_ = true; }
  void Close() override {
    open_ = false;
    coming_.clear();
    next_ = 0;
  }
  [[nodiscard]] bool IsOpen() const override { return open_; }
  bool SetRts(bool) override { return true; }
  bool ClearInBuffer() override { return true; }
  bool ClearOutBuffer() override { return true; }
  void SetSThreshold(int) override {}
  void Output(const QByteArray& characters) override {
    request = characters;
    coming_ = answer(characters);
    sentAt_s_ = clock_.passed;
  }
  [[nodiscard]] int InBufferCount() override { return Due() ? 1 : 0; }
  [[nodiscard]] QByteArray Input() override {
    QByteArray taken;
    for (; Due(); ++next_)
      taken += coming_[next_].characters;
    return taken;
  }
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override {
    if (Due()) return platform::InputWait::Input;
    const double until_s = clock_.passed + std::max(0.0, seconds);
    if (next_ < coming_.size() && At(next_) <= until_s) {
      clock_.Advance(At(next_) - clock_.passed);
      return platform::InputWait::Input;
    }
    clock_.Advance(seconds);
    return platform::InputWait::TimedOut;
  }
  [[nodiscard]] int CommEvent() override { return 0; }

 private:
  [[nodiscard]] double At(std::size_t arrival) const { return sentAt_s_ + coming_[arrival].at_ms / 1000; }
  [[nodiscard]] bool Due() const { return next_ < coming_.size() && At(next_) <= clock_.passed + 1e-9; }

  FakeClock& clock_;
  std::vector<Arrival> coming_;
  std::size_t next_ = 0;
  double sentAt_s_ = 0;
  bool open_ = false;
};

}  // namespace kalivor::test
