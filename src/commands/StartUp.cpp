#include "commands/StartUp.h"

#include "commands/EventBoundary.h"
#include "commands/TreeCommands.h"
#include "core/Refresh.h"

namespace kalivor {
void ConnectHandlers(Core& core) {
  core.module.VersionList.OnChange = [&core] { ComboVN_Click(core); };
  core.module.PlantTypeList.OnChange = [&core] { ComboArt_Click(core); };
  platform::TreeView& tree = core.main.Tree();
  tree.OnCollapse = [&core](int node) { TreeView_Collapse(core, node); };
  tree.OnExpand = [&core](int node) { TreeView_Expand(core, node); };
  tree.OnCheck = [&core](int node) { TreeView_NodeCheck(core, node); };
  tree.OnClick = [&core](int node) { TreeView_NodeClick(core, node); };
}

void StartUp(Core& core) {
  RunHandler(core.box, [&core] { Refresh(core, 5); });
  // A port that cannot be opened shows when it is first used.
  (void)core.controller.Configure(kSlot, kSettings9600);
}

}  // namespace kalivor
