// The settings of a serial line, from their usual notation.
#pragma once

#include <QStringView>
#include <optional>

namespace kalivor::platform {

struct LineSettings {
  int baud = 9600;    ///< a standard rate from 50 to 4000000
  char parity = 'n';  ///< none, odd, even, mark or space: n, o, e, m or s
  int dataBits = 8;   ///< 5 to 8
  int stopBits = 1;   ///< 1 or 2

  [[nodiscard]] bool HasParity() const { return parity != 'n'; }

  bool operator==(const LineSettings&) const = default;
};

/// Reads "baud,parity,data bits,stop bits", the parity in either case. None for anything else, blanks and
/// leading zeros included.
[[nodiscard]] std::optional<LineSettings> ParseLineSettings(QStringView text);

}  // namespace kalivor::platform
