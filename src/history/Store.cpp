#include "history/Store.h"

#include <QCollator>
#include <QHash>
#include <QtEndian>
#include <algorithm>

#include "core/ValueFiles.h"
#include "history/KnownValues.h"
#include "history/RowCheck.h"
#include "history/Sql.h"
#include "history/StoreFile.h"
#include "history/StoredSets.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// Ids that grow with time (version 7), so that rows of one time lie together.
QUuid NewId(qint64 moment_ms) {
  QByteArray bytes = QUuid::createUuid().toRfc4122();
  const quint64 time = qToBigEndian(static_cast<quint64>(moment_ms) << 16);
  std::copy_n(reinterpret_cast<const char*>(&time), 6, bytes.begin());
  bytes[6] = static_cast<char>(0x70 | (bytes[6] & 0x0F));
  return QUuid::fromRfc4122(bytes);
}

QString TimeText(const QDateTime& time) {
  return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate);
}

// As TimeText writes it ("2024-03-05T14:07:09+01:00"), without the toolkit's search for other notations: a
// curve has thousands of them. Anything else goes to that search.
QDateTime TimeOf(const QString& text) {
  const auto number = [&](qsizetype at, qsizetype digits) {
    int value = 0;
    for (const QChar digit : QStringView(text).mid(at, digits))
      value = 10 * value + (digit.unicode() - u'0');
    return value;
  };
  const bool utc = text.size() == 20 && text.back() == u'Z';
  const bool offset = text.size() == 25 && (text[19] == u'+' || text[19] == u'-');
  if (!utc && !offset) return QDateTime::fromString(text, Qt::ISODate);
  const int offset_s = utc ? 0 : 3600 * number(20, 2) + 60 * number(23, 2);
  const QDateTime time(QDate(number(0, 4), number(5, 2), number(8, 2)),
                       QTime(number(11, 2), number(14, 2), number(17, 2)), Qt::OffsetFromUTC,
                       text[19] == u'-' ? -offset_s : offset_s);
  return time.isValid() ? time : QDateTime::fromString(text, Qt::ISODate);
}

const QString kEntryColumns = u"e.id, e.moment, e.time, e.technician, "_s + kPlantNow +
                              u", e.pc, e.version, e.plant_type, e.address, e.port, e.program, e.kind, "
                              "e.outcome, e.remark, e.quality, e.value_set, e.held, e.changes"_s;

Entry EntryAt(const Statement& row) {
  Entry entry;
  entry.id = row.Id(0);
  entry.stamp = {row.Number(1), TimeOf(row.Text(2)), row.Text(3)};
  entry.plant = row.Id(4);
  entry.pc = row.Text(5);
  entry.version = row.Text(6);
  entry.plantType = row.Text(7);
  entry.address = static_cast<int>(row.Number(8));
  entry.port = row.Text(9);
  entry.program = row.Text(10);
  entry.kind = KindOf(row.Text(11)).value_or(DeedKind::Received);
  entry.outcome = row.Text(12);
  entry.remark = row.Text(13);
  entry.quality = row.Text(14);
  entry.set = row.Bytes(15);
  entry.held = row.Text(16);
  entry.changes = static_cast<int>(row.Number(17));
  return entry;
}

void InsertEntry(Transaction& adding, const Entry& entry, const QUuid& origin) {
  adding.Insert(
      u"entry",
      {IdValue(entry.id), IdValue(origin), entry.stamp.moment_ms, TimeText(entry.stamp.time),
       StorableText(entry.stamp.technician), IdValue(entry.plant), StorableText(entry.pc),
       StorableText(entry.version), StorableText(entry.plantType), static_cast<qint64>(entry.address),
       StorableText(entry.port), StorableText(entry.program), KindText(entry.kind),
       StorableText(entry.outcome), StorableText(entry.remark), StorableText(entry.quality),
       BytesValue(entry.set), StorableText(entry.held), static_cast<qint64>(entry.changes)});
}

void InsertChanges(Transaction& adding, const QUuid& entry, const std::vector<Change>& changes) {
  qint64 position = 0;
  for (const Change& change : changes)
    adding.Insert(u"change",
                  {IdValue(entry), position++, static_cast<qint64>(change.number), StorableText(change.group),
                   StorableText(change.name), StorableText(change.variable), StorableText(change.type),
                   StorableText(change.address), StorableText(change.unit), StorableText(change.before),
                   StorableText(change.after), StorableText(change.state)});
}

