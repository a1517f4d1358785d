#include "history/Store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QtEndian>
#include <algorithm>
#include <set>

#include "commands/DamagedFile.h"
#include "core/ValueFiles.h"
#include "history/RowCheck.h"
#include "history/Schema.h"
#include "history/SetImage.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// Long enough for whoever holds the file, as nobody waits for the writer; a window that reads waits less.
constexpr int kBusyWriting_ms = 10000;
constexpr int kBusyReading_ms = 1000;

// How many entries back the value before is looked for.
constexpr int kLookedBack = 20;

// Ids that grow with time (version 7), so that rows of one time lie together.
QUuid NewId(qint64 moment_ms) {
  const QUuid random = QUuid::createUuid();
  QByteArray bytes = random.toRfc4122();
  const quint64 time = qToBigEndian(static_cast<quint64>(moment_ms) << 16);
  std::copy_n(reinterpret_cast<const char*>(&time), 6, bytes.begin());
  bytes[6] = static_cast<char>(0x70 | (bytes[6] & 0x0F));
  return QUuid::fromRfc4122(bytes);
}

QVariant IdValue(const QUuid& id) {
  return id.isNull() ? QVariant(QMetaType::fromType<QByteArray>()) : QVariant(id.toRfc4122());
}

QVariant BytesValue(const QByteArray& bytes) {
  return bytes.isEmpty() ? QVariant(QMetaType::fromType<QByteArray>()) : QVariant(bytes);
}

QVariant TextValue(const QString& text) {
  return StorableText(text);
}

QUuid IdOf(const QVariant& value) {
  return QUuid::fromRfc4122(value.toByteArray());
}

QString TimeText(const QDateTime& time) {
  return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate);
}

/// A statement on one database; every failure is kept.
class Statement {
 public:
  Statement(const QSqlDatabase& database, const QString& text) : query_(database) {
    query_.setForwardOnly(true);
    prepared_ = query_.prepare(text);
  }

  bool Run(const QVariantList& values = {}) {
    for (int i = 0; i < values.size(); ++i)
      query_.bindValue(i, values[i]);
    return prepared_ && query_.exec();
  }
  bool Next() { return query_.next(); }
  [[nodiscard]] QVariant At(int column) const { return query_.value(column); }
  [[nodiscard]] QString Text(int column) const { return query_.value(column).toString(); }
  [[nodiscard]] QUuid Id(int column) const { return IdOf(query_.value(column)); }
  [[nodiscard]] qint64 Number(int column) const { return query_.value(column).toLongLong(); }
  [[nodiscard]] QSqlError Error() const { return query_.lastError(); }

 private:
  QSqlQuery query_;
  bool prepared_ = false;
};

QString InsertText(const TableDescription& table) {
  const QStringList marks(static_cast<qsizetype>(table.columns.size()), u"?"_s);
  return u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(table.name, ColumnNames(table), marks.join(u','));
}

