// Counters of line errors, as a serial driver keeps them.
#include "platform/posix/LineErrorCounters.h"

#include <linux/serial.h>
#include <sys/ioctl.h>

namespace kalivor::platform {

std::optional<LineErrorCounts> DriverLineErrorCounters::Read(int fd) {
  serial_icounter_struct counters{};
  if (ioctl(fd, TIOCGICOUNT, &counters) != 0) return std::nullopt;
  return LineErrorCounts{counters.frame, counters.overrun, counters.parity, counters.brk,
                         counters.buf_overrun};
}

}  // namespace kalivor::platform
