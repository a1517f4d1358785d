// Bytes of files and telegrams to characters and back.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalivor {

/// The single-byte code page of all files and telegrams (windows-1252), the same on every platform. The five
/// bytes that the code page leaves undefined stand for the control characters of the same number.
[[nodiscard]] QChar CharacterFromByte(quint8 byte);

/// The code of a character, 0..255; "?" for one that the code page does not hold.
[[nodiscard]] quint8 ByteFromCharacter(QChar character);

[[nodiscard]] QString TextFromBytes(QByteArrayView bytes);
[[nodiscard]] QByteArray BytesFromText(QStringView text);

}  // namespace kalivor
