// The check of the definition files: each fault with file, line and severity, and the shipped example without
// any.
#include "check/DefinitionCheck.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <algorithm>

#include "core/DefinitionFiles.h"
#include "core/TextFile.h"
#include "fakes/FakeFileSystem.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// "file:line Fehler|Warnung text", as a user would read it.
QStringList Described(const std::vector<Finding>& findings) {
  QStringList lines;
  for (const Finding& finding : findings) {
    lines.append(u"%1:%2 %3 %4"_s.arg(finding.file, QString::number(finding.line),
                                      finding.error ? u"Fehler"_s : u"Warnung"_s, finding.text));
  }
  return lines;
}

// As a test's failure shows it legibly.
std::string Text(const QStringList& lines) {
  return lines.join(u'\n').toStdString();
}

// A table with one version, its definitions without address list, and what a test makes of them.
class DefinitionCheckTest : public testing::Test {
 protected:
  QStringList table{u"Version  Adressliste  Definitionen  Anlagen  Kennung"_s,
                    u"ABC-012.0  -  DEF.TXT  Heizung Luft -  WR"_s};
  QStringList definitions{u"Rubrik  Name  usw."_s, Line({}),
                          Line({{11, u"Luft"_s}, {9, u"2000"_s}, {10, u"_b"_s}})};
  QStringList list{u"Name  Adresse"_s, u"_a  1000"_s, u"_b  2000"_s};
  test::FakeFileSystem files;

  // A faultless definition line with the given columns replaced.
  static QString Line(const QHash<int, QString>& changes) {
    QStringList columns{u"Gruppe"_s, u"Name"_s, u"0"_s,    u"100"_s, u"50"_s,           u"%"_s,    u"0"_s,
                        u"0"_s,      u"int"_s,  u"1000"_s, u"_a"_s,  u"Heizung Luft"_s, u"Hilfe"_s};
    for (auto change = changes.begin(); change != changes.end(); ++change)
      columns[change.key()] = change.value();
    return columns.join(u"  "_s);
  }

  // Turns the version into one with an address list.
  void UseList() { table[1] = u"ABC-012.0  LISTE.TXT  DEF.TXT  Heizung Luft -  WR"_s; }

  std::vector<Finding> Check() {
    files.AddText(u"ini/VF.INI"_s, table.join(u"\r\n"_s));
    files.AddText(u"ini//DEF.TXT"_s, definitions.join(u"\r\n"_s));
    files.AddText(u"ini//LISTE.TXT"_s, list.join(u"\r\n"_s));
    return CheckDefinitions(files, u"ini"_s, u"VF.INI"_s);
  }

  void Expect(const QStringList& expected) { EXPECT_EQ(Text(Described(Check())), Text(expected)); }

  // Checks what a changed first parameter line (line 2 of the file) leads to.
  void ExpectForLine(const QHash<int, QString>& changes, const QString& expected) {
    definitions[1] = Line(changes);
    const QStringList found = Described(Check());
    EXPECT_EQ(Text(found), expected.isEmpty() ? "" : (u"DEF.TXT:2 "_s + expected).toStdString());
  }
};

TEST_F(DefinitionCheckTest, FaultlessFilesGiveNoFinding) {
  Expect({});
  UseList();
  Expect({});
}

TEST_F(DefinitionCheckTest, UnreadableVersionTableThrows) {
  files.AddFailure(u"ini/FEHLT.INI"_s, u"Zugriff verweigert."_s);
  try {
    static_cast<void>(CheckDefinitions(files, u"ini"_s, u"FEHLT.INI"_s));
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.GetKind(), RuntimeError::Kind::FileError);
    EXPECT_EQ(error.Description(), u"Zugriff verweigert."_s);
  }
}

// --- the end of a text ---

TEST_F(DefinitionCheckTest, ATextThatTheByte1AClosesIsFaultless) {
  UseList();
  table.append(u"\x1A"_s);
  definitions.append(u"\x1A \r\n\x1A"_s);
  list.last() += u'\x1A';
  Expect({});
}

TEST_F(DefinitionCheckTest, WhatStandsBehindTheByte1AIsNotReadAndNamed) {
  UseList();
  table.append(u"\x1AX"_s);
  definitions.append(u"\x1A"_s);
  definitions.append(Line({{2, u"900"_s}}) + u",\""_s);
  list.append(u"_c\x1A  3000"_s);
  const QString unread = u" Warnung Hinter dem Zeichen 1A steht noch etwas; es wird nicht gelesen."_s;
  Expect({u"VF.INI:3"_s + unread, u"DEF.TXT:4"_s + unread, u"LISTE.TXT:4"_s + unread,
          u"LISTE.TXT:4 Warnung Name „_c“ ohne Adresse."_s});
}

// --- the version table ---

TEST_F(DefinitionCheckTest, TableWithoutVersion) {
  table = QStringList{u"Version  Adressliste"_s};
  Expect({u"VF.INI:0 Fehler Die Tabelle enthält keine Version."_s});
}

TEST_F(DefinitionCheckTest, TableWithoutHeading) {
  table.removeFirst();
  Expect({u"VF.INI:1 Fehler Die erste Zeile gilt als Überschrift; diese Version wird nicht gelesen."_s,
          u"VF.INI:0 Fehler Die Tabelle enthält keine Version."_s});
}

