// A TCP connection, from looking for its host to its end.
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <memory>

#include "platform/NetworkAddress.h"
#include "platform/net/SocketCalls.h"

namespace kalivor::platform {

/// Single-threaded; nothing waits but what says so.
class TcpConnection {
 public:
  /// What came of Open().
  struct Opened {
    std::unique_ptr<TcpConnection> connection;
    QString fault = {};       ///< German, where there is none
    bool unanswered = false;  ///< nobody has answered: trying again would take as long
  };

  /// Waits until the connection stands, at most until `bound`. Where a name stands for several addresses they
  /// are tried in turn.
  [[nodiscard]] static Opened Open(const NetworkAddress& address, QDeadlineTimer bound);

  ~TcpConnection() { sockets::Close(socket_); }
  TcpConnection(const TcpConnection&) = delete;
  TcpConnection& operator=(const TcpConnection&) = delete;

  /// Queues bytes and gives the system what it takes of them.
  void Send(QByteArrayView bytes);

  /// Bytes that the system has not taken yet.
  [[nodiscard]] qsizetype Unsent() const { return unsent_.size(); }

  /// Appends one piece of what has arrived; false when nothing has, or the connection has ended.
  [[nodiscard]] bool Receive(QByteArray& bytes);

  /// Sleeps until something has arrived, the connection has ended or the time is over; sends meanwhile.
  /// True unless the time is over.
  [[nodiscard]] bool Wait(double seconds);

  /// Nothing can come any more, as Receive() or Wait() has found.
  [[nodiscard]] bool Ended() const { return ended_; }

  /// How it ended: in order, by the other side.
  [[nodiscard]] bool EndedInOrder() const { return endedInOrder_; }

 private:
  explicit TcpConnection(sockets::Handle socket) : socket_(socket) {}

  void Flush();

  sockets::Handle socket_;
  QByteArray unsent_;
  bool ended_ = false;
  bool endedInOrder_ = false;
};

/// Seconds left until `bound`, 0 when it is over.
[[nodiscard]] double SecondsLeft(QDeadlineTimer bound);

}  // namespace kalivor::platform
