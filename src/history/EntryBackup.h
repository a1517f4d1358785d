// The values of an entry as what a safe sending can bring back into the controller.
#pragma once

#include "base/Module1.h"
#include "core/BackupText.h"
#include "core/ValueSets.h"
#include "history/Entry.h"

namespace kalivor::history {

/// `values` are those of the entry. Their words are known where the selected definitions know the parameter
/// with this type, where the value can be coded, and where the file that it was kept in had room for all of a
/// text; what is not known is named in the backup without words, so that restoring counts it.
[[nodiscard]] Backup BackupOf(const Module1& module, const Entry& entry, const ValueSet& values);

}  // namespace kalivor::history
