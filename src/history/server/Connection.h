// A connection to a PostgreSQL server that never waits without end.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "platform/net/SocketCalls.h"

namespace kalivor::history {

/// Asked a few times a second while something is under way; false ends that.
using GoOn = std::function<bool()>;

/// Why something did not work.
struct ServerFailure {
  enum Kind {
    None,
    Aborted,     ///< by the user
    BadServer,   ///< what names the server is at fault
    NotReached,  ///< there is no connection: no library, no server, no right to connect
    Lost,        ///< there was a connection; another one may do
    Busy,        ///< others were in the way; the same again may do
    NotThere,    ///< a table or schema that is asked for
    NoRight,     ///< the server refuses it to this user
    Other,
  };
  Kind kind = None;
  QString text;  ///< German, with what the server said

  [[nodiscard]] explicit operator bool() const { return kind != None; }
};

/// The library, and the connection that it has.
struct ServerHandle;

/// What a statement gave. Values are as the server sends them in binary.
class ServerRows {
 public:
  ServerFailure failure;

  [[nodiscard]] int Count() const { return count_; }
  [[nodiscard]] bool IsNull(int row, int column) const;
  [[nodiscard]] QByteArray At(int row, int column) const;  ///< a copy

 private:
  friend class Connection;
  struct Source;
  std::shared_ptr<const Source> source_;
  int count_ = 0;
};

class Connection {
 public:
  static constexpr int kConnecting_ms = 10'000;
  /// So long may the server be silent while it is asked for something.
  static constexpr int kSilence_ms = 30'000;

  struct Opened;

  /// Connects. `server` is a connection string, a URI or the name of a service, without a password: it is
  /// stored. Passwords come from where libpq looks for them. Unless string, service or PGSSLMODE say
  /// otherwise, TLS is used and the server's certificate and name are verified; a socket of this machine
  /// needs none.
  [[nodiscard]] static Opened Open(const QString& server, GoOn goOn);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Runs one statement. `parameters` are in binary, their types follow from the statement; null arrays are
  /// NULL. After Aborted, Lost and NotReached the connection is of no more use.
  [[nodiscard]] ServerRows Run(const QByteArray& statement, const std::vector<QByteArray>& parameters = {});

  /// True where what is sent is encrypted.
  [[nodiscard]] bool Encrypted() const;
  /// "UTF8" …: of the database.
  [[nodiscard]] QByteArray Encoding() const;

 private:
  Connection();

  ServerFailure Connect(const QString& server);
  [[nodiscard]] ServerFailure LostNow() const;
  /// Waits for the socket, a fraction of a second at most.
  [[nodiscard]] platform::sockets::Ready Wait(bool wantsInput, bool wantsOutput) const;

  std::shared_ptr<const ServerHandle> handle_;
  GoOn goOn_;
};

struct Connection::Opened {
  std::unique_ptr<Connection> connection;  ///< null after a failure
  ServerFailure failure;
};

/// Why this text cannot name a server, or must not be stored; asks no server.
[[nodiscard]] ServerFailure ServerFault(const QString& server);

}  // namespace kalivor::history
