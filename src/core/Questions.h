// Asking the user a question with two alternatives.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// Shows the question and sleeps in the event loop until it is answered: 1 or 2. The main window is brought
/// back to the front afterwards.
[[nodiscard]] qint16 AskChoice(Core& core, const QString& question, const QString& first,
                               const QString& second);

}  // namespace kalivor