TEST_F(DefinitionCheckTest, TableLineWithTooFewOrTooManyColumns) {
  table.append(u"ABC-012.1  -  DEF.TXT WR"_s);
  table.append(u"ABC-012.2  -  DEF.TXT  Heizung -  WR  Rest"_s);
  Expect({u"VF.INI:3 Fehler Nur 3 Spalten statt 5; Spalten trennt man mit zwei Leerzeichen."_s,
          u"VF.INI:4 Warnung Hinter der Kennung steht noch etwas."_s});
}

TEST_F(DefinitionCheckTest, VersionTexts) {
  table.append(u"ABC-012.0  -  DEF.TXT  Heizung -  WR"_s);
  table.append(u"Regler 3  -  DEF.TXT  Heizung -  WR"_s);
  table.append(u"ABCD-012.0  -  DEF.TXT  Heizung -  WR"_s);
  table.append(u"123456789012345678901234567890  -  DEF.TXT  Heizung -  WR"_s);
  Expect({u"VF.INI:3 Fehler Version „ABC-012.0“ steht schon in Zeile 2."_s,
          u"VF.INI:4 Warnung Version „Regler 3“ kann kein Regler melden; gemeint ist etwas wie ABC-012.3."_s,
          u"VF.INI:6 Fehler Version „123456789012345678901234567890“ ist für eine Wertedatei zu lang; "
          "sie fasst 29 Zeichen."_s});
}

TEST_F(DefinitionCheckTest, VersionOf29CharactersIsNotTooLong) {
  table.append(u"12345678901234567890123456789  -  DEF.TXT  Heizung -  WR"_s);
  const std::vector<Finding> found = Check();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_FALSE(found[0].error);
}

TEST_F(DefinitionCheckTest, Kennung) {
  table.append(u"ABC-012.1  -  DEF.TXT  Heizung -  W"_s);
  table.append(u"ABC-012.2  -  DEF.TXT  Heizung -  WRX"_s);
  table.append(u"ABC-012.3  -  DEF.TXT  Heizung -  WW"_s);
  table.append(u"ABC-012.4  -  DEF.TXT  Heizung -  WR "_s);
  Expect({u"VF.INI:3 Fehler Kennung „W“ hat nicht zwei Zeichen (Schreiben und Lesen)."_s,
          u"VF.INI:4 Fehler Kennung „WRX“ hat nicht zwei Zeichen (Schreiben und Lesen)."_s,
          u"VF.INI:5 Warnung Kennung „WW“ schreibt und liest mit demselben Zeichen."_s});
}

TEST_F(DefinitionCheckTest, DroppedLastPlantIsNamed) {
  table[1] = u"ABC-012.0  -  DEF.TXT  Heizung Luft  WR"_s;
  Expect({u"VF.INI:2 Warnung Die letzte Anlage „Luft“ wird nicht übernommen; dahinter fehlt noch „-“."_s,
          u"DEF.TXT:2 Warnung Anlage „Luft“ nennt keine Version mit dieser Datei."_s});
}

TEST_F(DefinitionCheckTest, RepeatedAndContainedPlants) {
  table[1] = u"ABC-012.0  -  DEF.TXT  Heizung Heizung Heiz Luft -  WR"_s;
  Expect({u"VF.INI:2 Warnung Anlage „Heizung“ steht mehrfach in der Zeile."_s,
          u"VF.INI:2 Warnung Anlage „Heiz“ zeigt auch die Parameter von „Heizung“, denn ihr Name ist darin "
          "enthalten."_s});
}

TEST_F(DefinitionCheckTest, PlantsThatOnlyOneSideKnows) {
  table[1] = u"ABC-012.0  -  DEF.TXT  Heizung Luft Klima -  WR"_s;
  definitions[2] = Line({{11, u"Luft Dampf"_s}, {9, u"2000"_s}, {10, u"_b"_s}});
  definitions.append(Line({{11, u"-"_s}, {9, u"3000"_s}, {10, u"_c"_s}}));
  Expect({u"DEF.TXT:3 Warnung Anlage „Dampf“ nennt keine Version mit dieser Datei."_s,
          u"VF.INI:2 Warnung Anlage „Klima“ hat keinen Parameter in „DEF.TXT“."_s});
}

TEST_F(DefinitionCheckTest, PlantOfAnotherVersionWithTheSameFileIsListed) {
  table[1] = u"ABC-012.0  -  DEF.TXT  Heizung -  WR"_s;
  table.append(u"ABC-012.1  -  DEF.TXT  Luft -  WR"_s);
  Expect({});
}

TEST_F(DefinitionCheckTest, FilesThatCannotBeRead) {
  table.append(u"ABC-012.1  -  FEHLT.TXT  Heizung -  WR"_s);
  table.append(u"ABC-012.2  FEHLT.ADR  DEF.TXT  Heizung -  WR"_s);
  table.append(u"ABC-012.3  -  BIN.TXT  Heizung -  WR"_s);
  files.files[u"ini//BIN.TXT"_s] = {QByteArray("a\n\0b", 4), {}};
  Expect(
      {u"VF.INI:3 Fehler Definitionsdatei „FEHLT.TXT“ lässt sich nicht lesen: Datei nicht gefunden."_s,
       u"VF.INI:4 Fehler Adressliste „FEHLT.ADR“ lässt sich nicht lesen: Datei nicht gefunden."_s,
       u"VF.INI:5 Fehler Definitionsdatei „BIN.TXT“ lässt sich nicht lesen: Die Datei ist keine Textdatei."_s});
}

TEST_F(DefinitionCheckTest, FilesOfSeveralVersionsAreReportedOnce) {
  table.append(u"ABC-012.1  -  DEF.TXT  Heizung Luft -  WR"_s);
  ExpectForLine(
      {{8, u"float"_s}},
      u"Fehler Typ „float“ ist unbekannt; möglich sind long, int, char und string mit einer Länge."_s);
}

