// Checking a request and carrying out its command.
#include "sim/Controller.h"

#include <QRegularExpression>
#include <algorithm>
#include <cctype>

#include "base/Windows1252.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

constexpr char kVersionLetter = 'v';
constexpr int kShortestRequest = 8;

bool IsHex(char c) {
  return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

}  // namespace

std::optional<QByteArray> VersionPayload(const QString& version) {
  // The PC puts a "-" behind four characters that do not end in one.
  static const QRegularExpression form(uR"(^([ -~]{3}-|[ -~]{3}[ -,.-~]-)([0-9]{3})\.([0-9])\z)"_s);
  const QRegularExpressionMatch match = form.match(version);
  if (!match.hasMatch()) return {};
  const unsigned number = (match.captured(2) + match.captured(3)).toUInt();
  return match.captured(1).left(4).toLatin1() + Hex(number, 4);
}

QByteArray NextVersionPayload(const QByteArray& payload) {
  constexpr int kType = 4;
  constexpr unsigned kNumbers = 10000;
  const unsigned number = payload.mid(kType).toUInt(nullptr, 16);
  return payload.left(kType) + Hex((number + 1) % kNumbers, 4);
}

Controller::Controller(Memory& memory, int address, const FixedText<2>& commands,
                       const QByteArray& versionPayload)
    : memory_(memory),
      address_(Hex(static_cast<unsigned>(address), 2)),
      write_(static_cast<char>(ByteFromCharacter(commands.Padded().at(0)))),
      read_(static_cast<char>(ByteFromCharacter(commands.Padded().at(1)))),
      version_(versionPayload) {}

std::optional<QByteArray> Controller::Reply(const QByteArray& request) {
  written_.reset();
  if (request.size() < kShortestRequest) return {};
  if (request.front() != kRequestStart || request.back() != kTelegramEnd) return {};
  const QByteArray content = request.chopped(kTelegramTail);
  if (Checksum(content) != request.mid(content.size(), 2)) return {};
  if (content.mid(1, 2) != address_) return {};

  const QByteArray header = '1' + address_ + "02";
  if (content.mid(3, 2) != "02") return Sealed(header + "?02");
  return Sealed(header + Answer(content.mid(5)));
}

void Controller::ForgetWrite() {
  if (written_) memory_.SetWord(written_->address, written_->before);
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

  const quint16 address = operands.left(4).toUShort(nullptr, 16);
  if (operands.size() == 4) return letter + Hex(memory_.Word(address), 4);
  written_ = {address, memory_.Word(address)};
  memory_.SetWord(address, operands.mid(4).toUShort(nullptr, 16));
  return QByteArray(1, letter);
}

}  // namespace kalivor::sim
