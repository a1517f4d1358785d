// list and diff: what they print, ask the controller for, and end with.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "core/ValueFileFormat.h"
#include "sim/Telegram.h"
#include "unit/cli/CliTest.h"

namespace kalivor::cli {
namespace {

const QString kListHeading =
    u"Nr\tGruppe\tName\tWert\tVergleich\tZustand\tEinheit\tMin\tMax\tStandard\tVariable\tAdresse\tTyp\n"_s;
const QString kDiffHeading = u"Nr\tGruppe\tName\tVariable\tLinks\tRechts\tEinheit\tZustand\n"_s;

class ListTest : public CliTest {
 protected:
  ListTest() {
    SetFile(u"a.qpf"_s, ComposeRecord(15, {}, u"SOLL"_s, u"int"_s) +
                            ComposeRecord(70000, {}, u"ZAEHLER"_s, u"long"_s) +
                            ComposeRecord(0, u"abcd"_s, u"NAME"_s, u"string4"_s));
  }

  void SetFile(const QString& path, const QByteArray& records, const QString& version = u"AB1-123.4"_s) {
    files.files[path].bytes = ComposeRecord(1, {}, version, {}) + records;
  }

  /// The lines behind the heading.
  [[nodiscard]] QString Body() const { return Out().section(u'\n', 1); }
};

// --- diff ---

TEST_F(ListTest, DiffOfEqualSetsIsAHeading) {
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"standard"_s}), kDone);
  EXPECT_EQ(Out(), kDiffHeading);
  EXPECT_EQ(Err(), QString());
  EXPECT_EQ(line.openings, 0);
}

TEST_F(ListTest, DiffNamesWhatIsNotEqual) {
  EXPECT_EQ(Run({u"diff"_s, u"--set"_s, u"SOLL=0.5"_s, u"--set"_s, u"NAME=xy"_s, u"table"_s, u"standard"_s}),
            kFindings);
  EXPECT_EQ(Out(), kDiffHeading +
                       u"1\tAntrieb\tDrehzahl\tSOLL\t0.5\t150.0\t1/m\tverschieden\n"
                       "3\tText\tName\tNAME\txy\tabcd\t\tverschieden\n"_s);
}

TEST_F(ListTest, DiffAgainstAFileLeavesTheTableAlone) {
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"a.qpf"_s, u"--save"_s, u"b.qpf"_s}), kFindings);
  EXPECT_EQ(Body(), u"1\tAntrieb\tDrehzahl\tSOLL\t150.0\t1.5\t1/m\tverschieden\n"_s);
  EXPECT_EQ(ParseValueFile(files.files[u"b.qpf"_s].bytes).records.at(0).Wert, 1500);
}

TEST_F(ListTest, DiffOfALoadedFileAndItselfIsNone) {
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"a.qpf"_s, u"--load"_s, u"a.qpf"_s}), kDone);
  EXPECT_EQ(Out(), kDiffHeading);
}

TEST_F(ListTest, DiffOfTwoFilesWorksOnTheDefinitions) {
  SetFile(u"b.qpf"_s, ComposeRecord(16, {}, u"SOLL"_s, u"int"_s) + ComposeRecord(-5, {}, u"NEU"_s, u"int"_s) +
                          ComposeRecord(0, u"7"_s, u"ZAEHLER"_s, u"string2"_s));
  EXPECT_EQ(Run({u"diff"_s, u"a.qpf"_s, u"b.qpf"_s}), kFindings);
  EXPECT_EQ(Body(),
            u"1\tAntrieb\tDrehzahl\tSOLL\t1.5\t1.6\t1/m\tverschieden\n"
            "2\tAntrieb\tZähler\tZAEHLER\t70000\t7\t\tanderer Typ\n"
            "3\tText\tName\tNAME\tabcd\t\t\tnur links\n"
            "\t\t\tNEU\t\t-5\t\tnur rechts\n"_s);
  EXPECT_EQ(line.openings, 0);
}

