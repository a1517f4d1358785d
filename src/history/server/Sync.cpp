#include "history/server/Sync.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QSet>
#include <QThread>
#include <algorithm>
#include <optional>
#include <type_traits>

#include "history/RowCheck.h"
#include "history/Schema.h"
#include "history/SetImage.h"
#include "history/server/ServerStore.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr QStringView kEntry = u"entry";
constexpr QStringView kChange = u"change";
constexpr QStringView kValueSet = u"value_set";

// Rows that are copied together.
constexpr std::size_t kBatch = 250;
constexpr std::size_t kSetBatch = 50;        // a set takes tens of kilobytes
constexpr qint64 kChangesOfABatch = 10'000;  // as entries may have many

constexpr int kAttempts = 7;
constexpr int kPause_ms = 50;  // doubles with each attempt: three seconds together
constexpr int kReasons = 20;

// Ends the work; what is copied stays.
struct Stopped {
  ServerFailure failure;
};

/// One of the two sides.
class Side {
 public:
  virtual ~Side() = default;
  virtual std::vector<QByteArray> Ids(QStringView table) = 0;
  virtual TableRows Rows(QStringView table, const std::vector<QByteArray>& ids) = 0;
  virtual void Import(const std::vector<TableRows>& tables) = 0;
};

/// The user's file.
class HereSide final : public Side {
 public:
  explicit HereSide(Store& store) : store_(store) {}

  std::vector<QByteArray> Ids(QStringView table) override { return Read(store_.Ids(table)); }
  TableRows Rows(QStringView table, const std::vector<QByteArray>& ids) override {
    return Read(store_.Rows(table, ids));
  }
  void Import(const std::vector<TableRows>& tables) override { Require(store_.Import(tables)); }

 private:
  template <typename Result>
  Result Read(Result result) {
    Require(store_.Failure());
    return result;
  }
  static void Require(const QString& failure) {
    if (!failure.isEmpty()) throw Stopped{{ServerFailure::Other, failure}};
  }

  Store& store_;
};

/// The department's server, which may be gone for a moment.
class ThereSide final : public Side {
 public:
  ThereSide(const QString& server, const GoOn& goOn) : server_(server), goOn_(goOn) {
    ServerStore::Opened opened = ServerStore::Open(server_, goOn_);
    if (opened.failure) throw Stopped{opened.failure};
    store_ = std::move(opened.store);
  }

  std::vector<QByteArray> Ids(QStringView table) override {
    std::vector<QByteArray> ids;
    while (true) {
      const QByteArray last = ids.empty() ? QByteArray() : ids.back();
      const std::vector<QByteArray> more =
          Again([&](ServerStore& store) { return store.IdsAfter(table, last); });
      ids.insert(ids.end(), more.begin(), more.end());
      if (more.size() < ServerStore::kIdsTogether) return ids;
    }
  }
  TableRows Rows(QStringView table, const std::vector<QByteArray>& ids) override {
    return Again([&](ServerStore& store) { return store.Rows(table, ids); });
  }
  void Import(const std::vector<TableRows>& tables) override {
    (void)Again([&](ServerStore& store) {
      store.Import(tables);
      return true;
    });
  }

 private:
  // Everything that is asked of the server can be asked again: rows that are there already stay.
  template <typename Action>
  std::invoke_result_t<Action, ServerStore&> Again(const Action& action) {
    for (int attempt = 1;; ++attempt) {
      ServerFailure failure;
      if (!store_) {
        ServerStore::Opened opened = ServerStore::Open(server_, goOn_);
        failure = std::move(opened.failure);
        store_ = std::move(opened.store);
      }
      if (store_) {
        auto result = action(*store_);
        if (!store_->Failure()) return result;
        failure = store_->Failure();
      }
      // A server that starts again is not there for a moment.
      const bool gone = failure.kind == ServerFailure::Lost || failure.kind == ServerFailure::NotReached;
      if ((!gone && failure.kind != ServerFailure::Busy) || attempt == kAttempts) throw Stopped{failure};
      if (gone) store_.reset();
      Rest(kPause_ms << (attempt - 1));
    }
  }

