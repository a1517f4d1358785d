// Lines over the network with a real server, which has the simulated controller at a pseudo-terminal behind
// it.
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <chrono>
#include <thread>

#include "e2e/Programs.h"
#include "e2e/SlowNetwork.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

const QStringList kTwo = {u"--uncheck"_s,       u"all"_s,     u"--check"_s,
                          u"_Hk1RaumSollTag"_s, u"--check"_s, u"_Hk1RaumSollNacht"_s};

// The first parameters alone: a whole transfer takes seconds.
QStringList First(int count) {
  QStringList marks{u"--uncheck"_s, u"all"_s};
  for (int index = 1; index <= count; ++index)
    marks += {u"--check"_s, QString::number(index)};
  return marks;
}

// One that nobody has at the moment.
quint16 FreePort() {
  QTcpServer probe;
  EXPECT_TRUE(probe.listen(QHostAddress::LocalHost));
  return probe.serverPort();
}

/// A running ser2net of the test's own, with its own configuration.
class Server {
 public:
  enum Kind { Raw, ComPort };

  Server(Kind kind, const QString& device) : kind_(kind) {
    QFile configuration(folder_.filePath(u"ser2net.yaml"_s));
    EXPECT_TRUE(configuration.open(QIODevice::WriteOnly));
    const QString accepter = kind == ComPort ? u"telnet(rfc2217=true),tcp"_s : u"tcp"_s;
    configuration.write(
        u"connection: &regler\n  accepter: %1,127.0.0.1,%2\n  connector: serialdev,%3,9600o71,local\n"_s
            .arg(accepter)
            .arg(port_)
            .arg(device)
            .toUtf8());
    configuration.close();
    process_.start(QStringLiteral(KALIVOR_SER2NET),
                   {u"-n"_s, u"-c"_s, configuration.fileName(), u"-P"_s, folder_.filePath(u"pid"_s)});
    EXPECT_TRUE(process_.waitForStarted(kHang_ms));
    // It is there when it takes connections.
    QElapsedTimer since;
    since.start();
    QTcpSocket probe;
    do {
      probe.connectToHost(QHostAddress::LocalHost, port_);
      if (probe.waitForConnected(100)) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    } while (since.elapsed() < kHang_ms && process_.state() == QProcess::Running);
    EXPECT_EQ(probe.state(), QAbstractSocket::ConnectedState)
        << process_.readAllStandardError().toStdString();
    probe.abort();
    // The probe has had the device; the next one gets it when it is free again.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  ~Server() { Stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  void Stop() {
    process_.terminate();
    if (!process_.waitForFinished(2000)) {
      process_.kill();
      process_.waitForFinished();
    }
  }

  [[nodiscard]] quint16 Port() const { return port_; }
  [[nodiscard]] QString Device() const { return DeviceAt(port_); }
  [[nodiscard]] QString DeviceAt(quint16 port) const {
    return (kind_ == ComPort ? u"rfc2217://127.0.0.1:%1"_s : u"socket://127.0.0.1:%1"_s).arg(port);
  }

 private:
  Kind kind_;
  quint16 port_ = FreePort();
  QTemporaryDir folder_;
  QProcess process_;
};

class NetworkLines : public testing::TestWithParam<Server::Kind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, NetworkLines, testing::Values(Server::Raw, Server::ComPort),
                         [](const auto& kind) { return kind.param == Server::Raw ? "Raw" : "ComPort"; });

// The commands of a day at a plant, and what came of each.
QStringList WorkOn(const QString& device) {
  Cli cli(device);
  const QStringList edit{u"--set"_s, u"_Hk1RaumSollTag=22.5"_s};
  QStringList outcomes;
  for (const QStringList& command :
       {QStringList{u"identify"_s}, QStringList{u"receive"_s} + First(20),
        QStringList{u"send"_s} + edit + kTwo, QStringList{u"compare"_s} + kTwo,
        QStringList{u"safe-send"_s, u"--yes"_s, u"--set"_s, u"_Hk1RaumSollNacht=17.5"_s} + kTwo,
        QStringList{u"verify"_s} + kTwo}) {
    const Outcome outcome = cli.Run(command);
    outcomes.append(u"%1 %2\n%3%4"_s.arg(command.first()).arg(outcome.status).arg(outcome.out, outcome.err));
  }
  // Backups have names of their own.
  static const QRegularExpression path(u"[^\\s]*/Sicherungen/[^\\n]*"_s);
  return outcomes.replaceInStrings(path, u"PFAD"_s);
}

