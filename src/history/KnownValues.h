// What a controller was last known to hold, and what an observation says against it.
#pragma once

#include <vector>

#include "history/Sql.h"
#include "history/Store.h"

namespace kalivor::history {

/// The sets of the newest entries in which this entry's controller (plant, version, address) held something,
/// the newest first, with what it held.
struct KnownSet {
  QByteArray set;
  std::vector<int> held;
};
[[nodiscard]] std::vector<KnownSet> KnownSets(Transaction& adding, const Entry& entry);

/// The changed values of an observation, whose image is `image`. Looks up in `known` what was there before
/// where the observation does not know it.
[[nodiscard]] std::vector<Change> ChangesOf(const QSqlDatabase& database, const Observation& observation,
                                            const QByteArray& image, const std::vector<KnownSet>& known);

/// An entry's plant by now, in words of SQL; `e` is the entry.
inline const QString kPlantNow = QStringLiteral(
    "coalesce((SELECT a.plant FROM assignment a WHERE a.entry = e.id ORDER BY a.moment DESC, a.id DESC "
    "LIMIT 1), e.plant)");

}  // namespace kalivor::history
