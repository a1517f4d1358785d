// How parameter values lie in the simulated controller's memory.
#include "sim/Memory.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

ParameterRecord Parameter(const QString& type, const QString& address, qint32 standard,
                          const QString& text = QString(), const QString& variable = u"V"_s) {
  ParameterRecord record;
  record.Typ = FixedText<8>(type);
  record.VarAdresse = address;
  record.Standard = standard;
  record.StandardText = text;
  record.Variable = variable;
  return record;
}

Module1 ModuleWith(const std::vector<ParameterRecord>& records) {
  Module1 module;
  for (const ParameterRecord& record : records) {
    module.Par[module.ParCount] = record;
    ++module.ParCount;
  }
  return module;
}

Memory LoadedWith(const std::vector<ParameterRecord>& records) {
  Memory memory;
  memory.LoadStandards(ModuleWith(records));
  return memory;
}

TEST(Memory, HoldsTheHighByteAtTheEvenAddress) {
  Memory memory;
  memory.SetByte(0x1F00, 0x41);
  memory.SetByte(0x1F01, 0x42);
  EXPECT_EQ(memory.Word(0x1F00), 0x4142);
}

TEST(Memory, IgnoresTheLowBitOfAWordsAddress) {
  Memory memory;
  memory.SetWord(0x1F01, 0xABCD);
  EXPECT_EQ(memory.Word(0x1F00), 0xABCD);
  EXPECT_EQ(memory.Word(0x1F01), 0xABCD);
}

TEST(Memory, HoldsALongHighWordFirstInTwosComplement) {
  EXPECT_EQ(LoadedWith({Parameter(u"long"_s, u"1F00"_s, 65536)}).Dump(), u"1F00\t0001\n1F02\t0000\n"_s);
  EXPECT_EQ(LoadedWith({Parameter(u"long"_s, u"1F00"_s, -1)}).Dump(), u"1F00\tFFFF\n1F02\tFFFF\n"_s);
  EXPECT_EQ(LoadedWith({Parameter(u"long"_s, u"1F00"_s, -40000)}).Dump(), u"1F00\tFFFF\n1F02\t63C0\n"_s);
}

TEST(Memory, WrapsTheLowWordOfALongAtTheTop) {
  EXPECT_EQ(LoadedWith({Parameter(u"long"_s, u"FFFE"_s, 0x12345678)}).Dump(), u"0000\t5678\nFFFE\t1234\n"_s);
}

TEST(Memory, HoldsAnIntInOneWord) {
  EXPECT_EQ(LoadedWith({Parameter(u"int"_s, u"0010"_s, -2)}).Dump(), u"0010\tFFFE\n"_s);
}

TEST(Memory, HoldsTwoCharsInOneWord) {
  EXPECT_EQ(LoadedWith({Parameter(u"char"_s, u"0010"_s, 65), Parameter(u"char"_s, u"0011"_s, -1)}).Dump(),
            u"0010\t41FF\n"_s);
}

TEST(Memory, HoldsAStringPaddedWithBlanksInTheCodePage) {
  EXPECT_EQ(LoadedWith({Parameter(u"string4"_s, u"0010"_s, 0, u"A"_s)}).Dump(),
            u"0010\t4120\n0012\t2020\n"_s);
  EXPECT_EQ(LoadedWith({Parameter(u"string4"_s, u"0010"_s, 0, u"Öl€x-"_s)}).Dump(),
            u"0010\tD66C\n0012\t8078\n"_s);
}

TEST(Memory, LeavesTheLastCharacterOfAnOddStringOut) {
  EXPECT_EQ(LoadedWith({Parameter(u"string3"_s, u"0010"_s, 0, u"ABC"_s)}).Dump(), u"0010\t4142\n"_s);
}

TEST(Memory, UsesTheLastFourDigitsOfAnAddress) {
  EXPECT_EQ(LoadedWith({Parameter(u"int"_s, u"00021F00"_s, 7)}).Dump(), u"1F00\t0007\n"_s);
}

TEST(Memory, PassesOverUnknownTypesAndMissingAddresses) {
  EXPECT_EQ(LoadedWith({Parameter(u"real"_s, u"0010"_s, 7), Parameter(u"int"_s, QString(), 7)}).Dump(),
            QString());
}

TEST(Memory, TakesEachRecordOfAValueFileForTheFirstParameterOfItsName) {
  const Module1 module = ModuleWith({Parameter(u"int"_s, u"0010"_s, 1, {}, u"a"_s),
                                     Parameter(u"int"_s, u"0012"_s, 2, {}, u"b"_s),
                                     Parameter(u"int"_s, u"0014"_s, 3, {}, u"a"_s),
                                     Parameter(u"string2"_s, u"0016"_s, 0, u"xx"_s, u"t"_s)});
  Memory memory;
  memory.LoadStandards(module);
  ValueFileContent content;
  content.records = {{100, {}, u"a"_s, {}}, {0, u"Y"_s.leftJustified(20), u"t"_s, {}}, {9, {}, u"zz"_s, {}}};
  EXPECT_EQ(memory.LoadValues(module, content), 2);
  EXPECT_EQ(memory.Dump(), u"0010\t0064\n0012\t0002\n0014\t0003\n0016\t5920\n"_s);
}

TEST(Memory, KnowsLongNamesByTheirBeginningInOldFilesOnly) {
  const Module1 module = ModuleWith({Parameter(u"int"_s, u"0010"_s, 1, {}, u"abcdefghijklmnopqrstuvwxy"_s)});
  ValueFileContent content;
  content.records = {{5, {}, u"abcdefghijklmnopqrst"_s, {}}};
  Memory memory;
  EXPECT_EQ(memory.LoadValues(module, content), 0);
  content.recordLength = kOldRecord_bytes;
  EXPECT_EQ(memory.LoadValues(module, content), 1);
  EXPECT_EQ(memory.Dump(), u"0010\t0005\n"_s);
}

TEST(Memory, HoldsThePlantNumberAtTheAddressOfThePlantTypeRecord) {
  Module1 module;
  Memory memory;
  EXPECT_FALSE(memory.SetPlantNumber(module, 2));
  EXPECT_EQ(memory.Dump(), QString());
  module.Par[0].VarAdresse = u"0A00"_s;
  EXPECT_TRUE(memory.SetPlantNumber(module, -2));
  EXPECT_EQ(memory.Dump(), u"0A00\tFFFE\n"_s);
}

}  // namespace
}  // namespace kalivor::sim
