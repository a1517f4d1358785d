// Counters of line errors, as a serial driver keeps them.
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

class LineErrorCounters {
 public:
  virtual ~LineErrorCounters() = default;

  /// The counters of the open port `fd`; none when its driver does not count.
  [[nodiscard]] virtual std::optional<LineErrorCounts> Read(int fd) = 0;
};

/// Asks the driver.
class DriverLineErrorCounters final : public LineErrorCounters {
 public:
  [[nodiscard]] std::optional<LineErrorCounts> Read(int fd) override;
};

}  // namespace kalivor::platform
