// What saving a file comes to, whatever the system: what the file holds afterwards, which file it is, what is
// refused, and what others do meanwhile.
#include <atomic>
#include <thread>
#include <vector>

#include "contract/FileSite.h"

namespace kalivor::test {
namespace {

using Overwrite = FileSite;

const QString kNoFolder = u"Der Ordner ist nicht vorhanden."_s;
const QString kDirectory = u"Der Pfad ist ein Ordner."_s;
const QString kBadName = u"Der Dateiname ist ungültig."_s;
const QString kTooLarge = u"Die Datei ist zu groß."_s;

TEST_F(Overwrite, MakesANewFile) {
  EXPECT_EQ(Save(u"new.qpf"_s, "content"), QString());
  EXPECT_EQ(Stored(u"new.qpf"_s), "content");
  EXPECT_EQ(Names(), QStringList{u"new.qpf"_s});
}

TEST_F(Overwrite, MakesAnEmptyFile) {
  EXPECT_EQ(Save(u"new.qpf"_s, {}), QString());
  EXPECT_EQ(Stored(u"new.qpf"_s), QByteArray());
}

TEST_F(Overwrite, KeepsWhatALongerFileHoldsBehind) {
  const struct {
    QByteArray before, beginning, after;
  } cases[] = {
      {"abcdef", "ABCDEF", "ABCDEF"},
      {"abcdef", "ABCDEFGHI", "ABCDEFGHI"},
      {"abcdef", "AB", "ABcdef"},
      {"abcdef", "ABCDE", "ABCDEf"},
      {"abcdef", {}, "abcdef"},
      {{}, "AB", "AB"},
      {QByteArray("a\0b\0c", 5), "X", QByteArray("X\0b\0c", 5)},
  };
  for (const auto& example : cases) {
    Write(u"a.qpf"_s, example.before);
    EXPECT_EQ(Save(u"a.qpf"_s, example.beginning), QString());
    EXPECT_EQ(Stored(u"a.qpf"_s), example.after);
    EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
  }
}

TEST_F(Overwrite, KeepsALongTailByteForByte) {
  QByteArray before;
  for (int i = 0; i < 300'000; ++i)
    before.append(static_cast<char>(i * 7));
  Write(u"a.qpf"_s, before);
  const QByteArray beginning(124'062, 'x');
  EXPECT_EQ(Save(u"a.qpf"_s, beginning), QString());
  EXPECT_EQ(Stored(u"a.qpf"_s), beginning + before.mid(beginning.size()));
}

TEST_F(Overwrite, IsReadBackByTheSameName) {
  EXPECT_EQ(Save(u"Größe ä €.qpf"_s, "content"), QString());
  EXPECT_EQ(files_.Read(Path(u"Größe ä €.qpf"_s)).bytes, "content");
  EXPECT_EQ(files_.Read(Path(u"GRÖSSE Ä €.QPF"_s)).Ok(), false) << "capitals do not make an ß of SS";
  EXPECT_EQ(files_.Read(Path(u"größe Ä €.QPF"_s)).bytes, "content");
}

TEST_F(Overwrite, TakesBothSeparatorsAlsoDoubledAndMixed) {
  Write(u"sub/deep/a.qpf"_s, "x");
  EXPECT_EQ(Save(u"sub\\deep\\a.qpf"_s, "1"), QString());
  EXPECT_EQ(Stored(u"sub/deep/a.qpf"_s), "1");
  EXPECT_EQ(Save(u"sub\\\\deep//a.qpf"_s, "2"), QString());
  EXPECT_EQ(Stored(u"sub/deep/a.qpf"_s), "2");
  EXPECT_EQ(Save(u"sub\\deep\\new.qpf"_s, "3"), QString());
  EXPECT_EQ(Stored(u"sub/deep/new.qpf"_s), "3");
}

TEST_F(Overwrite, WritesTheOneFileThatDiffersInCaseOnly) {
  Write(u"Werte/Anlage.qpf"_s, "x");
  EXPECT_EQ(Save(u"WERTE\\ANLAGE.QPF"_s, "1"), QString());
  EXPECT_EQ(Stored(u"Werte/Anlage.qpf"_s), "1");
  EXPECT_EQ(Names(u"Werte"_s), QStringList{u"Anlage.qpf"_s});
}

TEST_F(Overwrite, ANewFileKeepsItsNameInTheFolderThatExists) {
  Write(u"Werte/Anlage.qpf"_s, "x");
  EXPECT_EQ(Save(u"WERTE/Neu.QPF"_s, "1"), QString());
  EXPECT_EQ(Stored(u"Werte/Neu.QPF"_s), "1");
  EXPECT_EQ(Names(), QStringList{u"Werte"_s});
}

TEST_F(Overwrite, FindsRelativePaths) {
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(folder_.path()));
  EXPECT_EQ(files_.Overwrite(u"a.qpf"_s, "1"), QString());
  EXPECT_EQ(files_.Overwrite(u"A.qpf"_s, "2"), QString());
  ASSERT_TRUE(QDir::setCurrent(before));
  EXPECT_EQ(Stored(u"a.qpf"_s), "2");
  EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
}

TEST_F(Overwrite, TakesTheLongestName) {
  const QString name(255, u'x');
  EXPECT_EQ(Save(name, "1"), QString());
  EXPECT_EQ(Save(name, "2"), QString());
  EXPECT_EQ(Stored(name), "2");
}

TEST_F(Overwrite, RefusesHugeFilesWithoutReadingThem) {
  QFile file(Path(u"huge.qpf"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_TRUE(file.resize(platform::FileSystem::kLargestFile_bytes + 1));
  file.close();
  EXPECT_EQ(Save(u"huge.qpf"_s, "x"), kTooLarge);
  EXPECT_EQ(file.size(), platform::FileSystem::kLargestFile_bytes + 1);
}

TEST_F(Overwrite, TakesNamesOfEveryWriting) {
  for (const QString& name : {u"日本.qpf"_s, u"Ωмир.qpf"_s, u"\U0001F600.qpf"_s}) {
    EXPECT_EQ(Save(name, "old"), QString());
    EXPECT_EQ(Save(name, "new"), QString());
    EXPECT_EQ(Stored(name), "new");
  }
}

TEST_F(Overwrite, TakesPathsOfAnyDepth) {
  const QString deep = QString(100, u'd') + u'/' + QString(100, u'e') + u'/' + QString(100, u'f');
  ASSERT_TRUE(QDir().mkpath(Path(deep)));
  EXPECT_EQ(Save(deep + u"/a.qpf"_s, "old"), QString());
  EXPECT_EQ(Save(deep + u"/a.qpf"_s, "new"), QString());
  EXPECT_EQ(Stored(deep + u"/a.qpf"_s), "new");
  EXPECT_EQ(Save(deep + u"/missing/a.qpf"_s, "x"), kNoFolder);
}

TEST_F(Overwrite, RefusesFolders) {
  Write(u"sub/a.qpf"_s, "x");
  EXPECT_EQ(Save(u"sub"_s, "x"), kDirectory);
  EXPECT_EQ(Save(u"SUB"_s, "x"), kDirectory);
  EXPECT_EQ(Save(u"sub/"_s, "x"), kDirectory);
  EXPECT_EQ(Save(u"missing/"_s, "x"), kDirectory);
  EXPECT_EQ(files_.Overwrite(u"/"_s, "x"), kDirectory);
  EXPECT_EQ(Names(), QStringList{u"sub"_s});
}

TEST_F(Overwrite, RefusesImpossibleNames) {
  EXPECT_EQ(files_.Overwrite({}, "x"), kBadName);
  EXPECT_EQ(Save(u"a"_s + QChar(0) + u"b"_s, "x"), kBadName);
  EXPECT_EQ(Save(u"missing/a.qpf"_s, "x"), kNoFolder);
  EXPECT_EQ(Names(), QStringList());
}

// --- replacing the whole file ---

TEST_F(Overwrite, ReplacingLeavesExactlyTheContent) {
  EXPECT_EQ(files_.Replace(Path(u"new.json"_s), "content"), QString());
  EXPECT_EQ(Stored(u"new.json"_s), "content");
  for (const QByteArray& content : {QByteArray("shorter"), QByteArray(), QByteArray(300'000, 'x')}) {
    Write(u"a.json"_s, QByteArray(124'062, 'o'));
    EXPECT_EQ(files_.Replace(Path(u"A.JSON"_s), content), QString());
    EXPECT_EQ(Stored(u"a.json"_s), content);
  }
  EXPECT_EQ(Names(), (QStringList{u"a.json"_s, u"new.json"_s}));
}

TEST_F(Overwrite, ReplacingMakesEveryMissingFolder) {
  Write(u"Da/x"_s, "x");
  EXPECT_EQ(files_.Replace(Path(u"DA\\Größe ä//neu/a.json"_s), "1"), QString());
  EXPECT_EQ(files_.Replace(Path(u"Da/GRÖSSE/b.json"_s), "2"), QString());
  EXPECT_EQ(files_.Replace(Path(u"da/größe Ä/NEU/A.json"_s), "3"), QString());
  EXPECT_EQ(Stored(u"Da/Größe ä/neu/a.json"_s), "3");
  EXPECT_EQ(Stored(u"Da/GRÖSSE/b.json"_s), "2");
  EXPECT_EQ(Names(), QStringList{u"Da"_s});
  EXPECT_EQ(Names(u"Da/Größe ä"_s), QStringList{u"neu"_s});
}

TEST_F(Overwrite, ReplacingRefusesWhatSavingRefuses) {
  Write(u"sub/a.json"_s, "x");
  EXPECT_EQ(files_.Replace(Path(u"sub"_s), "x"), kDirectory);
  EXPECT_EQ(files_.Replace(Path(u"missing/"_s), "x"), kDirectory);
  EXPECT_EQ(files_.Replace({}, "x"), kBadName);
  EXPECT_NE(files_.Replace(Path(u"sub/a.json/deeper/b.json"_s), "x"), QString());
  EXPECT_EQ(Names(), QStringList{u"sub"_s});
  EXPECT_EQ(Stored(u"sub/a.json"_s), "x");
}

// --- what others do ---

TEST_F(Overwrite, RemovesWhatAKilledSaveHasLeft) {
  Write(u"a.qpf"_s, "old");
  Write(u".kalivor-0123456789abcdef.tmp"_s, "the beginning of an image");
  EXPECT_EQ(Save(u"b.qpf"_s, "other"), QString()) << "whatever file of the folder is saved";
  EXPECT_EQ(Names(), (QStringList{u"a.qpf"_s, u"b.qpf"_s}));
}

TEST_F(Overwrite, LeavesEverythingElseOfASimilarName) {
  for (const QString& name :
       {u".kalivor-0123456789abcde.tmp"_s, u".kalivor-0123456789abcdef.qpf"_s,
        u".kalivor-0123456789ABCDEF.tmp"_s, u".kalivor-0123456789abcdef0.tmp"_s,
        u".kalivor-0123456789abcdeg.tmp"_s, u"kalivor-0123456789abcdef.tmp"_s, u".kalivor-.tmp"_s})
    Write(name, "x");
  ASSERT_TRUE(QDir(folder_.path()).mkdir(u".kalivor-3333333333333333.tmp"_s));
  const QStringList before = Names();
  EXPECT_EQ(Save(u"kalivor-0123456789abcdef.tmp"_s, "y"), QString());
  EXPECT_EQ(Names(), before);
}

TEST_F(Overwrite, SavesIntoOneFolderDoNotDisturbEachOther) {
  constexpr int kWriters = 3;
  constexpr int kSaves = 40;
  std::vector<std::thread> writers;
  writers.reserve(kWriters);
  std::vector<QStringList> errors(kWriters);
  for (int i = 0; i < kWriters; ++i) {
    writers.emplace_back([&, i] {
      for (int save = 0; save < kSaves; ++save)
        errors[static_cast<size_t>(i)].append(Save(u"%1.qpf"_s.arg(i), QByteArray::number(save + 100)));
    });
  }
  for (std::thread& writer : writers)
    writer.join();
  for (const QStringList& ofWriter : errors)
    EXPECT_EQ(ofWriter.join(QString()), QString());
  EXPECT_EQ(Names(), (QStringList{u"0.qpf"_s, u"1.qpf"_s, u"2.qpf"_s}));
  for (const QString& name : Names())
    EXPECT_EQ(Stored(name), QByteArray::number(kSaves - 1 + 100));
}

TEST_F(Overwrite, AReaderGetsTheOldFileOrTheNewOne) {
  const QByteArray images[] = {QByteArray(20'000, 'a'), QByteArray(20'000, 'b')};
  Write(u"a.qpf"_s, images[0]);
  std::atomic<bool> saving{true};
  std::thread writer([&] {
    for (int save = 0; save < 30; ++save)
      EXPECT_EQ(Save(u"a.qpf"_s, images[save % 2]), QString());
    saving = false;
  });
  int readings = 0;
  while (saving) {
    const platform::FileContent content = files_.Read(Path(u"a.qpf"_s));
    EXPECT_EQ(content.error, QString());
    EXPECT_TRUE(content.bytes == images[0] || content.bytes == images[1]) << content.bytes.size();
    ++readings;
    // Others are to get at the file as well.
    std::this_thread::yield();
  }
  writer.join();
  EXPECT_GT(readings, 0);
}

}  // namespace
}  // namespace kalivor::test
