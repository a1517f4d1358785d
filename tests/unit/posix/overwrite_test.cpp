// Saving a file: what it holds afterwards, which file it is, its permissions, and what the user is told.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <csignal>
#include <functional>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>

#include "contract/FileSite.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileErrors.h"
#include "platform/posix/PosixFileSystem.h"
#include "unit/posix/AsOrdinaryUser.h"
#include "unit/posix/FaultyFileCalls.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

using test::FaultyFileCalls;
using test::FileCall;
using test::FileFault;
using test::HoldsAsOrdinaryUser;

const QString kDenied = u"Keine Berechtigung zum Schreiben der Datei."_s;
const QString kNoFolder = u"Der Ordner ist nicht vorhanden."_s;
const QString kDirectory = u"Der Pfad ist ein Ordner."_s;
const QString kNoFile = u"Der Pfad ist keine gewöhnliche Datei."_s;
const QString kFull = u"Auf dem Datenträger ist kein Platz mehr."_s;
const QString kTooLarge = u"Die Datei ist zu groß."_s;

class Overwrite : public test::FileSite {
 protected:
  [[nodiscard]] QByteArray SystemName(const QString& name) const { return QFile::encodeName(Path(name)); }
  void Link(const QByteArray& target, const QString& name) const {
    ASSERT_EQ(symlink(target.constData(), SystemName(name).constData()), 0);
  }
  void SetMode(const QString& name, mode_t mode) const {
    ASSERT_EQ(chmod(SystemName(name).constData(), mode), 0);
  }
  [[nodiscard]] struct stat Status(const QString& name) const {
    struct stat status {};
    EXPECT_EQ(lstat(SystemName(name).constData(), &status), 0) << name.toStdString();
    return status;
  }
  [[nodiscard]] mode_t Mode(const QString& name) const { return Status(name).st_mode & 07777; }
};

// --- what the file holds ---

// Otherwise an interruption could leave a part: the name must not lead to bytes that are not on the disk.
TEST_F(Overwrite, BringsTheImageToTheDiskBeforeItTakesTheNameAndThenTheName) {
  Write(u"a.qpf"_s, "old");
  const FaultyFileCalls calls;
  PosixFileSystem files(calls);
  EXPECT_EQ(files.Overwrite(Path(u"a.qpf"_s), "newer"), QString());
  std::vector<FileCall> changes;
  for (const FileCall call : calls.Calls()) {
    if (call == FileCall::Write || call == FileCall::Sync || call == FileCall::Rename ||
        call == FileCall::ChangeMode || call == FileCall::Truncate || call == FileCall::Remove) {
      changes.push_back(call);
    }
  }
  EXPECT_EQ(changes, (std::vector<FileCall>{FileCall::ChangeMode, FileCall::Write, FileCall::Sync,
                                            FileCall::Rename, FileCall::Sync}));
}

TEST_F(Overwrite, LeavesAReaderOfTheOldFileUndisturbed) {
  Write(u"a.qpf"_s, "old");
  QFile reader(Path(u"a.qpf"_s));
  ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
  EXPECT_EQ(Save(u"a.qpf"_s, "newer"), QString());
  EXPECT_EQ(reader.readAll(), "old");
  EXPECT_EQ(Stored(u"a.qpf"_s), "newer");
}

// --- which file it is ---

TEST_F(Overwrite, PrefersTheNameAsWrittenAndDoesNotChooseAmongOthers) {
  Write(u"a.qpf"_s, "1");
  Write(u"A.QPF"_s, "2");
  EXPECT_EQ(Save(u"A.QPF"_s, "3"), QString());
  EXPECT_EQ(Stored(u"A.QPF"_s), "3");
  EXPECT_EQ(Stored(u"a.qpf"_s), "1");
  EXPECT_EQ(Save(u"A.qpf"_s, "4"),
            u"Mehrere Dateien unterscheiden sich nur in der Groß- und Kleinschreibung."_s);
  EXPECT_EQ(Names().size(), 2);
}

