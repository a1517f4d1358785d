// Conversions between texts and numbers, each with its table of examples.
#include "base/Numbers.h"

#include <gtest/gtest.h>
#include <QLocale>
#include <cmath>
#include <limits>

#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

using Kind = RuntimeError::Kind;

struct TextToNumber {
  QString text;
  double number;
};

void PrintTo(const TextToNumber& example, std::ostream* out) {
  PrintTo(example.text, out);
}

class LeadingNumberExamples : public testing::TestWithParam<TextToNumber> {};

TEST_P(LeadingNumberExamples, AreConverted) {
  EXPECT_DOUBLE_EQ(LeadingNumber(GetParam().text), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(Decimal, LeadingNumberExamples,
                         testing::Values(TextToNumber{u""_s, 0},         //
                                         TextToNumber{u"abc"_s, 0},      //
                                         TextToNumber{u"-"_s, 0},        //
                                         TextToNumber{u"+"_s, 0},        //
                                         TextToNumber{u"."_s, 0},        //
                                         TextToNumber{u"-."_s, 0},       //
                                         TextToNumber{u"--5"_s, 0},      //
                                         TextToNumber{u"+-5"_s, 0},      //
                                         TextToNumber{u"0"_s, 0},        //
                                         TextToNumber{u"7"_s, 7},        //
                                         TextToNumber{u"+7"_s, 7},       //
                                         TextToNumber{u"-7"_s, -7},      //
                                         TextToNumber{u"007"_s, 7},      //
                                         TextToNumber{u".5"_s, 0.5},     //
                                         TextToNumber{u"-.5"_s, -0.5},   //
                                         TextToNumber{u"5."_s, 5},       //
                                         TextToNumber{u"2.5"_s, 2.5},    //
                                         TextToNumber{u"1.2.3"_s, 1.2},  //
                                         TextToNumber{u"12,5"_s, 12},    //
                                         TextToNumber{u"12abc"_s, 12},   //
                                         TextToNumber{u"a12"_s, 0},      //
                                         TextToNumber{u"1'000"_s, 1},    //
                                         TextToNumber{u"4294967295"_s, 4294967295.0}));

INSTANTIATE_TEST_SUITE_P(Blanks, LeadingNumberExamples,
                         testing::Values(TextToNumber{u"1 000"_s, 1000},       //
                                         TextToNumber{u"  12"_s, 12},          //
                                         TextToNumber{u"- 1 2 . 5"_s, -12.5},  //
                                         TextToNumber{u"\t1\t2\n3"_s, 123},    //
                                         TextToNumber{u"1 e 3"_s, 1000},       //
                                         TextToNumber{u"   "_s, 0},            //
                                         TextToNumber{u"1\r2"_s, 1},           //
                                         TextToNumber{u"1\u00A02"_s, 1}));

INSTANTIATE_TEST_SUITE_P(Exponent, LeadingNumberExamples,
                         testing::Values(TextToNumber{u"1e3"_s, 1000},    //
                                         TextToNumber{u"1E3"_s, 1000},    //
                                         TextToNumber{u"1e+3"_s, 1000},   //
                                         TextToNumber{u"25e-1"_s, 2.5},   //
                                         TextToNumber{u"1e"_s, 1},        //
                                         TextToNumber{u"1e+"_s, 1},       //
                                         TextToNumber{u"1ex"_s, 1},       //
                                         TextToNumber{u"e3"_s, 0},        //
                                         TextToNumber{u".e3"_s, 0},       //
                                         TextToNumber{u"1e3.5"_s, 1000},  //
                                         TextToNumber{u"1d3"_s, 1},       //
                                         TextToNumber{u"1e-400"_s, 0}));

INSTANTIATE_TEST_SUITE_P(Hexadecimal, LeadingNumberExamples,
                         testing::Values(TextToNumber{u"&H10"_s, 16},                   //
                                         TextToNumber{u"&hfF"_s, 255},                  //
                                         TextToNumber{u"& H 1 0"_s, 16},                //
                                         TextToNumber{u"&H7FFF"_s, 32767},              //
                                         TextToNumber{u"&H8000"_s, -32768},             //
                                         TextToNumber{u"&HFFFF"_s, -1},                 //
                                         TextToNumber{u"&H08000"_s, 32768},             //
                                         TextToNumber{u"&H10000"_s, 65536},             //
                                         TextToNumber{u"&HFFFFFFFF"_s, -1},             //
                                         TextToNumber{u"&H80000000"_s, -2147483648.0},  //
                                         TextToNumber{u"&H1G2"_s, 1},                   //
                                         TextToNumber{u"&HG"_s, 0},                     //
                                         TextToNumber{u"&H"_s, 0},                      //
                                         TextToNumber{u"&"_s, 0},                       //
                                         TextToNumber{u"&O17"_s, 0}));

// Only the ten ASCII digits are digits.
INSTANTIATE_TEST_SUITE_P(OtherScripts, LeadingNumberExamples,
                         testing::Values(TextToNumber{u"\u0661\u0662"_s, 0}, TextToNumber{u"1\uFF12"_s, 1}));

TEST(LeadingNumber, BeyondADoubleIsAnOverflow) {
  for (const QString& text : {u"1e400"_s, u"-1e400"_s, u"1e99999999999"_s, u"&H123456789"_s}) {
    EXPECT_EQ(ThrownKind([&] { (void)LeadingNumber(text); }), Kind::Overflow) << text.toStdString();
  }
}

TEST(LeadingNumber, DoesNotDependOnTheLocale) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  EXPECT_DOUBLE_EQ(LeadingNumber(u"1.5"), 1.5);
  EXPECT_DOUBLE_EQ(LeadingNumber(u"1,5"), 1);
  EXPECT_DOUBLE_EQ(StrictNumber(u"1234.5"), 1234.5);
  EXPECT_EQ(PlainNumber(12345.5), u"12345.5"_s);
  EXPECT_EQ(BlankNumber(12345), u" 12345"_s);
  QLocale::setDefault(before);
}

TEST(LeadingInt16, RoundsHalfToEven) {
  EXPECT_EQ(LeadingInt16(u"2.5"), 2);
  EXPECT_EQ(LeadingInt16(u"3.5"), 4);
  EXPECT_EQ(LeadingInt16(u"-2.5"), -2);
  EXPECT_EQ(LeadingInt16(u"-3.5"), -4);
  EXPECT_EQ(LeadingInt16(u"2.51"), 3);
  EXPECT_EQ(LeadingInt16(u"0.5"), 0);
  EXPECT_EQ(LeadingInt16(u"x"), 0);
}

TEST(LeadingInt16, EndsAtItsRange) {
  EXPECT_EQ(LeadingInt16(u"32767"), 32767);
  EXPECT_EQ(LeadingInt16(u"32767.4"), 32767);
  EXPECT_EQ(LeadingInt16(u"-32768"), -32768);
  EXPECT_EQ(LeadingInt16(u"-32768.5"), -32768);
  for (const QString& text : {u"32768"_s, u"32767.5"_s, u"-32769"_s, u"1e9"_s, u"&H8000F"_s}) {
    EXPECT_EQ(ThrownKind([&] { (void)LeadingInt16(text); }), Kind::Overflow) << text.toStdString();
  }
}

TEST(LeadingInt32, RoundsHalfToEven) {
  EXPECT_EQ(LeadingInt32(u"2.5"), 2);
  EXPECT_EQ(LeadingInt32(u"3.5"), 4);
  EXPECT_EQ(LeadingInt32(u"1e3"), 1000);
  EXPECT_EQ(LeadingInt32(u"x"), 0);
}

TEST(LeadingInt32, EndsAtItsRange) {
  EXPECT_EQ(LeadingInt32(u"2147483647"), 2147483647);
  EXPECT_EQ(LeadingInt32(u"-2147483648"), std::numeric_limits<qint32>::min());
  for (const QString& text : {u"2147483648"_s, u"-2147483649"_s, u"4294967295"_s, u"2147483647.5"_s}) {
    EXPECT_EQ(ThrownKind([&] { (void)LeadingInt32(text); }), Kind::Overflow) << text.toStdString();
  }
}

class StrictNumberExamples : public testing::TestWithParam<TextToNumber> {};

TEST_P(StrictNumberExamples, AreConverted) {
  EXPECT_DOUBLE_EQ(StrictNumber(GetParam().text), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(All, StrictNumberExamples,
                         testing::Values(TextToNumber{u"0"_s, 0},       //
                                         TextToNumber{u"17"_s, 17},     //
                                         TextToNumber{u" 17 "_s, 17},   //
                                         TextToNumber{u"\t17"_s, 17},   //
                                         TextToNumber{u"+17"_s, 17},    //
                                         TextToNumber{u"-17"_s, -17},   //
                                         TextToNumber{u"2.5"_s, 2.5},   //
                                         TextToNumber{u"2,5"_s, 2.5},   //
                                         TextToNumber{u",5"_s, 0.5},    //
                                         TextToNumber{u"5,"_s, 5},      //
                                         TextToNumber{u"1e3"_s, 1000},  //
                                         TextToNumber{u"1,5E-1"_s, 0.15}));

TEST(StrictNumber, RefusesWhatIsNotEntirelyANumber) {
  for (const QString& text :
       {u""_s, u"   "_s, u"abc"_s, u"12a"_s, u"a12"_s, u"1 000"_s, u"- 1"_s, u"--5"_s, u"-"_s, u"."_s, u","_s,
        u"1.2.3"_s, u"1.000,5"_s, u"1,2,3"_s, u"1e"_s, u"1e+"_s, u"e3"_s, u"&H10"_s, u"1.5.\u00A0"_s}) {
    EXPECT_EQ(ThrownKind([&] { (void)StrictNumber(text); }), Kind::TypeMismatch) << text.toStdString();
    EXPECT_EQ(ThrownKind([&] { (void)StrictInt16(text); }), Kind::TypeMismatch) << text.toStdString();
    EXPECT_EQ(ThrownKind([&] { (void)StrictInt32(text); }), Kind::TypeMismatch) << text.toStdString();
  }
}

TEST(StrictNumber, BeyondADoubleIsAnOverflow) {
  EXPECT_EQ(ThrownKind([] { (void)StrictNumber(u"1e400"); }), Kind::Overflow);
}

TEST(StrictInt16, RoundsHalfToEvenAndEndsAtItsRange) {
  EXPECT_EQ(StrictInt16(u"2.5"), 2);
  EXPECT_EQ(StrictInt16(u"3.5"), 4);
  EXPECT_EQ(StrictInt16(u"3,5"), 4);
  EXPECT_EQ(StrictInt16(u"32767"), 32767);
  EXPECT_EQ(StrictInt16(u"-32768"), -32768);
  for (const QString& text : {u"32768"_s, u"40000"_s, u"-32769"_s}) {
    EXPECT_EQ(ThrownKind([&] { (void)StrictInt16(text); }), Kind::Overflow) << text.toStdString();
  }
}

TEST(StrictInt32, RoundsHalfToEvenAndEndsAtItsRange) {
  EXPECT_EQ(StrictInt32(u"2.5"), 2);
  EXPECT_EQ(StrictInt32(u"40000"), 40000);
  EXPECT_EQ(StrictInt32(u"-2147483648"), std::numeric_limits<qint32>::min());
  EXPECT_EQ(ThrownKind([] { (void)StrictInt32(u"2147483648"); }), Kind::Overflow);
}

TEST(RoundToInt, RoundsHalfToEven) {
  EXPECT_EQ(RoundToInt16(14.5), 14);
  EXPECT_EQ(RoundToInt16(15.5), 16);
  EXPECT_EQ(RoundToInt32(-0.5), 0);
  EXPECT_EQ(RoundToInt32(-1.5), -2);
  // The product is a little below 14.5 as a double, so it is no half.
  EXPECT_EQ(RoundToInt32(0.145 * 100), 14);
}

TEST(RoundToInt, RefusesWhatDoesNotFit) {
  EXPECT_EQ(ThrownKind([] { (void)RoundToInt16(32767.5); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)RoundToInt32(2147483647.5); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)RoundToInt32(std::numeric_limits<double>::infinity()); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)RoundToInt32(std::nan("")); }), Kind::Overflow);
}

