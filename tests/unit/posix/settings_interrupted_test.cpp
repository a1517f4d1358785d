// Storing the settings while the program is killed at every call of the system, or the disk takes nothing.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <ctime>
#include <iostream>

#include "fakes/QtPrinters.h"
#include "platform/plain/IniSettingsStore.h"
#include "unit/posix/AsOrdinaryUser.h"
#include "unit/posix/KilledAtCall.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

using test::CallEnd;
using test::HoldsAsOrdinaryUser;
using test::KillAtCall;

class StoredSettings : public testing::Test {
 protected:
  [[nodiscard]] QString File() const { return folder.filePath(u"KALIVOR/KALIVOR.ini"_s); }

  // Some of what the program stores when it ends. "" when it is on the disk.
  [[nodiscard]] QString Store(const QString& address) const {
    IniSettingsStore store(File());
    store.Save(u"Settings"_s, u"Adresse"_s, address);
    store.Save(u"Settings"_s, u"Userpath"_s, u"/werte/"_s + address);
    store.Save(u"Settings"_s, u"Inifile"_s, u"VF"_s + address + u".INI"_s);
    return store.Flush();
  }

  [[nodiscard]] QByteArray Bytes() const {
    QFile file(File());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  // The same in a program of its own: the library remembers files that it has read before.
  [[nodiscard]] bool StoreAnew(const QString& address) const {
    const pid_t child = fork();
    if (child == 0) _exit(Store(address).isEmpty() ? 0 : 1);
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  // Half a minute later: for so long the library respects a lock without an owner's name, which a program
  // leaves that is killed between making and filling it. And with other names for temporary files: the
  // programs of this test, being copies of one, all draw the same.
  void LetTimePass() const {
    constexpr time_t kDay_s = 86400;
    const timespec then{time(nullptr) - kDay_s, 0};
    const timespec longAgo[] = {then, then};
    (void)utimensat(AT_FDCWD, QFile::encodeName(File() + u".lock"_s).constData(), longAgo, 0);
    QDir own(QFileInfo(File()).path());
    for (const QString& stray : own.entryList({u"KALIVOR.ini.??????"_s}, QDir::Files))
      EXPECT_TRUE(own.remove(stray));
  }

  // A program that stores the settings is killed as it enters call number `at` of the system.
  [[nodiscard]] CallEnd StoreAndKill(const QString& address, int at) const {
    return KillAtCall(
        at, [] { return true; }, [&] { return Store(address).isEmpty(); });
  }

  QTemporaryDir folder;
};

TEST_F(StoredSettings, AreTheOldOrTheNewOnesWhereverTheProgramIsKilled) {
  ASSERT_TRUE(StoreAnew(u"17"_s));
  const QByteArray old = Bytes();
  ASSERT_TRUE(StoreAnew(u"18"_s));
  const QByteArray changed = Bytes();
  ASSERT_TRUE(old.contains("Adresse=17") && changed.contains("Adresse=18"));

  int olds = 0;
  int news = 0;
  for (int at = 0;; ++at) {
    SCOPED_TRACE(at);
    ASSERT_TRUE(StoreAnew(u"17"_s)) << "after a program that was killed";
    ASSERT_EQ(Bytes(), old);
    const CallEnd end = StoreAndKill(u"18"_s, at);
    if (end == CallEnd::NotTraced) GTEST_SKIP() << "a program cannot be watched here (ptrace)";
    if (end == CallEnd::Finished) break;
    LetTimePass();
    const QByteArray bytes = Bytes();
    ASSERT_TRUE(bytes == old || bytes == changed) << bytes.toStdString();
    (bytes == old ? olds : news)++;
  }
  EXPECT_GT(olds, 10);
  EXPECT_GT(news, 0);
  std::cout << "interrupted settings: " << olds + news << " kills, " << olds << " times the old ones\n";
}

TEST_F(StoredSettings, AFirstStartIsKilledAnywhere) {
  const QString own = folder.filePath(u"KALIVOR"_s);
  for (int at = 0;; ++at) {
    ASSERT_TRUE(QDir(own).removeRecursively());
    const CallEnd end = StoreAndKill(u"17"_s, at);
    if (end == CallEnd::NotTraced) GTEST_SKIP() << "a program cannot be watched here (ptrace)";
    if (end == CallEnd::Finished) break;
    LetTimePass();
    const QByteArray bytes = Bytes();
    ASSERT_TRUE(bytes.isEmpty() || bytes.count('\n') == 4) << at << bytes.toStdString();
    ASSERT_TRUE(StoreAnew(u"18"_s)) << at;
  }
}

TEST_F(StoredSettings, AFailureIsSaidAndLeavesTheOldOnes) {
  ASSERT_TRUE(StoreAnew(u"17"_s));
  const QByteArray old = Bytes();
  const QString failed = u"Die Einstellungen konnten nicht gespeichert werden:\r\n"_s + File();
  ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0755), 0);
  // In a folder that the user may not write to.
  const QByteArray own = QFile::encodeName(folder.filePath(u"KALIVOR"_s));
  ASSERT_EQ(chmod(own.constData(), 0555), 0);
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Store(u"18"_s) == failed; }));
  ASSERT_EQ(chmod(own.constData(), 0755), 0);
  EXPECT_EQ(Bytes(), old);
}

TEST_F(StoredSettings, ADiskThatTakesNothingLeavesTheOldOnes) {
  ASSERT_TRUE(StoreAnew(u"17"_s));
  const QByteArray old = Bytes();
  const pid_t child = fork();
  if (child == 0) {
    // No file may grow beyond this any more.
    (void)signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{20, 20};
    const bool refused = setrlimit(RLIMIT_FSIZE, &limit) == 0 && !Store(u"18"_s).isEmpty();
    _exit(refused ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Bytes(), old);
}

// To open some of them would wait for ever, to read others never ends.
TEST_F(StoredSettings, WhatIsNoFileHoldsNoneAndTakesNone) {
  const QByteArray pipe = QFile::encodeName(folder.filePath(u"pipe"_s));
  ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
  QFile huge(folder.filePath(u"huge"_s));
  ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(4LL << 30));
  for (const QString& path : {QFile::decodeName(pipe), u"/dev/zero"_s, folder.path(), huge.fileName()}) {
    IniSettingsStore store(path);
    EXPECT_EQ(store.Get(u"Settings"_s, u"Adresse"_s, u"1"_s), u"1"_s);
    store.Save(u"Settings"_s, u"Adresse"_s, u"17"_s);
    EXPECT_EQ(store.Flush(), u"Die Einstellungen konnten nicht gespeichert werden:\r\n"_s + path);
  }
}

}  // namespace
}  // namespace kalivor::platform
