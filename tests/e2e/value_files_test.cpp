// Value files that are none, and places that take none: a clear message, never a crash, a hang or much
// memory.
#include <fcntl.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <random>

#include "e2e/Programs.h"
#include "unit/core/ValueFileBytes.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

const QString kVersion = u"HZL-012.0"_s;
const QString kUnknown = u"Unbekannte ReglerVersion: "_s;
const QString kNoFile = u"Der Pfad ist keine gewöhnliche Datei."_s;
const QString kTooLarge = u"Die Datei ist zu groß."_s;
const QString kLoop = u"Zu viele symbolische Verknüpfungen im Pfad."_s;

/// What a run without any value file needs is a tenth of it; what the files below claim to hold, much more.
constexpr long kMostMemory_KiB = 400L * 1024;

class HostileValueFiles : public testing::Test {
 protected:
  void TearDown() override {
    rusage usage{};
    ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
    EXPECT_LT(usage.ru_maxrss, kMostMemory_KiB) << "memory of the largest program";
    if (terminal_ >= 0) close(terminal_);
    if (slave_ >= 0) close(slave_);
    if (socket_ >= 0) close(socket_);
  }

  [[nodiscard]] QString Path(const QString& name) const { return folder.filePath(name); }

  QString Write(const QString& name, const QByteArray& bytes) const {
    QFile file(Path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return file.fileName();
  }

  [[nodiscard]] QString NewPipe() const {
    EXPECT_EQ(mkfifo(Path(u"pipe"_s).toUtf8().constData(), 0600), 0);
    return Path(u"pipe"_s);
  }
  QString NewTerminal() {
    char name[PATH_MAX];
    EXPECT_EQ(openpty(&terminal_, &slave_, name, nullptr, nullptr), 0);
    return QString::fromLocal8Bit(name);
  }
  QString NewSocket() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = Path(u"socket"_s).toUtf8();
    EXPECT_LT(name.size(), static_cast<qsizetype>(sizeof address.sun_path));
    std::copy(name.begin(), name.end(), address.sun_path);
    socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return Path(u"socket"_s);
  }
  [[nodiscard]] QString NewLink(const QString& to, const QString& name) const {
    EXPECT_EQ(symlink(to.toUtf8().constData(), Path(name).toUtf8().constData()), 0);
    return Path(name);
  }

  static Outcome Load(const QString& path) { return Cli().Run({u"--load"_s, path, u"tree"_s}); }
  static Outcome Show(const QString& path) { return Cli().Run({u"show"_s, path}); }
  static Outcome Save(const QString& path) { return Cli().Run({u"--save"_s, path, u"standard"_s}); }

  static void ExpectUnreadable(const QString& path, const QString& description) {
    const QString message = u"Fehler beim lesen von | %1 | %2\n"_s.arg(path, description);
    for (const Outcome& outcome : {Load(path), Show(path)}) {
      EXPECT_EQ(outcome.status, 2);
      EXPECT_EQ(outcome.out, QString());
      EXPECT_EQ(outcome.err, message);
    }
  }

  static void ExpectUnwritable(const QString& path, const QString& description) {
    const Outcome outcome = Save(path);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, u"Fehler beim schreiben von | %1 | %2\n"_s.arg(path, description));
  }

  QTemporaryDir folder;

 private:
  int terminal_ = -1;
  int slave_ = -1;
  int socket_ = -1;
};

// --- contents ---

TEST_F(HostileValueFiles, NothingUpToARecordShort) {
  const QByteArray record = Current(112, {}, kVersion, {});
  for (int size = 0; size < 62; ++size) {
    SCOPED_TRACE(size);
    const QString path = Write(u"short.qpf"_s, record.left(size));
    const Outcome load = Load(path);
    const Outcome show = Show(path);
    if (size == 52) {  // a whole record of an old file
      EXPECT_EQ(load.status, 0) << load.err.toStdString();
      EXPECT_EQ(show.out, u"52\t112\tHZL-012.0\n"_s);
      continue;
    }
    EXPECT_EQ(load.status, 2);
    EXPECT_EQ(load.err, kUnknown + QString(30, u' ') + u'\n');
    EXPECT_EQ(show.status, 2);
    EXPECT_EQ(show.err, u"Fehler beim lesen von | %1 | Die Datei ist keine Wertedatei.\n"_s.arg(path));
  }
}