/// Ends without a trace unless it is committed. Waits for other writers at its beginning, so that nobody has
/// to give up in the middle.
class Transaction {
 public:
  explicit Transaction(const QSqlDatabase& database) : database_(database) {
    Statement begin(database, u"BEGIN IMMEDIATE"_s);
    open_ = begin.Run();
    error_ = begin.Error();
  }
  ~Transaction() {
    if (open_) (void)Statement(database_, u"ROLLBACK"_s).Run();
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Does nothing after a failure.
  void Insert(QStringView table, const QVariantList& values) { Do(InsertText(TableNamed(table)), values); }
  void Do(const QString& text, const QVariantList& values = {}) {
    if (!open_ || failed_) return;
    Statement statement(database_, text);
    failed_ = !statement.Run(values);
    if (failed_) error_ = statement.Error();
  }
  [[nodiscard]] bool Works() const { return open_ && !failed_; }

  /// Returns "" or why nothing was added.
  [[nodiscard]] QString Commit() {
    if (Works()) {
      Statement commit(database_, u"COMMIT"_s);
      open_ = !commit.Run();
      if (!open_) return {};
      error_ = commit.Error();
    }
    return Sentence(error_);
  }

  static QString Sentence(const QSqlError& error) {
    return u"Der Verlauf kann nicht geschrieben werden: "_s + error.databaseText();
  }

 private:
  QSqlDatabase database_;
  QSqlError error_;
  bool open_ = false;
  bool failed_ = false;
};

// The stamp of the next row. The clock may have been set back since the last one.
Stamp NextStamp(const QSqlDatabase& database, const QUuid& origin, const QDateTime& now,
                const QString& technician) {
  Statement last(database,
                 u"SELECT max(m) FROM (SELECT max(moment) AS m FROM entry WHERE origin = ? UNION ALL "
                 "SELECT max(moment) FROM plant_text WHERE origin = ? UNION ALL "
                 "SELECT max(moment) FROM remark WHERE origin = ? UNION ALL "
                 "SELECT max(moment) FROM assignment WHERE origin = ?)"_s);
  const qint64 before = last.Run(QVariantList(4, IdValue(origin))) && last.Next() ? last.Number(0) : 0;
  return {std::max(now.toMSecsSinceEpoch(), before + 1), now, technician};
}

void Prepare(const QSqlDatabase& database, Access access) {
  for (const QString& pragma : {u"PRAGMA foreign_keys = ON"_s, u"PRAGMA journal_mode = WAL"_s,
                                u"PRAGMA synchronous = FULL"_s, u"PRAGMA trusted_schema = OFF"_s})
    if (access == Access::Write || !pragma.contains(u"journal_mode"_s))
      (void)Statement(database, pragma).Run();
}

QString Unreadable(const QString& reason) {
  return u"Der Verlauf kann nicht gelesen werden: "_s + reason;
}

int VersionOf(const QSqlDatabase& database) {
  Statement version(database, u"PRAGMA user_version"_s);
  return version.Run() && version.Next() ? static_cast<int>(version.Number(0)) : -1;
}

const QString kEntryColumns =
    u"e.id, e.moment, e.time, e.technician, coalesce((SELECT a.plant FROM assignment a WHERE a.entry = e.id "
    "ORDER BY a.moment DESC, a.id DESC LIMIT 1), e.plant), e.pc, e.version, e.plant_type, e.address, e.port, "
    "e.program, e.kind, e.outcome, e.remark, e.quality, e.value_set, e.held, e.changes"_s;

Entry EntryAt(const Statement& row) {
  Entry entry;
  entry.id = row.Id(0);
  entry.stamp = {row.Number(1), QDateTime::fromString(row.Text(2), Qt::ISODate), row.Text(3)};
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
  entry.set = row.At(15).toByteArray();
  entry.held = row.Text(16);
  entry.changes = static_cast<int>(row.Number(17));
  return entry;
}

std::optional<QByteArray> ImageOf(const QSqlDatabase& database, const QByteArray& id,
                                  bool wholeOnly = false) {
  Statement row(database, u"SELECT base, data FROM value_set WHERE id = ?"_s);
  if (!row.Run({BytesValue(id)}) || !row.Next()) return std::nullopt;
  const StoredSet set{id, row.At(0).toByteArray(), row.At(1).toByteArray()};
  if (wholeOnly && !set.base.isEmpty()) return std::nullopt;
  return UnpackSet(set, [&](const QByteArray& base) { return ImageOf(database, base, true); });
}

// The last whole set, which the next ones are likely to be like.
QByteArray LastWholeSet(const QSqlDatabase& database) {
  Statement row(database, u"SELECT id FROM value_set WHERE base IS NULL ORDER BY rowid DESC LIMIT 1"_s);
  if (!row.Run() || !row.Next()) return {};
  return ImageOf(database, row.At(0).toByteArray(), true).value_or(QByteArray());
}

/// What the controller was last known to hold, from the newest entry back.
class LastKnown {
 public:
  LastKnown(const QSqlDatabase& database, const Entry& entry) {
    Statement rows(database, u"SELECT "_s + kEntryColumns +
                                 u" FROM entry e WHERE e.version = ? AND e.address = ? AND e.held <> '' "
                                 "ORDER BY e.moment DESC LIMIT 1000"_s);
    if (!rows.Run({TextValue(entry.version), entry.address})) return;
    while (known_.size() < kLookedBack && rows.Next()) {
      const Entry earlier = EntryAt(rows);
      if (earlier.plant != entry.plant) continue;
      const std::vector<int> held = HeldNumbers(earlier.held);
      known_.push_back({earlier.set, {held.begin(), held.end()}, {}, false});
    }
    database_ = database;
  }

