// A serial port with a simulated controller at its other end, in the time of a given clock: for tests that
// run whole transfers without waiting.
#pragma once

#include "platform/Clock.h"
#include "platform/SerialControl.h"
#include "sim/LineModel.h"

namespace kalivor::sim {

/// Waiting sleeps on the clock, which is to advance by it. Bytes that arrive while the port is closed are
/// lost.
class SimulatedLine final : public platform::SerialControl {
 public:
  /// `clock` and `model` must outlive the line.
  SimulatedLine(platform::Clock& clock, LineModel& model) : clock_(clock), model_(model) {}

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
  [[nodiscard]] QString Fault() const override { return fault_; }

 private:
  double Now();
  bool Gone();
  void Settle();

  platform::Clock& clock_;
  LineModel& model_;
  bool open_ = false;
  bool unplugged_ = false;
  int baud_ = 0;
  int sendThreshold_ = 0;
  bool sendEventDue_ = false;
  int event_ = platform::kCommEventNone;
  QString fault_;
  QByteArray input_;
  double passed_ = 0;     // seconds since the first look at the clock, without its backward jumps
  double lastLook_ = -1;  // seconds since midnight
};

}  // namespace kalivor::sim
