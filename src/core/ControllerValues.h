// Reading the checked parameters into a value set, without touching the table.
#pragma once

#include "core/Core.h"
#include "core/ValueSets.h"

namespace kalivor {

/// What work beside the transfers shows while it lasts: a count, the remaining time and an abort.
class ProgressForm {
 public:
  virtual ~ProgressForm() = default;

  /// Shows the form; `work` says what is being done ("Regler lesen").
  virtual void Show(const QString& work) = 0;

  /// `done` of `total` are done; `remaining_s` seconds are left, negative where that cannot be told yet.
  /// Called at most ten times a second, and with the last one.
  virtual void Step(int done, int total, double remaining_s) = 0;

  virtual void Hide() = 0;
};

/// Asks the controller for its version and, if it is the selected one, reads the checked parameters. Busy
/// meanwhile; nothing of the report, the tree or the table changes. A parameter that cannot be read, or that
/// has no address, stands in the set as not read; one of an unknown type is left out, and after an abort
/// request the rest. Without an answer, or with another version, there is no set. Does nothing while an
/// operation is under way (an error then). Throws RuntimeError as the engines do.
[[nodiscard]] SetResult ReadControllerValues(Core& core, ProgressForm& progress);

}  // namespace kalivor
