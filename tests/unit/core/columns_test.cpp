// Columns of a line, address arithmetic, and what a line of each definition text becomes.
#include <gtest/gtest.h>

#include "core/DefinitionFiles.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

using Kind = RuntimeError::Kind;

const QString kLine =
    u"Antrieb  Drehzahl  0  30000  1500  1/m  1  0  int  abc[3]  _abc  A B  Drehzahl des Motors  in 1/m"_s;

// kLine with column `n` replaced.
QString LineWith(int n, const QString& text) {
  QStringList columns = kLine.split(u"  "_s);
  columns[n] = text;
  return columns.join(u"  "_s);
}

TEST(GetField, CutsColumnsAtTwoOrMoreBlanks) {
  struct {
    QString line;
    int n;
    QString column;
  } const cases[] = {
      {kLine, 0, u"Antrieb"_s},
      {kLine, 1, u"Drehzahl"_s},
      {kLine, 11, u"A B"_s},
      {kLine, 12, u"Drehzahl des Motors"_s},
      {u"long  x"_s, 0, u"long"_s},
      {u"long  x"_s, 1, u"x"_s},
      {u"long x"_s, 0, u"long x"_s},
      {u"long x"_s, 1, u""_s},
      {u"long     x"_s, 1, u"x"_s},
      {u"a  b "_s, 1, u"b "_s},
      {u"a  b  "_s, 1, u"b"_s},
      {u"a  b  "_s, 2, u""_s},
      {u"a  b"_s, 5, u""_s},
      {u"a\tb  c"_s, 0, u"a\tb"_s},
      {u"  a"_s, 0, u""_s},
      {u"  a"_s, 1, u"a"_s},
      {u" a"_s, 0, u" a"_s},
      {u""_s, 0, u""_s},
      {u""_s, 3, u""_s},
      {u"    "_s, 1, u""_s},
  };
  for (const auto& example : cases)
    EXPECT_EQ(GetField(example.line, example.n), example.column)
        << testing::PrintToString(example.line) << example.n;
}

TEST(GetRest, ReturnsEverythingFromTheColumnOn) {
  EXPECT_EQ(GetRest(kLine, 12), u"Drehzahl des Motors  in 1/m"_s);
  EXPECT_EQ(GetRest(u"a  b   c  "_s, 1), u"b   c  "_s);
  EXPECT_EQ(GetRest(kLine, 0), kLine);
  EXPECT_EQ(GetRest(u"a  b"_s, 2), QString());
  EXPECT_EQ(GetRest(u"a  b  "_s, 2), QString());
}

TEST(AddOffset, KeepsTheLengthOfTheAddress) {
  struct {
    QString address;
    qint32 offset;
    QString sum;
  } const cases[] = {
      {u"1F00"_s, 6, u"1F06"_s},   {u"FFFE"_s, 6, u"0004"_s},         {u"FFF"_s, 1, u"000"_s},
      {u"1FFFF"_s, 1, u"20000"_s}, {u"1f0a"_s, 0, u"1F0A"_s},         {u"0000"_s, -1, u"FFFF"_s},
      {u""_s, 5, u""_s},           {u"FFFFFFFE"_s, 6, u"00000004"_s}, {u"XY12"_s, 0, u"0012"_s},
  };
  for (const auto& example : cases)
    EXPECT_EQ(AddOffset(example.address, example.offset), example.sum)
        << testing::PrintToString(example.address);
}

TEST(ParseDefinition, FillsTheRecordFromItsColumns) {
  const ParameterRecord record = ParseDefinition(kLine, true);
  ParameterRecord expected;
  expected.Rubrik = u"Antrieb"_s;
  expected.Name = u"Drehzahl"_s;
  expected.Max = 30000;
  expected.Standard = 1500;
  expected.Einheit = u"1/m"_s;
  expected.Zahl1 = 1;
  expected.Typ = u"int"_s;
  expected.Offset = 6;
  expected.Variable = u"_abc"_s;
  expected.Zusatz = u"A B"_s;
  expected.Hilfetext = u"Drehzahl des Motors  in 1/m"_s;
  EXPECT_EQ(record, expected);
}

TEST(ParseDefinition, WithoutAddressListColumn9IsTheAddress) {
  for (const QString& expression : {u"1F00"_s, u"abc[3]"_s}) {
    const ParameterRecord record = ParseDefinition(LineWith(9, expression), false);
    EXPECT_EQ(record.VarAdresse, expression);
    EXPECT_EQ(record.Offset, 0);
  }
}

TEST(ParseDefinition, WithAddressListTheIndexOfColumn9IsTheOffset) {
  struct {
    QString type, expression;
    qint16 offset;
  } const cases[] = {
      {u"int"_s, u"abc[3]"_s, 6},      {u"long"_s, u"abc[3]"_s, 12},   {u"char"_s, u"abc[3]"_s, 3},
      {u"integer"_s, u"abc[3]"_s, 0},  {u"string4"_s, u"abc[3]"_s, 0}, {u"int"_s, u"abc"_s, 0},
      {u"int"_s, u"abc]"_s, 0},        {u"int"_s, u"abc[3].x"_s, 0},   {u"int"_s, u"a[1][2]"_s, 4},
      {u"int"_s, u"abc[]"_s, 0},       {u"int"_s, u"abc[x]"_s, 0},     {u"int"_s, u"abc[-2]"_s, -4},
      {u"char"_s, u"abc[&H10]"_s, 16}, {u"int"_s, u"abc[2.5]"_s, 4},   {u"int"_s, u"[3]"_s, 6},
  };
  for (const auto& example : cases) {
    QString line = LineWith(9, example.expression);
    line.replace(u"  int  "_s, u"  "_s + example.type + u"  "_s);
    const ParameterRecord record = ParseDefinition(line, true);
    EXPECT_EQ(record.Offset, example.offset) << testing::PrintToString(example.type + example.expression);
    EXPECT_EQ(record.VarAdresse, QString());
  }
}

