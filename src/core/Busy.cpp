#include "core/Busy.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// What the windows show of the busy state.
void Show(Core& core, bool busy) {
  core.main.SetEnabled(!busy);
  core.main.ShowState(busy ? u"Busy"_s : u"Ready"_s);
  core.report.SetOkEnabled(!busy);
  core.report.SetAbortEnabled(busy);
  core.module.Abbruch = kFalse;
}

}  // namespace

void ToBusy(Core& core) {
  if (core.module.BusyDepth++ == 0) Show(core, true);
}

void FromBusy(Core& core) {
  if (core.module.BusyDepth > 0) --core.module.BusyDepth;
  if (core.module.BusyDepth == 0) Show(core, false);
}

void ToWaiting(Core& core) {
  if (core.module.BusyDepth++ == 0) core.main.SetEnabled(false);
}

void FromWaiting(Core& core) {
  if (--core.module.BusyDepth == 0) core.main.SetEnabled(true);
}

qint16 AskChoice(Core& core, const QString& question, const QString& first, const QString& second) {
  if (core.module.SessionEnds) return kNoAnswer;
  core.module.Antwort = -1;
  core.choice.Show(question, first, second);
  while (core.module.Antwort == -1) {
    core.events.WaitForNext();
    if (core.module.SessionEnds) return kNoAnswer;
  }
  core.main.ShowAgain();
  return core.module.Antwort;
}

}  // namespace kalivor
