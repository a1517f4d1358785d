// A server on this computer that offers a serial line over the network; the line is the test's.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <functional>
#include <memory>

namespace kalivor::test {

/// How a connection breaks.
struct Break {
  enum class Kind {
    None,
    HangUp,   ///< it ends in order
    Reset,    ///< it is cut off
    Stall,    ///< it stands still for stall_ms, and goes on with all that there was
    Swallow,  ///< nothing passes any more
  };
  Kind kind = Kind::None;
  qsizetype after_bytes = 0;  ///< that have passed, in either direction
  int stall_ms = 0;
};

/// How the server speaks, and what it does otherwise than it should. Numbers are those of RFC 2217.
struct ServerManner {
  bool comPort = false;         ///< Telnet with COM port control; otherwise characters and nothing else
  QByteArray greeting = {};     ///< sent to everyone who comes, as it is
  bool turnsAway = false;       ///< ends the connection behind the greeting
  bool refusesControl = false;  ///< of the port
  bool answersOffer = true;     ///< at all
  bool confirms = true;         ///< settings and purges
  int ownBaud = 0;              ///< confirms this rate, whatever it is asked for

  /// Answers the requests of the line ("#…" to the carriage return); without it the test does. Runs in the
  /// server's thread.
  std::function<QByteArray(const QByteArray& request)> controller = nullptr;

  /// How the connection that has come now, or goes on, is to break next; without it none does. Runs in the
  /// server's thread.
  std::function<Break()> breaks = nullptr;
};

/// Plays in a thread of its own. A new connection takes the place of the one before.
class NetworkServer {
 public:
  explicit NetworkServer(ServerManner manner = {});
  ~NetworkServer();
  NetworkServer(const NetworkServer&) = delete;
  NetworkServer& operator=(const NetworkServer&) = delete;

  [[nodiscard]] QString Device() const;
  [[nodiscard]] quint16 Port() const;

  /// The next connections are met so.
  void SetManner(const ServerManner& manner);

  /// Takes `count` characters of the line; fewer when they do not come within some seconds.
  [[nodiscard]] QByteArray Receive(qsizetype count);

  /// Sends characters of the line, in the notation that the connection needs.
  void Send(const QByteArray& characters);

  /// Sends bytes as they are.
  void SendBytes(const QByteArray& bytes);

  /// The next characters are for later: they are sent before the next purge is confirmed.
  void SendBeforePurge(const QByteArray& characters);

  /// Ends the connection, and offers none any more.
  void Vanish();

  /// Ends the connection, as if the computer had been switched off and on.
  void Reset();

  /// Ends the connection in order.
  void HangUp();

  /// Connections that have come so far.
  [[nodiscard]] int Connections() const;
  /// A connection stands now, as far as is known here.
  [[nodiscard]] bool Connected() const;

  /// Commands of COM port control that have come, each with its value; takes them.
  [[nodiscard]] QByteArrayList TakeCommands();

 private:
  struct Play;
  std::unique_ptr<Play> play_;
};

}  // namespace kalivor::test
