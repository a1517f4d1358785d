// The items of a text file: headings, commas, quotes, encodings, and files that are none.
#include "core/TextFile.h"

#include <gtest/gtest.h>

#include "fakes/FakeFileSystem.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

// The items of a file with these bytes.
QStringList Items(const QByteArray& bytes) {
  FakeFileSystem files;
  files.files[u"f"_s] = {bytes, {}};
  QStringList texts;
  for (const TextItem& item : ReadItems(files, u"f"_s))
    texts.append(item.text.toString());
  return texts;
}

// What the user reads about a file with these bytes; empty when it can be read.
QString Refusal(const QByteArray& bytes) {
  try {
    (void)Items(bytes);
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.GetKind(), RuntimeError::Kind::FileError);
    return error.Description();
  }
  return {};
}

TEST(ReadItems, CutsLinesIntoItems) {
  struct {
    QByteArray line;
    QStringList items;
  } const cases[] = {
      {"A  B", {u"A  B"_s}},
      {"   A  B", {u"A  B"_s}},
      {"\tA", {u"\tA"_s}},  // a tab is text
      {"A  B  ", {u"A  B  "_s}},
      {"A  B,C  D", {u"A  B"_s, u"C  D"_s}},
      {"A,  B", {u"A"_s, u"B"_s}},
      {"A ,B", {u"A "_s, u"B"_s}},
      {"A,", {u"A"_s}},
      {"A,   ", {u"A"_s}},
      {"A,,B", {u"A"_s, u""_s, u"B"_s}},
      {"\"A,B  C\"", {u"A,B  C"_s}},
      {"  \"A,B\"", {u"A,B"_s}},
      {"\"A\"lost,B", {u"A"_s, u"B"_s}},  // what stands between quote and comma is dropped
      {"\"A,B", {u"A,B"_s}},              // no closing quote
      {"\"\",B", {u""_s, u"B"_s}},
      {"A\"B,C\"", {u"A\"B"_s, u"C\""_s}},  // a quote inside is text
  };
  for (const auto& example : cases)
    EXPECT_EQ(Items("Heading\r\n" + example.line + "\r\n"), example.items)
        << testing::PrintToString(example.line);
}

TEST(ReadItems, DropsTheHeadingWhateverItHolds) {
  EXPECT_EQ(Items("A,B  C\n1"), QStringList{u"1"_s});
  EXPECT_EQ(Items("\n1"), QStringList{u"1"_s});
  EXPECT_EQ(Items("Heading"), QStringList());
  EXPECT_EQ(Items("Heading\r\n"), QStringList());
}

TEST(ReadItems, SkipsBlankLines) {
  EXPECT_EQ(Items("H\r\n\r\nA\r\n   \r\nB\r\n\r\n"), (QStringList{u"A"_s, u"B"_s}));
}

TEST(ReadItems, UnderstandsBothLineEndsAndAMissingLastOne) {
  for (const char* file : {"H\r\nA\r\nB\r\n", "H\nA\nB\n", "H\nA\nB", "H\r\nA\nB\r\n"})
    EXPECT_EQ(Items(file), (QStringList{u"A"_s, u"B"_s}));
}

TEST(ReadItems, ReadsTheSingleByteCodePage) {
  EXPECT_EQ(Items("H\n\xE4\x80\xDF\n"), QStringList{u"ä€ß"_s});
}

TEST(ReadItems, ReadsUtf8BehindItsMark) {
  EXPECT_EQ(Items("\xEF\xBB\xBFH\n\xC3\xA4\xE2\x82\xAC\n"), QStringList{u"ä€"_s});
}

TEST(ReadItems, KnowsTheLineOfEveryItem) {
  FakeFileSystem files;
  files.AddText(u"f"_s, u"H\r\nA,B\r\n\r\nC\r\n"_s);
  std::vector<int> lines;
  for (const TextItem& item : ReadItems(files, u"f"_s))
    lines.push_back(item.line);
  EXPECT_EQ(lines, (std::vector<int>{2, 2, 4}));
}

TEST(ReadItems, RefusesAFileThatIsNoText) {
  EXPECT_EQ(Refusal(""), u"Die Datei ist leer."_s);
  EXPECT_EQ(Refusal(QByteArray("H\nA\0B\n", 6)), u"Die Datei ist keine Textdatei."_s);
  EXPECT_EQ(Refusal("H\n" + QByteArray(100'001, 'x')), u"Die Datei ist keine Textdatei."_s);
  EXPECT_EQ(Refusal("H\n" + QByteArray(100'000, 'x')), QString());
}

TEST(ReadItems, TheByte1AEndsTheText) {
  EXPECT_EQ(Items("H\r\nA\r\n\x1A"), QStringList{u"A"_s});
  EXPECT_EQ(Items("H\r\nA\r\n\x1A\r\nB\r\n"), QStringList{u"A"_s});
  EXPECT_EQ(Items("H\nA  B\x1A  C\n"), QStringList{u"A  B"_s}) << "also inside a line";
  EXPECT_EQ(Items("H\n\"A,\x1A,B\"\n"), QStringList{u"A,"_s});
  EXPECT_EQ(Items("H\x1A\nA\n"), QStringList());
  EXPECT_EQ(Items("\xEF\xBB\xBFH\n\xC3\xA4\x1A\n"), QStringList{u"ä"_s});
}

TEST(ReadItems, WhatStandsBehindTheByte1ACannotMakeTheFileUnreadable) {
  EXPECT_EQ(Refusal(QByteArray("H\nA\n\x1A\0\0", 7)), QString());
  EXPECT_EQ(Refusal("H\nA\n\x1A" + QByteArray(100'001, 'x')), QString());
  EXPECT_EQ(Refusal("\x1AH\nA\n"), u"Die Datei ist leer."_s);
}

TEST(ReadItems, PassesTheReasonOfAnUnreadableFileOn) {
  FakeFileSystem files;
  files.AddFailure(u"f"_s, u"Zugriff verweigert."_s);
  try {
    (void)ReadItems(files, u"f"_s);
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.GetKind(), RuntimeError::Kind::FileError);
    EXPECT_EQ(error.Description(), u"Zugriff verweigert."_s);
  }
}

}  // namespace
}  // namespace kalivor::test