TEST(ToInt16, KeepsItsRangeOnly) {
  EXPECT_EQ(ToInt16(32767), 32767);
  EXPECT_EQ(ToInt16(-32768), -32768);
  EXPECT_EQ(ThrownKind([] { (void)ToInt16(32768); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)ToInt16(-32769); }), Kind::Overflow);
}

TEST(ToInt32, KeepsItsRangeOnly) {
  EXPECT_EQ(ToInt32(2147483647), 2147483647);
  EXPECT_EQ(ToInt32(-2147483648LL), std::numeric_limits<qint32>::min());
  EXPECT_EQ(ThrownKind([] { (void)ToInt32(2147483648LL); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)ToInt32(-2147483649LL); }), Kind::Overflow);
}

TEST(PowerOfTen, FitsA32BitNumber) {
  const qint64 powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
  for (int exponent = 0; exponent <= 9; ++exponent)
    EXPECT_EQ(PowerOfTen(exponent), powers[exponent]);
  EXPECT_EQ(PowerOfTen(-1), 1);
  EXPECT_EQ(PowerOfTen(-32768), 1);
  EXPECT_EQ(ThrownKind([] { (void)PowerOfTen(10); }), Kind::Overflow);
}

TEST(BlankNumber, HasABlankInPlaceOfTheSign) {
  EXPECT_EQ(BlankNumber(0), u" 0"_s);
  EXPECT_EQ(BlankNumber(7), u" 7"_s);
  EXPECT_EQ(BlankNumber(-1), u"-1"_s);
  EXPECT_EQ(BlankNumber(32767), u" 32767"_s);
}

