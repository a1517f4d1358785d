// The bytes of value files: both record lengths, telling them apart, and files that are cut off or no value
// files.
#include "core/ValueFileFormat.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"
#include "unit/core/ValueFileBytes.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

// An old file with a parameter of `value` and `others` further ones.
QByteArray OldFile(qint32 value, int others) {
  QByteArray image = Old(2 + others, {}, u"AB1-123.4"_s, {}) + Old(value, {}, u"V"_s, u"long"_s);
  for (int i = 0; i < others; ++i)
    image += Old(i, {}, u"W"_s, u"int"_s);
  return image;
}

TEST(ComposeRecord, CutsWhatIsLongerThanItsField) {
  const QByteArray record = ComposeRecord(1, QString(21, u'x'), QString(31, u'n'), u"string123"_s);
  EXPECT_EQ(record, QByteArray("\x01\0\0\0", 4) + QByteArray(20, 'x') + QByteArray(30, 'n') + "string12");
}

TEST(ParseValueFile, ReadsTheCurrentLayout) {
  const QByteArray image = Current(3, {}, u"AB1-123.4"_s, {}) + Current(-2, {}, u"_abc"_s, u"long"_s) +
                           Current(0, u"Öl AB"_s, u"AVariableOfThirtyCharacters_30"_s, u"string8"_s);
  ASSERT_EQ(image.size(), 3 * 62);
  const ValueFileContent content = ParseValueFile(image);
  EXPECT_EQ(content.recordLength, 62);
  EXPECT_EQ(content.storedCount, 3);
  EXPECT_EQ(content.version, u"AB1-123.4"_s);
  ASSERT_EQ(content.records.size(), 2U);
  EXPECT_EQ(content.records[0].Wert, -2);
  EXPECT_EQ(content.records[0].WertText, QString(20, u' '));
  EXPECT_EQ(content.records[0].Variable, u"_abc"_s);
  EXPECT_EQ(content.records[0].Typ.Padded(), u"long    "_s);
  EXPECT_EQ(content.records[1].WertText, u"Öl AB               "_s) << "with its padding";
  EXPECT_EQ(content.records[1].Variable, u"AVariableOfThirtyCharacters_30"_s);
  EXPECT_EQ(content.records[1].Typ.Padded(), u"string8 "_s);
}

TEST(ParseValueFile, ReadsTheOldLayout) {
  const QByteArray image = Old(3, {}, u"AB1-123.4"_s, {}) + Old(65536, {}, u"_abc"_s, u"long"_s) +
                           Old(-1, u"AB"_s, u"ANameOf20Characters_"_s, u"string8"_s);
  ASSERT_EQ(image.size(), 3 * 52);
  const ValueFileContent content = ParseValueFile(image);
  EXPECT_EQ(content.recordLength, 52);
  EXPECT_EQ(content.storedCount, 3);
  EXPECT_EQ(content.version, u"AB1-123.4"_s);
  ASSERT_EQ(content.records.size(), 2U);
  EXPECT_EQ(content.records[0].Wert, 65536);
  EXPECT_EQ(content.records[0].Variable, u"_abc"_s);
  EXPECT_EQ(content.records[0].Typ.Padded(), u"long    "_s);
  EXPECT_EQ(content.records[1].Wert, -1);
  EXPECT_EQ(content.records[1].WertText, u"AB                  "_s);
  EXPECT_EQ(content.records[1].Variable, u"ANameOf20Characters_"_s);
}

TEST(ParseValueFile, RecognisesAnOldFileByItsSizeWhereAValueLooksLikeABlank) {
  // In a current file the byte that decides ends the version; here it is the second one of a value.
  for (const qint32 value : {8192, 8447}) {
    const QByteArray image = OldFile(value, 3);
    ASSERT_EQ(image.at(53), ' ');
    const ValueFileContent content = ParseValueFile(image);
    EXPECT_EQ(content.recordLength, 52);
    ASSERT_EQ(content.records.size(), 4U);
    EXPECT_EQ(content.records[0].Wert, value);
  }
}

