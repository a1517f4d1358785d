// Two programs on one port, a computer that sleeps, and what happens when descriptors or memory run out.
#include <QRegularExpression>
#include <QThread>
#include <csignal>

#include "core/ValueFileFormat.h"
#include "e2e/Programs.h"
#include "platform/posix/PosixFileSystem.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

// The parameters of one group of the example: enough for a transfer of a second.
const QStringList kReceiveGroup = {u"--uncheck"_s, u"all"_s, u"--check"_s, u"group=Warmwasser"_s,
                                   u"receive"_s};

// What a value file holds, by variable.
QMap<QString, qint32> Values(const QString& path) {
  platform::PosixFileSystem files;
  QMap<QString, qint32> values;
  for (const ValueRecord& record : ParseValueFile(files.Read(path).bytes).records)
    values[record.Variable] = record.Wert;
  return values;
}

// The example's standard values except for one, as a value file for the controller.
QString ChangedValues(const QTemporaryDir& folder) {
  QString path = folder.filePath(u"regler.qpf"_s);
  EXPECT_EQ(Cli().Run({u"--set"_s, u"_WwSollTag=51"_s, u"--save"_s, path, u"params"_s}).status, 0);
  return path;
}

// Every failure is of the port, and each value is the controller's unless it is reported.
void ExpectReportedOrRight(const Outcome& outcome, const QString& saved, const QString& held) {
  static const QRegularExpression known(
      u"^(Empfangen\\.\\.|Fehler bei: _\\w+(\\[\\d+\\])?|ERROR: (COM 1 nicht verfügber|kein Empfang)|"
      "Empfangen (beendet|abgebrochen)|)\\.*$"_s);
  for (const QString& line : outcome.out.split(u'\n'))
    EXPECT_TRUE(known.match(line).hasMatch()) << line.toStdString();
  EXPECT_TRUE(outcome.status == 0 || outcome.status == 1 || outcome.status == 3) << outcome.status;
  if (outcome.status == 3) return;
  const QMap<QString, qint32> right = Values(held);
  const QMap<QString, qint32> values = Values(saved);
  EXPECT_FALSE(values.isEmpty());
  for (auto value = values.begin(); value != values.end(); ++value) {
    if (outcome.out.contains(u"Fehler bei: "_s + value.key())) continue;
    EXPECT_EQ(value.value(), right[value.key()]) << value.key().toStdString();
  }
}

TEST(TwoPrograms, OnOnePortTakeNothingFromEachOther) {
  const QTemporaryDir folder;
  const QString held = ChangedValues(folder);
  const Simulator simulator({u"--values"_s, held});
  Cli first(simulator.Device());
  Cli second(simulator.Device());
  const QString firstSaved = folder.filePath(u"1.qpf"_s);
  const QString secondSaved = folder.filePath(u"2.qpf"_s);
  first.Start(kReceiveGroup + QStringList{u"--save"_s, firstSaved});
  second.Start(kReceiveGroup + QStringList{u"--save"_s, secondSaved});
  ExpectReportedOrRight(first.Finish(), firstSaved, held);
  ExpectReportedOrRight(second.Finish(), secondSaved, held);
}

// The computer sleeps in the middle of a transfer; the controller has answered long ago when it wakes.
TEST(Sleep, InTheMiddleOfATransferChangesNothing) {
  const QTemporaryDir folder;
  const QString held = ChangedValues(folder);
  const Simulator simulator({u"--values"_s, held, u"--fault"_s, u"late:100"_s});
  Cli cli(simulator.Device());
  const QString saved = folder.filePath(u"1.qpf"_s);
  cli.Start(kReceiveGroup + QStringList{u"--save"_s, saved});
  ASSERT_TRUE(cli.WaitForOutput("Empfangen..."));
  const auto process = static_cast<pid_t>(cli.Process().processId());
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(kill(process, SIGSTOP), 0);
    QThread::msleep(500);
    ASSERT_EQ(kill(process, SIGCONT), 0);
    QThread::msleep(30);
  }
  const Outcome outcome = cli.Finish();
  EXPECT_EQ(outcome.status, 0) << outcome.out.toStdString();
  ExpectReportedOrRight(outcome, saved, held);
}