void KnowPlant(Transaction& adding, const QUuid& plant, const QUuid& origin, const Stamp& stamp) {
  if (!plant.isNull()) adding.InsertMissing(u"plant", {IdValue(plant), IdValue(origin), stamp.moment_ms});
}

QString HeldBy(const Observation& observation) {
  std::vector<int> held;
  for (const ObservedValue& value : observation.values)
    if (value.held) held.push_back(value.index);
  return HeldText(held);
}

Store::Remedy RemedyFor(SqlFault fault) {
  switch (fault) {
    case SqlFault::Refused:
      return Store::Remedy::Nothing;
    case SqlFault::Damaged:
    case SqlFault::Other:
      return Store::Remedy::Reopening;
    default:
      return Store::Remedy::Waiting;
  }
}

}  // namespace

Store::Store(const StoreWorld& world) : world_(world) {}

Store::~Store() = default;

Store::Opened Store::Open(const StoreWorld& world, Access access) {
  OpenedFile file = access == Access::Write ? OpenForWriting(world.file) : OpenForReading(world.file);
  if (!file.connection) return {nullptr, file.note};
  QSqlError error;
  const QVariant origin = FirstAnswer(file.connection->Database(), u"SELECT origin FROM this_store"_s, error);
  if (error.type() != QSqlError::NoError) return {nullptr, CannotRead(ReasonOf(error, world.file))};
  std::unique_ptr<Store> store(new Store(world));
  store->connection_ = std::move(file.connection);
  store->origin_ = QUuid::fromRfc4122(origin.toByteArray());
  store->writable_ = access == Access::Write && !file.newer;
  return {std::move(store), file.note};
}

QString Store::Adding(const std::function<void(Transaction& adding)>& rows) {
  remedy_ = writable_ ? Remedy::Waiting : Remedy::Nothing;
  if (!writable_) return CannotWrite(u"Er ist nur zum Lesen offen."_s);
  Transaction adding(connection_->Database());
  // A newer program may have changed the tables since.
  qint64 version = kSchemaVersion;
  adding.Ask(u"PRAGMA user_version"_s, {}, [&](const Statement& row) { version = row.Number(0); });
  if (version != kSchemaVersion) {
    remedy_ = Remedy::Reopening;
    return CannotWrite(u"Ein Programm einer anderen Version hat ihn umgestellt."_s);
  }
  rows(adding);
  if (adding.Commit()) return {};
  remedy_ = RemedyFor(FaultOf(adding.Error()));
  return CannotWrite(ReasonOf(adding.Error(), world_.file));
}

void Store::Read(const QString& question, const QVariantList& values,
                 const std::function<void(const Statement& row)>& row) {
  failure_.clear();
  const QSqlError error = Ask(connection_->Database(), question, values, row);
  if (error.type() != QSqlError::NoError) failure_ = CannotRead(ReasonOf(error, world_.file));
}

// The clock may have been set back since the last row.
Stamp Store::NextStamp(Transaction& adding, const QDateTime& time, const QString& technician) const {
  QStringList lasts;
  for (const QStringView table : {u"entry", u"plant_text", u"remark", u"assignment"})
    lasts << u"SELECT max(moment) AS last FROM %1 WHERE origin = ?"_s.arg(table);
  qint64 last = 0;
  adding.Ask(u"SELECT max(last) FROM (%1)"_s.arg(lasts.join(u" UNION ALL "_s)),
             QVariantList(lasts.size(), IdValue(origin_)),
             [&](const Statement& row) { last = row.Number(0); });
  return {std::max(time.toMSecsSinceEpoch(), last + 1), time, technician};
}

