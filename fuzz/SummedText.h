// Texts that end their beginning with a sum: the search cannot guess it, so it is put right.
#pragma once

#include <QByteArray>

namespace kalivor::fuzz {

/// The plain CRC-32, bit by bit, as eight digits.
[[nodiscard]] inline QByteArray PlainSum(QByteArrayView bytes) {
  quint32 sum = 0xFFFFFFFF;
  for (const char c : bytes) {
    sum ^= static_cast<quint8>(c);
    for (int bit = 0; bit < 8; ++bit)
      sum = (sum >> 1) ^ (sum % 2 != 0 ? 0xEDB88320U : 0U);
  }
  return QByteArray::number(~sum, 16).toUpper().rightJustified(8, '0');
}

/// `bytes` with the right sum behind the first "Prüfsumme: ", if there is one.
[[nodiscard]] inline QByteArray WithRightSum(QByteArrayView bytes) {
  const QByteArrayView key = "\nPrüfsumme: ";
  const qsizetype at = bytes.indexOf(key);
  if (at < 0) return bytes.toByteArray();
  const QByteArrayView rest = bytes.sliced(at + key.size());
  return bytes.first(at + key.size()).toByteArray() + PlainSum(bytes.first(at + 1)) +
         rest.sliced(qMin<qsizetype>(rest.size(), 8)).toByteArray();
}

}  // namespace kalivor::fuzz
