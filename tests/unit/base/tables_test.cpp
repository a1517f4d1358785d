// The tables: checked indexes, fixed-width texts, and what a fresh program starts with.
#include <gtest/gtest.h>
#include <memory>

#include "base/BoundedArray.h"
#include "base/FixedText.h"
#include "base/Module1.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

using Kind = RuntimeError::Kind;

TEST(BoundedArray, HoldsTheElementsFrom0ToLast) {
  BoundedArray<int, 3> array;
  EXPECT_EQ(array.kLast, 3);
  for (int i = 0; i <= 3; ++i)
    array[i] = 10 * i;
  const BoundedArray<int, 3>& constant = array;
  for (int i = 0; i <= 3; ++i)
    EXPECT_EQ(constant[i], 10 * i);
}

TEST(BoundedArray, StartsWithEmptyElements) {
  const BoundedArray<int, 3> numbers;
  for (int i = 0; i <= 3; ++i)
    EXPECT_EQ(numbers[i], 0);
}

TEST(BoundedArray, RefusesEveryOtherIndex) {
  BoundedArray<int, 3> array;
  const BoundedArray<int, 3>& constant = array;
  for (const int index : {-1, 4, 32767, -32768}) {
    EXPECT_EQ(ThrownKind([&] { array[index] = 1; }), Kind::Bounds) << index;
    EXPECT_EQ(ThrownKind([&] { (void)constant[index]; }), Kind::Bounds) << index;
  }
  EXPECT_EQ(array, (BoundedArray<int, 3>())) << "a refused index must change nothing";
}

TEST(BoundedArray, ComparesElementByElement) {
  BoundedArray<int, 3> a;
  BoundedArray<int, 3> b;
  b[3] = 1;
  EXPECT_NE(a, b);
  a[3] = 1;
  EXPECT_EQ(a, b);
}

TEST(FixedText, StartsWithBlanks) {
  EXPECT_EQ(FixedText<4>().Padded(), u"    "_s);
  EXPECT_EQ(FixedText<8>().Padded(), u"        "_s);
}

TEST(FixedText, IsPaddedOrCutToItsWidth) {
  EXPECT_EQ(FixedText<4>(u"1/m"_s).Padded(), u"1/m "_s);
  EXPECT_EQ(FixedText<4>(u"mbar"_s).Padded(), u"mbar"_s);
  EXPECT_EQ(FixedText<4>(u"mbarx"_s).Padded(), u"mbar"_s);
  EXPECT_EQ(FixedText<4>(u""_s).Padded(), u"    "_s);
  EXPECT_EQ(FixedText<2>(u"W"_s).Padded(), u"W "_s);
  EXPECT_EQ(FixedText<2>(u"WRX"_s).Padded(), u"WR"_s);
  EXPECT_EQ(FixedText<8>(u"string100"_s).Padded(), u"string10"_s);
  EXPECT_EQ(FixedText<8>(u"int"_s).Padded(), u"int     "_s);
  EXPECT_EQ(FixedText<4>(u" a"_s).Padded(), u" a  "_s);
}

TEST(FixedText, TrimsOnlyTheBlanksAtItsEnd) {
  EXPECT_EQ(FixedText<8>(u"int"_s).Trimmed(), u"int"_s);
  EXPECT_EQ(FixedText<8>(u" a b"_s).Trimmed(), u" a b"_s);
  EXPECT_EQ(FixedText<4>(u"a\t"_s).Trimmed(), u"a\t"_s);
  EXPECT_EQ(FixedText<4>().Trimmed(), u""_s);
}

TEST(FixedText, ComparisonPadsTheShorterSide) {
  const FixedText<8> type(u"int"_s);
  EXPECT_TRUE(type == u"int"_s);
  EXPECT_TRUE(type == u"int     "_s);
  EXPECT_TRUE(type == u"int          "_s) << "the fixed text can be the shorter side";
  EXPECT_TRUE(FixedText<8>() == u""_s);
  EXPECT_FALSE(type == u"in"_s);
  EXPECT_FALSE(type == u"integer"_s);
  EXPECT_FALSE(type == u" int"_s);
  EXPECT_FALSE(type == u"int     x"_s);
  EXPECT_TRUE(type == FixedText<8>(u"int  "_s));
  EXPECT_FALSE(type == FixedText<8>(u"long"_s));
}

