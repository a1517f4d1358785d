// --trace: what stands in the file, and what becomes of a run whose trace fails.
#include "cli/TraceFile.h"

#include "comm/COM_T_frm.h"
#include "core/Wiring.h"
#include "fakes/FakeForms.h"
#include "unit/cli/CliTest.h"

namespace kalivor::cli {
namespace {

class TraceTest : public CliTest {
 protected:
  [[nodiscard]] QStringList Lines() const {
    return QString::fromUtf8(files.files.value(u"t.txt"_s).bytes).split(u'\n', Qt::SkipEmptyParts);
  }
  /// The lines without their times.
  [[nodiscard]] QStringList Telegrams() const {
    QStringList telegrams;
    for (const QString& text : Lines())
      telegrams.append(text.startsWith(u"Leitung") ? text : text.sliced(14));
    return telegrams;
  }
};

TEST_F(TraceTest, EveryTelegramStandsInTheFile) {
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"controller"_s, u"--uncheck"_s, u"all"_s, u"--check"_s, u"SOLL"_s,
                 u"--trace"_s, u"t.txt"_s}),
            kDone);
  const QStringList telegrams = Telegrams();
  EXPECT_EQ(telegrams.size(), 1 + line.sent.count('\r') * 2);
  EXPECT_EQ(telegrams.value(0), u"Leitung: COM1, 9600,o,7,1; ausgewählte Version: AB1-123.4");
  EXPECT_EQ(telegrams.value(1), u"PC     > #0102v00BC␍         Gerät 1: Versionsabfrage");
  EXPECT_EQ(telegrams.value(2), u"Regler < 10102vAB1-04D225␍   Version AB1-123.4 (0 ms)");
  EXPECT_TRUE(telegrams.contains(u"PC     > #0102R1F000F␍       Gerät 1: Lesen 1F00, Drehzahl"));
  EXPECT_TRUE(telegrams.contains(u"Regler < 10102R05DC32␍       Drehzahl = 150.0 1/m (0 ms)"));
  EXPECT_EQ(Err(), QString());
}

TEST_F(TraceTest, EveryCommandThatTalksToTheControllerIsTraced) {
  for (const QString& command :
       {u"identify"_s, u"receive"_s, u"send"_s, u"compare"_s, u"verify"_s, u"safe-receive"_s}) {
    line.sent.clear();
    EXPECT_EQ(Run({command, u"--trace"_s, u"t.txt"_s}), kDone)
        << command.toStdString() << Err().toStdString();
    EXPECT_GT(line.sent.size(), 0);
    EXPECT_EQ(Telegrams().filter(u"PC     > "_s).size(), line.sent.count('\r')) << command.toStdString();
    EXPECT_EQ(Telegrams().filter(u"Regler < "_s).size(), line.sent.count('\r')) << command.toStdString();
  }
}

TEST_F(TraceTest, ARunThatFailsHasItsTelegramsToo) {
  faults.Add({});
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"controller"_s, u"--trace"_s, u"t.txt"_s}), kNoTransfer);
  EXPECT_EQ(Telegrams().filter(u"keine Antwort (400 ms)"_s).size(), 3);
  EXPECT_TRUE(Telegrams().contains(u"Leitung: COM1, 19200,o,7,1; ausgewählte Version: AB1-123.4"));
}

TEST_F(TraceTest, WithoutTelegramsTheFileIsEmpty) {
  files.AddText(u"t.txt"_s, u"alt"_s);
  EXPECT_EQ(Run({u"plants"_s, u"--trace"_s, u"t.txt"_s}), kDone);
  EXPECT_EQ(Lines(), QStringList());
}

TEST_F(TraceTest, WhereTheFileCannotBeMadeNothingRuns) {
  files.writeError = u"Der Datenträger ist voll."_s;
  EXPECT_EQ(Run({u"receive"_s, u"--trace"_s, u"t.txt"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim schreiben von | t.txt | Der Datenträger ist voll.\n"_s);
  EXPECT_EQ(line.openings, 0);
}

TEST_F(TraceTest, AFileThatFailsOnTheWayIsSaidOnceAndTheRunGoesOn) {
  files.writeError = u"Der Datenträger ist voll."_s;
  files.goodWrites = 1;
  EXPECT_EQ(Run({u"receive"_s, u"--trace"_s, u"t.txt"_s}), kDone);
  EXPECT_EQ(
      Err(),
      u"Fehler beim schreiben von | t.txt | Der Datenträger ist voll. | Die Telegramme werden nicht weiter "
      "mitgeschrieben.\n"_s);
  EXPECT_TRUE(Out().endsWith(u"Empfangen beendet\n"_s)) << Out().toStdString();
}

TEST_F(TraceTest, TheOptionNeedsAFileAndStandsOnce) {
  EXPECT_EQ(Run({u"receive"_s, u"--trace"_s}), kBadInput);
  EXPECT_TRUE(Err().contains(u"--trace"_s)) << Err().toStdString();
  EXPECT_EQ(Run({u"receive"_s, u"--trace"_s, u"a"_s, u"--trace"_s, u"b"_s}), kBadInput);
  EXPECT_TRUE(Err().contains(u"--trace"_s)) << Err().toStdString();
}

// --- more than the program keeps, and when it is written ---

class TraceFileTest : public TraceTest {
 protected:
  void Exchange(int number) {
    log.Begin(port, u"#0102v00BC\r"_s);
    log.Received("10102vAB1-04D225\r");
    log.End(u"10102vAB1-04D225\r"_s, true, {});
    if (number == 0) log.Settle();
  }

  Module1 module;
  ExchangeLog log{clock};
  test::FakeMessageBox box;
  const PortRecord port{kFalse, 1, kControllerProtocol, 1, u"9600,o,7,1"_s};
};

TEST_F(TraceFileTest, AllAreWrittenHoweverManyThereAre) {
  const int all = ExchangeLog::kKept + 50;
  {
    TraceFile file({module, log, files, clock, box, ports}, u"t.txt"_s);
    ASSERT_EQ(file.Open(), QString());
    for (int i = 1; i <= all; ++i)
      Exchange(i);
  }
  EXPECT_EQ(Lines().size(), 1 + 2 * all);
  EXPECT_LT(files.writes, all / 10) << "each one is brought to the disk";
  Exchange(0);
  EXPECT_EQ(Lines().size(), 1 + 2 * all) << "nobody listens any more";
}

TEST_F(TraceFileTest, WhatIsOlderThanASecondIsOnTheDisk) {
  TraceFile file({module, log, files, clock, box, ports}, u"t.txt"_s);
  ASSERT_EQ(file.Open(), QString());
  Exchange(1);
  clock.Advance(0.6);
  Exchange(2);
  EXPECT_EQ(Lines().size(), 0);
  clock.Advance(0.6);
  Exchange(3);
  EXPECT_EQ(Lines().size(), 5) << "the first two: the third may still change";
}

}  // namespace
}  // namespace kalivor::cli
