// A serial port through the terminal driver.
#pragma once

#include <termios.h>

#include <QByteArray>
#include <functional>
#include <memory>
#include <optional>

#include "platform/SerialControl.h"
#include "platform/plain/CommEvents.h"
#include "platform/plain/LineSettings.h"
#include "platform/plain/PortFault.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/MarkedInput.h"
#include "platform/posix/SerialDriver.h"

namespace kalivor::platform {

/// Exclusive use is claimed twice: from programs that lock the device file, and from all others of users
/// without privileges. Pseudo-terminals are accepted as ports; as they know neither parity nor data bits nor
/// modem lines, those are not insisted on there.
///
/// Single-threaded. OnComm must neither open nor close the port.
class PosixSerialControl final : public SerialControl {
 public:
  /// The device path of a port number, "" when there is none.
  using DeviceResolver = std::function<QString(int number)>;

  explicit PosixSerialControl(DeviceResolver resolver,
                              std::unique_ptr<SerialDriver> driver = std::make_unique<SystemSerialDriver>());
  ~PosixSerialControl() override;
  PosixSerialControl(const PosixSerialControl&) = delete;
  PosixSerialControl& operator=(const PosixSerialControl&) = delete;

  /// Characters kept for Input(); more are left to the driver, which reports an overflow of its own buffer.
  static constexpr qsizetype kInputLimit_bytes = 65536;

  [[nodiscard]] bool Open(int number, const QString& settings) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return port_.Valid(); }

  bool SetRts(bool raised) override;
  bool ClearInBuffer() override;
  bool ClearOutBuffer() override;

  /// What the driver has taken counts as sent: kCommEventSendDone is reported at once, or during a later
  /// wait.
  void SetSThreshold(int characters) override;
  void Output(const QByteArray& characters) override;
  [[nodiscard]] int InBufferCount() override;
  [[nodiscard]] QByteArray Input() override;

  /// Sends what is queued meanwhile.
  [[nodiscard]] InputWait WaitForInput(double seconds) override;
  [[nodiscard]] int CommEvent() override;
  [[nodiscard]] QString Fault() const override { return fault_.Text(); }

 private:
  [[nodiscard]] PortFault OpenPort(int number, const QString& settings);
  bool Configure(const LineSettings& settings, const termios& present);
  void NoteLineGone();
  void LowerLatency() const;
  void FlushOutput();
  bool ReadPiece();
  void ReadAll();
  void NoteMark(MarkedInput::Mark mark);
  [[nodiscard]] int NewlyCountedError();

  DeviceResolver resolver_;
  std::unique_ptr<SerialDriver> driver_;
  Descriptor port_;
  bool isPseudoTerminal_ = false;
  bool hasParity_ = false;
  bool lineGone_ = false;
  PortFault fault_;
  QString device_;           // the open one
  bool unsent_ = false;      // the driver may hold characters that have not gone out
  std::optional<bool> rts_;  // as it was set since Open()
  CommEvents events_{*this};
  bool driverCountsErrors_ = false;  // a counter has moved since Open()
  std::optional<LineErrorCounts> counted_;
  QByteArray output_;  // queued, not yet taken by the driver
  QByteArray input_;   // received, not yet taken by Input()
  MarkedInput marks_;
};

}  // namespace kalivor::platform
