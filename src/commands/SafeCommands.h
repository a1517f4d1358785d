// The safe commands: their steps, for the window and for the command line.
#pragma once

#include <QString>

#include "commands/SafeStore.h"
#include "core/ValueSets.h"

namespace kalivor {

/// What the safe commands need besides the core.
struct SafeContext {
  Core& core;
  ProgressForm& progress;
  SafeStore& store;
};

// Each is busy while it works, and does nothing while another operation is under way: its run then has an
// error. RuntimeErrors pass.

/// Reads what there is for a run: for sending, receiving and checking the checked parameters, with the PC's
/// values wanted. Without a checked parameter the run has an error.
[[nodiscard]] SafeRun ReadToSend(const SafeContext& context);
[[nodiscard]] SafeRun ReadToReceive(const SafeContext& context);
[[nodiscard]] SafeRun ReadToVerify(const SafeContext& context);

/// The values of a backup are wanted. A backup of another version than the selected one, or of another plant
/// type, is an error that names both; what the definitions do not know is counted in `unknown`.
[[nodiscard]] SafeRun ReadToRestore(const SafeContext& context, const Backup& backup, int& unknown);

/// The unfinished sending: what it wanted, or what was there before it.
[[nodiscard]] SafeRun ReadToFinish(const SafeContext& context, const Sending& sending);
[[nodiscard]] SafeRun ReadToTakeBack(const SafeContext& context, const Sending& sending);

/// What `run` has written, back to what was there before.
[[nodiscard]] SafeRun ReadToTakeBack(const SafeContext& context, const SafeRun& run);

/// Writes what is chosen. What happened stands in the run.
void WriteChosen(const SafeContext& context, SafeRun& run);

/// Chooses exactly the values that failed, deviate or were not verified. Returns how many.
int ChooseFailed(SafeRun& run);

/// Gives the PC the controller's values of the chosen ones (ValueSource::Received) and rebuilds the tree.
/// Returns how many.
int TakeOverChosen(Core& core, SafeRun& run);

/// "Sicher senden", "Sicher empfangen", "Prüfen", "Wiederherstellen", "Zu Ende senden", "Zurücknehmen".
[[nodiscard]] QString SafeTitle(SafeKind kind);

/// The unfinished sending as the menu offers it: "12 von 40 Werten geschrieben".
[[nodiscard]] QString UnfinishedText(const ParameterTable& definitions, const Sending& sending);

}  // namespace kalivor