TEST_F(Overwrite, FollowsLinksAndLeavesThemLinks) {
  Write(u"deep/real.qpf"_s, "abc");
  Link("deep/real.qpf", u"relative.qpf"_s);
  Link(SystemName(u"deep/real.qpf"_s), u"absolute.qpf"_s);
  Link("../relative.qpf", u"deep/back.qpf"_s);
  Link("deep/back.qpf", u"chain.qpf"_s);
  char mark = '0';
  for (const QString& link : {u"relative.qpf"_s, u"absolute.qpf"_s, u"deep/back.qpf"_s, u"chain.qpf"_s}) {
    const QByteArray bytes(1, ++mark);
    EXPECT_EQ(Save(link, bytes), QString());
    EXPECT_EQ(Stored(u"deep/real.qpf"_s), bytes + "bc");
    EXPECT_TRUE(S_ISLNK(Status(link).st_mode)) << link.toStdString();
  }
  EXPECT_EQ(Names(u"deep"_s), (QStringList{u"back.qpf"_s, u"real.qpf"_s}));
}

TEST_F(Overwrite, MakesTheFileThatALinkLeadsToWhenItDoesNotExist) {
  ASSERT_TRUE(QDir(folder_.path()).mkdir(u"deep"_s));
  Link("deep/new.qpf", u"dangling.qpf"_s);
  EXPECT_EQ(Save(u"DANGLING.qpf"_s, "x"), QString());
  EXPECT_EQ(Stored(u"deep/new.qpf"_s), "x");
  EXPECT_TRUE(S_ISLNK(Status(u"dangling.qpf"_s).st_mode));
  Link("nowhere/new.qpf", u"lost.qpf"_s);
  EXPECT_EQ(Save(u"lost.qpf"_s, "x"), kNoFolder);
}

TEST_F(Overwrite, FollowsAFolderThatIsALink) {
  Write(u"real/a.qpf"_s, "old");
  Link("real", u"alias"_s);
  EXPECT_EQ(Save(u"ALIAS/A.qpf"_s, "new"), QString());
  EXPECT_EQ(Stored(u"real/a.qpf"_s), "new");
}

TEST_F(Overwrite, RefusesLinksThatLeadInACircle) {
  Link("b", u"a"_s);
  Link("a", u"b"_s);
  EXPECT_EQ(Save(u"a"_s, "x"), u"Zu viele symbolische Verknüpfungen im Pfad."_s);
}

// --- what is refused ---

TEST_F(Overwrite, RefusesALinkToAFolder) {
  Write(u"sub/a.qpf"_s, "x");
  Link("sub", u"link"_s);
  EXPECT_EQ(Save(u"link"_s, "x"), kDirectory);
  EXPECT_EQ(Names(), (QStringList{u"link"_s, u"sub"_s}));
}

// To open a device can already set it going.
TEST_F(Overwrite, RefusesPipesAndDevicesWithoutOpeningThem) {
  ASSERT_EQ(mkfifo(SystemName(u"pipe"_s).constData(), 0600), 0);
  const FaultyFileCalls calls;
  EXPECT_EQ(PosixFileSystem(calls).Overwrite(Path(u"pipe"_s), "x"), kNoFile);
  EXPECT_EQ(std::count(calls.Calls().begin(), calls.Calls().end(), FileCall::Open), 0);
  Link("/dev/null", u"device"_s);
  EXPECT_EQ(Save(u"device"_s, "x"), kNoFile);
  EXPECT_EQ(files_.Overwrite(u"/dev/full"_s, "x"), kNoFile);
  EXPECT_EQ(Names().size(), 2);
  EXPECT_TRUE(S_ISFIFO(Status(u"pipe"_s).st_mode));
}

// Its name in the system's list of open files leads nowhere.
TEST_F(Overwrite, RefusesAPipeThatIsReachedThroughItsDescriptor) {
  int ends[2] = {};
  ASSERT_EQ(pipe(ends), 0);
  const Descriptor reading(ends[0]);
  const Descriptor writing(ends[1]);
  EXPECT_EQ(files_.Overwrite(u"/proc/self/fd/%1"_s.arg(ends[1]), "x"), kNoFile);
}

