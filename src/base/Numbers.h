// The one place for each conversion between texts and numbers, and for checked arithmetic.
#pragma once

#include <QString>

namespace kalivor {

/// The number at the beginning of `text`. Blanks, tabs and line feeds are ignored wherever they stand; then
/// one sign, digits with at most one point, an exponent (E or e, a sign, digits; ignored when it has no
/// digits), up to the first other character. "12,5" is 12, "1 000" is 1000, "abc" is 0. After "&H" up to 4
/// hexadecimal digits are a 16-bit, 5 to 8 a 32-bit number in two's complement.
/// Throws RuntimeError (Overflow) beyond the range of a double.
[[nodiscard]] double LeadingNumber(QStringView text);

/// LeadingNumber rounded half to even into the field. Throws RuntimeError (Overflow) when it does not fit.
[[nodiscard]] qint16 LeadingInt16(QStringView text);
[[nodiscard]] qint32 LeadingInt32(QStringView text);

/// The number that the whole of `text` (blanks around it aside) is: a sign, digits with one point or comma,
/// an exponent. Throws RuntimeError: TypeMismatch when it is no number, Overflow when it does not fit.
[[nodiscard]] double StrictNumber(QStringView text);
[[nodiscard]] qint16 StrictInt16(QStringView text);
[[nodiscard]] qint32 StrictInt32(QStringView text);

/// Rounds half to even. Throws RuntimeError (Overflow) when the result does not fit.
[[nodiscard]] qint16 RoundToInt16(double number);
[[nodiscard]] qint32 RoundToInt32(double number);

/// Checked into 16 or 32 bits; throws RuntimeError (Overflow).
[[nodiscard]] qint16 ToInt16(qint64 number);
[[nodiscard]] qint32 ToInt32(qint64 number);

/// 10 to the power `exponent` for 0..9, the powers that fit a 32-bit number. A negative exponent counts as 0;
/// throws RuntimeError (Overflow) above 9.
[[nodiscard]] qint64 PowerOfTen(int exponent);

/// In decimal, with a blank in front of a number that is not negative: " 0", " 7", "-1".
[[nodiscard]] QString BlankNumber(qint64 number);

/// In decimal with up to 15 significant digits, without exponent: "12.34", "-0.5", "12".
[[nodiscard]] QString PlainNumber(double number);

}  // namespace kalivor
