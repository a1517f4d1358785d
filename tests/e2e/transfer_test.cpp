// The main job with the real programs: identify, receive, send, compare, and what can go wrong on the way.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <csignal>

#include "e2e/Programs.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

const QStringList kTwo = {u"--uncheck"_s,       u"all"_s,     u"--check"_s,
                          u"_Hk1RaumSollTag"_s, u"--check"_s, u"_Hk1RaumSollNacht"_s};

TEST(Transfer, TheMainJobOnTheShippedExample) {
  const Simulator simulator;
  Cli cli(simulator.Device());

  const Outcome identified = cli.Run({u"identify"_s});
  EXPECT_EQ(identified.status, 0);
  EXPECT_EQ(identified.out, u"HZL-012.0\n"_s);

  const Outcome received = cli.Run({u"receive"_s});
  EXPECT_EQ(received.status, 0);
  EXPECT_EQ(received.out, u"Empfangen.."_s + QString(u'.').repeated(111) + u"\nEmpfangen beendet\n"_s);

  const QStringList edit = {u"--set"_s, u"_Hk1RaumSollTag=22.5"_s};
  const Outcome sent = cli.Run(QStringList(u"send"_s) + edit + kTwo);
  EXPECT_EQ(sent.status, 0);
  EXPECT_EQ(sent.out, u"Senden....\nSenden beendet\n"_s);

  const Outcome deviating = cli.Run({u"compare"_s});
  EXPECT_EQ(deviating.status, 1);
  EXPECT_TRUE(
      deviating.out.contains(u"\nÄnderung bei: Heizkreis 1 Raumsolltemperatur Tag\n   PC    :     21.5 \n"
                             "   Regler:     22.5 ."_s))
      << deviating.out.toStdString();

  const Outcome equal = cli.Run(QStringList(u"compare"_s) + edit);
  EXPECT_EQ(equal.status, 0);
  EXPECT_EQ(equal.out, u"Vergleichen.."_s + QString(u'.').repeated(111) + u"\nVergleich beendet\n"_s);
}

TEST(Transfer, WithTheEchoOfATwoWireAdapter) {
  const Simulator simulator({u"--echo"_s});
  EXPECT_EQ(Cli(simulator.Device()).Run({u"receive"_s}).status, 0);
  EXPECT_EQ(Cli(simulator.Device()).Run({u"compare"_s}).status, 0);
}

TEST(Transfer, AtThePaceOfARealLine) {
  const Simulator simulator({u"--paced"_s, u"--echo"_s});
  const Outcome outcome = Cli(simulator.Device()).Run(QStringList(u"receive"_s) + kTwo);
  EXPECT_EQ(outcome.status, 0) << outcome.out.toStdString();
}

TEST(Transfer, AControllerAt19200BaudOnlyIsFound) {
  const Simulator simulator({u"--rate"_s, u"19200"_s});
  const Outcome outcome = Cli(simulator.Device()).Run(QStringList(u"receive"_s) + kTwo);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, u"Empfangen....\nEmpfangen beendet\n"_s);
}

TEST(Transfer, ReceivingSwitchesToTheControllersVersionAndPlantType) {
  const Simulator simulator({u"--controller"_s, u"LFT-020.5"_s, u"--plant"_s, u"2"_s});
  const Outcome received = Cli(simulator.Device()).Run({u"receive"_s});
  EXPECT_EQ(received.status, 0);
  EXPECT_EQ(received.out, u"Empfangen.."_s + QString(u'.').repeated(77) + u"\nEmpfangen beendet\n"_s);

  const Outcome compared = Cli(simulator.Device()).Run({u"compare"_s});
  EXPECT_EQ(compared.status, 3);
  EXPECT_EQ(compared.out, u"Vergleichen..\nAndere ReglerVersion: LFT-020.5\nVergleich abgebrochen\n"_s);
}

