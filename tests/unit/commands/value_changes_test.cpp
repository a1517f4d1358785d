// Whoever listens to the parameter table hears of every changed value, and why it changed.
#include "commands/EditorCommands.h"
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"
#include "core/ValueFiles.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

struct Listening : Installation {
  std::vector<ValueChange> changes;

  Listening() {
    StartWithFiles();
    module.OnValue = [this](const ValueChange& change) {
      if (change.Differs()) changes.push_back(change);
    };
  }

  /// The changes since the last look: "index number text", all for the one reason.
  QStringList Take(ValueSource source) {
    QStringList texts;
    for (const ValueChange& change : changes) {
      EXPECT_EQ(change.source, source) << change.index;
      EXPECT_EQ(change.after,
                (ParameterValue{module.Par[change.index].Wert, module.Par[change.index].WertText}));
      texts.append(u"%1 %2 %3"_s.arg(change.index).arg(change.after.number).arg(change.after.text).trimmed());
    }
    changes.clear();
    return texts;
  }
};

TEST(ValueChanges, Received) {
  Listening site;
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.changes.at(0).before.number, 1500);
  EXPECT_EQ(site.Take(ValueSource::Received),
            (QStringList{u"1 1234"_s, u"2 65538"_s, u"3 34"_s, u"4 0 WXYZ"_s}));
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.changes.size(), 0U) << "nothing is new";
}

TEST(ValueChanges, ComparingAndSendingChangeNone) {
  Listening site;
  CommandVergleichen_Click(site.core);
  CommandSenden_Click(site.core);
  EXPECT_EQ(site.changes.size(), 0U);
}

TEST(ValueChanges, Edited) {
  Listening site;
  NumberEdit number = NumberEditOf(site.module, 1, site.main.tree.Find(ParameterKey(1)));
  number.TextWert = u"20"_s;
  EXPECT_TRUE(DialogEdit_OK(site.core, number));
  TextEdit text = TextEditOf(site.module, 4);
  text.TextWert = u"XY"_s;
  DialogEditString_OK(site.core, text);
  EXPECT_EQ(site.Take(ValueSource::Edited), (QStringList{u"1 200"_s, u"4 0 XY"_s}));
}

TEST(ValueChanges, Loaded) {
  Listening site;
  site.module.Dateiname = u"a.qpf"_s;
  EXPECT_TRUE(WriteValueFile(site.core));
  site.module.SetNumber(2, 7, ValueSource::Edited);
  site.changes.clear();
  EXPECT_TRUE(ReadValueFile(site.core));
  EXPECT_EQ(site.changes.at(1).before.number, 7);
  // A file pads every text with blanks, also the unused one of a number.
  EXPECT_EQ(site.Take(ValueSource::Loaded),
            (QStringList{u"1 1500"_s, u"2 65536"_s, u"3 45"_s, u"4 0 ABCD"_s}));
}

// A file gives its types to what it is loaded into.
TEST(ValueChanges, LoadedTypes) {
  Listening site;
  site.module.Dateiname = u"a.qpf"_s;
  EXPECT_TRUE(WriteValueFile(site.core));
  site.module.Par[1].Typ = u"long"_s;
  EXPECT_TRUE(ReadValueFile(site.core));
  ASSERT_GE(site.changes.size(), 1U);
  EXPECT_EQ(site.changes[0].index, 1);
  EXPECT_EQ(site.changes[0].typBefore, u"long"_s);
  EXPECT_EQ(site.changes[0].typAfter, u"int"_s);
  EXPECT_EQ(site.module.Par[1].Typ, u"int"_s);
}

TEST(ValueChanges, Standard) {
  Listening site;
  site.module.SetNumber(1, 7, ValueSource::Edited);
  site.module.SetText(4, u"x"_s, ValueSource::Edited);
  site.changes.clear();
  CommandStandard_Click(site.core);
  EXPECT_EQ(site.Take(ValueSource::Standard), (QStringList{u"1 1500"_s, u"4 0 ABCD"_s}));
}

TEST(ValueChanges, PlantType) {
  Listening site;
  site.module.PlantTypeList.Select(1);
  EXPECT_EQ(site.Take(ValueSource::PlantType), QStringList{u"0 1"_s});
}

TEST(ValueChanges, PlantTypeOfTheController) {
  Listening site;
  site.Store(0x2000, {1});
  CommandEmpfangen_Click(site.core);
  EXPECT_EQ(site.changes.at(0).source, ValueSource::PlantType);
  EXPECT_EQ(site.changes.at(0).index, 0);
  EXPECT_EQ(site.changes.at(0).after.number, 1);
}

// Before anything of the parameters, the marks and the plant types is touched.
TEST(ValueChanges, DefinitionsAreAnnounced) {
  Listening site;
  QStringList news;
  site.module.OnDefinitions = [&](Rereading rereading) {
    news.append(u"%1 %2 %3 %4"_s.arg(rereading == Rereading::Everything ? u"all"_s : u"definitions"_s)
                    .arg(site.module.ParCount)
                    .arg(site.module.PlantTypeList.Count())
                    .arg(site.module.ParNode[1]));
  };
  site.module.ParNode[1] = kFalse;
  site.module.PlantTypeList.Select(1);
  EXPECT_EQ(news, QStringList{u"definitions 5 2 0"_s});
  news.clear();
  site.module.VersionList.Select(1);
  EXPECT_EQ(news.value(0), u"definitions 5 2 -1"_s);
  news.clear();
  Refresh(site.core, 5);
  EXPECT_EQ(news.value(0), u"all 2 1 -1"_s);
  news.clear();
  Refresh(site.core, 2);
  EXPECT_EQ(news, QStringList());
}

TEST(ValueChanges, TheDefaultsOfNewDefinitionsSayThatTheyAre) {
  Listening site;
  site.module.SetNumber(1, 7, ValueSource::Edited);
  site.changes.clear();
  Refresh(site.core, 3);
  ASSERT_GE(site.changes.size(), 1U);
  EXPECT_EQ(site.changes[0].index, 1);
  EXPECT_EQ(site.changes[0].source, ValueSource::Defined);
}

TEST(ValueChanges, ReadingDefinitionsIsNone) {
  Listening site;
  ReadSelectedDefinitions(site.core);
  EXPECT_EQ(site.changes.size(), 0U);
}

}  // namespace
}  // namespace kalivor::test
