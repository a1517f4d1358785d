#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

#include "unit/net/NetworkServer.h"

namespace kalivor::test {
namespace {

#ifdef _WIN32
using Socket = SOCKET;
constexpr Socket kNoSocket = INVALID_SOCKET;
using Length = int;
using Count = int;
constexpr int kSendFlags = 0;
void CloseSocket(Socket socket) {
  closesocket(socket);
}
void Prepare() {
  WSADATA data{};
  (void)WSAStartup(MAKEWORD(2, 2), &data);
}
#else
using Socket = int;
constexpr Socket kNoSocket = -1;
using Length = socklen_t;
using Count = std::size_t;
constexpr int kSendFlags = MSG_NOSIGNAL;
void CloseSocket(Socket socket) {
  close(socket);
}
void Prepare() {}
#endif

using Byte = unsigned char;
constexpr Byte kIac = 255;
constexpr Byte kDont = 254;
constexpr Byte kDo = 253;
constexpr Byte kWill = 251;
constexpr Byte kBegin = 250;
constexpr Byte kEnd = 240;
constexpr Byte kComPortOption = 44;

char Char(int byte) {
  return static_cast<char>(byte);
}

QByteArray Doubled(QByteArray bytes) {
  return bytes.replace(QByteArray(1, Char(kIac)), QByteArray(2, Char(kIac)));
}

QByteArray Option(Byte word, Byte option) {
  return QByteArray(1, Char(kIac)) + Char(word) + Char(option);
}

// Splits what a client of Telnet sends, written apart from the library that the program has.
class Splitter {
 public:
  QByteArray characters;
  QByteArrayList words;     // "word option" of negotiations
  QByteArrayList commands;  // of COM port control

  void Take(const QByteArray& bytes) {
    for (const char c : bytes)
      TakeByte(static_cast<Byte>(c));
  }

 private:
  enum class State { Data, Iac, Word, Sub, SubIac };

  void TakeByte(Byte byte) {
    switch (state_) {
      case State::Data:
        if (byte == kIac) {
          state_ = State::Iac;
        } else {
          characters += Char(byte);
        }
        break;
      case State::Iac:
        state_ = State::Data;
        if (byte == kIac) {
          characters += Char(byte);
        } else if (byte == kBegin) {
          state_ = State::Sub;
          sub_.clear();
        } else if (byte >= kWill) {
          state_ = State::Word;
          word_ = byte;
        }
        break;
      case State::Word:
        state_ = State::Data;
        words += QByteArray(1, Char(word_)) + Char(byte);
        break;
      case State::Sub:
        if (byte == kIac) {
          state_ = State::SubIac;
        } else {
          sub_ += Char(byte);
        }
        break;
      case State::SubIac:
        state_ = State::Sub;
        if (byte == kIac) {
          sub_ += Char(byte);
        } else if (byte == kEnd) {
          state_ = State::Data;
          if (sub_.startsWith(Char(kComPortOption))) commands += sub_.mid(1);
        }
        break;
    }
  }

  State state_ = State::Data;
  Byte word_ = 0;
  QByteArray sub_;
};

}  // namespace

struct NetworkServer::Play {
  mutable std::mutex mutex;
  std::condition_variable arrived;
  ServerManner manner;
  Socket offer = kNoSocket;
  Socket client = kNoSocket;
  Splitter from;
  QByteArray received;
  QByteArrayList commands;
  QByteArray beforePurge;
  quint16 port = 0;
  int connections = 0;
  std::function<void()> task;  // to be done by the thread
  Break breaking;              // of the connection that stands
  qsizetype passed_bytes = 0;  // on it
  std::chrono::steady_clock::time_point stalledUntil;
  QByteArray stalled;  // to be sent then
  QByteArray request;  // of the line, as far as it has come
  std::atomic<bool> over{false};
  std::thread thread;

  void Offer() {
    Prepare();
    offer = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    Length length = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (bind(offer, any, length) == 0 && listen(offer, 8) == 0 && getsockname(offer, any, &length) == 0)
      port = ntohs(address.sin_port);
  }

  // A socket that the thread waits for is ended by the thread: the system keeps it alive for who waits.
  void InThread(const std::function<void()>& wanted) {
    std::unique_lock lock(mutex);
    task = wanted;
    arrived.wait(lock, [this] { return task == nullptr; });
  }

  // Everything from here on with the lock.