QString Store::Add(const Observation& observation) {
  return Adding([&](Transaction& adding) {
    Entry entry = observation.entry;
    entry.stamp = NextStamp(adding, entry.stamp.time.isValid() ? entry.stamp.time : world_.now(),
                            entry.stamp.technician);
    entry.id = NewId(entry.stamp.moment_ms);
    KnowPlant(adding, entry.plant, origin_, entry.stamp);
    std::vector<Change> changes;
    entry.set.clear();
    entry.held.clear();
    if (observation.table) {
      const QByteArray image = ValueFileImage(*observation.table, entry.version);
      const std::vector<KnownSet> known = KnownSets(adding, entry);
      std::vector<QByteArray> sets;
      sets.reserve(known.size());
      for (const KnownSet& each : known)
        sets.push_back(each.set);
      changes = ChangesOf(adding.Database(), observation, image, known);
      entry.set = AddSet(adding, image, sets, StorableText(entry.version));
      entry.held = HeldBy(observation);
    }
    entry.changes = static_cast<int>(changes.size());
    InsertEntry(adding, entry, origin_);
    InsertChanges(adding, entry.id, changes);
  });
}

QString Store::Describe(Plant& plant, const QString& technician) {
  QUuid id = plant.id;
  QString failure = Adding([&](Transaction& adding) {
    const Stamp stamp = NextStamp(adding, world_.now(), technician);
    if (id.isNull()) id = NewId(stamp.moment_ms);
    KnowPlant(adding, id, origin_, stamp);
    adding.Insert(u"plant_text",
                  {IdValue(NewId(stamp.moment_ms)), IdValue(id), IdValue(origin_), stamp.moment_ms,
                   TimeText(stamp.time), StorableText(technician), StorableText(plant.name),
                   StorableText(plant.place), StorableText(plant.remark)});
  });
  if (failure.isEmpty()) plant.id = id;
  return failure;
}

QString Store::AddRemark(const QUuid& entry, const QString& text, const QString& technician) {
  return Adding([&](Transaction& adding) {
    const Stamp stamp = NextStamp(adding, world_.now(), technician);
    adding.Insert(u"remark",
                  {IdValue(NewId(stamp.moment_ms)), IdValue(entry), IdValue(origin_), stamp.moment_ms,
                   TimeText(stamp.time), StorableText(technician), StorableText(text)});
  });
}

QString Store::Assign(const QUuid& entry, const QUuid& plant, const QString& technician) {
  return Adding([&](Transaction& adding) {
    const Stamp stamp = NextStamp(adding, world_.now(), technician);
    KnowPlant(adding, plant, origin_, stamp);
    adding.Insert(u"assignment",
                  {IdValue(NewId(stamp.moment_ms)), IdValue(entry), IdValue(plant), IdValue(origin_),
                   stamp.moment_ms, TimeText(stamp.time), StorableText(technician)});
  });
}

std::vector<Plant> Store::Plants() {
  QHash<QUuid, Plant> newest;
  Read(u"SELECT plant, name, place, remark FROM plant_text ORDER BY moment, id"_s, {},
       [&](const Statement& row) {
         newest.insert(row.Id(0), {row.Id(0), row.Text(1), row.Text(2), row.Text(3)});
       });
  std::vector<Plant> plants(newest.cbegin(), newest.cend());
  // As the names of selections are, whatever the system's language is.
  QCollator german{QLocale(QLocale::German)};
  german.setNumericMode(true);
  std::ranges::sort(plants, [&german](const Plant& left, const Plant& right) {
    const int order = german.compare(left.name, right.name);
    return order != 0 ? order < 0 : left.id < right.id;
  });
  return plants;
}

std::vector<Entry> Store::Entries() {
  std::vector<Entry> entries;
  Read(u"SELECT "_s + kEntryColumns + u" FROM entry e ORDER BY e.moment DESC, e.id DESC"_s, {},
       [&](const Statement& row) { entries.push_back(EntryAt(row)); });
  return entries;
}

std::vector<Change> Store::Changes(const QUuid& entry) {
  std::vector<Change> changes;
  Read(
      u"SELECT number, group_name, name, variable, type, address, unit, before, after, state FROM change "
      "WHERE entry = ? ORDER BY position"_s,
      {IdValue(entry)}, [&](const Statement& row) {
        changes.push_back({static_cast<int>(row.Number(0)), row.Text(1), row.Text(2), row.Text(3),
                           row.Text(4), row.Text(5), row.Text(6), row.Text(7), row.Text(8), row.Text(9)});
      });
  return changes;
}

