#include "comm/ExchangeLog.h"

#include <algorithm>
#include <utility>

#include "base/Windows1252.h"
#include "comm/COM_T_frm.h"

namespace kalivor {
namespace {

// The mark of a refusal, behind the header of a reply.
constexpr qsizetype kMark = 5;

bool IsRefusal(QByteArrayView reply) {
  return reply.size() > kMark && reply.at(kMark) == '?';
}

// What came behind the echo of the request.
QByteArrayView BehindEcho(const Exchange& exchange) {
  const QByteArrayView request = exchange.request.View();
  const QByteArrayView received = exchange.received.View();
  return received.startsWith(request) ? received.sliced(request.size()) : received;
}

ExchangeEnd EndOf(const Exchange& exchange) {
  if (exchange.received.count == 0) return ExchangeEnd::Silent;
  const QByteArrayView reply = BehindEcho(exchange);
  if (reply.isEmpty()) return ExchangeEnd::EchoOnly;
  return IsRefusal(reply) ? ExchangeEnd::Refused : ExchangeEnd::Damaged;
}

// All at once: this is done for every exchange of every transfer.
template <int Limit>
void Append(KeptCharacters<Limit>& characters, QByteArrayView added) {
  const int room = std::max(0, Limit - characters.count);
  std::copy_n(added.begin(), std::min<qsizetype>(room, added.size()),
              characters.kept.begin() + (Limit - room));
  characters.count += static_cast<int>(added.size());
}

// Few requests have other characters than those that are the same in every code page.
char ByteOf(QChar character) {
  constexpr char16_t kSame = 0x80;
  return static_cast<char>(character.unicode() < kSame ? character.unicode() : ByteFromCharacter(character));
}

}  // namespace

ExchangeLog::ExchangeLog(const platform::Clock& clock) : clock_(clock) {
  kept_.reserve(kKept);
}

void ExchangeLog::Begin(const PortRecord& port, QStringView frame) {
  Settle();
  ++begun_;
  if (std::exchange(transferBegins_, false)) {
    ofTransfer_ = {};
    transferFirst_ = begun_;
  }
  if (kept_.size() < kKept) kept_.emplace_back();
  Exchange& exchange = Newest();
  exchange.number = begun_;
  exchange.portNumber = port.PortNr;
  exchange.address = port.Adr;
  exchange.attempt = std::exchange(nextAttempt_, 1);
  const qsizetype kept =
      std::min<qsizetype>(frame.size(), static_cast<qsizetype>(exchange.request.kept.size()));
  std::transform(frame.begin(), frame.begin() + kept, exchange.request.kept.begin(), ByteOf);
  exchange.request.count = static_cast<int>(frame.size());
  exchange.received.Clear();
  exchange.answer_s = 0;
  exchange.lineError = 0;
  exchange.end = ExchangeEnd::Good;
  exchange.failure.clear();
  exchange.fault.clear();
  exchange.settings = port.Settings;
  exchange.version = versions_ != nullptr ? versions_->VersionList.SelectedText() : QString();
  exchange.at_s = clock_.SecondsSinceMidnight();
}

void ExchangeLog::Received(QByteArrayView characters) {
  Append(Newest().received, characters);
}

void ExchangeLog::End(const QString& reply, bool portOpen, const QString& fault) {
  Exchange& exchange = Newest();
  // A clock that was set meanwhile, as at midnight, tells nothing.
  exchange.answer_s = std::max(0.0, clock_.SecondsSinceMidnight() - exchange.at_s);
  exchange.fault = fault;
  Judge(reply);
  if (!portOpen) exchange.end = ExchangeEnd::NoPort;
}

void ExchangeLog::Judge(const QString& result) {
  // Without an exchange there is nothing to judge: a protocol that sends nothing has no reply either.
  if (!IsError(result) || settled_ == begun_) return;
  Exchange& exchange = Newest();
  exchange.failure = result;
  if (exchange.end == ExchangeEnd::Good) exchange.end = EndOf(exchange);
}

void ExchangeLog::Settle() {
  if (settled_ == begun_) return;
  const Exchange& exchange = Newest();
  sinceStart_.Count(exchange);
  ofTransfer_.Count(exchange);
  settled_ = begun_;
  if (OnSettled) OnSettled(exchange);
}

qint64 ExchangeLog::First() const {
  return std::max<qint64>(1, begun_ - kKept + 1);
}

const Exchange& ExchangeLog::Numbered(qint64 number) const {
  return kept_[Place(number)];
}

}  // namespace kalivor
