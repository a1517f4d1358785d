// find with the real programs: two simulated controllers at two pseudo-terminals, and nobody at a third.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <QElapsedTimer>
#include <csignal>

#include "e2e/Programs.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

// Without its last column, the time of the answer.
QString WithoutTime(const QString& line) {
  return line.section(u'\t', 0, -2);
}

TEST(FindCommand, FindsTwoControllersAtTwoPorts) {
  const Simulator first({u"--echo"_s, u"--plant"_s, u"1"_s});
  const Simulator second(
      {u"--address"_s, u"5"_s, u"--rate"_s, u"19200"_s, u"--controller"_s, u"LFT-020.5"_s});
  const Outcome outcome = Cli().Run(
      {u"find"_s, u"--ports"_s, first.Device() + u',' + second.Device(), u"--addresses"_s, u"5-5"_s});
  EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
  const QStringList lines = outcome.out.split(u'\n');
  ASSERT_EQ(lines.size(), 3) << outcome.out.toStdString();
  EXPECT_EQ(WithoutTime(lines.at(0)), first.Device() + u"\t9600\t1\tHZL-012.0\tbekannt\t1\tja"_s);
  EXPECT_EQ(WithoutTime(lines.at(1)), second.Device() + u"\t19200\t5\tLFT-020.5\tbekannt\t0\tnein"_s);
  EXPECT_LT(lines.at(0).section(u'\t', -1).toInt(), 400);
  EXPECT_EQ(outcome.err, QString());
}

TEST(FindCommand, SaysWhatASilentPortAndAMissingOneMean) {
  const Simulator silent({u"--fault"_s, u"silent"_s});
  const QString missing = u"/dev/gibt-es-nicht"_s;
  const Outcome outcome = Cli().Run({u"find"_s, u"--ports"_s, silent.Device() + u',' + missing});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, QString());
  const QStringList lines = outcome.err.split(u'\n');
  ASSERT_EQ(lines.size(), 3) << outcome.err.toStdString();
  EXPECT_TRUE(lines.at(0).startsWith(silent.Device() + u": Es kam gar nichts zurück"_s));
  EXPECT_TRUE(lines.at(1).startsWith(missing + u": Die Schnittstelle ließ sich nicht öffnen."_s));
}

TEST(FindCommand, SaysThatTheAdapterWasPulledOut) {
  const Simulator vanishing({u"--fault"_s, u"unplug"_s});
  const Outcome outcome =
      Cli().Run({u"find"_s, u"--ports"_s, vanishing.Device(), u"--addresses"_s, u"0-255"_s});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_TRUE(outcome.err.contains(u": Die Schnittstelle ist während der Suche verschwunden"_s))
      << outcome.err.toStdString();
}

TEST(FindCommand, SaysThatAnotherProgramHasThePort) {
  const Simulator simulator;
  // As another program of ours holds it.
  const int device = ::open(simulator.Device().toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
  ASSERT_GE(device, 0);
  ASSERT_EQ(::flock(device, LOCK_EX | LOCK_NB), 0);
  const Outcome outcome = Cli().Run({u"find"_s, u"--ports"_s, simulator.Device()});
  ::close(device);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_FALSE(outcome.err.contains(u"Es kam gar nichts zurück"_s));
  EXPECT_TRUE(outcome.err.startsWith(simulator.Device() + u": Die Schnittstelle "_s))
      << outcome.err.toStdString();
  EXPECT_EQ(Cli().Run({u"find"_s, u"--ports"_s, simulator.Device()}).status, 0) << "it is free again";
}

TEST(FindCommand, AnInterruptEndsIt) {
  const Simulator silent({u"--fault"_s, u"silent"_s});
  Cli cli;
  cli.Start({u"find"_s, u"--ports"_s, silent.Device(), u"--addresses"_s, u"0-255"_s});
  ASSERT_FALSE(cli.Process().waitForFinished(700)) << "the addresses take more than three minutes";
  QElapsedTimer time;
  time.start();
  ::kill(static_cast<pid_t>(cli.Process().processId()), SIGINT);
  const Outcome outcome = cli.Finish();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_TRUE(outcome.err.endsWith(u"Die Suche wurde abgebrochen.\n"_s)) << outcome.err.toStdString();
  EXPECT_LT(time.elapsed(), 5000);
}

}  // namespace
}  // namespace kalivor::test