TEST_F(Overwrite, RefusesImpossibleNames) {
  EXPECT_EQ(Save(QString(300, u'x'), "x"), u"Der Dateiname ist zu lang."_s);
  Write(u"file"_s, "x");
  EXPECT_EQ(Save(u"file/a.qpf"_s, "x"), u"Ein Teil des Pfades ist kein Ordner."_s);
  EXPECT_EQ(Save(u"FILE/a.qpf"_s, "x"), u"Ein Teil des Pfades ist kein Ordner."_s);
  EXPECT_EQ(Names(), QStringList{u"file"_s});
}

TEST_F(Overwrite, LeavesNoDescriptorOpen) {
  Write(u"a.qpf"_s, "x");
  const auto openDescriptors = [] {
    return QDir(u"/proc/self/fd"_s).entryList(QDir::System | QDir::Files).size();
  };
  const auto before = openDescriptors();
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(Save(u"A.qpf"_s, "x"), QString());
    EXPECT_EQ(Save(u"missing/a"_s, "x"), kNoFolder);
    EXPECT_EQ(files_.Overwrite(folder_.path(), "x"), kDirectory);
  }
  EXPECT_EQ(openDescriptors(), before);
}

// --- permissions ---

TEST_F(Overwrite, KeepsPermissions) {
  for (const mode_t mode : {0600U, 0644U, 0664U, 0666U, 0700U, 0755U, 0640U}) {
    Write(u"a.qpf"_s, "old");
    SetMode(u"a.qpf"_s, mode);
    EXPECT_EQ(Save(u"a.qpf"_s, "new"), QString());
    EXPECT_EQ(Mode(u"a.qpf"_s), mode);
  }
}

TEST_F(Overwrite, GivesANewFileWhatTheUsersMaskLeaves) {
  for (const mode_t mask : {0022U, 0077U, 0002U}) {
    const mode_t before = umask(mask);
    EXPECT_EQ(Save(u"%1.qpf"_s.arg(mask), "new"), QString());
    umask(before);
    EXPECT_EQ(Mode(u"%1.qpf"_s.arg(mask)), 0666 & ~mask);
  }
}

TEST_F(Overwrite, KeepsTheOwnerWhereItMay) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
  Write(u"a.qpf"_s, "old");
  ASSERT_EQ(chown(SystemName(u"a.qpf"_s).constData(), 1234, 2345), 0);
  SetMode(u"a.qpf"_s, 0660);
  EXPECT_EQ(Save(u"a.qpf"_s, "new"), QString());
  EXPECT_EQ(Status(u"a.qpf"_s).st_uid, 1234U);
  EXPECT_EQ(Status(u"a.qpf"_s).st_gid, 2345U);
  EXPECT_EQ(Mode(u"a.qpf"_s), 0660U);
}

TEST_F(Overwrite, DoesNotGiveAnotherGroupWhatTheOldOneWasAllowed) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
  const struct { mode_t before, after; } cases[] = {{0666, 0666}, {0676, 0666}, {0667, 0667}};
  SetMode(u"."_s, 0777);
  for (const auto& example : cases) {
    Write(u"a.qpf"_s, "old");
    ASSERT_EQ(chown(SystemName(u"a.qpf"_s).constData(), 1234, 2345), 0);
    SetMode(u"a.qpf"_s, example.before);
    EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"a.qpf"_s, "new").isEmpty(); }));
    EXPECT_EQ(Stored(u"a.qpf"_s), "new");
    EXPECT_NE(Status(u"a.qpf"_s).st_uid, 1234U) << "replaced, not written in place";
    EXPECT_EQ(Mode(u"a.qpf"_s), example.after);
    ASSERT_TRUE(QFile::remove(Path(u"a.qpf"_s)));
  }
}

