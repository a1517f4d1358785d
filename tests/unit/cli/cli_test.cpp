// kalivor-cli against a simulated controller in virtual time: output, messages and exit status.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "core/ValueFileFormat.h"
#include "print/pages/PageTexts.h"
#include "sim/Telegram.h"
#include "unit/cli/CliTest.h"

namespace kalivor::cli {
namespace {

TEST_F(CliTest, VersionsListsTheRowsOfTheTable) {
  EXPECT_EQ(Run({u"versions"_s}), kDone);
  EXPECT_EQ(Out(), u"AB1-123.4\t-\tD1.TXT\t Heizung Kühlung -\tWR\nAB1-200.0\t-\tD2.TXT\t A\tWR\n"_s);
  EXPECT_EQ(Err(), QString());
}

TEST_F(CliTest, PlantsListsPositionAndText) {
  EXPECT_EQ(Run({u"plants"_s}), kDone);
  EXPECT_EQ(Out(), u"0\t\n1\tHeizung\n2\tKühlung\n"_s);
}

TEST_F(CliTest, ParamsIsATableWithElementZeroFirst) {
  files.files[u"/d//D1.TXT"_s].bytes +=
      "Text  Sonder\\zeichen\tda  0  0  x  -  0  0  string4  1F20  S  Heizung  -\r\n";
  EXPECT_EQ(Run({u"params"_s, u"--uncheck"_s, u"SOLL"_s}), kDone);
  const QStringList lines = Out().split(u'\n');
  ASSERT_EQ(lines.size(), 7);
  EXPECT_EQ(lines[0],
            u"Nr\tRubrik\tName\tWert\tMin\tMax\tStandard\tWertText\tStandardText\tEinheit\tZahl1\tZahl2\t"
            "VarAdresse\tOffset\tVariable\tTyp\tZusatz\tHilfetext\tChecked"_s);
  EXPECT_EQ(lines[1], u"0\tNoRubrik\tAnlage\t0\t0\t2\t0\t\t\t\t0\t0\t0100\t0\tANLAGE\tint\tHeizung\t\t1"_s);
  EXPECT_EQ(lines[2],
            u"1\tAntrieb\tDrehzahl\t1500\t0\t30000\t1500\t\t\t1/m\t1\t0\t1F00\t0\tSOLL\tint\t"
            "Heizung Kühlung\tHilfe\\\\zwei\t0"_s);
  EXPECT_EQ(lines[4],
            u"3\tText\tName\t0\t0\t0\t0\tabcd\tabcd\t\t0\t0\t1F10\t0\tNAME\tstring4\tHeizung\t\t1"_s);
  EXPECT_TRUE(lines[5].startsWith(u"4\tText\tSonder\\\\zeichen\\tda\t"_s)) << lines[5].toStdString();
}

TEST_F(CliTest, ParamsHasNoElementZeroWithoutAPlantTypeRecord) {
  EXPECT_EQ(Run({u"params"_s, u"--controller"_s, u"AB1-200.0"_s}), kDone);
  EXPECT_TRUE(Out().split(u'\n').at(1).startsWith(u"1\tAntrieb"_s));
}

TEST_F(CliTest, ParamsShowsAPlantTypeRecordWithoutVariableAndAddressToo) {
  files.files[u"/d//D2.TXT"_s].bytes += "NoRubrik  Anlage\r\n";
  EXPECT_EQ(Run({u"params"_s, u"--controller"_s, u"AB1-200.0"_s}), kDone);
  EXPECT_TRUE(Out().split(u'\n').at(1).startsWith(u"0\tNoRubrik\tAnlage\t"_s)) << out.str();
}

TEST_F(CliTest, EveryCommandOfTheHelpRunsItself) {
  // Only "standard" changes a value without being told to.
  files.files[u"x.qpf"_s].bytes = ComposeRecord(2, {}, u"AB1-123.4"_s, {});
  EXPECT_EQ(Run({u"--help"_s}), kDone);
  const QString help = Out();
  const QString commands = help.section(u"Befehle:\n"_s, 1).section(u"\n\n"_s, 0, 0);
  QSet<QString> outputs;
  for (const QString& row : commands.split(u'\n')) {
    const QString command = row.trimmed().section(u' ', 0, 0);
    QStringList arguments{command};
    if (command == u"show") arguments.append(u"x.qpf"_s);
    if (command == u"print") continue;  // needs fonts
    if (command == u"diff") arguments += {u"table"_s, u"standard"_s};
    if (command == u"restore") continue;  // needs a backup
    if (command == u"history") continue;  // has commands of its own
    if (command == u"ports" || command == u"find") ports.entries = {platform::PortEntry{1, u"/dev/ttyS0"_s}};
    // Else they show as much as others do.
    if (command == u"verify") arguments += {u"--uncheck"_s, u"NAME"_s};
    if (command == u"backups") arguments += u"--json"_s;
    EXPECT_EQ(Run(arguments), kDone) << command.toStdString() << err.str();
    EXPECT_FALSE(outputs.contains(Out())) << command.toStdString() << " does what another one does";
    outputs.insert(Out());
  }
  EXPECT_EQ(outputs.size(), 20);
}

TEST_F(CliTest, TreeShowsKeysAndTexts) {
  EXPECT_EQ(Run({u"tree"_s, u"--plant"_s, u"Kühlung"_s}), kDone);
  EXPECT_EQ(Out(),
            u"R\tAnlage                                                         Wert          Min.       "
            "Max.       Standard\n"
            "K 1\tAntrieb                                                        |      |      |\n"
            "sK 1\tDrehzahl..........................................   150.0 1/m |     0.0 |  3000.0 |   "
            "150.0 \n"_s);
}

TEST_F(CliTest, JsonTablesHoldNumbersAsNumbers) {
  EXPECT_EQ(Run({u"params"_s, u"--json"_s}), kDone);
  const QJsonArray parameters = QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).array();
  ASSERT_EQ(parameters.size(), 4);
  EXPECT_EQ(parameters[1].toObject()[u"Wert"_s].toInt(), 1500);
  EXPECT_EQ(parameters[1].toObject()[u"Variable"_s].toString(), u"SOLL"_s);
  EXPECT_EQ(Run({u"versions"_s, u"--json"_s}), kDone);
  EXPECT_EQ(
      QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).array()[1].toObject()[u"DefDatei"_s],
      u"D2.TXT"_s);
  EXPECT_EQ(Run({u"plants"_s, u"--json"_s}), kDone);
  EXPECT_EQ(QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).array()[2].toObject()[u"Text"_s],
            u"Kühlung"_s);
}

