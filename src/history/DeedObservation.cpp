#include "history/DeedObservation.h"

#include <algorithm>

#include "core/SafeTransfer.h"
#include "core/TransferReport.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

using Outcome = ParameterResult::Outcome;

/// "1990 Werte, 9 nicht gelesen": numbers that are 0 are left out.
class Account {
 public:
  void Add(qsizetype count, const QString& what) {
    if (count > 0) parts_ << u"%1 %2"_s.arg(QString::number(count), what);
  }
  void Say(const QString& what) { parts_ << what; }
  [[nodiscard]] QString Text() const { return parts_.join(u", "_s); }

 private:
  QStringList parts_;
};

QString ValuesText(qsizetype count) {
  return count == 1 ? u"Wert"_s : u"Werte"_s;
}

QString StateOf(const ParameterResult& result) {
  switch (result.outcome) {
    case Outcome::NotRead:
      return u"nicht gelesen"_s;
    case Outcome::NotSent:
      return u"nicht gesendet"_s;
    case Outcome::NoAddress:
      return u"keine Adresse"_s;
    case Outcome::Differs:
      return DifferenceText(Difference::Different);
    case Outcome::PassedOver:
    case Outcome::Sent:
    case Outcome::Received:
    case Outcome::Equal:
      break;
  }
  return {};
}

bool Held(const ParameterResult& result) {
  return result.outcome == Outcome::Sent || result.outcome == Outcome::Received ||
         result.outcome == Outcome::Equal || result.outcome == Outcome::Differs;
}

QString OutcomeText(const WalkResult& walk, DeedKind kind) {
  const auto count = [&walk](Outcome outcome) {
    return std::ranges::count_if(walk.results, [outcome](const ParameterResult& result) {
      return result.outcome == outcome && result.index > 0;
    });
  };
  Account account;
  if (kind == DeedKind::Compared) {
    account.Add(count(Outcome::Equal), u"gleich"_s);
    account.Add(count(Outcome::Differs), u"verschieden"_s);
  } else {
    const auto moved = std::ranges::count_if(walk.results, Held);
    account.Add(moved, ValuesText(moved));
  }
  account.Add(count(Outcome::NotRead), u"nicht gelesen"_s);
  account.Add(count(Outcome::NotSent), u"nicht gesendet"_s);
  account.Add(count(Outcome::NoAddress), u"ohne Adresse"_s);
  if (std::ranges::any_of(walk.results,
                          [](const ParameterResult& result) { return result.index == 0 && result.Failed(); }))
    account.Say(kind == DeedKind::Sent ? u"Anlageart nicht gesendet"_s : u"Anlageart nicht gelesen"_s);
  return account.Text();
}

void TakeWalk(const WalkResult& walk, ParameterTable& table, Observation& observation) {
  for (const ParameterResult& result : walk.results) {
    // The plant type is no value, and a parameter of an unknown type nobody's.
    if (result.index == 0 || result.outcome == Outcome::PassedOver) continue;
    ObservedValue& value =
        observation.values.emplace_back(ObservedValue{result.index, Held(result), {}, StateOf(result)});
    if (result.outcome != Outcome::Differs) continue;
    value.before = result.pc;
    table.SetValue(result.index, result.controller, ValueSource::Received);
  }
  observation.entry.outcome = OutcomeText(walk, observation.entry.kind);
}

ObservedValue ObservedOf(const SafeValue& value, DeedKind kind) {
  ObservedValue observed{value.index, value.controller.has_value()};
  if (value.state == SafeState::NotRead) {
    observed.state = SafeStateText(value.state);
  } else if (kind == DeedKind::Compared && value.state == SafeState::Different) {
    observed.before = value.wanted;
    observed.state = SafeStateText(value.state);
  } else if (kind == DeedKind::SentSafely || kind == DeedKind::Restored) {
    // What was judged before, in an earlier writing of the same run, is not told again.
    const bool judged = value.chosen || value.state == SafeState::Deviating;
    if (judged) observed.before = value.before;
    if (judged && value.state != SafeState::Equal && value.state != SafeState::Different)
      observed.state = SafeStateText(value.state);
  }
  return observed;
}

void TakeRun(const SafeRun& run, ParameterTable& table, Observation& observation) {
  int received = 0;
  for (const SafeValue& value : run.values) {
    // The user ended it before this one's turn.
    if (run.aborted && !value.controller && value.reason.isEmpty()) continue;
    observation.values.push_back(ObservedOf(value, observation.entry.kind));
    if (!value.controller) continue;
    table.SetValue(value.index, *value.controller, ValueSource::Received);
    ++received;
  }
  if (observation.entry.kind != DeedKind::Received) {
    observation.entry.outcome = AccountText(run);
    return;
  }
  Account account;
  account.Add(received, ValuesText(received));
  account.Add(run.Count(SafeState::NotRead), SafeStateText(SafeState::NotRead));
  observation.entry.outcome = account.Text();
}

void TakeTable(const Deed& deed, const ParameterTable& table, Observation& observation) {
  int changed = 0;
  const bool comparable = deed.before.size() == static_cast<std::size_t>(table.ParCount);
  for (int i = 1; comparable && i < table.ParCount; ++i) {
    const ParameterRecord& record = table.Par[i];
    const ParameterValue& before = deed.before[static_cast<std::size_t>(i)];
    if (SameValue(record, before, {record.Wert, record.WertText})) continue;
    observation.values.push_back({i, false, before, {}});
    ++changed;
  }
  if (deed.kind == DeedKind::Saved || !comparable) {
    observation.entry.outcome =
        u"%1 %2"_s.arg(QString::number(table.ParCount - 1), ValuesText(table.ParCount - 1));
  } else if (changed == 0) {
    observation.entry.outcome = u"kein Wert geändert"_s;
  } else {
    observation.entry.outcome = u"%1 %2 geändert"_s.arg(QString::number(changed), ValuesText(changed));
  }
}

}  // namespace

std::optional<Observation> ObservationOf(const Deed& deed, const ParameterTable& table) {
  Observation observation;
  observation.entry.kind = deed.kind;
  observation.entry.remark = deed.file;
  const auto after = std::make_shared<ParameterTable>(table);
  if (deed.walk != nullptr) {
    TakeWalk(*deed.walk, *after, observation);
  } else if (deed.run != nullptr) {
    TakeRun(*deed.run, *after, observation);
  } else {
    TakeTable(deed, *after, observation);
  }
  // Something may have been written even where nothing is known to be; where nothing was read, there is
  // nothing.
  const bool reads = deed.kind == DeedKind::Received || deed.kind == DeedKind::Compared;
  if (reads && std::ranges::none_of(observation.values, &ObservedValue::held)) return std::nullopt;
  if (deed.aborted) observation.entry.outcome += u", abgebrochen"_s;
  observation.table = after;
  return observation;
}

}  // namespace kalivor::history
