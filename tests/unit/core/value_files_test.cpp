// Saving and loading values: every byte, whose values are taken, the question about versions, every message.
#include "core/ValueFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <random>

#include "core/Refresh.h"
#include "core/ValueFileFormat.h"
#include "fakes/Installation.h"
#include "kalivor/System.h"
#include "unit/core/ValueFileBytes.h"

namespace kalivor::test {
namespace {

const QString kPath = u"C:\\Werte\\a.qpf"_s;
const QString kVersion = u"AB1-123.4"_s;
const QString kUnknown = u"Unbekannte ReglerVersion: "_s;
const QString kNotFound = u"Fehler beim lesen von\r\nC:\\Werte\\a.qpf\r\nDatei nicht gefunden."_s;

// Two versions of three parameters each. They share two names, and "_abc" is of another type.
class ValueFiles : public testing::Test, protected Installation {
 protected:
  ValueFiles() {
    SetVersions({u"AB1-123.4  -  A.TXT  -  WR"_s, u"AB1-124.0  -  B.TXT  -  WR"_s});
    SetDefinitions(u"A.TXT"_s, {u"G  Drehzahl  0  30000  100  1/m  0  0  int  1F00  N1  -  -"_s,
                                u"G  Laufzeit  0  999999  200  h  0  0  long  1F02  _abc  -  -"_s,
                                u"G  Kennwort  -  -  ABCD  -  0  0  string4  1F08  N4  -  -"_s});
    SetDefinitions(u"B.TXT"_s, {u"G  Drehzahl  0  30000  1000  1/m  0  0  int  1F00  N1  -  -"_s,
                                u"G  Anderes  0  30000  2000  1/m  0  0  int  1F10  N9  -  -"_s,
                                u"G  Laufzeit  0  30000  3000  h  0  0  int  1F02  _abc  -  -"_s});
    Start();
    module.Dateiname = kPath;
    files.reads.clear();
  }

  void SetImage(const QByteArray& image) { files.files[kPath] = {image, {}}; }
  [[nodiscard]] QByteArray Image() const { return files.files.value(kPath).bytes; }

  bool Load(const QByteArray& image) {
    SetImage(image);
    return ReadValueFile(core);
  }

  /// The numbers of all parameters.
  [[nodiscard]] std::vector<qint32> Values() const {
    std::vector<qint32> values;
    for (int i = 1; i < module.ParCount; ++i)
      values.push_back(module.Par[i].Wert);
    return values;
  }

