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
[[nodiscard]] QByteArray Hex(unsigned value, int digits);

/// Sum of all bytes, modulo 256, as two hexadecimal digits.
[[nodiscard]] QByteArray Checksum(QByteArrayView content);

/// `content` with checksum and end.
[[nodiscard]] QByteArray Sealed(const QByteArray& content);

}  // namespace kalivor::sim
