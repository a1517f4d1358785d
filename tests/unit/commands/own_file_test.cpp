// The file that each running program has for itself: which one it takes, and what it leaves to others.
#include "commands/OwnFile.h"

#include <gtest/gtest.h>
#include <QSet>

#include "fakes/FakeFileSystem.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

class OwnFiles : public testing::Test {
 protected:
  OwnFile Program(const QString& folder = Native(u"/zustand"_s)) {
    return {files, folder, u"Name.json"_s, {u"unlesbar:"_s, u"beschädigt:"_s}, [this](const QString& path) {
              if (onTake) onTake(path);
              if (taken.contains(path)) return false;
              taken.insert(path);
              return true;
            }};
  }

  static QString Path(int number) {
    return Native(number == 1 ? u"/zustand/Name.json"_s : u"/zustand/Name-%1.json"_s.arg(number));
  }

  /// What a program that starts now is given; "-" for nothing.
  static QByteArray Loaded(OwnFile& file) {
    QByteArray loaded = "-";
    EXPECT_EQ(file.Load([&loaded](const QByteArray& bytes) {
      loaded = bytes;
      return true;
    }),
              QString());
    return loaded;
  }

  FakeFileSystem files;
  QSet<QString> taken;
  std::function<void(const QString& path)> onTake;
};

TEST_F(OwnFiles, NineProgramsHaveOneEachAndTheTenthHasNone) {
  for (int number = 1; number <= OwnFile::kMostPrograms; ++number) {
    OwnFile file = Program();
    EXPECT_EQ(file.Path(), QString());
    EXPECT_EQ(file.TakeEmpty(), QString());
    EXPECT_EQ(file.Number(), number);
    EXPECT_EQ(file.Path(), Path(number));
  }
  OwnFile tenth = Program();
  EXPECT_EQ(tenth.TakeEmpty(), Native(u"/zustand"_s));
  EXPECT_EQ(tenth.Number(), 0);
}

TEST_F(OwnFiles, TheLastOneIsFoundToo) {
  files.files[Path(OwnFile::kMostPrograms)] = {"content", {}};
  files.files[Path(OwnFile::kMostPrograms + 1)] = {"beyond", {}};
  OwnFile first = Program();
  OwnFile second = Program();
  EXPECT_EQ(Loaded(first), "content");
  EXPECT_EQ(first.Path(), Path(OwnFile::kMostPrograms));
  EXPECT_EQ(Loaded(second), "-");
  EXPECT_EQ(second.Number(), 0);
}

TEST_F(OwnFiles, OneThatIsTakenIsKept) {
  OwnFile file = Program();
  EXPECT_EQ(file.TakeEmpty(), QString());
  files.files[Path(1)] = {"content", {}};
  EXPECT_EQ(file.TakeEmpty(), QString());
  EXPECT_EQ(file.Number(), 1);
  file.Use(0);
  EXPECT_EQ(file.TakeEmpty(), QString());
  EXPECT_EQ(file.Number(), 2) << "what the first one holds stays";
  file.Use(1);
  EXPECT_EQ(file.Path(), Path(1));
  file.Use(0);
  files.files[Path(1)] = {{}, {}};
  EXPECT_EQ(file.TakeEmpty(), QString());
  EXPECT_EQ(file.Number(), 1) << "it is this program's already";
}

// Its owner came to its end at this very moment.
TEST_F(OwnFiles, WhatIsEmptiedMeanwhileHoldsNothing) {
  files.files[Path(1)] = {"content", {}};
  onTake = [this](const QString& path) { files.files[path] = {{}, {}}; };
  OwnFile file = Program();
  EXPECT_EQ(Loaded(file), "-");
  EXPECT_EQ(files.files.size(), 1) << "nothing was set aside";
}

TEST_F(OwnFiles, WithoutAFolderThereAreNone) {
  files.files[u"/Name.json"_s] = {"content", {}};
  OwnFile file = Program({});
  EXPECT_EQ(Loaded(file), "-");
  EXPECT_EQ(file.TakeEmpty(), QString());
  EXPECT_EQ(file.Number(), 0);
  EXPECT_TRUE(taken.isEmpty());
}

}  // namespace
}  // namespace kalivor::test
