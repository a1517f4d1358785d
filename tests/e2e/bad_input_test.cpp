// Definition files that are none: a clear message and exit status 2, never a hang.
#include <sys/stat.h>
#include <QDir>
#include <QFile>

#include "e2e/Programs.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

/// An installation whose one definition file the test spoils.
class BadInput : public testing::Test {
 protected:
  BadInput() {
    Write(u"VF.INI"_s, "Version  A  D  P  K\r\nAB1-123.4  -  DEF.TXT  A  WR\r\n");
    Write(u"DEF.TXT"_s, "Kopf\r\nAntrieb  Drehzahl  0  30000  1500  -  1  0  int  1F00  SOLL  A  -\r\n");
  }

  void Write(const QString& name, const QByteArray& bytes) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }

  Outcome Tree() { return Cli({}, folder.path()).Run({u"tree"_s}); }

  void ExpectBadInput(const QString& message) {
    const Outcome outcome = Tree();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, QString());
    EXPECT_TRUE(outcome.err.contains(message)) << outcome.err.toStdString();
  }

  QTemporaryDir folder;
};

TEST_F(BadInput, TheInstallationIsGoodAsLongAsNothingIsSpoiled) {
  EXPECT_EQ(Tree().status, 0);
}

TEST_F(BadInput, MissingVersionTable) {
  QFile::remove(folder.filePath(u"VF.INI"_s));
  ExpectBadInput(u"Fehler beim Lesen von | "_s + folder.path() + u"/VF.INI | "_s);
}

TEST_F(BadInput, VersionTableWithItsHeadingOnly) {
  Write(u"VF.INI"_s, "Version  A  D  P  K\r\n");
  ExpectBadInput(u"Die Auswahl liegt außerhalb der Liste."_s);
}

TEST_F(BadInput, EmptyVersionTable) {
  Write(u"VF.INI"_s, "");
  ExpectBadInput(u"Die Datei ist leer."_s);
}

TEST_F(BadInput, MissingDefinitionFile) {
  QFile::remove(folder.filePath(u"DEF.TXT"_s));
  ExpectBadInput(u"//DEF.TXT"_s);
}

TEST_F(BadInput, BinaryDefinitionFile) {
  QByteArray bytes;
  for (int i = 0; i < 100'000; ++i)
    bytes += static_cast<char>(i * 31 % 256);
  Write(u"DEF.TXT"_s, bytes);
  ExpectBadInput(u"Die Datei ist keine Textdatei."_s);
}

TEST_F(BadInput, ALineWithoutEnd) {
  Write(u"DEF.TXT"_s, QByteArray(10'000'000, 'x'));
  ExpectBadInput(u"Die Datei ist keine Textdatei."_s);
}

TEST_F(BadInput, AFileThatNeverEnds) {
  QFile::remove(folder.filePath(u"DEF.TXT"_s));
  ASSERT_TRUE(QFile::link(u"/dev/zero"_s, folder.filePath(u"DEF.TXT"_s)));
  ExpectBadInput(u"DEF.TXT"_s);
}

TEST_F(BadInput, APipeThatNobodyWrites) {
  QFile::remove(folder.filePath(u"DEF.TXT"_s));
  ASSERT_EQ(::mkfifo(folder.filePath(u"DEF.TXT"_s).toUtf8().constData(), 0600), 0);
  ExpectBadInput(u"DEF.TXT"_s);
}

TEST_F(BadInput, AFolderInPlaceOfTheFile) {
  QFile::remove(folder.filePath(u"DEF.TXT"_s));
  ASSERT_TRUE(QDir(folder.path()).mkdir(u"DEF.TXT"_s));
  ExpectBadInput(u"DEF.TXT"_s);
}

TEST_F(BadInput, ATruncatedLineReadsAsEmptyColumns) {
  Write(u"DEF.TXT"_s, "Kopf\r\nAntrieb  Dreh");
  const Outcome outcome = Tree();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out.contains(u"sK 1\tDreh....."_s)) << outcome.out.toStdString();
}

TEST_F(BadInput, MoreParametersThanTheTableHolds) {
  QByteArray bytes = "Kopf\r\n";
  for (int i = 1; i <= 2001; ++i) {
    bytes += "G  N" + QByteArray::number(i) + "  0  9  1  -  0  0  int  1F00  V" + QByteArray::number(i) +
             "  A  -\r\n";
  }
  Write(u"DEF.TXT"_s, bytes);
  ExpectBadInput(u"Index außerhalb des zulässigen Bereichs.: "_s + folder.path() +
                 u"//DEF.TXT, Zeile 2002"_s);
}

TEST_F(BadInput, ANumberTooLargeForItsField) {
  Write(u"DEF.TXT"_s, "Kopf\r\nG  N  0  4294967295  1  -  0  0  int  1F00  V  A  -\r\n");
  ExpectBadInput(u"Zahl außerhalb des zulässigen Bereichs.: "_s + folder.path() + u"//DEF.TXT, Zeile 2"_s);
}

TEST_F(BadInput, WrongOptions) {
  EXPECT_EQ(Cli().Run({u"receive"_s, u"--bogus"_s}).status, 2);
  EXPECT_EQ(Cli().Run({}).status, 2);
}

TEST_F(BadInput, TheSimulatorRefusesTheSame) {
  QFile::remove(folder.filePath(u"DEF.TXT"_s));
  QProcess simulator;
  simulator.start(Program(u"kalivor-sim"_s), {u"--ini-path"_s, folder.path()});
  ASSERT_TRUE(simulator.waitForFinished(kHang_ms));
  EXPECT_EQ(simulator.exitCode(), 2);
  EXPECT_EQ(simulator.readAllStandardOutput(), QByteArray());
  EXPECT_FALSE(simulator.readAllStandardError().isEmpty());
}

}  // namespace
}  // namespace kalivor::test
