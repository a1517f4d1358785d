// Saving the parameters' values to a file, and loading them.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// The image of a value file with all parameters of the table; `version` is the controller's.
[[nodiscard]] QByteArray ValueFileImage(const ParameterTable& table, const QString& version);

/// Writes all parameters, checked or not, to Dateiname. Records that a longer file holds behind them stay. A
/// failure is shown in a box; false then.
bool WriteValueFile(Core& core);

/// Reads Dateiname into the checked parameters, by variable name, and rebuilds the tree. Where the file
/// belongs to another controller version the user chooses whether to convert or to switch to it. A failure or
/// an unknown version is shown in a box; false then.
bool ReadValueFile(Core& core);

}  // namespace kalivor
