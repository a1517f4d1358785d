#include "core/TransferReport.h"

#include <algorithm>

#include "core/ParameterTypes.h"
#include "core/TreeTexts.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

using Outcome = ParameterResult::Outcome;

QString FailureText(const ParameterRecord& record, const std::optional<int>& word) {
  QString text = u"Fehler bei: "_s + record.Variable;
  if (word) text += u'[' + QString::number(*word) + u']';
  return text;
}

void ReportDeviation(Core& core, const ParameterRecord& record, const ParameterResult& result) {
  const QString pc = ShownValue(record, result.pc);
  const QString controller = ShownValue(record, result.controller);
  core.report.Add(u"Änderung bei: "_s + record.Name);
  core.report.Add(u"   PC    : "_s + pc);
  core.report.Add(u"   Regler: "_s + controller);
}

}  // namespace

int WalkResult::Failures() const {
  return static_cast<int>(std::ranges::count_if(results, &ParameterResult::Failed));
}

int WalkResult::Deviations() const {
  return static_cast<int>(std::ranges::count(results, Outcome::Differs, &ParameterResult::outcome));
}

QString ShownValue(const ParameterRecord& record, const ParameterValue& value) {
  return TypeOf(record.Typ).kind == ValueKind::Text ? value.text : Scaled(record, value.number);
}

void ReportResult(Core& core, const ParameterResult& result) {
  const ParameterRecord& record = core.module.Par[result.index];
  switch (result.outcome) {
    case Outcome::Sent:
    case Outcome::Received:
    case Outcome::Equal:
    case Outcome::PassedOver:
      return;
    case Outcome::Differs:
      return ReportDeviation(core, record, result);
    case Outcome::NotSent:
      if (result.failedWord) core.box.Show(FailureText(record, result.failedWord));
      [[fallthrough]];
    case Outcome::NotRead:
      return core.report.Add(FailureText(record, result.failedWord));
    case Outcome::NoAddress:
      core.report.Add(u"Warnung: Variabel <"_s + record.Variable + u"> nicht bekannt."_s);
      // Without the colon of the other failures, and with the name that the tree shows.
      return core.report.Add(u"Fehler bei "_s + record.Name);
  }
}

void ReportProgress(Core& core, const ParameterResult& result) {
  ReportResult(core, result);
  if (result.outcome != Outcome::NoAddress) core.report.AddC(u"."_s);
}

}  // namespace kalivor
