// What the user's actions on the parameter tree do.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// The number in a node's key: 0 for the root, the group's number, or the parameter's index.
[[nodiscard]] qint16 Nummer(Core& core, int node);

/// Collapsing is always recorded, expanding only while no editor is open.
void TreeView_Collapse(Core& core, int node);
void TreeView_Expand(Core& core, int node);

/// Stores the node's mark and hands it down to everything below; nothing is handed up.
void TreeView_NodeCheck(Core& core, int node);

/// Opens the editor of a parameter node.
void TreeView_NodeClick(Core& core, int node);

}  // namespace kalivor