TEST_F(Overwrite, WritesInPlaceWhereTheFolderTakesNoNewFile) {
  Write(u"sub/a.qpf"_s, "old and longer");
  SetMode(u"sub/a.qpf"_s, 0666);
  SetMode(u"sub"_s, 0555);
  SetMode(u"."_s, 0755);
  const ino_t before = Status(u"sub/a.qpf"_s).st_ino;
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"SUB/A.qpf"_s, "new").isEmpty(); }));
  EXPECT_EQ(Stored(u"sub/a.qpf"_s), "new and longer");
  EXPECT_EQ(Status(u"sub/a.qpf"_s).st_ino, before) << "the same file";
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"sub/a.qpf"_s, "much longer than it was").isEmpty(); }));
  EXPECT_EQ(Stored(u"sub/a.qpf"_s), "much longer than it was");
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"sub/new.qpf"_s, "new") == kDenied; }));
  EXPECT_EQ(Names(u"sub"_s), QStringList{u"a.qpf"_s});
  SetMode(u"sub"_s, 0755);
}

// In a common folder everybody may add files, but nobody may replace another's.
TEST_F(Overwrite, WritesInPlaceWhereTheFolderKeepsAnothersFile) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
  Write(u"sub/a.qpf"_s, "old");
  ASSERT_EQ(chown(SystemName(u"sub/a.qpf"_s).constData(), 1234, 2345), 0);
  SetMode(u"sub/a.qpf"_s, 0666);
  SetMode(u"sub"_s, 01777);
  SetMode(u"."_s, 0755);
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"sub/a.qpf"_s, "newer").isEmpty(); }));
  EXPECT_EQ(Stored(u"sub/a.qpf"_s), "newer");
  EXPECT_EQ(Status(u"sub/a.qpf"_s).st_uid, 1234U);
  EXPECT_EQ(Names(u"sub"_s), QStringList{u"a.qpf"_s});
}

TEST_F(Overwrite, DoesNotTouchAFileThatMustNotBeWritten) {
  Write(u"sub/a.qpf"_s, "old");
  SetMode(u"sub/a.qpf"_s, 0444);
  SetMode(u"."_s, 0755);
  for (const mode_t folderMode : {0555U, 0777U}) {
    SetMode(u"sub"_s, folderMode);
    EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"sub/a.qpf"_s, "new") == kDenied; })) << folderMode;
    EXPECT_EQ(Stored(u"sub/a.qpf"_s), "old");
    EXPECT_EQ(Names(u"sub"_s), QStringList{u"a.qpf"_s});
  }
}

TEST_F(Overwrite, InAFolderThatCannotBeListedWritesWhatExistsAsWrittenOnly) {
  Write(u"sub/a.qpf"_s, "old");
  SetMode(u"sub/a.qpf"_s, 0666);
  SetMode(u"sub"_s, 0333);
  SetMode(u"."_s, 0755);
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"sub/a.qpf"_s, "newer").isEmpty(); }));
  // It may be there in another case.
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"sub/A.qpf"_s, "newer") == kDenied; }));
  SetMode(u"sub"_s, 0755);
  EXPECT_EQ(Stored(u"sub/a.qpf"_s), "newer");
  EXPECT_EQ(Names(u"sub"_s), QStringList{u"a.qpf"_s});
}

// --- what interrupted saves leave behind ---