  std::optional<ParameterValue> Value(int number, const ParameterRecord& record) {
    for (Known& known : known_) {
      if (!known.held.contains(number)) continue;
      if (!std::exchange(known.read, true))
        known.records = ParseValueFile(ImageOf(database_, known.set).value_or(QByteArray())).records;
      const auto at = static_cast<std::size_t>(number - 1);
      if (at >= known.records.size() || known.records[at].Variable != record.Variable) continue;
      return ParameterValue{known.records[at].Wert, known.records[at].WertText};
    }
    return std::nullopt;
  }

 private:
  struct Known {
    QByteArray set;
    std::set<int> held;
    std::vector<ValueRecord> records;
    bool read;
  };
  QSqlDatabase database_;
  std::vector<Known> known_;
};

std::vector<Change> ChangesOf(const QSqlDatabase& database, const Observation& observation) {
  std::vector<Change> changes;
  if (!observation.table) return changes;
  LastKnown known(database, observation.entry);
  for (const ObservedValue& value : observation.values) {
    const ParameterRecord& record = observation.table->Par[value.index];
    const ParameterValue after{record.Wert, record.WertText};
    const std::optional<ParameterValue> before =
        value.before ? value.before : known.Value(value.index, record);
    const bool changed = before && (value.held || value.before) && !SameValue(record, *before, after);
    if (!changed && value.state.isEmpty()) continue;
    // What a controller has come to hold is not known where it did not say so.
    const bool isKnown = value.held || !ConcernsController(observation.entry.kind);
    changes.push_back({value.index, record.Rubrik, record.Name, record.Variable, record.Typ.Trimmed(),
                       record.VarAdresse, record.Einheit.Trimmed(),
                       before ? ExactText(record, *before) : QString(),
                       isKnown ? ExactText(record, after) : QString(), value.state});
  }
  return changes;
}

}  // namespace

Store::Store(const StoreWorld& world)
    : world_(world), connection_(u"history "_s + QUuid::createUuid().toString(QUuid::WithoutBraces)) {}

Store::~Store() {
  database_ = {};
  QSqlDatabase::removeDatabase(connection_);
}

Store::Opened Store::Open(const StoreWorld& world, Access access) {
  std::unique_ptr<Store> store(new Store(world));
  if (access == Access::Write) {
    QDir().mkpath(QFileInfo(world.file).absolutePath());
  } else if (!QFile::exists(world.file)) {
    return {};
  }
  store->database_ = QSqlDatabase::addDatabase(u"QSQLITE"_s, store->connection_);
  QSqlDatabase& database = store->database_;
  database.setDatabaseName(world.file);
  const bool writes = access == Access::Write;
  database.setConnectOptions(writes
                                 ? u"QSQLITE_BUSY_TIMEOUT=%1"_s.arg(kBusyWriting_ms)
                                 : u"QSQLITE_BUSY_TIMEOUT=%1;QSQLITE_OPEN_READONLY"_s.arg(kBusyReading_ms));
  if (!database.open()) return {nullptr, Unreadable(database.lastError().databaseText())};
  Prepare(database, access);
  if (writes && VersionOf(database) == 0) {
    Transaction creating(database);
    for (const QString& statement : CreateTables(Dialect::SQLite))
      creating.Do(statement);
    creating.Do(u"CREATE TABLE this_store (origin BLOB NOT NULL) STRICT"_s);
    creating.Do(u"INSERT INTO this_store VALUES (?)"_s, {IdValue(QUuid::createUuid())});
    creating.Do(u"PRAGMA user_version = %1"_s.arg(kSchemaVersion));
    const QString failure = creating.Commit();
    if (!failure.isEmpty()) return {nullptr, failure};
  }
  Statement origin(database, u"SELECT origin FROM this_store"_s);
  if (!origin.Run() || !origin.Next()) return {nullptr, Unreadable(origin.Error().databaseText())};
  store->origin_ = origin.Id(0);
  store->writable_ = writes;
  return {std::move(store), {}};
}

