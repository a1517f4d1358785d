// Checking the addresses of parameters and the address list that they come from.
#pragma once

#include "check/CheckParameters.h"

namespace kalivor {

/// Checks the addresses that stand in the definition file itself.
void CheckOwnAddresses(const CheckedDefinitions& definitions, const FileFindings& findings);

/// Checks the address list and the addresses that it gives to the parameters of the definition file, whose
/// findings go to `findings`.
void CheckListedAddresses(const CheckedDefinitions& definitions, const FileFindings& findings,
                          const CheckedText& list);

}  // namespace kalivor
