// Files that one running program has to itself.
#include "platform/plain/FileLocks.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

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

TEST(FileLocks, WhatAKilledProgramHadIsFree) {
  const QTemporaryDir folder;
  QFile lock(folder.filePath(u"a.json.lock"_s));
  ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
  // A process of that number cannot be.
  lock.write("2147483646\nkalivor\n" + QSysInfo::machineHostName().toLocal8Bit() + "\n");
  lock.close();
  EXPECT_TRUE(FileLocks().Take(folder.filePath(u"a.json"_s)));
}

TEST(FileLocks, AFolderThatCannotBeMadeGivesNone) {
  const QTemporaryDir folder;
  QFile file(folder.filePath(u"a"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_FALSE(FileLocks().Take(folder.filePath(u"a/b.json"_s)));
}

}  // namespace
}  // namespace kalivor::platform