  /// The parameters are as they were before loading.
  [[nodiscard]] bool IsUntouched() const {
    return Values() == std::vector<qint32>{100, 200, 0} && module.Par[3].WertText == u"ABCD";
  }
};

using Numbers = std::vector<qint32>;

// --- saving ---

TEST_F(ValueFiles, WritesAHeaderAndARecordForEveryParameter) {
  module.Par[1].Wert = 1234;
  EXPECT_TRUE(WriteValueFile(core));
  const QByteArray image = Image();
  ASSERT_EQ(image.size(), 4 * 62);
  EXPECT_EQ(image.first(4), QByteArray("\x04\x00\x00\x00", 4));
  EXPECT_EQ(image.sliced(4, 20), QByteArray(20, ' '));
  EXPECT_EQ(image.sliced(24, 30), "AB1-123.4" + QByteArray(21, ' '));
  EXPECT_EQ(image.sliced(54, 8), QByteArray(8, ' '));
  EXPECT_EQ(image.sliced(62, 62), QByteArray("\xD2\x04\x00\x00", 4) + QByteArray(20, ' ') + "N1" +
                                      QByteArray(28, ' ') + "int     ");
  EXPECT_EQ(image.sliced(124, 62), QByteArray("\xC8\x00\x00\x00", 4) + QByteArray(20, ' ') + "_abc" +
                                       QByteArray(26, ' ') + "long    ");
  EXPECT_EQ(image.sliced(186, 62), QByteArray("\x00\x00\x00\x00", 4) + "ABCD" + QByteArray(16, ' ') + "N4" +
                                       QByteArray(28, ' ') + "string4 ");
}

TEST_F(ValueFiles, WritesNumbersWithTheLowestByteFirst) {
  const struct {
    qint32 value;
    QByteArray bytes;
  } cases[] = {{-2, QByteArray("\xFE\xFF\xFF\xFF", 4)},
               {0x12345678, QByteArray("\x78\x56\x34\x12", 4)},
               {-2147483647 - 1, QByteArray("\x00\x00\x00\x80", 4)},
               {8192, QByteArray("\x00\x20\x00\x00", 4)}};
  for (const auto& example : cases) {
    module.Par[1].Wert = example.value;
    ASSERT_TRUE(WriteValueFile(core));
    EXPECT_EQ(Image().sliced(62, 4), example.bytes);
    module.Par[1].Wert = 0;
    ASSERT_TRUE(ReadValueFile(core));
    EXPECT_EQ(module.Par[1].Wert, example.value);
  }
}

TEST_F(ValueFiles, WritesUncheckedParametersToo) {
  ASSERT_TRUE(WriteValueFile(core));
  const QByteArray before = Image();
  for (int i = 0; i <= 3; ++i)
    module.ParNode[i] = kFalse;
  files.files.remove(kPath);
  ASSERT_TRUE(WriteValueFile(core));
  EXPECT_EQ(Image(), before);
}

TEST_F(ValueFiles, CutsTextsAtTheirFields) {
  module.Par[1].Variable = QString(35, u'v');
  module.Par[3].WertText = u"ABCDEFGHIJKLMNOPQRSTUVWXY"_s;
  ASSERT_TRUE(WriteValueFile(core));
  EXPECT_EQ(Image().size(), 4 * 62);
  EXPECT_EQ(Image().sliced(62 + 24, 38), QByteArray(30, 'v') + "int     ");
  EXPECT_EQ(Image().sliced(186 + 4, 22), "ABCDEFGHIJKLMNOPQRSTN4");
}

TEST_F(ValueFiles, ANameThatSavingHasCutIsNotFoundAgain) {
  module.Par[1].Variable = QString(31, u'v');
  module.Par[2].Variable = QString(30, u'w');
  ASSERT_TRUE(WriteValueFile(core));
  module.Par[1].Wert = 1;
  module.Par[2].Wert = 2;
  ASSERT_TRUE(ReadValueFile(core));
  EXPECT_EQ(Values(), (Numbers{1, 200, 0}));
}

TEST_F(ValueFiles, WritesTheCodePageOfTheControllers) {
  module.Par[3].WertText = u"Öl €10 ☃ß"_s;
  ASSERT_TRUE(WriteValueFile(core));
  EXPECT_EQ(Image().sliced(186 + 4, 10),
            "\xD6l \x80"
            "10 ?\xDF ");
}

TEST_F(ValueFiles, KeepsTheRecordsThatALongerFileHoldsBehind) {
  const QByteArray fifth = Current(77, {}, u"N1"_s, u"int"_s);
  const QByteArray part("part of a record");
  SetImage(QByteArray(248, 'x') + fifth + part);
  ASSERT_TRUE(WriteValueFile(core));
  EXPECT_EQ(Image().size(), 310 + part.size());
  EXPECT_EQ(Image().mid(248), fifth + part);
  EXPECT_EQ(Image().left(4), Number(4));
  ASSERT_TRUE(ReadValueFile(core));
  EXPECT_EQ(Values(), (Numbers{77, 200, 0})) << "the fifth record is read again";
}

TEST_F(ValueFiles, AnEmptyTreeIsAHeaderAlone) {
  Installation empty;
  empty.module.Dateiname = kPath;
  EXPECT_TRUE(WriteValueFile(empty.core));
  EXPECT_EQ(empty.files.files.value(kPath).bytes, Number(1) + QByteArray(58, ' '));
  EXPECT_TRUE(ReadValueFile(empty.core));
}

TEST_F(ValueFiles, HoldsAFullTable) {
  module.ParCount = kLastParameter + 1;
  for (int i = 1; i <= kLastParameter; ++i) {
    module.Par[i].Variable = u"V%1"_s.arg(i);
    module.Par[i].Wert = -i;
    module.ParNode[i] = kTrue;
  }
  ASSERT_TRUE(WriteValueFile(core));
  EXPECT_EQ(Image().size(), 2001 * 62);
  EXPECT_EQ(Image().first(4), Number(2001));
  for (int i = 1; i <= kLastParameter; ++i)
    module.Par[i].Wert = 0;
  ASSERT_TRUE(ReadValueFile(core));
  for (int i = 1; i <= kLastParameter; ++i)
    ASSERT_EQ(module.Par[i].Wert, -i);
}

TEST_F(ValueFiles, AFailedSaveIsReported) {
  files.writeError = u"Auf dem Datenträger ist kein Platz mehr."_s;
  const int rebuilt = main.tree.rebuilt;
  EXPECT_FALSE(WriteValueFile(core));
  EXPECT_EQ(TakeBoxes(box), QStringList{u"Fehler beim schreiben von\r\nC:\\Werte\\a.qpf\r\n"
                                        "Auf dem Datenträger ist kein Platz mehr."_s});
  EXPECT_TRUE(IsUntouched());
  EXPECT_EQ(main.tree.rebuilt, rebuilt);
  EXPECT_TRUE(Rests());
}

// --- loading ---

TEST_F(ValueFiles, LoadsAFileOfTheSelectedVersionWithoutAQuestion) {
  const int rebuilt = main.tree.rebuilt;
  EXPECT_TRUE(Load(Current(4, {}, kVersion, {}) + Current(-5, {}, u"N1"_s, u"int"_s) +
                   Current(70'000, {}, u"_abc"_s, u"long"_s) + Current(9, u"Öl"_s, u"N4"_s, u"string4"_s)));
  EXPECT_EQ(Values(), (Numbers{-5, 70'000, 9}));
  EXPECT_EQ(module.Par[3].WertText, u"Öl                  "_s) << "with its padding";
  EXPECT_EQ(module.Par[1].WertText, QString(20, u' '));
  EXPECT_EQ(main.tree.rebuilt, rebuilt + 1);
  EXPECT_EQ(main.tree.Text(main.tree.Find(u"sK 2"_s)).contains(u"70000"), true);
  EXPECT_EQ(files.reads, QStringList{FileName(kPath).text}) << "no definitions are read";
  EXPECT_TRUE(Rests());
}

TEST_F(ValueFiles, LoadsWhatItSaved) {
  module.Par[1].Wert = -12;
  module.Par[2].Wert = 123'456;
  module.Par[3].WertText = u"ÄÖ ß"_s;
  const Module1 before = module;
  ASSERT_TRUE(WriteValueFile(core));
  SetStandard(module);
  ASSERT_TRUE(ReadValueFile(core));
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(module.Par[i].Wert, before.Par[i].Wert);
    EXPECT_EQ(module.Par[i].Typ, before.Par[i].Typ);
    EXPECT_EQ(module.Par[i].WertText.trimmed(), before.Par[i].WertText.trimmed());
  }
  const QByteArray image = Image();
  ASSERT_TRUE(WriteValueFile(core));
  EXPECT_EQ(Image(), image);
}

TEST_F(ValueFiles, MatchesRecordsByNameInAnyOrder) {
  EXPECT_TRUE(Load(Current(9, {}, kVersion, {}) + Current(3, {}, u"_abc"_s, u"long"_s) +
                   Current(4, {}, u"unknown"_s, u"int"_s) + Current(5, {}, u"n1"_s, u"int"_s) +
                   Current(6, {}, u" N1"_s, u"int"_s) + Current(7, {}, u"N"_s, u"int"_s) +
                   Current(8, {}, {}, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{100, 3, 0})) << "neither case nor blanks in front are overlooked";
}

TEST_F(ValueFiles, ALaterRecordOfTheSameNameWins) {
  EXPECT_TRUE(Load(Current(3, {}, kVersion, {}) + Current(1, {}, u"N1"_s, u"int"_s) +
                   Current(2, {}, u"N1"_s, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{2, 200, 0}));
}

TEST_F(ValueFiles, FillsTheFirstOfSeveralParametersOfOneName) {
  module.Par[2].Variable = u"N1"_s;
  EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(7, {}, u"N1"_s, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{7, 200, 0}));
  // Also when only the second one is checked.
  module.ParNode[1] = kFalse;
  EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(8, {}, u"N1"_s, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{7, 200, 0}));
}

TEST_F(ValueFiles, ANameIsEmptyLikeAnyOther) {
  module.Par[2].Variable.clear();
  EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(7, {}, {}, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{100, 7, 0}));
}

TEST_F(ValueFiles, UncheckedParametersKeepTheirValues) {
  module.ParNode[1] = kFalse;
  module.ParNode[3] = kFalse;
  EXPECT_TRUE(Load(Current(4, {}, kVersion, {}) + Current(1, {}, u"N1"_s, u"char"_s) +
                   Current(2, {}, u"_abc"_s, u"long"_s) + Current(3, u"WXYZ"_s, u"N4"_s, u"string2"_s)));
  EXPECT_EQ(Values(), (Numbers{100, 2, 0}));
  EXPECT_EQ(module.Par[3].WertText, u"ABCD"_s);
  EXPECT_EQ(module.Par[1].Typ, u"int"_s);
  EXPECT_EQ(module.Par[3].Typ, u"string4"_s);
  EXPECT_EQ(module.ParNode[1], kFalse);
}

TEST_F(ValueFiles, TakesNothingButValueTypeAndText) {
  const ParameterRecord before = module.Par[1];
  EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(55, u"text"_s, u"N1"_s, u"char"_s)));
  ParameterRecord expected = before;
  expected.Wert = 55;
  expected.WertText = u"text                "_s;
  expected.Typ = u"char"_s;
  EXPECT_EQ(module.Par[1], expected);
}

TEST_F(ValueFiles, DoesNotTouchThePlantTypeRecord) {
  module.Par[0].Variable = u"N0"_s;
  module.Par[0].Wert = 3;
  EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(55, {}, u"N0"_s, u"int"_s)));
  EXPECT_EQ(module.Par[0].Wert, 3);
}

TEST_F(ValueFiles, TheStoredNumberOfParametersDoesNotCount) {
  for (const qint32 count : {0, 1, -1, 2147483647, -2147483647 - 1}) {
    module.Par[1].Wert = 0;
    EXPECT_TRUE(Load(Current(count, {}, kVersion, {}) + Current(8, {}, u"N1"_s, u"int"_s)));
    EXPECT_EQ(module.Par[1].Wert, 8) << count;
  }
}

TEST_F(ValueFiles, AnIncompleteRecordAtTheEndIsIgnored) {
  const QByteArray image =
      Current(3, {}, kVersion, {}) + Current(1, {}, u"N1"_s, u"int"_s) + Current(2, {}, u"_abc"_s, u"long"_s);
  for (int missing = 1; missing < 62; ++missing) {
    // 156 bytes are whole records of the old length.
    if (image.size() - missing == 156) continue;
    module.Par[1].Wert = 0;
    EXPECT_TRUE(Load(image.chopped(missing))) << missing;
    EXPECT_EQ(Values(), (Numbers{1, 200, 0})) << missing;
  }
}

TEST_F(ValueFiles, AMissingFileIsReportedAndTheTreeRebuilt) {
  const int rebuilt = main.tree.rebuilt;
  module.Par[1].Wert = 5;
  EXPECT_FALSE(ReadValueFile(core));
  EXPECT_EQ(TakeBoxes(box), QStringList{kNotFound});
  EXPECT_EQ(main.tree.rebuilt, rebuilt + 1);
  EXPECT_EQ(Values(), (Numbers{5, 200, 0}));
  EXPECT_EQ(module.Dateiname, kPath);
  EXPECT_TRUE(Rests());
}

TEST_F(ValueFiles, EveryReadErrorIsShownInItsOwnWords) {
  files.AddFailure(kPath, u"Ein-/Ausgabefehler beim Lesen der Datei."_s);
  EXPECT_FALSE(ReadValueFile(core));
  EXPECT_EQ(TakeBoxes(box), QStringList{u"Fehler beim lesen von\r\nC:\\Werte\\a.qpf\r\n"
                                        "Ein-/Ausgabefehler beim Lesen der Datei."_s});
  EXPECT_TRUE(IsUntouched());
}

// --- old files ---

TEST_F(ValueFiles, LoadsTheOldLayout) {
  EXPECT_TRUE(Load(Old(4, {}, kVersion, {}) + Old(-5, {}, u"N1"_s, u"int"_s) +
                   Old(70'000, {}, u"_abc"_s, u"long"_s) + Old(9, u"Öl"_s, u"N4"_s, u"string4"_s)));
  EXPECT_EQ(Values(), (Numbers{-5, 70'000, 9}));
  EXPECT_EQ(module.Par[3].WertText, u"Öl                  "_s);
}

TEST_F(ValueFiles, AnOldFileKnowsTheFirstTwentyCharactersOfANameOnly) {
  const QString twenty = u"ABCDEFGHIJKLMNOPQRST"_s;
  const QByteArray image = Old(2, {}, kVersion, {}) + Old(7, {}, twenty, u"int"_s);
  const struct {
    QString name;
    bool matches;
  } cases[] = {
      {twenty, true},           {twenty + u"U"_s, true},           {twenty + u"UVWXY"_s, true},
      {twenty.left(19), false}, {twenty.left(19) + u"t"_s, false}, {twenty.left(19) + u"tUVWXY"_s, false}};
  for (const auto& example : cases) {
    module.Par[1].Variable = example.name;
    module.Par[1].Wert = 0;
    EXPECT_TRUE(Load(image));
    EXPECT_EQ(module.Par[1].Wert, example.matches ? 7 : 0) << example.name.toStdString();
  }
}

TEST_F(ValueFiles, AShortNameInAnOldFileIsNotTheBeginningOfALongOne) {
  module.Par[1].Variable = u"ABCDEFGHIJKLMNOPQRSTUVWXY"_s;
  EXPECT_TRUE(Load(Old(2, {}, kVersion, {}) + Old(7, {}, u"ABCDE"_s, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{100, 200, 0}));
}

TEST_F(ValueFiles, InAnOldFileTheFirstOfTheLongAndTheEqualNameIsMeant) {
  const QString twenty = u"ABCDEFGHIJKLMNOPQRST"_s;
  module.Par[1].Variable = twenty + u"UVW"_s;
  module.Par[2].Variable = twenty;
  EXPECT_TRUE(Load(Old(2, {}, kVersion, {}) + Old(7, {}, twenty, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{7, 200, 0}));
  // A current file knows the whole name.
  EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(8, {}, twenty, u"int"_s)));
  EXPECT_EQ(Values(), (Numbers{7, 8, 0}));
}

TEST_F(ValueFiles, RecognisesAnOldFileWhereAValueLooksLikeABlank) {
  const QByteArray image = Old(5, {}, kVersion, {}) + Old(8192, {}, u"N1"_s, u"int"_s) +
                           Old(2, {}, u"_abc"_s, u"long"_s) + Old(3, u"WXYZ"_s, u"N4"_s, u"string4"_s) +
                           Old(4, {}, u"N9"_s, u"int"_s);
  ASSERT_EQ(image.size(), 260);
  ASSERT_EQ(image.at(53), ' ');
  EXPECT_TRUE(Load(image));
  EXPECT_EQ(Values(), (Numbers{8192, 2, 3}));
}

TEST_F(ValueFiles, SavingOverAnOldFileLeavesWhatLiesBehindTheNewRecords) {
  QByteArray image = Old(6, {}, kVersion, {});
  for (int i = 0; i < 5; ++i)
    image += Old(i, {}, u"X"_s, u"int"_s);
  SetImage(image);
  ASSERT_TRUE(WriteValueFile(core));
  EXPECT_EQ(Image().size(), 312);
  EXPECT_EQ(Image().mid(248), image.mid(248));
  EXPECT_TRUE(ReadValueFile(core));
  EXPECT_TRUE(Values() == (Numbers{100, 200, 0}));
}

// --- the version ---

TEST_F(ValueFiles, AnUnknownVersionIsReportedAndNothingRead) {
  const int rebuilt = main.tree.rebuilt;
  EXPECT_FALSE(Load(Current(2, {}, u"V9"_s, {}) + Current(7, {}, u"N1"_s, u"int"_s)));
  EXPECT_EQ(TakeBoxes(box), QStringList{kUnknown + u"V9"_s + QString(28, u' ')});
  EXPECT_TRUE(IsUntouched());
  EXPECT_EQ(main.tree.rebuilt, rebuilt);
  EXPECT_EQ(module.Dateiname, kPath) << "the next save goes to this file";
  EXPECT_TRUE(Rests());
}

TEST_F(ValueFiles, AnUnknownVersionOfAnOldFileIsShownAsWideAsACurrentOne) {
  EXPECT_FALSE(Load(Old(1, {}, u"ABCDEFGHIJKLMNOPQRST"_s, {})));
  EXPECT_EQ(TakeBoxes(box), QStringList{kUnknown + u"ABCDEFGHIJKLMNOPQRST          "_s});
}

// An old file holds the first 20 characters of a version only, which are another one.
TEST_F(ValueFiles, AnOldFileOfALongVersionIsUnknown) {
  const QString version = u"ABCDEFGHIJKLMNOPQRST-5"_s;
  SetVersions({version + u"  -  A.TXT  -  WR"_s});
  Refresh(core, 5);
  EXPECT_TRUE(Load(Current(1, {}, version, {})));
  EXPECT_FALSE(Load(Old(1, {}, version.left(20), {})));
  EXPECT_EQ(TakeBoxes(box), QStringList{kUnknown + version.left(20) + QString(10, u' ')});
}

TEST_F(ValueFiles, VersionsAreComparedExactly) {
  for (const QString& version : {u"ab1-123.4"_s, u" AB1-123.4"_s, u"AB1-123.40"_s, u"AB1-123"_s}) {
    EXPECT_FALSE(Load(Current(1, {}, version, {})));
    EXPECT_EQ(TakeBoxes(box), QStringList{kUnknown + version.leftJustified(30)});
  }
}

// A version as long as its field leaves no blank in it, which is the mark of an old file.
TEST_F(ValueFiles, AVersionThatFillsItsFieldIsTakenForAnOldFile) {
  EXPECT_FALSE(Load(Current(1, {}, QString(30, u'V'), {})));
  EXPECT_EQ(TakeBoxes(box), QStringList{kUnknown + QString(20, u'V') + QString(10, u' ')});
}

TEST_F(ValueFiles, AnotherKnownVersionIsAskedFor) {
  choice.answers = {1};
  EXPECT_TRUE(Load(Current(1, {}, u"AB1-124.0"_s, {})));
  ASSERT_EQ(choice.asked.size(), 1U);
  EXPECT_EQ(choice.asked[0].question,
            u"Die Version in der Datei stimmt nicht mit derjenigen auf dem PC überein.\n\r\n\r"
            "Bitte wählen Sie:"_s);
  EXPECT_EQ(choice.asked[0].first, u"PC (Daten werden konvertiert): AB1-123.4"_s);
  EXPECT_EQ(choice.asked[0].second, u"Datei: AB1-124.0"_s);
  EXPECT_EQ(main.shownAgain, 1);
  EXPECT_TRUE(Rests());
}

TEST_F(ValueFiles, KeepingTheVersionOfThePcConvertsByName) {
  choice.answers = {1};
  module.ParNode[3] = kFalse;
  EXPECT_TRUE(Load(Current(4, {}, u"AB1-124.0"_s, {}) + Current(11, {}, u"N1"_s, u"int"_s) +
                   Current(12, {}, u"N9"_s, u"int"_s) + Current(13, {}, u"_abc"_s, u"int"_s)));
  EXPECT_EQ(module.VersionList.SelectedText(), kVersion);
  EXPECT_EQ(Values(), (Numbers{11, 13, 0}));
  EXPECT_EQ(module.Par[2].Typ, u"int"_s) << "the file's type is taken over";
  EXPECT_EQ(module.ParNode[3], kFalse) << "the marks stay";
  EXPECT_EQ(files.reads, QStringList{FileName(kPath).text}) << "no definitions are read";
}

TEST_F(ValueFiles, ChoosingTheVersionOfTheFileLoadsItsDefinitionsFirst) {
  choice.answers = {2};
  for (int i = 0; i <= 3; ++i)
    module.ParNode[i] = kFalse;
  EXPECT_TRUE(Load(Current(4, {}, u"AB1-124.0"_s, {}) + Current(11, {}, u"N1"_s, u"int"_s) +
                   Current(12, {}, u"N9"_s, u"int"_s) + Current(13, {}, u"_abc"_s, u"int"_s)));
  EXPECT_EQ(module.VersionList.SelectedText(), u"AB1-124.0"_s);
  EXPECT_EQ(module.VersionIndex, 2);
  // Twice by the list's change and twice by the command itself, each with the plant types' change.
  EXPECT_EQ(Readings(u"B.TXT"_s), 4);
  EXPECT_EQ(Readings(u"A.TXT"_s), 0);
  EXPECT_EQ(Values(), (Numbers{11, 12, 13})) << "everything is checked anew, so everything is filled";
  for (int i = 0; i <= 3; ++i)
    EXPECT_EQ(module.ParNode[i], kTrue);
  EXPECT_TRUE(Rests());
}

TEST_F(ValueFiles, TheFileMayBelongToTheFirstVersionOfTheTable) {
  module.VersionList.Select(1);
  choice.answers = {2};
  EXPECT_TRUE(Load(Current(1, {}, kVersion, {})));
  EXPECT_EQ(module.VersionList.Position(), 0);
}

TEST_F(ValueFiles, OfEqualEntriesInTheVersionListTheFirstIsMeant) {
  SetVersions({u"V1  -  A.TXT  -  WR"_s, u"V2  -  A.TXT  -  WR"_s, u"V2  -  B.TXT  -  WR"_s});
  Refresh(core, 5);
  choice.answers = {2};
  EXPECT_TRUE(Load(Current(1, {}, u"V2"_s, {})));
  EXPECT_EQ(module.VersionList.Position(), 1);
  module.VersionList.Select(2);
  EXPECT_TRUE(Load(Current(1, {}, u"V2"_s, {}))) << "the selected one needs no question";
  EXPECT_EQ(module.VersionList.Position(), 2);
  EXPECT_EQ(choice.asked.size(), 1U);
}

TEST_F(ValueFiles, AVersionWithoutDefinitionsEndsLoadingButNotTheProgram) {
  files.files.remove(u"ini//B.TXT"_s);
  choice.answers = {2};
  SetImage(Current(2, {}, u"AB1-124.0"_s, {}) + Current(11, {}, u"N1"_s, u"int"_s));
  EXPECT_EQ(ThrownKind([&] { (void)ReadValueFile(core); }), RuntimeError::Kind::FileError);
  EXPECT_TRUE(Rests());
}

TEST_F(ValueFiles, AVersionThatCannotBeReadLeavesTheTreeOfWhatTheTableHolds) {
  const QByteArray image = Current(2, {}, u"AB1-124.0"_s, {}) + Current(11, {}, u"N1"_s, u"int"_s);
  choice.answers = {2, 2};
  files.files.remove(u"ini//B.TXT"_s);
  EXPECT_EQ(ThrownText([&] { (void)Load(image); }), Native(u"Datei nicht gefunden.: ini//B.TXT"_s));
  EXPECT_EQ(module.ParCount, 1);
  EXPECT_EQ(main.tree.Count(), 1) << "no node of a parameter that is there no more";

  module.VersionList.Select(0);
  SetDefinitions(u"B.TXT"_s,
                 {u"G  Lesbar  0  9  5  -  0  0  int  1F00  N1  -  -"_s, u"G  Zu groß  0  4294967295  5"_s});
  EXPECT_EQ(ThrownText([&] { (void)Load(image); }),
            Native(u"Zahl außerhalb des zulässigen Bereichs.: ini//B.TXT, Zeile 3"_s));
  EXPECT_EQ(module.ParCount, 2);
  EXPECT_EQ(main.tree.Count(), 3) << "root, group and what was read before the fault";
  EXPECT_TRUE(main.tree.Text(main.tree.Find(u"sK 1"_s)).startsWith(u"Lesbar"));
  EXPECT_TRUE(Rests());
}

/// Keeps the state of the main window at the moment of the question.
class WatchingChoiceForm final : public ChoiceForm {
 public:
  WatchingChoiceForm(Module1& module, const FakeMainForm& main, qint16 answer)
      : module_(module), main_(main), answer_(answer) {}

  std::optional<bool> enabled;
  QString state;
  qint16 pending = 0;
  int busyDepth = -1;

  void Show(const QString&, const QString&, const QString&) override {
    enabled = main_.enabled;
    state = main_.state;
    pending = module_.Antwort;
    busyDepth = module_.BusyDepth;
    module_.Antwort = answer_;
  }

 private:
  Module1& module_;
  const FakeMainForm& main_;
  qint16 answer_;
};

TEST_F(ValueFiles, TheMainWindowTakesNoInputDuringTheQuestionOnly) {
  for (const qint16 answer : {qint16{1}, qint16{2}}) {
    WatchingChoiceForm watching(module, main, answer);
    Core watched{{main, report, watching, editors, box, files, events}, module, controller, clock};
    module.Antwort = 1;  // of an earlier question
    SetImage(Current(1, {}, u"AB1-124.0"_s, {}));
    EXPECT_TRUE(ReadValueFile(watched));
    EXPECT_EQ(watching.enabled, false);
    EXPECT_EQ(watching.pending, -1);
    EXPECT_EQ(watching.state, u"Ready"_s) << "the program waits, it does not work";
    EXPECT_EQ(watching.busyDepth, 1) << "no command starts meanwhile";
    EXPECT_TRUE(Rests());
  }
}

// --- files that are none ---

TEST_F(ValueFiles, AFileWithoutAWholeRecordHasNoVersion) {
  const QByteArray whole = Current(2, {}, kVersion, {});
  for (int size = 0; size < 62; ++size) {
    // 52 bytes are a whole old record.
    EXPECT_EQ(Load(whole.left(size)), size == 52) << size;
    const QStringList boxes = size == 52 ? QStringList() : QStringList{kUnknown + QString(30, u' ')};
    EXPECT_EQ(TakeBoxes(box), boxes) << size;
  }
  EXPECT_TRUE(IsUntouched());
}

TEST_F(ValueFiles, TakesForeignTypesAndShowsThem) {
  const QString types[] = {u""_s,         u"xyz"_s,       u"string"_s,   u"string99"_s,
                           u"string-1"_s, u"long long"_s, u"\x01\x02"_s, u"STRING4"_s};
  for (const QString& type : types) {
    EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(7, u"text"_s, u"N1"_s, type)));
    EXPECT_EQ(module.Par[1].Typ.Padded(), type.leftJustified(8, u' ', true));
    EXPECT_EQ(main.tree.Text(main.tree.Find(u"sK 1"_s)).contains(u"text"), type.startsWith(u"string"));
  }
}

TEST_F(ValueFiles, TakesControlCharacters) {
  const QString controls = u"\x01\r\n\t\x1B\x7F"_s + QChar(0) + u"x"_s;
  EXPECT_TRUE(Load(Current(2, {}, kVersion, {}) + Current(7, controls, u"N4"_s, u"string4"_s)));
  EXPECT_EQ(module.Par[3].WertText, controls.leftJustified(20, u' '));
  EXPECT_FALSE(Load(Current(2, {}, controls, {})));
  EXPECT_EQ(TakeBoxes(box), QStringList{kUnknown + controls.leftJustified(30, u' ')});
}

TEST_F(ValueFiles, SurvivesAnyBytes) {
  std::mt19937 random(7);  // the same files every time
  int loaded = 0;
  int refused = 0;
  for (int i = 0; i < 3000; ++i) {
    QByteArray image(static_cast<int>(random() % 1000), '\0');
    for (char& byte : image)
      byte = static_cast<char>(random());
    // Half of them are value files up to their records, whose names exist.
    if (i % 2 == 0) {
      image.prepend(Current(static_cast<qint32>(random()), {}, kVersion, {}));
      for (qsizetype at = 62; at + 62 <= image.size(); at += 62)
        image.replace(at + 24, 30, Text(i % 4 == 0 ? u"N1"_s : u"N4"_s, 30));
    }
    const bool ok = Load(image);
    (ok ? loaded : refused)++;
    const QStringList boxes = TakeBoxes(box);
    ASSERT_EQ(boxes.size(), ok ? 0 : 1);
    for (const QString& text : boxes)
      EXPECT_EQ(text.size(), kUnknown.size() + 30);
    ASSERT_EQ(module.ParCount, 4);
    ASSERT_TRUE(Rests());
  }
  EXPECT_EQ(loaded, 1500);
  EXPECT_EQ(refused, 1500);
}

/// The same on the files of this computer.
class ValueFilesOnDisk : public ValueFiles {
 protected:
  [[nodiscard]] QString Path(const QString& name) const { return folder_.filePath(name); }

  bool Save(const QString& path) {
    module.Dateiname = path;
    return WriteValueFile(real_);
  }
  bool LoadFile(const QString& path) {
    module.Dateiname = path;
    return ReadValueFile(real_);
  }
  void ExpectRefused(const QString& path, const QString& description) {
    EXPECT_FALSE(LoadFile(path));
    EXPECT_EQ(TakeBoxes(box), QStringList{u"Fehler beim lesen von\r\n"_s + path + u"\r\n"_s + description});
    EXPECT_TRUE(IsUntouched());
  }

  QTemporaryDir folder_;
  platform::native::FileSystem disk_;
  Core real_{{main, report, choice, editors, box, disk_, events}, module, controller, clock};
};

TEST_F(ValueFilesOnDisk, SavesAndLoadsByteForByte) {
  const QByteArray tail = Current(77, {}, u"_abc"_s, u"long"_s) + "rest";
  QFile file(Path(u"Werte.qpf"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(QByteArray(248, 'x') + tail);
  file.close();
  EXPECT_TRUE(Save(folder_.path() + u"\\WERTE.QPF"_s));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), Current(4, {}, kVersion, {}) + Current(100, {}, u"N1"_s, u"int"_s) +
                                Current(200, {}, u"_abc"_s, u"long"_s) +
                                Current(0, u"ABCD"_s, u"N4"_s, u"string4"_s) + tail);
  module.Par[1].Wert = 0;
  EXPECT_TRUE(LoadFile(folder_.path() + u"/werte.qpf"_s));
  EXPECT_EQ(Values(), (Numbers{100, 77, 0}));
}

TEST_F(ValueFilesOnDisk, RefusesFoldersAndWhatIsMissing) {
  ExpectRefused(folder_.path(), u"Der Pfad ist ein Ordner."_s);
  ExpectRefused(Path(u"missing.qpf"_s), u"Datei nicht gefunden."_s);
}

TEST_F(ValueFilesOnDisk, RefusesGigabytesWithoutReadingThem) {
  QFile file(Path(u"huge.qpf"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  for (const qint64 size : {kLargestValueFile_bytes + 1, 4LL << 30, 1LL << 40}) {
    ASSERT_TRUE(file.resize(size));  // sparse: takes no room on the disk
    ExpectRefused(Path(u"huge.qpf"_s), u"Die Datei ist zu groß."_s);
  }
}

// As many records as a file may hold, every one of a name that exists: work grows with the file, not its
// square.
TEST_F(ValueFilesOnDisk, ReadsTheLargestFile) {
  QFile file(Path(u"large.qpf"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  const qint64 count = kLargestValueFile_bytes / 62 - 1;
  const QByteArray record = Current(5, {}, u"N1"_s, u"int"_s);
  file.write(Current(1, {}, kVersion, {}) + record.repeated(count));
  file.close();
  EXPECT_TRUE(LoadFile(file.fileName()));
  EXPECT_EQ(Values(), (Numbers{5, 200, 0}));
}

TEST_F(ValueFilesOnDisk, AFailedSaveIsReported) {
  const QString path = Path(u"missing/a.qpf"_s);
  EXPECT_FALSE(Save(path));
  EXPECT_EQ(TakeBoxes(box), QStringList{u"Fehler beim schreiben von\r\n"_s + path +
                                        u"\r\nDer Ordner ist nicht vorhanden."_s});
}

}  // namespace
}  // namespace kalivor::test