TEST_F(CliTest, IdentifyPrintsTheVersion) {
  EXPECT_EQ(Run({u"identify"_s}), kDone);
  EXPECT_EQ(Out(), u"AB1-123.4\n"_s);
}

TEST_F(CliTest, IdentifyOfADeadLineFails) {
  Spoil(1, 3, sim::FaultKind::Silent);
  EXPECT_EQ(Run({u"identify"_s}), kNoTransfer);
  EXPECT_EQ(Out(), QString());
  EXPECT_EQ(Err(), u"ERROR: kein Empfang\n"_s);
}

TEST_F(CliTest, ReceiveWritesTheReport) {
  EXPECT_EQ(Run({u"receive"_s}), kDone);
  EXPECT_EQ(Out(), u"Empfangen.....\nEmpfangen beendet\n"_s);
}

TEST_F(CliTest, ReceiveWithAFailedParameterHasFindings) {
  Spoil(3, 5, sim::FaultKind::Silent);
  EXPECT_EQ(Run({u"receive"_s}), kFindings);
  EXPECT_EQ(Out(), u"Empfangen..\nERROR: kein Empfang\nFehler bei: SOLL...\nEmpfangen beendet\n"_s);
}

TEST_F(CliTest, SendWritesTheEditedValue) {
  EXPECT_EQ(
      Run({u"send"_s, u"--set"_s, u"SOLL=12.3"_s, u"--set"_s, u"NAME= x"_s, u"--uncheck"_s, u"ZAEHLER"_s}),
      kDone);
  EXPECT_EQ(Out(), u"Senden....\nSenden beendet\n"_s);
  EXPECT_EQ(memory.Word(0x1F00), 123);
  EXPECT_EQ(memory.Word(0x1F02), 1);
  EXPECT_EQ(memory.Word(0x1F10), 0x2078);
}

