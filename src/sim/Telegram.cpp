// Hexadecimal digits and checksums.
#include "sim/Telegram.h"

namespace kalivor::sim {

QByteArray Hex(unsigned value, int digits) {
  return QByteArray::number(value, 16).toUpper().right(digits).rightJustified(digits, '0');
}

QByteArray Checksum(QByteArrayView content) {
  unsigned sum = 0;
  for (const char byte : content)
    sum += static_cast<unsigned char>(byte);
  return Hex(sum, 2);
}

QByteArray Sealed(const QByteArray& content) {
  return content + Checksum(content) + kTelegramEnd;
}

}  // namespace kalivor::sim
