// The frame of telegrams, built as the controller does it: apart from the code that it is to test.
#pragma once

#include <QByteArray>

namespace kalivor::sim {

inline constexpr char kRequestStart = '#';
inline constexpr char kTelegramEnd = '\r';

/// Characters of a reply in front of the command letter, and of checksum and end behind the payload.
inline constexpr int kReplyHeader = 5;
inline constexpr int kTelegramTail = 3;

/// The low digits of `value` as upper-case hexadecimal, padded with zeros.
[[nodiscard]] inline QByteArray Hex(unsigned value, int digits) {
  return QByteArray::number(value, 16).toUpper().right(digits).rightJustified(digits, '0');
}

/// Sum of all bytes, modulo 256, as two hexadecimal digits.
[[nodiscard]] inline QByteArray Checksum(QByteArrayView content) {
  unsigned sum = 0;
  for (const char byte : content)
    sum += static_cast<unsigned char>(byte);
  return Hex(sum, 2);
}

/// `content` with checksum and end.
[[nodiscard]] inline QByteArray Sealed(const QByteArray& content) {
  return content + Checksum(content) + kTelegramEnd;
}

}  // namespace kalivor::sim