QString Store::Add(Observation observation) {
  Entry& entry = observation.entry;
  Transaction adding(database_);
  entry.stamp = NextStamp(database_, origin_, entry.stamp.time.isValid() ? entry.stamp.time : world_.now(),
                          entry.stamp.technician);
  entry.id = NewId(entry.stamp.moment_ms);
  const std::vector<Change> changes = ChangesOf(database_, observation);
  entry.set.clear();
  if (observation.table) {
    const QByteArray image = ValueFileImage(*observation.table, entry.version);
    entry.set = SetId(image);
    Statement there(database_, u"SELECT 1 FROM value_set WHERE id = ?"_s);
    if (there.Run({entry.set}) && !there.Next()) {
      const StoredSet set = PackSet(image, LastWholeSet(database_));
      adding.Insert(u"value_set", {set.id, BytesValue(set.base), set.data});
    }
    std::vector<int> held;
    for (const ObservedValue& value : observation.values)
      if (value.held) held.push_back(value.index);
    entry.held = HeldText(held);
  }
  adding.Insert(
      u"entry",
      {IdValue(entry.id), IdValue(origin_), entry.stamp.moment_ms, TimeText(entry.stamp.time),
       TextValue(entry.stamp.technician), IdValue(entry.plant), TextValue(entry.pc), TextValue(entry.version),
       TextValue(entry.plantType), entry.address, TextValue(entry.port), TextValue(entry.program),
       KindText(entry.kind), TextValue(entry.outcome), TextValue(entry.remark), TextValue(entry.quality),
       BytesValue(entry.set), TextValue(entry.held), static_cast<qint64>(changes.size())});
  qint64 position = 0;
  for (const Change& change : changes)
    adding.Insert(u"change", {IdValue(entry.id), position++, change.number, TextValue(change.group),
                              TextValue(change.name), TextValue(change.variable), TextValue(change.type),
                              TextValue(change.address), TextValue(change.unit), TextValue(change.before),
                              TextValue(change.after), TextValue(change.state)});
  return adding.Commit();
}

QString Store::Describe(Plant& plant, const QString& technician) {
  Transaction adding(database_);
  const Stamp stamp = NextStamp(database_, origin_, world_.now(), technician);
  QUuid id = plant.id;
  if (id.isNull()) {
    id = NewId(stamp.moment_ms);
    adding.Insert(u"plant", {IdValue(id), IdValue(origin_), stamp.moment_ms});
  }
  adding.Insert(u"plant_text", {IdValue(NewId(stamp.moment_ms)), IdValue(id), IdValue(origin_),
                                stamp.moment_ms, TimeText(stamp.time), TextValue(technician),
                                TextValue(plant.name), TextValue(plant.place), TextValue(plant.remark)});
  QString failure = adding.Commit();
  if (failure.isEmpty()) plant.id = id;
  return failure;
}

QString Store::AddRemark(const QUuid& entry, const QString& text, const QString& technician) {
  Transaction adding(database_);
  const Stamp stamp = NextStamp(database_, origin_, world_.now(), technician);
  adding.Insert(u"remark", {IdValue(NewId(stamp.moment_ms)), IdValue(entry), IdValue(origin_),
                            stamp.moment_ms, TimeText(stamp.time), TextValue(technician), TextValue(text)});
  return adding.Commit();
}

QString Store::Assign(const QUuid& entry, const QUuid& plant, const QString& technician) {
  Transaction adding(database_);
  const Stamp stamp = NextStamp(database_, origin_, world_.now(), technician);
  adding.Insert(u"assignment",
                {IdValue(NewId(stamp.moment_ms)), IdValue(entry), IdValue(plant), IdValue(origin_),
                 stamp.moment_ms, TimeText(stamp.time), TextValue(technician)});
  return adding.Commit();
}

