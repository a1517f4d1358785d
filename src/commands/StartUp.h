// Starting: reading the settings, wiring the handlers, building everything.
#pragma once

#include "core/Core.h"
#include "platform/SettingsStore.h"

namespace kalivor {

/// Reads the settings that are no window geometry. One that cannot be read is reported in a box and replaced
/// by its default. `programFolder` is the default of both folders.
void LoadSettings(Module1& module, const platform::SettingsStore& store, platform::MessageBox& box,
                  const QString& programFolder);

/// Stores the same.
void SaveSettings(const Module1& module, platform::SettingsStore& store);

/// Connects the two lists and the tree with their handlers. A RuntimeError of a handler passes to whoever
/// caused the change: the program's own operation, or the event boundary when it was the user. `core` must
/// outlive the lists and the tree.
void ConnectHandlers(Core& core);

/// The order of work after the main window is loaded: tables and tree, then the serial channel. Errors are
/// shown in a box.
void StartUp(Core& core);

}  // namespace kalivor
