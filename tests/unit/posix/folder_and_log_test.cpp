// Folders, removing and appending as this system has them, and while each of its calls fails.
#include <sys/stat.h>
#include <QDir>
#include <QFile>

#include "contract/FileSite.h"
#include "platform/posix/FileErrors.h"
#include "platform/posix/PosixFileSystem.h"
#include "unit/posix/AsOrdinaryUser.h"
#include "unit/posix/FaultyFileCalls.h"

namespace kalivor::platform {
namespace {

using namespace Qt::StringLiterals;

using test::FaultyFileCalls;
using test::FileCall;
using test::FileFault;
using Lasting = FileFault::Lasting;

const QString kNoFile = u"Der Pfad ist keine gewöhnliche Datei."_s;

class PosixFolder : public test::FileSite {
 protected:
  [[nodiscard]] QByteArray SystemName(const QString& name) const { return QFile::encodeName(Path(name)); }
};

TEST_F(PosixFolder, ListsLinksToFilesAndNothingElse) {
  Write(u"a.txt"_s, "x");
  ASSERT_TRUE(QFile::link(u"a.txt"_s, Path(u"link.txt"_s)));
  ASSERT_TRUE(QFile::link(u"nowhere"_s, Path(u"dead.txt"_s)));
  ASSERT_TRUE(QFile::link(u"loop.txt"_s, Path(u"loop.txt"_s)));
  ASSERT_EQ(mkfifo(SystemName(u"pipe.txt"_s).constData(), 0600), 0);
  QStringList names = files_.List(folder_.path()).names;
  names.sort();
  EXPECT_EQ(names, (QStringList{u"a.txt"_s, u"link.txt"_s}));
}

TEST_F(PosixFolder, ThatMustNotBeReadIsToldAndNotTakenForEmpty) {
  Write(u"sub/a.txt"_s, "x");
  ASSERT_EQ(chmod(SystemName(u"."_s).constData(), 0755), 0);
  for (const mode_t mode : {0333U, 0444U}) {
    ASSERT_EQ(chmod(SystemName(u"sub"_s).constData(), mode), 0);
    EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] {
      const FolderContent content = files_.List(Path(u"sub"_s));
      return content.error == u"Keine Berechtigung zum Lesen der Datei."_s && !content.missing;
    }));
  }
  ASSERT_EQ(chmod(SystemName(u"sub"_s).constData(), 0755), 0);
}

TEST_F(PosixFolder, RemovesTheLinkAndNotWhatItLeadsTo) {
  Write(u"a.txt"_s, "x");
  ASSERT_TRUE(QFile::link(u"a.txt"_s, Path(u"link.txt"_s)));
  EXPECT_EQ(files_.Remove(Path(u"link.txt"_s)), QString());
  EXPECT_EQ(Names(), QStringList{u"a.txt"_s});
}

// Opening any of these for writing could wait for ever.
TEST_F(PosixFolder, RefusesWhatIsNoRegularFile) {
  ASSERT_EQ(mkfifo(SystemName(u"pipe"_s).constData(), 0600), 0);
  for (const QString& path : {Path(u"pipe"_s), u"/dev/null"_s}) {
    EXPECT_EQ(files_.Remove(path), kNoFile);
    EXPECT_EQ(files_.OpenLog(path).error, kNoFile);
  }
  EXPECT_EQ(Names(), QStringList{u"pipe"_s});
}

// A second writer's bytes stay where they are: what is appended goes to the end as it is then.
TEST_F(PosixFolder, AppendsBehindWhatOthersHaveAppended) {
  Write(u"log.txt"_s, "a");
  const OpenedLog opened = files_.OpenLog(Path(u"log.txt"_s));
  ASSERT_EQ(opened.error, QString());
  Write(u"log.txt"_s, "abc");
  EXPECT_EQ(opened.log->Append("d"), QString());
  EXPECT_EQ(Stored(u"log.txt"_s), "abcd");
}

// Every append ends with bringing the bytes to the disk.
TEST_F(PosixFolder, AnAppendIsFlushed) {
  Write(u"log.txt"_s, {});
  const FaultyFileCalls calls;
  PosixFileSystem files(calls);
  const OpenedLog opened = files.OpenLog(Path(u"log.txt"_s));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(opened.log->Append("x"), QString());
    ASSERT_EQ(calls.Calls().back(), FileCall::Sync);
    EXPECT_EQ(calls.Calls().at(calls.Calls().size() - 2), FileCall::Append);
  }
}

// What every call's failure makes of an operation: it is said, or the operation did what it was to do.
TEST_F(PosixFolder, EveryFailureIsSaid) {
  const auto run = [this](const FaultyFileCalls& calls, int operation) -> QString {
    PosixFileSystem files(calls);
    Write(u"Ablage/log.txt"_s, "begun ");
    if (operation == 0) return files.List(Path(u"ABLAGE"_s)).error;
    if (operation == 1) return files.Remove(Path(u"ABLAGE/log.txt"_s));
    const OpenedLog opened = files.OpenLog(Path(u"ABLAGE/log.txt"_s));
    return opened.log ? opened.log->Append("appended") : opened.error;
  };
  for (const int operation : {0, 1, 2}) {
    const FaultyFileCalls probe;
    ASSERT_EQ(run(probe, operation), QString());
    const std::vector<FileCall> all = probe.Calls();
    for (std::size_t at = 0; at < all.size(); ++at) {
      for (const int failure : {EIO, ENOSPC, EINTR, FileFault::kShort}) {
        for (const Lasting lasting : {Lasting::Once, Lasting::SameCall}) {
          if (failure == FileFault::kShort && all[at] != FileCall::Append) continue;
          // A name that cannot be looked at is looked for in the folder.
          if (all[at] == FileCall::LinkStatus || all[at] == FileCall::Close) continue;
          SCOPED_TRACE(testing::Message() << "operation " << operation << ", call " << at << ", failure "
                                          << failure << ", lasting " << static_cast<int>(lasting));
          FaultyFileCalls calls;
          calls.fault = {static_cast<int>(at), failure, lasting};
          const QString error = run(calls, operation);
          const bool bearable =
              failure == FileFault::kShort || (failure == EINTR && lasting == Lasting::Once);
          EXPECT_EQ(error.isEmpty(), bearable) << error.toStdString();
          if (operation == 0) continue;
          const bool removed = !QFileInfo::exists(Path(u"Ablage/log.txt"_s));
          EXPECT_EQ(removed, operation == 1 && bearable);
          if (operation == 2 && bearable) {
            EXPECT_EQ(Stored(u"Ablage/log.txt"_s), "begun appended");
          }
        }
      }
    }
  }
}

TEST_F(PosixFolder, AnAppendThatStopsInTheMiddleIsSaid) {
  struct Half final : FileCalls {
    mutable int appends = 0;
    ssize_t Append(int fd, const char* bytes, size_t count) const override {
      errno = ENOSPC;
      return ++appends > 1 ? -1 : FileCalls::Append(fd, bytes, count / 2);
    }
  } const calls;
  Write(u"log.txt"_s, "a");
  PosixFileSystem files(calls);
  const OpenedLog opened = files.OpenLog(Path(u"log.txt"_s));
  ASSERT_EQ(opened.error, QString());
  EXPECT_EQ(opened.log->Append("bcde"), u"Auf dem Datenträger ist kein Platz mehr."_s);
  EXPECT_EQ(Stored(u"log.txt"_s), "abc");
}

}  // namespace
}  // namespace kalivor::platform
