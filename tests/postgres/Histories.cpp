#include "postgres/Histories.h"

#include <gtest/gtest.h>
#include <QCryptographicHash>
#include <QDataStream>
#include <QIODevice>
#include <QRandomGenerator>
#include <QUuid>
#include <algorithm>
#include <functional>

#include "history/Schema.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

using history::Store;
using history::TableRows;

constexpr int kMade = 24;  // entries that the store makes; the others are copies of them
constexpr int kRemarkEvery = 20;
constexpr std::size_t kBatch = 1000;

std::shared_ptr<ParameterTable> TableWith(int first, int count) {
  auto table = std::make_shared<ParameterTable>();
  table->ParCount = static_cast<qint16>(count + 1);
  for (int i = 1; i <= count; ++i) {
    ParameterRecord& record = table->Par[i];
    record.Rubrik = u"Regelung"_s;
    record.Name = u"Sollwert für Größe %1"_s.arg(i);
    record.Variable = u"Soll%1"_s.arg(i);
    record.VarAdresse = QString::number(2 * i, 16).rightJustified(4, u'0');
    record.Typ = u"int"_s;
    record.Einheit = u"K"_s;
    record.Zahl1 = 1;
    record.Wert = (first + i * 7) % 1000;
  }
  return table;
}

QByteArray RandomId(QRandomGenerator64& random) {
  QByteArray id;
  for (int half = 0; half < 2; ++half) {
    const quint64 number = random.generate();
    id.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  return id;
}

// Made by the store itself, as a day at a plant makes them.
void Make(Store& store, const history::Plant& plant, int count, quint64 seed, int values) {
  for (int i = 0; i < count; ++i) {
    history::Observation observation;
    observation.entry.kind = i % 3 == 0 ? DeedKind::SentSafely : DeedKind::Received;
    observation.entry.plant = plant.id;
    observation.entry.version = u"V1"_s;
    observation.entry.address = static_cast<int>(seed % 30);
    observation.entry.outcome = u"„%1 Werte“; DROP TABLE entry"_s.arg(values);
    auto table = TableWith(100, values);
    // Every second one is a set that the other histories have too.
    table->Par[1 + i % values].Wert = i % 2 == 0 ? i : static_cast<qint32>(seed * 100) + i;
    observation.table = table;
    for (int index = 1; index <= values; ++index)
      observation.values.push_back({index, true, {}, {}});
    EXPECT_EQ(store.Add(std::move(observation)), QString());
  }
}

template <typename Source>
Contents Read(Source& source, const std::function<void()>& check) {
  Contents contents;
  for (const history::TableDescription& table : history::Tables()) {
    if (!table.key.isEmpty()) continue;
    QHash<QByteArray, QByteArray>& digests = contents[table.name];
    const std::vector<QByteArray> ids = IdsOf(source, table.name);
    check();
    for (std::size_t at = 0; at < ids.size(); at += kBatch) {
      const std::vector<QByteArray> some(
          ids.begin() + static_cast<std::ptrdiff_t>(at),
          ids.begin() + static_cast<std::ptrdiff_t>(std::min(ids.size(), at + kBatch)));
      if (table.name == u"value_set") {
        for (const QByteArray& id : some)
          digests.insert(id, {});
        continue;
      }
      QHash<QByteArray, QByteArray> rows;
      const auto note = [&](const TableRows& found) {
        for (const QVariantList& row : found.rows) {
          QDataStream stream(&rows[row[0].toByteArray()], QIODevice::WriteOnly | QIODevice::Append);
          for (const QVariant& value : row) {
            if (value.isNull()) {
              stream << u"NULL"_s;
            } else if (value.typeId() == QMetaType::QByteArray) {
              stream << value.toByteArray();
            } else {
              stream << value.toString();
            }
          }
        }
        check();
      };
      note(source.Rows(table.name, some));
      if (table.name == u"entry") note(source.Rows(u"change", some));
      for (auto row = rows.cbegin(); row != rows.cend(); ++row)
        digests.insert(row.key(), QCryptographicHash::hash(row.value(), QCryptographicHash::Sha1));
    }
  }
  return contents;
}

}  // namespace

