// How parameter values lie in words and bytes.
#include "sim/Memory.h"

#include <QtEndian>

#include "base/Windows1252.h"
#include "base/su.h"
#include "core/ParameterTypes.h"
#include "sim/Telegram.h"

namespace kalivor::sim {
namespace {

constexpr int kNameInOldFiles = 20;

// Telegrams carry the last four digits of an address.
quint16 AddressOf(const ParameterRecord& record) {
  return static_cast<quint16>(su::HexToNumber(record.VarAdresse.right(4)));
}

}  // namespace

quint16 Memory::Word(quint16 address) const {
  const std::size_t high = address & 0xFFFEU;
  return static_cast<quint16>(bytes_[high] << 8 | bytes_[high + 1]);
}

void Memory::SetWord(quint16 address, quint16 value) {
  const auto high = static_cast<quint16>(address & 0xFFFEU);
  SetByte(high, static_cast<quint8>(value >> 8));
  SetByte(static_cast<quint16>(high + 1), static_cast<quint8>(value & 0xFF));
}

void Memory::SetByte(quint16 address, quint8 value) {
  bytes_[address] = value;
  stored_[address / 2U] = true;
}

void Memory::LoadStandards(const Module1& module) {
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    Set(record, record.Standard, record.StandardText);
  }
}

int Memory::LoadValues(const Module1& module, const ValueFileContent& content) {
  const bool oldFile = content.recordLength == kOldRecord_bytes;
  int found = 0;
  for (const ValueRecord& value : content.records) {
    for (int i = 1; i < module.ParCount; ++i) {
      const QString& name = module.Par[i].Variable;
      if (value.Variable != name && !(oldFile && value.Variable == name.left(kNameInOldFiles))) continue;
      Set(module.Par[i], value.Wert, value.WertText);
      ++found;
      break;
    }
  }
  return found;
}

bool Memory::SetPlantNumber(const Module1& module, qint16 number) {
  if (module.Par[0].VarAdresse.isEmpty()) return false;
  SetWord(AddressOf(module.Par[0]), static_cast<quint16>(number));
  return true;
}

QString Memory::Dump() const {
  QByteArray text;
  for (std::size_t word = 0; word < stored_.size(); ++word) {
    if (!stored_[word]) continue;
    const auto address = static_cast<quint16>(2 * word);
    text += Hex(address, 4) + '\t' + Hex(Word(address), 4) + '\n';
  }
  return QString::fromLatin1(text);
}

void Memory::Set(const ParameterRecord& record, qint32 value, const QString& text) {
  if (record.VarAdresse.isEmpty()) return;
  const ParameterType& type = TypeOf(record.Typ);
  // As long as any type's number: what is in front of it repeats the sign.
  const auto number = qint64{value};
  QByteArray bytes(sizeof number, '\0');
  qToBigEndian(number, bytes.data());
  bytes = bytes.right(type.bytes);
  if (type.kind == ValueKind::Text) {
    bytes = BytesFromText(text).leftJustified(qsizetype{StringLength(record)} / 2 * 2, ' ', true);
  }
  // Only a single byte may lie in the second half of a word.
  const quint16 first = AddressOf(record) & (type.SharesWord() ? 0xFFFF : 0xFFFE);
  for (int i = 0; i < bytes.size(); ++i)
    SetByte(static_cast<quint16>(first + i), static_cast<quint8>(bytes.at(i)));
}

}  // namespace kalivor::sim
