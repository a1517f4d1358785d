#include "core/ControllerImage.h"

#include <algorithm>
#include <utility>

#include "base/Windows1252.h"
#include "base/su.h"
#include "core/ParameterTypes.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kAddressDigits = 4;
constexpr int kAddresses = 65536;

int ByteCount(const ParameterRecord& record) {
  const ParameterType& type = TypeOf(record.Typ);
  return type.kind == ValueKind::Text ? StringLength(record) : type.bytes;
}

// Telegrams carry the last four digits of an address.
int AddressOf(QStringView text) {
  return static_cast<int>(su::HexToNumber(text.right(kAddressDigits)));
}

int FirstAddress(const ParameterRecord& record) {
  return AddressOf(record.VarAdresse);
}

// Of so many bytes at an address.
QString AddressFault(QStringView address, int bytes, bool mayBeOdd) {
  if (address.isEmpty()) return u"keine Adresse"_s;
  if (!su::IsHex(address.right(kAddressDigits))) return u"ungültige Adresse"_s;
  if (AddressOf(address) + bytes > kAddresses) return u"Adresse zu groß"_s;
  return !mayBeOdd && AddressOf(address) % 2 != 0 ? u"ungerade Adresse"_s : QString();
}

QString PlaceFault(const ParameterRecord& record) {
  const ParameterType& type = TypeOf(record.Typ);
  if (type.kind == ValueKind::Unknown) return u"unbekannter Typ"_s;
  QString fault = AddressFault(record.VarAdresse, ByteCount(record), type.SharesWord());
  if (!fault.isEmpty()) return fault;
  return ByteCount(record) == 0 ? u"Text ohne Länge"_s : QString();
}

/// The words of bytes that lie at the record's address.
std::vector<CodedWord> WordsOf(const ParameterRecord& record, const QByteArray& bytes) {
  std::vector<CodedWord> words;
  for (int i = 0; i < bytes.size(); ++i) {
    const int address = FirstAddress(record) + i;
    const auto even = static_cast<quint16>(address & ~1);
    if (words.empty() || words.back().address != even) words.push_back({even, 0, 0});
    const int shift = address % 2 == 0 ? 8 : 0;
    words.back().mask = static_cast<quint16>(words.back().mask | 0xFF << shift);
    words.back().bits = static_cast<quint16>(words.back().bits | static_cast<quint8>(bytes.at(i)) << shift);
  }
  return words;
}

// The limits decide; where they do not, the address, as the plain transfers have it.
bool IsSignedByte(const ParameterRecord& record) {
  if (record.Min < 0 && record.Max <= 127) return true;
  if (record.Min >= 0 && record.Max > 127) return false;
  return FirstAddress(record) % 2 == 0;
}

QByteArray NumberBytes(qint32 number, int count) {
  QByteArray bytes;
  for (int i = count - 1; i >= 0; --i)
    bytes.append(static_cast<char>(static_cast<quint32>(number) >> (8 * i) & 0xFFU));
  return bytes;
}

qint32 NumberOf(const ParameterRecord& record, const QByteArray& bytes) {
  quint32 bits = 0;
  for (const char byte : bytes)
    bits = bits << 8 | static_cast<quint8>(byte);
  switch (bytes.size()) {
    case 1:
      return IsSignedByte(record) ? static_cast<qint8>(bits) : static_cast<qint32>(bits);
    case 2:
      return static_cast<qint16>(bits);
    default:
      return static_cast<qint32>(bits);
  }
}

}  // namespace

CodedValue PlacesOf(const ParameterRecord& record) {
  const QString fault = PlaceFault(record);
  if (!fault.isEmpty()) return {{}, fault};
  return {WordsOf(record, QByteArray(ByteCount(record), '\0')), {}};
}

CodedValue PlaceOfWord(const QString& address) {
  QString fault = AddressFault(address, 2, false);
  if (!fault.isEmpty()) return {{}, std::move(fault)};
  return {{{static_cast<quint16>(AddressOf(address)), 0xFFFF, 0}}, {}};
}

CodedValue Coded(const ParameterRecord& record, const ParameterValue& value) {
  const QString fault = PlaceFault(record);
  if (!fault.isEmpty()) return {{}, fault};
  const int count = ByteCount(record);
  QByteArray bytes;
  if (TypeOf(record.Typ).kind == ValueKind::Text) {
    QString text = value.text;
    while (text.size() > count && text.endsWith(u' '))
      text.chop(1);
    if (text.size() > count) return {{}, u"Text zu lang"_s};
    bytes = BytesFromText(text);
    if (TextFromBytes(bytes) != text) return {{}, u"Zeichen, das der Regler nicht kennt"_s};
    bytes = bytes.leftJustified(count, ' ');
  } else {
    bytes = NumberBytes(value.number, count);
    if (NumberOf(record, bytes) != value.number) return {{}, u"Zahl passt nicht in den Typ"_s};
  }
  return {WordsOf(record, bytes), {}};
}

std::optional<ParameterValue> Decoded(const ParameterRecord& record, const ControllerImage& image) {
  if (!PlaceFault(record).isEmpty()) return {};
  QByteArray bytes;
  for (int i = 0; i < ByteCount(record); ++i) {
    const int address = FirstAddress(record) + i;
    const auto word = image.find(static_cast<quint16>(address & ~1));
    if (word == image.end()) return {};
    bytes.append(static_cast<char>(address % 2 == 0 ? word->second >> 8 : word->second & 0xFF));
  }
  if (TypeOf(record.Typ).kind == ValueKind::Text) return ParameterValue{0, TextFromBytes(bytes)};
  return ParameterValue{NumberOf(record, bytes), {}};
}

bool Holds(const ControllerImage& image, const std::vector<CodedWord>& words) {
  return std::ranges::all_of(words, [&image](const CodedWord& word) {
    const auto found = image.find(word.address);
    return found != image.end() && word.FitsIn(found->second);
  });
}

}  // namespace kalivor
