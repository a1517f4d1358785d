// The four transfer buttons.
#pragma once

#include "core/Engines.h"

namespace kalivor {

/// How a transfer command ended; the report holds the lines for the user.
struct TransferOutcome {
  bool transferred = false;            ///< the engine ran to its end
  WalkResult walk;                     ///< of the parameters, and of the plant type where that failed
  DeedKind kind = DeedKind::Received;  ///< what it came to: a sending may end in receiving
};

/// Receive and compare follow the controller: its plant type is taken over; receive also switches to its
/// version, compare refuses another one. Send asks the user where the two sides differ.
/// All return at once while another operation is under way. A RuntimeError inside adds the line of an abort
/// and passes on.
TransferOutcome CommandEmpfangen_Click(Core& core);
TransferOutcome CommandVergleichen_Click(Core& core);
TransferOutcome CommandSenden_Click(Core& core);

/// The same; `outcome` (an empty one) holds what had happened by then also where a RuntimeError passes on.
void RunReceive(Core& core, TransferOutcome& outcome);
void RunCompare(Core& core, TransferOutcome& outcome);
void RunSend(Core& core, TransferOutcome& outcome);

/// Sets all parameters of the table to their standard values, checked or not. No controller traffic.
void CommandStandard_Click(Core& core);

}  // namespace kalivor
