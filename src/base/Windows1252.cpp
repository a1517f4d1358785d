#include "base/Windows1252.h"

#include <algorithm>
#include <array>

namespace kalivor {
namespace {

// Bytes 80 to 9F; all others equal their Unicode number.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

QChar CharacterFromByte(quint8 byte) {
  return byte >= 0x80 && byte <= 0x9F ? QChar(kUpperControls[byte - 0x80U]) : QChar(char16_t{byte});
}

quint8 ByteFromCharacter(QChar character) {
  const char16_t code = character.unicode();
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<quint8>(code);
  for (std::size_t i = 0; i < kUpperControls.size(); ++i) {
    if (kUpperControls[i] == code) return static_cast<quint8>(0x80 + i);
  }
  return '?';
}

QString TextFromBytes(QByteArrayView bytes) {
  // Most texts are plain ASCII but for a few letters.
  QString text = QString::fromLatin1(bytes);
  for (QChar& character : text) {
    if (character >= QChar(0x80) && character <= QChar(0x9F))
      character = CharacterFromByte(static_cast<quint8>(character.unicode()));
  }
  return text;
}

QByteArray BytesFromText(QStringView text) {
  QByteArray bytes(text.size(), Qt::Uninitialized);
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [](QChar character) { return static_cast<char>(ByteFromCharacter(character)); });
  return bytes;
}

}  // namespace kalivor
