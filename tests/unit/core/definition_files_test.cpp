// Reading the version table and definition files: what they fill, and what the user hears of errors.
#include "core/DefinitionFiles.h"
#include "core/Refresh.h"

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

using Kind = RuntimeError::Kind;

const QString kTableAdvice = u"\r\nUeberprüfen Sie die Einstellungen in Optionen -> Dateien\r\n"_s;

/// A definition line of the group "G" with the given type, column 9 and variable name.
QString Line(const QString& type = u"int"_s, const QString& address = u"1F00"_s,
             const QString& variable = u"V"_s, const QString& group = u"G"_s) {
  return group + u"  N  0  9  5  -  0  0  "_s + type + u"  "_s + address + u"  "_s + variable +
         u"  Luft  -"_s;
}

/// A version is selected; no change handlers are connected.
struct Selected : Installation {
  explicit Selected(const QString& addressFile = u"-"_s) {
    module.Inipath = Native(u"ini/"_s);
    module.Versionen.resize(3);
    module.Versionen[1] = {u"AB1-123.4"_s, addressFile, u"A.TXT"_s, u" "_s, u"WR"_s};
    module.VersionList.Add(u"AB1-123.4"_s);
    module.VersionList.Select(0);
  }
};

QStringList Entries(const SelectionList& list) {
  QStringList entries;
  for (int i = 0; i < list.Count(); ++i)
    entries.append(list.Text(i));
  return entries;
}

// --- paths ---

TEST(Paths, TheDefinitionPathHoldsADoubledSeparator) {
  const QString own(QDir::separator());
  const struct {
    QString folder, stored, table, definitions;
  } cases[] = {
      {u"C:\\Daten"_s, u"C:\\Daten\\"_s, u"C:\\Daten\\VF.INI"_s, u"C:\\Daten\\\\A.TXT"_s},
      {u"C:\\Daten\\"_s, u"C:\\Daten\\"_s, u"C:\\Daten\\VF.INI"_s, u"C:\\Daten\\\\A.TXT"_s},
      {u"/opt/d"_s, u"/opt/d"_s + own, u"/opt/d"_s + own + u"VF.INI"_s, u"/opt/d"_s + own + own + u"A.TXT"_s},
      {u"C:/Daten\\"_s, u"C:/Daten\\"_s, u"C:/Daten\\VF.INI"_s, u"C:/Daten\\"_s + own + u"A.TXT"_s},
  };
  for (const auto& example : cases) {
    Installation site;
    site.module.Inipath = example.folder;
    EXPECT_EQ(VersionTablePath(site.module), example.table);
    ReadVersions(site.core);
    EXPECT_EQ(site.module.Inipath, example.stored) << "the setting itself gets the separator";
    EXPECT_EQ(site.files.reads, QStringList{FileName(example.table).text});
    EXPECT_EQ(DefinitionPath(site.module, u"A.TXT"_s), example.definitions);
    EXPECT_EQ(TakeBoxes(site.box).size(), 1);
  }
}

// --- the version table ---

TEST(ReadVersionTable, FillsTheTableAndTheListAndSelectsTheFirst) {
  Installation site;
  site.SetVersions({u"V1  -  A.TXT  Luft  WR"_s, u"V2  B.ADR  B.TXT  Luft Wasser  S"_s});
  ReadVersions(site.core);
  ASSERT_EQ(site.module.Versionen.size(), 4U);
  EXPECT_EQ(site.module.Versionen[0], VersionRecord());
  EXPECT_EQ(site.module.Versionen[1], (VersionRecord{u"V1"_s, u"-"_s, u"A.TXT"_s, u" Luft"_s, u"WR"_s}));
  EXPECT_EQ(site.module.Versionen[2],
            (VersionRecord{u"V2"_s, u"B.ADR"_s, u"B.TXT"_s, u" Luft Wasser"_s, u"S "_s}));
  EXPECT_EQ(site.module.Versionen[3], VersionRecord());
  EXPECT_EQ(site.module.VersionCount, 3);
  EXPECT_EQ(Entries(site.module.VersionList), (QStringList{u"V1"_s, u"V2"_s}));
  EXPECT_EQ(site.module.VersionList.Position(), 0);
}

TEST(ReadVersionTable, TheHandlerOfTheSelectionFindsTheWholeTable) {
  Installation site;
  site.SetVersions({u"V1  -  A  L  WR"_s, u"V2  -  B  L  WR"_s});
  int runs = 0;
  site.module.VersionList.OnChange = [&] {
    ++runs;
    EXPECT_EQ(site.module.VersionList.Count(), 2);
    EXPECT_EQ(site.module.VersionCount, 3);
  };
  ReadVersions(site.core);
  EXPECT_EQ(runs, 1);
}

