#include "base/Numbers.h"

#include <QLocale>
#include <cmath>
#include <limits>
#include <optional>

#include "platform/RuntimeError.h"

namespace kalivor {
namespace {

bool IsDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

// -1 when `c` is no hexadecimal digit.
int HexDigit(QChar c) {
  if (IsDigit(c)) return c.unicode() - u'0';
  const QChar upper = c.toUpper();
  return upper >= u'A' && upper <= u'F' ? upper.unicode() - u'A' + 10 : -1;
}

// The number after "&H", `digits` being what follows it.
double HexLiteral(QStringView digits) {
  quint64 value = 0;
  int count = 0;
  for (; count < digits.size() && HexDigit(digits.at(count)) >= 0; ++count) {
    if (count == 8) throw RuntimeError(RuntimeError::Kind::Overflow);
    value = value * 16 + static_cast<quint64>(HexDigit(digits.at(count)));
  }
  return count <= 4 ? static_cast<double>(static_cast<qint16>(value))
                    : static_cast<double>(static_cast<qint32>(value));
}

// The decimal number at the beginning of `text`, with `length` set to the characters it takes, 0 if none.
// With `comma` a comma may stand for the point.
double DecimalNumber(QStringView text, bool comma, qsizetype& length) {
  QString plain;  // with a point, whatever the text had
  qsizetype at = 0;
  bool anyDigit = false;
  const auto takeDigits = [&] {
    const qsizetype from = at;
    while (at < text.size() && IsDigit(text.at(at)))
      plain.append(text.at(at++));
    return at > from;
  };
  if (at < text.size() && (text.at(at) == u'+' || text.at(at) == u'-')) {
    plain.append(text.at(at++));
  }
  anyDigit = takeDigits();
  if (at < text.size() && (text.at(at) == u'.' || (comma && text.at(at) == u','))) {
    plain.append(u'.');
    ++at;
    anyDigit = takeDigits() || anyDigit;
  }
  length = 0;
  if (!anyDigit) return 0;
  length = at;
  if (at < text.size() && (text.at(at) == u'E' || text.at(at) == u'e')) {
    const qsizetype mantissa = plain.size();
    plain.append(u'e');
    ++at;
    if (at < text.size() && (text.at(at) == u'+' || text.at(at) == u'-')) {
      plain.append(text.at(at++));
    }
    if (takeDigits()) {
      length = at;
    } else {
      plain.truncate(mantissa);
    }
  }
  // Gives 0 for what is too small for a double, and infinity for what is too large.
  const double number = QLocale::c().toDouble(plain);
  if (!std::isfinite(number)) throw RuntimeError(RuntimeError::Kind::Overflow);
  return number;
}

// Most numbers are whole and short, and need neither a copy nor the general conversion. Nothing where `text`
// is anything but a sign and digits that a double holds exactly.
std::optional<double> ShortWholeNumber(QStringView text) {
  constexpr qsizetype kExactDigits = 15;
  const bool negative = text.startsWith(u'-');
  if (negative || text.startsWith(u'+')) text = text.sliced(1);
  if (text.isEmpty() || text.size() > kExactDigits) return {};
  qint64 number = 0;
  for (const QChar c : text) {
    if (!IsDigit(c)) return {};
    number = number * 10 + (c.unicode() - u'0');
  }
  return static_cast<double>(negative ? -number : number);
}

template <typename Int>
Int RoundTo(double number) {
  const double rounded = std::nearbyint(number);  // the default rounding mode is half to even
  if (!(rounded >= static_cast<double>(std::numeric_limits<Int>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Int>::max()))) {
    throw RuntimeError(RuntimeError::Kind::Overflow);
  }
  return static_cast<Int>(rounded);
}

template <typename Int>
Int Checked(qint64 number) {
  if (number < std::numeric_limits<Int>::min() || number > std::numeric_limits<Int>::max()) {
    throw RuntimeError(RuntimeError::Kind::Overflow);
  }
  return static_cast<Int>(number);
}

}  // namespace

double LeadingNumber(QStringView text) {
  if (const std::optional<double> number = ShortWholeNumber(text)) return *number;
  QString dense;
  dense.reserve(text.size());
  for (const QChar c : text) {
    if (c != u' ' && c != u'\t' && c != u'\n') dense.append(c);
  }
  if (dense.startsWith(u"&H", Qt::CaseInsensitive)) return HexLiteral(QStringView(dense).mid(2));
  qsizetype length = 0;
  return DecimalNumber(dense, false, length);
}

qint16 LeadingInt16(QStringView text) {
  return RoundToInt16(LeadingNumber(text));
}
qint32 LeadingInt32(QStringView text) {
  return RoundToInt32(LeadingNumber(text));
}

double StrictNumber(QStringView text) {
  const QStringView trimmed = text.trimmed();
  qsizetype length = 0;
  const double number = DecimalNumber(trimmed, true, length);
  if (length == 0 || length != trimmed.size()) throw RuntimeError(RuntimeError::Kind::TypeMismatch);
  return number;
}

qint16 StrictInt16(QStringView text) {
  return RoundToInt16(StrictNumber(text));
}
qint32 StrictInt32(QStringView text) {
  return RoundToInt32(StrictNumber(text));
}

qint16 RoundToInt16(double number) {
  return RoundTo<qint16>(number);
}
qint32 RoundToInt32(double number) {
  return RoundTo<qint32>(number);
}

qint16 ToInt16(qint64 number) {
  return Checked<qint16>(number);
}
qint32 ToInt32(qint64 number) {
  return Checked<qint32>(number);
}

qint64 PowerOfTen(int exponent) {
  if (exponent > 9) throw RuntimeError(RuntimeError::Kind::Overflow);
  qint64 power = 1;
  for (int i = 0; i < exponent; ++i)
    power *= 10;
  return power;
}

QString BlankNumber(qint64 number) {
  const QString digits = QString::number(number);
  return number < 0 ? digits : u' ' + digits;
}

QString PlainNumber(double number) {
  if (number == 0) return QStringLiteral("0");
  // 15 significant digits: so many decimals stand behind the point as the digits before it leave.
  const int exponent = static_cast<int>(std::floor(std::log10(std::fabs(number))));
  QString digits = QString::number(number, 'f', std::max(0, 14 - exponent));
  if (digits.contains(u'.')) {
    while (digits.endsWith(u'0'))
      digits.chop(1);
    if (digits.endsWith(u'.')) digits.chop(1);
  }
  return digits == QStringLiteral("-0") ? QStringLiteral("0") : digits;
}

}  // namespace kalivor
