// Files as Windows has them: names, devices, files in use, error numbers.
#include <windows.h>

#include <thread>

#include "contract/FileSite.h"
#include "platform/plain/FileError.h"
#include "platform/win32/OpenFile.h"
#include "platform/win32/SystemError.h"
#include "unit/win32/HeldFile.h"

namespace kalivor::platform {
namespace {

using namespace Qt::StringLiterals;

using Win32FileSystemTest = test::ReadingSite;
using test::HeldFile;

const QString kNotFound = u"Datei nicht gefunden."_s;
const QString kDirectory = u"Der Pfad ist ein Ordner."_s;
const QString kBadName = u"Der Dateiname ist ungültig."_s;
const QString kInUse = u"Die Datei wird gerade von einem anderen Programm benutzt."_s;

// --- which file a name stands for ---

QString Meant(const QString& path) {
  return QString::fromStdWString(SystemPath(path));
}

TEST(SystemPath, IsWholeAndBeyondTheOldLimitOfLength) {
  EXPECT_EQ(Meant(u"C:\\Daten\\VF.INI"_s), u"\\\\?\\C:\\Daten\\VF.INI"_s);
  EXPECT_EQ(Meant(u"C:/Daten/VF.INI"_s), u"\\\\?\\C:\\Daten\\VF.INI"_s);
  EXPECT_EQ(Meant(u"C:\\Daten\\\\VF.INI"_s), u"\\\\?\\C:\\Daten\\VF.INI"_s);
  EXPECT_EQ(Meant(u"C:\\Daten\\.\\x/..\\VF.INI"_s), u"\\\\?\\C:\\Daten\\VF.INI"_s);
  EXPECT_EQ(Meant(u"c:\\"_s), u"\\\\?\\c:\\"_s);
  const QString deep = u"C:"_s + (u'\\' + QString(200, u'x')).repeated(3);
  EXPECT_EQ(Meant(deep), u"\\\\?\\"_s + deep);
}

TEST(SystemPath, TakesFoldersOfTheNetwork) {
  EXPECT_EQ(Meant(u"\\\\server\\freigabe\\VF.INI"_s), u"\\\\?\\UNC\\server\\freigabe\\VF.INI"_s);
  EXPECT_EQ(Meant(u"//server/freigabe/VF.INI"_s), u"\\\\?\\UNC\\server\\freigabe\\VF.INI"_s);
}

TEST(SystemPath, TakesNamesThatAreWholeAlreadyAsTheyAre) {
  EXPECT_EQ(Meant(u"\\\\?\\C:\\Daten\\VF.INI"_s), u"\\\\?\\C:\\Daten\\VF.INI"_s);
  EXPECT_EQ(Meant(u"\\\\?\\UNC\\server\\freigabe\\VF.INI"_s), u"\\\\?\\UNC\\server\\freigabe\\VF.INI"_s);
}

TEST(SystemPath, StripsWhatNoNameEndsWith) {
  EXPECT_EQ(Meant(u"C:\\a.txt."_s), u"\\\\?\\C:\\a.txt"_s);
  EXPECT_EQ(Meant(u"C:\\a.txt "_s), u"\\\\?\\C:\\a.txt"_s);
  EXPECT_EQ(Meant(u"C:\\a.txt . ."_s), u"\\\\?\\C:\\a.txt"_s);
}

TEST(SystemPath, DevicesAreNoFiles) {
  for (const QString& name :
       {u""_s, u"CON"_s, u"nul"_s, u"COM1"_s, u"LPT1"_s, u"PRN"_s, u"AUX"_s, u"COM1:"_s, u"\\\\.\\COM1"_s,
        u"\\\\.\\pipe\\x"_s, u"\\\\.\\PhysicalDrive0"_s, u"//./COM1"_s})
    EXPECT_EQ(Meant(name), QString()) << name.toStdString();
  EXPECT_EQ(Meant(u"C:\\a"_s + QChar(0) + u"b"_s), QString());
}

TEST_F(Win32FileSystemTest, ReadsNoDevices) {
  for (const QString& name : {u"CON"_s, u"NUL"_s, u"COM1"_s, u"\\\\.\\COM1"_s, u"\\\\.\\pipe\\x"_s}) {
    EXPECT_EQ(ErrorOfPath(name), kBadName) << name.toStdString();
    EXPECT_EQ(files_.Overwrite(name, "x"), kBadName) << name.toStdString();
  }
}

TEST_F(Win32FileSystemTest, ANameMayEndWithAPointOrABlank) {
  Write(u"a.txt"_s, "x");
  EXPECT_EQ(Bytes(u"a.txt."_s), "x");
  EXPECT_EQ(Bytes(u"a.txt "_s), "x");
  EXPECT_EQ(Save(u"a.txt."_s, "y"), QString());
  EXPECT_EQ(Names(), QStringList{u"a.txt"_s});
  EXPECT_EQ(Stored(u"a.txt"_s), "y");
}

TEST_F(Win32FileSystemTest, TakesBackslashesAndNamesRelativeToADrive) {
  Write(u"sub/a.txt"_s, "x");
  const QString whole = QDir::toNativeSeparators(Path(u"sub/a.txt"_s));
  ASSERT_EQ(whole.at(1), u':');
  EXPECT_EQ(files_.Read(whole).bytes, "x");
  EXPECT_EQ(files_.Read(u"\\\\?\\"_s + whole).bytes, "x");
  const QString drive = whole.left(2);
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(Path(u"sub"_s)));
  EXPECT_EQ(files_.Read(drive + u"a.txt"_s).bytes, "x") << "in the current folder of the drive";
  EXPECT_EQ(files_.Read(whole.sliced(2)).bytes, "x") << "on the current drive";
  EXPECT_EQ(ErrorOfPath(drive), kDirectory);
  EXPECT_EQ(files_.Overwrite(drive, "x"), kDirectory);
  EXPECT_EQ(files_.Overwrite(drive + u"b.txt"_s, "y"), QString());
  ASSERT_TRUE(QDir::setCurrent(before));
  EXPECT_EQ(Stored(u"sub/b.txt"_s), "y");
}

TEST_F(Win32FileSystemTest, ADriveThatIsNotThereHasNoFiles) {
  // A letter that no drive has.
  wchar_t letter = L'B';
  while ((GetLogicalDrives() >> (letter - L'A') & 1U) != 0)
    ++letter;
  const QString drive = QChar(letter) + u":\\"_s;
  EXPECT_EQ(ErrorOfPath(drive + u"a.txt"_s), kNotFound);
  EXPECT_EQ(files_.Overwrite(drive + u"a.txt"_s, "x"), u"Der Ordner ist nicht vorhanden."_s);
}

TEST_F(Win32FileSystemTest, RefusesNamesWithCharactersThatNoNameHas) {
  for (const QString& name : {u"a?.txt"_s, u"*.txt"_s, u"a|b"_s, u"a<b>"_s, u"a\"b"_s}) {
    EXPECT_NE(Error(name), QString()) << name.toStdString();
    EXPECT_NE(Save(name, "x"), QString()) << name.toStdString();
  }
  EXPECT_EQ(Names(), QStringList());
}

TEST_F(Win32FileSystemTest, RefusesNamesThatAreTooLong) {
  EXPECT_NE(Error(QString(300, u'x')), QString());
  EXPECT_NE(Save(QString(300, u'x'), "x"), QString());
  EXPECT_EQ(Names(), QStringList());
}

TEST_F(Win32FileSystemTest, AFileIsNoFolder) {
  Write(u"a.txt"_s, "x");
  EXPECT_NE(Error(u"a.txt\\b"_s), QString());
  EXPECT_NE(Error(u"a.txt\\"_s), QString());
  EXPECT_NE(Save(u"a.txt\\b"_s, "y"), QString());
  EXPECT_NE(Save(u"a.txt\\"_s, "y"), QString());
  EXPECT_EQ(Stored(u"a.txt"_s), "x");
  EXPECT_EQ(Names(), QStringList{u"a.txt"_s});
}

// --- files in use ---

TEST_F(Win32FileSystemTest, WaitsForAFileThatIsInUseForAMoment) {
  Write(u"a.txt"_s, "x");
  HeldFile held(Path(u"a.txt"_s), GENERIC_READ, 0);
  std::thread other([&] {
    Sleep(200);
    held.Release();
  });
  EXPECT_EQ(Bytes(u"a.txt"_s), "x");
  other.join();
}

TEST_F(Win32FileSystemTest, TellsThatAFileIsInUse) {
  Write(u"a.txt"_s, "x");
  const HeldFile held(Path(u"a.txt"_s), GENERIC_READ, 0);
  EXPECT_EQ(Error(u"a.txt"_s), kInUse);
}

TEST_F(Win32FileSystemTest, ReadsAFileThatOthersReadAndWrite) {
  Write(u"a.txt"_s, "x");
  const HeldFile held(Path(u"a.txt"_s), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
  EXPECT_EQ(Bytes(u"a.txt"_s), "x");
}

TEST_F(Win32FileSystemTest, LeavesNoHandleOpen) {
  Write(u"a.txt"_s, "x");
  const auto useAll = [this] {
    (void)files_.Read(Path(u"A.TXT"_s));
    (void)files_.Read(Path(u"missing"_s));
    (void)files_.Read(folder_.path());
    EXPECT_EQ(Save(u"a.txt"_s, "y"), QString());
    EXPECT_NE(Save(u"missing/a.txt"_s, "y"), QString());
    EXPECT_NE(files_.Overwrite(folder_.path(), "y"), QString());
  };
  const auto openHandles = [] {
    DWORD count = 0;
    EXPECT_NE(GetProcessHandleCount(GetCurrentProcess(), &count), 0);
    return count;
  };
  useAll();  // what the system keeps once and for all
  const DWORD before = openHandles();
  for (int i = 0; i < 20; ++i)
    useAll();
  EXPECT_EQ(openHandles(), before);
}

// --- error numbers ---

TEST(KindOf, EveryKindOfFailureHasItsSentence) {
  const struct {
    DWORD error;
    QString reading, writing;
  } cases[] = {
      {ERROR_FILE_NOT_FOUND, kNotFound, u"Der Ordner ist nicht vorhanden."_s},
      {ERROR_PATH_NOT_FOUND, kNotFound, u"Der Ordner ist nicht vorhanden."_s},
      {ERROR_BAD_NETPATH, kNotFound, u"Der Ordner ist nicht vorhanden."_s},
      {ERROR_ACCESS_DENIED, u"Keine Berechtigung zum Lesen der Datei."_s,
       u"Keine Berechtigung zum Schreiben der Datei."_s},
      {ERROR_SHARING_VIOLATION, kInUse, kInUse},
      {ERROR_LOCK_VIOLATION, kInUse, kInUse},
      {ERROR_CRC, u"Ein-/Ausgabefehler beim Lesen der Datei."_s,
       u"Ein-/Ausgabefehler beim Schreiben der Datei."_s},
      {ERROR_DISK_FULL, u"Auf dem Datenträger ist kein Platz mehr."_s,
       u"Auf dem Datenträger ist kein Platz mehr."_s},
      {ERROR_HANDLE_DISK_FULL, u"Auf dem Datenträger ist kein Platz mehr."_s,
       u"Auf dem Datenträger ist kein Platz mehr."_s},
      {1295, u"Der für den Benutzer vorgesehene Platz auf dem Datenträger ist aufgebraucht."_s,
       u"Der für den Benutzer vorgesehene Platz auf dem Datenträger ist aufgebraucht."_s},
      {ERROR_WRITE_PROTECT, u"Der Datenträger ist schreibgeschützt."_s,
       u"Der Datenträger ist schreibgeschützt."_s},
      {ERROR_NOT_READY, u"Das Gerät ist nicht vorhanden."_s, u"Das Gerät ist nicht vorhanden."_s},
      {ERROR_INVALID_NAME, kBadName, kBadName},
      {ERROR_FILENAME_EXCED_RANGE, u"Der Dateiname ist zu lang."_s, u"Der Dateiname ist zu lang."_s},
      {ERROR_NOT_ENOUGH_MEMORY, u"Nicht genügend Arbeitsspeicher."_s, u"Nicht genügend Arbeitsspeicher."_s},
      {ERROR_TOO_MANY_OPEN_FILES, u"Zu viele geöffnete Dateien."_s, u"Zu viele geöffnete Dateien."_s},
      {ERROR_SEM_TIMEOUT, u"Zeitüberschreitung beim Zugriff auf die Datei."_s,
       u"Zeitüberschreitung beim Zugriff auf die Datei."_s},
      {ERROR_INVALID_FUNCTION, u"Die Datei kann nicht gelesen werden (Systemfehler 1)."_s,
       u"Die Datei kann nicht geschrieben werden (Systemfehler 1)."_s},
  };
  for (const auto& example : cases) {
    const auto number = static_cast<int>(example.error);
    EXPECT_EQ(DescribeReading(KindOf(example.error), number), example.reading) << number;
    EXPECT_EQ(DescribeWriting(KindOf(example.error), number), example.writing) << number;
  }
}

}  // namespace
}  // namespace kalivor::platform
