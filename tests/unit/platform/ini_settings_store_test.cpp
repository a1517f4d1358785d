// Settings in an INI file: what was saved is there the next time.
#include "platform/plain/IniSettingsStore.h"

#include <gtest/gtest.h>
#include <QFile>
#include <QTemporaryDir>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

class IniSettingsStoreTest : public testing::Test {
 protected:
  // What a program reads that is started anew.
  [[nodiscard]] QString ReadAnew(const QString& key, const QString& fallback = u"fallback"_s) const {
    return IniSettingsStore(path).Get(u"Settings"_s, key, fallback);
  }

  void SaveAndEnd(const QString& key, const QString& value) const {
    IniSettingsStore(path).Save(u"Settings"_s, key, value);
  }

  void WriteFile(const QByteArray& content) const {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
  }

  QTemporaryDir folder;
  QString path = folder.filePath(u"test.ini"_s);
};

TEST_F(IniSettingsStoreTest, AnAbsentKeyGivesTheFallback) {
  EXPECT_EQ(ReadAnew(u"Adresse"_s, u"1"_s), u"1"_s);
  EXPECT_EQ(ReadAnew(u"Userpath"_s, u""_s), u""_s);
  SaveAndEnd(u"Adresse"_s, u"17"_s);
  EXPECT_EQ(ReadAnew(u"Schnittstelle"_s, u"3"_s), u"3"_s);
}

TEST_F(IniSettingsStoreTest, ASavedTextIsThereAtOnce) {
  IniSettingsStore store(path);
  store.Save(u"Settings"_s, u"Adresse"_s, u"17"_s);
  EXPECT_EQ(store.Get(u"Settings"_s, u"Adresse"_s, u"1"_s), u"17"_s);
}

TEST_F(IniSettingsStoreTest, ASavedTextIsThereTheNextTime) {
  for (const QString& value : {u"17"_s, u""_s, u"C:\\Daten\\Regler"_s, u"/opt/daten"_s, u"Größe äöüß €"_s,
                               u"a,b"_s, u"a, b"_s, u"12,5"_s, u"  Ränder  "_s, u"a;b=c"_s, u"\"x\""_s,
                               u"@Invalid()"_s, u"100%"_s, u"true"_s, u"[Ports]"_s}) {
    SaveAndEnd(u"Userpath"_s, value);
    EXPECT_EQ(ReadAnew(u"Userpath"_s), value);
  }
}

TEST_F(IniSettingsStoreTest, TheLastTextCounts) {
  SaveAndEnd(u"Adresse"_s, u"17"_s);
  SaveAndEnd(u"Adresse"_s, u"18"_s);
  EXPECT_EQ(ReadAnew(u"Adresse"_s), u"18"_s);
}

TEST_F(IniSettingsStoreTest, SectionsAreSeparate) {
  {
    IniSettingsStore store(path);
    store.Save(u"Settings"_s, u"COM1"_s, u"a"_s);
    store.Save(u"Ports"_s, u"COM1"_s, u"/dev/ttyUSB0"_s);
  }
  const IniSettingsStore store(path);
  EXPECT_EQ(store.Get(u"Settings"_s, u"COM1"_s, u""_s), u"a"_s);
  EXPECT_EQ(store.Get(u"Ports"_s, u"COM1"_s, u""_s), u"/dev/ttyUSB0"_s);
  EXPECT_EQ(store.Get(u"Other"_s, u"COM1"_s, u"none"_s), u"none"_s);
}

TEST_F(IniSettingsStoreTest, TheFileCanBeWrittenByHand) {
  WriteFile("[Settings]\nAdresse=17\nMainLeft=12,5\nInifile=VF.INI\n[Ports]\nCOM2=/dev/ttyS4\n");
  EXPECT_EQ(ReadAnew(u"Adresse"_s), u"17"_s);
  EXPECT_EQ(ReadAnew(u"MainLeft"_s), u"12,5"_s) << "a comma makes no list of it";
  EXPECT_EQ(ReadAnew(u"Inifile"_s), u"VF.INI"_s);
  EXPECT_EQ(IniSettingsStore(path).Get(u"Ports"_s, u"COM2"_s, u""_s), u"/dev/ttyS4"_s);
}

TEST_F(IniSettingsStoreTest, TheFileIsReadableByHand) {
  SaveAndEnd(u"Adresse"_s, u"17"_s);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll().replace("\r\n", "\n"), QByteArray("[Settings]\nAdresse=17\n"));
}

