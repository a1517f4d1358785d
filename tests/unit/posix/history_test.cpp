// A history in the hands of several programs, of which some are killed or may not write.
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <iostream>
#include <random>
#include <thread>

#include "history/Writer.h"
#include "unit/history/HistoryFixture.h"
#include "unit/posix/AsOrdinaryUser.h"
#include "unit/posix/KilledAtCall.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr int kParameters = 30;

class HistoryOfPrograms : public HistoryFixture {
 protected:
  static bool Wait(pid_t child) {
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  // Each entry is whole. Returns how many there are.
  [[nodiscard]] int CountWhole() const {
    const auto store = Opened();
    if (!store) return -1;
    const std::vector<Entry> entries = store->Entries();
    for (const Entry& entry : entries) {
      EXPECT_EQ(store->Changes(entry.id).size(), static_cast<std::size_t>(entry.changes));
      EXPECT_EQ(store->Values(entry, true).set.values.size(), static_cast<std::size_t>(kParameters));
    }
    EXPECT_EQ(store->Check(), QStringList());
    return static_cast<int>(entries.size());
  }

  [[nodiscard]] QByteArray FileName() const { return QFile::encodeName(file_); }
  [[nodiscard]] QByteArray Folder() const { return QFile::encodeName(folder_.filePath(u"a"_s)); }
};

TEST_F(HistoryOfPrograms, HasWholeEntriesWhereverAProgramIsKilled) {
  int entries = 2;
  {
    const auto store = Opened();
    ASSERT_EQ(store->Add(Received(1, kParameters)), QString());
    ASSERT_EQ(store->Add(Received(2, kParameters)), QString());
  }
  int calls = 0;
  for (;; ++calls) {
    std::unique_ptr<Store> store;
    const auto prepare = [&] {
      store = Opened();
      return store != nullptr;
    };
    const auto add = [&] { return store->Add(Received(100 + calls, kParameters)).isEmpty(); };
    const test::CallEnd end = test::KillAtCall(calls, prepare, add);
    if (end == test::CallEnd::NotTraced) GTEST_SKIP() << "a program cannot be watched here (ptrace)";
    const int found = CountWhole();
    ASSERT_TRUE(found == entries || found == entries + 1) << calls;
    if (end == test::CallEnd::Finished) {
      EXPECT_EQ(found, entries + 1);
      break;
    }
    entries = found;
  }
  EXPECT_GT(calls, 10);
  std::cout << calls << " calls\n";
}

TEST_F(HistoryOfPrograms, HasEveryEntryThatAKilledProgramWasToldOf) {
  std::mt19937 random(7);
  int told = 0;
  int found = 0;
  for (int life = 0; life < 6; ++life) {
    int pipes[2] = {};
    ASSERT_EQ(pipe(pipes), 0);
    const pid_t child = fork();
    if (child == 0) {
      const auto store = Opened();
      for (int number = 1; store; ++number) {
        const char done = store->Add(Received(number, kParameters)).isEmpty() ? '+' : '-';
        if (write(pipes[1], &done, 1) != 1) break;
      }
      _exit(1);
    }
    close(pipes[1]);
    // From its first entry on, so that each life has something to lose.
    char done = 0;
    ASSERT_EQ(read(pipes[0], &done, 1), 1);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 200000));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    do {
      ASSERT_EQ(done, '+');
      ++told;
    } while (read(pipes[0], &done, 1) == 1);
    close(pipes[0]);
    const int now = CountWhole();
    EXPECT_GE(now, told);
    // One more may have been added before it was told.
    EXPECT_LE(now, told + 1);
    found = now;
    told = found;
  }
  std::cout << found << " entries\n";
}

TEST_F(HistoryOfPrograms, TakesTheEntriesOfSeveralAtOnce) {
  constexpr int kPrograms = 3;
  constexpr int kEach = 15;
  std::vector<pid_t> children;
  for (int program = 0; program < kPrograms; ++program) {
    children.push_back(fork());
    if (children.back() != 0) continue;
    std::atomic<bool> said = false;
    {
      Writer writer(World(file_), [&](const QString&) { said = true; });
      for (int number = 0; number < kEach; ++number)
        writer.Add(Received(number, kParameters));
      while (!writer.Settle(1000))
        continue;
    }
    _exit(said ? 1 : 0);
  }
  for (const pid_t child : children)
    EXPECT_TRUE(Wait(child));
  EXPECT_EQ(CountWhole(), kPrograms * kEach);
}

TEST_F(HistoryOfPrograms, InAProtectedFolderIsReadAndSaysThatItTakesNothing) {
  ASSERT_EQ(Opened()->Add(Received(1, kParameters)), QString());
  for (const QByteArray& path : {QFile::encodeName(folder_.path()), Folder()})
    ASSERT_EQ(chmod(path.constData(), 0555), 0);
  ASSERT_EQ(chmod(FileName().constData(), 0444), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] {
    const Store::Opened reading = Store::Open(World(file_), Access::Read);
    return reading.store && reading.note.isEmpty() && reading.store->Entries().size() == 1;
  }));
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] {
    const Store::Opened writing = Store::Open(World(file_), Access::Write);
    return !writing.store && writing.note ==
                                 u"Der Verlauf kann nicht geschrieben werden: In seinen Ordner kann "
                                 "nicht geschrieben werden (%1)."_s.arg(folder_.filePath(u"a"_s));
  }));
  for (const QByteArray& path : {QFile::encodeName(folder_.path()), Folder()})
    ASSERT_EQ(chmod(path.constData(), 0777), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] {
    const Store::Opened writing = Store::Open(World(file_), Access::Write);
    return !writing.store && writing.note ==
                                 u"Der Verlauf kann nicht geschrieben werden: Die Datei oder ihr Ordner "
                                 "ist schreibgeschützt (%1)."_s.arg(file_);
  }));
  EXPECT_FALSE(QFile::exists(folder_.filePath(u"a/Verlauf.defekt.sqlite"_s)));
}

TEST_F(HistoryOfPrograms, SaysWhereItsFolderCannotBeMade) {
  ASSERT_EQ(chmod(QFile::encodeName(folder_.path()).constData(), 0555), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] {
    return Store::Open(World(file_), Access::Write).note ==
           u"Der Verlauf kann nicht geschrieben werden: Sein Ordner kann nicht angelegt werden (%1)."_s.arg(
               folder_.filePath(u"a"_s));
  }));
}

}  // namespace
}  // namespace kalivor::history
