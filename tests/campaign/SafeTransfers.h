// Random safe transfers in virtual time.
#pragma once

#include <QtGlobal>

namespace kalivor::campaign {

/// Runs the installations of seeds first..first+count-1, each with one to three safe operations, and prints
/// what they came to by kind of line and, for wrong values, by class. Stops at the first seed that fails.
/// Returns 0 when nothing was wrong where nothing may be, else 1.
int RunSafeTransfers(quint64 first, qint64 count);

}  // namespace kalivor::campaign