TEST(Transfer, SendingAsksWhereTheVersionsDiffer) {
  const Simulator simulator({u"--controller"_s, u"LFT-020.5"_s});
  Cli cli(simulator.Device());
  const Outcome unanswered = cli.Run({u"send"_s});
  EXPECT_EQ(unanswered.status, 4);
  EXPECT_TRUE(
      unanswered.err.contains(u"| 1: PC     (Senden Abbrechen)  : HZL-012.0 | 2: Regler (Werte neu "
                              "Einlesen): LFT-020.5"_s));

  const Outcome pc = cli.Run({u"send"_s, u"--answer"_s, u"first"_s});
  EXPECT_EQ(pc.status, 3);
  EXPECT_EQ(pc.out, u"Senden..\nSenden abgebrochen\n"_s);

  const Outcome controller = cli.Run({u"send"_s, u"--answer"_s, u"second"_s});
  EXPECT_EQ(controller.status, 3);
  EXPECT_EQ(controller.out, u"Senden.."_s + QString(u'.').repeated(77) + u"\nSenden abgebrochen\n"_s);
}

TEST(Transfer, SendingAsksWhereThePlantTypesDiffer) {
  Simulator simulator({u"--plant"_s, u"1"_s, u"--trace"_s});
  Cli cli(simulator.Device());
  const QStringList send = QStringList(u"send"_s) + kTwo + QStringList{u"--plant"_s, u"Lüftung"_s};
  EXPECT_EQ(cli.Run(send).status, 4);

  const Outcome pc = cli.Run(send + QStringList{u"--answer"_s, u"first"_s});
  EXPECT_EQ(pc.status, 0);
  EXPECT_EQ(pc.out, u"Senden....\nSenden beendet\n"_s);
  EXPECT_TRUE(pc.err.contains(u"| 1: PC: Lüftung | 2: Regler: Heizung"_s)) << pc.err.toStdString();
  // The controller has taken over the PC's plant type, so nothing is asked any more.
  EXPECT_EQ(cli.Run(send).status, 0);
  EXPECT_TRUE(simulator.Stop().err.contains(u"#0102W10000002"_s));

  const Simulator other({u"--plant"_s, u"1"_s});
  const Outcome controller = Cli(other.Device()).Run(send + QStringList{u"--answer"_s, u"second"_s});
  EXPECT_EQ(controller.status, 3);
  EXPECT_TRUE(controller.out.endsWith(u"\nSenden abgebrochen\n"_s));
}

TEST(Transfer, APlantNumberBeyondTheListIsRefused) {
  const Simulator tooLarge({u"--plant"_s, u"4"_s});
  const Outcome outcome = Cli(tooLarge.Device()).Run({u"receive"_s});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, u"Empfangen..\nEmpfangene Anlagennummer ( 4) zu gross\nEmpfangen beendet\n"_s);

  const Simulator oneTooLarge({u"--plant"_s, u"3"_s});
  const Outcome error = Cli(oneTooLarge.Device()).Run({u"compare"_s});
  EXPECT_EQ(error.status, 3);
  EXPECT_EQ(error.out, u"Vergleichen..\nVergleich abgebrochen\n"_s);
  EXPECT_EQ(error.err, u"KALIVOR: Die Auswahl liegt außerhalb der Liste.\n"_s);
}

TEST(Transfer, ADeadLineIsSaid) {
  const Simulator simulator({u"--fault"_s, u"silent"_s});
  Cli cli(simulator.Device());
  const Outcome received = cli.Run({u"receive"_s});
  EXPECT_EQ(received.status, 3);
  EXPECT_EQ(received.out, u"Empfangen..\nERROR: kein Empfang\nEmpfangen abgebrochen\n"_s);
  const Outcome sent = cli.Run({u"send"_s});
  EXPECT_EQ(sent.status, 3);
  EXPECT_EQ(sent.out, u"Senden..\nUnbekannte ReglerVersion: ERROR: kein Empfang\nSenden abgebrochen\n"_s);
  const Outcome identified = cli.Run({u"identify"_s});
  EXPECT_EQ(identified.status, 3);
  EXPECT_EQ(identified.err, u"ERROR: kein Empfang\n"_s);
}

TEST(Transfer, AControllerOfAnotherAddressDoesNotAnswer) {
  const Simulator simulator({u"--address"_s, u"17"_s});
  EXPECT_EQ(Cli(simulator.Device()).Run({u"identify"_s}).status, 3);
  EXPECT_EQ(Cli(simulator.Device()).Run({u"identify"_s, u"--address"_s, u"17"_s}).status, 0);
}

