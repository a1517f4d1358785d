#include "base/su.h"

#include <algorithm>
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

}  // namespace

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
  const QString digits = QStringLiteral("0000000000000000") + QString::number(bits, 16).toUpper();
  return digits.right(std::max(0, length));
}

QString HexPad(QStringView value, int length) {
  return HexPad(LeadingNumber(value), length);
}

QString Align(const QString& text, int width, QStringView alignment, QStringView fill) {
  const qsizetype missing = std::max<qsizetype>(0, width - text.size());
  if (alignment == u"R") return fill.toString().repeated(missing) + text;
  if (alignment == u"L") return text + fill.toString().repeated(missing);
  return text;
}

QString ScaledNumber(qint32 value, int dropped, int decimals, int width, int reserve, QStringView fill) {
  const qint64 whole = PowerOfTen(dropped + decimals);
  const qint64 quotient = value / whole;
  const qint64 remainder = value % whole;
  const qint64 fraction = remainder / PowerOfTen(dropped);
  QString text = Align(QString::number(quotient), width, u"R", fill);
  if (decimals > 0) text += u'.' + Align(QString::number(std::abs(fraction)), decimals, u"R", u"0");
  return text.leftJustified(width + reserve + 1, u' ');
}

}  // namespace kalivor::su
