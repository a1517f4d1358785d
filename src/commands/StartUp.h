// Starting: wiring the handlers, building everything.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// Connects the two lists and the tree with their handlers. A RuntimeError of a handler passes to whoever
/// caused the change: the program's own operation, or the event boundary when it was the user. `core` must
/// outlive the lists and the tree.
void ConnectHandlers(Core& core);

/// The order of work after the main window is loaded: tables and tree, then the serial channel. Errors are
/// shown in a box.
void StartUp(Core& core);

}  // namespace kalivor
