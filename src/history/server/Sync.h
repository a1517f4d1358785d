// Copies what is missing between the user's history and that of the department, in both directions.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "history/Store.h"
#include "history/server/Connection.h"

namespace kalivor::history {

struct SyncCount {
  QStringView table;
  int sent = 0;
  int received = 0;
};

struct SyncResult {
  ServerFailure failure;  ///< what was copied before stays copied, and the next time goes on from there
  std::vector<SyncCount> counts;  ///< a row for each table that has ids of its own
  int leftOut = 0;                ///< damaged rows, and what refers to them
  QStringList reasons;            ///< of the first ones, in German
};

/// What somebody sees of it while it lasts; called in the thread that works.
struct SyncWatch {
  GoOn goOn = [] { return true; };
  /// `done` of `total` rows are copied; called after each batch.
  std::function<void(int done, int total)> step = [](int, int) {};
};

/// Copies by id, in batches: rows that both have are left alone. Each batch is there as a whole or not at
/// all, so it can end at any time. A lost connection is made anew a few times.
[[nodiscard]] SyncResult Synchronize(Store& store, const QString& server, const SyncWatch& watch);

/// "Einträge", "Anlagen" …: what a row of this table is for the user.
[[nodiscard]] QString RowsText(QStringView table);

/// How many damaged rows were left out, and why.
[[nodiscard]] QString LeftOutText(const SyncResult& result);

/// What came of it in a sentence: "Gesendet: 312 Einträge …" or why not.
[[nodiscard]] QString SyncText(const SyncResult& result);

}  // namespace kalivor::history
