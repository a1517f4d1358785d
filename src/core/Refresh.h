// Rebuilding the tables, lists and the tree from a given level downwards.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// Rebuilds from `level` down: 5 version table, 4 plant types, 3 definitions, values and marks, 2 tree.
/// False where it stopped at level 5: the version list's change handler has rebuilt the rest by then.
/// Errors pass as RuntimeError; the busy state is left all the same.
bool Refresh(Core& core, int level);

/// Sets parameters 1..ParCount to their standard values, checked or not.
void SetStandard(Module1& module);

/// The plant-type record takes the position of the plant-type list as its value, if it has an address.
void TakePlantType(Core& core);

/// Handlers of the two lists' changes.
void ComboVN_Click(Core& core);
void ComboArt_Click(Core& core);

}  // namespace kalivor