TEST_F(ListTest, DiffOfAFileOfAnotherKnownVersionIsAllowed) {
  SetFile(u"b.qpf"_s, ComposeRecord(1500, {}, u"SOLL"_s, u"int"_s), u"AB1-200.0"_s);
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"b.qpf"_s}), kFindings);
  EXPECT_EQ(
      Body(),
      u"2\tAntrieb\tZähler\tZAEHLER\t70000\t\t\tnur links\n3\tText\tName\tNAME\tabcd\t\t\tnur links\n"_s);
}

TEST_F(ListTest, DiffReadsTheCheckedParametersOfTheController) {
  memory.SetWord(0x1F00, 1499);
  memory.SetWord(0x1F10, 0x7778);
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"controller"_s, u"--uncheck"_s, u"NAME"_s}), kFindings);
  EXPECT_EQ(Body(), u"1\tAntrieb\tDrehzahl\tSOLL\t150.0\t149.9\t1/m\tverschieden\n"_s);
  EXPECT_FALSE(line.sent.contains("R1F10")) << "it is not checked";
}

TEST_F(ListTest, DiffTellsWhatCouldNotBeRead) {
  Spoil(3, 5, sim::FaultKind::Silent);
  EXPECT_EQ(Run({u"diff"_s, u"controller"_s, u"table"_s}), kFindings);
  EXPECT_EQ(Body(), u"1\tAntrieb\tDrehzahl\tSOLL\t\t150.0\t1/m\tnicht gelesen\n"_s);
  EXPECT_EQ(Err(), QString()) << "no line of the report";
}

TEST_F(ListTest, DiffWithoutAnAnswerIsNoTransfer) {
  faults.Add({});
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"controller"_s, u"--save"_s, u"b.qpf"_s}), kNoTransfer);
  EXPECT_EQ(Out(), QString());
  EXPECT_EQ(Err(), u"ERROR: kein Empfang\n"_s);
  EXPECT_FALSE(files.files.contains(u"b.qpf"_s));
}

TEST_F(ListTest, DiffWithAnotherVersionIsNoTransfer) {
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"controller"_s, u"--controller"_s, u"AB1-200.0"_s}), kNoTransfer);
  EXPECT_EQ(Err(), u"Andere ReglerVersion: AB1-123.4 | Ausgewählt ist AB1-200.0.\n"_s);
}

TEST_F(ListTest, AnInterruptEndsTheReading) {
  interrupted = true;
  EXPECT_EQ(Run({u"diff"_s, u"table"_s, u"controller"_s}), kNoTransfer);
  EXPECT_EQ(Out(), QString());
  EXPECT_EQ(Err(), u"Das Lesen des Reglers wurde abgebrochen.\n"_s);
}

TEST_F(ListTest, AFaultyFileIsSaidBeforeTheControllerIsAsked) {
  for (const QStringList& sides :
       {QStringList{u"controller"_s, u"fehlt.qpf"_s}, QStringList{u"fehlt.qpf"_s, u"controller"_s}}) {
    EXPECT_EQ(Run(QStringList{u"diff"_s} + sides), kBadInput);
    EXPECT_EQ(Err(), u"Fehler beim lesen von | fehlt.qpf | Datei nicht gefunden.\n"_s);
  }
  EXPECT_EQ(line.openings, 0);
}

