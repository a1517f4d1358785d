// Histories to exchange, and what they hold.
#pragma once

#include <QHash>
#include <QString>
#include <QStringView>
#include <memory>

#include "history/Store.h"
#include "history/server/ServerStore.h"

namespace kalivor::test {

/// A history in that file; whatever there is to tell about opening it is a failure.
[[nodiscard]] std::unique_ptr<history::Store> OpenHistory(const QString& file);

/// Adds a plant, `entries` entries of it with changes and sets of `values` values, remarks and assignments.
/// The same seed makes the same, but for ids and times. Some sets are the same for every seed.
void FillHistory(history::Store& store, int entries, quint64 seed, int values = 20);

/// All ids of a table, in order.
[[nodiscard]] std::vector<QByteArray> IdsOf(history::Store& store, QStringView table);
[[nodiscard]] std::vector<QByteArray> IdsOf(history::ServerStore& store, QStringView table);

/// What tables hold: for each table and id a digest of the row (of an entry with its changes). Of sets the id
/// alone, as it says what the set is, but not how it is stored.
using Contents = QHash<QStringView, QHash<QByteArray, QByteArray>>;

[[nodiscard]] Contents ContentsOf(history::Store& store);
[[nodiscard]] Contents ContentsOf(history::ServerStore& store);

/// Everything of both. What both have must be the same: where it is not, a failure.
void Unite(Contents& all, const Contents& more);

/// What distinguishes them, a line for each table; "" where nothing does.
[[nodiscard]] QString Difference(const Contents& left, const Contents& right);

}  // namespace kalivor::test
