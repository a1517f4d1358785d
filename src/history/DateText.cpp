#include "history/DateText.h"

#include <QList>
#include <algorithm>

namespace kalivor::history {
namespace {

std::optional<int> Number(QStringView text) {
  const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
  constexpr qsizetype kMostDigits = 4;
  if (text.isEmpty() || text.size() > kMostDigits || !std::ranges::all_of(text, isDigit)) return std::nullopt;
  return text.toInt();
}

}  // namespace

std::optional<Days> DaysOf(QStringView text) {
  text = text.trimmed();
  if (text.isEmpty()) return Days{};
  QList<int> numbers;
  for (const QStringView part : text.split(u'.')) {
    const std::optional<int> number = Number(part.trimmed());
    if (!number) return std::nullopt;
    numbers.append(*number);
  }
  constexpr int kCentury = 2000;
  const int year = numbers.back() < 100 ? numbers.back() + kCentury : numbers.back();
  Days days;
  switch (numbers.size()) {
    case 1:
      days = {QDate(year, 1, 1), QDate(year, 12, 31)};
      break;
    case 2:
      days.first = QDate(year, numbers[0], 1);
      days.last = QDate(year, numbers[0], days.first.daysInMonth());
      break;
    case 3:
      days.first = days.last = QDate(year, numbers[1], numbers[0]);
      break;
    default:
      break;
  }
  return days.first.isValid() ? std::optional(days) : std::nullopt;
}

}  // namespace kalivor::history
