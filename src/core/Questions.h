// Asking the user a question with two alternatives.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// What a question returns that was given up because the session ends. The operation that asked stops then.
inline constexpr qint16 kNoAnswer = 0;

/// Shows the question and sleeps in the event loop until it is answered: 1 or 2, or kNoAnswer. The main
/// window is brought back to the front afterwards.
[[nodiscard]] qint16 AskChoice(Core& core, const QString& question, const QString& first,
                               const QString& second);

}  // namespace kalivor
