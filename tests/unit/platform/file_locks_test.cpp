// Files that one running program has to itself.
#include "platform/plain/FileLocks.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr auto kAll = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;

TEST(FileLocks, OneProgramHasAFile) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"neu/tief/a.json"_s);
  {
    FileLocks first;
    EXPECT_TRUE(first.Take(path));
    FileLocks second;
    EXPECT_FALSE(second.Take(path));
    EXPECT_TRUE(second.Take(path + u"2"_s));
    EXPECT_FALSE(QFile::exists(path)) << "the file itself is not touched";
  }
  EXPECT_EQ(QDir(folder.filePath(u"neu/tief"_s)).entryList(kAll), QStringList());
  EXPECT_TRUE(FileLocks().Take(path));
}

// The second program is this test once more, from its beginning where the system cannot copy a process: both
// know the file from the environment.
TEST(FileLocks, WhatAKilledProgramHadIsFree) {
  const char* const kVariable = "KALIVOR_LOCKED_FILE";
  const QTemporaryDir folder;
  if (!qEnvironmentVariableIsSet(kVariable)) qputenv(kVariable, folder.filePath(u"a.json"_s).toUtf8());
  const QString path = qEnvironmentVariable(kVariable);
  EXPECT_EXIT(
      {
        FileLocks locks;
        // Without the end of any life.
        std::_Exit(locks.Take(path) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
  qunsetenv(kVariable);
  EXPECT_TRUE(QFile::exists(path + u".lock"_s));
  EXPECT_TRUE(FileLocks().Take(path));
}

TEST(FileLocks, AFolderThatCannotBeMadeGivesNone) {
  const QTemporaryDir folder;
  QFile file(folder.filePath(u"a"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_FALSE(FileLocks().Take(folder.filePath(u"a/b.json"_s)));
}

}  // namespace
}  // namespace kalivor::platform
