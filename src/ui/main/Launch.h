// The order of a start, which the user sees.
#pragma once

#include <functional>
#include <memory>

#include "ui/about/frmSplash.h"
#include "ui/main/Desktop.h"

namespace kalivor::ui {

/// Starts the program: shows the splash screen, loads the main window (settings and place), reads tables and
/// definitions, tries the port, shows the main window and takes the splash screen away. `loaded` runs between
/// loading and reading.
[[nodiscard]] std::unique_ptr<Desktop> Launch(frmSplash& splash, const World& world, const RunSettings& run,
                                              const std::function<void(Desktop&)>& loaded = {});

}  // namespace kalivor::ui
