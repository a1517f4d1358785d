#include "core/ControllerValues.h"

#include "core/Busy.h"
#include "core/SafeTransfer.h"

using namespace Qt::StringLiterals;

namespace kalivor {

SetResult ReadControllerValues(Core& core, ProgressForm& form) {
  SetResult result;
  if (core.module.BusyDepth > 0) {
    result.error = u"Es wird noch gearbeitet; die Werte des Reglers wurden nicht gelesen."_s;
    return result;
  }
  const BusyGuard busy(core);
  SafeRun run = WantedOfTable(core.module, SafeKind::Compare);
  ReadWords(core, run, form);
  result.error = run.error;
  result.aborted = run.aborted;
  if (!result.Ok()) return result;
  core.OnDeed.Tell({.kind = DeedKind::Compared, .aborted = run.aborted, .run = &run});

  // Identity and order are those of the table.
  ValueSet table = TableValues(core.module);
  ValueSet& set = result.set;
  set.origin = Origin::Controller;
  set.name = u"Regler"_s;
  set.version = table.version;
  set.partial = true;
  for (const SafeValue& read : run.values) {
    if (run.aborted && !read.controller && read.reason.isEmpty()) continue;
    SetValue& value =
        set.values.emplace_back(std::move(table.values[static_cast<std::size_t>(read.index) - 1]));
    value.read = read.controller.has_value();
    value.value = read.controller.value_or(ParameterValue());
  }
  return result;
}

}  // namespace kalivor
