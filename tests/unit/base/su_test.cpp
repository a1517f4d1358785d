// The text and number helpers: hexadecimal, padding, scaled display.
#include "base/su.h"

#include <gtest/gtest.h>
#include <limits>

#include "base/Numbers.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

using Kind = RuntimeError::Kind;

TEST(IsHex, KnowsTheDigitsOfEitherCase) {
  for (int code = 0; code < 0x250; ++code) {
    const QChar c(code);
    EXPECT_EQ(su::IsHex(QString(c)), QStringView(u"0123456789ABCDEFabcdef").contains(c)) << code;
  }
  EXPECT_TRUE(su::IsHex(u"1f0A"));
  EXPECT_FALSE(su::IsHex(u"1f0G"));
  EXPECT_TRUE(su::IsHex(u""));
}

TEST(HexToNumber, ReadsDigitsOfEitherCaseAndAnyLength) {
  EXPECT_EQ(su::HexToNumber(u"1F"), 31);
  EXPECT_EQ(su::HexToNumber(u"ffff"), 65535);
  EXPECT_EQ(su::HexToNumber(u"0123456789"), 0x123456789LL);
  EXPECT_EQ(su::HexToNumber(u"abcdef"), 0xABCDEF);
  EXPECT_EQ(su::HexToNumber(u"ABCDEF"), 0xABCDEF);
  EXPECT_EQ(su::HexToNumber(u"FFFFFFFF"), 4294967295.0);
  EXPECT_EQ(su::HexToNumber(u"10000000000000000"), 18446744073709551616.0);
  EXPECT_EQ(su::HexToNumber(u""), 0);
}

TEST(HexToNumber, CountsOtherCharactersAsZero) {
  EXPECT_EQ(su::HexToNumber(u"1g2"), 258);
  EXPECT_EQ(su::HexToNumber(u"G"), 0);
  EXPECT_EQ(su::HexToNumber(u"@/:`"), 0);
  EXPECT_EQ(su::HexToNumber(u"-1"), 1);
  EXPECT_EQ(su::HexToNumber(u" 1 "), 16);
}

TEST(SignedHexToNumber, IsTwosComplementOfAsManyDigitsAsThereAre) {
  EXPECT_EQ(su::SignedHexToNumber(u"FFFE"), -2);
  EXPECT_EQ(su::SignedHexToNumber(u"7FFF"), 32767);
  EXPECT_EQ(su::SignedHexToNumber(u"8000"), -32768);
  EXPECT_EQ(su::SignedHexToNumber(u"8"), -8);
  EXPECT_EQ(su::SignedHexToNumber(u"F"), -1);
  EXPECT_EQ(su::SignedHexToNumber(u"9"), -7);
  EXPECT_EQ(su::SignedHexToNumber(u"a"), -6);
  EXPECT_EQ(su::SignedHexToNumber(u"ffff"), -1);
  EXPECT_EQ(su::SignedHexToNumber(u"0FFF"), 4095);
  EXPECT_EQ(su::SignedHexToNumber(u"80000000"), -2147483648.0);
  EXPECT_EQ(su::SignedHexToNumber(u""), 0);
}

// The sign is decided by the order of character codes, so what stands behind "8" counts as negative even when
// it is no digit, and what stands before it as positive.
TEST(SignedHexToNumber, TakesTheSignFromTheCodeOrder) {
  EXPECT_EQ(su::SignedHexToNumber(u"G000"), -65536);
  EXPECT_EQ(su::SignedHexToNumber(u"/FFF"), 4095);
  EXPECT_EQ(su::SignedHexToNumber(u" FFF"), 4095);
  EXPECT_EQ(su::SignedHexToNumber(u":"), -16);
}

TEST(HexPad, PadsAndCutsOnTheLeft) {
  EXPECT_EQ(su::HexPad(65540, 4), u"0004"_s);
  EXPECT_EQ(su::HexPad(31, 4), u"001F"_s);
  EXPECT_EQ(su::HexPad(256, 2), u"00"_s);
  EXPECT_EQ(su::HexPad(0, 2), u"00"_s);
  EXPECT_EQ(su::HexPad(0xABCDEF, 6), u"ABCDEF"_s);
  EXPECT_EQ(su::HexPad(31, 0), u""_s);
  EXPECT_EQ(su::HexPad(31, -1), u""_s);
}

