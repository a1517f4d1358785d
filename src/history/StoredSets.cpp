#include "history/StoredSets.h"

#include "history/SetImage.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// A difference grows with every change, until another whole set costs less than what it saves later: with a
// few bytes for each of the changes, and some ten of them an entry, that is so from about a tenth of a whole
// one on.
constexpr qsizetype kWholeByDifference = 10;

// So many whole sets are compared.
constexpr qsizetype kMostBases = 4;

std::optional<StoredSet> Stored(const QSqlDatabase& database, const QByteArray& id, QSqlError& error) {
  std::optional<StoredSet> set;
  error = Ask(database, u"SELECT base, data FROM value_set WHERE id = ?"_s, {id}, [&](const Statement& row) {
    set = StoredSet{id, row.Bytes(0), row.Bytes(1)};
  });
  return set;
}

// Without a look whether it is what its id says.
std::optional<QByteArray> WholeImage(const QSqlDatabase& database, const QByteArray& id, QSqlError& error) {
  const std::optional<StoredSet> set = Stored(database, id, error);
  // A set is at most one step away from its base, so that a damage costs little.
  return set && set->base.isEmpty() ? Uncompressed(set->data) : std::nullopt;
}

QList<QByteArray> LikelyBases(Transaction& adding, const std::vector<QByteArray>& alike,
                              const QString& version) {
  QList<QByteArray> bases;
  const auto take = [&](const Statement& row) {
    if (!bases.contains(row.Bytes(0))) bases << row.Bytes(0);
  };
  for (const QByteArray& set : alike)
    if (bases.size() < kMostBases)
      adding.Ask(u"SELECT coalesce(base, id) FROM value_set WHERE id = ?"_s, {set}, take);
  if (bases.isEmpty())
    adding.Ask(
        u"SELECT coalesce(s.base, s.id) FROM entry e JOIN value_set s ON s.id = e.value_set "
        "WHERE e.version = ? AND e.value_set IS NOT NULL ORDER BY e.moment DESC LIMIT 1"_s,
        {version}, take);
  return bases;
}

struct Base {
  QByteArray image;
  qsizetype stored_bytes = 0;
};

// The one that differs least. One that cannot be read, or is not what its id says, is none.
Base BestBase(const QSqlDatabase& database, const QByteArray& image, const QList<QByteArray>& bases) {
  Base best;
  qsizetype fewest = image.size();
  for (const QByteArray& id : bases) {
    QSqlError error;
    const std::optional<StoredSet> set = Stored(database, id, error);
    const std::optional<QByteArray> other =
        set && set->base.isEmpty() ? Uncompressed(set->data) : std::nullopt;
    const qsizetype differing = other ? DifferingBytes(image, *other) : image.size();
    if (differing >= fewest || SetId(*other) != id) continue;
    fewest = differing;
    best = {*other, set->data.size()};
  }
  return best;
}

}  // namespace

std::optional<QByteArray> StoredImage(const QSqlDatabase& database, const QByteArray& id, QSqlError& error) {
  const std::optional<StoredSet> set = Stored(database, id, error);
  if (!set) return std::nullopt;
  return UnpackSet(*set, [&](const QByteArray& base) { return WholeImage(database, base, error); });
}

QByteArray AddSet(Transaction& adding, const QByteArray& image, const std::vector<QByteArray>& alike,
                  const QString& version) {
  QByteArray id = SetId(image);
  bool isThere = false;
  adding.Ask(u"SELECT 1 FROM value_set WHERE id = ?"_s, {id}, [&](const Statement&) { isThere = true; });
  if (isThere || !adding.Works()) return id;
  const Base base = BestBase(adding.Database(), image, LikelyBases(adding, alike, version));
  const StoredSet set = PackSet(image, base.image, base.stored_bytes / kWholeByDifference);
  adding.Insert(u"value_set", {set.id, BytesValue(set.base), set.data});
  return id;
}

}  // namespace kalivor::history
