// What the commands of the history print, and that the commands for values are recorded.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "unit/cli/CliTest.h"

namespace kalivor::cli {
namespace {

class HistoryTest : public CliTest {
 protected:
  HistoryTest() {
    historyStore.file = folder_.filePath(u"Verlauf.sqlite"_s);
    historyStore.programVersion = u"1.2.3"_s;
    historyStore.pc = u"Werkstatt"_s;
    historyStore.now = [this] { return QDateTime(day, QTime(5, 6, 7), Qt::UTC); };
    settings.values[u"Verlauf/Fuehren"_s] = u"1"_s;
    settings.values[u"Verlauf/Techniker"_s] = u"Meier"_s;
  }

  /// Column `name` of the entries that `history list` prints with these options.
  QStringList Listed(const QString& name, const QStringList& options = {}) {
    EXPECT_EQ(Run(QStringList{u"history"_s, u"list"_s} + options), kDone) << err.str();
    return Column(Out(), name);
  }

  static QStringList Column(const QString& text, const QString& name) {
    QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    const qsizetype at = lines.takeFirst().split(u'\t').indexOf(name);
    for (QString& line : lines)
      line = line.split(u'\t').at(at);
    return lines;
  }

  /// A receiving, and a sending of another number of revolutions.
  void Work() {
    EXPECT_EQ(Run({u"receive"_s}), kDone);
    day = day.addDays(1);
    EXPECT_EQ(Run({u"send"_s, u"--set"_s, u"SOLL=160.0"_s}), kDone);
  }

  QDate day{2026, 3, 4};

