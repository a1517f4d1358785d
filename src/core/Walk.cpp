#include "core/Walk.h"

using namespace Qt::StringLiterals;

namespace kalivor {

QString FailureText(const ParameterRecord& record, int word) {
  return u"Fehler bei: "_s + record.Variable + u'[' + QString::number(word) + u']';
}

bool ReportFailure(Core& core, const ParameterRecord& record) {
  core.report.Add(u"Fehler bei: "_s + record.Variable);
  return false;
}

bool ReportFailure(Core& core, const ParameterRecord& record, int word) {
  core.report.Add(FailureText(record, word));
  return false;
}

WalkResult Walk(Core& core, const std::function<bool(ParameterRecord&)>& handle) {
  Module1& module = core.module;
  WalkResult result;
  for (int i = 1; i < module.ParCount; ++i) {
    ParameterRecord& record = module.Par[i];
    if (module.ParNode[i] != kFalse) {
      if (record.VarAdresse.isEmpty()) {
        core.report.Add(u"Warnung: Variabel <"_s + record.Variable + u"> nicht bekannt."_s);
        core.report.Add(u"Fehler bei "_s + record.Name);
        ++result.failures;
      } else {
        if (!handle(record)) ++result.failures;
        core.report.AddC(u"."_s);
      }
    }
    if (module.Abbruch != kFalse) break;
  }
  return result;
}

}  // namespace kalivor