TEST(ReadVersionTable, BlankLinesMakeNoVersions) {
  Installation site;
  site.SetVersions({u""_s, u"V1  -  A  L  WR"_s, u"   "_s, u""_s});
  ReadVersions(site.core);
  EXPECT_EQ(Entries(site.module.VersionList), QStringList{u"V1"_s});
  EXPECT_EQ(site.module.Versionen.size(), 3U);
}

TEST(ReadVersionTable, AnUnreadableTableIsReportedAndLeavesTheListEmpty) {
  Installation site;
  site.files.AddFailure(u"ini/VF.INI"_s, u"Zugriff verweigert."_s);
  ReadVersions(site.core);
  const auto boxes = site.box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text,
            Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\nZugriff verweigert."_s) + kTableAdvice);
  EXPECT_EQ(boxes[0].title, QString());
  EXPECT_EQ(site.module.VersionList.Count(), 0);
  EXPECT_EQ(site.module.VersionCount, 1);
}

TEST(ReadVersionTable, ATableWithoutVersionsIsReported) {
  Installation site;
  site.SetVersions({});
  ReadVersions(site.core);
  EXPECT_EQ(
      TakeBoxes(site.box),
      QStringList{Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\nDie Auswahl liegt außerhalb der Liste."_s) +
                  kTableAdvice});
  EXPECT_EQ(site.module.VersionList.Count(), 0);
}

TEST(ReadVersionTable, AnEmptyTableIsReported) {
  Installation site;
  site.files.AddText(u"ini/VF.INI"_s, QString());
  ReadVersions(site.core);
  EXPECT_EQ(
      TakeBoxes(site.box),
      QStringList{Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\nDie Datei ist leer."_s) + kTableAdvice});
}

TEST(ReadVersionTable, ATableThatTheCounterCannotHoldIsReported) {
  Installation site;
  site.SetVersions(QStringList(32767, u"V  -  A  L  WR"_s));
  ReadVersions(site.core);
  EXPECT_EQ(TakeBoxes(site.box),
            QStringList{
                Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\nZahl außerhalb des zulässigen Bereichs."_s) +
                kTableAdvice});
}

TEST(ReadVersionTable, AnErrorOfTheRebuildKeepsTheEntriesAndShowsTheTablesPath) {
  Installation site;
  site.SetVersions({u"V1  -  FEHLT.TXT  L  WR"_s});
  site.module.VersionList.OnChange = [&] { ReadSelectedDefinitions(site.core); };
  ReadVersions(site.core);
  EXPECT_EQ(
      TakeBoxes(site.box),
      QStringList{Native(u"Fehler beim Lesen von\r\nini/VF.INI\r\nDatei nicht gefunden.: ini//FEHLT.TXT"_s) +
                  kTableAdvice});
  EXPECT_EQ(Entries(site.module.VersionList), QStringList{u"V1"_s});
}

// --- definition files ---

TEST(ReadDefinitions, FillsTheTableInFileOrder) {
  Selected site;
  site.SetDefinitions(u"A.TXT"_s, {Line(u"int"_s, u"1000"_s, u"V1"_s), Line(u"long"_s, u"2000"_s, u"V2"_s)});
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.module.ParCount, 3);
  EXPECT_EQ(site.module.Par[1], ParseDefinition(Line(u"int"_s, u"1000"_s, u"V1"_s), false));
  EXPECT_EQ(site.module.Par[2], ParseDefinition(Line(u"long"_s, u"2000"_s, u"V2"_s), false));
  EXPECT_EQ(site.files.reads, QStringList{u"ini//A.TXT"_s});
}

TEST(ReadDefinitions, UsesTheRowOfTheSelectedVersion) {
  Selected site;
  site.module.Versionen[2] = {u"V2"_s, u"B.ADR"_s, u"B.TXT"_s, u" "_s, u"WR"_s};
  site.module.VersionList.Add(u"V2"_s);
  site.module.VersionList.Select(1);
  site.SetDefinitions(u"B.TXT"_s, {Line(u"int"_s, u"abc[3]"_s)});
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.module.Par[1].Offset, 6) << "it has an address list";
  EXPECT_EQ(site.module.Par[1].VarAdresse, QString());
}

TEST(ReadDefinitions, ThePlantTypeGoesToElement0) {
  Selected site;
  site.SetDefinitions(u"A.TXT"_s, {Line(), Line(u"int"_s, u"2000"_s, u"ANL1"_s, u"NoRubrik"_s),
                                   Line(u"int"_s, u"2002"_s, u"ANL2"_s, u"NoRubrik"_s), Line()});
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.module.ParCount, 3);
  EXPECT_EQ(site.module.Par[0].Variable, u"ANL2"_s) << "the second one overwrites the first";
  EXPECT_EQ(site.module.Par[0].VarAdresse, u"2002"_s);
}