TEST_F(IniSettingsStoreTest, AFileThatIsNoIniFileGivesTheFallbacks) {
  WriteFile(QByteArray("\x00\xFF[[[==\n\n]]\x01", 13));
  EXPECT_EQ(ReadAnew(u"Adresse"_s, u"1"_s), u"1"_s);
}

// Each of them made the library ask for gigabytes, or take a text for something else.
TEST_F(IniSettingsStoreTest, AValueIsATextWhateverItLooksLike) {
  WriteFile("[Settings]\nUserpath=@Variant(\\0\\0\\0\\X11d0)\nInipath=@Point(1 2)\nAdresse=17\n");
  EXPECT_EQ(ReadAnew(u"Adresse"_s), u"17"_s);
  EXPECT_EQ(ReadAnew(u"Inipath"_s), u"@Point(1 2)"_s);
  EXPECT_TRUE(ReadAnew(u"Userpath"_s).startsWith(u"@Variant("));
}

TEST_F(IniSettingsStoreTest, AnEndlessFileIsNotRead) {
  WriteFile("[Settings]\nAdresse=17\n" + QByteArray(qsizetype{2} * 1024 * 1024, ';'));
  EXPECT_EQ(ReadAnew(u"Adresse"_s, u"1"_s), u"1"_s);
}

// Files of earlier versions of the program are the library's own.
TEST_F(IniSettingsStoreTest, FilesOfTheLibraryAreUnderstood) {
  const QStringList values{u"17"_s,
                           u""_s,
                           u"C:\\Daten\\Regler"_s,
                           u"Größe äöüß €"_s,
                           u"a,b"_s,
                           u"a, b"_s,
                           u"12,5"_s,
                           u"  Ränder  "_s,
                           u"a;b=c"_s,
                           u"\"x\""_s,
                           u"@Invalid()"_s,
                           u"@"_s,
                           u"a\nb\tc\x01"
                           "2\x1b"
                           "g"_s,
                           u"100%"_s,
                           QString(QChar(u'\0')) + u"1"_s,
                           u"\U0001F600"_s,
                           u"Ende\\"_s};
  const QString names = folder.filePath(u"%1-%2.ini"_s);
  for (int i = 0; i < values.size(); ++i) {
    const QString& value = values.at(i);
    // Under names of their own: the library takes what it has once read in one format for the same in
    // another.
    const QString written = names.arg(i).arg(1);
    const QString read = names.arg(i).arg(2);
    path = names.arg(i).arg(3);
    QSettings(written, QSettings::IniFormat).setValue(u"Settings/Userpath"_s, value);
    ASSERT_TRUE(QFile::copy(written, path));
    EXPECT_EQ(ReadAnew(u"Userpath"_s), value);
    SaveAndEnd(u"Inipath"_s, value);
    EXPECT_EQ(ReadAnew(u"Userpath"_s), value) << "stays when another one is saved";
    ASSERT_TRUE(QFile::copy(path, read));
    EXPECT_EQ(QSettings(read, QSettings::IniFormat).value(u"Settings/Inipath"_s).toString(), value);
  }
}

// They could not be told from others when the file is written again.
TEST_F(IniSettingsStoreTest, NamesThatTheProgramNeverWritesAreLeftOut) {
  WriteFile("[Ports/=x]\nCOM1=1\n[Settings]\nA/B=2\n=3\nAdresse=17\n");
  EXPECT_EQ(IniSettingsStore(path).Get(u"Ports/=x"_s, u"COM1"_s, u"none"_s), u"none"_s);
  EXPECT_EQ(ReadAnew(u"A/B"_s, u"none"_s), u"none"_s);
  EXPECT_EQ(ReadAnew(u"Adresse"_s), u"17"_s);
}

TEST_F(IniSettingsStoreTest, SectionsOfOthersStay) {
  WriteFile("alone=1\n[Ports]\nCOM1=/dev/ttyS0\n\n[Settings]\nAdresse=17\n");
  SaveAndEnd(u"Adresse"_s, u"18"_s);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), QByteArray("alone=1\n\n[Ports]\nCOM1=/dev/ttyS0\n\n[Settings]\nAdresse=18\n"));
}

}  // namespace
}  // namespace kalivor::platform
