// Entries and changed values as they leave the program.
#include "history/Tables.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

class TablesTest : public testing::Test {
 protected:
  TablesTest() {
    entry.id = QUuid(u"01234567-89ab-7cde-8f01-23456789abcd"_s);
    entry.plant = plants[0].id;
    entry.kind = DeedKind::Received;
    entry.stamp = {1, QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::OffsetFromUTC, 3600), u"Meier"_s};
    entry.version = u"AB1-123.4"_s;
    entry.plantType = u"Luft"_s;
    entry.address = 3;
    entry.outcome = u"40 Werte"_s;
    entry.changes = 1;
    entry.remark = u"C:\\a.qpf"_s;
    remarks = {{QUuid::createUuid(), entry.id, entry.stamp, u"Ventil klemmt"_s},
               {QUuid::createUuid(), QUuid::createUuid(), entry.stamp, u"anderswo"_s}};
  }

  static QString Cell(const ListTable& table, std::size_t row, const QString& title) {
    return table.rows.at(row).at(static_cast<std::size_t>(table.titles.indexOf(title))).text;
  }

  std::vector<Plant> plants{{QUuid::createUuid(), u"Nord"_s, {}, {}}};
  std::vector<Remark> remarks;
  Entry entry;
};

TEST_F(TablesTest, AnEntryIsARow) {
  Entry other;
  const std::vector<Entry> entries{entry, other};
  const ListTable table = EntriesTable(entries, plants, remarks);
  ASSERT_EQ(table.rows.size(), 2u);
  for (const auto& row : table.rows)
    EXPECT_EQ(row.size(), static_cast<std::size_t>(table.titles.size()));
  EXPECT_EQ(Cell(table, 0, u"Zeit"_s), u"04.03.2026 05:06:07"_s);
  EXPECT_EQ(Cell(table, 0, u"Anlage"_s), u"Nord"_s);
  EXPECT_EQ(Cell(table, 0, u"Art"_s), u"empfangen"_s);
  EXPECT_EQ(Cell(table, 0, u"Adresse"_s), u"3"_s);
  EXPECT_EQ(Cell(table, 0, u"Geändert"_s), u"1"_s);
  EXPECT_EQ(Cell(table, 0, u"Bemerkung"_s), u"C:\\a.qpf\n04.03.2026 05:06:07 Meier: Ventil klemmt"_s);
  EXPECT_EQ(Cell(table, 0, u"Eintrag"_s), u"01234567-89ab-7cde-8f01-23456789abcd"_s);
  EXPECT_EQ(Cell(table, 1, u"Anlage"_s), QString());
}

TEST_F(TablesTest, AChangedValueIsARowBelowItsEntry) {
  const std::vector<Change> changes{
      {7, u"Regelung"_s, u"Sollwert"_s, u"Soll"_s, u"int"_s, u"1F00"_s, u"°C"_s, {}, u"-0.50"_s, {}},
      {8, u"Text"_s, u"Name"_s, u"N"_s, u"string4"_s, u"1F02"_s, {}, u"7"_s, u"=1"_s, u"geprüft"_s}};
  const ListTable table = ChangesTable(entry, plants, changes, remarks);
  ASSERT_EQ(table.rows.size(), 2u);
  EXPECT_EQ(Cell(table, 0, u"Nachher"_s), u"-0.50"_s);
  EXPECT_EQ(table.rows[0][5], (TableCell{u"-0.50"_s, true}));
  EXPECT_EQ(table.rows[0][4], TableCell{}) << "nothing is known: no number";
  EXPECT_EQ(table.rows[1][4], TableCell{u"7"_s}) << "a text stays one";
  EXPECT_EQ(Cell(table, 1, u"Zustand"_s), u"geprüft"_s);
  EXPECT_EQ(table.heading,
            (QStringList{u"Verlauf: empfangen, 04.03.2026 05:06:07"_s, u"Anlage: Nord"_s,
                         u"Techniker: Meier"_s, u"Reglerversion: AB1-123.4"_s, u"Anlageart: Luft"_s,
                         u"Geräteadresse: 3"_s, u"Ergebnis: 40 Werte"_s, u"Bemerkung: C:\\a.qpf"_s,
                         u"Bemerkung: 04.03.2026 05:06:07 Meier: Ventil klemmt"_s}));
}

}  // namespace
}  // namespace kalivor::history