// kalivor-cli with a limit of its own (util-linux's prlimit).
Outcome Limited(const QString& limit, const QStringList& arguments) {
  QProcess process;
  const QTemporaryDir settings;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(u"XDG_CONFIG_HOME"_s, settings.path());
  process.setProcessEnvironment(environment);
  process.start(u"prlimit"_s, QStringList{limit, Program(u"kalivor-cli"_s)} + arguments);
  EXPECT_TRUE(process.waitForFinished(kHang_ms));
  return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
          QString::fromUtf8(process.readAllStandardOutput()),
          QString::fromUtf8(process.readAllStandardError())};
}

constexpr int kNotLoaded = 127;  // not even the libraries could be loaded

TEST(NoDescriptors, AreSaidInGerman) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP()
      << "UndefinedBehaviorSanitizer opens a pipe to look at an object, and reports it where none is left";
#endif
  const Simulator simulator;
  int messages = 0;
  bool done = false;
  for (int limit = 3; limit <= 12; ++limit) {
    const Outcome outcome =
        Limited(u"--nofile=%1"_s.arg(limit),
                QStringList{u"--ini-path"_s, Examples(), u"--port"_s, simulator.Device()} + kReceiveGroup);
    SCOPED_TRACE(testing::Message() << limit << ": " << outcome.out.toStdString()
                                    << outcome.err.toStdString());
    if (outcome.status == kNotLoaded) continue;
    ASSERT_NE(outcome.status, -1);
    done = outcome.status == 0;
    if (done) continue;
    ++messages;
    EXPECT_TRUE(outcome.err.contains(u"Zu viele geöffnete Dateien"_s) || outcome.out.contains(u"ERROR: "_s));
  }
  EXPECT_GT(messages, 0);
  EXPECT_TRUE(done);
}

// A definition folder that takes far more memory than the program does.
void WriteLargeDefinitions(const QString& folder) {
  const auto write = [&folder](const QString& name, const QByteArray& text) {
    QFile file(folder + u'/' + name);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("Heading\r\n" + text) > 0);
  };
  write(u"VF.INI"_s, "AB1-123.4  A.TXT  D.TXT  -  WR\r\n");
  write(u"D.TXT"_s, "G  P  0  9  0  -  0  0  int  x  V1  -  -\r\n");
  QByteArray addresses;
  for (int i = 1; i <= 400'000; ++i)
    addresses += 'V' + QByteArray::number(i) + "  1F00\r\n";
  write(u"A.TXT"_s, addresses);
}

TEST(NoMemory, IsSaidInGerman) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "AddressSanitizer needs terabytes of address space itself";
#endif
  const QTemporaryDir folder;
  WriteLargeDefinitions(folder.path());
  int messages = 0;
  bool done = false;
  for (int limit_mib = 72; limit_mib <= 512 && !done; limit_mib += limit_mib < 128 ? 4 : 64) {
    const Outcome outcome = Limited(u"--as=%1"_s.arg(qint64{limit_mib} * 1024 * 1024),
                                    {u"--ini-path"_s, folder.path(), u"params"_s});
    SCOPED_TRACE(testing::Message() << limit_mib << " MiB: " << outcome.err.toStdString());
    // Libraries that do not get their memory while they are loaded end in many ways, and before main().
    const bool began = messages > 0 || outcome.err.contains(u"Arbeitsspeicher"_s) || outcome.status == 0;
    if (!began) continue;
    ASSERT_NE(outcome.status, -1);
    done = outcome.status == 0;
    if (done) continue;
    ++messages;
    EXPECT_EQ(outcome.out, QString());
    EXPECT_TRUE(outcome.err.contains(u"Der Arbeitsspeicher reicht nicht aus."_s));
  }
  EXPECT_GT(messages, 0);
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace kalivor::test
