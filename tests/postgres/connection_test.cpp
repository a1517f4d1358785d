// Who is connected with, how that is secured, and that nothing waits without end.
#include "history/server/Connection.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTcpServer>
#include <thread>

#include "history/server/LibPq.h"
#include "postgres/CuttingProxy.h"
#include "postgres/PostgresTest.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

using test::Always;
using test::TheServer;

class ConnectionTest : public test::PostgresTest {
 protected:
  static ServerFailure FailureOf(const QString& server) { return Connection::Open(server, Always).failure; }

  static QString RootCertificate(const QString& name) {
    return u"sslrootcert=%1 "_s.arg(TheServer().File(name));
  }

  static void Write(const QString& path, const QString& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
  }
};

TEST_F(ConnectionTest, TheServersCertificateAndNameAreVerifiedUnlessTheStringSaysOtherwise) {
  const Connection::Opened verified =
      Connection::Open(Remote(u"localhost"_s, RootCertificate(u"ca.crt"_s)), Always);
  ASSERT_FALSE(verified.failure) << verified.failure.text.toStdString();
  EXPECT_TRUE(verified.connection->Encrypted());

  // Another name than that of the certificate, another authority, none at all.
  for (const QString& server :
       {Remote(u"127.0.0.1"_s, RootCertificate(u"ca.crt"_s)),
        Remote(u"localhost"_s, RootCertificate(u"stranger.crt"_s)), Remote(u"localhost"_s)}) {
    const ServerFailure failure = FailureOf(server);
    EXPECT_EQ(failure.kind, ServerFailure::NotReached) << server.toStdString();
    EXPECT_TRUE(failure.text.contains(u"sslrootcert nennt")) << failure.text.toStdString();
  }

  for (const QString& mode : {u"disable"_s, u"prefer"_s, u"require"_s}) {
    const Connection::Opened opened = Connection::Open(Remote(u"127.0.0.1"_s, u"sslmode="_s + mode), Always);
    ASSERT_FALSE(opened.failure) << opened.failure.text.toStdString();
    EXPECT_EQ(opened.connection->Encrypted(), mode != u"disable");
  }
  qputenv("PGSSLMODE", "require");
  EXPECT_FALSE(FailureOf(Remote(u"127.0.0.1"_s)));
  qunsetenv("PGSSLMODE");
}

