// The busy state: entered by every long operation, left when the outermost one ends.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// Enters the busy state. Only the outermost call acts: it disables the main window, shows "Busy", makes the
/// report offer "Abbrechen" instead of "OK" and clears the abort request.
void ToBusy(Core& core);

/// Leaves it. Only the outermost call acts: the reverse of the above.
void FromBusy(Core& core);

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

}  // namespace kalivor
