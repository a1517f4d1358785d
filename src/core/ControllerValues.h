// Reading the checked parameters into a value set, without touching the table.
#pragma once

#include "core/Core.h"
#include "core/Progress.h"
#include "core/ValueSets.h"

namespace kalivor {

/// Asks the controller for its version and, if it is the selected one, reads the checked parameters. Busy
/// meanwhile; nothing of the report, the tree or the table changes. A parameter that cannot be read, or that
/// has no address, stands in the set as not read; one of an unknown type is left out, and after an abort
/// request the rest. Without an answer, or with another version, there is no set. Does nothing while an
/// operation is under way (an error then). Throws RuntimeError as the engines do.
[[nodiscard]] SetResult ReadControllerValues(Core& core, ProgressForm& progress);

}  // namespace kalivor
