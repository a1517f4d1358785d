#include "base/su.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "base/Numbers.h"
#include "platform/RuntimeError.h"

namespace kalivor::su {
namespace {

int Digit(QChar c) {
  if (c >= u'0' && c <= u'9') return c.unicode() - u'0';
  if (c >= u'A' && c <= u'F') return c.unicode() - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c.unicode() - u'a' + 10;
  return 0;
}

void AppendRepeated(QString& text, QStringView piece, qsizetype times) {
  if (piece.size() == 1 && times > 0) {
    // Nearly always, and the tree is made of little else.
    text.resize(text.size() + times, piece.front());
    return;
  }
  for (; times > 0; --times)
    text += piece;
}

// Characters of a 64-bit number with its sign.
constexpr int kLongestNumber = 20;

// A number in decimal, with `fill` in front up to `width` characters.
void AppendRight(QString& text, qint64 number, int width, QStringView fill) {
  std::array<char, kLongestNumber> digits{};
  const char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  const QLatin1StringView plain(digits.begin(), end);
  AppendRepeated(text, fill, width - plain.size());
  text += plain;
}

}  // namespace

bool IsHex(QStringView text) {
  return std::ranges::all_of(text, [](QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
  });
}

double HexToNumber(QStringView text) {
  double result = 0;
  for (const QChar c : text)
    result = result * 16 + Digit(c);
  return result;
}

double SignedHexToNumber(QStringView text) {
  if (text.isEmpty() || text.front() < u'8') return HexToNumber(text);
  double sum = 0;
  for (const QChar c : text)
    sum = sum * 16 + (15 - Digit(c));
  return -(sum + 1);
}

QString HexPad(double value, int length) {
  const double rounded = std::nearbyint(value);  // half to even
  if (!(rounded >= -2147483648.0 && rounded < 9223372036854775808.0)) {
    throw RuntimeError(RuntimeError::Kind::Overflow);
  }
  const quint64 bits =
      rounded < 0 ? static_cast<quint32>(static_cast<qint32>(rounded)) : static_cast<quint64>(rounded);
  constexpr int kZeros = 16;
  const QString digits = QString(kZeros, u'0') + QString::number(bits, 16).toUpper();
  return digits.right(std::max(0, length));
}

QString HexPad(QStringView value, int length) {
  return HexPad(LeadingNumber(value), length);
}

QString Align(const QString& text, int width, QStringView alignment, QStringView fill) {
  const bool right = alignment == u"R";
  const qsizetype missing = width - text.size();
  if (missing <= 0 || (!right && alignment != u"L")) return text;
  QString aligned;
  aligned.reserve(text.size() + missing * fill.size());
  if (!right) aligned += text;
  AppendRepeated(aligned, fill, missing);
  if (right) aligned += text;
  return aligned;
}

QString ScaledNumber(qint32 value, int dropped, int decimals, int width, int reserve, QStringView fill) {
  // Before anything is computed: a negative count must not take decimals away.
  dropped = std::max(0, dropped);
  const qint64 whole = PowerOfTen(dropped + decimals);
  const qint64 quotient = value / whole;
  const qint64 remainder = value % whole;
  const qint64 fraction = remainder / PowerOfTen(dropped);
  QString text;
  text.reserve(std::max(0, width) * fill.size() + std::max(0, reserve) + kLongestNumber);
  AppendRight(text, quotient, width, fill);
  if (decimals > 0) {
    text += u'.';
    AppendRight(text, std::abs(fraction), decimals, u"0");
  }
  AppendRepeated(text, u" ", width + reserve + 1 - text.size());
  return text;
}

}  // namespace kalivor::su
