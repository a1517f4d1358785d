// The code page of files and telegrams, byte by byte.
#include "base/Windows1252.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// All characters of the bytes 00 to FF in order. The bytes 81, 8D, 8F, 90 and 9D are undefined in the code
// page and stand for the control characters of the same number.
QString WholeCodePage() {
  QString characters;
  for (char16_t code = 0; code < 0x80; ++code)
    characters += QChar(code);
  characters += u"€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F"_s;
  characters += u"\u0090‘’“”•–—˜™š›œ\u009DžŸ"_s;
  for (char16_t code = 0xA0; code <= 0xFF; ++code)
    characters += QChar(code);
  return characters;
}

QByteArray AllBytes() {
  QByteArray bytes;
  for (int byte = 0; byte <= 0xFF; ++byte)
    bytes.append(static_cast<char>(byte));
  return bytes;
}

TEST(Windows1252, HasACharacterForEveryByte) {
  const QString characters = WholeCodePage();
  ASSERT_EQ(characters.size(), 256);
  for (int byte = 0; byte <= 0xFF; ++byte) {
    EXPECT_EQ(CharacterFromByte(static_cast<quint8>(byte)), characters.at(byte)) << std::hex << byte;
    EXPECT_EQ(ByteFromCharacter(characters.at(byte)), byte) << std::hex << byte;
  }
}

TEST(Windows1252, ConvertsWholeTextsBothWays) {
  EXPECT_EQ(TextFromBytes(AllBytes()), WholeCodePage());
  EXPECT_EQ(BytesFromText(WholeCodePage()), AllBytes());
}

TEST(Windows1252, KnowsTheCharactersOfDefinitionFiles) {
  EXPECT_EQ(TextFromBytes("\xE4\xF6\xFC\xC4\xD6\xDC\xDF\xB0\x80"), u"äöüÄÖÜß°€"_s);
  EXPECT_EQ(BytesFromText(u"Öl€"), QByteArray("\xD6l\x80"));
}

TEST(Windows1252, EverythingElseBecomesAQuestionMark) {
  const QString characters = WholeCodePage();
  int mapped = 0;
  for (int code = 0; code <= 0xFFFF; ++code) {
    const QChar character(static_cast<char16_t>(code));
    if (characters.contains(character)) {
      ++mapped;
    } else {
      ASSERT_EQ(ByteFromCharacter(character), '?') << std::hex << code;
    }
  }
  EXPECT_EQ(mapped, 256);
}

// A character outside the basic plane is two code units, and every code unit is one byte.
TEST(Windows1252, KeepsTheNumberOfCodeUnits) {
  EXPECT_EQ(BytesFromText(u"a\u4E2Db"), QByteArray("a?b"));
  EXPECT_EQ(BytesFromText(u"a\U0001F600b"), QByteArray("a??b"));
}

TEST(Windows1252, ConvertsEmptyTexts) {
  EXPECT_EQ(TextFromBytes(QByteArrayView()), u""_s);
  EXPECT_EQ(BytesFromText(QStringView()), QByteArray());
}

}  // namespace
}  // namespace kalivor
