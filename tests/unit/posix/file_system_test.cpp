// Files of the computer.
#include "platform/posix/PosixFileSystem.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "fakes/QtPrinters.h"
#include "platform/posix/Descriptor.h"
#include "unit/posix/AsOrdinaryUser.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

class PosixFileSystemTest : public testing::Test {
 protected:
  [[nodiscard]] QString Path(const QString& name) const { return folder_.filePath(name); }

  void Write(const QString& name, const QByteArray& bytes) const {
    QDir().mkpath(QFileInfo(Path(name)).path());
    QFile file(Path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  // What reading `name` gives: the bytes, or the error.
  [[nodiscard]] QByteArray Bytes(const QString& name) {
    const FileContent content = files_.Read(Path(name));
    EXPECT_EQ(content.error, QString()) << name.toStdString();
    return content.bytes;
  }
  [[nodiscard]] QString Error(const QString& name) { return ErrorOfPath(Path(name)); }
  [[nodiscard]] QString ErrorOfPath(const QString& path) {
    const FileContent content = files_.Read(path);
    EXPECT_EQ(content.bytes, QByteArray());
    EXPECT_EQ(content.Ok(), content.error.isEmpty());
    return content.error;
  }

  QTemporaryDir folder_;
  PosixFileSystem files_;
};

const QString kNotFound = u"Datei nicht gefunden."_s;
const QString kSeveral = u"Mehrere Dateien unterscheiden sich nur in der Groß- und Kleinschreibung."_s;
const QString kDirectory = u"Der Pfad ist ein Ordner."_s;
const QString kNoFile = u"Der Pfad ist keine gewöhnliche Datei."_s;
const QString kDenied = u"Keine Berechtigung zum Lesen der Datei."_s;
const QString kTooLarge = u"Die Datei ist zu groß."_s;

TEST_F(PosixFileSystemTest, ReadsAllBytes) {
  QByteArray all;
  for (int i = 0; i < 100'000; ++i)
    all.append(static_cast<char>(i * 7));
  Write(u"a.bin"_s, all);
  EXPECT_EQ(Bytes(u"a.bin"_s), all);
}

TEST_F(PosixFileSystemTest, ReadsAnEmptyFile) {
  Write(u"empty"_s, {});
  EXPECT_EQ(Bytes(u"empty"_s), QByteArray());
}

// The size that the system tells is 0 for these.
TEST_F(PosixFileSystemTest, ReadsAFileOfUnknownSize) {
  const FileContent content = files_.Read(u"/proc/self/status"_s);
  EXPECT_TRUE(content.Ok());
  EXPECT_TRUE(content.bytes.startsWith("Name:"));
  EXPECT_TRUE(content.bytes.endsWith('\n'));
}

TEST_F(PosixFileSystemTest, TakesBothSeparatorsAlsoDoubledAndMixed) {
  Write(u"sub/deep/a.txt"_s, "x");
  EXPECT_EQ(Bytes(u"sub\\deep\\a.txt"_s), "x");
  EXPECT_EQ(Bytes(u"sub\\deep/a.txt"_s), "x");
  EXPECT_EQ(Bytes(u"sub//deep\\\\a.txt"_s), "x");
  EXPECT_EQ(Bytes(u"sub\\\\DEEP//A.TXT"_s), "x");
}

TEST_F(PosixFileSystemTest, FindsTheOneNameInOtherCase) {
  Write(u"def.txt"_s, "x");
  EXPECT_EQ(Bytes(u"DEF.TXT"_s), "x");
  EXPECT_EQ(Bytes(u"Def.Txt"_s), "x");
  Write(u"Größe Ä.TXT"_s, "y");
  EXPECT_EQ(Bytes(u"größe ä.txt"_s), "y");
}

TEST_F(PosixFileSystemTest, FindsFoldersInOtherCase) {
  Write(u"Regler/Tabellen/def.txt"_s, "x");
  EXPECT_EQ(Bytes(u"REGLER/tabellen/DEF.TXT"_s), "x");
  EXPECT_EQ(Bytes(u"REGLER/../regler/./Tabellen/def.txt"_s), "x");
}

TEST_F(PosixFileSystemTest, PrefersTheNameAsWritten) {
  Write(u"def.txt"_s, "small");
  Write(u"DEF.TXT"_s, "large");
  Write(u"Def.txt"_s, "mixed");
  EXPECT_EQ(Bytes(u"def.txt"_s), "small");
  EXPECT_EQ(Bytes(u"DEF.TXT"_s), "large");
  EXPECT_EQ(Bytes(u"Def.txt"_s), "mixed");
}

TEST_F(PosixFileSystemTest, DoesNotChooseAmongSeveralMatches) {
  Write(u"def.txt"_s, "1");
  Write(u"DEF.txt"_s, "2");
  EXPECT_EQ(Error(u"Def.TXT"_s), kSeveral);
  Write(u"sub/a.txt"_s, "3");
  Write(u"Sub/b.txt"_s, "4");
  EXPECT_EQ(Error(u"SUB/a.txt"_s), kSeveral);
  // Folder by folder: what is in the folder as written counts alone.
  EXPECT_EQ(Error(u"sub/b.txt"_s), kNotFound);
}

TEST_F(PosixFileSystemTest, TellsMissingFiles) {
  EXPECT_EQ(Error(u"missing.txt"_s), kNotFound);
  EXPECT_EQ(Error(u"missing/def.txt"_s), kNotFound);
  EXPECT_EQ(ErrorOfPath(QString()), kNotFound);
  Write(u"a.txt"_s, "x");
  EXPECT_EQ(Error(u"a.txt/b"_s), u"Ein Teil des Pfades ist kein Ordner."_s);
  EXPECT_EQ(Error(u"A.TXT/"_s), u"Ein Teil des Pfades ist kein Ordner."_s);
}

TEST_F(PosixFileSystemTest, FindsRelativePaths) {
  Write(u"def.txt"_s, "x");
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(folder_.path()));
  EXPECT_EQ(files_.Read(u"def.txt"_s).bytes, "x");
  EXPECT_EQ(files_.Read(u"DEF.txt"_s).bytes, "x");
  ASSERT_TRUE(QDir::setCurrent(before));
}

TEST_F(PosixFileSystemTest, RefusesDirectories) {
  Write(u"sub/a.txt"_s, "x");
  EXPECT_EQ(Error(u"sub"_s), kDirectory);
  EXPECT_EQ(Error(u"SUB"_s), kDirectory);
  EXPECT_EQ(ErrorOfPath(u"/"_s), kDirectory);
}

// Reading any of these would wait for ever or never end.
TEST_F(PosixFileSystemTest, RefusesEverythingElseThatIsNoRegularFile) {
  ASSERT_EQ(mkfifo(QFile::encodeName(Path(u"pipe"_s)).constData(), 0600), 0);
  EXPECT_EQ(Error(u"pipe"_s), kNoFile);
  EXPECT_EQ(ErrorOfPath(u"/dev/zero"_s), kNoFile);
  EXPECT_EQ(ErrorOfPath(u"/dev/null"_s), kNoFile);

  const Descriptor listener(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const QByteArray path = QFile::encodeName(Path(u"socket"_s));
  ASSERT_LT(static_cast<size_t>(path.size()), sizeof address.sun_path);
  std::copy(path.begin(), path.end(), address.sun_path);
  ASSERT_EQ(bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(Error(u"socket"_s), kNoFile);
}

TEST_F(PosixFileSystemTest, FollowsLinks) {
  Write(u"real.txt"_s, "x");
  ASSERT_TRUE(QFile::link(u"real.txt"_s, Path(u"link.txt"_s)));
  EXPECT_EQ(Bytes(u"LINK.txt"_s), "x");
  // A link to itself, and one to nowhere beside a file that differs in case only.
  ASSERT_TRUE(QFile::link(u"loop"_s, Path(u"loop"_s)));
  EXPECT_EQ(Error(u"loop"_s), u"Zu viele symbolische Verknüpfungen im Pfad."_s);
  ASSERT_TRUE(QFile::link(u"nowhere"_s, Path(u"REAL.txt"_s)));
  EXPECT_EQ(Error(u"REAL.txt"_s), kNotFound);
}

TEST_F(PosixFileSystemTest, RefusesHugeFilesWithoutReadingThem) {
  // Sparse: takes no room on the disk.
  QFile file(Path(u"huge"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_TRUE(file.resize(FileSystem::kLargestFile_bytes + 1));
  EXPECT_EQ(Error(u"huge"_s), kTooLarge);
  ASSERT_TRUE(file.resize(1LL << 40));
  EXPECT_EQ(Error(u"huge"_s), kTooLarge);
}

TEST_F(PosixFileSystemTest, RefusesUnreadableFiles) {
  Write(u"secret.txt"_s, "x");
  Write(u"open.txt"_s, "x");
  ASSERT_EQ(chmod(QFile::encodeName(folder_.path()).constData(), 0755), 0);
  ASSERT_EQ(chmod(QFile::encodeName(Path(u"secret.txt"_s)).constData(), 0), 0);
  ASSERT_EQ(chmod(QFile::encodeName(Path(u"open.txt"_s)).constData(), 0644), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] { return files_.Read(Path(u"open.txt"_s)).Ok(); }));
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] { return files_.Read(Path(u"secret.txt"_s)).error == kDenied; }));
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] { return files_.Read(Path(u"SECRET.txt"_s)).error == kDenied; }));
}

