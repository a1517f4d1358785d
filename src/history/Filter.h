// Which entries of the history are shown.
#pragma once

#include <QDate>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <optional>
#include <span>
#include <vector>

#include "history/Entry.h"

namespace kalivor::history {

/// All that are set must hold.
struct EntryFilter {
  std::optional<QUuid> plant = {};  ///< null id: entries without a plant
  std::optional<DeedKind> kind = {};
  QString technician = {};                  ///< the whole name, whatever its case; "": anybody
  QDate from = {};                          ///< as the clock showed it; not valid: from the first one on
  QDate to = {};                            ///< including this day; not valid: up to the last one
  QStringList words = {};                   ///< of a search, as SearchWords() makes them: all must occur
  std::optional<QSet<QUuid>> entries = {};  ///< none but these

  bool operator==(const EntryFilter&) const = default;
};

/// Everything of the entries that a search looks at, in their order, folded: plant (name, place, remark),
/// kind, technician, PC, version, plant type, address, port, outcome, remarks, date.
[[nodiscard]] std::vector<QString> SearchedTexts(std::span<const Entry> entries,
                                                 std::span<const Plant> plants,
                                                 std::span<const Remark> remarks);

/// `searchedText` is the entry's.
[[nodiscard]] bool Shows(const EntryFilter& filter, const Entry& entry, const QString& searchedText);

}  // namespace kalivor::history
