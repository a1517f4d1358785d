// Text and number helpers: hexadecimal, padding, scaled display of parameter values.
#pragma once

#include <QString>

namespace kalivor::su {

/// True when every character is a hexadecimal digit, of either case.
[[nodiscard]] bool IsHex(QStringView text);

/// Value of hexadecimal text of any length, either case; a character that is no digit counts as 0.
[[nodiscard]] double HexToNumber(QStringView text);

/// The same for two's complement of as many digits as `text` has: a first character of "8" or above in code
/// order means negative.
[[nodiscard]] double SignedHexToNumber(QStringView text);

/// Upper-case hexadecimal, padded with zeros on the left to 16 digits and cut from the left to `length`
/// characters (so at most 16 zeros are put in front). Fractions are rounded half to even; negative numbers
/// are written in 32-bit two's complement.
/// Throws RuntimeError (Overflow) below -2^31 and from 2^63 on.
[[nodiscard]] QString HexPad(double value, int length);

/// The same for a text, read by LeadingNumber().
[[nodiscard]] QString HexPad(QStringView value, int length);

/// `text` padded with `fill` to `width` characters: alignment "R" puts the fill in front, "L" behind, any
/// other returns the text unchanged. Longer texts are never cut; a fill of several characters is repeated
/// whole, once for each missing character.
[[nodiscard]] QString Align(const QString& text, int width, QStringView alignment, QStringView fill);

/// A value as the parameter tree shows it: `dropped` low-order digits are left out (not rounded), the next
/// `decimals` stand behind a point; the integer part is right-aligned in `width` with `fill`, and blanks
/// follow up to width + reserve + 1 characters. A negative value whose integer part is 0 loses its sign; a
/// negative `dropped` counts as 0.
/// Throws RuntimeError (Overflow) when dropped + decimals is above 9.
[[nodiscard]] QString ScaledNumber(qint32 value, int dropped, int decimals, int width, int reserve,
                                   QStringView fill);

}  // namespace kalivor::su
