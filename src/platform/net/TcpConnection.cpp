#include "platform/net/TcpConnection.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

using sockets::Endpoint;
using sockets::Failure;
using sockets::Progress;

using Endpoints = std::vector<Endpoint>;

// What a search in the background leaves for whoever still waits for it.
struct Search {
  std::mutex mutex;
  std::condition_variable changed;
  std::optional<Endpoints> found;
};

// No system offers a search that ends in time: a thread of its own takes as long as it takes, and is
// forgotten when nobody waits any more. None when the time is over.
std::optional<Endpoints> FindInTime(const NetworkAddress& address, QDeadlineTimer bound) {
  const auto search = std::make_shared<Search>();
  std::thread([search, host = address.host.toStdString(), port = address.port] {
    Endpoints found = sockets::Find(host, port);
    const std::lock_guard lock(search->mutex);
    search->found = std::move(found);
    search->changed.notify_all();
  }).detach();
  std::unique_lock lock(search->mutex);
  search->changed.wait_for(lock, std::chrono::nanoseconds(bound.remainingTimeNSecs()),
                           [&] { return search->found.has_value(); });
  return search->found;
}

// A connected socket, or kNone and why.
sockets::Handle ConnectInTime(const Endpoint& endpoint, QDeadlineTimer bound, Failure& failure) {
  const sockets::Handle socket = sockets::New(endpoint, failure);
  if (socket == sockets::kNone) return socket;
  Progress progress = sockets::Connect(socket, endpoint, failure);
  if (progress == Progress::Later) {
    failure = sockets::Wait(socket, false, true, SecondsLeft(bound)).output ? sockets::Connected(socket)
                                                                            : Failure::TimedOut;
    progress = failure == Failure::None ? Progress::Done : Progress::Failed;
  }
  if (progress == Progress::Done) return socket;
  sockets::Close(socket);
  return sockets::kNone;
}

QString FaultOf(Failure failure, const NetworkAddress& address) {
  switch (failure) {
    case Failure::Refused:
      return u"Der Rechner „%1“ lehnt die Verbindung zum Port %2 ab: Läuft der Server dort, und stimmt der Port?"_s
          .arg(address.host)
          .arg(address.port);
    case Failure::TimedOut:
      return u"Der Rechner „%1“ antwortet nicht: Ist er eingeschaltet und über das Netz erreichbar?"_s.arg(
          address.host);
    case Failure::Unreachable:
      return u"Zum Rechner „%1“ führt kein Weg: Ist dieser PC mit dem Netz verbunden?"_s.arg(address.host);
    case Failure::Forbidden:
      return u"Dieser PC erlaubt keine Verbindung zum Rechner „%1“: Prüfen Sie die Firewall."_s.arg(
          address.host);
    default:
      return u"Mit dem Rechner „%1“ kommt keine Verbindung zustande: Prüfen Sie Adresse und Netz."_s.arg(
          address.host);
  }
}

}  // namespace

double SecondsLeft(QDeadlineTimer bound) {
  constexpr double kNanosecondsPerSecond = 1e9;
  return static_cast<double>(std::max<qint64>(0, bound.remainingTimeNSecs())) / kNanosecondsPerSecond;
}

TcpConnection::Opened TcpConnection::Open(const NetworkAddress& address, QDeadlineTimer bound) {
  const std::optional<Endpoints> endpoints = FindInTime(address, bound);
  if (!endpoints) {
    return {nullptr,
            u"Der Rechner „%1“ wurde nicht gefunden: Die Auskunft des Netzes antwortet nicht. Mit seiner "
            "IP-Adresse geht es ohne sie."_s.arg(address.host),
            true};
  }
  if (endpoints->empty()) {
    return {
        nullptr,
        u"Der Rechner „%1“ wurde nicht gefunden: Stimmt der Name, und ist dieser PC mit dem Netz verbunden?"_s
            .arg(address.host)};
  }
  Failure failure = Failure::Other;
  for (std::size_t i = 0; i < endpoints->size(); ++i) {
    // One that does not answer leaves the others their share of the time.
    const auto share_ns = bound.remainingTimeNSecs() / static_cast<qint64>(endpoints->size() - i);
    const QDeadlineTimer each(std::chrono::nanoseconds(std::max<qint64>(0, share_ns)), Qt::PreciseTimer);
    const sockets::Handle socket = ConnectInTime(endpoints->at(i), each, failure);
    if (socket != sockets::kNone) return {std::unique_ptr<TcpConnection>(new TcpConnection(socket))};
  }
  return {nullptr, FaultOf(failure, address), failure == Failure::TimedOut};
}

void TcpConnection::Send(QByteArrayView bytes) {
  unsent_.append(bytes);
  Flush();
}

// Leaves alone what has ended: what came before the end is still to be received.
void TcpConnection::Flush() {
  qsizetype taken = 0;
  while (taken < unsent_.size()) {
    qsizetype count = 0;
    const Progress progress = sockets::Send(socket_, QByteArrayView(unsent_).sliced(taken), count);
    if (progress == Progress::Later) break;
    // Receiving tells of the end, after all that came before it.
    taken = progress == Progress::Failed ? unsent_.size() : taken + count;
  }
  unsent_.remove(0, taken);
}

bool TcpConnection::Receive(QByteArray& bytes) {
  if (ended_) return false;
  Failure failure = Failure::None;
  const Progress progress = sockets::Receive(socket_, bytes, failure);
  if (progress == Progress::Failed) {
    ended_ = true;
    endedInOrder_ = failure == Failure::None;
  }
  return progress == Progress::Done;
}

bool TcpConnection::Wait(double seconds) {
  const QDeadlineTimer bound(std::chrono::nanoseconds(static_cast<qint64>(std::max(0.0, seconds) * 1e9)),
                             Qt::PreciseTimer);
  while (!ended_) {
    const sockets::Ready ready = sockets::Wait(socket_, true, !unsent_.isEmpty(), SecondsLeft(bound));
    if (ready.output) Flush();
    if (ready.input) return true;
    if (!ready.output && bound.hasExpired()) return false;
  }
  return true;
}

}  // namespace kalivor::platform
