#include "core/Refresh.h"

#include <algorithm>

#include "core/Busy.h"
#include "core/DefinitionFiles.h"
#include "core/TreeTexts.h"

namespace kalivor {
namespace {

// Fills the plant-type list. Every blank of `names` closes an entry, so the blank in front gives an empty
// first one, and what stands behind the last blank is not taken over.
void FillPlantTypes(platform::ListBox& list, const QString& names) {
  list.Clear();
  for (qsizetype start = 0, blank = names.indexOf(u' '); blank >= 0; blank = names.indexOf(u' ', start)) {
    list.Add(names.sliced(start, blank - start));
    start = blank + 1;
  }
}

void ReadParameters(Core& core) {
  Module1& module = core.module;
  ReadDefinitions(core);
  ReadAddressList(core);
  SetStandard(module);
  TakePlantType(core);
  // The last element keeps its mark on purpose: parameter 2000 starts unchecked.
  for (int i = 0; i < kLastParameter; ++i) {
    module.NodeState[i] = kFalse;
    module.ParNode[i] = kTrue;
  }
}

}  // namespace

bool Refresh(Core& core, int level) {
  const BusyGuard busy(core);
  // The editors' parameter would no longer be the one that they show.
  if (level >= 3) core.editors.HideEditors();
  if (level >= 5) {
    core.main.ComboVN().Clear();
    if (!ReadVersionTable(core)) return false;
    core.module.VersionIndex = 1;
  }
  if (level >= 4 && core.module.VersionIndex != 0) {
    FillPlantTypes(core.main.ComboArt(), core.module.VersionRow(core.module.VersionIndex).Anlagen);
    // This rebuilds levels 3 and 2 through the change handler; they follow once more below.
    core.main.ComboArt().Select(0);
    core.main.SetPlantSelectorVisible(core.main.ComboArt().Count() != 1);
  }
  if (level >= 3) ReadParameters(core);
  if (level >= 2) BuildTree(core);
  return true;
}

void SetStandard(Module1& module) {
  const int last = std::min<int>(module.ParCount, kLastParameter);
  for (int i = 1; i <= last; ++i) {
    module.Par[i].Wert = module.Par[i].Standard;
    module.Par[i].WertText = module.Par[i].StandardText;
  }
}

void TakePlantType(Core& core) {
  ParameterRecord& plantType = core.module.Par[0];
  if (!plantType.VarAdresse.isEmpty()) plantType.Wert = core.main.ComboArt().Position();
}

void ComboVN_Click(Core& core) {
  core.module.VersionIndex = static_cast<qint16>(core.main.ComboVN().Position() + 1);
  Refresh(core, 4);
}

void ComboArt_Click(Core& core) {
  Refresh(core, 3);
}

}  // namespace kalivor
