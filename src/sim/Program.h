// The program kalivor-sim without its main(): from arguments to exit status.
#pragma once

#include <QStringList>
#include <functional>

#include "platform/FileSystem.h"

namespace kalivor::sim {

/// Exit status: done, or the input (options, definitions, files) is at fault.
inline constexpr int kDone = 0;
inline constexpr int kBadInput = 2;

/// Where lines go; both are to show them at once.
struct Console {
  std::function<void(const QString& line)> out;
  std::function<void(const QString& line)> error;
};

/// Runs until `stopDescriptor` becomes readable or a fault unplugs the line, and returns the exit status.
[[nodiscard]] int Run(const QStringList& arguments, platform::FileSystem& files, const Console& console,
                      int stopDescriptor);

}  // namespace kalivor::sim
