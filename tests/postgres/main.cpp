// Starts the server that the tests share.
#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <memory>

#include "postgres/PostgresTest.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

std::unique_ptr<PostgresServer> server;

void OpenSsl(const QStringList& arguments) {
  QProcess process;
  process.setWorkingDirectory(server->Folder());
  process.start(u"openssl"_s, arguments);
  EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0)
      << process.readAllStandardError().toStdString();
}

QStringList NewKey(const QString& name, const QString& subject) {
  return {u"-newkey"_s,    u"ec"_s,    u"-pkeyopt"_s,       u"ec_paramgen_curve:prime256v1"_s,
          u"-nodes"_s,     u"-subj"_s, u"/CN="_s + subject, u"-keyout"_s,
          name + u".key"_s};
}

/// Certificates of two authorities, of the server, and one that nobody has issued.
class Environment final : public testing::Environment {
 public:
  void SetUp() override {
    server = std::make_unique<PostgresServer>();
    for (const QString& name : {u"ca"_s, u"stranger"_s, u"alone"_s})
      OpenSsl(QStringList{u"req"_s, u"-x509"_s, u"-days"_s, u"2"_s, u"-out"_s, name + u".crt"_s} +
              NewKey(name, name == u"alone" ? u"localhost"_s : name));
    OpenSsl(QStringList{u"req"_s, u"-new"_s, u"-out"_s, u"server.csr"_s, u"-addext"_s,
                        u"subjectAltName=DNS:localhost"_s} +
            NewKey(u"server"_s, u"localhost"_s));
    OpenSsl({u"x509"_s, u"-req"_s, u"-in"_s, u"server.csr"_s, u"-CA"_s, u"ca.crt"_s, u"-CAkey"_s, u"ca.key"_s,
             u"-CAcreateserial"_s, u"-days"_s, u"2"_s, u"-copy_extensions"_s, u"copy"_s, u"-out"_s,
             u"server.crt"_s});
    for (const QString& name : {u"server"_s, u"alone"_s})
      server->HandOver(server->File(name + u".key"_s));
    server->Stop();
    server->AddSettings({u"ssl = on"_s, u"ssl_cert_file = '%1'"_s.arg(server->File(u"server.crt"_s)),
                         u"ssl_key_file = '%1'"_s.arg(server->File(u"server.key"_s))});
    server->Start();
  }
  void TearDown() override { server.reset(); }
};

}  // namespace

PostgresServer& TheServer() {
  return *server;
}

}  // namespace kalivor::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  // What the user who runs the tests has set for libpq is not theirs.
  const QTemporaryDir home;
  qputenv("HOME", home.path().toLocal8Bit());
  for (const QString& name : QProcessEnvironment::systemEnvironment().keys())
    if (name.startsWith(u"PG")) qunsetenv(name.toLocal8Bit().constData());
  testing::AddGlobalTestEnvironment(new kalivor::test::Environment);
  return RUN_ALL_TESTS();
}