// --- lines as such ---

TEST_F(DefinitionCheckTest, CommasQuotesAndTabs) {
  definitions[1] = Line({{12, u"Hilfe, lange"_s}});
  definitions.append(u"\""_s + Line({{9, u"3000"_s}, {10, u"_c"_s}, {12, u"Hilfe, lange"_s}}) + u"\""_s);
  definitions.append(u"\""_s + Line({{9, u"3010"_s}, {10, u"_d"_s}}));
  definitions.append(u"\"Gruppe\"  Name"_s);
  definitions.append(Line({{9, u"3020"_s}, {10, u"_e"_s}, {12, u"so \"genannt\""_s}}));
  definitions.append(Line({{9, u"3030"_s}, {10, u"_f"_s}, {12, u"mit\tTab"_s}}));
  Expect({u"DEF.TXT:2 Fehler Komma: der Rest der Zeile wird als neue Zeile gelesen."_s,
          u"DEF.TXT:5 Fehler Anführungszeichen am Zeilenanfang ohne Gegenstück."_s,
          u"DEF.TXT:6 Fehler Text hinter dem schließenden Anführungszeichen; er wird nicht gelesen."_s,
          u"DEF.TXT:7 Warnung Anführungszeichen im Text; es wird mit angezeigt."_s,
          u"DEF.TXT:8 Warnung Tabulator: er trennt keine Spalten und gehört zum Text."_s});
}

TEST_F(DefinitionCheckTest, BlankLinesCountAsLinesOnly) {
  definitions.insert(1, u"   "_s);
  definitions[2] = Line({{8, u"int"_s}, {9, u"1001"_s}});
  Expect({u"DEF.TXT:3 Fehler Adresse 1001 ist ungerade; nur char darf dort liegen."_s});
}

TEST_F(DefinitionCheckTest, Utf8WithoutMarkIsReportedAndWithMarkRead) {
  definitions[1] = Line({{1, u"Außentemperatur"_s}});
  static_cast<void>(Check());
  const QByteArray utf8 = definitions.join(u"\r\n"_s).toUtf8();
  files.files[u"ini//DEF.TXT"_s] = {utf8, {}};
  EXPECT_EQ(
      Described(CheckDefinitions(files, u"ini"_s, u"VF.INI"_s)),
      QStringList(u"DEF.TXT:0 Warnung Die Datei ist als UTF-8 ohne Kennung (BOM) gespeichert; Umlaute werden "
                  "falsch gelesen."_s));
  files.files[u"ini//DEF.TXT"_s] = {"\xEF\xBB\xBF" + utf8, {}};
  EXPECT_EQ(Described(CheckDefinitions(files, u"ini"_s, u"VF.INI"_s)), QStringList());
}

// --- definition lines ---

TEST_F(DefinitionCheckTest, DefinitionsWithoutHeading) {
  definitions.removeFirst();
  Expect({u"DEF.TXT:1 Fehler Die erste Zeile gilt als Überschrift; dieser Parameter wird nicht gelesen."_s,
          u"VF.INI:2 Warnung Anlage „Heizung“ hat keinen Parameter in „DEF.TXT“."_s});
}

TEST_F(DefinitionCheckTest, DefinitionsWithoutParameter) {
  definitions = definitions.first(1);
  table[1] = u"ABC-012.0  -  DEF.TXT  -  WR"_s;
  Expect({u"DEF.TXT:0 Warnung Die Datei enthält keine Parameter."_s});
}

TEST_F(DefinitionCheckTest, TooFewColumns) {
  definitions.append(u"Gruppe  Name  0"_s);
  QString merged = Line({{9, u"3000"_s}, {10, u"_c"_s}});
  merged.replace(u"int  3000"_s, u"int 3000"_s);
  definitions.append(merged);
  definitions.append(Line({{9, u"3000"_s}, {10, u"_c"_s}, {12, u""_s}}));
  const QString text =
      u"Fehler Nur %1 Spalten statt 13; Spalten trennt man mit zwei Leerzeichen, leere füllt „-“."_s;
  Expect({u"DEF.TXT:4 "_s + text.arg(3), u"DEF.TXT:5 "_s + text.arg(12), u"DEF.TXT:6 "_s + text.arg(12)});
}

TEST_F(DefinitionCheckTest, LimitsAndStandard) {
  ExpectForLine({{2, u"101"_s}}, u"Fehler Min 101 ist größer als Max 100."_s);
  ExpectForLine({{4, u"101"_s}}, u"Fehler Standard 101 liegt nicht zwischen Min 0 und Max 100."_s);
  ExpectForLine({{4, u"-1"_s}}, u"Fehler Standard -1 liegt nicht zwischen Min 0 und Max 100."_s);
  ExpectForLine({{4, u"-"_s}}, u"Fehler Standard fehlt; gelesen wird 0."_s);
  ExpectForLine({{2, u"100"_s}, {4, u"100"_s}}, {});
}

TEST_F(DefinitionCheckTest, NumbersThatAreNone) {
  ExpectForLine({{2, u"x"_s}}, u"Fehler Min „x“ ist keine Zahl; gelesen wird 0."_s);
  ExpectForLine({{3, u"12a"_s}, {4, u"5"_s}}, u"Fehler Max „12a“ ist keine Zahl; gelesen wird 12."_s);
  ExpectForLine({{4, u"2.5"_s}}, u"Warnung Standard „2.5“ ist keine ganze Zahl; gelesen wird 2."_s);
  ExpectForLine({{6, u"-"_s}}, u"Fehler Zahl1 „-“ ist keine Zahl; gelesen wird 0."_s);
  ExpectForLine({{7, u"eins"_s}}, u"Fehler Zahl2 „eins“ ist keine Zahl; gelesen wird 0."_s);
  ExpectForLine({{2, u"-1e1"_s}, {3, u"1 000"_s}, {4, u"&H1F"_s}}, {});
}

