// What a serial driver is asked for besides characters and settings: error counters and the RTS line.
#pragma once

#include <optional>

namespace kalivor::platform {

/// Errors since the driver was loaded, whoever had the port open.
struct LineErrorCounts {
  int frame = 0;
  int overrun = 0;  ///< lost in the hardware
  int parity = 0;
  int brk = 0;
  int buf_overrun = 0;  ///< lost in the driver's receive buffer
};

/// Each operation is on the open port `fd`.
class SerialDriver {
 public:
  virtual ~SerialDriver() = default;

  /// The counters; none when the driver does not count.
  [[nodiscard]] virtual std::optional<LineErrorCounts> ErrorCounts(int fd) = 0;

  /// Raises or drops the RTS line. 0, or the system's error number.
  [[nodiscard]] virtual int SetRts(int fd, bool raised) = 0;
};

/// Asks the driver of the system.
class SystemSerialDriver final : public SerialDriver {
 public:
  [[nodiscard]] std::optional<LineErrorCounts> ErrorCounts(int fd) override;
  [[nodiscard]] int SetRts(int fd, bool raised) override;
};

}  // namespace kalivor::platform
