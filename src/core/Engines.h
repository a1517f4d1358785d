// Receiving, sending and comparing the checked parameters.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// What a walk over the parameters came to; the report holds the lines.
struct WalkResult {
  int failures = 0;    ///< parameters with a "Fehler bei" line
  int deviations = 0;  ///< parameters with an "Änderung bei" line
};

/// Reads the checked parameters from the controller into the table.
WalkResult Receive(Core& core);

/// Writes the checked parameters into the controller.
WalkResult Send(Core& core);

/// Reports where the controller's values differ from the table's.
WalkResult Compare(Core& core);

/// The controller's plant number; 0 when the plant-type record has no address, -1 when it cannot be read.
[[nodiscard]] qint16 ReadPlantNumber(Core& core);

}  // namespace kalivor