// The first save is killed before its image takes the name. So its file stays, and the next one removes it.
TEST_F(Overwrite, RemovesWhatAKilledSaveHasLeft) {
  Write(u"a.qpf"_s, "old");
  const FaultyFileCalls probe;
  EXPECT_EQ(PosixFileSystem(probe).Overwrite(Path(u"a.qpf"_s), "old"), QString());
  const auto rename = std::find(probe.Calls().begin(), probe.Calls().end(), FileCall::Rename);
  const pid_t child = fork();
  if (child == 0) {
    FaultyFileCalls calls;
    calls.fault = {static_cast<int>(rename - probe.Calls().begin()), FileFault::kKill,
                   FileFault::Lasting::Once};
    (void)PosixFileSystem(calls).Overwrite(Path(u"a.qpf"_s), "new");
    _exit(0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(Names().size(), 2);
  EXPECT_TRUE(Names().constFirst().startsWith(u".kalivor-"));
  EXPECT_EQ(Save(u"b.qpf"_s, "other"), QString()) << "whatever file of the folder is saved";
  EXPECT_EQ(Names(), (QStringList{u"a.qpf"_s, u"b.qpf"_s}));
  EXPECT_EQ(Stored(u"a.qpf"_s), "old");
}

// Another program saves at the very moment at which the first one's image is complete.
TEST_F(Overwrite, LeavesTheTemporaryFileOfAProgramAtWork) {
  struct Nested final : FileCalls {
    std::function<void()> beforeRename;
    int Rename(const QByteArray& from, const QByteArray& to) const override {
      beforeRename();
      return FileCalls::Rename(from, to);
    }
  };
  Nested calls;
  calls.beforeRename = [this] { EXPECT_EQ(Save(u"b.qpf"_s, "second"), QString()); };
  EXPECT_EQ(PosixFileSystem(calls).Overwrite(Path(u"a.qpf"_s), "first"), QString());
  EXPECT_EQ(Stored(u"a.qpf"_s), "first");
  EXPECT_EQ(Stored(u"b.qpf"_s), "second");
  EXPECT_EQ(Names(), (QStringList{u"a.qpf"_s, u"b.qpf"_s}));
}

// Another program takes the new file for abandoned, because it is not locked yet, and removes it.
TEST_F(Overwrite, TriesAnotherNameWhenItsTemporaryFileIsTakenAway) {
  struct Cleaned final : FileCalls {
    bool holdsLock = false;  ///< the other program is about to remove it
    mutable int opened = 0;
    mutable QByteArray path;
    mutable int other = -1;
    int Open(const QByteArray& name, int flags, mode_t mode) const override {
      if ((flags & O_CREAT) != 0) {
        path = name;
        ++opened;
      }
      return FileCalls::Open(name, flags, mode);
    }
    int Lock(int fd) const override {
      if (opened == 1 && other < 0) {
        other = open(path.constData(), O_RDWR | O_CLOEXEC);
        EXPECT_EQ(FileCalls::Lock(other), 0);
        if (!holdsLock) {
          EXPECT_EQ(unlink(path.constData()), 0);
          close(other);
        }
      }
      return FileCalls::Lock(fd);
    }
  };
  for (const bool holdsLock : {false, true}) {
    Cleaned calls;
    calls.holdsLock = holdsLock;
    EXPECT_EQ(PosixFileSystem(calls).Overwrite(Path(u"a.qpf"_s), "content"), QString());
    EXPECT_EQ(calls.opened, 2);
    EXPECT_EQ(Stored(u"a.qpf"_s), "content");
    EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
    if (holdsLock) close(calls.other);
  }
}

TEST_F(Overwrite, LeavesEverythingElseOfASimilarName) {
  const QStringList others{u".kalivor-0123456789abcde.tmp"_s,
                           u".kalivor-0123456789abcdef.qpf"_s,
                           u".kalivor-0123456789ABCDEF.tmp"_s,
                           u".kalivor-0123456789abcdef0.tmp"_s,
                           u".kalivor-0123456789abcdeg.tmp"_s,
                           u"kalivor-0123456789abcdef.tmp"_s,
                           u".kalivor-.tmp"_s};
  for (const QString& name : others)
    Write(name, "x");
  Write(u"precious"_s, "x");
  Link("precious", u".kalivor-1111111111111111.tmp"_s);
  ASSERT_EQ(mkfifo(SystemName(u".kalivor-2222222222222222.tmp"_s).constData(), 0600), 0);
  ASSERT_TRUE(QDir(folder_.path()).mkdir(u".kalivor-3333333333333333.tmp"_s));
  const QStringList before = Names();
  EXPECT_EQ(Save(u"precious"_s, "y"), QString());
  EXPECT_EQ(Names(), before);
}

TEST_F(Overwrite, LeavesTheTemporaryFilesOfAnotherUser) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make another user's file";
  SetMode(u"."_s, 0777);
  Write(u".kalivor-0123456789abcdef.tmp"_s, "root's");
  SetMode(u".kalivor-0123456789abcdef.tmp"_s, 0666);
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return Save(u"a.qpf"_s, "x").isEmpty(); }));
  EXPECT_EQ(Names(), (QStringList{u".kalivor-0123456789abcdef.tmp"_s, u"a.qpf"_s}));
  SetMode(u"."_s, 0700);
}

