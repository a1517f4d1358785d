// What reading a file comes to, whatever the system.
#include "contract/FileSite.h"

namespace kalivor::test {
namespace {

using FileSystem = ReadingSite;

const QString kNotFound = u"Datei nicht gefunden."_s;
const QString kDirectory = u"Der Pfad ist ein Ordner."_s;
const QString kTooLarge = u"Die Datei ist zu groß."_s;

TEST_F(FileSystem, ReadsAllBytes) {
  QByteArray all;
  for (int i = 0; i < 100'000; ++i)
    all.append(static_cast<char>(i * 7));
  Write(u"a.bin"_s, all);
  EXPECT_EQ(Bytes(u"a.bin"_s), all);
}

TEST_F(FileSystem, ReadsAnEmptyFile) {
  Write(u"empty"_s, {});
  EXPECT_EQ(Bytes(u"empty"_s), QByteArray());
}

TEST_F(FileSystem, TakesBothSeparatorsAlsoDoubledAndMixed) {
  Write(u"sub/deep/a.txt"_s, "x");
  EXPECT_EQ(Bytes(u"sub\\deep\\a.txt"_s), "x");
  EXPECT_EQ(Bytes(u"sub\\deep/a.txt"_s), "x");
  EXPECT_EQ(Bytes(u"sub//deep\\\\a.txt"_s), "x");
  EXPECT_EQ(Bytes(u"sub\\\\DEEP//A.TXT"_s), "x");
}

TEST_F(FileSystem, FindsTheOneNameInOtherCase) {
  Write(u"def.txt"_s, "x");
  EXPECT_EQ(Bytes(u"DEF.TXT"_s), "x");
  EXPECT_EQ(Bytes(u"Def.Txt"_s), "x");
  Write(u"Größe Ä.TXT"_s, "y");
  EXPECT_EQ(Bytes(u"größe ä.txt"_s), "y");
}

TEST_F(FileSystem, FindsFoldersInOtherCase) {
  Write(u"Regler/Tabellen/def.txt"_s, "x");
  EXPECT_EQ(Bytes(u"REGLER/tabellen/DEF.TXT"_s), "x");
  EXPECT_EQ(Bytes(u"REGLER/../regler/./Tabellen/def.txt"_s), "x");
}

TEST_F(FileSystem, FindsRelativePaths) {
  Write(u"def.txt"_s, "x");
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(folder_.path()));
  EXPECT_EQ(files_.Read(u"def.txt"_s).bytes, "x");
  EXPECT_EQ(files_.Read(u"DEF.txt"_s).bytes, "x");
  ASSERT_TRUE(QDir::setCurrent(before));
}

TEST_F(FileSystem, RefusesDirectories) {
  Write(u"sub/a.txt"_s, "x");
  EXPECT_EQ(Error(u"sub"_s), kDirectory);
  EXPECT_EQ(Error(u"SUB"_s), kDirectory);
  EXPECT_EQ(ErrorOfPath(u"/"_s), kDirectory);
}

TEST_F(FileSystem, RefusesHugeFilesWithoutReadingThem) {
  // Sparse: takes no room on the disk.
  QFile file(Path(u"huge"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_TRUE(file.resize(platform::FileSystem::kLargestFile_bytes + 1));
  EXPECT_EQ(Error(u"huge"_s), kTooLarge);
  ASSERT_TRUE(file.resize(1LL << 40));
  EXPECT_EQ(Error(u"huge"_s), kTooLarge);
}

TEST_F(FileSystem, TellsMissingFiles) {
  EXPECT_EQ(Error(u"missing.txt"_s), kNotFound);
  EXPECT_EQ(Error(u"missing/def.txt"_s), kNotFound);
  EXPECT_EQ(ErrorOfPath(QString()), kNotFound);
  EXPECT_TRUE(files_.Read(Path(u"missing.txt"_s)).missing);
  EXPECT_TRUE(files_.Read(Path(u"missing/def.txt"_s)).missing);
  EXPECT_FALSE(files_.Read(folder_.path()).missing);
}

TEST_F(FileSystem, RefusesANameWithACharacterOfCode0) {
  Write(u"a"_s, "x");
  EXPECT_EQ(Error(u"a"_s + QChar(0) + u"b"_s), u"Der Dateiname ist ungültig."_s);
}

TEST_F(FileSystem, TakesNamesOfEveryWriting) {
  for (const QString& name :
       {u"Ä€ß.txt"_s, u"日本.txt"_s, u"Ωмир.txt"_s, u"\U0001F600.txt"_s, u"a b  c.txt"_s}) {
    Write(name, "x");
    EXPECT_EQ(Bytes(name), "x") << name.toStdString();
  }
}

TEST_F(FileSystem, TakesPathsOfAnyDepth) {
  const QString deep = QString(100, u'd') + u'/' + QString(100, u'e') + u'/' + QString(100, u'f');
  Write(deep + u"/a.txt"_s, "x");
  EXPECT_EQ(Bytes(deep + u"/a.txt"_s), "x");
  EXPECT_EQ(Error(deep + u"/missing.txt"_s), kNotFound);
}

}  // namespace
}  // namespace kalivor::test
