#include "core/Refresh.h"

#include <algorithm>

#include "base/Paths.h"
#include "core/Busy.h"
#include "core/DefinitionFiles.h"
#include "core/TreeTexts.h"

namespace kalivor {
namespace {

void SelectFirstPlantType(Core& core) {
  Module1& module = core.module;
  FillPlantTypes(module.PlantTypeList, module.VersionRow(module.VersionIndex).Anlagen);
  // This rebuilds levels 3 and 2 through the change handler; they follow once more in Refresh().
  module.PlantTypeList.Select(0);
  module.PlantTypeOffered = module.PlantTypeList.Count() != 1;
  core.main.SetPlantSelectorVisible(module.PlantTypeOffered);
}

void ReadParameters(Core& core) {
  Module1& module = core.module;
  ReadSelectedDefinitions(core);
  ReadSelectedAddresses(core);
  SetStandard(module, ValueSource::Defined);
  TakePlantType(module);
  // The last element keeps its mark on purpose: parameter 2000 starts unchecked.
  for (int i = 0; i < kLastParameter; ++i) {
    module.NodeState[i] = kFalse;
    module.ParNode[i] = kTrue;
  }
}

}  // namespace

void Refresh(Core& core, int level) {
  const BusyGuard busy(core);
  if (level >= 3) {
    // The editors' parameter would no longer be the one that they show.
    core.editors.HideEditors();
    core.module.OnDefinitions.Tell(level >= 5 ? Rereading::Everything : Rereading::Definitions);
  }
  if (level >= 5) {
    // The version list's change handler has rebuilt the rest by then.
    ReadVersions(core);
    return;
  }
  if (level >= 4 && core.module.VersionIndex != 0) SelectFirstPlantType(core);
  if (level >= 3) ReadParameters(core);
  if (level >= 2) BuildTree(core);
}

void ReadVersions(Core& core) {
  Module1& module = core.module;
  module.VersionList.Clear();
  module.Inipath = WithSeparator(module.Inipath);
  const QString path = VersionTablePath(module);
  try {
    ReadVersionTable(module, core.files, path);
    module.VersionList.Select(0);
  } catch (const RuntimeError& error) {
    core.box.Show(VersionTableFailure(path, error));
  }
}

void ReadSelectedDefinitions(Core& core) {
  const VersionRecord& version = core.module.SelectedVersion();
  ReadDefinitions(core.module, core.files, DefinitionPath(core.module, version.DefDatei),
                  HasAddressList(version));
}

void ReadSelectedAddresses(Core& core) {
  const VersionRecord& version = core.module.SelectedVersion();
  if (!HasAddressList(version)) return;
  const QString path = DefinitionPath(core.module, version.AdrDatei);
  try {
    ReadAddressList(core.module, core.files, path);
  } catch (const RuntimeError& error) {
    core.box.Show(ReadFailure(path, error));
  }
}

void FillPlantTypes(SelectionList& list, const QString& names) {
  list.Clear();
  for (qsizetype start = 0, blank = names.indexOf(u' '); blank >= 0; blank = names.indexOf(u' ', start)) {
    list.Add(names.sliced(start, blank - start));
    start = blank + 1;
  }
}

void SetStandard(ParameterTable& table, ValueSource source) {
  const int last = std::min<int>(table.ParCount, kLastParameter);
  for (int i = 1; i <= last; ++i) {
    table.SetValue(i, {table.Par[i].Standard, table.Par[i].StandardText}, source);
  }
}

void TakePlantType(Module1& module) {
  if (module.Par[0].VarAdresse.isEmpty()) return;
  module.SetNumber(0, module.PlantTypeList.Position(), ValueSource::PlantType);
}

void ComboVN_Click(Core& core) {
  core.module.VersionIndex = static_cast<qint16>(core.module.VersionList.Position() + 1);
  Refresh(core, 4);
}

void ComboArt_Click(Core& core) {
  Refresh(core, 3);
}

}  // namespace kalivor
