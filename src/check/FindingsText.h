// Findings as the user reads them.
#pragma once

#include <QString>
#include <vector>

#include "check/DefinitionCheck.h"

namespace kalivor {

/// "Fehler" or "Warnung".
[[nodiscard]] QString SeverityText(const Finding& finding);

/// "3 Fehler, 12 Warnungen in 4 Dateien"; kinds that do not occur are left out. "Keine Beanstandungen" where
/// there are no findings.
[[nodiscard]] QString SummaryOf(const std::vector<Finding>& findings);

}  // namespace kalivor