  void Rest(int pause_ms) {
    constexpr int kLook_ms = 25;
    const QDeadlineTimer end(pause_ms);
    while (!end.hasExpired() && goOn_())
      QThread::msleep(kLook_ms);
  }

  QString server_;
  GoOn goOn_;
  std::unique_ptr<ServerStore> store_;
};

/// A row, and of an entry its changes.
struct Unit {
  QVariantList row;
  std::vector<QVariantList> changes;
};

// The table that a column refers to; "" where it refers to none.
QStringView ReferredTable(const Column& column) {
  constexpr QStringView kReferences = u"REFERENCES ";
  const qsizetype at = column.constraint.indexOf(kReferences);
  if (at < 0) return {};
  const QStringView rest = column.constraint.sliced(at + kReferences.size());
  return rest.first(rest.indexOf(u' '));
}

bool HasOwnIds(const TableDescription& table) {
  return table.key.isEmpty();
}

qsizetype ColumnOf(const TableDescription& table, QStringView name) {
  return std::ranges::find(table.columns, name, &Column::name) - table.columns.begin();
}

/// Everything that goes one way.
class Copying {
 public:
  Copying(Side& from, Side& to, SyncResult& result, int SyncCount::*count)
      : from_(from), to_(to), result_(result), count_(count) {}

  // What is there on each side, what refers to others first: so what it refers to is known as well, whoever
  // adds something meanwhile.
  static QHash<QStringView, std::vector<QByteArray>> AllIds(Side& side) {
    QHash<QStringView, std::vector<QByteArray>> all;
    const auto tables = Tables();
    for (auto table = tables.rbegin(); table != tables.rend(); ++table)
      if (HasOwnIds(*table)) all.insert(table->name, side.Ids(table->name));
    return all;
  }

  // Finds what is missing; returns how many rows that are.
  int Compare(const QHash<QStringView, std::vector<QByteArray>>& from,
              const QHash<QStringView, std::vector<QByteArray>>& to) {
    int count = 0;
    for (auto table = from.cbegin(); table != from.cend(); ++table) {
      const std::vector<QByteArray>& there = to[table.key()];
      QSet<QByteArray>& known = known_[table.key()];
      known = {there.cbegin(), there.cend()};
      std::vector<QByteArray>& missing = missing_[table.key()];
      std::ranges::copy_if(table.value(), std::back_inserter(missing),
                           [&](const QByteArray& id) { return !known.contains(id); });
      count += static_cast<int>(missing.size());
    }
    return count;
  }

  void Copy(const TableDescription& table, const std::function<void(int)>& done) {
    std::vector<QByteArray> missing = missing_[table.name];
    const std::size_t size = table.name == kValueSet ? kSetBatch : kBatch;
    std::vector<QByteArray> later;
    for (std::size_t at = 0; at < missing.size(); at += size) {
      const std::size_t count = std::min(size, missing.size() - at);
      const std::size_t before = later.size();
      CopyBatch(table,
                {missing.begin() + static_cast<std::ptrdiff_t>(at),
                 missing.begin() + static_cast<std::ptrdiff_t>(at + count)},
                &later);
      done(static_cast<int>(count - (later.size() - before)));
    }
    for (std::size_t at = 0; at < later.size(); at += size) {
      const std::size_t count = std::min(size, later.size() - at);
      CopyBatch(table,
                {later.begin() + static_cast<std::ptrdiff_t>(at),
                 later.begin() + static_cast<std::ptrdiff_t>(at + count)},
                nullptr);
      done(static_cast<int>(count));
    }
  }

