// Random transfers in virtual time.
#pragma once

#include <QString>
#include <QtGlobal>

namespace kalivor::campaign {

/// Runs the installations of seeds first..first+count-1, each with one to three transfers, and prints what
/// they came to by kind of line and, for wrong values, by class. Stops at the first seed that fails. Returns
/// 0 when all was as specified, else 1.
int RunTransfers(quint64 first, qint64 count);

/// Transfers back to back on one undisturbed installation until so many hours have passed on its clock.
/// Prints what the process holds. Returns 0 when all was as specified and nothing grew, else 1.
int RunSimulatedEndurance(double hours);

}  // namespace kalivor::campaign
