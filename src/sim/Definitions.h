// Reading a controller version's definitions for the simulated controller.
#pragma once

#include <QString>

#include "base/Module1.h"
#include "platform/FileSystem.h"

namespace kalivor::sim {

/// Reads the version table that `module` names (Inipath, Inifile), selects the version `controller` (the
/// first one when empty) and reads its parameters and addresses. VersionIndex is set. Returns "" or a German
/// description of the failure in one line.
[[nodiscard]] QString LoadDefinitions(Module1& module, platform::FileSystem& files,
                                      const QString& controller);

}  // namespace kalivor::sim
