// Rows from elsewhere are added as they are, or not at all.
#include "history/RowCheck.h"

#include <functional>

#include "history/SetImage.h"
#include "unit/history/HistoryFixture.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

class RowCheck : public HistoryFixture {
 protected:
  // Some of everything, all of it strange.
  void Fill(Store& store) {
    Plant plant{{}, u"<b>Nord</b>'; DROP TABLE plant; --"_s, QString(QChar(0xD800)), QString(2, QChar::Null)};
    ASSERT_EQ(store.Describe(plant, u"Ümit"_s), QString());
    for (const qint32 number : {100, 101, 102}) {
      Observation observation = Received(number, 200);
      observation.entry.plant = plant.id;
      observation.entry.remark = QString(kLongestText + 1, u'ä');
      ASSERT_EQ(store.Add(observation), QString());
    }
    const QUuid entry = store.Entries().front().id;
    ASSERT_EQ(store.AddRemark(entry, u""_s, {}), QString());
    ASSERT_EQ(store.Assign(entry, plant.id, {}), QString());
  }

  static std::vector<TableRows> AllRows(Store& store) {
    std::vector<TableRows> all;
    for (const TableDescription& table : Tables())
      all.push_back(store.Rows(table.name, store.Ids(table.name)));
    return all;
  }

  // The first row of a table, with one value exchanged.
  QString FaultWith(QStringView table, QStringView column, const QVariant& value) {
    const auto store = Opened();
    if (store->Entries().empty()) Fill(*store);
    const TableDescription& description = TableNamed(table);
    QVariantList row = store->Rows(table, store->Ids(table)).rows.front();
    for (std::size_t i = 0; i < description.columns.size(); ++i)
      if (description.columns[i].name == column) row[static_cast<qsizetype>(i)] = value;
    return RowFault(description, row);
  }
};

TEST_F(RowCheck, WhatTheStoreAddsCanBeAddedElsewhere) {
  const auto store = Opened();
  Fill(*store);
  const std::vector<TableRows> rows = AllRows(*store);
  for (const TableRows& table : rows) {
    EXPECT_FALSE(table.rows.empty()) << table.table.toString().toStdString();
    for (const QVariantList& row : table.rows)
      EXPECT_EQ(RowFault(TableNamed(table.table), row), QString());
  }
  const auto other = Opened(folder_.filePath(u"b/Verlauf.sqlite"_s));
  ASSERT_EQ(other->Import(rows), QString());
  ASSERT_EQ(other->Import(rows), QString());  // once more is nothing
  EXPECT_EQ(other->Plants(), store->Plants());
  EXPECT_EQ(other->Entries(), store->Entries());
  EXPECT_EQ(other->Remarks(), store->Remarks());
  for (const Entry& entry : store->Entries()) {
    EXPECT_EQ(other->Changes(entry.id), store->Changes(entry.id));
    EXPECT_EQ(other->Image(entry.set), store->Image(entry.set));
  }
  EXPECT_EQ(other->Check(), QStringList());
}

TEST_F(RowCheck, WhatIsNoSuchValueIsNamed) {
  EXPECT_EQ(FaultWith(u"entry", u"id", QByteArray(15, 'x')), u"entry.id hat eine falsche Länge"_s);
  EXPECT_EQ(FaultWith(u"entry", u"origin", QVariant()), u"entry.origin fehlt"_s);
  EXPECT_EQ(FaultWith(u"entry", u"plant", QVariant()), QString());
  EXPECT_EQ(FaultWith(u"entry", u"moment", -1LL), u"entry.moment ist außerhalb des Bereichs"_s);
  EXPECT_EQ(FaultWith(u"entry", u"moment", u"1"_s), u"entry.moment ist von einem anderen Typ"_s);
  EXPECT_EQ(FaultWith(u"entry", u"time", u"gestern"_s), u"entry.time ist keine Zeit"_s);
  EXPECT_EQ(FaultWith(u"entry", u"kind", u"gelöscht"_s), u"entry.kind ist keine bekannte Art"_s);
  for (const QString& text :
       {QString(kLongestText + 1, u'x'), QString(1, QChar::Null), QString(QChar(0xDC00))})
    EXPECT_EQ(FaultWith(u"entry", u"remark", text), u"entry.remark ist kein gültiger Text oder zu lang"_s);
  for (const QString& text : {u"2-1"_s, u"1,1"_s, u"0"_s, u"1-2001"_s, u"1,"_s, u"01"_s, u"x"_s, u"1-3,2"_s})
    EXPECT_EQ(FaultWith(u"entry", u"held", text), u"entry.held ist keine Liste von Nummern"_s);
  EXPECT_EQ(FaultWith(u"change", u"position", -1LL), u"change.position ist außerhalb des Bereichs"_s);
  EXPECT_EQ(FaultWith(u"change", u"number", 2001LL), u"change.number ist außerhalb des Bereichs"_s);
  EXPECT_EQ(FaultWith(u"value_set", u"id", QByteArray(16, 'x')), u"value_set.id hat eine falsche Länge"_s);
  // As many bytes as it says there would be taken.
  for (const QByteArray& data : {QByteArray("\xFF\xFF\xFF\xFFx"), QByteArray("abcdefgh"), QByteArray()})
    EXPECT_FALSE(FaultWith(u"value_set", u"data", data).isEmpty());
  EXPECT_EQ(RowFault(TableNamed(u"plant"), {}), u"plant hat andere Spalten"_s);
}

TEST_F(RowCheck, WithOneBadRowNothingIsAdded) {
  const auto store = Opened();
  Fill(*store);
  const auto other = Opened(folder_.filePath(u"b/Verlauf.sqlite"_s));
  const auto refuses = [&](const std::function<void(std::vector<TableRows>&)>& damage) {
    std::vector<TableRows> rows = AllRows(*store);
    damage(rows);
    const QString failure = other->Import(rows);
    EXPECT_TRUE(other->Plants().empty() && other->Entries().empty());
    return !failure.isEmpty();
  };
  EXPECT_TRUE(refuses([](auto& rows) { rows[3].rows.back()[0] = QByteArray(1, 'x'); }));
  EXPECT_TRUE(refuses([](auto& rows) { rows[0].rows.clear(); }));  // an entry's plant is missing
  // A set that is another than its id says would keep the true one out for ever.
  EXPECT_TRUE(refuses([](auto& rows) { rows[2].rows[0][2] = PackSet("other").data; }));
}

TEST_F(RowCheck, TextsAreStoredAsEveryDatabaseTakesThem) {
  const QString pair = u"\U0001F321"_s;
  EXPECT_EQ(StorableText(pair), pair);
  EXPECT_EQ(StorableText(pair.left(1) + u"a"_s + pair.right(1)), u"\uFFFDa\uFFFD"_s);
  EXPECT_EQ(StorableText(QString(1, QChar::Null)), u"\uFFFD"_s);
  EXPECT_FALSE(StorableText({}).isNull());
}

}  // namespace
}  // namespace kalivor::history
