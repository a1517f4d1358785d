// Rebuilding the tables, lists and the tree from a given level downwards.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// Rebuilds from `level` down: 5 version table, 4 plant types, 3 definitions, values and marks, 2 tree.
/// From level 3 on the table's observer is told before. Errors pass as RuntimeError; the busy state is left
/// all the same. Those of level 5, and of everything that is rebuilt from there, are shown in a box instead;
/// so is an address list that cannot be read.
void Refresh(Core& core, int level);

/// The readers of the levels. ReadVersions() selects the first version, which rebuilds everything below; any
/// error on the way is shown in a box, and so is one of the address list. Appends the missing separator to
/// Inipath.
void ReadVersions(Core& core);
void ReadSelectedDefinitions(Core& core);
void ReadSelectedAddresses(Core& core);

/// Fills a list of plant types with the `names` of a version. Every blank closes an entry, so the blank in
/// front gives an empty first one, and what stands behind the last blank is not taken over.
void FillPlantTypes(SelectionList& list, const QString& names);

/// Sets parameters 1..ParCount to their standard values, checked or not.
void SetStandard(ParameterTable& table, ValueSource source = ValueSource::Standard);

/// The plant-type record takes the position of the plant-type list as its value, if it has an address.
void TakePlantType(Module1& module);

/// Handlers of the two lists' changes.
void ComboVN_Click(Core& core);
void ComboArt_Click(Core& core);

}  // namespace kalivor