// Sixteen zeros are put in front, and no more than there are characters can be returned.
TEST(HexPad, HasAtMostSixteenZeros) {
  EXPECT_EQ(su::HexPad(31, 16), u"000000000000001F"_s);
  EXPECT_EQ(su::HexPad(31, 20), u"00000000000000001F"_s);
}

TEST(HexPad, WritesNegativesIn32BitTwosComplement) {
  EXPECT_EQ(su::HexPad(-1, 2), u"FF"_s);
  EXPECT_EQ(su::HexPad(-1, 4), u"FFFF"_s);
  EXPECT_EQ(su::HexPad(-1, 8), u"FFFFFFFF"_s);
  EXPECT_EQ(su::HexPad(-1, 10), u"00FFFFFFFF"_s);
  EXPECT_EQ(su::HexPad(-40000, 4), u"63C0"_s);
  EXPECT_EQ(su::HexPad(-2147483648.0, 8), u"80000000"_s);
  EXPECT_EQ(ThrownKind([] { (void)su::HexPad(-2147483649.0, 8); }), Kind::Overflow);
}

TEST(HexPad, WritesPositivesBelow2To63) {
  EXPECT_EQ(su::HexPad(4294967295.0, 8), u"FFFFFFFF"_s);
  EXPECT_EQ(su::HexPad(su::HexToNumber(u"FFFFFFFE") + 6, 8), u"00000004"_s);
  EXPECT_EQ(su::HexPad(4611686018427387904.0, 16), u"4000000000000000"_s);
  EXPECT_EQ(ThrownKind([] { (void)su::HexPad(9223372036854775808.0, 16); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)su::HexPad(std::numeric_limits<double>::quiet_NaN(), 4); }),
            Kind::Overflow);
}

TEST(HexPad, RoundsHalfToEven) {
  EXPECT_EQ(su::HexPad(2.5, 2), u"02"_s);
  EXPECT_EQ(su::HexPad(3.5, 2), u"04"_s);
  EXPECT_EQ(su::HexPad(-0.5, 2), u"00"_s);
}

TEST(HexPad, ReadsTextsByTheirLeadingNumber) {
  EXPECT_EQ(su::HexPad(u"31", 4), u"001F"_s);
  EXPECT_EQ(su::HexPad(u"2.5", 2), u"02"_s);
  EXPECT_EQ(su::HexPad(u"12abc", 2), u"0C"_s);
  EXPECT_EQ(su::HexPad(u"&H1F", 4), u"001F"_s);
  EXPECT_EQ(su::HexPad(u"-1", 4), u"FFFF"_s);
  EXPECT_EQ(su::HexPad(u"", 2), u"00"_s);
}

TEST(Align, RightPutsTheFillInFront) {
  EXPECT_EQ(su::Align(u"abc"_s, 5, u"R", u"."), u"..abc"_s);
  EXPECT_EQ(su::Align(u""_s, 3, u"R", u"0"), u"000"_s);
}

TEST(Align, LeftPutsTheFillBehind) {
  EXPECT_EQ(su::Align(u"abc"_s, 5, u"L", u"."), u"abc.."_s);
  EXPECT_EQ(su::Align(u""_s, 2, u"L", u" "), u"  "_s);
}

TEST(Align, NeverCuts) {
  for (const QString& alignment : {u"R"_s, u"L"_s}) {
    EXPECT_EQ(su::Align(u"abc"_s, 2, alignment, u"."), u"abc"_s);
    EXPECT_EQ(su::Align(u"abc"_s, 3, alignment, u"."), u"abc"_s);
    EXPECT_EQ(su::Align(u"abc"_s, -5, alignment, u"."), u"abc"_s);
  }
}

TEST(Align, AnyOtherAlignmentReturnsTheText) {
  for (const QString& alignment : {u"C"_s, u""_s, u"r"_s, u"l"_s, u"RL"_s}) {
    EXPECT_EQ(su::Align(u"abc"_s, 5, alignment, u"."), u"abc"_s) << alignment.toStdString();
  }
}

TEST(Align, RepeatsALongFillWhole) {
  EXPECT_EQ(su::Align(u"abc"_s, 5, u"L", u"xy"), u"abcxyxy"_s);
  EXPECT_EQ(su::Align(u"abc"_s, 5, u"R", u"xy"), u"xyxyabc"_s);
}

TEST(Align, AnEmptyFillAddsNothing) {
  EXPECT_EQ(su::Align(u"abc"_s, 5, u"L", u""), u"abc"_s);
  EXPECT_EQ(su::Align(u"abc"_s, 5, u"R", u""), u"abc"_s);
}

