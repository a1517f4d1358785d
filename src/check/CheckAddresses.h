// Checking the addresses of parameters and the address list that they come from.
#pragma once

#include <QString>
#include <vector>

#include "check/CheckParameters.h"

namespace kalivor {

/// Checks the addresses that stand in the definition file `file` itself.
void CheckOwnAddresses(const CheckedDefinitions& definitions, const QString& file, Findings& findings);

/// Checks the address list `listFile` and the addresses that it gives to the parameters of `file`.
void CheckListedAddresses(const CheckedDefinitions& definitions, const QString& file, const CheckedText& list,
                          const QString& listFile, Findings& findings);

}  // namespace kalivor