TEST_F(CliTest, CompareReportsDeviations) {
  memory.SetWord(0x1F00, 1501);
  EXPECT_EQ(Run({u"compare"_s}), kFindings);
  EXPECT_EQ(Out(),
            u"Vergleichen..\nÄnderung bei: Drehzahl\n   PC    :    150.0 \n   Regler:    150.1 ...\n"
            "Vergleich beendet\n"_s);
  EXPECT_EQ(Run({u"compare"_s, u"--set"_s, u"SOLL=150.1"_s}), kDone);
}

TEST_F(CliTest, CompareAsJsonPrintsNothingElse) {
  memory.SetWord(0x1F00, 1501);
  EXPECT_EQ(Run({u"compare"_s, u"--json"_s}), kFindings);
  const QJsonObject result = QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).object();
  EXPECT_TRUE(result[u"transferred"_s].toBool());
  EXPECT_EQ(result[u"failures"_s].toInt(), 0);
  ASSERT_EQ(result[u"deviations"_s].toArray().size(), 1);
  EXPECT_EQ(result[u"deviations"_s].toArray()[0].toObject()[u"Name"_s], u"Drehzahl"_s);
  EXPECT_EQ(result[u"deviations"_s].toArray()[0].toObject()[u"PC"_s], u"   150.0 "_s);
  EXPECT_EQ(result[u"deviations"_s].toArray()[0].toObject()[u"Regler"_s], u"   150.1 "_s)
      << "the dots of progress are not part of the value";
  EXPECT_EQ(result[u"lines"_s].toArray().last(), u"Vergleich beendet"_s);
}

TEST_F(CliTest, CompareAsJsonKeepsWhatWasFoundBeforeAnError) {
  memory.SetWord(0x1F00, 1501);
  int replies = 0;
  model.OnResponse = [&](const QByteArray&, sim::Response& response) {
    if (++replies == 4) response.chunks = {{0, sim::Sealed("10102RG000")}};
  };
  EXPECT_EQ(Run({u"compare"_s, u"--json"_s}), kNoTransfer);
  const QJsonObject result = QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).object();
  EXPECT_FALSE(result[u"transferred"_s].toBool());
  ASSERT_EQ(result[u"deviations"_s].toArray().size(), 1);
  EXPECT_EQ(result[u"deviations"_s].toArray()[0].toObject()[u"Regler"_s], u"   150.1 "_s);
  EXPECT_EQ(result[u"lines"_s].toArray().last(), u"Vergleich abgebrochen"_s);
}

TEST_F(CliTest, StandardPrintsNothing) {
  EXPECT_EQ(Run({u"standard"_s}), kDone);
  EXPECT_EQ(Out() + Err(), QString());
  EXPECT_EQ(line.sent, QByteArray());
}

TEST_F(CliTest, TableCommandsDoNotTouchThePort) {
  for (const QString& command : {u"versions"_s, u"plants"_s, u"params"_s, u"tree"_s, u"standard"_s}) {
    EXPECT_EQ(Run({command}), kDone);
  }
  EXPECT_EQ(line.openings, 0);
}

TEST_F(CliTest, SettingsAreReadAndNeverWritten) {
  settings.values[u"Settings/Adresse"_s] = u"2"_s;
  EXPECT_EQ(Run({u"identify"_s}), kNoTransfer);
  EXPECT_TRUE(line.sent.startsWith("#0202v00"));
  EXPECT_EQ(Run({u"identify"_s, u"--address"_s, u"1"_s}), kDone);
  EXPECT_EQ(settings.saved, 0);
}

TEST_F(CliTest, ASettingThatIsNoNumberIsReportedAndTheDefaultUsed) {
  settings.values[u"Settings/Adresse"_s] = u"elf"_s;
  EXPECT_EQ(Run({u"identify"_s}), kDone);
  EXPECT_EQ(Err(), u"KALIVOR: Der Text ist keine Zahl.\n"_s);
}

TEST_F(CliTest, PortIsANumberOrADeviceForTheSelectedNumber) {
  settings.values[u"Settings/Schnittstelle"_s] = u"5"_s;
  EXPECT_EQ(Run({u"identify"_s, u"--port"_s, u"/dev/pts/7"_s}), kDone);
  EXPECT_EQ(ports.Overriding(5), u"/dev/pts/7");
  line.openable = false;
  EXPECT_EQ(Run({u"identify"_s, u"--port"_s, u"3"_s}), kNoTransfer);
  EXPECT_EQ(Err(), u"ERROR: COM 3 nicht verfügber\n"_s);
}

