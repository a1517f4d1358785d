// The busy state: entered by every long operation, left when the outermost one ends; and waiting for an
// answer.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// Enters the busy state. Only the outermost call acts: it disables the main window, shows "Busy", makes the
/// report offer "Abbrechen" instead of "OK" and clears the abort request.
void ToBusy(Core& core);

/// Leaves it. Only the outermost call acts: the reverse of the above.
void FromBusy(Core& core);

/// The same for an operation that waits for an answer instead of working: the windows take no input, but
/// state and report stay as they are. What begins inside it is an inner operation.
void ToWaiting(Core& core);
void FromWaiting(Core& core);

/// Calls one function now, and the other at the end of its life.
template <void (*Enter)(Core&), void (*Leave)(Core&)>
class StateGuard {
 public:
  explicit StateGuard(Core& core) : core_(core) { Enter(core_); }
  ~StateGuard() { Leave(core_); }
  StateGuard(const StateGuard&) = delete;
  StateGuard& operator=(const StateGuard&) = delete;

 private:
  Core& core_;
};

using BusyGuard = StateGuard<ToBusy, FromBusy>;
using WaitingGuard = StateGuard<ToWaiting, FromWaiting>;

/// What a question returns that was given up because the session ends. The operation that asked stops then.
inline constexpr qint16 kNoAnswer = 0;

/// Shows a question with two alternatives and sleeps in the event loop until it is answered: 1 or 2, or
/// kNoAnswer. The main window is brought back to the front afterwards.
[[nodiscard]] qint16 AskChoice(Core& core, const QString& question, const QString& first,
                               const QString& second);

}  // namespace kalivor
