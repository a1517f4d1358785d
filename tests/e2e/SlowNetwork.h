// A network between a program and a server on this computer: slow, and breaking on demand.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <atomic>
#include <chrono>
#include <deque>
#include <random>
#include <thread>

namespace kalivor::test {

/// What happens on the way, in either direction.
struct NetworkManner {
  int delay_ms = 0;
  unsigned seed = 0;  ///< of what follows
  int stalls = 0;     ///< of a thousand pieces, those that come up to 700 ms later, and all behind them
  int breaks = 0;     ///< of a thousand pieces, those that the connection does not survive
};

/// Hands over one connection at a time, in a thread of its own.
class SlowNetwork {
 public:
  SlowNetwork(quint16 server, const NetworkManner& manner)
      : manner_(manner), server_(server), dice_(manner.seed) {
    offer_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    socklen_t length = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (bind(offer_, any, length) == 0 && listen(offer_, 8) == 0 && getsockname(offer_, any, &length) == 0)
      port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Run(); });
  }
  ~SlowNetwork() {
    over_ = true;
    thread_.join();
    End();
    close(offer_);
  }
  SlowNetwork(const SlowNetwork&) = delete;
  SlowNetwork& operator=(const SlowNetwork&) = delete;

  [[nodiscard]] quint16 Port() const { return port_; }
  [[nodiscard]] int Broken() const { return broken_; }

 private:
  using Time = std::chrono::steady_clock::time_point;
  struct Piece {
    Time due;
    QByteArray bytes;  // none: the end of the connection
  };
  struct Way {
    int from = -1;
    int to = -1;
    std::deque<Piece> pieces;
  };

  static sockaddr_in Loopback(quint16 port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
  }

  [[nodiscard]] bool Stands() const { return ways_[0].from >= 0; }

  void Run() {
    while (!over_) {
      pollfd wait[] = {{offer_, POLLIN, 0}, {ways_[0].from, POLLIN, 0}, {ways_[1].from, POLLIN, 0}};
      poll(wait, 3, 1);
      for (int i = 0; i < 2 && Stands(); ++i) {
        if (wait[i + 1].revents != 0) Take(ways_[i]);
      }
      for (Way& way : ways_)
        HandOver(way);
      if ((wait[0].revents & POLLIN) != 0) Connect();
    }
  }

  void Connect() {
    End();
    const int client = accept4(offer_, nullptr, nullptr, SOCK_CLOEXEC);
    const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(server_);
    if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      close(client);
      close(server);
      return;
    }
    const int yes = 1;
    for (const int end : {client, server})
      (void)setsockopt(end, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    ways_[0] = {client, server, {}};
    ways_[1] = {server, client, {}};
  }

  void Take(Way& way) {
    if (!way.pieces.empty() && way.pieces.back().bytes.isEmpty()) return;
    char piece[4096];
    const ssize_t count = recv(way.from, piece, sizeof piece, MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    const auto drawn = [&](int share) { return static_cast<int>(dice_() % 1000) < share; };
    int delay_ms = manner_.delay_ms;
    if (drawn(manner_.stalls)) delay_ms += static_cast<int>(dice_() % 700);
    Time due = std::chrono::steady_clock::now() + std::chrono::milliseconds(delay_ms);
    if (!way.pieces.empty()) due = std::max(due, way.pieces.back().due);
    if (count > 0 && drawn(manner_.breaks)) {
      // A part of it still arrives.
      way.pieces.push_back(
          {due, QByteArray(piece, static_cast<qsizetype>(dice_() % static_cast<unsigned>(count)))});
      if (!way.pieces.back().bytes.isEmpty()) way.pieces.push_back({due, {}});
      ++broken_;
    } else {
      way.pieces.push_back({due, count > 0 ? QByteArray(piece, count) : QByteArray()});
    }
  }

  void HandOver(Way& way) {
    while (!way.pieces.empty() && way.pieces.front().due <= std::chrono::steady_clock::now()) {
      const QByteArray bytes = way.pieces.front().bytes;
      way.pieces.pop_front();
      if (bytes.isEmpty() ||
          send(way.to, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL) < 0) {
        End();
        return;
      }
    }
  }

  void End() {
    if (!Stands()) return;
    for (Way& way : ways_)
      close(way.from);
    for (Way& way : ways_)
      way = {};
  }

  NetworkManner manner_;
  quint16 server_;
  quint16 port_ = 0;
  int offer_ = -1;
  Way ways_[2];
  std::mt19937 dice_;
  std::atomic<int> broken_{0};
  std::atomic<bool> over_{false};
  std::thread thread_;
};

}  // namespace kalivor::test
