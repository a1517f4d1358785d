// The safe commands with the real programs: backups on the disk, a late and a forgetful controller, a kill.
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <csignal>

#include "e2e/Programs.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

/// kalivor-cli with a folder of value files of its own.
class SafeCli : public Cli {
 public:
  explicit SafeCli(const QString& device) : Cli(device) {
    EXPECT_TRUE(QDir().mkpath(SettingsFolder() + u"/KALIVOR"_s));
    QFile settings(SettingsFolder() + u"/KALIVOR/KALIVOR.ini"_s);
    EXPECT_TRUE(settings.open(QIODevice::WriteOnly));
    // The line rests no longer than it has to, as the tests wait for it.
    settings.write("[Settings]\nUserpath=" + SettingsFolder().toUtf8() + "\n[SicherSenden]\nRuhezeit=500\n");
  }

  [[nodiscard]] QStringList Backups() const {
    return QDir(SettingsFolder() + u"/Sicherungen"_s).entryList(QDir::Files, QDir::Name);
  }
};

/// Two values of the example that are to be sent.
const QStringList kTwo = {u"--set"_s,     u"_Hk1RaumSollTag=22.5"_s,
                          u"--set"_s,     u"_Hk1RaumSollNacht=16.5"_s,
                          u"--uncheck"_s, u"all"_s,
                          u"--check"_s,   u"_Hk1RaumSollTag"_s,
                          u"--check"_s,   u"_Hk1RaumSollNacht"_s};

TEST(SafeCommands, SendBacksUpVerifiesAndRestores) {
  const Simulator simulator;
  SafeCli cli(simulator.Device());
  const Outcome sent = cli.Run(QStringList{u"safe-send"_s, u"--yes"_s} + kTwo);
  EXPECT_EQ(sent.status, 0) << sent.err.toStdString();
  EXPECT_TRUE(sent.out.endsWith(u"2 geprüft\n"_s)) << sent.out.toStdString();
  ASSERT_EQ(cli.Backups().size(), 2) << "a value file and its text";
  EXPECT_EQ(cli.Run(QStringList{u"verify"_s} + kTwo).status, 0);

  const Outcome backups = cli.Run({u"backups"_s});
  EXPECT_EQ(backups.out.count(u'\n'), 1);
  const QString path = backups.out.trimmed().section(u'\t', -1);
  EXPECT_EQ(cli.Run({u"show"_s, path}).status, 0) << "every version of the program opens it";
  const Outcome restored = cli.Run({u"restore"_s, path, u"--yes"_s});
  EXPECT_EQ(restored.status, 0) << restored.err.toStdString();
  EXPECT_TRUE(restored.out.endsWith(u"2 geprüft\n"_s));
  EXPECT_EQ(cli.Run({u"verify"_s}).status, 0) << "the standard values are there again";
}

TEST(SafeCommands, ALateReplyIsTakenForNobodyElses) {
  const Simulator simulator({u"--seed"_s, u"3"_s, u"--fault"_s, u"late:900:0.1"_s});
  SafeCli cli(simulator.Device());
  const Outcome sent = cli.Run(QStringList{u"safe-send"_s, u"--yes"_s, u"--repeat"_s, u"3"_s} + kTwo);
  EXPECT_EQ(sent.status, 0) << sent.out.toStdString() << sent.err.toStdString();
  EXPECT_TRUE(sent.out.endsWith(u"2 geprüft\n"_s)) << sent.out.toStdString();
}

TEST(SafeCommands, AWriteWithoutEffectIsFound) {
  const Simulator simulator({u"--fault"_s, u"ignore-write"_s});
  const Outcome sent = SafeCli(simulator.Device()).Run(QStringList{u"safe-send"_s, u"--yes"_s} + kTwo);
  EXPECT_EQ(sent.status, 1);
  EXPECT_TRUE(sent.out.endsWith(u"2 abweichend\n"_s)) << sent.out.toStdString();
}

TEST(SafeCommands, AnExchangedControllerIsFound) {
  const Simulator simulator({u"--fault"_s, u"swap:8"_s});
  const Outcome sent = SafeCli(simulator.Device()).Run(QStringList{u"safe-send"_s, u"--yes"_s} + kTwo);
  EXPECT_EQ(sent.status, 3) << sent.out.toStdString();
  EXPECT_FALSE(sent.out.contains(u"\tgeprüft"_s)) << sent.out.toStdString();
  EXPECT_TRUE(sent.err.contains(u"Ein anderer Regler ist angeschlossen als am Anfang."_s))
      << sent.err.toStdString();
}

TEST(SafeCommands, AKilledSendingIsOfferedByTheNextRun) {
  const Simulator simulator({u"--fault"_s, u"late:300"_s});
  SafeCli cli(simulator.Device());
  cli.Start(QStringList{u"safe-send"_s, u"--yes"_s} + kTwo);
  // The first word is on its way as soon as the journal names one.
  const QString journal = cli.SettingsFolder() + u"/KALIVOR/Sendung.txt"_s;
  const QRegularExpression begun(u"\\nBegonnen: [0-9A-F]{4}\\n$"_s);
  const auto content = [&journal] {
    QFile file(journal);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
  };
  while (!content().contains(begun))
    ASSERT_FALSE(cli.Process().waitForFinished(20)) << "the sending takes seconds";
  ::kill(static_cast<pid_t>(cli.Process().processId()), SIGKILL);
  (void)cli.Finish();
  EXPECT_EQ(cli.Backups().size(), 2);

  const Outcome next = cli.Run(QStringList{u"safe-send"_s, u"--yes"_s} + kTwo);
  EXPECT_EQ(next.status, 0) << next.err.toStdString();
  EXPECT_TRUE(next.err.contains(u"wurde unterbrochen: 1 von 2 Werten geschrieben."_s))
      << next.err.toStdString();
  EXPECT_EQ(cli.Run(QStringList{u"verify"_s} + kTwo).status, 0);
  EXPECT_EQ(cli.Run(QStringList{u"safe-send"_s} + kTwo).err, QString()) << "it is finished";
}

}  // namespace
}  // namespace kalivor::test
