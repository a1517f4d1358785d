// The busy state: entered by every long operation, left when the outermost one ends.
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

/// Busy for as long as it lives.
class BusyGuard {
 public:
  explicit BusyGuard(Core& core) : core_(core) { ToBusy(core_); }
  ~BusyGuard() { FromBusy(core_); }
  BusyGuard(const BusyGuard&) = delete;
  BusyGuard& operator=(const BusyGuard&) = delete;

 private:
  Core& core_;
};

/// Waiting for as long as it lives.
class WaitingGuard {
 public:
  explicit WaitingGuard(Core& core) : core_(core) { ToWaiting(core_); }
  ~WaitingGuard() { FromWaiting(core_); }
  WaitingGuard(const WaitingGuard&) = delete;
  WaitingGuard& operator=(const WaitingGuard&) = delete;

 private:
  Core& core_;
};

}  // namespace kalivor