TEST_F(HostileValueFiles, APartOfARecordAtTheEndIsIgnored) {
  const QByteArray image = Current(3, {}, kVersion, {}) + Current(7, {}, u"A"_s, u"int"_s);
  for (const int part : {1, 31, 61}) {
    const QString path = Write(u"part.qpf"_s, image + image.left(part));
    EXPECT_EQ(Load(path).status, 0);
    EXPECT_EQ(Show(path).out, u"62\t3\tHZL-012.0\n2\tA\tint\t7\t"_s + QString(20, u' ') + u'\n');
  }
}

TEST_F(HostileValueFiles, AbsurdNumbersOfParameters) {
  for (const qint32 count : {-1, 0, 2001, 2147483647, -2147483647 - 1}) {
    const QString path = Write(u"count.qpf"_s, Current(count, {}, kVersion, {}));
    EXPECT_EQ(Load(path).status, 0);
    EXPECT_EQ(Show(path).out, u"62\t%1\tHZL-012.0\n"_s.arg(count));
  }
}

TEST_F(HostileValueFiles, ForeignTypesAndValues) {
  for (const QString& type :
       {u"xyz"_s, u"string"_s, u"string-1"_s, u"string99"_s, u"\x01\x02\x1B"_s, u""_s}) {
    SCOPED_TRACE(type.toStdString());
    const QString path = Write(u"type.qpf"_s, Current(2, {}, kVersion, {}) +
                                                  Current(-2147483647 - 1, {}, u"_Standort"_s, type) +
                                                  Current(2147483647, {}, u"_Hk1RaumSollTag"_s, type));
    EXPECT_EQ(Load(path).status, 0);
    EXPECT_EQ(Show(path).out.count(u'\n'), 3);
    EXPECT_EQ(Cli().Run({u"--load"_s, path, u"pages"_s}).status, 0);
  }
}

TEST_F(HostileValueFiles, ControlCharactersDoNotReachTheTerminalInAMessage) {
  const QString path = Write(u"control.qpf"_s, Current(1, {}, u"\x1B[2J\x07\r\n\tV9"_s, {}));
  const Outcome outcome = Load(path);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, kUnknown + u"?[2J? | ?V9"_s + QString(20, u' ') + u'\n');
}

TEST_F(HostileValueFiles, AnyBytes) {
  std::mt19937 random(11);  // the same files every time
  for (int i = 0; i < 60; ++i) {
    QByteArray bytes(static_cast<int>(random() % 5000), '\0');
    for (char& byte : bytes)
      byte = static_cast<char>(random());
    // Every second one begins as a value file does.
    const bool isValueFile = i % 2 == 0;
    if (isValueFile) bytes.prepend(Current(static_cast<qint32>(random()), {}, kVersion, {}));
    const QString path = Write(u"random.qpf"_s, bytes);
    const Outcome load = Load(path);
    const Outcome show = Show(path);
    EXPECT_EQ(load.status, isValueFile ? 0 : 2) << i << load.err.toStdString();
    EXPECT_EQ(load.err.startsWith(kUnknown), !isValueFile) << i << load.err.toStdString();
    EXPECT_EQ(show.status, bytes.size() >= 62 ? 0 : 2) << i << show.err.toStdString();
  }
}

