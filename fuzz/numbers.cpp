// Numbers and characters: each conversion against another way of doing it, and back.
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "PlainReading.h"
#include "Targets.h"
#include "base/Numbers.h"
#include "base/Windows1252.h"
#include "base/su.h"
#include "platform/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

// Nothing when the conversion fails.
template <typename Conversion>
auto Try(Conversion&& conversion) -> std::optional<decltype(conversion())> {
  try {
    return conversion();
  } catch (const RuntimeError&) {
    return {};
  }
}

template <typename... Values>
QString Printed(const char* format, Values... values) {
  std::array<char, 64> text{};
  (void)std::snprintf(text.data(), text.size(), format, values...);
  return QString::fromLatin1(text.data());
}

void CheckCharacters(QByteArrayView input, const QString& text) {
  Require(text.size() == input.size(), "a byte is a character");
  Require(BytesFromText(text) == input, "bytes come back from their characters");
  for (qsizetype i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<quint8>(input.at(i));
    Require(text.at(i) == CharacterFromByte(byte), "a text's characters are those of its bytes");
    Require(byte >= 0x80 && byte <= 0x9F ? true : text.at(i).unicode() == byte, "most are their own code");
  }
  // Any characters at all: what comes back is the same or "?".
  QString wide(input.size() / 2, Qt::Uninitialized);
  std::memcpy(wide.data(), input.data(), static_cast<std::size_t>(wide.size()) * 2);
  const QString back = TextFromBytes(BytesFromText(wide));
  for (qsizetype i = 0; i < wide.size(); ++i)
    Require(back.at(i) == wide.at(i) || back.at(i) == u'?', "a character comes back or is a question mark");
}

void CheckDecimal(const QString& text) {
  const std::optional<double> plain = PlainNumberOf(text);
  const std::optional<double> number = Try([&] { return LeadingNumber(text); });
  Require(number == plain, "the number at the beginning of a text");
  const auto whole = [&](auto limits) {
    using Int = decltype(limits);
    return PlainInteger(text, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max());
  };
  const std::optional<qint16> narrow = Try([&] { return LeadingInt16(text); });
  Require(narrow ? whole(qint16{}) == *narrow : !whole(qint16{}), "a number of 16 bits");
  const std::optional<qint32> wide = Try([&] { return LeadingInt32(text); });
  Require(wide ? whole(qint32{}) == *wide : !whole(qint32{}), "a number of 32 bits");

  // A strict number is a leading one, but for the comma and the characters in between.
  const std::optional<double> strict = Try([&] { return StrictNumber(text); });
  if (strict) {
    QString point = text.trimmed();
    Require(PlainNumberOf(point.replace(u',', u'.')) == strict, "a strict number is the leading one");
  }
}

void CheckHexadecimal(const QString& text) {
  double value = 0;
  double inverted = 0;
  for (const QChar c : text) {
    const auto digit = static_cast<double>(std::max<qsizetype>(
        0,
        u"0123456789ABCDEF"_s.indexOf(c, 0, c.unicode() < 0x80 ? Qt::CaseInsensitive : Qt::CaseSensitive)));
    value = value * 16 + digit;
    inverted = inverted * 16 + (15 - digit);
  }
  const bool negative = !text.isEmpty() && text.front() >= u'8';
  Require(su::HexToNumber(text) == value, "the value of hexadecimal digits");
  Require(su::SignedHexToNumber(text) == (negative ? -(inverted + 1) : value),
          "the value of two's complement");
}

void CheckInteger(qint32 number, int digits) {
  Require(su::HexPad(number, 8) == Printed("%08X", static_cast<unsigned>(number)),
          "eight hexadecimal digits");
  Require(su::HexPad(number, 4) == Printed("%08X", static_cast<unsigned>(number)).right(4), "the last four");
  Require(su::SignedHexToNumber(su::HexPad(number, 8)) == number, "a number comes back from hexadecimal");
  Require(BlankNumber(number) == Printed("% d", number), "a blank stands for the sign");

  // What the tree shows: the value without `dropped` digits, with `decimals` behind the point.
  const int dropped = digits % 4;
  const int decimals = digits / 4 % 6;
  const qint64 unit = PowerOfTen(decimals);
  const qint64 shown = number / PowerOfTen(dropped);
  QString expected = Printed("%6lld", static_cast<long long>(shown / unit));
  if (decimals > 0)
    expected += Printed(".%0*lld", decimals, static_cast<long long>(std::llabs(shown % unit)));
  while (expected.size() < 9)
    expected += u' ';
  Require(su::ScaledNumber(number, dropped, decimals, 6, 2, u" ") == expected,
          "a value as the tree shows it");

  // What the editor shows reads back as the same value.
  const double displayed = number / std::pow(10.0, digits % 10);
  const double back = LeadingNumber(PlainNumber(displayed)) * std::pow(10.0, digits % 10);
  Require(static_cast<qint64>(std::rint(back)) == number, "a displayed value reads back the same");
}

void CheckDouble(double number) {
  if (!std::isfinite(number)) return;
  const double magnitude = std::fabs(number);
  if (magnitude != 0 && (magnitude < 1e-300 || magnitude > 1e300)) return;
  const double back = PlainNumberOf(PlainNumber(number)).value_or(-1);
  Require(std::fabs(back - number) <= magnitude * 1e-14, "a number in decimal keeps 15 digits");
  const std::optional<qint32> rounded = Try([&] { return RoundToInt32(number); });
  Require(rounded ? *rounded == std::rint(number) : !(magnitude <= 2147483647.0), "rounding half to even");
}

}  // namespace

void Numbers(QByteArrayView input) {
  const QString text = TextFromBytes(input);
  CheckCharacters(input, text);
  CheckDecimal(text);
  CheckHexadecimal(text.left(64));
  if (input.size() < 9) return;
  qint32 integer = 0;
  double number = 0;
  std::memcpy(&integer, input.data(), sizeof integer);
  std::memcpy(&number, input.data() + 1, sizeof number);
  CheckInteger(integer, static_cast<quint8>(input.at(4)));
  CheckDouble(number);
}

}  // namespace kalivor::fuzz