  void SendRaw(const QByteArray& bytes) {
    const qsizetype room =
        breaking.kind == Break::Kind::None ? bytes.size() : breaking.after_bytes - passed_bytes;
    passed_bytes += bytes.size();
    SendNow(bytes.first(std::clamp<qsizetype>(room, 0, bytes.size())));
    if (room >= bytes.size()) return;
    if (room >= 0) BreakNow();
    if (stalledUntil != std::chrono::steady_clock::time_point())
      stalled += bytes.sliced(std::max<qsizetype>(0, room));
  }

  void SendNow(QByteArray bytes) {
    while (client != kNoSocket && !bytes.isEmpty()) {
      const auto sent = send(client, bytes.constData(), static_cast<Count>(bytes.size()), kSendFlags);
      if (sent <= 0) return;
      bytes.remove(0, static_cast<qsizetype>(sent));
    }
  }

  void BreakNow() {
    switch (breaking.kind) {
      case Break::Kind::HangUp:
      case Break::Kind::Reset:
        EndClient(breaking.kind == Break::Kind::Reset);
        break;
      case Break::Kind::Stall:
        stalledUntil = std::chrono::steady_clock::now() + std::chrono::milliseconds(breaking.stall_ms);
        break;
      default:
        break;
    }
  }

  void GoOnWhereItIsTime() {
    if (stalledUntil == std::chrono::steady_clock::time_point() ||
        std::chrono::steady_clock::now() < stalledUntil)
      return;
    stalledUntil = {};
    passed_bytes = 0;
    breaking = manner.breaks();
    SendNow(std::exchange(stalled, {}));
  }

  void SendCharacters(const QByteArray& characters) {
    SendRaw(manner.comPort ? Doubled(characters) : characters);
  }

  void Answer(Byte command, const QByteArray& value) {
    SendRaw(QByteArray(1, Char(kIac)) + Char(kBegin) + Char(kComPortOption) + Char(command + 100) +
            Doubled(value) + Char(kIac) + Char(kEnd));
  }

  void EndClient(bool abruptly) {
    if (client == kNoSocket) return;
    if (abruptly) {
      const linger now{1, 0};
      (void)setsockopt(client, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
    }
    CloseSocket(client);
    client = kNoSocket;
  }

  void EndOffer() {
    if (offer != kNoSocket) CloseSocket(offer);
    offer = kNoSocket;
  }

  void TakeConnection() {
    const Socket next = accept(offer, nullptr, nullptr);
    if (next == kNoSocket) return;
    EndClient(false);
    client = next;
    const int yes = 1;
    (void)setsockopt(client, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&yes), sizeof yes);
    from = {};
    request.clear();
    stalled.clear();
    stalledUntil = {};
    passed_bytes = 0;
    breaking = manner.breaks ? manner.breaks() : Break();
    ++connections;
    SendRaw(manner.greeting);
    if (manner.turnsAway) EndClient(false);
  }

  void TakeFromClient() {
    char piece[4096];
    const auto count = recv(client, piece, sizeof piece, 0);
    if (count <= 0) {
      EndClient(false);
      return;
    }
    const QByteArray bytes(piece, static_cast<qsizetype>(count));
    if (breaking.kind != Break::Kind::None && passed_bytes + count > breaking.after_bytes) {
      const bool now = passed_bytes <= breaking.after_bytes;
      passed_bytes += count;
      if (now) BreakNow();
      // What comes while nothing passes is lost with the connection, or late.
      if (stalledUntil == std::chrono::steady_clock::time_point()) return;
    } else {
      passed_bytes += count;
    }
    if (!manner.comPort) {
      TakeCharacters(bytes);
      return;
    }
    from.Take(bytes);
    TakeCharacters(std::exchange(from.characters, {}));
    for (const QByteArray& word : std::exchange(from.words, {}))
      TakeWord(static_cast<Byte>(word.at(0)), static_cast<Byte>(word.at(1)));
    for (const QByteArray& command : std::exchange(from.commands, {}))
      TakeCommand(command);
  }

  void TakeCharacters(const QByteArray& characters) {
    if (!manner.controller) {
      received += characters;
      return;
    }
    for (const char c : characters) {
      if (c == '#') request.clear();
      request += c;
      if (c == '\r') SendCharacters(manner.controller(std::exchange(request, {})));
    }
  }