// Some network drives know no locks.
TEST_F(Overwrite, WithoutLocksSavesAndRemovesNothing) {
  struct NoLocks final : FileCalls {
    int Lock(int /*fd*/) const override {
      errno = ENOTSUP;
      return -1;
    }
  };
  Write(u".kalivor-0123456789abcdef.tmp"_s, "of a program that is perhaps at work");
  EXPECT_EQ(PosixFileSystem(NoLocks()).Overwrite(Path(u"a.qpf"_s), "x"), QString());
  EXPECT_EQ(Names(), (QStringList{u".kalivor-0123456789abcdef.tmp"_s, u"a.qpf"_s}));
}

// What lies there under a temporary file's name is neither followed nor written.
TEST_F(Overwrite, MakesItsTemporaryFileAnewUnderANameThatCannotBeGuessed) {
  struct Recorded final : FileCalls {
    mutable QByteArrayList names;
    int Open(const QByteArray& name, int flags, mode_t mode) const override {
      if ((flags & O_CREAT) != 0) {
        names.append(name);
        EXPECT_EQ(flags & (O_EXCL | O_NOFOLLOW), O_EXCL | O_NOFOLLOW);
      }
      return FileCalls::Open(name, flags, mode);
    }
  };
  Recorded calls;
  for (int i = 0; i < 100; ++i)
    ASSERT_EQ(PosixFileSystem(calls).Overwrite(Path(u"a.qpf"_s), "x"), QString());
  std::sort(calls.names.begin(), calls.names.end());
  EXPECT_EQ(std::unique(calls.names.begin(), calls.names.end()) - calls.names.begin(), 100);
  for (const QByteArray& name : calls.names)
    EXPECT_EQ(name.size(), SystemName(u".kalivor-0123456789abcdef.tmp"_s).size());
}

// --- failures ---

// The system's limit of a file's size stops the writing in the middle, as a full disk does.
TEST_F(Overwrite, AWriteThatStopsInTheMiddleLeavesTheOldFile) {
  Write(u"a.qpf"_s, "old");
  SetMode(u"a.qpf"_s, 0666);
  SetMode(u"."_s, 0777);
  const auto saveWithLimit = [&](const QByteArray& bytes) {
    (void)std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1000, 1000};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 && Save(u"a.qpf"_s, bytes) == kTooLarge;
  };
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return saveWithLimit(QByteArray(1001, 'x')); }));
  EXPECT_EQ(Stored(u"a.qpf"_s), "old");
  EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
  // And in place.
  SetMode(u"."_s, 0555);
  EXPECT_TRUE(HoldsAsOrdinaryUser([&] { return saveWithLimit(QByteArray(1001, 'x')); }));
  EXPECT_EQ(Stored(u"a.qpf"_s), "old");
  SetMode(u"."_s, 0755);
}

/// Saves "newer" over "old" with every call of one kind failing. Returns the description.
QString DescriptionOf(const QString& path, FileCall call, int error) {
  FaultyFileCalls probe;
  PosixFileSystem files(probe);
  EXPECT_EQ(files.Overwrite(path, "old"), QString());
  const auto found = std::find(probe.Calls().begin(), probe.Calls().end(), call);
  FaultyFileCalls calls;
  calls.fault = {static_cast<int>(found - probe.Calls().begin()), error, FileFault::Lasting::SameCall};
  return PosixFileSystem(calls).Overwrite(path, "newer");
}