TEST_F(PosixFileSystemTest, RefusesImpossibleNames) {
  EXPECT_EQ(Error(QString(300, u'x')), u"Der Dateiname ist zu lang."_s);
  Write(u"a"_s, "x");
  EXPECT_EQ(Error(u"a"_s + QChar(0) + u"b"_s), u"Der Dateiname ist ungültig."_s);
}

// The system's own words would be English.
TEST_F(PosixFileSystemTest, DescribesOtherFailuresInGerman) {
  struct NoneLeft final : FileCalls {
    int Open(const QByteArray& /*path*/, int /*flags*/, mode_t /*mode*/) const override {
      errno = EMFILE;
      return -1;
    }
  } const calls;
  Write(u"a.txt"_s, "x");
  EXPECT_EQ(PosixFileSystem(calls).Read(Path(u"a.txt"_s)).error, u"Zu viele geöffnete Dateien."_s);
  // A page that nothing maps: readable by its rights, but every read fails.
  EXPECT_EQ(ErrorOfPath(u"/proc/self/mem"_s), u"Ein-/Ausgabefehler beim Lesen der Datei."_s);
}

TEST_F(PosixFileSystemTest, LeavesNoDescriptorOpen) {
  Write(u"a.txt"_s, "x");
  const auto openDescriptors = [] {
    return QDir(u"/proc/self/fd"_s).entryList(QDir::System | QDir::Files).size();
  };
  const auto before = openDescriptors();
  for (int i = 0; i < 50; ++i) {
    (void)files_.Read(Path(u"A.TXT"_s));
    (void)files_.Read(Path(u"missing"_s));
    (void)files_.Read(folder_.path());
    (void)files_.Read(u"/proc/self/mem"_s);
  }
  EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace kalivor::platform
