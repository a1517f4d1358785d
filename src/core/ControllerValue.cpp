#include "core/ControllerValue.h"

#include "base/su.h"

namespace kalivor {
namespace {

// Word `k` of a number: the first one carries the sign.
bool ReadNumberWord(COM_A& controller, const QString& address, int k, qint32& word) {
  if (k > 0) return controller.ReadLong(kSlot, word, address);
  qint16 first = 0;
  if (!controller.ReadInt(kSlot, first, address)) return false;
  word = first;
  return true;
}

ReadValue ReadNumber(COM_A& controller, const ParameterRecord& record, const ParameterType& type) {
  Words words{};
  for (int k = 0; k < type.WordCount(); ++k) {
    if (!ReadNumberWord(controller, WordAddress(record, type, k), k, words.at(static_cast<std::size_t>(k)))) {
      return {{false}, {}};
    }
  }
  return {{}, {type.fromWords(words, IsOddAddress(record)), {}}};
}

ReadValue ReadText(COM_A& controller, const ParameterRecord& record, const ParameterType& type) {
  ReadValue read;
  for (int k = 0; k < StringLength(record) / 2; ++k) {
    qint16 word = 0;
    if (!controller.ReadInt(kSlot, word, WordAddress(record, type, k))) {
      read.moved = {false, k + 1};
      break;
    }
    read.value.text += TextFromWord(word);
  }
  return read;
}

Moved WriteNumber(COM_A& controller, const ParameterRecord& record, const ParameterType& type) {
  qint16 shared = 0;
  if (type.SharesWord() && !controller.ReadInt(kSlot, shared, record.VarAdresse)) return {false};
  const Words words = type.toWords(record.Wert, IsOddAddress(record), shared);
  for (int k = 0; k < type.WordCount(); ++k) {
    const qint32 word = words.at(static_cast<std::size_t>(k));
    if (!controller.WriteWord(kSlot, word, WordAddress(record, type, k))) return {false};
  }
  return {};
}

Moved WriteText(COM_A& controller, const ParameterRecord& record, const ParameterType& type) {
  const int length = StringLength(record);
  const QString text = su::Align(record.WertText, length, u"L", u" ");
  for (int k = 0; k < length / 2; ++k) {
    const int word = WordFromText(text, 2 * k);
    if (!controller.WriteWord(kSlot, word, WordAddress(record, type, k))) return {false, k + 1};
  }
  return {};
}

}  // namespace

ReadValue ReadController(COM_A& controller, const ParameterRecord& record, const ParameterType& type) {
  return type.kind == ValueKind::Text ? ReadText(controller, record, type)
                                      : ReadNumber(controller, record, type);
}

Moved WriteController(COM_A& controller, const ParameterRecord& record, const ParameterType& type) {
  return type.kind == ValueKind::Text ? WriteText(controller, record, type)
                                      : WriteNumber(controller, record, type);
}

}  // namespace kalivor
