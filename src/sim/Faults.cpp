// Choosing faults and damaging replies.
#include "sim/Faults.h"

#include <QStringList>
#include <array>
#include <utility>

#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

// Error is not among them: its name carries the code.
constexpr std::array<std::pair<FaultKind, QStringView>, 14> kNames = {{
    {FaultKind::Silent, u"silent"},
    {FaultKind::Late, u"late"},
    {FaultKind::LostByte, u"lost-byte"},
    {FaultKind::DoubledByte, u"doubled-byte"},
    {FaultKind::FlippedBit, u"flipped-bit"},
    {FaultKind::BadChecksum, u"bad-checksum"},
    {FaultKind::Split, u"split"},
    {FaultKind::Noise, u"noise"},
    {FaultKind::WrongLength, u"wrong-length"},
    {FaultKind::EchoOnly, u"echo-only"},
    {FaultKind::Unplug, u"unplug"},
    {FaultKind::ForeignReply, u"foreign-reply"},
    {FaultKind::IgnoreWrite, u"ignore-write"},
    {FaultKind::Swap, u"swap"},
}};
constexpr QStringView kErrorPrefix = u"error-";
constexpr int kLongestDelay_ms = 600000;

std::optional<Fault> FaultFromName(const QString& name) {
  for (const auto& [kind, kindName] : kNames) {
    if (name == kindName) return Fault{kind, 0, {}};
  }
  if (!name.startsWith(kErrorPrefix)) return {};
  const QString code = name.mid(kErrorPrefix.size());
  if (code.size() != 2) return {};
  for (const QChar c : code) {
    if (c <= u' ' || c > u'~') return {};
  }
  return Fault{FaultKind::Error, 0, code.toLatin1()};
}

// The one reply without a payload.
bool AcknowledgesWrite(const QByteArray& reply) {
  return reply.size() == kReplyHeader + 1 + kTelegramTail;
}

}  // namespace

std::optional<FaultRule> ParseFault(const QString& text) {
  QStringList parts = text.split(u':');
  const std::optional<Fault> fault = FaultFromName(parts.takeFirst());
  if (!fault) return {};
  FaultRule rule{*fault, 1, {}};
  bool valid = true;
  if (fault->kind == FaultKind::Late) {
    if (parts.isEmpty()) return {};
    rule.fault.delay_ms = parts.takeFirst().toInt(&valid);
    if (!valid || rule.fault.delay_ms < 0 || rule.fault.delay_ms > kLongestDelay_ms) return {};
  }
  if (fault->kind == FaultKind::Swap) {
    if (parts.size() != 1) return {};
    rule.fault.from = parts.takeFirst().toInt(&valid);
    if (!valid || rule.fault.from < 1) return {};
  }
  if (!parts.isEmpty()) {
    rule.rate = parts.takeFirst().toDouble(&valid);
    if (!valid || !(rule.rate >= 0 && rule.rate <= 1)) return {};
  }
  if (!parts.isEmpty()) {
    rule.count = parts.takeFirst().toInt(&valid);
    if (!valid || *rule.count < 1) return {};
  }
  if (!parts.isEmpty()) return {};
  return rule;
}

QString FaultName(const Fault& fault) {
  for (const auto& [kind, name] : kNames) {
    if (kind == fault.kind) return name.toString();
  }
  return kErrorPrefix.toString() + QString::fromLatin1(fault.code);
}

Response Faults::Apply(const QByteArray& request, const QByteArray& reply, bool echoes) {
  ++exchanges_;
  const std::optional<Fault> fault = Choose(AcknowledgesWrite(reply));
  Response response = fault ? Damaged(*fault, request, reply, echoes) : Response{{{0, reply}}, false, {}};
  response.fault = fault;
  previous_ = reply;
  return response;
}

void Faults::Add(const FaultRule& rule) {
  if (rule.fault.kind != FaultKind::Swap) {
    rules_.push_back(rule);
  } else if (!swapAt_ || rule.fault.from < *swapAt_) {
    swapAt_ = rule.fault.from;
  }
}

std::optional<Fault> Faults::Choose(bool acknowledgesWrite) {
  const auto planned = plan_.find(exchanges_);
  if (planned != plan_.end()) return planned->second;
  for (FaultRule& rule : rules_) {
    if (rule.count && *rule.count == 0) continue;
    if (rule.fault.kind == FaultKind::IgnoreWrite && !acknowledgesWrite) continue;
    if (!Strikes(rule.rate)) continue;
    if (rule.count) --*rule.count;
    return rule.fault;
  }
  if (exchanges_ == swapAt_) return Fault{FaultKind::Swap, 0, {}, exchanges_};
  return {};
}