TEST_F(DefinitionCheckTest, NumbersThatDoNotFit) {
  ExpectForLine({{3, u"32768"_s}}, u"Fehler Max „32768“ liegt außerhalb von -32768 bis 32767."_s);
  ExpectForLine({{8, u"long"_s}, {3, u"2147483648"_s}},
                u"Fehler Max „2147483648“ liegt außerhalb von -2147483648 bis 2147483647."_s);
  ExpectForLine({{8, u"char"_s}, {3, u"256"_s}}, u"Fehler Max „256“ liegt außerhalb von -128 bis 255."_s);
  ExpectForLine({{6, u"40000"_s}}, u"Fehler Zahl1 „40000“ liegt außerhalb von -32768 bis 32767."_s);
  ExpectForLine({{3, u"1e999"_s}}, u"Fehler Max „1e999“ ist zu groß."_s);
  ExpectForLine({{3, u"32767"_s}}, {});
}

TEST_F(DefinitionCheckTest, DecimalsAndDroppedDigits) {
  ExpectForLine({{6, u"5"_s}, {7, u"5"_s}}, u"Fehler Zahl1 und Zahl2 ergeben zusammen mehr als 9."_s);
  // A negative count takes no decimals away.
  ExpectForLine({{6, u"10"_s}, {7, u"-5"_s}},
                u"Warnung Zahl1 und Zahl2 sollen nicht negativ sein.\n"
                "DEF.TXT:2 Fehler Zahl1 und Zahl2 ergeben zusammen mehr als 9."_s);
  ExpectForLine({{6, u"-1"_s}}, u"Warnung Zahl1 und Zahl2 sollen nicht negativ sein."_s);
  ExpectForLine({{6, u"4"_s}, {7, u"5"_s}}, {});
}

TEST_F(DefinitionCheckTest, Types) {
  const QString unknown =
      u"Fehler Typ „%1“ ist unbekannt; möglich sind long, int, char und string mit einer Länge."_s;
  const QString lengthless = u"Fehler Typ „%1“ hat keine gültige Länge; gemeint ist etwas wie string20."_s;
  ExpectForLine({{8, u"integer"_s}}, unknown.arg(u"integer"_s));
  ExpectForLine({{8, u"Int"_s}}, unknown.arg(u"Int"_s));
  ExpectForLine({{8, u"string"_s}}, lengthless.arg(u"string"_s));
  ExpectForLine({{8, u"str20"_s}}, lengthless.arg(u"str20"_s));
  ExpectForLine({{8, u"string100"_s}}, lengthless.arg(u"string100"_s));
  ExpectForLine({{8, u"string21"_s}},
                u"Fehler Typ „string21“ ist für eine Wertedatei zu lang; sie fasst 20 Zeichen.\n"
                "DEF.TXT:2 Warnung Typ „string21“ hat eine ungerade Länge; das letzte Zeichen wird nicht "
                "übertragen."_s);
  ExpectForLine({{8, u"string4"_s}, {4, u"ABCDE"_s}}, u"Fehler Standard „ABCDE“ ist länger als 4 Zeichen."_s);
  ExpectForLine({{8, u"string4"_s}, {4, u"ABCD"_s}, {2, u"-"_s}, {3, u"-"_s}, {6, u"-"_s}, {7, u"-"_s}}, {});
}

TEST_F(DefinitionCheckTest, TextsThatAreTooLong) {
  const QString name50(50, u'n');
  const QString variable30(30, u'v');
  ExpectForLine(
      {{1, name50 + u'n'}},
      u"Warnung Name „"_s + name50 + u"n“ hat mehr als 50 Zeichen; die Spalten dahinter verschieben sich."_s);
  ExpectForLine({{10, variable30 + u'v'}},
                u"Fehler Variable „"_s + variable30 +
                    u"v“ hat mehr als 30 Zeichen; ihr Wert kommt aus keiner Wertedatei zurück."_s);
  ExpectForLine({{5, u"mbarx"_s}}, u"Warnung Einheit „mbarx“ hat mehr als 4 Zeichen und wird gekürzt."_s);
  ExpectForLine({{1, name50}, {10, variable30}, {5, u"mbar"_s}}, {});
}

TEST_F(DefinitionCheckTest, DuplicateVariable) {
  definitions[2] = Line({{9, u"2000"_s}});
  Expect(
      {u"DEF.TXT:3 Warnung Variable „_a“ steht schon in Zeile 2; Wertedateien unterscheiden die beiden nicht."_s});
}

TEST_F(DefinitionCheckTest, NegativeValuesThatTheLineFalsifies) {
  ExpectForLine({{8, u"long"_s}, {2, u"-1"_s}},
                u"Warnung Negative Werte vom Typ long kommen beim Regler verfälscht an."_s);
  const QString text =
      u"Warnung Typ char an einer %1 Adresse: Werte außerhalb von 0 bis %2 werden verfälscht empfangen."_s;
  ExpectForLine({{8, u"char"_s}, {3, u"128"_s}}, text.arg(u"geraden"_s).arg(127));
  ExpectForLine({{8, u"char"_s}, {9, u"1001"_s}, {2, u"-1"_s}}, text.arg(u"ungeraden"_s).arg(255));
  ExpectForLine({{8, u"char"_s}, {9, u"1001"_s}, {3, u"255"_s}}, {});
}

