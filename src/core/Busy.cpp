#include "core/Busy.h"

using namespace Qt::StringLiterals;

namespace kalivor {

void ToBusy(Core& core) {
  if (core.module.BusyDepth++ > 0) return;
  core.main.SetEnabled(false);
  core.main.ShowState(u"Busy"_s);
  core.report.SetOkEnabled(false);
  core.report.SetAbortEnabled(true);
  core.module.Abbruch = kFalse;
}

void FromBusy(Core& core) {
  if (core.module.BusyDepth > 0) --core.module.BusyDepth;
  if (core.module.BusyDepth > 0) return;
  core.main.SetEnabled(true);
  core.main.ShowState(u"Ready"_s);
  core.report.SetOkEnabled(true);
  core.report.SetAbortEnabled(false);
  core.module.Abbruch = kFalse;
}

void ToWaiting(Core& core) {
  if (core.module.BusyDepth++ == 0) core.main.SetEnabled(false);
}

void FromWaiting(Core& core) {
  if (--core.module.BusyDepth == 0) core.main.SetEnabled(true);
}

}  // namespace kalivor