TEST(ParseDefinition, RefusesAnOffsetOutsideTheField) {
  EXPECT_EQ(ThrownKind([] { (void)ParseDefinition(LineWith(9, u"abc[16384]"_s), true); }), Kind::Overflow);
  EXPECT_EQ(ParseDefinition(LineWith(9, u"abc[16383]"_s), true).Offset, 32766);
  EXPECT_EQ(ThrownKind([] { (void)ParseDefinition(LineWith(9, u"abc[40000]"_s), true); }), Kind::Overflow);
}

TEST(ParseDefinition, TakesTheNumberAtTheBeginningOfAText) {
  struct {
    QString text;
    qint32 number;
  } const cases[] = {
      {u"2.5"_s, 2},   {u"3.5"_s, 4}, {u"x"_s, 0},       {u"1e3"_s, 1000},
      {u"12,5"_s, 12}, {u"-7"_s, -7}, {u"&HFFFF"_s, -1},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(ParseDefinition(LineWith(2, example.text), true).Min, example.number);
    EXPECT_EQ(ParseDefinition(LineWith(3, example.text), true).Max, example.number);
    EXPECT_EQ(ParseDefinition(LineWith(4, example.text), true).Standard, example.number);
    EXPECT_EQ(ParseDefinition(LineWith(6, example.text), true).Zahl1, example.number);
    EXPECT_EQ(ParseDefinition(LineWith(7, example.text), true).Zahl2, example.number);
  }
}

TEST(ParseDefinition, RefusesNumbersThatDoNotFit) {
  for (const int column : {2, 3, 4}) {
    EXPECT_EQ(ThrownKind([&] { (void)ParseDefinition(LineWith(column, u"4294967295"_s), true); }),
              Kind::Overflow);
  }
  for (const int column : {6, 7}) {
    EXPECT_EQ(ThrownKind([&] { (void)ParseDefinition(LineWith(column, u"40000"_s), true); }), Kind::Overflow);
  }
}

TEST(ParseDefinition, TheStandardOfATextIsAText) {
  for (const QString& type : {u"string4"_s, u"str20"_s}) {
    QString line = LineWith(4, u"99999999999"_s);
    line.replace(u"  int  "_s, u"  "_s + type + u"  "_s);
    const ParameterRecord record = ParseDefinition(line, true);
    EXPECT_EQ(record.StandardText, u"99999999999"_s);
    EXPECT_EQ(record.Standard, 0);
  }
  EXPECT_EQ(ParseDefinition(kLine, true).StandardText, QString());
}

TEST(ParseDefinition, CutsTypeAndUnitToTheirFields) {
  QString line = LineWith(5, u"mbarx"_s);
  line.replace(u"  int  "_s, u"  string100  "_s);
  const ParameterRecord record = ParseDefinition(line, true);
  EXPECT_EQ(record.Einheit.Padded(), u"mbar"_s);
  EXPECT_EQ(record.Typ.Padded(), u"string10"_s);
  EXPECT_EQ(ParseDefinition(kLine, true).Typ.Padded(), u"int     "_s);
}

TEST(ParseDefinition, ADashStandsForNoUnitAndNoHelp) {
  EXPECT_EQ(ParseDefinition(LineWith(5, u"-"_s), true).Einheit.Padded(), u"    "_s);
  QString line = kLine;
  line.replace(u"Drehzahl des Motors  in 1/m"_s, u"-"_s);
  EXPECT_EQ(ParseDefinition(line, true).Hilfetext, QString());
}

TEST(ParseDefinition, InAnyOtherColumnADashIsAText) {
  const ParameterRecord record = ParseDefinition(u"-  -  -  -  -  -  -  -  string4  -  -  -  -"_s, false);
  ParameterRecord expected;
  expected.Rubrik = u"-"_s;
  expected.Name = u"-"_s;
  expected.StandardText = u"-"_s;
  expected.Typ = u"string4"_s;
  expected.VarAdresse = u"-"_s;
  expected.Variable = u"-"_s;
  expected.Zusatz = u"-"_s;
  EXPECT_EQ(record, expected) << "numbers are 0, unit and help text are empty";
  EXPECT_EQ(ParseDefinition(LineWith(8, u"-"_s), true).Typ, u"-"_s);
}

TEST(ParseDefinition, AShortLineLeavesTheOtherFieldsEmpty) {
  ParameterRecord expected;
  expected.Rubrik = u"Antrieb"_s;
  EXPECT_EQ(ParseDefinition(u"Antrieb"_s, true), expected);
  EXPECT_EQ(ParseDefinition(u"Antrieb"_s, false), expected);
}

TEST(ParseVersion, FillsTheRowFromItsColumns) {
  const VersionRecord record = ParseVersion(u"AB1-123.4  A.ADR  A.TXT  Luft Wasser -  WR"_s);
  EXPECT_EQ(record, (VersionRecord{u"AB1-123.4"_s, u"A.ADR"_s, u"A.TXT"_s, u" Luft Wasser -"_s, u"WR"_s}));
}

TEST(ParseVersion, CutsOrPadsTheCommandLetters) {
  for (const auto& [column, letters] : {std::pair{u"W"_s, u"W "_s}, {u"WRX"_s, u"WR"_s}, {u""_s, u"  "_s}}) {
    EXPECT_EQ(ParseVersion(u"V  -  D  A  "_s + column).Kennung.Padded(), letters);
  }
}

}  // namespace
}  // namespace kalivor::test
