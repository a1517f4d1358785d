// A server is prepared once, and its users can neither change nor delete.
#include "history/server/ServerStore.h"

#include "history/Schema.h"
#include "postgres/Histories.h"
#include "postgres/PostgresTest.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

using test::Always;

class ServerStoreTest : public test::PostgresTest {
 protected:
  void Prepare() const {
    const Preparation prepared = PrepareServer(Local(), Always);
    ASSERT_FALSE(prepared.failure) << prepared.failure.text.toStdString();
  }
  [[nodiscard]] QString RefusalOf(const QString& user) const {
    return ServerStore::Open(Local(user), Always).failure.text;
  }
};

TEST_F(ServerStoreTest, IsPreparedOnceAndSaysWhatComesNext) {
  const Preparation first = PrepareServer(Local(), Always);
  ASSERT_FALSE(first.failure) << first.failure.text.toStdString();
  EXPECT_TRUE(first.text.contains(u"GRANT kalivor_history TO")) << first.text.toStdString();
  const auto history = test::OpenHistory(folder_.filePath(u"a"_s));
  test::FillHistory(*history, 3, 1);
  const auto store = ServerStore::Open(Local(), Always);
  ASSERT_TRUE(store.store) << store.failure.text.toStdString();
  store.store->Import({history->Rows(u"plant", history->Ids(u"plant"))});
  ASSERT_FALSE(store.store->Failure()) << store.store->Failure().text.toStdString();

  const Preparation second = PrepareServer(Local(), Always);
  EXPECT_FALSE(second.failure) << second.failure.text.toStdString();
  EXPECT_NE(second.text, first.text);
  EXPECT_EQ(test::IdsOf(*store.store, u"plant"), history->Ids(u"plant"));
}

TEST_F(ServerStoreTest, IsRefusedWhereThereIsNoneOrOneOfAnotherVersion) {
  EXPECT_TRUE(RefusalOf(u"admin"_s).contains(u"init-server")) << RefusalOf(u"admin"_s).toStdString();
  Prepare();
  EXPECT_EQ(RefusalOf(u"admin"_s), QString());
  for (const int version : {kSchemaVersion - 1, kSchemaVersion + 1}) {
    ASSERT_EQ(Do({u"UPDATE kalivor.schema_version SET version = %1"_s.arg(version)}), QString());
    EXPECT_TRUE(RefusalOf(u"admin"_s).contains(u"Fassung %1"_s.arg(version)));
    EXPECT_EQ(PrepareServer(Local(), Always).failure.text, RefusalOf(u"admin"_s));
  }
  ASSERT_EQ(Do({u"DELETE FROM kalivor.schema_version"_s}), QString());
  EXPECT_FALSE(RefusalOf(u"admin"_s).isEmpty());
}

TEST_F(ServerStoreTest, AUserMayReadAndAddAndNothingElse) {
  Prepare();
  ASSERT_EQ(Do({u"CREATE ROLE meier LOGIN"_s, u"CREATE ROLE fremd LOGIN"_s}), QString());
  EXPECT_TRUE(RefusalOf(u"fremd"_s).contains(u"GRANT kalivor_history TO"));
  ASSERT_EQ(Do({u"GRANT kalivor_history TO meier"_s}), QString());

  const auto history = test::OpenHistory(folder_.filePath(u"a"_s));
  test::FillHistory(*history, 5, 1);
  const auto opened = ServerStore::Open(Local(u"meier"_s), Always);
  ASSERT_TRUE(opened.store) << opened.failure.text.toStdString();
  std::vector<TableRows> rows;
  for (const TableDescription& table : Tables())
    rows.push_back(history->Rows(table.name, history->Ids(table.name)));
  opened.store->Import(rows);
  ASSERT_FALSE(opened.store->Failure()) << opened.store->Failure().text.toStdString();
  EXPECT_EQ(test::Difference(test::ContentsOf(*history), test::ContentsOf(*opened.store)), QString());

  for (const TableDescription& table : Tables()) {
    const QString name = u"kalivor.%1"_s.arg(table.name);
    const QStringView column = table.columns.back().name;
    for (const QString& statement :
         {u"DELETE FROM %1"_s.arg(name), u"TRUNCATE %1"_s.arg(name),
          u"UPDATE %1 SET %2 = %2"_s.arg(name, column), u"DROP TABLE %1"_s.arg(name),
          u"ALTER TABLE %1 DROP COLUMN %2"_s.arg(name, column),
          u"CREATE TRIGGER t BEFORE INSERT ON %1 EXECUTE FUNCTION suppress_redundant_updates_trigger()"_s.arg(
              name),
          u"SELECT * FROM %1 FOR UPDATE"_s.arg(name)}) {
      EXPECT_NE(Do({statement}, u"meier"_s), QString()) << statement.toStdString();
    }
  }
  for (const QString& statement :
       {u"CREATE TABLE kalivor.more (id uuid)"_s, u"INSERT INTO kalivor.schema_version VALUES (2)"_s,
        u"UPDATE kalivor.schema_version SET version = 2"_s, u"DROP SCHEMA kalivor CASCADE"_s})
    EXPECT_NE(Do({statement}, u"meier"_s), QString()) << statement.toStdString();
  EXPECT_EQ(test::Difference(test::ContentsOf(*history), test::ContentsOf(*opened.store)), QString());
}

TEST_F(ServerStoreTest, NobodyMayFillTheMemoryOfTheOthers) {
  Prepare();
  EXPECT_TRUE(Do({u"INSERT INTO kalivor.value_set SELECT 'x', NULL, repeat('x', 2000000)::bytea"_s})
                  .contains(u"check"));
}

TEST_F(ServerStoreTest, OfSeveralTablesAllRowsAreAddedOrNone) {
  Prepare();
  const auto history = test::OpenHistory(folder_.filePath(u"a"_s));
  test::FillHistory(*history, 3, 1);
  const auto opened = ServerStore::Open(Local(), Always);
  ASSERT_TRUE(opened.store);
  // The entries' sets are not there.
  opened.store->Import(
      {history->Rows(u"plant", history->Ids(u"plant")), history->Rows(u"entry", history->Ids(u"entry"))});
  EXPECT_EQ(opened.store->Failure().kind, ServerFailure::Other);
  EXPECT_TRUE(test::IdsOf(*opened.store, u"plant").empty());
  EXPECT_FALSE(opened.store->Failure());
}

TEST_F(ServerStoreTest, ADatabaseThatCannotHoldEveryTextIsRefused) {
  ASSERT_EQ(Do({u"CREATE DATABASE ascii_only TEMPLATE template0 ENCODING 'SQL_ASCII' LOCALE 'C'"_s}),
            QString());
  EXPECT_TRUE(PrepareServer(test::TheServer().AtSocket(u"admin"_s, u"ascii_only"_s), Always)
                  .failure.text.contains(u"UTF8"));
}

}  // namespace
}  // namespace kalivor::history
