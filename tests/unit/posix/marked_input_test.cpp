// Taking apart marked input.
#include "platform/posix/MarkedInput.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

namespace kalivor::platform {
namespace {

using Mark = MarkedInput::Mark;

template <std::size_t N>
QByteArray Bytes(const char (&text)[N]) {
  return QByteArray(text, N - 1);
}

struct Decoded {
  QByteArray characters;
  Mark mark = Mark::None;
};

Decoded DecodeAll(const QByteArray& piece) {
  MarkedInput input;
  Decoded result;
  result.mark = input.Decode(piece, result.characters);
  return result;
}

TEST(MarkedInput, PlainCharactersPass) {
  QByteArray all;
  for (int c = 0; c < 255; ++c)
    all.append(static_cast<char>(c));
  const Decoded result = DecodeAll(all);
  EXPECT_EQ(result.characters, all);
  EXPECT_EQ(result.mark, Mark::None);
}

TEST(MarkedInput, DoubledEscapeIsOneCharacter) {
  const Decoded result =
      DecodeAll(Bytes("a\xFF\xFF\xFF\xFF"
                      "b"));
  EXPECT_EQ(result.characters, Bytes("a\xFF\xFF"
                                     "b"));
  EXPECT_EQ(result.mark, Mark::None);
}

TEST(MarkedInput, DamagedCharacterBecomesAQuestionMark) {
  const Decoded result = DecodeAll(Bytes("1\xFF\0A2"));
  EXPECT_EQ(result.characters, Bytes("1?2"));
  EXPECT_EQ(result.mark, Mark::Damaged);
}

// Behind the mark, 255 is the damaged character and no escape.
TEST(MarkedInput, DamagedEscapeCharacter) {
  EXPECT_EQ(DecodeAll(Bytes("\xFF\0\xFF"
                            "2"))
                .characters,
            Bytes("?2"));
}

TEST(MarkedInput, BreakIsNoCharacter) {
  const Decoded result =
      DecodeAll(Bytes("1\xFF\0\0"
                      "2"));
  EXPECT_EQ(result.characters, Bytes("12"));
  EXPECT_EQ(result.mark, Mark::Break);
}

TEST(MarkedInput, ReportsTheLastMark) {
  EXPECT_EQ(DecodeAll(Bytes("\xFF\0\0\xFF\0A")).mark, Mark::Damaged);
  EXPECT_EQ(DecodeAll(Bytes("\xFF\0A\xFF\0\0z")).mark, Mark::Break);
}

TEST(MarkedInput, AnythingElseBehindAnEscapePasses) {
  EXPECT_EQ(DecodeAll(Bytes("\xFFzy")).characters, Bytes("\xFFzy"));
}

// However the input is cut into pieces, the result is the same.
TEST(MarkedInput, MarksSpanPieces) {
  const QByteArray all = Bytes(
      "a\xFF\xFF"
      "b\xFF\0Xc\xFF\0\0d");
  for (int first = 0; first <= all.size(); ++first) {
    for (int second = first; second <= all.size(); ++second) {
      MarkedInput input;
      QByteArray characters;
      int damaged = 0;
      int breaks = 0;
      for (const QByteArray& piece : {all.left(first), all.mid(first, second - first), all.mid(second)}) {
        const Mark mark = input.Decode(piece, characters);
        if (mark == Mark::Damaged) ++damaged;
        if (mark == Mark::Break) ++breaks;
      }
      EXPECT_EQ(characters, Bytes("a\xFF"
                                  "b?cd"))
          << first << ' ' << second;
      EXPECT_EQ(breaks, 1);
      // Only the last mark of a piece is told.
      EXPECT_LE(damaged, 1);
    }
  }
}

TEST(MarkedInput, ResetForgetsHalfAMark) {
  MarkedInput input;
  QByteArray characters;
  input.Decode(Bytes("a\xFF\0"), characters);
  input.Reset();
  EXPECT_EQ(input.Decode(Bytes("A"), characters), Mark::None);
  EXPECT_EQ(characters, Bytes("aA"));
}

}  // namespace
}  // namespace kalivor::platform
