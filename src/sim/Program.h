// The program kalivor-sim without its main(): from arguments to exit status.
#pragma once

#include <QStringList>
#include <functional>
#include <memory>

#include "platform/FileSystem.h"
#include "sim/Arguments.h"
#include "sim/Line.h"
#include "sim/LineModel.h"

namespace kalivor::sim {

/// Exit status: done, or the input (options, definitions, files) is at fault.
inline constexpr int kDone = 0;
inline constexpr int kBadInput = 2;

/// Where lines go; both are to show them at once.
struct Console {
  std::function<void(const QString& line)> out;
  std::function<void(const QString& line)> error;
};

/// Makes the line that `arguments` ask for, with `model` at its other end.
using MakeLine = std::function<std::unique_ptr<Line>(LineModel& model, const Arguments& arguments)>;

/// Runs until the line ends, and returns the exit status.
[[nodiscard]] int Run(const QStringList& arguments, platform::FileSystem& files, const Console& console,
                      const MakeLine& makeLine);

}  // namespace kalivor::sim
