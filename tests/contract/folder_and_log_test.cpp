// What a folder holds, removing files and appending to them, whatever the system.
#include "contract/FileSite.h"

namespace kalivor::test {
namespace {

const QString kNoFolder = u"Der Ordner ist nicht vorhanden."_s;
const QString kNotFound = u"Datei nicht gefunden."_s;
const QString kDirectory = u"Der Pfad ist ein Ordner."_s;
const QString kBadName = u"Der Dateiname ist ungültig."_s;

class Folder : public FileSite {
 protected:
  [[nodiscard]] QStringList Listed(const QString& name) {
    platform::FolderContent content = files_.List(Path(name));
    EXPECT_EQ(content.error, QString()) << name.toStdString();
    EXPECT_FALSE(content.missing);
    content.names.sort();
    return content.names;
  }
};

TEST_F(Folder, ListsItsFilesAndNothingElse) {
  Write(u"Ablage/b €.txt"_s, "x");
  Write(u"Ablage/A.qpf"_s, {});
  Write(u"Ablage/darin/c.txt"_s, "x");
  EXPECT_EQ(Listed(u"Ablage"_s), (QStringList{u"A.qpf"_s, u"b €.txt"_s}));
  ASSERT_TRUE(QDir(Path(u"."_s)).mkdir(u"leer"_s));
  EXPECT_EQ(Listed(u"leer"_s), QStringList());
}

TEST_F(Folder, IsFoundAsAFileIs) {
  Write(u"Größe ä/Tief/a.txt"_s, "x");
  for (const QString& name : {u"Größe ä/Tief"_s, u"Größe ä\\Tief\\"_s, u"größe Ä//TIEF/"_s})
    EXPECT_EQ(Listed(name), QStringList{u"a.txt"_s}) << name.toStdString();
}

TEST_F(Folder, ThatIsMissingIsTold) {
  Write(u"a.txt"_s, "x");
  for (const QString& path : {Path(u"missing"_s), Path(u"missing/deeper"_s), QString()}) {
    const platform::FolderContent content = files_.List(path);
    EXPECT_EQ(content.error, kNoFolder);
    EXPECT_TRUE(content.missing);
    EXPECT_EQ(content.names, QStringList());
  }
}

TEST_F(Folder, ThatIsNoneIsTold) {
  Write(u"a.txt"_s, "x");
  EXPECT_EQ(files_.List(Path(u"a.txt"_s)).error, u"Ein Teil des Pfades ist kein Ordner."_s);
  EXPECT_FALSE(files_.List(Path(u"a.txt"_s)).missing);
  EXPECT_EQ(files_.List(Path(u"a"_s) + QChar(0)).error, kBadName);
}

TEST_F(Folder, RemovingTakesTheOneFile) {
  Write(u"Ablage/a.txt"_s, "x");
  Write(u"Ablage/b.txt"_s, "x");
  Write(u"Ablage/c.txt"_s, "x");
  EXPECT_EQ(files_.Remove(Path(u"Ablage/a.txt"_s)), QString());
  EXPECT_EQ(Names(u"Ablage"_s), (QStringList{u"b.txt"_s, u"c.txt"_s}));
  EXPECT_EQ(files_.Remove(Path(u"ABLAGE\\B.TXT"_s)), QString());
  EXPECT_EQ(Names(u"Ablage"_s), QStringList{u"c.txt"_s});
}

TEST_F(Folder, RemovingWhatIsMissingIsNoFailure) {
  Write(u"a.txt"_s, "x");
  for (const QString& path : {Path(u"b.txt"_s), Path(u"missing/b.txt"_s), QString()})
    EXPECT_EQ(files_.Remove(path), QString());
  EXPECT_EQ(Names(), QStringList{u"a.txt"_s});
}

TEST_F(Folder, RemovingRefusesWhatIsNoFile) {
  ASSERT_TRUE(QDir(Path(u"."_s)).mkdir(u"leer"_s));
  EXPECT_EQ(files_.Remove(Path(u"leer"_s)), kDirectory);
  EXPECT_EQ(files_.Remove(Path(u"a"_s) + QChar(0)), kBadName);
  EXPECT_EQ(Names(), QStringList{u"leer"_s});
}

using Log = FileSite;

TEST_F(Log, AppendsWhatIsOnTheDiskAtOnce) {
  Write(u"log.txt"_s, "begun\n");
  const platform::OpenedLog opened = files_.OpenLog(Path(u"log.txt"_s));
  ASSERT_EQ(opened.error, QString());
  EXPECT_EQ(Stored(u"log.txt"_s), "begun\n") << "opening changes nothing";
  EXPECT_EQ(opened.log->Append("one\n"), QString());
  EXPECT_EQ(Stored(u"log.txt"_s), "begun\none\n");
  EXPECT_EQ(opened.log->Append({}), QString());
  const QByteArray large(300'000, 'x');
  EXPECT_EQ(opened.log->Append(large), QString());
  EXPECT_EQ(files_.Read(Path(u"log.txt"_s)).bytes, "begun\none\n" + large);
}

TEST_F(Log, IsFoundAsAFileIs) {
  Write(u"Größe ä/Log.txt"_s, {});
  const platform::OpenedLog opened = files_.OpenLog(Path(u"größe Ä\\LOG.TXT"_s));
  ASSERT_EQ(opened.error, QString());
  EXPECT_EQ(opened.log->Append("x"), QString());
  EXPECT_EQ(Stored(u"Größe ä/Log.txt"_s), "x");
  EXPECT_EQ(Names(u"Größe ä"_s), QStringList{u"Log.txt"_s});
}

TEST_F(Log, CanBeReplacedWhenItIsClosed) {
  Write(u"log.txt"_s, "old");
  {
    const platform::OpenedLog opened = files_.OpenLog(Path(u"log.txt"_s));
    ASSERT_EQ(opened.error, QString());
    EXPECT_EQ(opened.log->Append("er"), QString());
  }
  EXPECT_EQ(files_.Replace(Path(u"log.txt"_s), "new"), QString());
  EXPECT_EQ(Stored(u"log.txt"_s), "new");
}

TEST_F(Log, HasToBeThere) {
  for (const QString& path : {Path(u"log.txt"_s), Path(u"missing/log.txt"_s), QString()}) {
    const platform::OpenedLog opened = files_.OpenLog(path);
    EXPECT_EQ(opened.error, kNotFound);
    EXPECT_EQ(opened.log, nullptr);
  }
  EXPECT_EQ(Names(), QStringList());
}

TEST_F(Log, IsARegularFile) {
  ASSERT_TRUE(QDir(Path(u"."_s)).mkdir(u"leer"_s));
  const platform::OpenedLog opened = files_.OpenLog(Path(u"leer"_s));
  EXPECT_EQ(opened.error, kDirectory);
  EXPECT_EQ(opened.log, nullptr);
  EXPECT_EQ(files_.OpenLog(Path(u"a"_s) + QChar(0)).error, kBadName);
}

}  // namespace
}  // namespace kalivor::test
