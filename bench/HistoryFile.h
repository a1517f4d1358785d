// A history as years of work make it, for measurements and for whoever wants to look at one.
#pragma once

#include <QString>

namespace kalivor::bench {

inline constexpr int kHistoryParameters = 1999;
inline constexpr int kHistoryPlants = 40;

/// What was added.
struct HistoryAdded {
  qint64 changes = 0;
  double add_ms = 0;  ///< an entry, on the average
  double longestAdd_ms = 0;
};

/// Adds `entries` entries with complete sets to a history, new or not, over some years: a parameter that
/// always changes (its variable is CurveVariable()), nine others, in every twentieth entry 200;
/// kHistoryPlants plants, each with a controller of one of three versions. The same each time but for the
/// ids. Aborts where that is not possible.
HistoryAdded AddHistory(const QString& file, int entries);

[[nodiscard]] QString CurveVariable();
[[nodiscard]] QString CurveAddress();

}  // namespace kalivor::bench
