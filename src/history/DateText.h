// Days as the user types them into a filter.
#pragma once

#include <QDate>
#include <QStringView>
#include <optional>

namespace kalivor::history {

/// The first and the last day of what "4.3.2026", "3.2026" or "2026" says; a year of two digits is one of
/// this century. Invalid dates for "", nothing for any other text.
struct Days {
  QDate first;
  QDate last;

  bool operator==(const Days&) const = default;
};
[[nodiscard]] std::optional<Days> DaysOf(QStringView text);

}  // namespace kalivor::history