std::vector<Remark> Store::Remarks() {
  std::vector<Remark> remarks;
  Read(u"SELECT id, entry, moment, time, technician, text FROM remark ORDER BY moment, id"_s, {},
       [&](const Statement& row) {
         remarks.push_back(
             {row.Id(0), row.Id(1), {row.Number(2), TimeOf(row.Text(3)), row.Text(4)}, row.Text(5)});
       });
  return remarks;
}

QByteArray Store::Image(const QByteArray& set) {
  failure_.clear();
  QSqlError error;
  const std::optional<QByteArray> image = StoredImage(connection_->Database(), set, error);
  if (error.type() != QSqlError::NoError) failure_ = CannotRead(ReasonOf(error, world_.file));
  return image.value_or(QByteArray());
}

SetResult Store::Values(const Entry& entry, bool heldOnly) {
  const QByteArray image = Image(entry.set);
  if (!failure_.isEmpty()) return {{}, failure_};
  if (image.isEmpty()) return {{}, u"Zu diesem Eintrag gibt es keine Werte, oder sie sind beschädigt."_s};
  SetResult result{FileValues(ParseValueFile(image), u"Verlauf "_s + TimeText(entry.stamp.time))};
  if (!heldOnly || entry.held.isEmpty()) return result;
  std::vector<SetValue> kept;
  for (const int number : HeldNumbers(entry.held)) {
    const auto at = static_cast<std::size_t>(number - 1);
    if (at < result.set.values.size()) kept.push_back(std::move(result.set.values[at]));
  }
  result.set.values = std::move(kept);
  result.set.partial = true;
  return result;
}

std::vector<QUuid> Store::EntriesWith(const QString& parameter) {
  std::vector<QUuid> entries;
  Read(
      u"SELECT entry FROM change WHERE variable = ? UNION SELECT entry FROM change WHERE variable IN "
      "(SELECT variable FROM parameter_name WHERE name = ?) AND name = ?"_s,
      QVariantList(3, StorableText(parameter)), [&](const Statement& row) { entries.push_back(row.Id(0)); });
  return entries;
}

std::vector<CurvePoint> Store::Curve(const QUuid& plant, const ParameterKey& parameter) {
  std::vector<CurvePoint> points;
  const auto take = [&](const Statement& row) {
    bool isNumber = false;
    CurvePoint point{row.Id(0), TimeOf(row.Text(1)), row.Number(2), row.Text(4).toDouble(&isNumber)};
    if (!isNumber) return;
    const double before = row.Text(3).toDouble(&isNumber);
    if (points.empty() && isNumber) points.push_back({point.entry, point.time, point.moment_ms, before});
    points.push_back(point);
  };
  Read(
      u"SELECT e.id, e.time, e.moment, c.before, c.after FROM change c JOIN entry e ON e.id = c.entry "
      "WHERE c.variable = ? AND c.address = ? AND %1 IS ? ORDER BY e.moment, e.id"_s.arg(kPlantNow),
      {StorableText(parameter.variable), StorableText(parameter.address), IdValue(plant)}, take);
  return points;
}

QStringList Store::Check() {
  QStringList faults;
  Read(u"PRAGMA integrity_check"_s, {}, [&](const Statement& row) {
    if (row.Text(0) != u"ok") faults << u"Die Datei ist beschädigt: "_s + row.Text(0);
  });
  if (!failure_.isEmpty()) faults << failure_;
  Read(u"PRAGMA foreign_key_check"_s, {}, [&](const Statement& row) {
    faults << u"In %1 verweist eine Zeile auf eine, die in %2 fehlt."_s.arg(row.Text(0), row.Text(2));
  });
  if (!failure_.isEmpty()) faults << failure_;
  for (const TableDescription& table : Tables())
    faults << FaultsOf(table);
  return faults;
}

// What each row says for itself, and of the sets that they are what they are called.
QStringList Store::FaultsOf(const TableDescription& table) {
  QStringList faults;
  std::vector<QByteArray> sets;
  Read(u"SELECT %1 FROM %2"_s.arg(ColumnNames(table), table.name), {}, [&](const Statement& row) {
    QVariantList values;
    for (std::size_t i = 0; i < table.columns.size(); ++i)
      values << row.At(static_cast<int>(i));
    const QString fault = RowFault(table, values);
    if (!fault.isEmpty()) faults << fault;
    if (table.name == u"value_set") sets.push_back(row.Bytes(0));
  });
  if (!failure_.isEmpty()) faults << failure_;
  for (const QByteArray& set : sets)
    if (Image(set).isEmpty())
      faults << u"Der Wertesatz %1 ist beschädigt."_s.arg(QLatin1StringView(set.toHex()));
  return faults;
}