struct BadRun {
  QStringList arguments;
  QString message;
};

void PrintTo(const BadRun& run, std::ostream* out) {
  *out << run.arguments.join(u' ').toStdString();
}

class CliBadInputTest : public CliTest, public testing::WithParamInterface<BadRun> {};

TEST_P(CliBadInputTest, IsNamedAndNothingRuns) {
  EXPECT_EQ(Run(GetParam().arguments), kBadInput);
  EXPECT_EQ(Err(), GetParam().message + u'\n');
  EXPECT_EQ(Out(), QString());
  EXPECT_EQ(line.sent, QByteArray());
}

INSTANTIATE_TEST_SUITE_P(
    Each, CliBadInputTest,
    testing::Values(
        BadRun{{u"bogus"_s}, u"Unbekannter Befehl: bogus"_s},
        BadRun{{u"send"_s, u"--controller"_s, u"AB1"_s}, u"Unbekannte Reglerversion: AB1"_s},
        BadRun{{u"send"_s, u"--plant"_s, u"Heiz"_s}, u"Unbekannte Anlageart: Heiz"_s},
        BadRun{{u"send"_s, u"--plant"_s, u"#3"_s}, u"Unbekannte Anlageart: #3"_s},
        BadRun{{u"send"_s, u"--plant"_s, u"#-1"_s}, u"Unbekannte Anlageart: #-1"_s},
        BadRun{{u"send"_s, u"--plant"_s, u"#x"_s}, u"Unbekannte Anlageart: #x"_s},
        BadRun{{u"send"_s, u"--port"_s, u"0"_s}, u"Keine Schnittstelle von 1 bis 8: 0"_s},
        BadRun{{u"send"_s, u"--port"_s, u"9"_s}, u"Keine Schnittstelle von 1 bis 8: 9"_s},
        BadRun{{u"send"_s, u"--port"_s, u"socket://regler"_s},
               u"Die Netzadresse „socket://regler“ nennt keinen Port von 1 bis 65535. Erwartet wird "
               "socket://RECHNER:PORT oder rfc2217://RECHNER:PORT."_s},
        BadRun{{u"send"_s, u"--set"_s, u"FEHLT=1"_s}, u"Unbekannte Variable: FEHLT"_s},
        BadRun{{u"send"_s, u"--set"_s, u"SOLL=3000.1"_s},
               u"Wert für SOLL liegt nicht zwischen 0 und 3000: 3000.1"_s},
        BadRun{{u"send"_s, u"--set"_s, u"NAME=abcde"_s}, u"Text für NAME ist länger als 4 Zeichen: abcde"_s},
        BadRun{{u"send"_s, u"--check"_s, u"FEHLT"_s}, u"Kein Parameter: FEHLT"_s},
        BadRun{{u"send"_s, u"--check"_s, u"4"_s}, u"Kein Parameter: 4"_s},
        BadRun{{u"send"_s, u"--check"_s, u"0"_s}, u"Kein Parameter: 0"_s},
        BadRun{{u"send"_s, u"--uncheck"_s, u"group=Fehlt"_s}, u"Kein Parameter: group=Fehlt"_s},
        BadRun{{u"send"_s, u"--ini-path"_s, test::Native(u"/leer"_s)},
               test::Native(u"Fehler beim Lesen von | /leer/VF.INI | Datei nicht gefunden. | "_s) +
                   u"Ueberprüfen Sie die Einstellungen in Optionen -> Dateien"_s}));

TEST_F(CliTest, AMissingDefinitionFileIsBadInput) {
  files.files.remove(u"/d//D2.TXT"_s);
  EXPECT_EQ(Run({u"tree"_s, u"--controller"_s, u"AB1-200.0"_s}), kBadInput);
  EXPECT_EQ(Err(), test::Native(u"KALIVOR: Datei nicht gefunden.: /d//D2.TXT\n"_s));
  EXPECT_EQ(Out(), QString());
}

// What is said when the first version's definitions cannot be read.
const QString kFirstIsMissing =
    test::Native(u"Fehler beim Lesen von | /d/VF.INI | Datei nicht gefunden.: /d//D1.TXT | "_s) +
    u"Ueberprüfen Sie die Einstellungen in Optionen -> Dateien\n"_s;

