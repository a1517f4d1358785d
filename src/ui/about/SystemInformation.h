// Starting the operating system's system-information program.
#pragma once

#include <QString>
#include <functional>

#include "platform/MessageBox.h"
#include "platform/Registry.h"

namespace kalivor::ui {

/// Reads one value of the registry. A string ends at its first NUL; a 32-bit number becomes "&h" and its
/// eight hexadecimal digits. False, with `result` unchanged, when the key or the value cannot be read.
[[nodiscard]] bool GetKeyValue(platform::Registry& registry, platform::Registry::Hive hive,
                               const QString& keyPath, const QString& valueName, QString& result);

/// What starting needs of the system.
struct SystemInformation {
  platform::Registry* registry = nullptr;  ///< null where the system has none
  std::function<bool(const QString& path)> fileExists;
  std::function<void(const QString& program)> start;
};

/// Starts the program, or tells in a box that there is none.
void StartSysInfo(const SystemInformation& system, platform::MessageBox& box);

}  // namespace kalivor::ui
