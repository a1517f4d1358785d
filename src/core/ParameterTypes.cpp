#include "core/ParameterTypes.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Windows1252.h"
#include "base/su.h"
#include "core/DefinitionFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr qsizetype kDecidingLetters = 3;

qint32 LongFromWords(const Words& words, bool /*odd*/) {
  return words[0] * 65536 + words[1];
}

// The truncating division makes small negative values lose their sign in the high word (-1 is sent as 0000,
// FFFF). Controllers in the field have been set up with it, so it stays.
Words LongToWords(qint32 number, bool /*odd*/, qint32 /*shared*/) {
  return {number / 65536, number % 65536};
}

qint32 IntFromWords(const Words& words, bool /*odd*/) {
  return words[0];
}

Words IntToWords(qint32 number, bool /*odd*/, qint32 /*shared*/) {
  return {number};
}

qint32 CharFromWords(const Words& words, bool odd) {
  return odd ? words[0] & 255 : words[0] / 256;
}

// A byte shares its word with another one, which is written back. The division truncates toward zero here
// too, which changes the high byte of words from 8000 on by one unless their low byte is 0: at an odd address
// that is the other byte, which rises, at an even address the sent one, which falls. Kept as controllers know
// it.
Words CharToWords(qint32 number, bool odd, qint32 shared) {
  return {ToInt32(odd ? qint64{shared} / 256 * 256 + number : qint64{number} * 256 + shared % 256)};
}

constexpr ParameterType kTypes[] = {
    {u"long", ValueKind::Number, 4, kRangeOf<qint32>, true, LongFromWords, LongToWords},
    {u"int", ValueKind::Number, 2, kRangeOf<qint16>, false, IntFromWords, IntToWords},
    // What a byte can hold with its sign and without; the address decides which.
    {u"char", ValueKind::Number, 1, {-128, 255}, false, CharFromWords, CharToWords},
    {u"string", ValueKind::Text, 0, kRangeOf<qint32>},
};

constexpr ParameterType kUnknown{{}, ValueKind::Unknown, 0, kRangeOf<qint32>};

}  // namespace

const ParameterType& TypeOf(const FixedText<8>& typ) {
  for (const ParameterType& type : kTypes) {
    if (typ.StartsWith(type.name.first(kDecidingLetters))) return type;
  }
  return kUnknown;
}

const ParameterType& NumberTypeNamed(QStringView name) {
  for (const ParameterType& type : kTypes) {
    if (type.kind == ValueKind::Number && type.name == name) return type;
  }
  return kUnknown;
}

bool IsStringForTree(const ParameterRecord& record) {
  return std::ranges::any_of(kTypes, [&record](const ParameterType& type) {
    return type.kind == ValueKind::Text && record.Typ.StartsWith(type.name);
  });
}

int StringLength(const ParameterRecord& record) {
  return std::max<int>(0, LeadingInt16(QStringView(record.Typ.Padded()).sliced(6)));
}

QString WordAddress(const ParameterRecord& record, const ParameterType& type, int word) {
  if (type.kind == ValueKind::Text) return AddOffset(record.VarAdresse, 2 * word);
  return word == 0 ? record.VarAdresse : su::HexPad(su::HexToNumber(record.VarAdresse) + 2 * word, 8);
}

bool IsOddAddress(const ParameterRecord& record) {
  // Only the last digit decides, whatever the length.
  return static_cast<int>(su::HexToNumber(QStringView(record.VarAdresse).right(1))) % 2 != 0;
}

// A low byte of 128 or more raises the first character's code by one. Sending does not make up for it, so a
// text with such a character in second place does not come back as it was sent. Both stay, as controllers in
// the field have been set up with them.
QString TextFromWord(qint16 word) {
  if (word == -1) return u" "_s;
  const int first = ((word + 128) >> 8) & 255;
  return QString(CharacterFromByte(static_cast<quint8>(first))) +
         CharacterFromByte(static_cast<quint8>(word & 255));
}

int WordFromText(const QString& text, int at) {
  return ByteFromCharacter(text.at(at)) * 256 + ByteFromCharacter(text.at(at + 1));
}

}  // namespace kalivor
