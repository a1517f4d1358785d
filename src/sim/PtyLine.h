// The simulated controller behind a pseudo-terminal.
#pragma once

#include <QString>

#include "sim/LineModel.h"

namespace kalivor::sim {

/// Blocks SIGINT and SIGTERM and returns a descriptor that becomes readable when one of them arrives, or -1.
/// Call before other threads start.
[[nodiscard]] int StopSignalDescriptor();

/// A program opens the slave device like a serial port, also anew for every telegram; the model answers it.
class PtyLine {
 public:
  /// How Run() ended.
  enum class End { Stopped, Unplugged, Failed };

  /// A program that was killed leaves the device closed to other users' programs. After so many seconds
  /// without a request, longer than any program waits for a reply, it is opened to them again.
  static constexpr double kStaleAfter_s = 3;

  /// `model` must outlive the line. Its times are those of Seconds().
  explicit PtyLine(LineModel& model, double staleAfter_s = kStaleAfter_s)
      : model_(model), staleAfter_s_(staleAfter_s) {}
  ~PtyLine() { Close(); }
  PtyLine(const PtyLine&) = delete;
  PtyLine& operator=(const PtyLine&) = delete;

  /// Opens a pseudo-terminal in raw mode at 9600 baud. Returns "" or a German description of the failure.
  [[nodiscard]] QString Open();

  /// Makes `path` a symbolic link to the device. Another symbolic link of that name is replaced in one step,
  /// anything else refused. Returns "" or a German description of the failure.
  [[nodiscard]] QString Link(const QString& path);

  /// The device to open; "" while closed.
  [[nodiscard]] const QString& DeviceName() const { return deviceName_; }

  /// Answers until `stopDescriptor` becomes readable or the line vanishes. It sleeps until the next byte
  /// comes or is to go out.
  [[nodiscard]] End Run(int stopDescriptor);

  /// Removes the link, if it is still ours, and closes the terminal: whoever has it open sees a hang-up.
  void Close();

  /// Seconds on the system's monotonic clock.
  [[nodiscard]] static double Seconds();

 private:
  void ReceiveFromPc();
  void SendToPc(const QByteArray& bytes) const;
  [[nodiscard]] int Baud() const;
  void ReleaseStaleExclusiveUse();

  LineModel& model_;
  double staleAfter_s_;
  int master_ = -1;
  int slave_ = -1;
  QString deviceName_;
  QString link_;
  double lastTraffic_ = 0;
  bool exclusiveUseChecked_ = true;
};

}  // namespace kalivor::sim