std::vector<Plant> Store::Plants() {
  failure_.clear();
  Statement rows(database_, u"SELECT plant, name, place, remark FROM plant_text ORDER BY moment, id"_s);
  QHash<QUuid, Plant> newest;
  if (!rows.Run()) failure_ = Unreadable(rows.Error().databaseText());
  while (rows.Next())
    newest.insert(rows.Id(0), {rows.Id(0), rows.Text(1), rows.Text(2), rows.Text(3)});
  std::vector<Plant> plants(newest.cbegin(), newest.cend());
  std::ranges::sort(plants, [](const Plant& left, const Plant& right) {
    const int order = QString::localeAwareCompare(left.name, right.name);
    return order != 0 ? order < 0 : left.id < right.id;
  });
  return plants;
}

std::vector<Entry> Store::Entries() {
  failure_.clear();
  std::vector<Entry> entries;
  Statement rows(database_,
                 u"SELECT "_s + kEntryColumns + u" FROM entry e ORDER BY e.moment DESC, e.id DESC"_s);
  if (!rows.Run()) failure_ = Unreadable(rows.Error().databaseText());
  while (rows.Next())
    entries.push_back(EntryAt(rows));
  return entries;
}

std::vector<Change> Store::Changes(const QUuid& entry) {
  failure_.clear();
  std::vector<Change> changes;
  Statement rows(
      database_,
      u"SELECT number, group_name, name, variable, type, address, unit, before, after, state FROM change "
      "WHERE entry = ? ORDER BY position"_s);
  if (!rows.Run({IdValue(entry)})) failure_ = Unreadable(rows.Error().databaseText());
  while (rows.Next())
    changes.push_back({static_cast<int>(rows.Number(0)), rows.Text(1), rows.Text(2), rows.Text(3),
                       rows.Text(4), rows.Text(5), rows.Text(6), rows.Text(7), rows.Text(8), rows.Text(9)});
  return changes;
}

std::vector<Remark> Store::Remarks() {
  failure_.clear();
  std::vector<Remark> remarks;
  Statement rows(database_,
                 u"SELECT id, entry, moment, time, technician, text FROM remark ORDER BY moment, id"_s);
  if (!rows.Run()) failure_ = Unreadable(rows.Error().databaseText());
  while (rows.Next())
    remarks.push_back({rows.Id(0),
                       rows.Id(1),
                       {rows.Number(2), QDateTime::fromString(rows.Text(3), Qt::ISODate), rows.Text(4)},
                       rows.Text(5)});
  return remarks;
}

QByteArray Store::Image(const QByteArray& set) {
  return ImageOf(database_, set).value_or(QByteArray());
}

SetResult Store::Values(const Entry& entry, bool heldOnly) {
  const QByteArray image = Image(entry.set);
  if (image.isEmpty()) return {{}, u"Zu diesem Eintrag gibt es keine Werte, oder sie sind beschädigt."_s};
  SetResult result{FileValues(ParseValueFile(image), u"Verlauf "_s + TimeText(entry.stamp.time))};
  if (!heldOnly || entry.held.isEmpty()) return result;
  const std::vector<int> held = HeldNumbers(entry.held);
  const std::set<int> numbers(held.begin(), held.end());
  std::vector<SetValue> kept;
  for (std::size_t i = 0; i < result.set.values.size(); ++i)
    if (numbers.contains(static_cast<int>(i) + 1)) kept.push_back(std::move(result.set.values[i]));
  result.set.values = std::move(kept);
  result.set.partial = true;
  return result;
}

std::vector<QUuid> Store::EntriesWith(const QString& parameter) {
  failure_.clear();
  std::vector<QUuid> entries;
  Statement rows(database_, u"SELECT DISTINCT entry FROM change WHERE variable = ? OR name = ?"_s);
  if (!rows.Run({TextValue(parameter), TextValue(parameter)}))
    failure_ = Unreadable(rows.Error().databaseText());
  while (rows.Next())
    entries.push_back(rows.Id(0));
  return entries;
}

