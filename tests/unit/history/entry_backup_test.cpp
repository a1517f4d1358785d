// What an entry holds can be brought back as far as it is known, and nothing else is.
#include "history/EntryBackup.h"

#include <gtest/gtest.h>

#include "core/ValueFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

class EntryBackup : public testing::Test {
 protected:
  EntryBackup() {
    Add(u"n"_s, u"int"_s, u"1F00"_s, 1500);
    Add(u"b"_s, u"char"_s, u"1F23"_s, 17);
    Add(u"c"_s, u"char"_s, u"1F22"_s, 5);
    Add(u"name"_s, u"string8"_s, u"1F30"_s, 0).WertText = u"Anna"_s;
    Add(u"long"_s, u"string40"_s, u"1F50"_s, 0).WertText = u"Ein Text, der kürzer ist als sein Platz"_s;
    entry_.version = u"V1"_s;
    entry_.plantType = u"A"_s;
    entry_.address = 3;
    entry_.port = u"COM1"_s;
  }

  ParameterRecord& Add(const QString& variable, const QString& type, const QString& address, int number) {
    ParameterRecord& record = module_.Par[module_.ParCount++];
    record.Name = variable;
    record.Variable = variable;
    record.Typ = type;
    record.VarAdresse = address;
    record.Wert = number;
    record.Min = -30000;
    record.Max = 30000;
    record.Zahl1 = 1;
    return record;
  }

  // As the store has them: the image of a value file.
  [[nodiscard]] ValueSet Stored() const {
    return FileValues(ParseValueFile(ValueFileImage(module_, u"V1"_s)), u"Verlauf"_s);
  }

  SafeRun Wanted(const Backup& backup, int& unknown) const {
    return WantedOfImage(module_, SafeKind::Restore, backup.values, backup.words, unknown);
  }

  Module1 module_;
  Entry entry_;
};

TEST_F(EntryBackup, SaysWhichControllerItIsOf) {
  const BackupHead head = BackupOf(module_, entry_, Stored()).head;
  EXPECT_EQ(head.version, u"V1"_s);
  EXPECT_EQ(head.plantType, u"A"_s);
  EXPECT_EQ(head.address, 3);
  EXPECT_EQ(head.port, u"COM1"_s);
}

TEST_F(EntryBackup, BringsBackTheValuesOfTheEntryAndNotThoseOfToday) {
  const ValueSet stored = Stored();
  module_.Par[1].Wert = 1;
  module_.Par[2].Wert = 2;
  module_.Par[4].WertText = u"Berta"_s;
  int unknown = 0;
  const SafeRun run = Wanted(BackupOf(module_, entry_, stored), unknown);
  ASSERT_EQ(run.values.size(), 4u);
  EXPECT_EQ(run.values[0].wanted.number, 1500);
  EXPECT_EQ(run.values[1].wanted.number, 17);
  EXPECT_EQ(run.values[2].wanted.number, 5);
  EXPECT_EQ(run.values[3].wanted.text.trimmed(), u"Anna"_s);
}

TEST_F(EntryBackup, ATextThatTheFileHasCutIsUnknown) {
  int unknown = 0;
  const SafeRun run = Wanted(BackupOf(module_, entry_, Stored()), unknown);
  EXPECT_EQ(unknown, 1);
  for (const SafeValue& value : run.values)
    EXPECT_NE(module_.Par[value.index].Variable, u"long"_s);
}

TEST_F(EntryBackup, AByteThatCannotBeCodedIsNotTakenFromItsNeighboursWord) {
  module_.Par[2].Wert = 300;
  int unknown = 0;
  const SafeRun run = Wanted(BackupOf(module_, entry_, Stored()), unknown);
  EXPECT_EQ(unknown, 2);
  for (const SafeValue& value : run.values)
    EXPECT_NE(module_.Par[value.index].Variable, u"b"_s);
}

TEST_F(EntryBackup, WhatWasNotHeldIsNotWanted) {
  ValueSet held = Stored();
  held.values.erase(held.values.begin() + 1, held.values.end());
  held.partial = true;
  int unknown = 0;
  const SafeRun run = Wanted(BackupOf(module_, entry_, held), unknown);
  ASSERT_EQ(run.values.size(), 1u);
  EXPECT_EQ(run.values[0].index, 1);
  EXPECT_EQ(unknown, 0);
}

TEST_F(EntryBackup, AnotherTypeAndAnUnknownVariableAreCounted) {
  const ValueSet stored = Stored();
  module_.Par[1].Typ = u"string8"_s;
  module_.Par[2].Variable = u"other"_s;
  int unknown = 0;
  const SafeRun run = Wanted(BackupOf(module_, entry_, stored), unknown);
  EXPECT_EQ(unknown, 3);  // and the text that is cut
  EXPECT_EQ(run.values.size(), 2u);
}

}  // namespace
}  // namespace kalivor::history
