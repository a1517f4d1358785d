// list and diff with the real programs: against a controller, files and a table, into files.
#include <QDir>
#include <QFile>
#include <csignal>

#include "e2e/Programs.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

const QStringList kEdited = {u"--set"_s, u"_Hk1RaumSollTag=22.5"_s};

QByteArray Bytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(ListCommands, DiffFindsWhatTheControllerHoldsOtherwise) {
  const Simulator simulator;
  Cli cli(simulator.Device());
  const QTemporaryDir folder;
  const QString saved = folder.filePath(u"a.qpf"_s);
  ASSERT_EQ(cli.Run({u"receive"_s, u"--save"_s, saved}).status, 0);

  const Outcome equal = cli.Run({u"diff"_s, u"table"_s, u"controller"_s});
  EXPECT_EQ(equal.status, 0) << equal.out.toStdString();
  EXPECT_EQ(equal.out.count(u'\n'), 1);
  EXPECT_EQ(equal.err, QString());
  EXPECT_EQ(cli.Run({u"diff"_s, u"controller"_s, saved}).status, 0);

  const Outcome different = cli.Run(QStringList{u"diff"_s, u"table"_s, u"controller"_s} + kEdited);
  EXPECT_EQ(different.status, 1);
  EXPECT_EQ(different.out.count(u'\n'), 2);
  EXPECT_EQ(
      different.out.section(u'\n', 1, 1).section(u'\t', 1),
      u"Heizkreis 1\tHeizkreis 1 Raumsolltemperatur Tag\t_Hk1RaumSollTag\t22.5\t21.5\t°C\tverschieden"_s);
  EXPECT_EQ(cli.Run(QStringList{u"diff"_s, saved, u"table"_s} + kEdited).status, 1);
}

TEST(ListCommands, DiffAsksTheControllerForNothingButTheCheckedParameters) {
  Simulator simulator({u"--trace"_s});
  EXPECT_EQ(Cli(simulator.Device())
                .Run({u"diff"_s, u"table"_s, u"controller"_s, u"--uncheck"_s, u"all"_s, u"--check"_s,
                      u"_Hk1RaumSollTag"_s})
                .status,
            0);
  EXPECT_EQ(simulator.Stop().err.count(u"#0102"_s), 5) << "one word, between version and plant type";
}

TEST(ListCommands, ListComparesWithTheController) {
  const Simulator simulator;
  Cli cli(simulator.Device());
  const Outcome outcome =
      cli.Run(QStringList{u"list"_s, u"--against"_s, u"controller"_s, u"--only"_s, u"different"_s} + kEdited);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.count(u'\n'), 2) << outcome.out.toStdString();
  EXPECT_TRUE(outcome.out.contains(u"\t22.5\t21.5\tverschieden, nicht Standard\t"_s))
      << outcome.out.toStdString();
}

TEST(ListCommands, ADeadLineOrAnotherVersionIsNoTransfer) {
  const Simulator silent({u"--fault"_s, u"silent"_s});
  const Outcome dead = Cli(silent.Device()).Run({u"diff"_s, u"table"_s, u"controller"_s});
  EXPECT_EQ(dead.status, 3);
  EXPECT_EQ(dead.out, QString());
  EXPECT_EQ(dead.err, u"ERROR: kein Empfang\n"_s);

  const Simulator other({u"--controller"_s, u"LFT-020.5"_s});
  const Outcome refused = Cli(other.Device()).Run({u"list"_s, u"--against"_s, u"controller"_s});
  EXPECT_EQ(refused.status, 3);
  EXPECT_EQ(refused.err, u"Andere ReglerVersion: LFT-020.5 | Ausgewählt ist HZL-012.0.\n"_s);
}

TEST(ListCommands, AnInterruptEndsTheReading) {
  const Simulator slow({u"--fault"_s, u"late:300"_s});
  Cli cli(slow.Device());
  cli.Start({u"diff"_s, u"table"_s, u"controller"_s});
  ASSERT_FALSE(cli.Process().waitForFinished(1500)) << "the parameters take half a minute";
  ::kill(static_cast<pid_t>(cli.Process().processId()), SIGINT);
  const Outcome aborted = cli.Finish();
  EXPECT_EQ(aborted.status, 3);
  EXPECT_EQ(aborted.out, QString());
  EXPECT_EQ(aborted.err, u"Das Lesen des Reglers wurde abgebrochen.\n"_s);
}

TEST(ListCommands, ListIsWrittenInEveryFormat) {
  const QTemporaryDir folder;
  const QByteArray beginnings[] = {"Nr\tGruppe\t", "\xEF\xBB\xBF", "<!DOCTYPE html>", "%PDF-"};
  const QString formats[] = {u"tsv"_s, u"csv"_s, u"html"_s, u"pdf"_s};
  for (std::size_t i = 0; i < std::size(formats); ++i) {
    const QString path = folder.filePath(u"liste."_s + formats[i]);
    const Outcome outcome = Cli().Run({u"list"_s, u"--format"_s, formats[i], u"--out"_s, path});
    EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.out + outcome.err, QString());
    EXPECT_TRUE(Bytes(path).startsWith(beginnings[i])) << formats[i].toStdString();
  }
  const Outcome printed = Cli().Run({u"list"_s});
  EXPECT_EQ(printed.out.toUtf8(), Bytes(folder.filePath(u"liste.tsv"_s))) << "what is not written is printed";
}

TEST(ListCommands, AFileThatCannotBeWrittenIsBadInput) {
  const QTemporaryDir folder;
  for (const QString& format : {u"csv"_s, u"pdf"_s}) {
    const Outcome outcome = Cli().Run({u"list"_s, u"--format"_s, format, u"--out"_s, folder.path()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.err.contains(folder.path())) << outcome.err.toStdString();
  }
}

}  // namespace
}  // namespace kalivor::test
