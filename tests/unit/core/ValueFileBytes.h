// Value files put together byte by byte, without the code under test.
#pragma once

#include "base/Windows1252.h"

namespace kalivor::test {

/// Four bytes, the lowest first.
inline QByteArray Number(qint32 value) {
  QByteArray bytes;
  for (int i = 0; i < 4; ++i)
    bytes += static_cast<char>(static_cast<quint32>(value) >> (8 * i) & 0xFF);
  return bytes;
}

inline QByteArray Text(const QString& text, int width) {
  return BytesFromText(text).leftJustified(width, ' ', true);
}

/// A record of 62 bytes.
inline QByteArray Current(qint32 value, const QString& valueText, const QString& name, const QString& type) {
  return Number(value) + Text(valueText, 20) + Text(name, 30) + Text(type, 8);
}

/// A record of 52 bytes.
inline QByteArray Old(qint32 value, const QString& valueText, const QString& name, const QString& type) {
  return Number(value) + Text(valueText, 20) + Text(name, 20) + Text(type, 8);
}

}  // namespace kalivor::test
