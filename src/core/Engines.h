// Receiving, sending and comparing the checked parameters.
#pragma once

#include "core/TransferReport.h"

namespace kalivor {

// The engines walk over the parameters in table order; those that the plant type hides are transferred as
// well. They append to `walk` what happened to each checked one, which the report is told at once. An abort
// request ends the walk behind the parameter at hand, a RuntimeError at once; what was appended by then
// stays.

/// Reads the checked parameters from the controller into the table.
void Receive(Core& core, WalkResult& walk);

/// Writes the checked parameters into the controller.
void Send(Core& core, WalkResult& walk);

/// Finds where the controller's values differ from the table's.
void Compare(Core& core, WalkResult& walk);

/// The controller's plant number; 0 when the plant-type record has no address, -1 when it cannot be read.
[[nodiscard]] qint16 ReadPlantNumber(Core& core);

}  // namespace kalivor