TEST_F(CliTest, WithoutDefinitionsOfItsVersionNoCommandRuns) {
  files.files.remove(u"/d//D1.TXT"_s);
  for (const QString& command :
       {u"plants"_s, u"params"_s, u"tree"_s, u"identify"_s, u"send"_s, u"standard"_s, u"pages"_s}) {
    EXPECT_EQ(Run({command}), kBadInput) << command.toStdString();
    EXPECT_EQ(Out(), QString());
    EXPECT_EQ(Err(), kFirstIsMissing);
  }
  EXPECT_EQ(line.openings, 0);
}

TEST_F(CliTest, FaultsOfAVersionThatTheCommandDoesNotWorkWithAreBoxesOnly) {
  files.files.remove(u"/d//D1.TXT"_s);
  EXPECT_EQ(Run({u"params"_s, u"--controller"_s, u"AB1-200.0"_s}), kDone);
  EXPECT_EQ(Err(), kFirstIsMissing);
  EXPECT_TRUE(Out().contains(u"\n1\tAntrieb\tDrehzahl\t100\t"_s)) << out.str();
  EXPECT_EQ(Run({u"params"_s}), kBadInput) << "it is the first one's fault all the same";
}

TEST_F(CliTest, AMissingAddressListIsBadInputForItsOwnVersionOnly) {
  files.AddText(u"/d/VF.INI"_s, kHeading +
                                    u"AB1-123.4  L1.ADR  D1.TXT  Heizung Kühlung -  WR\r\n"
                                    "AB1-200.0  -  D2.TXT  A  WR\r\n"_s);
  EXPECT_EQ(Run({u"tree"_s}), kBadInput);
  EXPECT_TRUE(
      Err().startsWith(test::Native(u"Fehler beim Lesen von | /d//L1.ADR | Datei nicht gefunden.\n"_s)));
  EXPECT_EQ(Run({u"tree"_s, u"--controller"_s, u"AB1-200.0"_s}), kDone);
  EXPECT_TRUE(
      Err().startsWith(test::Native(u"Fehler beim Lesen von | /d//L1.ADR | Datei nicht gefunden.\n"_s)));
  EXPECT_TRUE(Out().contains(u"sK 1\tDrehzahl"_s));
}

TEST_F(CliTest, TheVersionOfALoadedFileIsTheOneThatMustBeReadable) {
  files.files[u"x.qpf"_s].bytes =
      ComposeRecord(2, {}, u"AB1-200.0"_s, {}) + ComposeRecord(55, {}, u"SOLL"_s, u"int"_s);
  const QStringList load{u"params"_s, u"--load"_s, u"x.qpf"_s, u"--answer"_s};
  const QByteArray first = files.files.take(u"/d//D1.TXT"_s).bytes;
  EXPECT_EQ(Run(load + QStringList{u"second"_s}), kDone) << err.str();
  EXPECT_TRUE(Out().contains(u"\n1\tAntrieb\tDrehzahl\t55\t"_s)) << out.str();
  EXPECT_EQ(Run(load + QStringList{u"first"_s}), kBadInput);

  files.files[u"/d//D1.TXT"_s].bytes = first;
  files.AddText(u"/d/VF.INI"_s, kHeading +
                                    u"AB1-123.4  -  D1.TXT  Heizung Kühlung -  WR\r\n"
                                    "AB1-200.0  L2.ADR  D2.TXT  A  WR\r\n"_s);
  EXPECT_EQ(Run(load + QStringList{u"second"_s}), kBadInput);
  EXPECT_TRUE(
      Err().contains(test::Native(u"Fehler beim Lesen von | /d//L2.ADR | Datei nicht gefunden.\n"_s)));
  EXPECT_EQ(Out(), QString());
}

TEST_F(CliTest, VersionsPrintsWhatTheTableHoldsWhateverTheDefinitionsAre) {
  files.files.remove(u"/d//D1.TXT"_s);
  files.files.remove(u"/d//D2.TXT"_s);
  const QString rows = u"AB1-123.4\t-\tD1.TXT\t Heizung Kühlung -\tWR\nAB1-200.0\t-\tD2.TXT\t A\tWR\n"_s;
  EXPECT_EQ(Run({u"versions"_s}), kDone);
  EXPECT_EQ(Out(), rows);
  EXPECT_EQ(Err(), kFirstIsMissing);
  EXPECT_EQ(Run({u"versions"_s, u"--controller"_s, u"AB1-200.0"_s}), kDone);
  EXPECT_EQ(Out(), rows);
}

