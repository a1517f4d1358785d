#include "history/KnownValues.h"

#include <algorithm>

#include "core/ValueFileFormat.h"
#include "history/RowCheck.h"
#include "history/StoredSets.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// How many entries back the value before is looked for.
constexpr int kLookedBack = 20;

class LastKnown {
 public:
  LastKnown(const QSqlDatabase& database, const std::vector<KnownSet>& sets)
      : database_(database), sets_(sets), records_(sets.size()) {}

  /// The value of parameter `number`, as `now` is called and typed.
  std::optional<ParameterValue> Value(int number, const ValueRecord& now) {
    for (std::size_t i = 0; i < sets_.size(); ++i) {
      if (!std::ranges::binary_search(sets_[i].held, number)) continue;
      if (!records_[i]) {
        QSqlError error;
        records_[i] =
            ParseValueFile(StoredImage(database_, sets_[i].set, error).value_or(QByteArray())).records;
      }
      const auto at = static_cast<std::size_t>(number - 1);
      // The definitions may have changed since.
      if (at >= records_[i]->size()) continue;
      const ValueRecord& then = (*records_[i])[at];
      if (then.Variable == now.Variable && then.Typ == now.Typ)
        return ParameterValue{then.Wert, then.WertText};
    }
    return std::nullopt;
  }

 private:
  QSqlDatabase database_;
  const std::vector<KnownSet>& sets_;
  std::vector<std::optional<std::vector<ValueRecord>>> records_;  // nothing: not yet looked at
};

}  // namespace

std::vector<KnownSet> KnownSets(Transaction& adding, const Entry& entry) {
  std::vector<KnownSet> known;
  adding.Ask(
      u"SELECT e.value_set, e.held FROM entry e WHERE e.version = ? AND e.address = ? AND e.held <> '' "
      "AND %1 IS ? ORDER BY e.moment DESC LIMIT %2"_s.arg(kPlantNow)
          .arg(kLookedBack),
      {StorableText(entry.version), entry.address, IdValue(entry.plant)}, [&](const Statement& row) {
        known.push_back({row.Bytes(0), HeldNumbers(row.Text(1))});
      });
  return known;
}

std::vector<Change> ChangesOf(const QSqlDatabase& database, const Observation& observation,
                              const QByteArray& image, const std::vector<KnownSet>& sets) {
  LastKnown known(database, sets);
  const std::vector<ValueRecord> records = ParseValueFile(image).records;
  std::vector<Change> changes;
  for (const ObservedValue& value : observation.values) {
    const ParameterRecord& record = observation.table->Par[value.index];
    const ParameterValue after{record.Wert, record.WertText};
    std::optional<ParameterValue> before = value.before;
    bool changed = before && !SameValue(record, *before, after);
    if (!before && value.index >= 1 && static_cast<std::size_t>(value.index) <= records.size()) {
      // A value file holds the beginning of a long text: both sides are as it has them.
      const ValueRecord& now = records[static_cast<std::size_t>(value.index - 1)];
      before = known.Value(value.index, now);
      changed = before && value.held && !SameValue(record, *before, {now.Wert, now.WertText});
    }
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

}  // namespace kalivor::history
