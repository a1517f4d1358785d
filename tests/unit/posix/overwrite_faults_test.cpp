// Saving a file while every call of the system in turn fails, comes short or is the program's last.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <iostream>
#include <optional>

#include "fakes/QtPrinters.h"
#include "platform/posix/FileErrors.h"
#include "platform/posix/PosixFileSystem.h"
#include "unit/posix/FaultyFileCalls.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

using test::FaultyFileCalls;
using test::FileCall;
using test::FileFault;
using Lasting = FileFault::Lasting;

enum class Way { Plain, RelativeLink, AbsoluteLink, Chain };

struct Situation {
  std::optional<QByteArray> old;  ///< what the file holds before; nothing: it does not exist
  QByteArray beginning;
  Way way = Way::Plain;
  bool otherCase = false;
  bool folderRefuses = false;
  bool leftover = false;  ///< a save that was killed has left a file behind
  bool cut = false;       ///< the whole file is replaced, not its beginning

  [[nodiscard]] bool IsRefused() const { return folderRefuses && (!old || cut); }
};

QByteArray Pattern(int size, int step) {
  QByteArray bytes;
  for (int i = 0; i < size; ++i)
    bytes.append(static_cast<char>(i * step + 1));
  return bytes;
}

constexpr Way kWays[] = {Way::Plain, Way::RelativeLink, Way::AbsoluteLink, Way::Chain};

