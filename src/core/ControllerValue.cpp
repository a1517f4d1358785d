#include "core/ControllerValue.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Windows1252.h"
#include "base/su.h"
#include "core/DefinitionFiles.h"
#include "core/Walk.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

std::optional<qint32> ReadLongNumber(Core& core, const ParameterRecord& record) {
  qint16 high = 0;
  qint32 low = 0;
  if (!core.controller.ReadInt(kSlot, high, record.VarAdresse)) return {};
  if (!core.controller.ReadLong(kSlot, low, LowWordAddress(record))) return {};
  return high * 65536 + low;
}

std::optional<qint32> ReadIntNumber(Core& core, const ParameterRecord& record) {
  qint16 word = 0;
  if (!core.controller.ReadInt(kSlot, word, record.VarAdresse)) return {};
  return word;
}

std::optional<qint32> ReadCharNumber(Core& core, const ParameterRecord& record) {
  qint16 word = 0;
  if (!core.controller.ReadInt(kSlot, word, record.VarAdresse)) return {};
  return IsOddAddress(record) ? word & 255 : word / 256;
}

// The two characters of a word. A low byte of 128 or more raises the first one's code by one. Sending does
// not make up for it, so a text with such a character in second place does not come back as it was sent.
// Both stay, as controllers in the field have been set up with them.
QString CharactersOf(qint16 word) {
  if (word == -1) return u" "_s;
  const int first = ((word + 128) >> 8) & 255;
  return QString(CharacterFromByte(static_cast<quint8>(first))) +
         CharacterFromByte(static_cast<quint8>(word & 255));
}

}  // namespace

Transfer TransferOf(const ParameterRecord& record) {
  if (record.Typ.StartsWith(u"lon")) return Transfer::Long;
  if (record.Typ.StartsWith(u"int")) return Transfer::Int;
  if (record.Typ.StartsWith(u"cha")) return Transfer::Char;
  if (record.Typ.StartsWith(u"str")) return Transfer::String;
  return Transfer::None;
}

int StringLength(const ParameterRecord& record) {
  return std::max<int>(0, LeadingInt16(QStringView(record.Typ.Padded()).sliced(6)));
}

QString LowWordAddress(const ParameterRecord& record) {
  return su::HexPad(su::HexToNumber(record.VarAdresse) + 2, 8);
}

bool IsOddAddress(const ParameterRecord& record) {
  // Only the last digit decides, whatever the length.
  return static_cast<int>(su::HexToNumber(QStringView(record.VarAdresse).right(1))) % 2 != 0;
}

std::optional<qint32> ReadNumber(Core& core, const ParameterRecord& record) {
  std::optional<qint32> number;
  switch (TransferOf(record)) {
    case Transfer::Long:
      number = ReadLongNumber(core, record);
      break;
    case Transfer::Int:
      number = ReadIntNumber(core, record);
      break;
    case Transfer::Char:
      number = ReadCharNumber(core, record);
      break;
    case Transfer::String:
    case Transfer::None:
      return {};
  }
  if (!number) ReportFailure(core, record);
  return number;
}

ReadText ReadString(Core& core, const ParameterRecord& record) {
  ReadText result;
  for (int k = 1; k <= StringLength(record) / 2; ++k) {
    qint16 word = 0;
    if (!core.controller.ReadInt(kSlot, word, AddOffset(record.VarAdresse, (k - 1) * 2))) {
      ReportFailure(core, record, k);
      return result;
    }
    result.text += CharactersOf(word);
  }
  result.complete = true;
  return result;
}

}  // namespace kalivor
