// A simulated controller as definition files describe it.
#pragma once

#include <QString>
#include <optional>

#include "base/Module1.h"
#include "platform/FileSystem.h"
#include "sim/Controller.h"
#include "sim/Memory.h"

namespace kalivor::sim {

/// Reads the version table that `module` names (Inipath, Inifile), selects the version `controller` (the
/// first one when empty) and reads its parameters and addresses. Returns "" or a German description of the
/// failure in one line.
[[nodiscard]] QString LoadDefinitions(Module1& module, platform::FileSystem& files,
                                      const QString& controller);

/// A controller of one version with its memory, and one of the next version that may take its place.
struct Station {
  Module1 module;
  Memory memory;
  Memory otherMemory;
  std::optional<Controller> controller;
  std::optional<Controller> other;
};

/// Makes `station` the controller of version `version` (the first one of the table when empty) at `address`
/// that the definitions in `module` describe, with their standard values and plant number 0; the other
/// controller has the same. Returns "" or a German description of the failure in one line.
[[nodiscard]] QString SetUp(Station& station, platform::FileSystem& files, const QString& version,
                            int address);

}  // namespace kalivor::sim