QString Store::Import(const std::vector<TableRows>& tables) {
  remedy_ = Remedy::Nothing;
  for (const TableRows& rows : tables)
    for (const QVariantList& row : rows.rows) {
      const QString fault = RowFault(TableNamed(rows.table), row);
      if (!fault.isEmpty()) return u"Eine Zeile ist beschädigt und wird nicht übernommen: "_s + fault;
    }
  QString wrongSet;
  QString failure = Adding([&](Transaction& adding) {
    // A set may come before the one that it differs from.
    adding.Do(u"PRAGMA defer_foreign_keys = ON"_s);
    for (const TableRows& rows : tables)
      for (const QVariantList& row : rows.rows)
        adding.InsertMissing(rows.table, row);
    wrongSet = WrongSet(adding, tables);
    if (!wrongSet.isEmpty()) adding.GiveUp();
  });
  if (wrongSet.isEmpty()) return failure;
  remedy_ = Remedy::Nothing;
  return wrongSet;
}

// A set that is another than its id says would keep the true one out for ever.
QString Store::WrongSet(const Transaction& adding, const std::vector<TableRows>& tables) {
  for (const TableRows& rows : tables)
    for (const QVariantList& row : rows.rows)
      if (rows.table == u"value_set" && adding.Works() && Image(row[0].toByteArray()).isEmpty())
        return u"Ein Wertesatz ist beschädigt und wird nicht übernommen."_s;
  return {};
}

std::vector<QByteArray> Store::Ids(QStringView table) {
  const TableDescription& description = TableNamed(table);
  std::vector<QByteArray> ids;
  Read(u"SELECT DISTINCT %1 FROM %2 ORDER BY %1"_s.arg(description.columns.front().name, description.name),
       {}, [&](const Statement& row) { ids.push_back(row.Bytes(0)); });
  return ids;
}

TableRows Store::Rows(QStringView table, const std::vector<QByteArray>& ids) {
  const TableDescription& description = TableNamed(table);
  TableRows found{description.name, {}};
  failure_.clear();
  Statement rows(connection_->Database(),
                 u"SELECT %1 FROM %2 WHERE %3 = ?"_s.arg(ColumnNames(description), description.name,
                                                         description.columns.front().name));
  for (const QByteArray& id : ids) {
    bool works = rows.Run({id});
    while (works && rows.Next()) {
      QVariantList& row = found.rows.emplace_back();
      for (std::size_t i = 0; i < description.columns.size(); ++i)
        row << rows.At(static_cast<int>(i));
    }
    works = rows.Error().type() == QSqlError::NoError;
    if (!works) failure_ = CannotRead(ReasonOf(rows.Error(), world_.file));
  }
  return found;
}

qint64 Store::Generation() {
  qint64 generation = 0;
  Read(u"PRAGMA data_version"_s, {}, [&](const Statement& row) { generation = row.Number(0); });
  return generation;
}

QString HeldText(const std::vector<int>& numbers) {
  QStringList ranges;
  for (std::size_t from = 0; from < numbers.size();) {
    std::size_t to = from;
    while (to + 1 < numbers.size() && numbers[to + 1] == numbers[to] + 1)
      ++to;
    ranges << (from == to ? QString::number(numbers[from])
                          : QString::number(numbers[from]) + u'-' + QString::number(numbers[to]));
    from = to + 1;
  }
  return ranges.join(u',');
}

std::vector<int> HeldNumbers(const QString& text) {
  std::vector<int> numbers;
  for (const QStringView range : QStringView(text).split(u',', Qt::SkipEmptyParts)) {
    const qsizetype dash = range.indexOf(u'-');
    const int from = range.first(dash < 0 ? range.size() : dash).toInt();
    const int to = dash < 0 ? from : range.sliced(dash + 1).toInt();
    const int last = numbers.empty() ? 0 : numbers.back();
    if (from <= last || to < from || to > kLastParameter) return {};
    for (int number = from; number <= to; ++number)
      numbers.push_back(number);
  }
  return numbers;
}

}  // namespace kalivor::history