TEST_F(DefinitionCheckTest, The2001stParameterEndsTheCheckOfTheFile) {
  definitions = definitions.first(1);
  for (int i = 0; i < 2000; ++i) {
    definitions.append(Line({{9, QString::number(0x1000 + 2 * i, 16)}, {10, u"_v%1"_s.arg(i)}}));
  }
  definitions.append(Line({{0, u"NoRubrik"_s}, {9, u"0100"_s}}));
  Expect({});
  definitions.append(Line({{9, u"0200"_s}, {10, u"_w"_s}}));
  definitions.append(u"Gruppe"_s);
  Expect({u"DEF.TXT:2003 Fehler Mehr als 2000 Parameter."_s});
}

// --- the plant-type record ---

TEST_F(DefinitionCheckTest, PlantTypeRecord) {
  definitions.append(Line({{0, u"NoRubrik"_s}, {9, u"0100"_s}, {10, u"ANLAGE"_s}}));
  Expect({});
  definitions.append(Line({{0, u"NoRubrik"_s}, {9, u"-"_s}, {10, u"ANLAGE"_s}, {8, u"char"_s}}));
  Expect(
      {u"DEF.TXT:5 Fehler Zweite Zeile mit NoRubrik; sie ersetzt Zeile 4."_s,
       u"DEF.TXT:5 Warnung Die Anlagennummer wird immer als ganzes Wort übertragen; ihr Typ muss int sein."_s,
       u"DEF.TXT:5 Fehler Adresse fehlt."_s});
}

TEST_F(DefinitionCheckTest, PlantTypeRecordNeedsNoEntryInAListButGetsNoAddressEither) {
  UseList();
  definitions.append(Line({{0, u"NoRubrik"_s}, {9, u"anlage"_s}, {10, u"ANLAGE"_s}}));
  Expect(
      {u"DEF.TXT:4 Warnung NoRubrik bleibt wirkungslos: mit einer Adressliste erhält diese Zeile keine "
       "Adresse."_s});
}

// --- addresses ---

TEST_F(DefinitionCheckTest, OwnAddresses) {
  ExpectForLine({{9, u"-"_s}}, u"Fehler Adresse fehlt."_s);
  ExpectForLine({{9, u"10G0"_s}}, u"Fehler Adresse „10G0“ ist nicht hexadezimal."_s);
  ExpectForLine({{9, u"100"_s}}, u"Fehler Adresse „100“ hat 3 Zeichen statt 4 oder 8."_s);
  ExpectForLine({{9, u"01000"_s}}, u"Fehler Adresse „01000“ hat 5 Zeichen statt 4 oder 8."_s);
  ExpectForLine({{9, u"1001"_s}}, u"Fehler Adresse 1001 ist ungerade; nur char darf dort liegen."_s);
  ExpectForLine({{9, u"00011000"_s}},
                u"Warnung Von der Adresse 00011000 werden nur die letzten vier Ziffern gesendet."_s);
  ExpectForLine({{9, u"FFFE"_s}, {8, u"long"_s}}, u"Fehler Von Adresse FFFE an reicht der Speicher nicht."_s);
  ExpectForLine({{9, u"fffe"_s}}, {});
  ExpectForLine({{9, u"0000FFFE"_s}}, {});
}

TEST_F(DefinitionCheckTest, OverlappingAddresses) {
  const auto expectOverlap = [this](const QString& type, const QString& address, bool overlaps) {
    const QString standard = type.startsWith(u"str") ? u"A"_s : u"50"_s;
    definitions[1] = Line({{8, type}, {9, address}, {4, standard}, {1, u"Erster"_s}});
    definitions[2] = Line({{9, u"2000"_s}, {10, u"_b"_s}, {1, u"Zweiter"_s}});
    const QStringList expected{
        u"DEF.TXT:3 Warnung Die Adressen von „Zweiter“ überschneiden sich mit denen von „Erster“ in Zeile 2."_s};
    SCOPED_TRACE((type + address).toStdString());
    Expect(overlaps ? expected : QStringList());
  };
  expectOverlap(u"long"_s, u"1FFE"_s, true);
  expectOverlap(u"long"_s, u"1FFC"_s, false);
  expectOverlap(u"string10"_s, u"1FF8"_s, true);
  expectOverlap(u"string10"_s, u"1FF6"_s, false);
  expectOverlap(u"char"_s, u"2001"_s, true);
  expectOverlap(u"char"_s, u"1FFF"_s, false);
  expectOverlap(u"int"_s, u"00002000"_s, true);
}

TEST_F(DefinitionCheckTest, OverlapIsFoundBehindAShorterOne) {
  definitions = definitions.first(1);
  definitions.append(Line({{1, u"Lang"_s}, {8, u"string20"_s}, {9, u"1000"_s}, {10, u"_l"_s}}));
  definitions.append(Line({{1, u"Kurz"_s}, {8, u"char"_s}, {9, u"1002"_s}, {10, u"_k"_s}}));
  definitions.append(Line({{1, u"Spät"_s}, {8, u"char"_s}, {9, u"1013"_s}, {10, u"_s"_s}}));
  Expect(
      {u"DEF.TXT:3 Warnung Die Adressen von „Kurz“ überschneiden sich mit denen von „Lang“ in Zeile 2."_s,
       u"DEF.TXT:4 Warnung Die Adressen von „Spät“ überschneiden sich mit denen von „Lang“ in Zeile 2."_s});
}