TEST_P(NetworkLines, DoWhatThePortDoes) {
  const Simulator direct;
  const Simulator remote;
  const Server server(GetParam(), remote.Device());
  const QStringList expected = WorkOn(direct.Device());
  const QStringList actual = WorkOn(server.Device());
  ASSERT_EQ(actual.size(), expected.size());
  for (qsizetype i = 0; i < expected.size(); ++i)
    EXPECT_EQ(actual.at(i).toStdString(), expected.at(i).toStdString());
  EXPECT_TRUE(expected.at(4).contains(u"geprüft"_s)) << expected.at(4).toStdString();
}

TEST(NetworkLines, SwitchTheRate) {
  const Simulator simulator({u"--rate"_s, u"19200"_s});
  const Server server(Server::ComPort, simulator.Device());
  const Outcome outcome = Cli(server.Device()).Run(QStringList(u"receive"_s) + kTwo);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, u"Empfangen....\nEmpfangen beendet\n"_s);
}

TEST_P(NetworkLines, OneThatSomebodyElseHasIsNotAvailable) {
  const Simulator simulator;
  const Server server(GetParam(), simulator.Device());
  QTcpSocket other;
  other.connectToHost(QHostAddress::LocalHost, server.Port());
  ASSERT_TRUE(other.waitForConnected(kHang_ms));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const Outcome refused = Cli(server.Device()).Run({u"identify"_s});
  EXPECT_EQ(refused.status, 3);
  EXPECT_EQ(refused.err, u"ERROR: COM 1 nicht verfügber\n"_s);
  other.abort();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_EQ(Cli(server.Device()).Run({u"identify"_s}).status, 0);
}

TEST_P(NetworkLines, AServerThatEndsIsADeviceThatVanishes) {
  const Simulator simulator;
  Server server(GetParam(), simulator.Device());
  Cli cli(server.Device());
  cli.Start(QStringList(u"receive"_s) + First(25));
  ASSERT_TRUE(cli.WaitForOutput("Empfangen..."));
  QElapsedTimer since;
  since.start();
  server.Stop();
  const Outcome outcome = cli.Finish();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.out.contains(u"nicht verfügber"_s)) << outcome.out.toStdString();
  EXPECT_LT(since.elapsed(), 20'000);
}

// The reply time is 400 ms, there and back.
TEST_P(NetworkLines, WorkWithDelaysOfUpTo150MillisecondsEachWay) {
  const Simulator simulator;
  const Server server(GetParam(), simulator.Device());
  for (const int delay_ms : {20, 150}) {
    const SlowNetwork network(server.Port(), {.delay_ms = delay_ms});
    const Outcome outcome = Cli(server.DeviceAt(network.Port())).Run(QStringList(u"compare"_s) + kTwo);
    EXPECT_EQ(outcome.status, 0) << delay_ms;
    EXPECT_EQ(outcome.out, u"Vergleichen....\nVergleich beendet\n"_s) << delay_ms;
  }
}

TEST_P(NetworkLines, FindNobodyWithGreaterDelays) {
  const Simulator simulator;
  const Server server(GetParam(), simulator.Device());
  const SlowNetwork network(server.Port(), {.delay_ms = 300});
  const Outcome outcome = Cli(server.DeviceAt(network.Port())).Run({u"identify"_s});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.err, u"ERROR: kein Empfang\n"_s);
}

// Whatever is late or lost: all values in the controller are those on the PC, and nothing else may be read.
TEST_P(NetworkLines, ReadNoWrongValueOverABadNetwork) {
  const Simulator simulator;
  const Server server(GetParam(), simulator.Device());
  const SlowNetwork network(server.Port(), {.delay_ms = 2, .seed = 7, .stalls = 40, .breaks = 60});
  bool finished = false;
  for (int attempt = 0; attempt < 30 && !(finished && network.Broken() > 3); ++attempt) {
    const Outcome outcome = Cli(server.DeviceAt(network.Port())).Run(QStringList(u"compare"_s) + First(15));
    finished = finished || outcome.out.contains(u"Vergleich beendet"_s);
    EXPECT_FALSE(outcome.out.contains(u"Änderung"_s)) << outcome.out.toStdString();
  }
  EXPECT_TRUE(finished);
  EXPECT_GT(network.Broken(), 3);
}

}  // namespace
}  // namespace kalivor::test
