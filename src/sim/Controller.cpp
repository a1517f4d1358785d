// Checking a request and carrying out its command.
#include "sim/Controller.h"

#include <algorithm>

#include "base/Windows1252.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

constexpr char kVersionLetter = 'v';
constexpr int kShortestRequest = 8;

bool IsDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

bool IsPrintable(QChar c) {
  return c >= u' ' && c <= u'~';
}

bool IsHex(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

quint16 WordFromHex(const QByteArray& digits) {
  return digits.toUShort(nullptr, 16);
}

}  // namespace

std::optional<QByteArray> VersionPayload(const QString& version) {
  constexpr int kNumberLength = 5;  // "012.0"
  const QString type = version.chopped(std::min<qsizetype>(kNumberLength, version.size()));
  QString number = version.mid(type.size());
  if (number.size() != kNumberLength || number.at(3) != u'.') return {};
  number.remove(3, 1);
  if (!std::all_of(number.cbegin(), number.cend(), IsDigit)) return {};
  if (!std::all_of(type.cbegin(), type.cend(), IsPrintable)) return {};

  // The PC puts a "-" behind four characters that do not end in one.
  const bool shortType = type.size() == 4 && type.at(3) == u'-';
  const bool longType = type.size() == 5 && type.at(4) == u'-' && type.at(3) != u'-';
  if (!shortType && !longType) return {};
  return type.left(4).toLatin1() + Hex(number.toUInt(), 4);
}

Controller::Controller(Memory& memory, int address, const FixedText<2>& commands,
                       const QByteArray& versionPayload)
    : memory_(memory),
      address_(Hex(static_cast<unsigned>(address), 2)),
      write_(static_cast<char>(ByteFromCharacter(commands.Padded().at(0)))),
      read_(static_cast<char>(ByteFromCharacter(commands.Padded().at(1)))),
      version_(versionPayload) {}

std::optional<QByteArray> Controller::Reply(const QByteArray& request) {
  if (request.size() < kShortestRequest) return {};
  if (request.front() != kRequestStart || request.back() != kTelegramEnd) return {};
  const QByteArray content = request.chopped(kTelegramTail);
  if (Checksum(content) != request.mid(content.size(), 2)) return {};
  if (content.mid(1, 2) != address_) return {};

  const QByteArray header = '1' + address_ + "02";
  if (content.mid(3, 2) != "02") return Sealed(header + "?02");
  return Sealed(header + Answer(content.mid(5)));
}

// The command letter and the payload, or the error code.
QByteArray Controller::Answer(const QByteArray& body) {
  if (body == "v00") return kVersionLetter + version_;
  if (body.isEmpty()) return "?04";
  const char letter = body.front();
  const QByteArray operands = body.mid(1);

  const bool reads = letter == read_;
  const bool writes = letter == write_;
  const bool asksVersion = letter == kVersionLetter;
  if (!reads && !writes && !asksVersion) return "?04";
  const bool counted = (reads && operands.size() == 4) || (writes && operands.size() == 8) ||
                       (asksVersion && operands.size() == 2);
  if (!counted) return "?05";
  if (!std::all_of(operands.cbegin(), operands.cend(), IsHex)) return "?06";
  if (operands.size() == 2) return "?07";

  const quint16 address = WordFromHex(operands.left(4));
  if (operands.size() == 4) return letter + Hex(memory_.Word(address), 4);
  memory_.SetWord(address, WordFromHex(operands.mid(4)));
  return QByteArray(1, letter);
}

}  // namespace kalivor::sim
