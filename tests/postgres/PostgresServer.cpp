#include "postgres/PostgresServer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTcpServer>
#include <QThread>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

constexpr int kHang_ms = 60'000;

quint16 FreePort() {
  QTcpServer probe;
  EXPECT_TRUE(probe.listen(QHostAddress::LocalHost));
  return probe.serverPort();
}

void Write(const QString& path, const QString& text, QIODevice::OpenMode mode = {}) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly | mode)) << path.toStdString();
  file.write(text.toUtf8());
}

// The server refuses to work for root.
QStringList Command(const QString& program, const QStringList& arguments) {
  const QStringList command = QStringList{program} + arguments;
  if (geteuid() != 0) return command;
  return QStringList{u"setpriv"_s, u"--reuid=postgres"_s, u"--regid=postgres"_s, u"--clear-groups"_s} +
         command;
}

QString PostgresProgram(const QString& name) {
  return QStringLiteral(KALIVOR_POSTGRES "/") + name;
}

}  // namespace

// The path of a socket must be short.
PostgresServer::PostgresServer(const QStringList& settings)
    : folder_(u"/tmp/kalivor-pg-XXXXXX"_s), port_(FreePort()) {
  HandOver(folder_.path());
  (void)chmod(QFile::encodeName(folder_.path()).constData(), 0755);
  RunAsOther(PostgresProgram(u"initdb"_s),
             {u"--pgdata"_s, File(u"data"_s), u"--username"_s, u"admin"_s, u"--auth"_s, u"trust"_s,
              u"--encoding"_s, u"UTF8"_s, u"--locale"_s, u"C"_s, u"--no-sync"_s});
  AddSettings({u"listen_addresses = '127.0.0.1'"_s, u"port = %1"_s.arg(port_),
               u"unix_socket_directories = '%1'"_s.arg(Folder()), u"max_connections = 60"_s,
               // The machine is not to lose its power during the tests.
               u"fsync = off"_s});
  AddSettings(settings);
  Start();
}

PostgresServer::~PostgresServer() {
  Stop();
}

void PostgresServer::RunAsOther(const QString& program, const QStringList& arguments) const {
  QStringList command = Command(program, arguments);
  QProcess process;
  process.setWorkingDirectory(u"/"_s);
  const QString first = command.takeFirst();
  process.start(first, command);
  EXPECT_TRUE(process.waitForFinished(kHang_ms) && process.exitCode() == 0)
      << program.toStdString() << ": " << process.readAllStandardError().toStdString();
}

void PostgresServer::HandOver(const QString& file) const {
  if (geteuid() != 0) return;
  QProcess process;
  process.start(u"chown"_s, {u"postgres:postgres"_s, file});
  EXPECT_TRUE(process.waitForFinished(kHang_ms) && process.exitCode() == 0)
      << "There is no user postgres (package postgresql-15).";
}

void PostgresServer::AddSettings(const QStringList& lines) {
  Write(File(u"data/postgresql.conf"_s), lines.join(u'\n') + u'\n', QIODevice::Append);
}

void PostgresServer::SetAccess(const QString& lines) {
  Write(File(u"data/pg_hba.conf"_s), lines + u"\nlocal all all trust\nhost all all 127.0.0.1/32 trust\n"_s);
  Do({u"SELECT pg_reload_conf()"_s});
  // It is read a moment later.
  QThread::msleep(200);
}

void PostgresServer::Start() {
  QStringList command = Command(PostgresProgram(u"postgres"_s), {u"-D"_s, File(u"data"_s)});
  process_.setWorkingDirectory(u"/"_s);
  process_.setStandardErrorFile(File(u"log"_s), QIODevice::Append);
  const QString first = command.takeFirst();
  process_.start(first, command);
  EXPECT_TRUE(process_.waitForStarted(kHang_ms));
  QElapsedTimer since;
  since.start();
  while (since.elapsed() < kHang_ms && process_.state() == QProcess::Running) {
    if (history::Connection::Open(AtSocket(), Always).connection) return;
    QThread::msleep(20);
    process_.waitForFinished(0);
  }
  QFile log(File(u"log"_s));
  (void)log.open(QIODevice::ReadOnly);
  ADD_FAILURE() << "The server did not start: " << log.readAll().toStdString();
}

void PostgresServer::Stop() {
  if (process_.state() == QProcess::NotRunning) return;
  // Whoever is connected is thrown out.
  (void)::kill(static_cast<pid_t>(process_.processId()), SIGINT);
  EXPECT_TRUE(process_.waitForFinished(kHang_ms));
}

void PostgresServer::Kill() {
  // Its parts end when they notice; only then it may start again.
  (void)::kill(static_cast<pid_t>(process_.processId()), SIGQUIT);
  EXPECT_TRUE(process_.waitForFinished(kHang_ms));
}

QString PostgresServer::AtSocket(const QString& user, const QString& database) const {
  return u"host=%1 port=%2 user=%3 dbname=%4"_s.arg(Folder(), QString::number(port_), user, database);
}

QString PostgresServer::OverNetwork(quint16 port, const QString& user, const QString& database) const {
  return u"host=127.0.0.1 port=%1 user=%2 dbname=%3 sslmode=disable"_s.arg(QString::number(port), user,
                                                                           database);
}

QString PostgresServer::Do(const QStringList& statements, const QString& user, const QString& database) {
  const history::Connection::Opened opened = history::Connection::Open(AtSocket(user, database), Always);
  if (opened.failure) return opened.failure.text;
  for (const QString& statement : statements) {
    const history::ServerRows rows = opened.connection->Run(statement.toUtf8());
    if (rows.failure) return rows.failure.text;
  }
  return {};
}

QByteArray PostgresServer::Ask(const QString& query, const QString& database) {
  const history::Connection::Opened opened =
      history::Connection::Open(AtSocket(u"admin"_s, database), Always);
  if (opened.failure) return {};
  const history::ServerRows rows = opened.connection->Run(query.toUtf8());
  return rows.Count() > 0 ? rows.At(0, 0) : QByteArray();
}

}  // namespace kalivor::test