std::vector<CurvePoint> Store::Curve(const QUuid& plant, const ParameterKey& parameter) {
  failure_.clear();
  std::vector<CurvePoint> points;
  Statement rows(
      database_,
      u"SELECT e.id, e.time, e.moment, c.before, c.after FROM change c JOIN entry e ON e.id = c.entry "
      "WHERE c.variable = ? AND c.address = ? AND coalesce((SELECT a.plant FROM assignment a WHERE "
      "a.entry = e.id ORDER BY a.moment DESC, a.id DESC LIMIT 1), e.plant) IS ? "
      "ORDER BY e.moment, e.id"_s);
  if (!rows.Run({TextValue(parameter.variable), TextValue(parameter.address), IdValue(plant)}))
    failure_ = Unreadable(rows.Error().databaseText());
  while (rows.Next()) {
    bool isNumber = false;
    CurvePoint point{rows.Id(0), QDateTime::fromString(rows.Text(1), Qt::ISODate), rows.Number(2),
                     rows.Text(4).toDouble(&isNumber)};
    if (!isNumber) continue;
    const double before = rows.Text(3).toDouble(&isNumber);
    if (points.empty() && isNumber) points.push_back({point.entry, point.time, point.moment_ms, before});
    points.push_back(point);
  }
  return points;
}

QStringList Store::Check() {
  QStringList faults;
  for (const QString& pragma : {u"PRAGMA integrity_check"_s, u"PRAGMA foreign_key_check"_s}) {
    Statement rows(database_, pragma);
    if (!rows.Run()) faults << rows.Error().databaseText();
    while (rows.Next())
      if (rows.Text(0) != u"ok") faults << rows.Text(0);
  }
  return faults;
}

QString Store::Import(const std::vector<TableRows>& tables) {
  for (const TableRows& rows : tables)
    for (const QVariantList& row : rows.rows) {
      const QString fault = RowFault(TableNamed(rows.table), row);
      if (!fault.isEmpty()) return u"Eine Zeile ist beschädigt und wird nicht übernommen: "_s + fault;
    }
  Transaction adding(database_);
  // A set may come before the one that it differs from.
  adding.Do(u"PRAGMA defer_foreign_keys = ON"_s);
  for (const TableRows& rows : tables)
    for (const QVariantList& row : rows.rows)
      adding.Do(InsertText(TableNamed(rows.table)) + u" ON CONFLICT DO NOTHING"_s, row);
  for (const TableRows& rows : tables)
    for (const QVariantList& row : rows.rows)
      if (rows.table == u"value_set" && adding.Works() && !ImageOf(database_, row[0].toByteArray()))
        return u"Ein Wertesatz ist beschädigt und wird nicht übernommen."_s;
  return adding.Commit();
}

std::vector<QByteArray> Store::Ids(QStringView table) {
  failure_.clear();
  const TableDescription& description = TableNamed(table);
  const QStringView key = description.columns.front().name;
  std::vector<QByteArray> ids;
  Statement rows(database_, u"SELECT DISTINCT %1 FROM %2 ORDER BY %1"_s.arg(key, description.name));
  if (!rows.Run()) failure_ = Unreadable(rows.Error().databaseText());
  while (rows.Next())
    ids.push_back(rows.At(0).toByteArray());
  return ids;
}

TableRows Store::Rows(QStringView table, const std::vector<QByteArray>& ids) {
  failure_.clear();
  const TableDescription& description = TableNamed(table);
  TableRows found{description.name, {}};
  Statement rows(database_,
                 u"SELECT %1 FROM %2 WHERE %3 = ?"_s.arg(ColumnNames(description), description.name,
                                                         description.columns.front().name));
  for (const QByteArray& id : ids) {
    if (!rows.Run({id})) failure_ = Unreadable(rows.Error().databaseText());
    while (rows.Next()) {
      QVariantList& row = found.rows.emplace_back();
      for (std::size_t i = 0; i < description.columns.size(); ++i)
        row << rows.At(static_cast<int>(i));
    }
  }
  return found;
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