TEST(FixedText, ComparisonDoesNotCutTheOtherSide) {
  EXPECT_FALSE(FixedText<8>(u"string100"_s) == u"string100"_s);
  EXPECT_TRUE(FixedText<8>(u"string100"_s) == u"string10"_s);
}

TEST(FixedText, IsCaseSensitive) {
  EXPECT_FALSE(FixedText<8>(u"int"_s) == u"Int"_s);
  EXPECT_FALSE(FixedText<8>(u"Str20"_s).StartsWith(u"str"));
}

TEST(FixedText, KnowsItsBeginning) {
  EXPECT_TRUE(FixedText<8>(u"str20"_s).StartsWith(u"str"));
  EXPECT_FALSE(FixedText<8>(u"str20"_s).StartsWith(u"string"));
  EXPECT_TRUE(FixedText<8>(u"string20"_s).StartsWith(u"string"));
  EXPECT_TRUE(FixedText<8>(u"int"_s).StartsWith(u"int  ")) << "the padding counts";
}

TEST(Flags, AreSixteenBitsWithAllBitsSetForTrue) {
  EXPECT_EQ(kTrue, -1);
  EXPECT_EQ(static_cast<quint16>(kTrue), 65535);
  EXPECT_EQ(kFalse, 0);
  static_assert(sizeof(kTrue) == 2);
}

TEST(Module1, StartsWithEmptyTables) {
  const auto module = std::make_unique<Module1>();
  EXPECT_EQ(module->Par.kLast, 2000);
  EXPECT_EQ(module->ParCount, 1);
  for (int i = 0; i <= 2000; ++i) {
    ASSERT_EQ(module->Par[i], ParameterRecord()) << i;
    ASSERT_EQ(module->ParNode[i], 0) << i;
    ASSERT_EQ(module->NodeState[i], 0) << i;
  }
  EXPECT_EQ(ThrownKind([&] { (void)module->Par[2001]; }), Kind::Bounds);
  EXPECT_EQ(ThrownKind([&] { (void)module->ParNode[2001]; }), Kind::Bounds);
  EXPECT_EQ(ThrownKind([&] { (void)module->NodeState[-1]; }), Kind::Bounds);
}

TEST(Module1, StartsWithoutAVersion) {
  const auto module = std::make_unique<Module1>();
  EXPECT_EQ(module->VersionIndex, 0);
  EXPECT_EQ(module->VersionCount, 1);
  EXPECT_EQ(module->VersionRow(0), VersionRecord()) << "row 0 is there and empty";
  EXPECT_EQ(module->VersionRow(0).Kennung.Padded(), u"  "_s);
  EXPECT_EQ(ThrownKind([&] { (void)module->VersionRow(1); }), Kind::Bounds);
  EXPECT_EQ(ThrownKind([&] { (void)module->VersionRow(-1); }), Kind::Bounds);
}

TEST(Module1, StartsWithTheDefaultSettings) {
  const auto module = std::make_unique<Module1>();
  EXPECT_EQ(module->Adresse, 1);
  EXPECT_EQ(module->Schnittstelle, 1);
  EXPECT_EQ(module->Userpath, u""_s);
  EXPECT_EQ(module->Inipath, u""_s);
  EXPECT_EQ(module->Inifile, u"VF.INI"_s);
}

TEST(Module1, StartsWithNothingUnderWay) {
  const auto module = std::make_unique<Module1>();
  EXPECT_EQ(module->Abbruch, 0);
  EXPECT_EQ(module->Antwort, -1);
  EXPECT_EQ(module->TreeUpdating, 0);
  EXPECT_EQ(module->BusyDepth, 0);
  EXPECT_EQ(module->ReglerVersion, u""_s);
  EXPECT_EQ(module->Dateiname, u""_s);
}