 private:
  QTemporaryDir folder_;
};

TEST_F(HistoryTest, WithoutTheSettingNothingIsRecorded) {
  settings.values.remove(u"Verlauf/Fuehren"_s);
  EXPECT_EQ(Run({u"receive"_s}), kDone);
  EXPECT_FALSE(QFile::exists(historyStore.file));
  EXPECT_EQ(Run({u"history"_s, u"list"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Es gibt noch keinen Verlauf: | "_s + historyStore.file + u'\n');
  EXPECT_EQ(Out(), QString());
}

TEST_F(HistoryTest, CommandsForValuesAreRecorded) {
  Work();
  EXPECT_EQ(Run({u"compare"_s}), kFindings);
  EXPECT_EQ(Run({u"standard"_s, u"--set"_s, u"SOLL=1.0"_s, u"--save"_s, u"/w/a.qpf"_s}), kDone);
  EXPECT_EQ(Run({u"list"_s, u"--load"_s, u"/w/a.qpf"_s}), kDone);
  EXPECT_EQ(Run({u"verify"_s}), kFindings);
  EXPECT_EQ(Listed(u"Art"_s),
            (QStringList{u"verglichen"_s, u"geladen"_s, u"gespeichert"_s, u"zurückgesetzt"_s, u"verglichen"_s,
                         u"gesendet"_s, u"empfangen"_s}));
  EXPECT_EQ(Listed(u"Techniker"_s).first(), u"Meier"_s);
  EXPECT_EQ(Listed(u"Zeit"_s).last(), u"2026-03-04T05:06:07Z"_s);
  EXPECT_EQ(Listed(u"Geändert"_s), (QStringList{u"1"_s, u"0"_s, u"0"_s, u"1"_s, u"1"_s, u"1"_s, u"0"_s}));
}

TEST_F(HistoryTest, ListsWhatIsLookedFor) {
  Work();
  EXPECT_EQ(Listed(u"Art"_s, {u"--kind"_s, u"gesendet"_s}), QStringList{u"gesendet"_s});
  EXPECT_EQ(Listed(u"Art"_s, {u"--to"_s, u"2026-03-04"_s}), QStringList{u"empfangen"_s});
  EXPECT_EQ(Listed(u"Art"_s, {u"--from"_s, u"2026-03-05"_s}), QStringList{u"gesendet"_s});
  EXPECT_EQ(Listed(u"Art"_s, {u"--filter"_s, u"gesendet AB1"_s}), QStringList{u"gesendet"_s});
  EXPECT_EQ(Listed(u"Art"_s, {u"--technician"_s, u"Huber"_s}), QStringList());
  EXPECT_EQ(Listed(u"Art"_s, {u"--parameter"_s, u"SOLL"_s}), QStringList{u"gesendet"_s});
  EXPECT_EQ(Listed(u"Art"_s, {u"--parameter"_s, u"NAME"_s}), QStringList());
  EXPECT_EQ(Listed(u"Art"_s, {u"--plant-name"_s, u""_s}).size(), 2);
  EXPECT_EQ(Run({u"history"_s, u"list"_s, u"--plant-name"_s, u"Nord"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Unbekannte Anlage: Nord\n"_s);
}

TEST_F(HistoryTest, KnowsPlantsByName) {
  {
    auto store = history::Store::Open(historyStore, history::Access::Write).store;
    ASSERT_TRUE(store);
    history::Plant plant{{}, u"Süd"_s, {}, {}};
    ASSERT_EQ(store->Describe(plant, {}), QString());
    settings.values[u"Verlauf/Anlage"_s] = plant.id.toString();
  }
  Work();
  EXPECT_EQ(Listed(u"Anlage"_s, {u"--plant-name"_s, u"SUED"_s}), (QStringList{u"Süd"_s, u"Süd"_s}));
}

TEST_F(HistoryTest, ShowsAnEntryByTheBeginningOfItsId) {
  Work();
  const QStringList ids = Listed(u"Eintrag"_s);
  ASSERT_EQ(ids.size(), 2);
  EXPECT_EQ(Run({u"history"_s, u"show"_s, ids.at(0).left(30)}), kDone) << err.str();
  EXPECT_TRUE(Out().startsWith(u"Eintrag\t"_s + ids.at(0) + u'\n')) << out.str();
  EXPECT_TRUE(Out().contains(u"Art\tgesendet\n"_s));
  EXPECT_TRUE(
      Out().endsWith(u"Nr\tGruppe\tName\tVariable\tVorher\tNachher\tEinheit\tZustand\n"
                     "1\tAntrieb\tDrehzahl\tSOLL\t150.0\t160.0\t1/m\t\n"_s))
      << out.str();
  EXPECT_EQ(Run({u"history"_s, u"show"_s, ids.at(0).left(1)}), kBadInput);
  EXPECT_EQ(Err(), u"Mehrere Einträge beginnen so: "_s + ids.at(0).left(1) + u'\n');
  EXPECT_EQ(Run({u"history"_s, u"show"_s, u"x"_s}), kBadInput);
  EXPECT_EQ(Err(), u"Unbekannter Eintrag: x\n"_s);
}

TEST_F(HistoryTest, SavesTheValuesOfAnEntry) {
  Work();
  EXPECT_EQ(Run({u"history"_s, u"show"_s, Listed(u"Eintrag"_s).at(0), u"--save"_s, u"/w/b.qpf"_s}), kDone);
  EXPECT_EQ(Run({u"show"_s, u"/w/b.qpf"_s}), kDone) << err.str();
  EXPECT_TRUE(Out().contains(u"SOLL\tint\t1600\t"_s)) << out.str();
  files.writeError = u"Platte voll."_s;
  EXPECT_EQ(Run({u"history"_s, u"show"_s, Listed(u"Eintrag"_s).at(0), u"--save"_s, u"/w/b.qpf"_s}),
            kBadInput);
  EXPECT_EQ(Err(), u"Fehler beim schreiben von | /w/b.qpf | Platte voll.\n"_s);
}

TEST_F(HistoryTest, AnswersInJson) {
  Work();
  EXPECT_EQ(Run({u"history"_s, u"list"_s, u"--json"_s}), kDone);
  const QJsonArray list = QJsonDocument::fromJson(Out().toUtf8()).array();
  ASSERT_EQ(list.size(), 2);
  EXPECT_EQ(list[0][u"Adresse"_s].toInt(), 1);
  EXPECT_EQ(Run({u"history"_s, u"show"_s, list[0][u"Eintrag"_s].toString(), u"--json"_s}), kDone);
  const QJsonObject entry = QJsonDocument::fromJson(Out().toUtf8()).object();
  EXPECT_EQ(entry[u"Ergebnis"_s].toString(), u"3 Werte"_s);
  EXPECT_EQ(entry[u"changes"_s].toArray()[0][u"Nachher"_s].toString(), u"160.0"_s);
  EXPECT_EQ(Run({u"history"_s, u"check"_s, u"--json"_s}), kDone);
  EXPECT_TRUE(QJsonDocument::fromJson(Out().toUtf8()).array().isEmpty());
}

TEST_F(HistoryTest, ExportsTables) {
  Work();
  EXPECT_EQ(Run({u"history"_s, u"export"_s}), kDone);
  EXPECT_EQ(Out().count(u"\r\n"_s), 3) << out.str();
  EXPECT_TRUE(Out().contains(u"05.03.2026 05:06:07;"_s)) << out.str();
  EXPECT_EQ(Run({u"history"_s, u"export"_s, u"--format"_s, u"html"_s, u"--kind"_s, u"gesendet"_s, u"--out"_s,
                 u"/w/v.html"_s}),
            kDone);
  EXPECT_EQ(Out(), QString());
  const QByteArray html = files.files[u"/w/v.html"_s].bytes;
  EXPECT_TRUE(html.contains("gesendet"));
  EXPECT_FALSE(html.contains("empfangen"));
}

TEST_F(HistoryTest, ChecksTheFile) {
  Work();
  EXPECT_EQ(Run({u"history"_s, u"check"_s}), kDone) << err.str();
  EXPECT_EQ(Out(), QString());
  QFile file(historyStore.file);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("kein Verlauf");
  file.close();
  EXPECT_EQ(Run({u"history"_s, u"check"_s}), kBadInput);
  EXPECT_NE(Err(), QString());
}

TEST_F(HistoryTest, AnotherFileCanBeNamed) {
  QTemporaryDir folder;
  const QString other = folder.filePath(u"b.sqlite"_s);
  EXPECT_EQ(Run({u"receive"_s, u"--history"_s, other}), kDone);
  EXPECT_FALSE(QFile::exists(historyStore.file));
  EXPECT_EQ(Listed(u"Art"_s, {u"--history"_s, other}), QStringList{u"empfangen"_s});
}

TEST_F(HistoryTest, WhatCannotBeKeptIsSaidAndStopsNothing) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"Datei"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  historyStore.file = file.fileName() + u"/Verlauf.sqlite"_s;
  EXPECT_EQ(Run({u"receive"_s}), kDone);
  EXPECT_TRUE(Out().endsWith(u"Empfangen beendet\n"_s)) << out.str();
  EXPECT_TRUE(Err().endsWith(u"Es fehlen darin: 1.\n"_s)) << err.str();
}

}  // namespace
}  // namespace kalivor::cli