TEST_F(ListTest, WhatIsNoValueFileOrOfAnUnknownVersionIsBadInput) {
  files.files[u"b.qpf"_s].bytes = "no value file";
  EXPECT_EQ(Run({u"diff"_s, u"b.qpf"_s, u"table"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim lesen von | b.qpf | Die Datei ist keine Wertedatei.\n"_s);
  SetFile(u"b.qpf"_s, {}, u"V9"_s);
  EXPECT_EQ(Run({u"diff"_s, u"b.qpf"_s, u"table"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim lesen von | b.qpf | Unbekannte ReglerVersion: V9\n"_s);
  EXPECT_EQ(Out(), QString());
}

TEST_F(ListTest, DiffAsJsonIsAList) {
  SetFile(u"b.qpf"_s, ComposeRecord(-5, {}, u"NEU"_s, u"int"_s));
  EXPECT_EQ(Run({u"diff"_s, u"standard"_s, u"b.qpf"_s, u"--json"_s}), kFindings);
  const QJsonArray rows = QJsonDocument::fromJson(Out().toUtf8()).array();
  ASSERT_EQ(rows.size(), 4);
  EXPECT_EQ(rows[0][u"Nr"], 1);
  EXPECT_EQ(rows[0][u"Links"], u"150.0"_s);
  EXPECT_TRUE(rows[3][u"Nr"].isNull());
  EXPECT_EQ(rows[3][u"Variable"], u"NEU"_s);
  EXPECT_EQ(rows[3][u"Zustand"], u"nur rechts"_s);
}

// --- list ---

TEST_F(ListTest, ListHasALineForEveryParameter) {
  EXPECT_EQ(Run({u"list"_s, u"--plant"_s, u"Kühlung"_s, u"--set"_s, u"SOLL=0.5"_s}), kDone);
  EXPECT_EQ(Out(),
            kListHeading +
                u"1\tAntrieb\tDrehzahl\t0.5\t\tnicht Standard\t1/m\t0.0\t3000.0\t150.0\tSOLL\t1F00\tint\n"
                "2\tAntrieb\tZähler\t70000\t\tausgeblendet\t\t0\t99999999\t70000\tZAEHLER\t1F02\tlong\n"
                "3\tText\tName\tabcd\t\tausgeblendet\t\t\t\tabcd\tNAME\t1F10\tstring4\n"_s);
  EXPECT_EQ(line.openings, 0);
}

TEST_F(ListTest, ListSearchesAndFilters) {
  EXPECT_EQ(Run({u"list"_s, u"--filter"_s, u"antrieb ZAEHLER"_s}), kDone);
  EXPECT_EQ(Body().section(u'\t', 0, 2), u"2\tAntrieb\tZähler"_s);
  EXPECT_EQ(Body().count(u'\n'), 1);
  EXPECT_EQ(
      Run({u"list"_s, u"--set"_s, u"SOLL=1"_s, u"--uncheck"_s, u"SOLL"_s, u"--only"_s, u"nonstandard"_s}),
      kDone);
  EXPECT_EQ(Body().section(u'\t', 0, 2), u"1\tAntrieb\tDrehzahl"_s);
  EXPECT_EQ(Run({u"list"_s, u"--set"_s, u"SOLL=1"_s, u"--uncheck"_s, u"SOLL"_s, u"--only"_s,
                 u"nonstandard,checked"_s}),
            kDone);
  EXPECT_EQ(Out(), kListHeading);
}

TEST_F(ListTest, ListTellsWhatALoadedFileHasOutsideTheLimits) {
  SetFile(u"b.qpf"_s, ComposeRecord(-5, {}, u"SOLL"_s, u"int"_s));
  EXPECT_EQ(Run({u"list"_s, u"--load"_s, u"b.qpf"_s, u"--only"_s, u"outside"_s}), kDone);
  EXPECT_EQ(
      Body(),
      u"1\tAntrieb\tDrehzahl\t-0.5\t\taußerhalb, nicht Standard\t1/m\t0.0\t3000.0\t150.0\tSOLL\t1F00\tint\n"_s);
}

TEST_F(ListTest, ListComparesWithAFileStandardOrController) {
  memory.SetWord(0x1F00, 7);
  EXPECT_EQ(Run({u"list"_s, u"--against"_s, u"controller"_s, u"--only"_s, u"different"_s}), kDone);
  EXPECT_EQ(Body().section(u'\t', 2, 5), u"Drehzahl\t150.0\t0.7\tverschieden"_s);
  EXPECT_EQ(Body().count(u'\n'), 1);
  EXPECT_EQ(Run({u"list"_s, u"--against"_s, u"a.qpf"_s, u"--filter"_s, u"soll"_s}), kDone);
  EXPECT_EQ(Body().section(u'\t', 2, 5), u"Drehzahl\t150.0\t1.5\tverschieden"_s);
  EXPECT_EQ(Run({u"list"_s, u"--against"_s, u"standard"_s, u"--filter"_s, u"soll"_s}), kDone);
  EXPECT_EQ(Body().section(u'\t', 2, 5), u"Drehzahl\t150.0\t150.0\tgleich"_s);
  EXPECT_EQ(Run({u"list"_s, u"--against"_s, u"fehlt.qpf"_s}), kBadInput);
  faults.Add({});
  EXPECT_EQ(Run({u"list"_s, u"--against"_s, u"controller"_s}), kNoTransfer);
  EXPECT_EQ(Out(), QString());
}

TEST_F(ListTest, ListAsJsonHasTheSameColumns) {
  EXPECT_EQ(Run({u"list"_s, u"--json"_s}), kDone);
  const QJsonArray rows = QJsonDocument::fromJson(Out().toUtf8()).array();
  ASSERT_EQ(rows.size(), 3);
  EXPECT_EQ(rows[0].toObject().size(), 13);
  EXPECT_EQ(rows[0][u"Nr"], 1);
  EXPECT_EQ(rows[0][u"Wert"], u"150.0"_s);
}

TEST_F(ListTest, ListAsCsvHasMarkHeadingSemicolonsAndACommaInNumbers) {
  EXPECT_EQ(Run({u"list"_s, u"--format"_s, u"csv"_s, u"--date"_s, u"2026-03-01"_s, u"--load"_s, u"a.qpf"_s,
                 u"--plant"_s, u"Heizung"_s}),
            kDone);
  EXPECT_TRUE(out.str().starts_with("\xEF\xBB\xBF"));
  for (const QString& text : {u"AB1-123.4"_s, u"Heizung"_s, u"a.qpf"_s, u"01.03.2026"_s,
                              u"Nr;Gruppe;Name;Wert;"_s, u"1;Antrieb;Drehzahl;1,5;"_s}) {
    EXPECT_TRUE(Out().contains(text)) << text.toStdString();
  }
}

TEST_F(ListTest, ListAsHtmlIsAPage) {
  EXPECT_EQ(Run({u"list"_s, u"--format=html"_s}), kDone);
  EXPECT_TRUE(Out().startsWith(u"<!DOCTYPE html>"_s));
  EXPECT_TRUE(Out().contains(u"Drehzahl"_s));
}

TEST_F(ListTest, ListIsWrittenIntoAFile) {
  files.files[u"out.txt"_s].bytes = QByteArray(10000, '#');
  EXPECT_EQ(Run({u"list"_s, u"--out"_s, u"out.txt"_s, u"--filter"_s, u"soll"_s}), kDone);
  EXPECT_EQ(Out(), QString());
  EXPECT_EQ(QString::fromUtf8(files.files[u"out.txt"_s].bytes).section(u'\t', 0, 0), u"Nr"_s);
  EXPECT_FALSE(files.files[u"out.txt"_s].bytes.contains('#')) << "nothing of the old file is left";
  files.writeError = u"Auf dem Datenträger ist kein Platz mehr."_s;
  EXPECT_EQ(Run({u"list"_s, u"--out"_s, u"out.txt"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim schreiben von | out.txt | Auf dem Datenträger ist kein Platz mehr.\n"_s);
}

TEST_F(ListTest, TextsCannotLeaveTheirColumns) {
  files.files[u"/d//D1.TXT"_s].bytes += "Text  A\tB\\C  0  0  x  -  0  0  string4  1F20  S  Heizung  -\r\n";
  EXPECT_EQ(Run({u"list"_s, u"--filter"_s, u"1f20"_s}), kDone);
  EXPECT_EQ(Body().section(u'\t', 2, 2), u"A\\tB\\\\C"_s);
  EXPECT_EQ(Body().count(u'\t'), 12);
}

}  // namespace
}  // namespace kalivor::cli
