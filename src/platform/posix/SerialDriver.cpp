// What a serial driver is asked for besides characters and settings: error counters and the RTS line.
#include "platform/posix/SerialDriver.h"

#include <linux/serial.h>
#include <sys/ioctl.h>

#include <cerrno>

namespace kalivor::platform {

std::optional<LineErrorCounts> SystemSerialDriver::ErrorCounts(int fd) {
  serial_icounter_struct counters{};
  if (ioctl(fd, TIOCGICOUNT, &counters) != 0) return std::nullopt;
  return LineErrorCounts{counters.frame, counters.overrun, counters.parity, counters.brk,
                         counters.buf_overrun};
}

int SystemSerialDriver::SetRts(int fd, bool raised) {
  const int line = TIOCM_RTS;
  return ioctl(fd, raised ? TIOCMBIS : TIOCMBIC, &line) == 0 ? 0 : errno;
}

}  // namespace kalivor::platform
