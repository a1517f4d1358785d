// A serial line that plays a written transcript in virtual time and records all that is done to it.
#pragma once

#include <gtest/gtest.h>
#include <QStringList>
#include <algorithm>
#include <deque>
#include <set>
#include <stdexcept>
#include <vector>

#include "fakes/FakeClock.h"
#include "fakes/QtPrinters.h"
#include "platform/SerialControl.h"

namespace kalivor::test {

/// A test writes down which requests it expects and what the far end does about each:
///
///     line.Expect("#0102R1F000F\r").Echo().Reply("10102R04", 5).Reply("D220\r", 30);
///     line.Expect("#0102R1F000F\r").Silence();
///
/// A request that differs from the transcript, that comes after its end or on a closed port fails the test,
/// and so does one that has not come when the line is destroyed. Waiting for input moves the clock. What
/// arrives while the port is closed is lost; what arrives after it was opened again is received, however old
/// the request is that it answers.
class FakeSerialControl final : public platform::SerialControl {
 public:
  /// What the far end does about one request. Delays count from the step before, in milliseconds.
  class Exchange {
   public:
    /// The request itself comes back, as on a two-wire line.
    Exchange& Echo(double delay_ms = 0) { return Reply(request_, delay_ms); }

    /// Characters arrive.
    Exchange& Reply(const QByteArray& characters, double delay_ms = 1) {
      return Append({Step::Characters, delay_ms / 1000, characters, 0});
    }

    /// The same characters arrive again and again, for ever.
    Exchange& Babble(const QByteArray& characters, double period_ms) {
      return Append({Step::Endless, period_ms / 1000, characters, 0});
    }

    /// The driver reports a communication event.
    Exchange& Event(int code, double delay_ms = 0) {
      return Append({Step::CommunicationEvent, delay_ms / 1000, {}, code});
    }

    /// The device is pulled out; the port cannot be opened any more.
    Exchange& Vanish(double delay_ms = 0) { return Append({Step::DeviceGone, delay_ms / 1000, {}, 0}); }

    /// Nothing (more) comes. Only makes the transcript easier to read.
    void Silence() {}

   private:
    friend class FakeSerialControl;

    struct Step {
      enum Kind { Characters, Endless, CommunicationEvent, DeviceGone } kind;
      double delay_s;
      QByteArray characters;
      int event;
    };

    explicit Exchange(const QByteArray& request) : request_(request) {}

    Exchange& Append(const Step& step) {
      steps_.push_back(step);
      return *this;
    }

    QByteArray request_;
    std::vector<Step> steps_;
  };

  /// A successful or refused attempt to open the port.
  struct OpenRecord {
    int number;
    QString settings;
    bool opened;
  };

  /// A request that went out. Times are FakeClock::passed, in seconds.
  struct OutputRecord {
    QByteArray characters;
    double at_s;
    QString settings;  ///< the line settings at that moment
    bool rts;          ///< the RTS line was up
  };

  // How the line fails. All of them are off at first.
  std::set<int> refusedOpens;                  ///< the n-th attempts to open that fail, counted from 1
  bool absent = false;                         ///< every attempt to open fails
  int eventOnOpen = platform::kCommEventNone;  ///< event that an attempt to open leaves behind
  bool clearInFails = false;                   ///< the port does not discard its input
  bool clearOutFails = false;                  ///< the port does not discard its output

  // What was done to the line, in the order of events.
  std::vector<OpenRecord> opens;
  std::vector<OutputRecord> outputs;
  std::vector<double> closes_s;  ///< times of closing an open port
  QStringList log;               ///< one line for every operation that changes something

  explicit FakeSerialControl(FakeClock& clock) : clock_(clock) {}
  FakeSerialControl(const FakeSerialControl&) = delete;
  FakeSerialControl& operator=(const FakeSerialControl&) = delete;
  ~FakeSerialControl() override {
    for (const Exchange& exchange : script_) {
      ADD_FAILURE() << "request that never came: " << testing::PrintToString(exchange.request_);
    }
  }

  /// The next request of the transcript.
  Exchange& Expect(const QByteArray& request) {
    script_.push_back(Exchange(request));
    return script_.back();
  }

  /// The RTS line is up.
  [[nodiscard]] bool Rts() const { return rts_; }

  /// Reports an event at once, as a driver may at any time.
  void Raise(int event) {
    // A line error is kept until the port is opened again, whatever comes after it.
    if (event != platform::kCommEventSendDone || event_ == platform::kCommEventNone) event_ = event;
    if (OnComm) OnComm();
  }

  [[nodiscard]] bool Open(int number, const QString& settings) override {
    const int attempt = static_cast<int>(opens.size()) + 1;
    Close();
    event_ = eventOnOpen;
    open_ = !absent && !gone_ && !refusedOpens.contains(attempt);
    opens.push_back({number, settings, open_});
    log.append(QStringLiteral("open %1 %2").arg(number).arg(settings));
    if (open_) settings_ = settings;
    fault_ = open_ ? QString() : QStringLiteral("nicht da");
    return open_;
  }