struct Scaled {
  qint32 value;
  int dropped;
  int decimals;
  QString text;  // in width 6 with 2 in reserve
};

void PrintTo(const Scaled& example, std::ostream* out) {
  PrintTo(example.text, out);
}

class ScaledNumberExamples : public testing::TestWithParam<Scaled> {};

TEST_P(ScaledNumberExamples, AreWritten) {
  const Scaled& example = GetParam();
  EXPECT_EQ(su::ScaledNumber(example.value, example.dropped, example.decimals, 6, 2, u" "), example.text);
}

constexpr qint32 kLowest = std::numeric_limits<qint32>::min();

INSTANTIATE_TEST_SUITE_P(All, ScaledNumberExamples,
                         testing::Values(Scaled{1234, 0, 0, u"  1234   "_s},            //
                                         Scaled{0, 0, 0, u"     0   "_s},               //
                                         Scaled{-5, 0, 0, u"    -5   "_s},              //
                                         Scaled{1234567, 0, 0, u"1234567  "_s},         //
                                         Scaled{1234567890, 0, 0, u"1234567890"_s},     //
                                         Scaled{1234, 1, 1, u"    12.3 "_s},            //
                                         Scaled{1234, 0, 2, u"    12.34"_s},            //
                                         Scaled{-1234, 0, 2, u"   -12.34"_s},           //
                                         Scaled{1204, 0, 2, u"    12.04"_s},            //
                                         Scaled{5, 0, 3, u"     0.005"_s},              //
                                         Scaled{kLowest, 0, 2, u"-21474836.48"_s},      //
                                         Scaled{kLowest, 0, 9, u"    -2.147483648"_s},  //
                                         Scaled{2147483647, 9, 0, u"     2   "_s}));

// Dropped digits are cut off, not rounded, on both sides of zero.
INSTANTIATE_TEST_SUITE_P(Dropped, ScaledNumberExamples,
                         testing::Values(Scaled{1239, 1, 1, u"    12.3 "_s},   //
                                         Scaled{-1239, 1, 1, u"   -12.3 "_s},  //
                                         Scaled{1999, 3, 0, u"     1   "_s},   //
                                         Scaled{-1999, 3, 0, u"    -1   "_s},  //
                                         Scaled{999, 3, 0, u"     0   "_s}));

// The sign belongs to the integer part and is lost when that is 0.
INSTANTIATE_TEST_SUITE_P(LostSign, ScaledNumberExamples,
                         testing::Values(Scaled{-50, 0, 2, u"     0.50"_s},
                                         Scaled{-1, 0, 1, u"     0.1 "_s}));

// Negative digit counts are counted as 0; without decimals there is no point.
INSTANTIATE_TEST_SUITE_P(NegativeCounts, ScaledNumberExamples,
                         testing::Values(Scaled{1234, 0, -1, u"  1234   "_s},         //
                                         Scaled{1234, -1, 0, u"  1234   "_s},         //
                                         Scaled{1234, -1, 2, u"    12.34"_s},         //
                                         Scaled{1234, -9, 9, u"     0.000001234"_s},  //
                                         Scaled{1234, -5, -5, u"  1234   "_s},        //
                                         Scaled{1234, 2, -1, u"   123   "_s}));

TEST(ScaledNumber, AlignsWithItsFillAndReservesBlanks) {
  EXPECT_EQ(su::ScaledNumber(42, 0, 0, 5, 0, u"."), u"...42 "_s);
  EXPECT_EQ(su::ScaledNumber(42, 0, 1, 5, 0, u"0"), u"00004.2"_s);
  EXPECT_EQ(su::ScaledNumber(42, 0, 0, 0, 4, u" "), u"42   "_s);
}

TEST(ScaledNumber, MoreThanNineDigitsAreAnOverflow) {
  EXPECT_EQ(ThrownKind([] { (void)su::ScaledNumber(1, 5, 5, 6, 2, u" "); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)su::ScaledNumber(1, 10, 0, 6, 2, u" "); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)su::ScaledNumber(0, 0, 10, 6, 2, u" "); }), Kind::Overflow);
  EXPECT_EQ(ThrownKind([] { (void)su::ScaledNumber(1, 32767, 32767, 6, 2, u" "); }), Kind::Overflow);
}

}  // namespace
}  // namespace kalivor