TEST_F(Overwrite, DescribesFailuresInGerman) {
  Write(u"a.qpf"_s, "old");
  const struct {
    int error;
    QString description;
  } cases[] = {
      {ENOSPC, kFull},
      {EDQUOT, u"Der für den Benutzer vorgesehene Platz auf dem Datenträger ist aufgebraucht."_s},
      {EIO, u"Ein-/Ausgabefehler beim Schreiben der Datei."_s},
      {EINTR, u"Der Zugriff auf die Datei wurde unterbrochen."_s},
      {EFBIG, kTooLarge},
      {ESTALE, u"Die Datei auf dem Netzlaufwerk ist nicht mehr gültig."_s},
      {EXDEV, u"Die Datei kann nicht geschrieben werden (Systemfehler 18)."_s},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(DescriptionOf(Path(u"a.qpf"_s), FileCall::Write, example.error), example.description);
    EXPECT_EQ(Stored(u"a.qpf"_s), "old");
    EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
  }
  EXPECT_EQ(DescriptionOf(Path(u"a.qpf"_s), FileCall::Open, EROFS),
            u"Der Datenträger ist schreibgeschützt."_s);
  EXPECT_EQ(DescriptionOf(Path(u"a.qpf"_s), FileCall::Open, ETXTBSY),
            u"Die Datei wird gerade von einem anderen Programm benutzt."_s);
  EXPECT_EQ(DescriptionOf(Path(u"a.qpf"_s), FileCall::Open, EMFILE), u"Zu viele geöffnete Dateien."_s);
  EXPECT_EQ(Stored(u"a.qpf"_s), "old");
}

// Some network drives tell only then that the bytes did not arrive.
TEST_F(Overwrite, ANewImageThatCannotBeClosedDoesNotTakeTheName) {
  Write(u"a.qpf"_s, "old");
  const FaultyFileCalls probe;
  EXPECT_EQ(PosixFileSystem(probe).Overwrite(Path(u"a.qpf"_s), "old"), QString());
  const auto rename = std::find(probe.Calls().begin(), probe.Calls().end(), FileCall::Rename);
  ASSERT_NE(rename, probe.Calls().end());
  ASSERT_EQ(*(rename - 1), FileCall::Close);
  FaultyFileCalls calls;
  calls.fault = {static_cast<int>(rename - probe.Calls().begin()) - 1, ENOSPC, FileFault::Lasting::Once};
  EXPECT_EQ(PosixFileSystem(calls).Overwrite(Path(u"a.qpf"_s), "newer"), kFull);
  EXPECT_EQ(Stored(u"a.qpf"_s), "old");
  EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
}

TEST_F(Overwrite, TellsReadingFromWriting) {
  for (const int error : {ENOENT, EACCES, EPERM, EIO, EXDEV})
    EXPECT_NE(DescribeReading(error), DescribeWriting(error)) << error;
  for (const int error : {ENOTDIR, EISDIR, ENOTSUP, EFBIG, ELOOP, ENAMETOOLONG, EINVAL, EMFILE, ENOMEM}) {
    EXPECT_EQ(DescribeReading(error), DescribeWriting(error)) << error;
    EXPECT_FALSE(DescribeWriting(error).contains(u"Systemfehler")) << error;
  }
}

// Writing in place comes half way, then the disk is full: what was there is put back.
TEST_F(Overwrite, PutsBackTheOldBytesWhenWritingInPlaceFails) {
  struct Half final : FileCalls {
    bool restoring = false;  ///< writing the old bytes back works
    mutable int writes = 0;
    int Open(const QByteArray& path, int flags, mode_t mode) const override {
      errno = EACCES;
      return (flags & O_CREAT) != 0 ? -1 : FileCalls::Open(path, flags, mode);
    }
    ssize_t Write(int fd, const char* bytes, size_t count, off_t position) const override {
      ++writes;
      errno = ENOSPC;
      if (writes == 2 || (writes > 2 && !restoring)) return -1;
      return FileCalls::Write(fd, bytes, writes == 1 ? count / 2 : count, position);
    }
  };
  for (const QByteArray& old : {QByteArray("old"), QByteArray(), QByteArray("longer than the new one")}) {
    Write(u"a.qpf"_s, old);
    Half calls;
    calls.restoring = true;
    EXPECT_EQ(PosixFileSystem(calls).Overwrite(Path(u"a.qpf"_s), "NEW IMAGE"), kFull);
    EXPECT_EQ(Stored(u"a.qpf"_s), old);
  }
  Write(u"a.qpf"_s, "old");
  const Half calls;
  EXPECT_EQ(PosixFileSystem(calls).Overwrite(Path(u"a.qpf"_s), "NEW IMAGE"),
            kFull + u" Der Inhalt der Datei ist jetzt ungewiss."_s);
}

}  // namespace
}  // namespace kalivor::platform