TEST_F(ConnectionTest, ACertificateThatNobodyHasIssuedIsRefused) {
  ASSERT_EQ(Do({u"ALTER SYSTEM SET ssl_cert_file = '%1'"_s.arg(TheServer().File(u"alone.crt"_s)),
                u"ALTER SYSTEM SET ssl_key_file = '%1'"_s.arg(TheServer().File(u"alone.key"_s)),
                u"SELECT pg_reload_conf()"_s}),
            QString());
  const QString trusting = Remote(u"localhost"_s, RootCertificate(u"alone.crt"_s));
  for (int i = 0; i < 50 && FailureOf(trusting); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(FailureOf(trusting));
  EXPECT_EQ(FailureOf(Remote(u"localhost"_s, RootCertificate(u"ca.crt"_s))).kind, ServerFailure::NotReached);
  EXPECT_EQ(Do({u"ALTER SYSTEM RESET ssl_cert_file"_s, u"ALTER SYSTEM RESET ssl_key_file"_s,
                u"SELECT pg_reload_conf()"_s}),
            QString());
}

TEST_F(ConnectionTest, ASocketOfThisMachineNeedsNoEncryption) {
  const Connection::Opened opened = Connection::Open(Local(), Always);
  ASSERT_FALSE(opened.failure) << opened.failure.text.toStdString();
  EXPECT_FALSE(opened.connection->Encrypted());
}

TEST_F(ConnectionTest, AWordIsTheNameOfAService) {
  Write(QDir::homePath() + u"/.pg_service.conf"_s,
        u"[abteilung]\nhost=%1\nport=%2\nuser=admin\ndbname=%3\n"
        "[offen]\nhost=127.0.0.1\nport=%2\nuser=admin\ndbname=%3\nsslmode=disable\n"
        "[still]\nhost=127.0.0.1\nport=%2\nuser=admin\ndbname=%3\n"_s.arg(TheServer().Folder())
            .arg(TheServer().Port())
            .arg(database_));
  const Connection::Opened opened = Connection::Open(u" abteilung "_s, Always);
  ASSERT_FALSE(opened.failure) << opened.failure.text.toStdString();
  ServerRows rows = opened.connection->Run("SELECT current_database()::text");
  ASSERT_EQ(rows.Count(), 1);
  EXPECT_EQ(rows.At(0, 0), database_.toUtf8());
  EXPECT_FALSE(FailureOf(u"offen"_s));
  EXPECT_EQ(FailureOf(u"still"_s).kind, ServerFailure::NotReached);  // and so verified
  EXPECT_TRUE(FailureOf(u"keiner"_s).text.contains(u"keiner"));
}

TEST_F(ConnectionTest, AUriIsTaken) {
  EXPECT_FALSE(FailureOf(
      u"postgresql://admin@127.0.0.1:%1/%2?sslmode=disable"_s.arg(TheServer().Port()).arg(database_)));
}

TEST_F(ConnectionTest, APasswordIsNotTakenFromTheStringButFromItsFile) {
  ASSERT_EQ(Do({u"CREATE ROLE geheim LOGIN PASSWORD 'a b''c'"_s}), QString());
  TheServer().SetAccess(u"host all geheim 127.0.0.1/32 scram-sha-256"_s);
  const QString server = TheServer().OverNetwork(TheServer().Port(), u"geheim"_s, database_);
  EXPECT_EQ(FailureOf(server).kind, ServerFailure::NotReached);
  Write(QDir::homePath() + u"/.pgpass"_s, u"127.0.0.1:*:*:geheim:a b'c\n"_s);
  EXPECT_FALSE(FailureOf(server)) << FailureOf(server).text.toStdString();
  for (const QString& told :
       {server + u" password=x"_s, u"postgresql://geheim:x@127.0.0.1/db"_s, u"host=x sslpassword=y"_s}) {
    const ServerFailure failure = FailureOf(told);
    EXPECT_EQ(failure.kind, ServerFailure::BadServer);
    EXPECT_TRUE(failure.text.contains(u".pgpass")) << failure.text.toStdString();
  }
  TheServer().SetAccess({});
}

TEST_F(ConnectionTest, WhatNamesNoServerIsSaid) {
  EXPECT_EQ(FailureOf(u"  "_s).kind, ServerFailure::BadServer);
  for (const QString& text : {u"host="_s + u"'x"_s, u"foo=bar"_s, u"http://x"_s}) {
    const ServerFailure failure = FailureOf(text);
    EXPECT_EQ(failure.kind, ServerFailure::BadServer) << text.toStdString();
    EXPECT_TRUE(failure.text.startsWith(u"Die Angabe zum Server")) << failure.text.toStdString();
  }
  EXPECT_EQ(FailureOf(u"host=127.0.0.1 port=1"_s).kind, ServerFailure::NotReached);
}

TEST_F(ConnectionTest, AMissingLibraryIsSaid) {
  QString failure;
  EXPECT_FALSE(OpenLibPq(failure, {u"/nowhere/libpq.so.5"_s}));
  EXPECT_TRUE(failure.contains(u"libpq5")) << failure.toStdString();
  // Another library than it should be.
  EXPECT_FALSE(OpenLibPq(failure, {u"libm.so.6"_s}));
}

TEST_F(ConnectionTest, AServerThatSaysNothingIsGivenUp) {
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const QString server = TheServer().OverNetwork(silent.serverPort());
  QElapsedTimer time;
  time.start();
  EXPECT_EQ(FailureOf(server).text, u"Der Server antwortet seit 10 s nicht."_s);
  EXPECT_LT(time.elapsed(), 2 * Connection::kConnecting_ms);

  time.start();
  const Connection::Opened aborted = Connection::Open(server, [&] { return time.elapsed() < 200; });
  EXPECT_EQ(aborted.failure.kind, ServerFailure::Aborted);
  EXPECT_LT(time.elapsed(), 3000);
}

TEST_F(ConnectionTest, AStatementCanBeAborted) {
  bool goesOn = true;
  QElapsedTimer time;
  const Connection::Opened opened = Connection::Open(Local(), [&] { return goesOn || time.elapsed() < 200; });
  ASSERT_FALSE(opened.failure);
  time.start();
  goesOn = false;
  EXPECT_EQ(opened.connection->Run("SELECT pg_sleep(30)").failure.kind, ServerFailure::Aborted);
  EXPECT_LT(time.elapsed(), 3000);
}

TEST_F(ConnectionTest, ALostConnectionIsTold) {
  test::CuttingProxy proxy(TheServer().Port(), [](int) { return 5000; });
  const Connection::Opened opened = Connection::Open(TheServer().OverNetwork(proxy.Port()), Always);
  ASSERT_FALSE(opened.failure) << opened.failure.text.toStdString();
  EXPECT_EQ(opened.connection->Run("SELECT repeat('x', 100000)").failure.kind, ServerFailure::Lost);
  EXPECT_EQ(opened.connection->Run("SELECT 1").failure.kind, ServerFailure::Lost);
}

TEST_F(ConnectionTest, WhatTheServerSaysIsShown) {
  const Connection::Opened opened = Connection::Open(Local(), Always);
  ASSERT_FALSE(opened.failure);
  EXPECT_EQ(opened.connection->Run("SELECT * FROM nirgends").failure.kind, ServerFailure::NotThere);
  const ServerFailure failure = opened.connection->Run("SELECT '<b>'::int").failure;
  EXPECT_EQ(failure.kind, ServerFailure::Other);
  EXPECT_TRUE(failure.text.startsWith(u"Der Server meldet: ") && failure.text.contains(u"<b>"));
  // And goes on.
  EXPECT_EQ(opened.connection->Run("SELECT 1").Count(), 1);
}

}  // namespace
}  // namespace kalivor::history
