// Files of this system that others do not have.
#include "platform/posix/PosixFileSystem.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>

#include "contract/FileSite.h"
#include "platform/posix/Descriptor.h"
#include "unit/posix/AsOrdinaryUser.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

using PosixFileSystemTest = test::ReadingSite;

const QString kNotFound = u"Datei nicht gefunden."_s;
const QString kSeveral = u"Mehrere Dateien unterscheiden sich nur in der Groß- und Kleinschreibung."_s;
const QString kNoFile = u"Der Pfad ist keine gewöhnliche Datei."_s;
const QString kDenied = u"Keine Berechtigung zum Lesen der Datei."_s;

// The size that the system tells is 0 for these.
TEST_F(PosixFileSystemTest, ReadsAFileOfUnknownSize) {
  const FileContent content = files_.Read(u"/proc/self/status"_s);
  EXPECT_TRUE(content.Ok());
  EXPECT_TRUE(content.bytes.startsWith("Name:"));
  EXPECT_TRUE(content.bytes.endsWith('\n'));
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

TEST_F(PosixFileSystemTest, TellsAFileThatIsTakenForAFolder) {
  Write(u"a.txt"_s, "x");
  EXPECT_EQ(Error(u"a.txt/b"_s), u"Ein Teil des Pfades ist kein Ordner."_s);
  EXPECT_EQ(Error(u"A.TXT/"_s), u"Ein Teil des Pfades ist kein Ordner."_s);
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

TEST_F(PosixFileSystemTest, RefusesNamesThatAreTooLong) {
  EXPECT_EQ(Error(QString(300, u'x')), u"Der Dateiname ist zu lang."_s);
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
