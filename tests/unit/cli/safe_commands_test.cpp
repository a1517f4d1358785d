// safe-send, safe-receive, verify, backups and restore: output, status, what the controller holds afterwards.
#include <QJsonDocument>
#include <QJsonObject>

#include "unit/cli/CliTest.h"

namespace kalivor::cli {
namespace {

class SafeCommands : public CliTest {
 protected:
  SafeCommands() {
    settings.values.insert(u"Settings/Userpath"_s, test::Native(u"/werte"_s));
    memory.SetWord(0x0100, 0);
  }

  [[nodiscard]] QStringList Lines() const { return Out().split(u'\n'); }

  /// The one backup's value file, as the program printed it.
  [[nodiscard]] QString BackupPath() const {
    const QStringList paths = Lines().filter(u".qpf"_s);
    EXPECT_EQ(paths.size(), 1) << Out().toStdString();
    return paths.value(0);
  }
};

TEST_F(SafeCommands, VerifyTellsOfEachCheckedParameter) {
  memory.SetWord(0x1F00, 1600);
  EXPECT_EQ(Run({u"verify"_s}), kFindings);
  EXPECT_EQ(Out(),
            u"1\tDrehzahl\tSOLL\t150.0\t160.0\tverschieden\n"
            "2\tZähler\tZAEHLER\t70000\t70000\tgleich\n"
            "3\tName\tNAME\tabcd\tabcd\tgleich\n"
            "2 gleich, 1 verschieden\n"_s);
  EXPECT_EQ(Err(), QString());
  EXPECT_EQ(Run({u"verify"_s, u"--uncheck"_s, u"SOLL"_s}), kDone);
  EXPECT_TRUE(Out().endsWith(u"2 gleich\n"_s));
}

TEST_F(SafeCommands, ReceivePutsTheValuesIntoTheTable) {
  memory.SetWord(0x1F00, 1600);
  EXPECT_EQ(Run({u"safe-receive"_s, u"--save"_s, test::Native(u"/werte/neu.qpf"_s)}), kDone);
  EXPECT_TRUE(Lines().contains(u"1\tDrehzahl\tSOLL\t150.0\t160.0\tverschieden"_s));
  EXPECT_EQ(Run({u"verify"_s, u"--load"_s, test::Native(u"/werte/neu.qpf"_s)}), kDone);
}

TEST_F(SafeCommands, WhatCannotBeReadIsAFinding) {
  Spoil(3, 5, sim::FaultKind::Silent);
  EXPECT_EQ(Run({u"safe-receive"_s}), kFindings);
  EXPECT_TRUE(Lines().contains(u"1\tDrehzahl\tSOLL\t150.0\t\tnicht gelesen"_s)) << Out().toStdString();
}

TEST_F(SafeCommands, SendWritesBacksUpAndVerifies) {
  EXPECT_EQ(Run({u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--yes"_s}), kDone) << Err().toStdString();
  const QStringList lines = Lines();
  ASSERT_EQ(lines.size(), 6) << Out().toStdString();
  EXPECT_EQ(lines.at(0), u"Nr\tGruppe\tName\tVariable\tLinks\tRechts\tEinheit\tZustand"_s);
  EXPECT_EQ(lines.at(1), u"1\tAntrieb\tDrehzahl\tSOLL\t160.0\t150.0\t1/m\tverschieden"_s);
  EXPECT_TRUE(lines.at(2).endsWith(u".qpf"_s));
  EXPECT_EQ(lines.at(3), u"1\tDrehzahl\tSOLL\t150.0\t160.0\tgeprüft"_s);
  EXPECT_EQ(lines.at(4), u"1 geprüft"_s);
  EXPECT_EQ(memory.Word(0x1F00), 1600);
  EXPECT_EQ(Err(), QString());
}

TEST_F(SafeCommands, NothingIsSentWhereAllIsEqual) {
  EXPECT_EQ(Run({u"safe-send"_s}), kDone);
  EXPECT_TRUE(Out().endsWith(u"Zustand\nNichts zu senden\n"_s));
  EXPECT_FALSE(line.sent.contains("W1F"));
}

TEST_F(SafeCommands, ADryRunWritesNothing) {
  const qsizetype before = files.files.size();
  EXPECT_EQ(Run({u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--dry-run"_s}), kFindings);
  EXPECT_EQ(Lines().size(), 3) << "heading and one line";
  EXPECT_EQ(memory.Word(0x1F00), 1500);
  EXPECT_EQ(files.files.size(), before);
}

TEST_F(SafeCommands, AsksBeforeItWrites) {
  const QStringList send{u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s};
  EXPECT_EQ(Run(send), kUnanswered);
  EXPECT_EQ(Err(), u"1 Wert in den Regler schreiben? | 1: Senden | 2: Abbrechen\n"_s);
  EXPECT_EQ(Run(send + QStringList{u"--answer"_s, u"second"_s}), kNoTransfer);
  EXPECT_EQ(memory.Word(0x1F00), 1500);
  EXPECT_EQ(Run(send + QStringList{u"--answer"_s, u"first"_s}), kDone);
  EXPECT_EQ(memory.Word(0x1F00), 1600);
}

TEST_F(SafeCommands, WhatIsNotVerifiedIsAFindingAndCanBeRepeated) {
  // A controller that keeps nothing of the first writing.
  int writes = 0;
  model.OnResponse = [&](const QByteArray& request, sim::Response&) {
    if (request.contains("W1F00") && ++writes == 1) memory.SetWord(0x1F00, 1500);
  };
  const QStringList send{u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--yes"_s};
  EXPECT_EQ(Run(send), kFindings);
  EXPECT_TRUE(Lines().contains(u"1\tDrehzahl\tSOLL\t150.0\t160.0\tabweichend"_s)) << Out().toStdString();
  EXPECT_TRUE(Lines().contains(u"1 abweichend"_s));
  writes = 0;
  EXPECT_EQ(Run(send + QStringList{u"--repeat"_s, u"1"_s}), kDone) << Out().toStdString();
  EXPECT_EQ(memory.Word(0x1F00), 1600);
}

TEST_F(SafeCommands, AnotherVersionOrASilentLineIsNoTransfer) {
  EXPECT_EQ(Run({u"safe-send"_s, u"--controller"_s, u"AB1-200.0"_s}), kNoTransfer);
  EXPECT_EQ(Err(), u"Andere ReglerVersion: AB1-123.4 | Ausgewählt ist AB1-200.0.\n"_s);
  EXPECT_EQ(Run({u"verify"_s, u"--plant"_s, u"#1"_s}), kNoTransfer);
  EXPECT_EQ(Err(), u"Andere Anlageart: Nummer 0 | Ausgewählt ist Heizung (Nummer 1).\n"_s);
  faults.Add({});
  EXPECT_EQ(Run({u"verify"_s}), kNoTransfer);
  EXPECT_EQ(Err(), u"ERROR: kein Empfang\n"_s);
}

TEST_F(SafeCommands, WithoutABackupNothingIsWritten) {
  safe.stateFolder.clear();
  EXPECT_EQ(Run({u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--yes"_s}), kNoTransfer);
  EXPECT_NE(Err(), QString());
  EXPECT_EQ(memory.Word(0x1F00), 1500);
}

TEST_F(SafeCommands, ABackupIsListedAndRestored) {
  ASSERT_EQ(Run({u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--yes"_s}), kDone);
  const QString path = BackupPath();
  EXPECT_EQ(Run({u"backups"_s}), kDone);
  // A backslash is written twice in every table.
  const QString written = QString(path).replace(u'\\', u"\\\\"_s);
  EXPECT_EQ(Out(), u"2026-03-04T05:06:07Z\tAB1-123.4\t\t1\t3\t"_s + written + u'\n');
  EXPECT_EQ(Run({u"restore"_s, path, u"--dry-run"_s}), kFindings);
  EXPECT_TRUE(Lines().contains(u"1\tAntrieb\tDrehzahl\tSOLL\t150.0\t160.0\t1/m\tverschieden"_s));
  EXPECT_EQ(Run({u"restore"_s, path, u"--yes"_s}), kDone) << Err().toStdString();
  EXPECT_EQ(memory.Word(0x1F00), 1500);
  EXPECT_EQ(Run({u"restore"_s, u"/werte/fehlt.qpf"_s, u"--yes"_s}), kBadInput);
  EXPECT_NE(Err(), QString());
}

TEST_F(SafeCommands, WithoutBackupsThereIsNothingToList) {
  EXPECT_EQ(Run({u"backups"_s}), kDone);
  EXPECT_EQ(Out() + Err(), QString());
}

TEST_F(SafeCommands, TellTheSameInJson) {
  EXPECT_EQ(Run({u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--yes"_s, u"--json"_s}), kDone);
  const QJsonObject sent = QJsonDocument::fromJson(Out().toUtf8()).object();
  EXPECT_EQ(sent[u"differences"_s][0][u"Links"_s].toString(), u"160.0"_s);
  EXPECT_EQ(sent[u"values"_s][0][u"Zustand"_s].toString(), u"geprüft"_s);
  EXPECT_EQ(sent[u"summary"_s][u"geprüft"_s].toInt(), 1);
  EXPECT_TRUE(sent[u"backup"_s].toString().endsWith(u".qpf"_s));
  EXPECT_EQ(Run({u"verify"_s, u"--json"_s}), kFindings);
  EXPECT_EQ(QJsonDocument::fromJson(Out().toUtf8()).object()[u"summary"_s][u"verschieden"_s].toInt(), 1);
}

TEST_F(SafeCommands, WhatIsOutsideItsLimitsIsNotSent) {
  files.AddText(u"/d//D2.TXT"_s,
                kHeading + u"Antrieb  Drehzahl  0  300  400  1/m  1  0  int  1F00  SOLL  A  -\r\n"_s);
  controller.emplace(ControllerOf(u"AB1-200.0"_s));
  EXPECT_EQ(Run({u"safe-send"_s, u"--controller"_s, u"AB1-200.0"_s, u"--yes"_s}), kFindings);
  EXPECT_EQ(Err(), u"Nicht gesendet wird: SOLL (außerhalb der Grenzen)\n"_s);
  EXPECT_EQ(memory.Word(0x1F00), 1500);
}

TEST_F(SafeCommands, AnInterruptEndsTheWritingAndNotTheCheck) {
  // Ctrl+C comes with the first word that is written.
  model.OnResponse = [&](const QByteArray& request, sim::Response&) {
    if (request.contains("W1F00")) interrupted = true;
    clock.Sleep(0.2);
  };
  EXPECT_EQ(Run({u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--set"_s, u"ZAEHLER=5"_s, u"--yes"_s}),
            kNoTransfer);
  EXPECT_TRUE(Lines().contains(u"1\tDrehzahl\tSOLL\t150.0\t160.0\tgeprüft"_s)) << Out().toStdString();
  EXPECT_TRUE(Lines().contains(u"2\tZähler\tZAEHLER\t70000\t5\tnicht geprüft"_s));
  EXPECT_EQ(Err(), u"Das Senden wurde abgebrochen.\n"_s);

  // What was left is offered by the next run.
  interrupted = false;
  model.OnResponse = [](const QByteArray&, sim::Response&) {};
  EXPECT_EQ(Run({u"safe-send"_s, u"--set"_s, u"SOLL=160.0"_s, u"--set"_s, u"ZAEHLER=5"_s, u"--yes"_s}),
            kDone);
  EXPECT_TRUE(
      Err().startsWith(u"Eine Sendung vom 04.03.2026 05:06 wurde unterbrochen: 1 von 2 Werten "
                       "geschrieben. | Sicherung davor: "_s))
      << Err().toStdString();
  EXPECT_EQ(memory.Word(0x1F04), 5);
}

TEST_F(SafeCommands, TheirOptionsBelongToThem) {
  for (const QString& option : {u"--dry-run"_s, u"--yes"_s}) {
    EXPECT_EQ(Run({u"verify"_s, option}), kBadInput);
    EXPECT_EQ(Err(), u"Option %1 gilt nicht für den Befehl verify.\n"_s.arg(option));
  }
  EXPECT_EQ(Run({u"restore"_s, u"a.qpf"_s, u"--repeat"_s, u"1"_s}), kBadInput);
  EXPECT_EQ(Run({u"restore"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Es fehlt die Sicherung zum Befehl restore.\n"_s);
  EXPECT_EQ(Run({u"safe-send"_s, u"--repeat"_s, u"x"_s}), kBadInput);
}

}  // namespace
}  // namespace kalivor::cli
