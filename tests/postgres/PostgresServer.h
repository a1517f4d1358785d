// A PostgreSQL server of the tests' own: a cluster in a temporary folder, run by an unprivileged user.
#pragma once

#include <gtest/gtest.h>
#include <QProcess>
#include <QTemporaryDir>

#include "history/server/Connection.h"

namespace kalivor::test {

/// Runs while the object lives. It listens at a socket in Folder() and at a port of 127.0.0.1; the user
/// "admin" may do everything and needs no password.
class PostgresServer {
 public:
  /// Makes the cluster and starts it. `settings` are lines of its configuration.
  explicit PostgresServer(const QStringList& settings = {});
  ~PostgresServer();
  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;

  void Start();
  /// As an administrator does it.
  void Stop();
  /// As a power cut does it.
  void Kill();

  /// Lines that come before the others of the file that says who may connect how.
  void SetAccess(const QString& lines);
  /// Lines of the configuration; the next start takes them.
  void AddSettings(const QStringList& lines);

  [[nodiscard]] QString Folder() const { return folder_.path(); }
  [[nodiscard]] quint16 Port() const { return port_; }
  /// A folder that the server may read: files for it.
  [[nodiscard]] QString File(const QString& name) const { return folder_.filePath(name); }
  /// Lets the server's user have the file, and nobody else.
  void HandOver(const QString& file) const;

  /// For libpq: at the socket, or over the network without encryption.
  [[nodiscard]] QString AtSocket(const QString& user = QStringLiteral("admin"),
                                 const QString& database = QStringLiteral("postgres")) const;
  [[nodiscard]] QString OverNetwork(quint16 port, const QString& user = QStringLiteral("admin"),
                                    const QString& database = QStringLiteral("postgres")) const;

  /// Runs statements as the administrator, or as another user; returns what the server says against it.
  QString Do(const QStringList& statements, const QString& user = QStringLiteral("admin"),
             const QString& database = QStringLiteral("postgres"));
  /// The first value of the first row, in binary.
  QByteArray Ask(const QString& query, const QString& database = QStringLiteral("postgres"));

 private:
  void RunAsOther(const QString& program, const QStringList& arguments) const;

  QTemporaryDir folder_;
  quint16 port_;
  QString access_;
  QProcess process_;
};

/// Goes on for ever.
inline bool Always() {
  return true;
}

}  // namespace kalivor::test
