// The settings of a serial line, from their usual notation.
#pragma once

#include <termios.h>

#include <QStringView>
#include <optional>

namespace kalivor::platform {

struct LineSettings {
  speed_t speed = B0;
  tcflag_t flags = 0;  ///< CSIZE, PARENB, PARODD, CMSPAR and CSTOPB as control flags

  [[nodiscard]] bool HasParity() const { return (flags & PARENB) != 0; }
};

/// Reads "baud,parity,data bits,stop bits": a standard rate from 50 to 4000000; n, o, e, m or s in either
/// case; 5 to 8; 1 or 2. None for anything else, blanks and leading zeros included.
[[nodiscard]] std::optional<LineSettings> ParseLineSettings(QStringView text);

}  // namespace kalivor::platform