  void TakeWord(Byte word, Byte option) {
    if (option == kComPortOption) {
      if (manner.answersOffer) SendRaw(Option(manner.refusesControl ? kDont : kDo, option));
    } else if (word == kWill) {
      SendRaw(Option(kDo, option));
    } else if (word == kDo) {
      SendRaw(Option(kWill, option));
    }
  }

  void TakeCommand(const QByteArray& command) {
    constexpr Byte kSetBaudRate = 1;
    constexpr Byte kPurge = 12;
    commands += command;
    const auto number = static_cast<Byte>(command.at(0));
    if (number == kPurge && !beforePurge.isEmpty()) SendCharacters(std::exchange(beforePurge, {}));
    if (!manner.confirms) return;
    QByteArray value = command.mid(1);
    if (number == kSetBaudRate && manner.ownBaud != 0) {
      value.clear();
      for (int shift = 24; shift >= 0; shift -= 8)
        value += Char(manner.ownBaud >> shift & 0xFF);
    }
    Answer(number, value);
  }

  void Run() {
    while (!over) {
      fd_set input;
      FD_ZERO(&input);
      Socket largest = 0;
      {
        const std::lock_guard lock(mutex);
        GoOnWhereItIsTime();
        if (task) {
          std::exchange(task, nullptr)();
          arrived.notify_all();
        }
        for (const Socket socket : {offer, client}) {
          if (socket == kNoSocket) continue;
          FD_SET(socket, &input);
          largest = std::max(largest, socket);
        }
      }
      timeval turn{0, 2000};
      if (largest == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        continue;
      }
      if (select(static_cast<int>(largest + 1), &input, nullptr, nullptr, &turn) <= 0) continue;
      const std::lock_guard lock(mutex);
      // The old connection first: what was sent on it came earlier.
      if (client != kNoSocket && FD_ISSET(client, &input) != 0) TakeFromClient();
      if (offer != kNoSocket && FD_ISSET(offer, &input) != 0) TakeConnection();
      arrived.notify_all();
    }
  }
};

NetworkServer::NetworkServer(ServerManner manner) : play_(std::make_unique<Play>()) {
  play_->manner = std::move(manner);
  play_->Offer();
  play_->thread = std::thread([play = play_.get()] { play->Run(); });
}

NetworkServer::~NetworkServer() {
  play_->over = true;
  play_->thread.join();
  play_->EndClient(false);
  play_->EndOffer();
}

quint16 NetworkServer::Port() const {
  return play_->port;
}

QString NetworkServer::Device() const {
  const QString kind = play_->manner.comPort ? QStringLiteral("rfc2217") : QStringLiteral("socket");
  return kind + QStringLiteral("://127.0.0.1:%1").arg(play_->port);
}

void NetworkServer::SetManner(const ServerManner& manner) {
  const std::lock_guard lock(play_->mutex);
  play_->manner = manner;
}

QByteArray NetworkServer::Receive(qsizetype count) {
  std::unique_lock lock(play_->mutex);
  play_->arrived.wait_for(lock, std::chrono::seconds(10), [&] { return play_->received.size() >= count; });
  QByteArray taken = play_->received.first(std::min(count, play_->received.size()));
  play_->received.remove(0, taken.size());
  return taken;
}

void NetworkServer::Send(const QByteArray& characters) {
  const std::lock_guard lock(play_->mutex);
  play_->SendCharacters(characters);
}

void NetworkServer::SendBytes(const QByteArray& bytes) {
  const std::lock_guard lock(play_->mutex);
  play_->SendRaw(bytes);
}

void NetworkServer::SendBeforePurge(const QByteArray& characters) {
  const std::lock_guard lock(play_->mutex);
  play_->beforePurge = characters;
}

void NetworkServer::Vanish() {
  play_->InThread([this] {
    play_->EndOffer();
    play_->EndClient(false);
  });
}

void NetworkServer::Reset() {
  play_->InThread([this] { play_->EndClient(true); });
}

void NetworkServer::HangUp() {
  play_->InThread([this] { play_->EndClient(false); });
}

int NetworkServer::Connections() const {
  const std::lock_guard lock(play_->mutex);
  return play_->connections;
}

bool NetworkServer::Connected() const {
  const std::lock_guard lock(play_->mutex);
  return play_->client != kNoSocket;
}

QByteArrayList NetworkServer::TakeCommands() {
  const std::lock_guard lock(play_->mutex);
  return std::exchange(play_->commands, {});
}

}  // namespace kalivor::test