Response Faults::Damaged(const Fault& fault, const QByteArray& request, const QByteArray& reply,
                         bool echoes) {
  const auto whole = [](const QByteArray& bytes) { return Response{{{0, bytes}}, false, {}}; };
  const int length = static_cast<int>(reply.size());
  switch (fault.kind) {
    case FaultKind::Silent:
      return {};
    case FaultKind::Late:
      return {{{fault.delay_ms, reply}}, false, {}};
    case FaultKind::LostByte:
      return whole(QByteArray(reply).remove(Below(length), 1));
    case FaultKind::DoubledByte: {
      const int position = Below(length);
      return whole(QByteArray(reply).insert(position, reply.at(position)));
    }
    case FaultKind::FlippedBit:
      return whole(WithFlippedBit(reply));
    case FaultKind::BadChecksum:
      return whole(WithBadChecksum(reply));
    case FaultKind::Split: {
      const int first = 1 + Below(length - 1);
      return {{{0, reply.left(first)}, {kSplitPause_ms, reply.mid(first)}}, false, {}};
    }
    case FaultKind::Noise:
      return whole(Noise() + reply);
    case FaultKind::Error:
      return whole(Sealed(reply.left(kReplyHeader) + '?' + fault.code));
    case FaultKind::WrongLength:
      return whole(WithOtherLength(reply));
    case FaultKind::EchoOnly:
      return echoes ? Response{} : whole(request);
    case FaultKind::Unplug:
      return {{}, true, {}};
    case FaultKind::ForeignReply:
      return whole(Foreign(reply));
    case FaultKind::IgnoreWrite: {
      Response response = whole(reply);
      response.ignoresWrite = true;
      return response;
    }
    case FaultKind::Swap:
      return whole(reply);
  }
  return {};
}

QByteArray Faults::WithFlippedBit(QByteArray reply) {
  const int position = Below(static_cast<int>(reply.size()));
  reply[position] = static_cast<char>(reply.at(position) ^ (1 << Below(7)));
  return reply;
}

QByteArray Faults::WithBadChecksum(const QByteArray& reply) {
  const QByteArray content = reply.chopped(kTelegramTail);
  const unsigned right = Checksum(content).toUInt(nullptr, 16);
  return content + Hex(right + 1 + static_cast<unsigned>(Below(255)), 2) + kTelegramEnd;
}

QByteArray Faults::WithOtherLength(const QByteArray& reply) {
  QByteArray content = reply.chopped(kTelegramTail);
  const qsizetype payload = content.size() - kReplyHeader - 1;
  const int change = 1 + Below(2);
  const bool shorter = Below(2) == 0 && change <= payload;
  if (shorter) return Sealed(content.chopped(change));
  for (int i = 0; i < change; ++i)
    content += Hex(static_cast<unsigned>(Below(16)), 1);
  return Sealed(content);
}

// Either the reply to the request before, or one of the same kind from another station.
QByteArray Faults::Foreign(const QByteArray& reply) {
  if (Below(2) == 0 && !previous_.isEmpty() && previous_ != reply) return previous_;
  const unsigned address = reply.mid(1, 2).toUInt(nullptr, 16);
  QByteArray content = reply.chopped(kTelegramTail);
  content.replace(1, 2, Hex(address + 1 + static_cast<unsigned>(Below(255)), 2));
  for (qsizetype i = content.size() - 1; i > kReplyHeader && i >= content.size() - 4; --i) {
    content[i] = Hex(static_cast<unsigned>(Below(16)), 1).front();
  }
  return Sealed(content);
}

QByteArray Faults::Noise() {
  QByteArray noise;
  for (int left = 1 + Below(8); left > 0; --left)
    noise += static_cast<char>(' ' + Below('~' - ' ' + 1));
  return noise;
}

int Faults::Below(int bound) {
  return static_cast<int>(static_cast<quint64>(generator_()) * static_cast<quint64>(bound) >> 32);
}

bool Faults::Strikes(double rate) {
  return static_cast<double>(generator_()) < rate * 4294967296.0;
}

}  // namespace kalivor::sim