 private:
  // `later` takes the ids of rows that refer to others of the same table which are not there yet.
  void CopyBatch(const TableDescription& table, const std::vector<QByteArray>& ids,
                 std::vector<QByteArray>* later) {
    std::vector<Unit> units;
    qint64 changes = 0;
    for (QVariantList& row : from_.Rows(table.name, ids).rows) {
      if (later != nullptr && Waits(table, row)) {
        later->push_back(row[0].toByteArray());
        continue;
      }
      if (table.name == kEntry) changes += row[ColumnOf(table, u"changes")].toLongLong();
      units.push_back({std::move(row), {}});
      if (changes < kChangesOfABatch) continue;
      Add(table, std::move(units));
      units.clear();
      changes = 0;
    }
    Add(table, std::move(units));
  }

  bool Waits(const TableDescription& table, const QVariantList& row) const {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const QVariant& value = row[static_cast<qsizetype>(i)];
      if (ReferredTable(table.columns[i]) == table.name && !value.isNull() &&
          !known_[table.name].contains(value.toByteArray()))
        return true;
    }
    return false;
  }

  void Add(const TableDescription& table, std::vector<Unit> units) {
    if (units.empty()) return;
    if (table.name == kEntry) FindChanges(units);
    std::erase_if(units, [&](const Unit& unit) { return LeaveOut(FaultOf(table, unit)); });
    if (table.name == kValueSet)
      std::erase_if(units, [&](const Unit& unit) { return LeaveOut(SetFault(unit)); });
    if (units.empty()) return;
    TableRows rows{table.name, {}};
    TableRows changes{kChange, {}};
    for (Unit& unit : units) {
      rows.rows.push_back(unit.row);
      std::ranges::move(unit.changes, std::back_inserter(changes.rows));
    }
    std::vector<TableRows> batch{std::move(rows)};
    if (!changes.rows.empty()) batch.push_back(std::move(changes));
    to_.Import(batch);
    for (const Unit& unit : units)
      known_[table.name].insert(unit.row[0].toByteArray());
    (*std::ranges::find(result_.counts, table.name, &SyncCount::table)).*count_ +=
        static_cast<int>(units.size());
  }

  void FindChanges(std::vector<Unit>& units) {
    QHash<QByteArray, Unit*> byEntry;
    std::vector<QByteArray> ids;
    for (Unit& unit : units) {
      ids.push_back(unit.row[0].toByteArray());
      byEntry.insert(ids.back(), &unit);
    }
    for (QVariantList& change : from_.Rows(kChange, ids).rows)
      if (Unit* unit = byEntry.value(change[0].toByteArray())) unit->changes.push_back(std::move(change));
  }

  QString FaultOf(const TableDescription& table, const Unit& unit) const {
    QString fault = RowFault(table, unit.row);
    if (!fault.isEmpty()) return fault;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const QStringView referred = ReferredTable(table.columns[i]);
      const QVariant& value = unit.row[static_cast<qsizetype>(i)];
      if (!referred.isEmpty() && !value.isNull() && !known_[referred].contains(value.toByteArray()))
        return u"%1.%2 verweist auf etwas, das fehlt"_s.arg(table.name, table.columns[i].name);
    }
    if (table.name != kEntry) return {};
    for (const QVariantList& change : unit.changes)
      if (fault = RowFault(TableNamed(kChange), change); !fault.isEmpty()) return fault;
    if (unit.row[ColumnOf(table, u"changes")].toLongLong() != static_cast<qint64>(unit.changes.size()))
      return u"entry.changes stimmt nicht mit der Zahl der Änderungen überein"_s;
    return {};
  }

  // A set that is not what its id says would keep the true one out for ever.
  QString SetFault(const Unit& unit) {
    const auto image = UnpackSet(SetOf(unit.row), [this](const QByteArray& id) { return BaseImage(id); });
    return image ? QString() : u"value_set.data ist nicht, was value_set.id sagt"_s;
  }

  static StoredSet SetOf(const QVariantList& row) {
    return {row[0].toByteArray(), row[1].toByteArray(), row[2].toByteArray()};
  }

  // Many sets refer to the same few.
  std::optional<QByteArray> BaseImage(const QByteArray& id) {
    if (id != baseId_) {
      const TableRows rows = from_.Rows(kValueSet, {id});
      baseId_ = id;
      baseImage_ =
          rows.rows.empty() ? std::nullopt : UnpackSet(SetOf(rows.rows.front()), [](const QByteArray&) {
            return std::optional<QByteArray>();
          });
    }
    return baseImage_;
  }

  bool LeaveOut(const QString& fault) {
    if (fault.isEmpty()) return false;
    ++result_.leftOut;
    if (result_.reasons.size() < kReasons && !result_.reasons.contains(fault)) result_.reasons << fault;
    return true;
  }

  Side& from_;
  Side& to_;
  SyncResult& result_;
  int SyncCount::*count_;
  QHash<QStringView, std::vector<QByteArray>> missing_;
  QHash<QStringView, QSet<QByteArray>> known_;  // ids of the rows that the other side has
  QByteArray baseId_;
  std::optional<QByteArray> baseImage_;
};

}  // namespace

