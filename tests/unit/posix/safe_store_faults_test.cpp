// A sending that is killed at every call of the system, loses power there, or sees each call fail: the backup
// is whole or none, and the next start offers exactly what was begun.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <QDataStream>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cstring>
#include <iostream>
#include <map>
#include <new>

#include "commands/SafeStore.h"
#include "fakes/QtPrinters.h"
#include "platform/posix/PosixFileSystem.h"
#include "unit/commands/SafeRuns.h"
#include "unit/posix/FaultyFileCalls.h"

namespace kalivor::platform {
namespace {

using namespace Qt::StringLiterals;

using test::FaultyFileCalls;
using test::FileCall;
using test::FileFault;
using test::SafePlant;
using Lasting = FileFault::Lasting;

constexpr quint16 kFirstWord = 0x1F00;
constexpr std::size_t kWords = 7;
constexpr std::size_t kLongest = 16384;

/// Something that has been done and that a power cut can take back, because it was not brought to the disk.
struct Unsynced {
  enum class Kind { Name, Bytes, Folder };

  Kind kind = Kind::Name;
  std::array<char, 512> path{};
  bool existed = false;  ///< there was another file of that name
  std::size_t size = 0;  ///< of what was there before
  std::array<char, kLongest> before{};
};

/// What outlives the program that is killed.
struct Afterlife {
  int calls = 0;
  bool ending = false;  ///< everything was written and read back
  std::array<quint16, kWords> controller{};
  std::array<bool, kWords> written{};
  std::size_t unsyncedCount = 0;
  std::array<Unsynced, 8> unsynced{};
};

QByteArray Content(const QByteArray& path) {
  QFile file(QFile::decodeName(path));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray FolderOfPath(const QByteArray& path) {
  return path.left(path.lastIndexOf('/'));
}

/// The system's calls, one of which is the program's last. They keep in mind what is not on the disk yet.
class MortalFileCalls final : public FileCalls {
 public:
  MortalFileCalls(Afterlife& afterlife, int last) : afterlife_(afterlife), last_(last) {}

  int List(const QByteArray& folder, QByteArrayList& names) const override {
    return Next(), FileCalls::List(folder, names);
  }
  int Status(const QByteArray& path, struct stat& status) const override {
    return Next(), FileCalls::Status(path, status);
  }
  int LinkStatus(const QByteArray& path, struct stat& status) const override {
    return Next(), FileCalls::LinkStatus(path, status);
  }
  int Open(const QByteArray& path, int flags, mode_t mode) const override {
    Next();
    const int fd = FileCalls::Open(path, flags, mode);
    if (fd >= 0) paths_[fd] = path.endsWith('/') ? path.chopped(1) : path;
    return fd;
  }
  int OpenStatus(int fd, struct stat& status) const override {
    return Next(), FileCalls::OpenStatus(fd, status);
  }
  ssize_t Read(int fd, char* bytes, size_t count, off_t position) const override {
    return Next(), FileCalls::Read(fd, bytes, count, position);
  }
  ssize_t Write(int fd, const char* bytes, size_t count, off_t position) const override {
    return Next(), FileCalls::Write(fd, bytes, count, position);
  }
  ssize_t Append(int fd, const char* bytes, size_t count) const override {
    Next();
    Remember(Unsynced::Kind::Bytes, paths_.at(fd));
    return FileCalls::Append(fd, bytes, count);
  }
  int ChangeMode(int fd, mode_t mode) const override { return Next(), FileCalls::ChangeMode(fd, mode); }
  // What is not brought to the disk is known, so nothing has to be.
  int Sync(int fd) const override {
    Next();
    const QByteArray& path = paths_.at(fd);
    auto* const begin = afterlife_.unsynced.begin();
    auto* const end = std::remove_if(begin, begin + afterlife_.unsyncedCount, [&](const Unsynced& one) {
      const QByteArray other(one.path.data());
      return one.kind == Unsynced::Kind::Bytes ? other == path : FolderOfPath(other) == path;
    });
    afterlife_.unsyncedCount = static_cast<std::size_t>(end - begin);
    return 0;
  }
  int Lock(int fd) const override { return Next(), FileCalls::Lock(fd); }
  int Duplicate(int fd) const override {
    Next();
    const int copy = FileCalls::Duplicate(fd);
    paths_[copy] = paths_.at(fd);
    return copy;
  }
  int Close(int fd) const override { return Next(), FileCalls::Close(fd); }
  int MakeFolder(const QByteArray& path, mode_t mode) const override {
    Next();
    Remember(Unsynced::Kind::Folder, path);
    return FileCalls::MakeFolder(path, mode);
  }
  int Rename(const QByteArray& from, const QByteArray& to) const override {
    Next();
    Remember(Unsynced::Kind::Name, to);
    return FileCalls::Rename(from, to);
  }
  int Remove(const QByteArray& path) const override { return Next(), FileCalls::Remove(path); }

 private:
  void Next() const {
    if (afterlife_.calls++ == last_) _exit(FileFault::kKilledExit);
  }

  void Remember(Unsynced::Kind kind, const QByteArray& path) const {
    Unsynced& one = afterlife_.unsynced.at(afterlife_.unsyncedCount++);
    const QByteArray before = Content(path);
    ASSERT_LT(static_cast<std::size_t>(path.size()), one.path.size());
    ASSERT_LE(static_cast<std::size_t>(before.size()), one.before.size());
    one.kind = kind;
    std::memcpy(one.path.data(), path.constData(), static_cast<std::size_t>(path.size()) + 1);
    one.existed = QFileInfo::exists(QFile::decodeName(path));
    one.size = static_cast<std::size_t>(before.size());
    std::memcpy(one.before.data(), before.constData(), one.size);
  }

  Afterlife& afterlife_;
  int last_;
  mutable std::map<int, QByteArray> paths_;
};

enum class Story { First, Finish, TakeBack, Another };

/// A folder in which a program sends, and in which the next one starts.
class Site {
 public:
  explicit Site(Story story) : story_(story) {
    void* memory =
        mmap(nullptr, sizeof(Afterlife), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    EXPECT_NE(memory, MAP_FAILED);
    afterlife = new (memory) Afterlife;
    plant.module->Userpath = folder_.filePath(u"werte"_s);
    Prepare();
  }
  ~Site() { munmap(afterlife, sizeof(Afterlife)); }
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  /// What lies on the disk before, and what the controller holds.
  void Prepare() {
    for (const char* name : {"werte", "zustand"})
      EXPECT_TRUE(QDir(folder_.filePath(QString::fromLatin1(name))).removeRecursively());
    EXPECT_TRUE(QDir(folder_.path()).mkdir(u"werte"_s));
    *afterlife = Afterlife();
    plant.controller = SafePlant().controller;
    original = plant.controller;
    if (story_ != Story::First) {
      PosixFileSystem files;
      SafeStore store(files, World());
      SafeRun run = plant.Run({1, 2, 5});
      EXPECT_EQ(store.Begin(*plant.module, run), QString());
      EXPECT_EQ(plant.Write(store, run, 2), QString());
      earlier = run.backup;
    }
    KeepController(*afterlife);
  }

  /// The whole story, with these calls of the system. Returns the first error.
  QString Send(const FileCalls& calls, Afterlife& told) {
    PosixFileSystem files(calls);
    SafeStore store(files, World());
    QString error = store.Load();
    if (!error.isEmpty()) return error;
    SafeRun run = NextRun(store);
    error = store.Begin(*plant.module, run);
    if (!error.isEmpty()) return error;
    // One word after the other, so that those are known that were written before the end.
    for (int i = 0; i < static_cast<int>(kWords) && error.isEmpty(); ++i) {
      error = plant.Write(store, run, 1);
      KeepController(told);
    }
    if (!error.isEmpty()) {
      for (SafeValue& value : run.values) {
        if (value.chosen) value.state = SafeState::Unverified;
      }
    }
    told.ending = error.isEmpty();
    store.End(run);
    return error;
  }

  /// What the next start finds.
  void CheckNextStart(const QString& error, bool mayBeOffered) {
    for (std::size_t i = 0; i < kWords; ++i)
      plant.controller[AddressOf(i)] = afterlife->controller.at(i);
    PosixFileSystem files;
    SafeStore next(files, World());
    EXPECT_EQ(next.Load(), QString()) << "the journal is whole";
    CheckBackups(files);
    const std::optional<Sending> offered = next.Unfinished();
    // What was interrupted before stays, unless this story has put it right.
    const bool left = story_ == Story::Another || (story_ != Story::First && !afterlife->ending);
    const bool needed = left || (AnyWritten() && !afterlife->ending);
    EXPECT_TRUE(offered || !needed) << error.toStdString();
    EXPECT_TRUE(!offered || needed || mayBeOffered);
    if (!offered) return;
    EXPECT_FALSE(offered->begun.empty()) << "nothing was begun";
    CheckSending(*offered);
    CheckFinishing(next, *offered);
  }

  /// Every set of what is not on the disk yet may be taken back; bytes that were appended also by half.
  void ForEachPowerCut(const std::function<void()>& check) {
    const std::size_t count = afterlife->unsyncedCount;
    const QByteArray state = Snapshot();
    for (unsigned set = 0; set < 1U << count; ++set) {
      for (const bool half : {false, true}) {
        for (std::size_t i = count; i-- > 0;) {
          if ((set >> i & 1U) != 0) TakeBack(afterlife->unsynced.at(i), half);
        }
        check();
        Restore(state);
      }
    }
  }

  [[nodiscard]] bool AnyWritten() const { return std::ranges::count(afterlife->written, true) > 0; }

  Afterlife* afterlife;
  SafePlant plant;
  ControllerImage original;
  QString earlier;  ///< the backup of the sending before

 private:
  static quint16 AddressOf(std::size_t i) { return static_cast<quint16>(kFirstWord + 2 * i); }

  SafeWorld World() const {
    SafeWorld world;
    world.stateFolder = folder_.filePath(u"zustand"_s);
    world.take = [](const QString&) { return true; };
    world.now = [] { return QDateTime(QDate(2026, 11, 12), QTime(16, 40), Qt::UTC); };
    return world;
  }

  SafeRun NextRun(const SafeStore& store) const {
    if (story_ == Story::First || !store.Unfinished()) return plant.Run({1, 2, 5});
    if (story_ == Story::Another) return plant.Run({6});
    if (story_ == Story::TakeBack) return plant.Back({1, 2, 5}, store.Unfinished()->before);
    SafeRun run = plant.Run({1, 2, 5}, SafeKind::Finish);
    run.backup = store.Unfinished()->backup;
    return run;
  }

  void KeepController(Afterlife& told) const {
    for (std::size_t i = 0; i < kWords; ++i) {
      const quint16 word = plant.controller.at(AddressOf(i));
      told.written.at(i) = told.written.at(i) || word != original.at(AddressOf(i));
      told.controller.at(i) = word;
    }
  }

  void CheckBackups(PosixFileSystem& files) const {
    const BackupList list = ListBackups(files, BackupFolder(*plant.module));
    EXPECT_EQ(list.error, QString());
    EXPECT_TRUE(!list.backups.empty() || !AnyWritten()) << "no backup, no write";
    for (const StoredBackup& stored : list.backups) {
      EXPECT_EQ(stored.error, QString()) << stored.path.toStdString();
      EXPECT_EQ(stored.backup.words.size(), kWords);
      if (story_ == Story::First || stored.path == earlier) {
        EXPECT_EQ(stored.backup.words, original);
      }
      const FileContent values = files.Read(stored.path);
      EXPECT_EQ(values.bytes.size(), 7 * kCurrentRecord_bytes) << "a backup is both files";
    }
  }

  void CheckSending(const Sending& offered) const {
    for (std::size_t i = 0; i < kWords; ++i) {
      const bool sent = story_ != Story::Another || AddressOf(i) != 0x1F0C;
      if (!afterlife->written.at(i) || !sent) continue;
      EXPECT_EQ(std::ranges::count(offered.begun, AddressOf(i)), 1) << "a word was written unnoticed";
    }
    for (const CodedWord& word : offered.wanted)
      EXPECT_EQ(offered.before.at(word.address), original.at(word.address)) << "the old word";
    EXPECT_EQ(offered.values.size(), 3U);
    EXPECT_TRUE(QFileInfo::exists(offered.backup));
  }

  // The offer can be followed to its end.
  void CheckFinishing(SafeStore& next, const Sending& offered) {
    SafePlant after;
    after.module->Userpath = plant.module->Userpath;
    after.controller = plant.controller;
    SafeRun run = after.Back({1, 2, 5}, offered.before);
    EXPECT_EQ(next.Begin(*after.module, run), QString());
    EXPECT_EQ(after.Write(next, run), QString());
    for (const CodedWord& word : offered.wanted)
      EXPECT_EQ(after.controller.at(word.address), original.at(word.address));
    next.End(run);
    EXPECT_FALSE(next.Unfinished());
  }

  // The files, by name, as one text.
  [[nodiscard]] QByteArray Snapshot() const {
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    for (const QString& path : Files())
      stream << path << Content(QFile::encodeName(path));
    return state;
  }
  [[nodiscard]] QStringList Files() const {
    QStringList files;
    QDirIterator all(folder_.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext())
      files.append(all.next());
    return files;
  }
  void Restore(QByteArray state) const {
    for (const QString& path : Files())
      EXPECT_TRUE(QFile::remove(path));
    QDataStream stream(&state, QIODevice::ReadOnly);
    while (!stream.atEnd()) {
      QString path;
      QByteArray bytes;
      stream >> path >> bytes;
      EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
      QFile file(path);
      EXPECT_TRUE(file.open(QIODevice::WriteOnly));
      EXPECT_EQ(file.write(bytes), bytes.size());
    }
  }

  static void TakeBack(const Unsynced& one, bool half) {
    const QString path = QFile::decodeName(one.path.data());
    QFile file(path);
    switch (one.kind) {
      case Unsynced::Kind::Folder:
        EXPECT_TRUE(QDir(path).removeRecursively());
        return;
      case Unsynced::Kind::Name:
        if (!one.existed) {
          EXPECT_TRUE(file.remove() || !QFileInfo::exists(path));
          return;
        }
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(one.before.data(), static_cast<qint64>(one.size)),
                  static_cast<qint64>(one.size));
        return;
      case Unsynced::Kind::Bytes:
        const auto size = static_cast<qint64>(one.size);
        EXPECT_TRUE(file.resize(half ? (size + file.size()) / 2 : size));
        return;
    }
  }

  Story story_;
  // In memory where there is such a place: many files are made.
  QTemporaryDir folder_{(QFileInfo(u"/dev/shm"_s).isWritable() ? u"/dev/shm"_s : QDir::tempPath()) +
                        u"/kalivor-send-XXXXXX"_s};
};

class SafeStoreFaults : public testing::TestWithParam<Story> {};

TEST_P(SafeStoreFaults, KilledAnywhereItLeavesWhatTheNextStartNeeds) {
  Site site(GetParam());
  int cuts = 0;
  int at = 0;
  for (bool killed = true; killed && !HasFailure(); ++at) {
    SCOPED_TRACE(testing::Message() << "call " << at);
    site.Prepare();
    const pid_t child = fork();
    if (child == 0) {
      const MortalFileCalls calls(*site.afterlife, at);
      _exit(site.Send(calls, *site.afterlife).isEmpty() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    killed = WIFEXITED(status) && WEXITSTATUS(status) == FileFault::kKilledExit;
    ASSERT_TRUE(killed || status == 0) << status;
    site.ForEachPowerCut([&] {
      ++cuts;
      // It is all done, but for emptying the journal.
      site.CheckNextStart({}, killed || site.afterlife->unsyncedCount > 0 || !site.AnyWritten());
    });
  }
  EXPECT_GT(at, 40);
  std::cout << "interrupted sendings: " << at - 1 << " kills, " << cuts << " states of the disk\n";
}

TEST_P(SafeStoreFaults, AFailureAnywhereIsSaidAndLeavesWhatTheNextStartNeeds) {
  Site site(GetParam());
  const FaultyFileCalls probe;
  ASSERT_EQ(site.Send(probe, *site.afterlife), QString());
  const std::vector<FileCall>& all = probe.Calls();
  int failures = 0;
  for (std::size_t at = 0; at < all.size() && !HasFailure(); ++at) {
    for (const int failure : {EIO, ENOSPC, EACCES, EINTR, FileFault::kShort}) {
      const bool moves =
          all[at] == FileCall::Write || all[at] == FileCall::Append || all[at] == FileCall::Read;
      if (failure == FileFault::kShort && !moves) continue;
      for (const Lasting lasting : {Lasting::Once, Lasting::SameCall, Lasting::Everything}) {
        SCOPED_TRACE(testing::Message()
                     << "call " << at << " of " << all.size() << ", kind " << static_cast<int>(all[at])
                     << ", failure " << failure << ", lasting " << static_cast<int>(lasting));
        site.Prepare();
        FaultyFileCalls calls;
        calls.fault = {static_cast<int>(at), failure, lasting};
        const QString error = site.Send(calls, *site.afterlife);
        const bool bearable = failure == FileFault::kShort || (failure == EINTR && lasting == Lasting::Once);
        EXPECT_TRUE(!bearable || error.isEmpty()) << error.toStdString();
        site.CheckNextStart(error, true);
        ++failures;
      }
    }
  }
  std::cout << "sendings with failing files: " << failures << " cases\n";
}

std::string NameOf(const testing::TestParamInfo<Story>& info) {
  const char* const names[] = {"First", "Finish", "TakeBack", "Another"};
  return names[static_cast<std::size_t>(info.param)];
}
INSTANTIATE_TEST_SUITE_P(ByStory, SafeStoreFaults,
                         testing::Values(Story::First, Story::Finish, Story::TakeBack, Story::Another),
                         NameOf);

}  // namespace
}  // namespace kalivor::platform
