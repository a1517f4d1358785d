// The table of types: what each name means, and how numbers become words and come back.
#include <gtest/gtest.h>
#include <limits>

#include "core/ParameterTypes.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

TEST(ParameterTypes, ThreeLettersDecideTheTransfer) {
  EXPECT_EQ(TypeOf(u"lon"_s).name, u"long"_s);
  EXPECT_EQ(TypeOf(u"integer"_s).name, u"int"_s);
  EXPECT_EQ(TypeOf(u"chaos"_s).name, u"char"_s);
  EXPECT_EQ(TypeOf(u"str20"_s).name, u"string"_s);
  for (const QString& unknown : {u""_s, u"lo"_s, u"Long"_s, u" int"_s, u"float"_s}) {
    EXPECT_EQ(TypeOf(unknown).kind, ValueKind::Unknown) << unknown.toStdString();
  }
}

TEST(ParameterTypes, ANumbersWholeNameIsNeededWhereItsSizeCounts) {
  EXPECT_EQ(NumberTypeNamed(u"long").bytes, 4);
  EXPECT_EQ(NumberTypeNamed(u"int").bytes, 2);
  EXPECT_EQ(NumberTypeNamed(u"char").bytes, 1);
  for (const QString& unknown : {u""_s, u"integer"_s, u"string"_s, u"string20"_s}) {
    EXPECT_EQ(NumberTypeNamed(unknown).kind, ValueKind::Unknown) << unknown.toStdString();
    EXPECT_EQ(NumberTypeNamed(unknown).bytes, 0) << unknown.toStdString();
  }
}

TEST(ParameterTypes, WordsAreAsManyAsTheBytesNeed) {
  EXPECT_EQ(TypeOf(u"long"_s).WordCount(), 2);
  EXPECT_EQ(TypeOf(u"int"_s).WordCount(), 1);
  EXPECT_EQ(TypeOf(u"char"_s).WordCount(), 1);
  EXPECT_TRUE(TypeOf(u"char"_s).SharesWord());
  EXPECT_FALSE(TypeOf(u"int"_s).SharesWord());
}

// The words as the controller hands them back: the first with its sign, the others without.
Words Returned(const Words& sent) {
  return {static_cast<qint16>(sent[0]), static_cast<quint16>(sent[1])};
}

TEST(ParameterTypes, EveryNumberWithinTheLimitsComesBackUnlessTheTypeSaysOtherwise) {
  for (const QString& name : {u"long"_s, u"int"_s}) {
    const ParameterType& type = NumberTypeNamed(name);
    for (const qint32 number :
         {type.limits.lowest, -65537, -65535, -256, -1, 0, 1, 255, 32767, type.limits.highest}) {
      if (number < type.limits.lowest || number > type.limits.highest) continue;
      const qint32 back = type.fromWords(Returned(type.toWords(number, false, 0)), false);
      if (number >= 0 || !type.losesSign) {
        EXPECT_EQ(back, number) << name.toStdString();
      }
    }
    const qint32 minusOne = type.fromWords(Returned(type.toWords(-1, false, 0)), false);
    EXPECT_EQ(minusOne != -1, type.losesSign) << name.toStdString();
  }
}

TEST(ParameterTypes, AByteKeepsItsNeighbourBelowTheSign) {
  const ParameterType& type = TypeOf(u"char"_s);
  EXPECT_EQ(type.toWords(0x43, true, 0x4142)[0], 0x4143);
  EXPECT_EQ(type.toWords(0x43, false, 0x4142)[0], 0x4342);
  EXPECT_EQ(type.fromWords({0x4142}, false), 0x41);
  EXPECT_EQ(type.fromWords({0x4142}, true), 0x42);
  EXPECT_EQ(type.fromWords({0x7F00}, false), 0x7F);
  EXPECT_EQ(type.fromWords({-0x8000}, false), -0x80);
  EXPECT_EQ(ThrownKind([&] { (void)type.toWords(std::numeric_limits<qint32>::max(), false, 0); }),
            RuntimeError::Kind::Overflow);
}

TEST(ParameterTypes, AddressesOfTextsKeepTheirLengthAndThoseOfNumbersGetEightDigits) {
  ParameterRecord record;
  record.VarAdresse = u"FFFE"_s;
  EXPECT_EQ(WordAddress(record, TypeOf(u"string8"_s), 0), u"FFFE"_s);
  EXPECT_EQ(WordAddress(record, TypeOf(u"string8"_s), 1), u"0000"_s);
  EXPECT_EQ(WordAddress(record, TypeOf(u"long"_s), 0), u"FFFE"_s);
  EXPECT_EQ(WordAddress(record, TypeOf(u"long"_s), 1), u"00010000"_s);
}

}  // namespace
}  // namespace kalivor::test
