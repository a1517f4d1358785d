// The settings of a serial line as terminals keep them.
#pragma once

#include <termios.h>

#include "platform/plain/LineSettings.h"

namespace kalivor::platform {

/// The code of a rate in baud, and back; B0 and 0 for one that has none.
[[nodiscard]] speed_t SpeedOf(int baud);
[[nodiscard]] int BaudOf(speed_t speed);

/// CSIZE, PARENB, PARODD, CMSPAR and CSTOPB.
[[nodiscard]] tcflag_t ControlFlags(const LineSettings& settings);

}  // namespace kalivor::platform