TEST_F(CliTest, VersionsOfATableThatCannotBeReadIsBadInput) {
  files.AddText(u"/d/VF.INI"_s, kHeading);
  EXPECT_EQ(Run({u"versions"_s}), kBadInput);
  EXPECT_EQ(Out(), QString());
  files.files.remove(u"/d/VF.INI"_s);
  EXPECT_EQ(Run({u"versions"_s}), kBadInput);
  EXPECT_EQ(Out(), QString());
  // More rows than the counter holds: what was read is printed.
  files.AddText(u"/d/VF.INI"_s, kHeading + u"V  -  D1.TXT  -  WR\r\n"_s.repeated(32767));
  EXPECT_EQ(Run({u"versions"_s}), kBadInput);
  EXPECT_EQ(Out().count(u'\n'), 32766);
}

TEST_F(CliTest, AnAmbiguousVariableCannotBeSet) {
  files.files[u"/d//D1.TXT"_s].bytes += "Antrieb  Zwei  0  9  1  -  0  0  int  1F30  SOLL  Heizung  -\r\n";
  EXPECT_EQ(Run({u"send"_s, u"--set"_s, u"SOLL=1"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Mehrere Parameter haben die Variable SOLL\n"_s);
}

struct MarkRun {
  QStringList options;
  QString marks;  ///< of parameters 1 to 3
};

void PrintTo(const MarkRun& run, std::ostream* out) {
  *out << run.options.join(u' ').toStdString();
}

class CliMarksTest : public CliTest, public testing::WithParamInterface<MarkRun> {};

TEST_P(CliMarksTest, ChangeInTheOrderGiven) {
  EXPECT_EQ(Run(QStringList(u"params"_s) + GetParam().options), kDone);
  QString marks;
  for (const QString& row : Out().split(u'\n', Qt::SkipEmptyParts).sliced(2))
    marks += row.back();
  EXPECT_EQ(marks, GetParam().marks);
}

INSTANTIATE_TEST_SUITE_P(
    Each, CliMarksTest,
    testing::Values(MarkRun{{}, u"111"_s}, MarkRun{{u"--uncheck"_s, u"all"_s}, u"000"_s},
                    MarkRun{{u"--uncheck"_s, u"2"_s}, u"101"_s},
                    MarkRun{{u"--uncheck"_s, u"group=Antrieb"_s}, u"001"_s},
                    MarkRun{{u"--uncheck"_s, u"all"_s, u"--check"_s, u"NAME"_s}, u"001"_s},
                    MarkRun{{u"--check"_s, u"NAME"_s, u"--uncheck"_s, u"all"_s}, u"000"_s},
                    // Editing a number ticks it like its editor; the marks are set after it.
                    MarkRun{{u"--uncheck"_s, u"1"_s, u"--set"_s, u"SOLL=1"_s}, u"011"_s}));

TEST_F(CliTest, AnotherVersionIsAQuestionThatNeedsAnAnswer) {
  controller.emplace(ControllerOf(u"AB1-200.0"_s));
  EXPECT_EQ(Run({u"send"_s}), kUnanswered);
  EXPECT_EQ(Out(), u"Senden..\n"_s);
  EXPECT_EQ(
      Err(),
      u"Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein. | Der Befehl Senden "
      "kann nicht ausgeführt werden. |  | Bitte wählen Sie: | 1: PC     (Senden Abbrechen)  : AB1-123.4 "
      "| 2: Regler (Werte neu Einlesen): AB1-200.0\n"_s);

  EXPECT_EQ(Run({u"send"_s, u"--answer"_s, u"first"_s}), kNoTransfer);
  EXPECT_EQ(Out(), u"Senden..\nSenden abgebrochen\n"_s);

  memory.SetWord(0x2000, 77);
  EXPECT_EQ(Run({u"send"_s, u"--answer"_s, u"second"_s}), kNoTransfer);
  EXPECT_EQ(Out(), u"Senden...\nSenden abgebrochen\n"_s);
}

TEST_F(CliTest, ReceiveFollowsTheController) {
  controller.emplace(ControllerOf(u"AB1-200.0"_s));
  EXPECT_EQ(Run({u"receive"_s}), kDone);
  EXPECT_EQ(Run({u"compare"_s}), kNoTransfer);
  EXPECT_EQ(Out(), u"Vergleichen..\nAndere ReglerVersion: AB1-200.0\nVergleich abgebrochen\n"_s);
}

TEST_F(CliTest, ATooLargePlantNumberIsNoTransferThoughItEndsNormally) {
  memory.SetWord(0x0100, 4);
  EXPECT_EQ(Run({u"receive"_s}), kNoTransfer);
  EXPECT_EQ(Out(), u"Empfangen..\nEmpfangene Anlagennummer ( 4) zu gross\nEmpfangen beendet\n"_s);
}

TEST_F(CliTest, ARunTimeErrorInsideATransferIsNoTransfer) {
  memory.SetWord(0x0100, 3);
  EXPECT_EQ(Run({u"receive"_s}), kNoTransfer);
  EXPECT_EQ(Out(), u"Empfangen..\nEmpfangen abgebrochen\n"_s);
  EXPECT_EQ(Err(), u"KALIVOR: Die Auswahl liegt außerhalb der Liste.\n"_s);
}

TEST_F(CliTest, AnUnreadablePlantNumberIsNoTransfer) {
  Spoil(2, 4, sim::FaultKind::Silent);
  EXPECT_EQ(Run({u"receive"_s}), kNoTransfer);
  EXPECT_EQ(Out(), u"Empfangen..\nERROR: kein Empfang\nFehler bei: ANLAGE[0]\nEmpfangen beendet\n"_s);
}

TEST_F(CliTest, APlantTypeThatCannotBeWrittenIsAFinding) {
  // Version query, plant number, three attempts to write the plant type.
  Spoil(3, 5, sim::FaultKind::BadChecksum);
  EXPECT_EQ(Run({u"send"_s, u"--plant"_s, u"Heizung"_s, u"--answer"_s, u"first"_s}), kFindings);
  EXPECT_EQ(Out(), u"Senden..\nERROR:  Checksumme Falsch\nFehler bei: ANLAGE...\nSenden beendet\n"_s);
  EXPECT_EQ(Err(),
            u"Die Anlageart auf dem Regler stimmt nicht mit derjenigen auf dem PC überein. |  | Bitte wählen "
            "Sie: | 1: PC: Heizung | 2: Regler: \n"_s);
}

TEST_F(CliTest, AnInterruptAbortsTheTransfer) {
  interrupted = true;
  EXPECT_EQ(Run({u"receive"_s}), kNoTransfer);
  EXPECT_EQ(Out(), u"Empfangen...\nEmpfangen abgebrochen\n"_s);
}

TEST_F(CliTest, CheckDefinitionsPrintsFindings) {
  files.files[u"/d//D1.TXT"_s].bytes += "Antrieb  Zwei  9  1  5  -  0  0  int  1F30  ZWEI  Heizung  -\r\n";
  EXPECT_EQ(Run({u"check-definitions"_s}), kFindings);
  EXPECT_TRUE(Out().contains(u"D1.TXT\t6\tFehler\t"_s)) << out.str();
}

TEST_F(CliTest, ReceivedValuesAreSavedAndLoadedAgain) {
  memory.SetWord(0x1F00, 1777);
  EXPECT_EQ(Run({u"receive"_s, u"--save"_s, u"w.qpf"_s}), kDone);
  EXPECT_EQ(files.files[u"w.qpf"_s].bytes.size(), 4 * 62);
  EXPECT_EQ(Run({u"compare"_s}), kFindings);
  EXPECT_EQ(Run({u"compare"_s, u"--load"_s, u"w.qpf"_s}), kDone) << out.str();
}

TEST_F(CliTest, NothingIsSavedAfterACommandThatDidNotTakePlace) {
  Spoil(1, 3, sim::FaultKind::Silent);
  EXPECT_EQ(Run({u"receive"_s, u"--save"_s, u"w.qpf"_s}), kNoTransfer);
  EXPECT_FALSE(files.files.contains(u"w.qpf"_s));
}

TEST_F(CliTest, AFailedSaveIsNoSuccess) {
  files.writeError = u"Auf dem Datenträger ist kein Platz mehr."_s;
  EXPECT_EQ(Run({u"standard"_s, u"--save"_s, u"w.qpf"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim schreiben von | w.qpf | Auf dem Datenträger ist kein Platz mehr.\n"_s);
}

TEST_F(CliTest, AnUnreadableValueFileIsBadInput) {
  EXPECT_EQ(Run({u"tree"_s, u"--load"_s, u"fehlt.qpf"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim lesen von | fehlt.qpf | Datei nicht gefunden.\n"_s);
  EXPECT_EQ(Run({u"show"_s, u"fehlt.qpf"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim lesen von | fehlt.qpf | Datei nicht gefunden.\n"_s);
}

TEST_F(CliTest, AValueFileOfAnUnknownVersionIsBadInput) {
  files.files[u"x.qpf"_s].bytes = ComposeRecord(1, {}, u"V9"_s, {});
  EXPECT_EQ(Run({u"tree"_s, u"--load"_s, u"x.qpf"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Unbekannte ReglerVersion: V9"_s + QString(28, u' ') + u'\n');
}

TEST_F(CliTest, AValueFileOfAnotherVersionIsAQuestion) {
  files.files[u"x.qpf"_s].bytes =
      ComposeRecord(2, {}, u"AB1-200.0"_s, {}) + ComposeRecord(55, {}, u"SOLL"_s, u"int"_s);
  EXPECT_EQ(Run({u"tree"_s, u"--load"_s, u"x.qpf"_s}), kUnanswered);
  EXPECT_EQ(Run({u"params"_s, u"--load"_s, u"x.qpf"_s, u"--answer"_s, u"second"_s}), kDone);
  EXPECT_TRUE(Out().contains(u"1\tAntrieb\tDrehzahl\t55\t"_s));
  EXPECT_EQ(Out().count(u'\n'), 2);
}

TEST_F(CliTest, ShowPrintsAValueFileWithoutDefinitions) {
  files.files.remove(u"/d/VF.INI"_s);
  files.files[u"x.qpf"_s].bytes = ComposeRecord(2, {}, u"AB1-200.0"_s, {}) +
                                  ComposeRecord(-5, {}, u"SOLL"_s, u"int"_s) +
                                  ComposeRecord(0, u"Öl"_s, u"NAME"_s, u"string4"_s);
  EXPECT_EQ(Run({u"show"_s, u"x.qpf"_s}), kDone);
  EXPECT_EQ(Out(), u"62\t2\tAB1-200.0\n2\tSOLL\tint\t-5\t"_s + QString(20, u' ') +
                       u"\n3\tNAME\tstring4\t0\tÖl"_s + QString(18, u' ') + u'\n');
  EXPECT_EQ(Run({u"show"_s, u"x.qpf"_s, u"--json"_s}), kDone);
  EXPECT_EQ(QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).object()[u"layout"_s].toInt(), 62);
}

TEST_F(CliTest, PagesPrintsWhatThePrinterWould) {
  EXPECT_EQ(Run({u"pages"_s, u"--date"_s, u"2026-11-21"_s, u"--status-path"_s, u"C:\\w.qpf"_s}), kDone)
      << err.str();
  const QStringList lines = Out().split(u'\n');
  EXPECT_EQ(lines[0], u"=== Seite 1 von 1"_s);
  EXPECT_TRUE(lines[1].startsWith(u"AB1-123.4 Anlagenart: "_s)) << lines[1].toStdString();
  EXPECT_EQ(lines[2], u"Anlage"_s);
  EXPECT_EQ(lines[3], u"  Antrieb"_s);
  EXPECT_TRUE(lines[4].startsWith(u"    Drehzahl....."_s));
  const QString date = print::DateText({2026, 11, 21}, print::SystemLanguage());
  EXPECT_TRUE(lines[lines.size() - 2].startsWith(date + u"   Seite  1 von 1   "_s))
      << lines[lines.size() - 2].toStdString();
  EXPECT_TRUE(lines[lines.size() - 2].endsWith(u"   C:\\w.qpf"_s));
}

TEST_F(CliTest, HelpAndProgramVersion) {
  EXPECT_EQ(Run({u"--help"_s}), kDone);
  EXPECT_TRUE(Out().startsWith(u"Aufruf: kalivor-cli"_s));
  EXPECT_EQ(Run({u"--program-version"_s}), kDone);
  EXPECT_EQ(Out(), u"kalivor-cli " KALIVOR_VERSION "\n"_s);
}

}  // namespace
}  // namespace kalivor::cli