  void Close() override {
    Deliver();
    if (!open_) return;
    log.append(QStringLiteral("close"));
    closes_s.push_back(clock_.passed);
    open_ = false;
    rts_ = false;
    received_.clear();
  }

  [[nodiscard]] bool IsOpen() const override { return open_; }

  bool SetRts(bool raised) override {
    log.append(raised ? QStringLiteral("rts up") : QStringLiteral("rts down"));
    Deliver();
    rts_ = raised;
    return Usable();
  }

  bool ClearInBuffer() override {
    log.append(QStringLiteral("clear in"));
    Deliver();
    if (clearInFails || !Usable()) return false;
    received_.clear();
    return true;
  }

  bool ClearOutBuffer() override {
    log.append(QStringLiteral("clear out"));
    Deliver();
    return !clearOutFails && Usable();
  }

  void SetSThreshold(int characters) override {
    log.append(QStringLiteral("threshold %1").arg(characters));
    threshold_ = characters;
  }

  void Output(const QByteArray& characters) override {
    log.append(QStringLiteral("output"));
    outputs.push_back({characters, clock_.passed, settings_, rts_});
    if (!open_) {
      ADD_FAILURE() << "request on a closed port: " << testing::PrintToString(characters);
      return;
    }
    if (characters.size() > kOutputLimit_bytes) {
      Raise(platform::kCommEventTransmitFull);
      return;
    }
    Deliver();
    if (gone_) return;
    if (script_.empty()) {
      ADD_FAILURE() << "unexpected request: " << testing::PrintToString(characters);
      return;
    }
    EXPECT_EQ(characters, script_.front().request_) << "request " << outputs.size();
    double at_s = clock_.passed;
    for (const Exchange::Step& step : script_.front().steps_) {
      at_s += step.delay_s;
      pending_.push_back({at_s, step});
    }
    script_.pop_front();
  }

  [[nodiscard]] int InBufferCount() override {
    Deliver();
    return static_cast<int>(received_.size());
  }

  [[nodiscard]] QByteArray Input() override {
    Deliver();
    return std::exchange(received_, {});
  }

  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override {
    // A transfer that never ends must fail its test, not hang it.
    if (++waits_ > kMostWaits) throw std::runtime_error("the line is waited for without an end");
    const double until_s = clock_.passed + std::max(0.0, seconds);
    for (;;) {
      Deliver();
      if (!received_.isEmpty()) return platform::InputWait::Input;
      if (!Usable()) return platform::InputWait::LineGone;
      const auto next = Next();
      if (next == pending_.end() || next->at_s > until_s) break;
      clock_.Advance(next->at_s - clock_.passed);
    }
    // At least the time asked for, measured by the clock that the caller reads.
    clock_.Advance(seconds > 0 ? std::max(until_s - clock_.passed, kStep_s) : 0);
    return platform::InputWait::TimedOut;
  }

  [[nodiscard]] int CommEvent() override {
    Deliver();
    if (open_ && gone_) event_ = platform::kCommEventDeviceControlBlock;
    return event_;
  }

  [[nodiscard]] QString Fault() const override { return fault_; }

 private:
  struct Pending {
    double at_s;
    Exchange::Step step;
  };

  static constexpr int kMostWaits = 1'000'000;
  static constexpr double kStep_s = 1e-9;  // far above the rounding of times, far below any delay

  [[nodiscard]] bool Usable() const { return open_ && !gone_; }

  std::vector<Pending>::iterator Next() {
    return std::min_element(pending_.begin(), pending_.end(),
                            [](const Pending& a, const Pending& b) { return a.at_s < b.at_s; });
  }

  // Lets everything happen that is due.
  void Deliver() {
    for (auto next = Next(); next != pending_.end() && next->at_s <= clock_.passed + kStep_s; next = Next()) {
      const Pending due = *next;
      if (due.step.kind == Exchange::Step::Endless) {
        next->at_s += due.step.delay_s;
      } else {
        pending_.erase(next);
      }
      switch (due.step.kind) {
        case Exchange::Step::Characters:
        case Exchange::Step::Endless:
          if (open_ && !gone_) received_ += due.step.characters;
          break;
        case Exchange::Step::CommunicationEvent:
          // Nobody hears of an empty send buffer without having asked.
          if (open_ && (due.step.event != platform::kCommEventSendDone || threshold_ > 0))
            Raise(due.step.event);
          break;
        case Exchange::Step::DeviceGone:
          gone_ = true;
          if (open_) fault_ = QStringLiteral("verschwunden");
          break;
      }
    }
  }

  FakeClock& clock_;
  std::deque<Exchange> script_;
  std::vector<Pending> pending_;
  QByteArray received_;
  QString settings_;
  QString fault_;
  bool open_ = false;
  bool rts_ = false;
  bool gone_ = false;
  int threshold_ = 0;
  int event_ = platform::kCommEventNone;
  int waits_ = 0;
};

}  // namespace kalivor::test