std::vector<Situation> SituationsOf(Way way) {
  std::vector<std::optional<QByteArray>> olds{std::nullopt};
  for (const int size : {0, 1, 61, 186, 248, 310, 70'000})
    olds.emplace_back(Pattern(size, 3));
  std::vector<Situation> situations;
  for (const auto& old : olds) {
    for (const int size : {62, 248}) {
      for (const bool otherCase : {false, true}) {
        for (const bool refuses : {false, true})
          situations.push_back({old, Pattern(size, 7), way, otherCase, refuses});
        situations.push_back({old, Pattern(size, 7), way, otherCase, false, true});
      }
    }
    for (const bool refuses : {false, true})
      situations.push_back({old, Pattern(62, 7), way, false, refuses, false, true});
  }
  return situations;
}

/// A folder in which one situation after the other is set up.
class Site {
 public:
  explicit Site(const Situation& situation) : situation_(situation) {
    const bool viaLink = situation.way != Way::Plain;
    // A new file gets the name that it is saved under.
    const QString plainName = situation.otherCase && !situation.old ? u"WERTE.QPF"_s : u"Werte.qpf"_s;
    target_ = viaLink ? u"Ablage/Ziel.qpf"_s : plainName;
    EXPECT_TRUE(QDir(folder_.path()).mkdir(u"Ablage"_s));
    if (situation.way == Way::RelativeLink) Link("Ablage/Ziel.qpf", u"Werte.qpf"_s);
    if (situation.way == Way::AbsoluteLink) Link(SystemName(target_), u"Werte.qpf"_s);
    if (situation.way == Way::Chain) {
      Link("Ablage/Kette.qpf", u"Werte.qpf"_s);
      Link("Ziel.qpf", u"Ablage/Kette.qpf"_s);
    }
    Reset();
    others_ = Entries();
    others_.removeAll(target_);
  }

  /// Puts the old file back and removes what is left over.
  void Reset() {
    QFile::remove(Path(target_));
    for (const QString& stray : Strays())
      QFile::remove(Path(stray));
    if (situation_.leftover) {
      QFile leftover(Path(Leftover()));
      ASSERT_TRUE(leftover.open(QIODevice::WriteOnly));
    }
    if (!situation_.old) return;
    QFile file(Path(target_));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(*situation_.old), situation_.old->size());
    ASSERT_TRUE(file.setPermissions(kMode));
  }

  /// The name that the file is saved under.
  [[nodiscard]] QString Name() const {
    return folder_.path() + (situation_.otherCase ? u"\\WERTE.QPF"_s : u"/Werte.qpf"_s);
  }

  /// What the file holds now; nothing: it does not exist.
  [[nodiscard]] std::optional<QByteArray> Content() const {
    QFile file(Path(target_));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return file.readAll();
  }

  /// The complete new image.
  [[nodiscard]] QByteArray Image() const {
    if (situation_.cut) return situation_.beginning;
    return situation_.beginning + situation_.old.value_or(QByteArray()).mid(situation_.beginning.size());
  }

  /// The files beside it that were not there before.
  [[nodiscard]] QStringList Strays() const {
    QStringList strays;
    if (others_.isEmpty()) return strays;
    for (const QString& entry : Entries()) {
      if (entry != target_ && !others_.contains(entry)) strays.append(entry);
    }
    return strays;
  }

  [[nodiscard]] bool HoldsLeftover() const { return QFileInfo::exists(Path(Leftover())); }

  /// The links are still links, and an old file's permissions are what they were.
  [[nodiscard]] bool KeepsItsKind() const {
    const QFileInfo link(folder_.filePath(u"Werte.qpf"_s));
    if (link.isSymLink() != (situation_.way != Way::Plain)) return false;
    return !situation_.old || QFile::permissions(Path(target_)) == kMode;
  }

 private:
  static constexpr QFile::Permissions kMode{QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser |
                                            QFile::WriteUser | QFile::ReadGroup};

  [[nodiscard]] QString Path(const QString& name) const { return folder_.filePath(name); }
  // It lies beside the file itself, not beside the link that leads to it.
  [[nodiscard]] QString Leftover() const {
    return target_.left(target_.lastIndexOf(u'/') + 1) + u".kalivor-0123456789abcdef.tmp"_s;
  }
  [[nodiscard]] QByteArray SystemName(const QString& name) const { return QFile::encodeName(Path(name)); }
  void Link(const QByteArray& to, const QString& name) const {
    EXPECT_EQ(symlink(to.constData(), SystemName(name).constData()), 0);
  }
  [[nodiscard]] QStringList Entries() const {
    constexpr auto kAll = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QStringList entries = QDir(folder_.path()).entryList(kAll, QDir::Unsorted);
    for (const QString& name : QDir(Path(u"Ablage"_s)).entryList(kAll, QDir::Unsorted))
      entries.append(u"Ablage/"_s + name);
    return entries;
  }

  // In memory where there is such a place: tens of thousands of files are made.
  static QString Place() {
    const QString memory = u"/dev/shm"_s;
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + u"/kalivor-save-XXXXXX"_s;
  }

  const Situation& situation_;
  QTemporaryDir folder_{Place()};
  QString target_;
  QStringList others_;
};

QString SaveWith(const FaultyFileCalls& calls, const Site& site, const Situation& situation) {
  PosixFileSystem files(calls);
  return situation.cut ? files.Replace(site.Name(), situation.beginning)
                       : files.Overwrite(site.Name(), situation.beginning);
}

bool IsHarmless(const QString& stray) {
  const QString name = stray.section(u'/', -1);
  return name.startsWith(u'.') && !name.endsWith(u".qpf", Qt::CaseInsensitive);
}

// A save that failed or succeeded, told by `message`; empty for success.
void CheckOutcome(const Site& site, const Situation& situation, const FileFault& fault,
                  const QString& message) {
  const bool dead = fault.lasting == Lasting::Everything;
  const auto content = site.Content();
  const bool isNew = content == site.Image();
  const bool refused = situation.IsRefused() && message == DescribeWriting(EACCES);
  // Half a write is continued and an interrupted call repeated.
  const bool bearable =
      fault.failure == FileFault::kShort || (fault.failure == EINTR && fault.lasting == Lasting::Once);
  EXPECT_TRUE(!bearable || refused || message.isEmpty()) << message.toStdString();
  EXPECT_TRUE(isNew || content == situation.old) << "the file is neither the old nor the new one";
  if (message.isEmpty()) {
    EXPECT_TRUE(isNew) << "no message";
  } else if (const QString uncertain = u" Der Inhalt der Datei ist jetzt ungewiss."_s;
             dead && message.endsWith(uncertain)) {
    // Neither could the new image be brought to the disk nor the old one be put back.
    EXPECT_EQ(message, DescribeWriting(fault.failure) + uncertain);
  } else {
    EXPECT_EQ(content, situation.old) << message.toStdString();
    EXPECT_TRUE(refused || message == DescribeWriting(fault.failure)) << message.toStdString();
  }
  // Where nothing works any more, what was begun cannot be removed either.
  const QStringList strays = site.Strays();
  EXPECT_LE(strays.size(), dead ? 1 : 0) << strays.join(u' ').toStdString();
  EXPECT_TRUE(std::all_of(strays.begin(), strays.end(), IsHarmless)) << strays.join(u' ').toStdString();
  EXPECT_TRUE(site.KeepsItsKind());
}

void CheckFailure(Site& site, const Situation& situation, const FileFault& fault) {
  site.Reset();
  FaultyFileCalls calls;
  calls.folderRefuses = situation.folderRefuses;
  calls.fault = fault;
  const QString message = SaveWith(calls, site, situation);
  CheckOutcome(site, situation, fault, message);
}

void CheckKill(Site& site, const Situation& situation, int at) {
  site.Reset();
  const pid_t child = fork();
  if (child == 0) {
    FaultyFileCalls calls;
    calls.folderRefuses = situation.folderRefuses;
    calls.fault = {at, FileFault::kKill, Lasting::Once};
    (void)SaveWith(calls, site, situation);
    _exit(0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == FileFault::kKilledExit) << status;
  const auto content = site.Content();
  EXPECT_TRUE(content == site.Image() || content == situation.old) << "neither the old nor the new one";
  const QStringList strays = site.Strays();
  EXPECT_LE(strays.size(), 1) << strays.join(u' ').toStdString();
  EXPECT_TRUE(std::all_of(strays.begin(), strays.end(), IsHarmless)) << strays.join(u' ').toStdString();
  EXPECT_TRUE(site.KeepsItsKind());
}

/// The calls of a save that nothing disturbs. It succeeds but where a new file is refused.
std::vector<FileCall> Undisturbed(Site& site, const Situation& situation) {
  site.Reset();
  FaultyFileCalls calls;
  calls.folderRefuses = situation.folderRefuses;
  const QString message = SaveWith(calls, site, situation);
  const bool refused = situation.IsRefused();
  EXPECT_EQ(message, refused ? DescribeWriting(EACCES) : QString());
  EXPECT_EQ(site.Content(), refused ? situation.old : std::optional(site.Image()));
  EXPECT_EQ(site.Strays(), QStringList());
  EXPECT_FALSE(site.HoldsLeftover());
  return calls.Calls();
}

qsizetype OpenDescriptors() {
  return QDir(u"/proc/self/fd"_s).entryList(QDir::System | QDir::Files).size();
}

// One test for each way to the file, because all together run long.
class OverwriteFaults : public testing::TestWithParam<Way> {};

TEST_P(OverwriteFaults, LeaveTheOldOrTheNewImageWhereverTheyStrike) {
  const auto situations = SituationsOf(GetParam());
  const auto descriptors = OpenDescriptors();
  int failures = 0;
  int kills = 0;
  for (size_t i = 0; i < situations.size() && !HasFailure(); ++i) {
    const Situation& situation = situations[i];
    SCOPED_TRACE(testing::Message() << "situation " << i << (situation.otherCase ? ", other case" : "")
                                    << (situation.folderRefuses ? ", folder refuses" : "")
                                    << (situation.leftover ? ", leftover" : "")
                                    << (situation.cut ? ", cut" : ""));
    Site site(situation);
    const std::vector<FileCall> calls = Undisturbed(site, situation);
    for (int at = 0; at < static_cast<int>(calls.size()); ++at) {
      const FileCall call = calls[static_cast<size_t>(at)];
      SCOPED_TRACE(testing::Message()
                   << "call " << at << " of " << calls.size() << ", kind " << static_cast<int>(call));
      for (const Lasting lasting : {Lasting::Once, Lasting::SameCall, Lasting::Everything}) {
        for (const int failure : {EIO, ENOSPC, EACCES, EINTR, FileFault::kShort}) {
          if (failure == FileFault::kShort && call != FileCall::Write && call != FileCall::Read) continue;
          SCOPED_TRACE(testing::Message()
                       << "failure " << failure << ", lasting " << static_cast<int>(lasting));
          CheckFailure(site, situation, {at, failure, lasting});
          ++failures;
        }
      }
      CheckKill(site, situation, at);
      ++kills;
    }
  }
  EXPECT_EQ(OpenDescriptors(), descriptors);
  EXPECT_GE(situations.size() * std::size(kWays), 200U);
  RecordProperty("situations", static_cast<int>(situations.size()));
  RecordProperty("failures", failures);
  RecordProperty("kills", kills);
  std::cout << "interrupted saves: " << situations.size() << " situations, " << failures << " failures, "
            << kills << " kills, " << failures + kills << " cases\n";
}

// Folders that are made on the way may stay; a part of a file never does.
TEST(ReplaceFaults, InAMissingFolderLeaveNoFileOrAllOfIt) {
  int count = 1;
  for (int at = -1; at < count; ++at) {
    for (const int failure : {EIO, EACCES, ENOENT, EINTR}) {
      SCOPED_TRACE(testing::Message() << "call " << at << " of " << count << ", failure " << failure);
      const QTemporaryDir folder;
      FaultyFileCalls calls;
      calls.fault = {at, failure, Lasting::Once};
      const QString message =
          PosixFileSystem(calls).Replace(folder.filePath(u"Neu\\Tief/Werte.json"_s), "whole");
      if (at < 0) count = static_cast<int>(calls.Calls().size());
      if (at < 0 || failure == EINTR) {
        EXPECT_EQ(message, QString());
      }
      constexpr auto kAll = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
      const QDir inside(folder.filePath(u"Neu/Tief"_s));
      EXPECT_EQ(inside.entryList(kAll), message.isEmpty() ? QStringList{u"Werte.json"_s} : QStringList());
      if (!message.isEmpty()) continue;
      QFile file(inside.filePath(u"Werte.json"_s));
      EXPECT_TRUE(file.open(QIODevice::ReadOnly));
      EXPECT_EQ(file.readAll(), "whole");
    }
  }
  EXPECT_GT(count, 20);
}

std::string NameOf(const testing::TestParamInfo<Way>& info) {
  const char* const names[] = {"Plain", "RelativeLink", "AbsoluteLink", "ChainOfLinks"};
  return names[static_cast<size_t>(info.param)];
}
INSTANTIATE_TEST_SUITE_P(ByWay, OverwriteFaults, testing::ValuesIn(kWays), NameOf);

}  // namespace
}  // namespace kalivor::platform