SyncResult Synchronize(Store& store, const QString& server, const SyncWatch& watch) {
  SyncResult result;
  for (const TableDescription& table : Tables())
    if (HasOwnIds(table)) result.counts.push_back({table.name});
  try {
    ThereSide there(server, watch.goOn);
    HereSide here(store);
    Copying sending(here, there, result, &SyncCount::sent);
    Copying receiving(there, here, result, &SyncCount::received);
    const auto idsHere = Copying::AllIds(here);
    const auto idsThere = Copying::AllIds(there);
    const int total = sending.Compare(idsHere, idsThere) + receiving.Compare(idsThere, idsHere);
    int done = 0;
    const auto count = [&](int more) {
      done += more;
      watch.step(done, total);
      if (!watch.goOn()) throw Stopped{{ServerFailure::Aborted, u"Der Abgleich wurde abgebrochen."_s}};
    };
    count(0);
    for (const TableDescription& table : Tables()) {
      if (!HasOwnIds(table)) continue;
      sending.Copy(table, count);
      receiving.Copy(table, count);
    }
  } catch (const Stopped& stopped) {
    result.failure = stopped.failure;
  }
  return result;
}

QString RowsText(QStringView table) {
  if (table == u"plant") return u"Anlagen"_s;
  if (table == u"plant_text") return u"Beschreibungen von Anlagen"_s;
  if (table == kValueSet) return u"Wertesätze"_s;
  if (table == kEntry) return u"Einträge"_s;
  if (table == u"remark") return u"Bemerkungen"_s;
  return u"Zuordnungen zu Anlagen"_s;
}

QString LeftOutText(const SyncResult& result) {
  return u"Ausgelassen, weil beschädigt: %1 (%2)."_s.arg(result.leftOut).arg(result.reasons.join(u"; "_s));
}

QString SyncText(const SyncResult& result) {
  int sent = 0;
  int received = 0;
  int sentEntries = 0;
  int receivedEntries = 0;
  for (const SyncCount& count : result.counts) {
    sent += count.sent;
    received += count.received;
    if (count.table != kEntry) continue;
    sentEntries = count.sent;
    receivedEntries = count.received;
  }
  QString text;
  if (sent + received == 0) {
    if (!result.failure) text = u"Beide Seiten haben dasselbe."_s;
  } else {
    text = u"Gesendet: %1 Einträge und %2 Zeilen dazu. Empfangen: %3 Einträge und %4 Zeilen dazu."_s
               .arg(sentEntries)
               .arg(sent - sentEntries)
               .arg(receivedEntries)
               .arg(received - receivedEntries);
  }
  if (result.leftOut > 0) text += u' ' + LeftOutText(result);
  if (!result.failure) return text.trimmed();
  text = result.failure.text + u' ' + text;
  if (sent + received > 0) text += u" Der nächste Abgleich macht da weiter."_s;
  return text.trimmed();
}

}  // namespace kalivor::history