// --- the address list ---

TEST_F(DefinitionCheckTest, VariableMissingFromTheList) {
  UseList();
  list.removeAt(1);
  Expect({u"DEF.TXT:2 Fehler Variable „_a“ steht nicht mit einer Adresse in „LISTE.TXT“."_s});
}

TEST_F(DefinitionCheckTest, FaultsOfTheListAreErrorsOnlyForNeededNames) {
  UseList();
  list[1] = u"_a  10000"_s;
  list.append({u"_x  10000"_s, u"_y  code"_s, u"_z"_s, u"_b  20G0"_s});
  Expect({u"LISTE.TXT:2 Fehler Adresse „10000“ hat 5 Zeichen statt 4 oder 8 und wird nicht gelesen."_s,
          u"LISTE.TXT:4 Warnung Adresse „10000“ hat 5 Zeichen statt 4 oder 8 und wird nicht gelesen."_s,
          u"LISTE.TXT:5 Warnung Adresse „code“ ist nicht hexadezimal."_s,
          u"LISTE.TXT:6 Warnung Name „_z“ ohne Adresse."_s,
          u"LISTE.TXT:7 Fehler Adresse „20G0“ ist nicht hexadezimal."_s,
          u"LISTE.TXT:7 Warnung „_b“ steht schon in Zeile 3 mit einer anderen Adresse; die letzte gilt."_s,
          u"DEF.TXT:2 Fehler Variable „_a“ steht nicht mit einer Adresse in „LISTE.TXT“."_s});
}

TEST_F(DefinitionCheckTest, ListWithoutHeading) {
  UseList();
  list.removeFirst();
  Expect({u"LISTE.TXT:1 Fehler Die erste Zeile gilt als Überschrift; diese Adresse wird nicht gelesen."_s,
          u"DEF.TXT:2 Fehler Variable „_a“ steht nicht mit einer Adresse in „LISTE.TXT“."_s});
}

TEST_F(DefinitionCheckTest, TheFirstEntryOfAListNeedsAnAddressToo) {
  UseList();
  list[1] = u"_a"_s;
  Expect({u"LISTE.TXT:2 Fehler Name „_a“ ohne Adresse."_s,
          u"DEF.TXT:2 Fehler Variable „_a“ steht nicht mit einer Adresse in „LISTE.TXT“."_s});
}

TEST_F(DefinitionCheckTest, WrappedEntries) {
  const QString longName = u"_EinNameMitMehrAls20Zeichen"_s;
  UseList();
  definitions[1] = Line({{10, longName}});
  const auto withTail = [this, &longName](const QStringList& tail) {
    list = QStringList{u"Name  Adresse"_s, u"_b  2000"_s, longName} + tail;
  };
  withTail({u"          1F00"_s, u"_c  3000"_s});
  Expect({});
  withTail({u"          00001F00"_s});
  Expect({});

  const QString missing =
      u"DEF.TXT:2 Fehler Variable „"_s + longName + u"“ steht nicht mit einer Adresse in „LISTE.TXT“."_s;
  withTail({u"_c  3000"_s});
  Expect(
      {u"LISTE.TXT:3 Fehler Umgebrochener Name „"_s + longName + u"“ ohne Adresse in der nächsten Zeile."_s,
       missing});
  withTail({});
  Expect(
      {u"LISTE.TXT:3 Fehler Die Datei endet nach dem umgebrochenen Namen „"_s + longName + u"“."_s, missing});
  withTail({u"ABC0  3000"_s});
  Expect({u"LISTE.TXT:3 Fehler Als Adresse des umgebrochenen Namens „"_s + longName +
          u"“ wird der Name „ABC0“ der nächsten Zeile gelesen."_s});
}

TEST_F(DefinitionCheckTest, LongNameWithItsAddressInTheSameLineIsNotWrapped) {
  UseList();
  definitions[1] = Line({{10, u"_EinNameMitMehrAls20Zeichen"_s}});
  list[1] = u"_EinNameMitMehrAls20Zeichen  1000"_s;
  Expect({});
}

TEST_F(DefinitionCheckTest, IndexMovesTheListedAddress) {
  UseList();
  definitions[1] = Line({{1, u"Erster"_s}, {9, u"tab[1]"_s}});
  list[1] = u"_a  1FFE"_s;
  Expect(
      {u"DEF.TXT:3 Warnung Die Adressen von „Name“ überschneiden sich mit denen von „Erster“ in Zeile 2."_s});
  definitions[1] = Line({{8, u"char"_s}, {9, u"tab[1]"_s}});
  Expect({});
}

TEST_F(DefinitionCheckTest, Indexes) {
  UseList();
  ExpectForLine({{9, u"tab[x]"_s}}, u"Fehler „tab[x]“ hat keinen gültigen Index."_s);
  ExpectForLine({{9, u"tab[-1]"_s}}, u"Fehler „tab[-1]“ hat keinen gültigen Index."_s);
  ExpectForLine({{9, u"tab]"_s}}, u"Fehler „tab]“ hat keinen gültigen Index."_s);
  ExpectForLine({{9, u"tab[16384]"_s}}, u"Fehler Der Index in „tab[16384]“ ist zu groß."_s);
  ExpectForLine({{9, u"tab[2147483647]"_s}}, u"Fehler Der Index in „tab[2147483647]“ ist zu groß."_s);
  ExpectForLine({{9, u"tab[1]"_s}, {8, u"string4"_s}},
                u"Warnung Der Index in „tab[1]“ bleibt bei Texten unbeachtet."_s);
  ExpectForLine({{9, u"tab[10]"_s}}, {});
}