TEST(ReadDefinitions, WithoutAPlantTypeElement0LosesItsAddress) {
  Selected site;
  site.module.Par[0].Variable = u"ANL"_s;
  site.module.Par[0].VarAdresse = u"2000"_s;
  site.SetDefinitions(u"A.TXT"_s, {Line()});
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.module.Par[0].Variable, QString());
  EXPECT_EQ(site.module.Par[0].VarAdresse, QString());
}

TEST(ReadDefinitions, ValuesStayWithTheirSlot) {
  Selected site;
  for (int i = 0; i <= 2; ++i) {
    site.module.Par[i].Wert = 100 + i;
    site.module.Par[i].WertText = QString::number(i);
  }
  site.SetDefinitions(u"A.TXT"_s, {Line(), Line(u"int"_s, u"2000"_s, u"ANL"_s, u"NoRubrik"_s)});
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.module.Par[1].Wert, 101);
  EXPECT_EQ(site.module.Par[1].WertText, u"1"_s);
  // The plant type takes those of the slot that was next.
  EXPECT_EQ(site.module.Par[0].Wert, 102);
  EXPECT_EQ(site.module.Par[0].WertText, u"2"_s);
}

TEST(ReadDefinitions, HoldsExactly2000Parameters) {
  Selected site;
  QStringList lines(kLastParameter, Line());
  lines.append(Line(u"int"_s, u"2000"_s, u"ANL"_s, u"NoRubrik"_s));
  site.module.Par[0].Wert = 7;
  site.module.Par[kLastParameter].Wert = 8;
  site.SetDefinitions(u"A.TXT"_s, lines);
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.module.ParCount, 2001);
  EXPECT_EQ(site.module.Par[kLastParameter].Wert, 8) << "the last slot keeps its value as all others do";
  EXPECT_EQ(site.module.Par[0].Variable, u"ANL"_s);
  EXPECT_EQ(site.module.Par[0].Wert, 0) << "there is no slot behind the last to take a value from";

  lines.append(Line());
  site.SetDefinitions(u"A.TXT"_s, lines);
  EXPECT_EQ(ThrownKind([&] { ReadSelectedDefinitions(site.core); }), Kind::Bounds);
}

TEST(ReadDefinitions, AnUnreadableFilePassesWithItsPath) {
  Selected site;
  site.files.AddFailure(u"ini//A.TXT"_s, u"Zugriff verweigert."_s);
  try {
    ReadSelectedDefinitions(site.core);
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.GetKind(), Kind::FileError);
    EXPECT_EQ(error.Description(), Native(u"Zugriff verweigert.: ini//A.TXT"_s));
  }
}

TEST(ReadDefinitions, AFaultyLineKeepsWhatWasReadBefore) {
  Selected site;
  site.SetDefinitions(u"A.TXT"_s, {Line(), u"G  N  4294967295  9  5"_s, Line()});
  EXPECT_EQ(ThrownKind([&] { ReadSelectedDefinitions(site.core); }), Kind::Overflow);
  EXPECT_EQ(site.module.ParCount, 2);
}

TEST(ReadDefinitions, AFaultNamesItsFileAndLine) {
  struct {
    QStringList lines;
    QString description;
  } const cases[] = {
      {{Line(), u"G  N  0  4294967295  5"_s},
       Native(u"Zahl außerhalb des zulässigen Bereichs.: ini//A.TXT, Zeile 3"_s)},
      // Blank lines count, and both items of a line torn by a comma stand in it.
      {{u""_s, Line() + u",G  N  0  9  5  -  40000"_s},
       Native(u"Zahl außerhalb des zulässigen Bereichs.: ini//A.TXT, Zeile 3"_s)},
      {QStringList(kLastParameter + 1, Line()),
       Native(u"Index außerhalb des zulässigen Bereichs.: ini//A.TXT, Zeile 2002"_s)},
  };
  for (const auto& example : cases) {
    Selected site;
    site.SetDefinitions(u"A.TXT"_s, example.lines);
    EXPECT_EQ(ThrownText([&] { ReadSelectedDefinitions(site.core); }), example.description);
  }
}

TEST(ReadDefinitions, ACommaMakesTwoRecords) {
  Selected site;
  site.SetDefinitions(u"A.TXT"_s, {u"G  Eins,G  Zwei"_s});
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.module.ParCount, 3);
  EXPECT_EQ(site.module.Par[1].Name, u"Eins"_s);
  EXPECT_EQ(site.module.Par[2].Name, u"Zwei"_s);
}

}  // namespace
}  // namespace kalivor::test