TEST(Transfer, AnUnknownVersionIsSaid) {
  QTemporaryDir folder;
  for (const QString& name : {u"HZL120.TXT"_s, u"LFT205.TXT"_s}) {
    QFile::copy(Examples() + u'/' + name, folder.filePath(name));
  }
  QFile table(folder.filePath(u"VF.INI"_s));
  ASSERT_TRUE(table.open(QIODevice::WriteOnly));
  table.write("Version  A  D  P  K\r\nXYZ-999.9  -  HZL120.TXT  Heizung -  WR\r\n");
  table.close();
  const Simulator simulator({}, folder.path());
  const Outcome outcome = Cli(simulator.Device()).Run({u"receive"_s});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, u"Empfangen..\nUnbekannte ReglerVersion: XYZ-999.9\nEmpfangen abgebrochen\n"_s);
}

TEST(Transfer, AnUnpluggedLineEndsWithMessages) {
  const Simulator simulator({u"--seed"_s, u"1"_s, u"--fault"_s, u"unplug:0.3"_s});
  const Outcome outcome = Cli(simulator.Device()).Run({u"receive"_s});
  EXPECT_TRUE(outcome.status == 1 || outcome.status == 3) << outcome.status;
  EXPECT_TRUE(outcome.out.contains(u"ERROR: COM 1 nicht verfügber"_s)) << outcome.out.toStdString();
}

TEST(Transfer, AMissingDeviceIsSaid) {
  const Outcome outcome = Cli(u"/dev/pts/999999"_s).Run({u"receive"_s});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, u"Empfangen..\nERROR: COM 1 nicht verfügber\nEmpfangen abgebrochen\n"_s);
}

TEST(Transfer, AFileInPlaceOfADeviceIsNoPort) {
  const QString file = Examples() + u"/VF.INI"_s;
  EXPECT_EQ(Cli(file).Run({u"identify"_s}).err, u"ERROR: COM 1 nicht verfügber\n"_s);
  EXPECT_EQ(Cli(u"/dev/null"_s).Run({u"identify"_s}).err, u"ERROR: COM 1 nicht verfügber\n"_s);
}

TEST(Transfer, APortInUseByAnotherProgramIsRefused) {
  const Simulator simulator;
  const int other = ::open(simulator.Device().toUtf8().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(other, 0);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  EXPECT_EQ(Cli(simulator.Device()).Run({u"identify"_s}).err, u"ERROR: COM 1 nicht verfügber\n"_s);
  ::close(other);
  EXPECT_EQ(Cli(simulator.Device()).Run({u"identify"_s}).status, 0);
}

TEST(Transfer, TheFirstInterruptAbortsTheSecondEndsTheProgram) {
  const Simulator simulator({u"--fault"_s, u"late:300"_s});
  Cli cli(simulator.Device());
  cli.Start({u"receive"_s});
  ASSERT_TRUE(cli.WaitForOutput("Empfangen..."));
  ::kill(static_cast<pid_t>(cli.Process().processId()), SIGINT);
  const Outcome aborted = cli.Finish();
  EXPECT_EQ(aborted.status, 3);
  EXPECT_TRUE(aborted.out.endsWith(u".\nEmpfangen abgebrochen\n"_s)) << aborted.out.toStdString();

  Cli impatient(simulator.Device());
  impatient.Start({u"receive"_s});
  ASSERT_TRUE(impatient.WaitForOutput("Empfangen.."));
  ::kill(static_cast<pid_t>(impatient.Process().processId()), SIGINT);
  ::kill(static_cast<pid_t>(impatient.Process().processId()), SIGINT);
  EXPECT_EQ(impatient.Finish().status, 3);
}

TEST(Transfer, TheUsersSettingsAreNotWritten) {
  const Simulator simulator;
  Cli cli(simulator.Device());
  EXPECT_EQ(cli.Run({u"receive"_s}).status, 0);
  EXPECT_TRUE(QDir(cli.SettingsFolder()).isEmpty());
}

}  // namespace
}  // namespace kalivor::test