std::unique_ptr<Store> OpenHistory(const QString& file) {
  Store::Opened opened = Store::Open({file, u"1.0"_s, u"PC"_s}, history::Access::Write);
  EXPECT_EQ(opened.note, QString());
  EXPECT_TRUE(opened.store);
  return std::move(opened.store);
}

void FillHistory(Store& store, int entries, quint64 seed, int values) {
  QRandomGenerator64 random(static_cast<quint32>(seed));
  history::Plant plant{{}, u"Anlage %1"_s.arg(seed), u"Größe"_s, u"<b>\u2028\U0001F321"_s};
  ASSERT_EQ(store.Describe(plant, u"Meier"_s), QString());
  Make(store, plant, std::min(entries, kMade), seed, values);
  const std::vector<QByteArray> made = store.Ids(u"entry");
  const TableRows models = store.Rows(u"entry", made);
  const TableRows changes = store.Rows(u"change", made);
  std::vector<TableRows> batch{{u"entry", {}}, {u"change", {}}};
  QUuid last;
  for (int i = static_cast<int>(made.size()); i < entries; ++i) {
    QVariantList row = models.rows[static_cast<std::size_t>(i) % models.rows.size()];
    const QByteArray model = row[0].toByteArray();
    const QByteArray id = RandomId(random);
    row[0] = id;
    row[2] = row[2].toLongLong() + i;
    batch[0].rows.push_back(row);
    for (QVariantList change : changes.rows) {
      if (change[0].toByteArray() != model) continue;
      change[0] = id;
      batch[1].rows.push_back(std::move(change));
    }
    if (batch[0].rows.size() < kBatch && i + 1 < entries) continue;
    ASSERT_EQ(store.Import(batch), QString());
    for (TableRows& rows : batch)
      rows.rows.clear();
  }
  const std::vector<QByteArray> all = store.Ids(u"entry");
  for (std::size_t i = 0; i < all.size(); i += kRemarkEvery) {
    const QUuid entry = QUuid::fromRfc4122(all[i]);
    ASSERT_EQ(store.AddRemark(entry, u"Bemerkung %1"_s.arg(i), u"Meier"_s), QString());
    if (i % (5 * kRemarkEvery) == 0) {
      ASSERT_EQ(store.Assign(entry, plant.id, u"Meier"_s), QString());
    }
  }
}

std::vector<QByteArray> IdsOf(Store& store, QStringView table) {
  return store.Ids(table);
}

std::vector<QByteArray> IdsOf(history::ServerStore& store, QStringView table) {
  std::vector<QByteArray> ids;
  std::vector<QByteArray> more;
  do {
    more = store.IdsAfter(table, ids.empty() ? QByteArray() : ids.back());
    ids.insert(ids.end(), more.begin(), more.end());
  } while (!more.empty());
  return ids;
}

Contents ContentsOf(Store& store) {
  return Read(store, [&] { EXPECT_EQ(store.Failure(), QString()); });
}

Contents ContentsOf(history::ServerStore& store) {
  return Read(store, [&] { EXPECT_EQ(store.Failure().text, QString()); });
}

void Unite(Contents& all, const Contents& more) {
  for (auto table = more.cbegin(); table != more.cend(); ++table) {
    QHash<QByteArray, QByteArray>& united = all[table.key()];
    for (auto row = table->cbegin(); row != table->cend(); ++row) {
      const auto known = united.constFind(row.key());
      if (known != united.cend()) {
        EXPECT_EQ(*known, *row);
      }
      united.insert(row.key(), *row);
    }
  }
}

QString Difference(const Contents& left, const Contents& right) {
  QString difference;
  for (const history::TableDescription& table : history::Tables()) {
    if (left[table.name] == right[table.name]) continue;
    int missing = 0;
    int other = 0;
    for (auto row = left[table.name].cbegin(); row != left[table.name].cend(); ++row) {
      const auto same = right[table.name].constFind(row.key());
      if (same == right[table.name].cend()) {
        ++missing;
      } else if (*same != *row) {
        ++other;
      }
    }
    difference += u"%1: %2 against %3, %4 missing, %5 different\n"_s.arg(table.name)
                      .arg(left[table.name].size())
                      .arg(right[table.name].size())
                      .arg(missing)
                      .arg(other);
  }
  return difference;
}

}  // namespace kalivor::test
