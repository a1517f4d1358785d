// The simulated controller behind a pseudo-terminal.
#pragma once

#include "sim/Line.h"
#include "sim/LineModel.h"

namespace kalivor::sim {

/// Blocks SIGINT and SIGTERM and returns a descriptor that becomes readable when one of them arrives, or -1.
/// Call before other threads start.
[[nodiscard]] int StopSignalDescriptor();

/// A program opens the slave device like a serial port, also anew for every telegram; the model answers it.
class PtyLine final : public Line {
 public:
  /// A program that was killed leaves the device closed to other users' programs. After so many seconds
  /// without a request, longer than any program waits for a reply, it is opened to them again.
  static constexpr double kStaleAfter_s = 3;

  /// `model` must outlive the line. Run() ends when `stopDescriptor` becomes readable.
  PtyLine(LineModel& model, int stopDescriptor, double staleAfter_s = kStaleAfter_s)
      : model_(model), stopDescriptor_(stopDescriptor), staleAfter_s_(staleAfter_s) {}
  ~PtyLine() override { Close(); }
  PtyLine(const PtyLine&) = delete;
  PtyLine& operator=(const PtyLine&) = delete;

  /// Opens a pseudo-terminal in raw mode at 9600 baud.
  [[nodiscard]] QString Open() override;

  /// Makes `path` a symbolic link to the device. Another symbolic link of that name is replaced in one step,
  /// anything else refused.
  [[nodiscard]] QString Link(const QString& path) override;
  [[nodiscard]] QString DeviceName() const override { return deviceName_; }

  /// Sleeps until the next byte comes or is to go out.
  [[nodiscard]] End Run() override;

  /// Removes the link, if it is still ours, and closes the terminal: whoever has it open sees a hang-up.
  void Close() override;

 private:
  void ReceiveFromPc();
  void SendToPc(const QByteArray& bytes) const;
  [[nodiscard]] int Baud() const;
  void ReleaseStaleExclusiveUse();

  LineModel& model_;
  int stopDescriptor_;
  double staleAfter_s_;
  int master_ = -1;
  int slave_ = -1;
  QString deviceName_;
  QString link_;
  double lastTraffic_ = 0;
  bool exclusiveUseChecked_ = true;
};

}  // namespace kalivor::sim
