// Steps: what becomes one, what it is called, and that taking it back gives back what was there.
#include "core/ChangeLog.h"

#include "commands/EditorCommands.h"
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"
#include "core/ValueFiles.h"
#include "unit/core/Recording.h"

namespace kalivor::test {
namespace {

void Edit(Recording& site, int index, qint32 number) {
  site.Do([&] { site.module.SetNumber(index, number, ValueSource::Edited); });
}

void Save(Recording& site) {
  site.module.Dateiname = u"a.qpf"_s;
  ASSERT_TRUE(WriteValueFile(site.core));
}

// Does it, takes it back and does it again, looking at everything each time.
template <typename Action>
void ExpectExact(Recording& site, const QString& name, Action&& action) {
  const std::unique_ptr<Module1> before = site.Copy();
  Refresh(site.core, 2);
  const QStringList nodesBefore = Nodes(site.main.tree);
  const bool offeredBefore = site.main.plantSelectorVisible;
  const std::size_t steps = site.steps.size();
  site.Do(action);
  ASSERT_EQ(site.steps.size(), steps + 1) << name.toStdString();
  EXPECT_EQ(site.steps.back().name, name);
  const std::unique_ptr<Module1> after = site.Copy();
  // A reading that failed has left the tree alone.
  Refresh(site.core, 2);
  const QStringList nodesAfter = Nodes(site.main.tree);
  const bool offeredAfter = site.main.plantSelectorVisible;
  EXPECT_NE(TableDifference(*before, *after), QString());

  for (int round = 0; round < 2; ++round) {
    site.Undo();
    EXPECT_EQ(TableDifference(*before, site.module), QString());
    EXPECT_EQ(MarkDifference(*before, site.module), QString());
    EXPECT_EQ(Nodes(site.main.tree), nodesBefore);
    EXPECT_EQ(site.main.plantSelectorVisible, offeredBefore);
    site.Redo();
    EXPECT_EQ(TableDifference(*after, site.module), QString());
    EXPECT_EQ(MarkDifference(*after, site.module), QString());
    EXPECT_EQ(Nodes(site.main.tree), nodesAfter);
    EXPECT_EQ(site.main.plantSelectorVisible, offeredAfter);
  }
  EXPECT_TRUE(site.Rests());
}

TEST(ChangeLog, StartingIsNoStepAndForgetsAll) {
  Recording site;
  EXPECT_EQ(site.Names(), QStringList());
  EXPECT_EQ(site.forgotten, 1);
  EXPECT_TRUE(site.log.Rests());
}

TEST(ChangeLog, AnEdit) {
  Recording site;
  ExpectExact(site, u"Ändern: Drehzahl"_s, [&] {
    NumberEdit edit = NumberEditOf(site.module, 1, site.main.tree.Find(ParameterKey(1)));
    edit.TextWert = u"20"_s;
    EXPECT_TRUE(DialogEdit_OK(site.core, edit));
  });
  ExpectExact(site, u"Ändern: Kennwort"_s, [&] {
    TextEdit edit = TextEditOf(site.module, 4);
    edit.TextWert = u"&"_s;
    DialogEditString_OK(site.core, edit);
  });
}

TEST(ChangeLog, SeveralEditsAtOnce) {
  Recording site;
  ExpectExact(site, u"Ändern, 2 Werte"_s, [&] {
    site.module.SetNumber(1, 7, ValueSource::Edited);
    site.module.SetNumber(2, 8, ValueSource::Edited);
    Refresh(site.core, 2);
  });
}

TEST(ChangeLog, AReceive) {
  Recording site;
  ExpectExact(site, u"Empfangen, 4 Werte"_s, [&] { CommandEmpfangen_Click(site.core); });
  site.Store(0x1F00, {7});
  ExpectExact(site, u"Empfangen, 1 Wert"_s, [&] { CommandEmpfangen_Click(site.core); });
}

TEST(ChangeLog, AnAbortedReceiveKeepsWhatHadArrived) {
  Recording site;
  site.report.onDot = [&] { site.module.Abbruch = kTrue; };
  ExpectExact(site, u"Empfangen, 1 Wert"_s, [&] { CommandEmpfangen_Click(site.core); });
}

TEST(ChangeLog, AFailingReceive) {
  Recording site;
  site.Silence(site.faults.Exchanges() + 4, 1000);
  // The first number, and the text, of which nothing could be read.
  ExpectExact(site, u"Empfangen, 2 Werte"_s, [&] { CommandEmpfangen_Click(site.core); });
}

// The plant type of the controller has the parameters read anew first.
TEST(ChangeLog, AReceiveThatSwitchesThePlantType) {
  Recording site;
  Edit(site, 3, 44);
  site.Store(0x2000, {1});
  ExpectExact(site, u"Empfangen, 4 Werte"_s, [&] { CommandEmpfangen_Click(site.core); });
}

TEST(ChangeLog, AReceiveThatSwitchesTheVersion) {
  Recording site(u"AB1-124.0"_s);
  site.module.ParNode[3] = kFalse;
  site.module.NodeState[2] = kTrue;
  ExpectExact(site, u"Empfangen, 1 Wert"_s, [&] { CommandEmpfangen_Click(site.core); });
}

// A parameter of another version at the same place is another one, whatever its value.
TEST(ChangeLog, WhatAnotherVersionReceivedCountsAlsoWhereTheNumbersAreTheSame) {
  Recording site(u"AB1-124.0"_s);
  Edit(site, 1, 0x04D2);
  ExpectExact(site, u"Empfangen, 1 Wert"_s, [&] { CommandEmpfangen_Click(site.core); });
}

TEST(ChangeLog, ALoad) {
  Recording site;
  Save(site);
  Edit(site, 1, 7);
  Edit(site, 2, 8);
  // The file fills all texts with blanks, which nobody sees and undo takes away again.
  ExpectExact(site, u"Laden, 2 Werte"_s, [&] { EXPECT_TRUE(ReadValueFile(site.core)); });
}

TEST(ChangeLog, ALoadOfWhatIsThereIsNoStep) {
  Recording site;
  Save(site);
  site.Do([&] { EXPECT_TRUE(ReadValueFile(site.core)); });
  EXPECT_EQ(site.module.Par[4].WertText.size(), 20);
  EXPECT_EQ(site.Names(), QStringList());
  EXPECT_FALSE(site.log.Changed(4));
}

TEST(ChangeLog, ALoadThatChangesTypes) {
  Recording site;
  Save(site);
  EXPECT_TRUE(ReadValueFile(site.core));
  site.module.Par[1].Typ = u"long"_s;
  const std::size_t steps = site.steps.size();
  site.Do([&] { EXPECT_TRUE(ReadValueFile(site.core)); });
  ASSERT_EQ(site.steps.size(), steps + 1);
  EXPECT_EQ(site.steps.back().name, u"Laden, 1 Wert"_s);
  EXPECT_EQ(site.module.Par[1].Typ, u"int"_s);
  site.Undo();
  EXPECT_EQ(site.module.Par[1].Typ, u"long"_s);
  site.Redo();
  EXPECT_EQ(site.module.Par[1].Typ, u"int"_s);
}

TEST(ChangeLog, ALoadThatSwitchesTheVersion) {
  Recording site;
  Save(site);
  site.Do([&] { site.module.VersionList.Select(1); });
  site.choice.answers = {2};
  ExpectExact(site, u"Laden, 4 Werte"_s, [&] { EXPECT_TRUE(ReadValueFile(site.core)); });
}

TEST(ChangeLog, AFileThatCannotBeReadIsNoStep) {
  Recording site;
  site.module.Dateiname = u"missing.qpf"_s;
  site.Do([&] { EXPECT_FALSE(ReadValueFile(site.core)); });
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
  EXPECT_EQ(site.Names(), QStringList());
}

TEST(ChangeLog, StandardValues) {
  Recording site;
  Edit(site, 1, 7);
  Edit(site, 2, 8);
  ExpectExact(site, u"Standardwerte, 2 Werte"_s, [&] { CommandStandard_Click(site.core); });
}

TEST(ChangeLog, OtherReasons) {
  Recording site;
  ExpectExact(site, u"Übernehmen, 1 Wert"_s, [&] {
    site.module.SetNumber(1, 3, ValueSource::TakenOver);
    Refresh(site.core, 2);
  });
  ExpectExact(site, u"Wiederherstellen, 1 Wert"_s, [&] {
    site.module.SetNumber(1, 4, ValueSource::Recovered);
    Refresh(site.core, 2);
  });
}

TEST(ChangeLog, AVersionSwitch) {
  Recording site;
  Edit(site, 1, 7);
  site.module.ParNode[2] = kFalse;
  site.module.NodeState[1] = kTrue;
  site.module.PlantTypeList.Select(1);
  site.steps.clear();
  ExpectExact(site, u"Reglerversion AB1-124.0"_s, [&] { site.module.VersionList.Select(1); });
  EXPECT_FALSE(site.main.plantSelectorVisible);
  ExpectExact(site, u"Reglerversion AB1-123.4"_s, [&] { site.module.VersionList.Select(0); });
}

TEST(ChangeLog, APlantTypeSwitch) {
  Recording site;
  Edit(site, 1, 7);
  site.module.ParNode[2] = kFalse;
  ExpectExact(site, u"Anlageart Luft"_s, [&] { site.module.PlantTypeList.Select(1); });
  ExpectExact(site, u"Anlageart (leer)"_s, [&] { site.module.PlantTypeList.Select(0); });
}

// Slots behind the last parameter hold what an earlier version left there; it comes back as well.
TEST(ChangeLog, SlotsBehindTheLastParameterComeBack) {
  Recording site;
  site.Do([&] { site.module.VersionList.Select(1); });
  ASSERT_EQ(site.module.ParCount, 2);
  site.module.SetNumber(4, 99, ValueSource::Edited);
  ExpectExact(site, u"Reglerversion AB1-123.4"_s, [&] { site.module.VersionList.Select(0); });
}

TEST(ChangeLog, DefinitionsThatFailHalfWay) {
  Recording site;
  Edit(site, 1, 7);
  site.SetDefinitions(u"B.TXT"_s, {u"X  Neu  0  9  1  -  0  0  int  1000  _n  -  -"_s,
                                   u"X  Zu groß  0  99999999999  1  -  0  0  int  1000  _g  -  -"_s});
  ExpectExact(site, u"Reglerversion AB1-124.0"_s, [&] { site.module.VersionList.Select(1); });
  site.files.files.remove(u"ini//B.TXT"_s);
  site.Undo();
  ExpectExact(site, u"Reglerversion AB1-124.0"_s, [&] { site.module.VersionList.Select(1); });
}

TEST(ChangeLog, AnAddressListThatFails) {
  Recording site;
  site.SetDefinitions(u"B.ADR"_s, {u"_abc  1F00"_s, u"_a_name_of_more_than_20_characters"_s});
  ExpectExact(site, u"Reglerversion AB1-124.0"_s, [&] { site.module.VersionList.Select(1); });
  EXPECT_GE(TakeBoxes(site.box).size(), 1);
}

TEST(ChangeLog, ReadingTheSameAgainResetsTheMarks) {
  Recording site;
  site.Do([&] { Refresh(site.core, 3); });
  EXPECT_EQ(site.Names(), QStringList()) << "nothing differs";
  site.module.ParNode[1] = kFalse;
  site.Do([&] { Refresh(site.core, 3); });
  EXPECT_EQ(site.Names(), QStringList{u"Definitionen gelesen"_s});
  EXPECT_EQ(site.module.ParNode[1], kTrue);
  site.Undo();
  EXPECT_EQ(site.module.ParNode[1], kFalse);
}

// A step of values leaves marks alone, one of definitions gives back those that they reset.
TEST(ChangeLog, MarksBelongToDefinitionsOnly) {
  Recording site;
  Edit(site, 1, 7);
  site.module.ParNode[1] = kFalse;
  site.module.NodeState[1] = kTrue;
  site.Undo();
  EXPECT_EQ(site.module.ParNode[1], kFalse);
  EXPECT_EQ(site.module.NodeState[1], kTrue);
  site.Do([&] { site.module.PlantTypeList.Select(1); });
  EXPECT_EQ(site.module.ParNode[1], kTrue);
  site.Undo();
  EXPECT_EQ(site.module.ParNode[1], kFalse);
  EXPECT_EQ(site.module.NodeState[1], kTrue);
}

TEST(ChangeLog, TakingBackRunsNoHandler) {
  Recording site;
  site.Do([&] { site.module.VersionList.Select(1); });
  site.files.reads.clear();
  int handled = 0;
  site.module.VersionList.OnChange = [&] { ++handled; };
  site.module.PlantTypeList.OnChange = [&] { ++handled; };
  site.Undo();
  site.Redo();
  EXPECT_EQ(handled, 0);
  EXPECT_EQ(site.files.reads, QStringList());
}

TEST(ChangeLog, NothingChangedIsNoStep) {
  Recording site;
  site.Do([] {});
  Edit(site, 1, 1500);
  site.Do([&] {
    site.module.SetNumber(1, 7, ValueSource::Edited);
    site.module.SetNumber(1, 1500, ValueSource::Edited);
  });
  site.Do([&] { CommandVergleichen_Click(site.core); });
  site.Do([&] {
    site.module.PlantTypeList.Select(1);
    site.module.PlantTypeList.Select(0);
  });
  EXPECT_EQ(site.Names(), QStringList());
}

TEST(ChangeLog, TheOutermostPairCounts) {
  Recording site;
  site.Do([&] {
    Edit(site, 1, 7);
    EXPECT_EQ(site.Names(), QStringList());
    EXPECT_FALSE(site.log.Rests());
    Edit(site, 2, 8);
  });
  EXPECT_EQ(site.Names(), QStringList{u"Ändern, 2 Werte"_s});
  EXPECT_TRUE(site.log.Rests());
}

TEST(ChangeLog, AChangeOutsideIsAStepOfItsOwn) {
  Recording site;
  site.module.SetNumber(1, 7, ValueSource::Edited);
  site.module.SetNumber(1, 7, ValueSource::Edited);
  site.module.SetNumber(2, 8, ValueSource::Edited);
  EXPECT_EQ(site.Names(), (QStringList{u"Ändern: Drehzahl"_s, u"Ändern: Laufzeit"_s}));
  site.Undo();
  site.Undo();
  EXPECT_EQ(site.module.Par[1].Wert, 1500);
}

TEST(ChangeLog, DefinitionsReadOutsideForgetAll) {
  Recording site;
  Edit(site, 1, 7);
  Refresh(site.core, 3);
  EXPECT_EQ(site.forgotten, 2);
  EXPECT_EQ(site.Names(), QStringList());
}

TEST(ChangeLog, ReadingEverythingAnewForgetsAll) {
  Recording site;
  Edit(site, 1, 7);
  site.Do([&] {
    site.module.SetNumber(1, 8, ValueSource::Edited);
    Refresh(site.core, 5);
    EXPECT_EQ(site.forgotten, 1) << "at the end";
  });
  EXPECT_EQ(site.forgotten, 2);
  EXPECT_EQ(site.Names(), QStringList());
  EXPECT_TRUE(site.log.Rests());
  ExpectExact(site, u"Reglerversion AB1-124.0"_s, [&] { site.module.VersionList.Select(1); });
}

TEST(ChangeLog, ListensNoMoreWhenItIsGone) {
  Recording site;
  { const ChangeLog other(site.module); }
  EXPECT_FALSE(site.module.OnValue.Listens());
  EXPECT_FALSE(site.module.OnDefinitions.Listens());
}

TEST(ChangeLog, ChangedMeansOtherThanWhatWasTakenLast) {
  Recording site;
  EXPECT_FALSE(site.log.Changed(1)) << "as the definitions say";
  site.Do([&] { CommandEmpfangen_Click(site.core); });
  EXPECT_FALSE(site.log.Changed(1));
  Edit(site, 1, 7);
  EXPECT_TRUE(site.log.Changed(1));
  Edit(site, 1, 1234);
  EXPECT_FALSE(site.log.Changed(1)) << "the received value again";
  Edit(site, 1, 7);
  site.Store(0x1F00, {7});
  site.Do([&] { CommandEmpfangen_Click(site.core); });
  EXPECT_FALSE(site.log.Changed(1)) << "what was typed is now what was received";
  site.Undo();
  EXPECT_EQ(site.module.Par[1].Wert, 1234) << "the receive changed nothing, so this was the edit";
  EXPECT_TRUE(site.log.Changed(1));
  site.Do([&] { CommandStandard_Click(site.core); });
  EXPECT_TRUE(site.log.Changed(1)) << "nobody sent that";
  site.Do([&] { site.module.PlantTypeList.Select(1); });
  EXPECT_FALSE(site.log.Changed(1)) << "read with the definitions";
  site.Undo();
  EXPECT_TRUE(site.log.Changed(1)) << "as before them";
  site.Do([&] { CommandEmpfangen_Click(site.core); });
  for (const ValueSource source : {ValueSource::TakenOver, ValueSource::Recovered}) {
    site.module.SetNumber(1, 8, source);
    EXPECT_TRUE(site.log.Changed(1)) << "neither loaded nor received";
    site.module.SetNumber(1, 7, source);
    EXPECT_FALSE(site.log.Changed(1));
  }
  site.Do([&] { site.module.SetText(4, u"WXYZ  "_s, ValueSource::Edited); });
  EXPECT_FALSE(site.log.Changed(4)) << "blanks at the end are none of the value";
}

TEST(ChangeLog, UnsavedIsWhatNoValueFileHolds) {
  Recording site;
  const auto unsaved = [&] {
    QList<int> indices;
    for (int i = 1; i < site.module.ParCount; ++i) {
      if (site.log.Unsaved(i)) indices.append(i);
    }
    return indices;
  };
  EXPECT_EQ(unsaved(), QList<int>()) << "as the definitions say";
  Edit(site, 1, 7);
  EXPECT_EQ(unsaved(), QList<int>{1});
  site.Undo();
  EXPECT_EQ(unsaved(), QList<int>());
  site.Do([&] { CommandEmpfangen_Click(site.core); });
  EXPECT_EQ(unsaved(), (QList<int>{1, 2, 3, 4})) << "received is not saved";
  site.files.writeError = u"Kein Platz."_s;
  EXPECT_FALSE(WriteValueFile(site.core));
  EXPECT_EQ(site.box.Take().size(), 1);
  EXPECT_EQ(unsaved(), (QList<int>{1, 2, 3, 4}));
  site.files.writeError.clear();
  Save(site);
  EXPECT_EQ(unsaved(), QList<int>());
  site.Do([&] { CommandStandard_Click(site.core); });
  EXPECT_EQ(unsaved(), (QList<int>{1, 2, 3, 4})) << "the file holds other values";
  site.Do([&] { EXPECT_TRUE(ReadValueFile(site.core)); });
  EXPECT_EQ(unsaved(), QList<int>()) << "loading pads texts";
  Edit(site, 1, 7);
  site.module.Par[2].Typ = u"int"_s;
  EXPECT_EQ(unsaved(), (QList<int>{1, 2})) << "a file holds types as well";
  site.log.TakeAsSaved(1);
  EXPECT_EQ(unsaved(), QList<int>{2});
  site.Do([&] { site.module.VersionList.Select(1); });
  EXPECT_EQ(unsaved(), QList<int>()) << "read with the definitions";
  site.Undo();
  EXPECT_EQ(unsaved(), QList<int>{2}) << "as before them";
}

TEST(ChangeLog, NumbersOutsideCountOnceSomethingWasTransferred) {
  Recording site;
  Edit(site, 1, 30001);
  EXPECT_EQ(site.log.Outside(), 0) << "nothing was transferred";
  site.module.ParNode[1] = kFalse;
  site.Store(0x1F06, {0x115B});
  site.Do([&] { CommandEmpfangen_Click(site.core); });
  EXPECT_EQ(site.module.Par[3].Wert, 91);
  EXPECT_EQ(site.log.Outside(), 2);
  Edit(site, 1, 30000);
  EXPECT_EQ(site.log.Outside(), 1);
  Edit(site, 3, -1);
  EXPECT_EQ(site.log.Outside(), 1);
  Edit(site, 3, 0);
  EXPECT_EQ(site.log.Outside(), 0) << "limits belong to the range";
  Edit(site, 4, 5);
  EXPECT_EQ(site.log.Outside(), 0) << "a text has no range";
  Edit(site, 1, 30001);
  site.Do([&] { Refresh(site.core, 5); });
  Edit(site, 1, 30001);
  EXPECT_EQ(site.log.Outside(), 0) << "everything begins anew";
}

TEST(ChangeLog, TheRevisionTellsThatValuesMayHaveChanged) {
  Recording site;
  int revision = site.log.Revision();
  const auto changed = [&] { return std::exchange(revision, site.log.Revision()) != revision; };
  site.Do([] {});
  EXPECT_FALSE(changed());
  Edit(site, 1, 7);
  EXPECT_TRUE(changed());
  site.Undo();
  EXPECT_TRUE(changed());
  site.Do([&] { site.module.VersionList.Select(1); });
  EXPECT_TRUE(changed());
  site.Undo();
  EXPECT_TRUE(changed());
  site.Redo();
  EXPECT_TRUE(changed());
}

TEST(ChangeLog, StepsKnowTheirSize) {
  Recording site;
  Edit(site, 1, 7);
  const qsizetype small = site.steps.back().Size_bytes();
  EXPECT_GT(small, 100);
  EXPECT_LT(small, 1000);
  site.Do([&] { site.module.SetText(4, QString(100'000, u'x'), ValueSource::Edited); });
  EXPECT_GT(site.steps.back().Size_bytes(), 200'000);
  EXPECT_LT(site.steps.back().Size_bytes(), 202'000);
  site.Do([&] { site.module.PlantTypeList.Select(1); });
  EXPECT_GT(site.steps.back().Size_bytes(), qsizetype{sizeof(ParameterTable)} + 200'000)
      << "the whole table, with its texts";
}

}  // namespace
}  // namespace kalivor::test
