// Applying the options dialog.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// What the dialog holds.
struct OptionsContent {
  int portPosition = -1;     ///< in the list COM1..COM8; -1 when none is selected
  int addressPosition = -1;  ///< in the list 0..255; -1 when none is selected
  QString tablePath;         ///< full path of the version table
  bool pathChanged = false;  ///< tablePath was changed since it was last read or applied
};

/// What the dialog shows when it opens; positions outside the lists become -1.
[[nodiscard]] OptionsContent OptionsOf(const Settings& settings);

/// Stores port, address and path, sets the line back to 9600 baud and, where the path was changed, reads
/// everything anew. A port that cannot be opened is not reported here. Without a selection the stored value
/// stays. Does nothing while an operation is under way.
/// Throws RuntimeError (InvalidArgument) for a path without folder; Inipath and Inifile stay as they were
/// then.
void ApplyOptions(Core& core, const OptionsContent& content);

/// Stores port `number` (1 to 8) and `address` (0 to 255) in the same way, and nothing else.
void ApplyConnection(Core& core, int number, qint16 address);

}  // namespace kalivor
