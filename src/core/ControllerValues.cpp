#include "core/ControllerValues.h"

#include "core/Busy.h"
#include "core/ControllerValue.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// Why the connected controller's values are of no use; "" where they are.
QString ControllerFault(Core& core) {
  const Identification answer = core.controller.AskVersion(kSlot);
  core.module.ReglerVersion = answer.text;
  if (!answer.succeeded) return answer.text;
  const SelectionList& versions = core.module.VersionList;
  if (answer.text == versions.SelectedText()) return {};
  if (versions.Find(answer.text) < 0) return u"Unbekannte ReglerVersion: "_s + answer.text;
  return u"Andere ReglerVersion: "_s + answer.text + u"\r\nAusgewählt ist "_s + versions.SelectedText() +
         u'.';
}

// The checked parameters whose type is known.
std::vector<int> ToRead(const Module1& module) {
  std::vector<int> indices;
  for (int i = 1; i < module.ParCount; ++i) {
    if (module.ParNode[i] != kFalse && TypeOf(module.Par[i].Typ).kind != ValueKind::Unknown)
      indices.push_back(i);
  }
  return indices;
}

}  // namespace

SetResult ReadControllerValues(Core& core, ProgressForm& form) {
  const Module1& module = core.module;
  SetResult result;
  if (module.BusyDepth > 0) {
    result.error = u"Es wird noch gearbeitet; die Werte des Reglers wurden nicht gelesen."_s;
    return result;
  }
  const BusyGuard busy(core);
  Progress progress(core, form, u"Regler lesen"_s);
  result.error = ControllerFault(core);
  if (!result.Ok()) return result;

  // Identity and order are those of the table.
  ValueSet table = TableValues(module);
  ValueSet& set = result.set;
  set.origin = Origin::Controller;
  set.name = u"Regler"_s;
  set.version = table.version;
  set.partial = true;
  // The report tells of transfers alone.
  COM_A controller = core.controller.TellingFailuresTo([](const QString& /*text*/) {});
  const std::vector<int> indices = ToRead(module);
  progress.Begin(static_cast<int>(indices.size()));
  for (const int index : indices) {
    result.aborted = module.Abbruch != kFalse;
    if (result.aborted) break;
    const ParameterRecord& record = module.Par[index];
    SetValue& value = set.values.emplace_back(std::move(table.values[static_cast<std::size_t>(index) - 1]));
    ReadValue read{{false}, {}};
    if (!record.VarAdresse.isEmpty()) read = ReadController(controller, record, TypeOf(record.Typ));
    value.read = read.moved.complete;
    value.value = value.read ? read.value : ParameterValue();
    progress.Done();
  }
  return result;
}

}  // namespace kalivor