// --- hostile input ---

TEST_F(DefinitionCheckTest, FindingsAreCapped) {
  for (int i = 0; i < 1500; ++i)
    definitions.append(u"nur  zwei"_s);
  const std::vector<Finding> found = Check();
  ASSERT_EQ(found.size(), 1001U);
  EXPECT_EQ(Described(found).last(),
            u"VF.INI:0 Fehler Mehr als 1000 Befunde; die weiteren werden nicht genannt."_s);
}

TEST_F(DefinitionCheckTest, ExactlyTheMostFindingsNeedNoClosingLine) {
  for (int i = 0; i < 1000; ++i)
    definitions.append(u"nur  zwei"_s);
  EXPECT_EQ(Check().size(), 1000U);
}

TEST_F(DefinitionCheckTest, ClosingLineIsAWarningWhenOnlyWarningsAreLeftOut) {
  UseList();
  for (int i = 0; i < 1500; ++i)
    list.append(u"_x%1"_s.arg(i));
  const std::vector<Finding> found = Check();
  ASSERT_EQ(found.size(), 1001U);
  EXPECT_FALSE(found.back().error);
}

TEST_F(DefinitionCheckTest, QuotedTextsArePrintableAndShort) {
  const QString text = u"a\x01%2%1\u001b[31m"_s + QString(90'000, u'x');
  definitions[1] = Line({{8, text}});
  const std::vector<Finding> found = Check();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_TRUE(found[0].text.startsWith(u"Typ „a?%2%1?[31mxxx"_s)) << found[0].text.toStdString();
  EXPECT_LT(found[0].text.size(), 200);
}

TEST_F(DefinitionCheckTest, VersionsBeyondTheCounterOfTheTable) {
  table = table.first(1);
  for (int i = 0; i < 32766; ++i) {
    const QString number = QString::number(i % 10'000).rightJustified(4, u'0');
    table.append(u"AB%1-%2.%3  -  DEF.TXT  Heizung Luft -  WR"_s.arg(QString::number(i / 10'000),
                                                                     number.first(3), number.last(1)));
  }
  Expect({});
  table.append(u"ABX-000.0  -  DEF.TXT  Heizung Luft -  WR"_s);
  Expect({u"VF.INI:32768 Fehler Mehr als 32766 Versionen."_s});
}

TEST_F(DefinitionCheckTest, AbsurdNumberOfPlants) {
  QStringList plants{u"Heizung"_s, u"Luft"_s};
  for (int i = 100; i < 198; ++i)
    plants.append(u"P%1"_s.arg(i));
  definitions[1] = Line({{11, plants.join(u' ')}});
  table[1] = u"ABC-012.0  -  DEF.TXT  "_s + plants.join(u' ') + u" -  WR"_s;
  Expect({});
  table[1] = u"ABC-012.0  -  DEF.TXT  "_s + plants.join(u' ') + u" X -  WR"_s;
  Expect({u"VF.INI:2 Warnung Mehr als 100 Anlagen."_s});
}

// Every file of the table is noise; the check ends and names something.
TEST_F(DefinitionCheckTest, Noise) {
  UseList();
  quint32 state = 12345;
  for (int round = 0; round < 20; ++round) {
    QByteArray noise;
    for (int i = 0; i < 20'000; ++i) {
      state = state * 1664525U + 1013904223U;
      const char byte = static_cast<char>(state >> 24);
      noise.append(byte == '\0' ? ' ' : byte);
      if (state % 7 == 0) noise.append("  ");
    }
    static_cast<void>(Check());
    files.files[u"ini//DEF.TXT"_s] = {noise, {}};
    files.files[u"ini//LISTE.TXT"_s] = {noise, {}};
    EXPECT_FALSE(CheckDefinitions(files, u"ini"_s, u"VF.INI"_s).empty());
    files.files[u"ini/VF.INI"_s] = {noise, {}};
    EXPECT_FALSE(CheckDefinitions(files, u"ini"_s, u"VF.INI"_s).empty());
  }
}

// --- the shipped example ---

// Files as they are on disk.
class DiskFiles final : public platform::FileSystem {
 public:
  platform::FileContent Read(const QString& path, qint64 /*largest_bytes*/ = 0) override {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {{}, file.errorString()};
    return {file.readAll(), {}};
  }
  QString Overwrite(const QString& /*path*/, const QByteArray& /*beginning*/) override {
    return u"unbenutzt"_s;
  }
  QString Replace(const QString& /*path*/, const QByteArray& /*content*/) override { return u"unbenutzt"_s; }
  platform::FolderContent List(const QString& /*folder*/) override { return {{}, u"unbenutzt"_s}; }
  QString Remove(const QString& /*path*/) override { return u"unbenutzt"_s; }
  platform::OpenedLog OpenLog(const QString& /*path*/) override { return {nullptr, u"unbenutzt"_s}; }
};

class ShippedExampleTest : public testing::Test {
 protected:
  const QString folder = QStringLiteral(KALIVOR_SOURCE_DIR "/examples/");
  DiskFiles files;

  std::vector<VersionRecord> Versions() {
    std::vector<VersionRecord> versions;
    for (const TextItem& item : ReadItems(files, folder + u"VF.INI"_s))
      versions.push_back(ParseVersion(item.text));
    return versions;
  }

  std::vector<ParameterRecord> Parameters(const VersionRecord& version) {
    std::vector<ParameterRecord> parameters;
    for (const TextItem& item : ReadItems(files, folder + version.DefDatei)) {
      parameters.push_back(ParseDefinition(item.text, version.AdrDatei != u"-"));
    }
    return parameters;
  }
};

TEST_F(ShippedExampleTest, HasNoFinding) {
  EXPECT_EQ(Text(Described(CheckDefinitions(files, folder, u"VF.INI"_s))), "");
}

TEST_F(ShippedExampleTest, HasThreeVersionsWithTwoPlantTypesEach) {
  const std::vector<VersionRecord> versions = Versions();
  ASSERT_EQ(versions.size(), 3U);
  EXPECT_EQ(versions[0].Version, u"HZL-012.0"_s);
  EXPECT_EQ(versions[1].Version, u"HZL-013.1"_s);
  EXPECT_EQ(versions[2].Version, u"LFT-020.5"_s);
  EXPECT_EQ(versions[0].Anlagen, u" Heizung Lüftung -"_s);
  EXPECT_EQ(versions[2].Anlagen, u" Lüftung Klima -"_s);
  EXPECT_EQ(std::count_if(versions.begin(), versions.end(),
                          [](const VersionRecord& version) { return version.AdrDatei != u"-"; }),
            1);
}

TEST_F(ShippedExampleTest, HasParametersOfAllTypes) {
  for (const VersionRecord& version : Versions()) {
    SCOPED_TRACE(version.Version.toStdString());
    QSet<QString> types;
    bool evenChar = false;
    bool oddChar = false;
    bool droppedDigits = false;
    bool umlautInName = false;
    bool degree = false;
    bool lines = false;
    int count = 0;
    int plantTypeRecords = 0;
    for (const ParameterRecord& parameter : Parameters(version)) {
      if (parameter.Rubrik == u"NoRubrik") {
        ++plantTypeRecords;
        EXPECT_EQ(parameter.VarAdresse.size(), 4);
        continue;
      }
      ++count;
      const QString type = parameter.Typ.Trimmed();
      types.insert(type);
      if (type == u"char" && !parameter.VarAdresse.isEmpty()) {
        const bool odd = parameter.VarAdresse.toInt(nullptr, 16) % 2 != 0;
        oddChar = oddChar || odd;
        evenChar = evenChar || !odd;
      }
      droppedDigits = droppedDigits || parameter.Zahl2 > 0;
      umlautInName = umlautInName || parameter.Name.contains(u'ü') || parameter.Name.contains(u'ö');
      degree = degree || parameter.Einheit == u"°C"_s;
      lines = lines || parameter.Hilfetext.contains(u'\\');
      // What a controller holds right after its texts were sent equals them only at full length.
      if (type.startsWith(u"str")) {
        EXPECT_EQ(parameter.StandardText.size(), type.mid(6).toInt());
      }
    }
    EXPECT_GE(count, 60);
    EXPECT_LE(count, 150);
    EXPECT_EQ(types, QSet<QString>({u"long"_s, u"int"_s, u"char"_s, u"string10"_s, u"string20"_s}));
    EXPECT_TRUE(droppedDigits && umlautInName && degree && lines);
    const bool ownAddresses = version.AdrDatei == u"-";
    EXPECT_EQ(evenChar && oddChar, ownAddresses);
    EXPECT_EQ(plantTypeRecords, ownAddresses ? 1 : 0);
  }
}

TEST_F(ShippedExampleTest, VersionsShareMostVariables) {
  std::vector<QSet<QString>> variables;
  for (const VersionRecord& version : Versions()) {
    QSet<QString> names;
    for (const ParameterRecord& parameter : Parameters(version))
      names.insert(parameter.Variable);
    variables.push_back(names);
  }
  ASSERT_EQ(variables.size(), 3U);
  EXPECT_GE(QSet<QString>(variables[0]).intersect(variables[1]).size(), variables[0].size() * 9 / 10);
  EXPECT_GE(QSet<QString>(variables[0]).intersect(variables[2]).size(), variables[2].size() / 2);
}

TEST_F(ShippedExampleTest, AddressListIsLongAndHasWrappedNamesAndIndexes) {
  const VersionRecord version = Versions()[1];
  const TextItems list = ReadItems(files, folder + version.AdrDatei);
  const std::vector<TextItem>& items = list.items;
  EXPECT_GE(items.size(), 3000U);
  EXPECT_GE(std::count_if(items.begin(), items.end(),
                          [](const TextItem& item) {
                            return GetField(item.text, 0).size() > 20 && GetField(item.text, 1).isEmpty();
                          }),
            3);
  const std::vector<ParameterRecord> parameters = Parameters(version);
  EXPECT_GE(std::count_if(parameters.begin(), parameters.end(),
                          [](const ParameterRecord& parameter) { return parameter.Offset > 0; }),
            3);
}

TEST_F(ShippedExampleTest, FilesAreWindows1252WithCarriageReturns) {
  for (const QString& name :
       {u"VF.INI"_s, u"HZL120.TXT"_s, u"HZL131.TXT"_s, u"HZL131A.TXT"_s, u"LFT205.TXT"_s}) {
    const QByteArray bytes = files.Read(folder + name).bytes;
    EXPECT_GT(bytes.count('\n'), 1) << name.toStdString();
    EXPECT_EQ(bytes.count('\n'), bytes.count("\r\n")) << name.toStdString();
  }
  EXPECT_TRUE(files.Read(folder + u"VF.INI"_s)
                  .bytes.contains("L\xFC"
                                  "ftung"));
  EXPECT_TRUE(files.Read(folder + u"HZL120.TXT"_s)
                  .bytes.contains("\xB0"
                                  "C"));
}

}  // namespace
}  // namespace kalivor