// Sparse files take no room on the disk.
TEST_F(HostileValueFiles, GigabytesAreNeitherReadNorOverwritten) {
  QFile file(Path(u"huge.qpf"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(Current(2, {}, kVersion, {}));
  file.flush();
  for (const qint64 size : {1LL << 30, 1LL << 40}) {
    ASSERT_TRUE(file.resize(size));
    ExpectUnreadable(file.fileName(), kTooLarge);
    ExpectUnwritable(file.fileName(), kTooLarge);
    EXPECT_EQ(QFileInfo(file.fileName()).size(), size);
  }
}

// --- what is no file ---

TEST_F(HostileValueFiles, AFolder) {
  ExpectUnreadable(folder.path(), u"Der Pfad ist ein Ordner."_s);
  ExpectUnwritable(folder.path(), u"Der Pfad ist ein Ordner."_s);
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(HostileValueFiles, Devices) {
  for (const QString& device : {u"/dev/zero"_s, u"/dev/full"_s, u"/dev/null"_s, NewTerminal()}) {
    SCOPED_TRACE(device.toStdString());
    ExpectUnreadable(device, kNoFile);
    ExpectUnwritable(device, kNoFile);
    struct stat status {};
    ASSERT_EQ(stat(device.toUtf8().constData(), &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode)) << "not replaced by a file";
  }
}

TEST_F(HostileValueFiles, APipeThatNobodyWritesOrReads) {
  const QString pipe = NewPipe();
  ExpectUnreadable(pipe, kNoFile);
  ExpectUnwritable(pipe, kNoFile);
  EXPECT_EQ(
      QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot),
      QStringList{u"pipe"_s});
}

TEST_F(HostileValueFiles, ASocket) {
  const QString path = NewSocket();
  ExpectUnreadable(path, kNoFile);
  ExpectUnwritable(path, kNoFile);
}

TEST_F(HostileValueFiles, ALinkToNothingIsMissingAndIsSavedThrough) {
  const QString link = NewLink(u"target.qpf"_s, u"link.qpf"_s);
  ExpectUnreadable(link, u"Datei nicht gefunden."_s);
  EXPECT_EQ(Save(link).status, 0);
  EXPECT_TRUE(QFileInfo(link).isSymLink());
  EXPECT_FALSE(QFileInfo(Path(u"target.qpf"_s)).isSymLink());
  EXPECT_EQ(Load(link).status, 0);
}

TEST_F(HostileValueFiles, ALinkIntoAFolderThatIsMissing) {
  const QString link = NewLink(u"missing/target.qpf"_s, u"link.qpf"_s);
  ExpectUnwritable(link, u"Der Ordner ist nicht vorhanden."_s);
}

TEST_F(HostileValueFiles, LinksThatLeadInACircle) {
  const QString one = NewLink(u"two.qpf"_s, u"one.qpf"_s);
  const QString two = NewLink(u"one.qpf"_s, u"two.qpf"_s);
  for (const QString& link : {one, two}) {
    ExpectUnreadable(link, kLoop);
    ExpectUnwritable(link, kLoop);
  }
}

TEST_F(HostileValueFiles, AFileWithoutPermission) {
  const QString path = Write(u"secret.qpf"_s, Current(1, {}, kVersion, {}));
  ASSERT_EQ(chmod(path.toUtf8().constData(), 0), 0);
  ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0755), 0);
  const QStringList load{u"--ini-path"_s, Examples(), u"--load"_s, path, u"tree"_s};
  const QStringList save{u"--ini-path"_s, Examples(), u"--save"_s, path, u"standard"_s};
  for (const QStringList& arguments : {load, save}) {
    QProcess process;
    process.setChildProcessModifier([] {
      constexpr uid_t kNobody = 65534;
      // The superuser is refused nothing.
      if (geteuid() == 0 && setuid(kNobody) != 0) _exit(99);
    });
    process.start(Program(u"kalivor-cli"_s), arguments);
    if (!process.waitForStarted(kHang_ms))
      GTEST_SKIP() << "another user cannot run a program out of this build folder";
    ASSERT_TRUE(process.waitForFinished(kHang_ms));
    EXPECT_EQ(process.exitCode(), 2);
    const QString verb = arguments == load ? u"Lesen"_s : u"Schreiben"_s;
    const QString err = QString::fromUtf8(process.readAllStandardError());
    EXPECT_TRUE(err.endsWith(path + u" | Keine Berechtigung zum %1 der Datei.\n"_s.arg(verb)))
        << err.toStdString();
  }
  EXPECT_EQ(QFileInfo(path).size(), 62);
}

// --- a disk that is full ---

/// A small disk in memory, mounted for the programs of one test alone.
class FullDisk : public testing::Test {
 protected:
  void SetUp() override {
    QProcess mount;
    mount.start(u"unshare"_s, {u"-rm"_s, u"mount"_s, u"-t"_s, u"tmpfs"_s, u"tmpfs"_s, folder.path()});
    if (!mount.waitForFinished(kHang_ms) || mount.exitCode() != 0) {
      GTEST_SKIP() << "a file system cannot be mounted here: "
                   << mount.readAllStandardError().trimmed().toStdString();
    }
  }

