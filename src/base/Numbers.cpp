#include "base/Numbers.h"

#include <QLocale>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "platform/RuntimeError.h"

namespace kalivor {
namespace {

bool IsDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

bool IsHexDigit(QChar c) {
  return IsDigit(c) || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

// The number after "&H", `text` being what follows it.
double HexLiteral(QStringView text) {
  const auto end = std::find_if_not(text.begin(), text.end(), IsHexDigit);
  const QStringView digits(text.begin(), end);
  if (digits.size() > 8) throw RuntimeError(RuntimeError::Kind::Overflow);
  const uint value = digits.toUInt(nullptr, 16);
  return digits.size() <= 4 ? static_cast<double>(static_cast<qint16>(value))
                            : static_cast<double>(static_cast<qint32>(value));
}

// The decimal number at the beginning of `text`, with `length` set to the characters it takes, 0 if none.
double DecimalNumber(QStringView text, qsizetype& length) {
  const QByteArray plain = text.toLatin1();
  const char* const start = plain.begin() + (plain.startsWith('+') || plain.startsWith('-') ? 1 : 0);
  const char* end = start;
  double unsignedNumber = 0;
  // The words for infinity are no numbers here.
  if (start != plain.end() && (*start == '.' || IsDigit(QLatin1Char(*start))))
    end = std::from_chars(start, plain.end(), unsignedNumber).ptr;
  length = end == start ? 0 : end - plain.begin();
  // Gives 0 for what is too small for a double, and infinity for what is too large.
  const double number = QLocale::c().toDouble(text.first(length));
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
  return DecimalNumber(dense, length);
}

qint16 LeadingInt16(QStringView text) {
  return RoundToInt16(LeadingNumber(text));
}
qint32 LeadingInt32(QStringView text) {
  return RoundToInt32(LeadingNumber(text));
}

double StrictNumber(QStringView text) {
  const QString plain = text.trimmed().toString().replace(u',', u'.');
  qsizetype length = 0;
  const double number = DecimalNumber(plain, length);
  if (length == 0 || length != plain.size()) throw RuntimeError(RuntimeError::Kind::TypeMismatch);
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