TEST(ParseValueFile, TakesASizeThatFitsBothForTheCurrentLayout) {
  const QByteArray image = OldFile(8192, 29);
  ASSERT_EQ(image.size(), 31 * 52);
  ASSERT_EQ(image.size(), 26 * 62);
  EXPECT_EQ(ParseValueFile(image).recordLength, 62);
  EXPECT_EQ(ParseValueFile(OldFile(8191, 29)).recordLength, 52);
}

TEST(ParseValueFile, TakesAVersionThatFillsItsFieldForTheOldLayout) {
  EXPECT_EQ(ParseValueFile(Current(1, {}, QString(29, u'V'), {})).recordLength, 62);
  EXPECT_EQ(ParseValueFile(Current(1, {}, QString(30, u'V'), {})).recordLength, 52);
}

TEST(ParseValueFile, ReadsAHeaderAlone) {
  for (const QByteArray& image : {Current(1, {}, u"V"_s, {}), Old(1, {}, u"V"_s, {})}) {
    const ValueFileContent content = ParseValueFile(image);
    EXPECT_EQ(content.recordLength, image.size());
    EXPECT_TRUE(content.hasHeader);
    EXPECT_EQ(content.version, u"V"_s);
    EXPECT_EQ(content.storedCount, 1);
    EXPECT_TRUE(content.records.empty());
  }
}

TEST(ParseValueFile, IgnoresAnIncompleteRecordAtTheEnd) {
  const QByteArray image = Current(2, {}, u"V"_s, {}) + Current(5, {}, u"A"_s, u"int"_s);
  for (int missing = 1; missing < 62; ++missing) {
    const ValueFileContent content = ParseValueFile(image.chopped(missing));
    // 52 and 104 bytes fit the old length only.
    if (image.size() - missing == 104) continue;
    EXPECT_EQ(content.recordLength, 62) << missing;
    EXPECT_TRUE(content.records.empty()) << missing;
    EXPECT_EQ(content.version, u"V"_s) << missing;
  }
}

TEST(ParseValueFile, KnowsAnOldFileThatIsCutOffBehindItsFirstRecord) {
  const QByteArray image = OldFile(4711, 0);
  for (int size = 54; size < 104; ++size) {
    const ValueFileContent content = ParseValueFile(image.left(size));
    EXPECT_EQ(content.recordLength, 52) << size;
    EXPECT_EQ(content.version, u"AB1-123.4"_s) << size;
    EXPECT_TRUE(content.records.empty()) << size;
  }
}

TEST(ParseValueFile, HoldsNothingWhenItIsShorterThanARecord) {
  const QByteArray image = Current(7, u"text"_s, u"V"_s, u"int"_s);
  for (int size = 0; size < 62; ++size) {
    if (size == 52) continue;  // a whole old record
    const ValueFileContent content = ParseValueFile(image.left(size));
    EXPECT_FALSE(content.hasHeader) << size;
    EXPECT_EQ(content.storedCount, 0) << size;
    EXPECT_EQ(content.version, QString()) << size;
    EXPECT_TRUE(content.records.empty()) << size;
  }
}

TEST(ParseValueFile, CountsRecordsByTheSizeAndNotByTheStoredNumber) {
  for (const qint32 stored : {0, -1, 2147483647, -2147483647 - 1}) {
    const ValueFileContent content =
        ParseValueFile(Current(stored, {}, u"V"_s, {}) + Current(5, {}, u"A"_s, u"int"_s));
    EXPECT_EQ(content.storedCount, stored);
    ASSERT_EQ(content.records.size(), 1U);
    EXPECT_EQ(content.records[0].Wert, 5);
  }
}

TEST(ParseValueFile, ReadsAnyBytesWithoutFailing) {
  for (const char filler : {'\0', ' ', '\xFF'}) {
    for (int size = 0; size <= 400; ++size) {
      const ValueFileContent content = ParseValueFile(QByteArray(size, filler));
      const auto records = static_cast<std::size_t>(size / content.recordLength);
      EXPECT_EQ(content.records.size(), records == 0 ? 0 : records - 1) << size;
    }
  }
}

}  // namespace
}  // namespace kalivor::test