struct NumberToText {
  double number;
  QString text;
};

void PrintTo(const NumberToText& example, std::ostream* out) {
  PrintTo(example.text, out);
}

class PlainNumberExamples : public testing::TestWithParam<NumberToText> {};

TEST_P(PlainNumberExamples, AreWritten) {
  EXPECT_EQ(PlainNumber(GetParam().number), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, PlainNumberExamples,
                         testing::Values(NumberToText{0, u"0"_s},                                    //
                                         NumberToText{-0.0, u"0"_s},                                 //
                                         NumberToText{1234 / 100.0, u"12.34"_s},                     //
                                         NumberToText{-50 / 100.0, u"-0.5"_s},                       //
                                         NumberToText{1200 / 100.0, u"12"_s},                        //
                                         NumberToText{100, u"100"_s},                                //
                                         NumberToText{-7, u"-7"_s},                                  //
                                         NumberToText{0.1 + 0.2, u"0.3"_s},                          //
                                         NumberToText{2147483647 / 1000000000.0, u"2.147483647"_s},  //
                                         NumberToText{-2147483648.0, u"-2147483648"_s},              //
                                         NumberToText{1 / 1000000000.0, u"0.000000001"_s},           //
                                         NumberToText{1 / 3.0, u"0.333333333333333"_s},              //
                                         NumberToText{1e15, u"1000000000000000"_s},                  //
                                         NumberToText{999999999999999.9, u"1000000000000000"_s},     //
                                         NumberToText{1e20, u"100000000000000000000"_s}));

}  // namespace
}  // namespace kalivor