TEST(Module1, ACopyIsASnapshot) {
  const auto module = std::make_unique<Module1>();
  module->Par[5].Wert = 42;
  module->Par[5].WertText = u"alt"_s;
  const auto snapshot = std::make_unique<Module1>(*module);
  module->Par[5].Wert = 43;
  module->Par[5].WertText = u"neu"_s;
  EXPECT_EQ(snapshot->Par[5].Wert, 42);
  EXPECT_EQ(snapshot->Par[5].WertText, u"alt"_s);
}

TEST(ParameterRecord, IsCopiedWhole) {
  const ParameterRecord record{u"Antrieb"_s, u"Drehzahl"_s, 1,         2, 3,         4, u"w"_s,
                               u"s"_s,       u"1/m"_s,      5,         6, u"1F00"_s, 7, u"abc"_s,
                               u"int"_s,     u"A B"_s,      u"Hilfe"_s};
  const auto module = std::make_unique<Module1>();
  module->Par[1] = record;
  EXPECT_EQ(module->Par[1].Rubrik, u"Antrieb"_s);
  EXPECT_EQ(module->Par[1].Name, u"Drehzahl"_s);
  EXPECT_EQ(module->Par[1].Wert, 1);
  EXPECT_EQ(module->Par[1].Min, 2);
  EXPECT_EQ(module->Par[1].Max, 3);
  EXPECT_EQ(module->Par[1].Standard, 4);
  EXPECT_EQ(module->Par[1].WertText, u"w"_s);
  EXPECT_EQ(module->Par[1].StandardText, u"s"_s);
  EXPECT_EQ(module->Par[1].Einheit.Padded(), u"1/m "_s);
  EXPECT_EQ(module->Par[1].Zahl1, 5);
  EXPECT_EQ(module->Par[1].Zahl2, 6);
  EXPECT_EQ(module->Par[1].VarAdresse, u"1F00"_s);
  EXPECT_EQ(module->Par[1].Offset, 7);
  EXPECT_EQ(module->Par[1].Variable, u"abc"_s);
  EXPECT_EQ(module->Par[1].Typ.Padded(), u"int     "_s);
  EXPECT_EQ(module->Par[1].Zusatz, u"A B"_s);
  EXPECT_EQ(module->Par[1].Hilfetext, u"Hilfe"_s);
}

// Copies and files rely on the width of every field: none may silently become wider.
TEST(ParameterRecord, HasFieldsOfFixedWidth) {
  static_assert(sizeof(ParameterRecord::Wert) == 4 && sizeof(ParameterRecord::Min) == 4 &&
                sizeof(ParameterRecord::Max) == 4 && sizeof(ParameterRecord::Standard) == 4);
  static_assert(sizeof(ParameterRecord::Zahl1) == 2 && sizeof(ParameterRecord::Zahl2) == 2 &&
                sizeof(ParameterRecord::Offset) == 2);
  EXPECT_EQ(ParameterRecord().Einheit.Padded().size(), 4);
  EXPECT_EQ(ParameterRecord().Typ.Padded().size(), 8);
  EXPECT_EQ(VersionRecord().Kennung.Padded().size(), 2);
}

TEST(RuntimeError, HasAGermanDescriptionOfItsOwnForEveryKind) {
  QStringList seen;
  for (const Kind kind :
       {Kind::Bounds, Kind::Overflow, Kind::TypeMismatch, Kind::InvalidArgument, Kind::DivisionByZero,
        Kind::InvalidSelection, Kind::MissingObject, Kind::FileError}) {
    const RuntimeError error(kind);
    EXPECT_EQ(error.GetKind(), kind);
    EXPECT_TRUE(error.Description().endsWith(u'.')) << error.Description().toStdString();
    EXPECT_FALSE(seen.contains(error.Description())) << error.Description().toStdString();
    seen.append(error.Description());
  }
  const RuntimeError own(Kind::FileError, u"Datei fehlt: a.txt"_s);
  EXPECT_EQ(own.Description(), u"Datei fehlt: a.txt"_s);
  EXPECT_STREQ(own.what(), "kalivor::RuntimeError");
}

}  // namespace
}  // namespace kalivor
