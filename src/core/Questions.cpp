#include "core/Questions.h"

namespace kalivor {

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