  /// Runs a shell script with the disk as its working folder and kalivor-cli's save as "save NAME".
  Outcome OnDisk(const QString& options, const QString& script) {
    const QString prologue =
        u"set -e\n"
        "mount -t tmpfs -o %1 tmpfs '%2'\n"
        "cd '%2'\n"
        "save() { '%3' --ini-path '%4' --save \"$1\" standard && echo saved || echo failed; }\n"
        "files() { ls -A | tr '\\n' ' '; echo; }\n"_s.arg(options, folder.path(), Program(u"kalivor-cli"_s),
                                                          Examples());
    QProcess shell;
    shell.start(u"unshare"_s, {u"-rm"_s, u"sh"_s, u"-c"_s, prologue + script});
    EXPECT_TRUE(shell.waitForFinished(kHang_ms));
    return {shell.exitCode(), QString::fromUtf8(shell.readAllStandardOutput()),
            QString::fromUtf8(shell.readAllStandardError())};
  }

  QTemporaryDir folder;
};

const QString kFull = u"Fehler beim schreiben von | a.qpf | Auf dem Datenträger ist kein Platz mehr.\n"_s;

// The image of the example takes two pages of memory. The disk has the old file's page and one to three more.
TEST_F(FullDisk, LeavesTheOldFileUntilThereIsRoomForTheNewOne) {
  for (const int pages : {2, 3, 4}) {
    SCOPED_TRACE(pages);
    const Outcome outcome = OnDisk(u"size=%1k"_s.arg(pages * 4),
                                   u"echo old > a.qpf\n"
                                   "save a.qpf\n"
                                   "files\n"
                                   "head -c 3 a.qpf | tr -d '\\000' | head -c 3; echo\n"
                                   "wc -c < a.qpf\n"_s);
    EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
    if (pages == 2) {
      EXPECT_EQ(outcome.out, u"failed\na.qpf \nold\n4\n"_s);
      EXPECT_EQ(outcome.err, kFull);
    } else {
      EXPECT_EQ(outcome.out, u"saved\na.qpf \np\n6944\n"_s);
      EXPECT_EQ(outcome.err, QString());
    }
  }
}

TEST_F(FullDisk, LeavesNothingOfANewFile) {
  const Outcome outcome = OnDisk(u"size=4k"_s, u"save a.qpf\nfiles\n"_s);
  EXPECT_EQ(outcome.out, u"failed\n\n"_s);
  EXPECT_EQ(outcome.err, kFull);
}

TEST_F(FullDisk, TakesNoFurtherFile) {
  // The folder itself and the old file are all that it may hold.
  const Outcome outcome = OnDisk(u"nr_inodes=2"_s, u"echo old > a.qpf\nsave a.qpf\nfiles\ncat a.qpf\n"_s);
  EXPECT_EQ(outcome.out, u"failed\na.qpf \nold\n"_s);
  EXPECT_EQ(outcome.err, kFull);
}

TEST_F(FullDisk, IsFreedOfWhatAKilledSaveHasLeft) {
  const Outcome outcome = OnDisk(u"size=16k"_s,
                                 u"echo old > a.qpf\n"
                                 "head -c 12288 /dev/zero > .kalivor-0123456789abcdef.tmp\n"
                                 "save a.qpf\n"
                                 "files\n"_s);
  EXPECT_EQ(outcome.out, u"saved\na.qpf \n"_s);
  EXPECT_EQ(outcome.err, QString());
}

TEST_F(FullDisk, OfReadOnlyKindIsNamed) {
  const Outcome outcome = OnDisk(u"size=1m"_s,
                                 u"echo old > a.qpf\n"
                                 "mount -o remount,ro .\n"
                                 "save a.qpf\n"
                                 "cat a.qpf\n"_s);
  EXPECT_EQ(outcome.out, u"failed\nold\n"_s);
  EXPECT_EQ(outcome.err, u"Fehler beim schreiben von | a.qpf | Der Datenträger ist schreibgeschützt.\n"_s);
}

}  // namespace
}  // namespace kalivor::test
