// Where a simulated controller can be reached.
#pragma once

#include <QString>
#include <chrono>

namespace kalivor::sim {

/// A line between the PC and the model of its other end, in real time.
class Line {
 public:
  /// How Run() ended.
  enum class End { Stopped, Unplugged, Failed };

  virtual ~Line() = default;

  /// Returns "" or a German description of the failure.
  [[nodiscard]] virtual QString Open() = 0;

  /// Makes `path` another name of the line. Returns "" or a German description of the failure.
  [[nodiscard]] virtual QString Link(const QString& path) = 0;

  /// What a PC opens; "" while closed.
  [[nodiscard]] virtual QString DeviceName() const = 0;

  /// Answers until the user ends the program or the line vanishes.
  [[nodiscard]] virtual End Run() = 0;

  /// Whoever has it open sees that the line is gone.
  virtual void Close() = 0;

  /// The time of the model: seconds that run evenly, whatever the user does to the clock.
  [[nodiscard]] static double Seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
  }
};

}  // namespace kalivor::sim
