// What the program takes from the system that it runs on.
#pragma once

#include <memory>

#include "sim/Arguments.h"
#include "sim/Line.h"
#include "sim/LineModel.h"

namespace kalivor::sim {

class Host {
 public:
  /// From now on, whoever ends the program (Ctrl+C, a signal) asks it to end. One in a program, made before
  /// other threads start.
  Host();

  /// False: the system lets nobody ask.
  [[nodiscard]] bool Ready() const;

  /// Lets a request end the application's event loop. Call when there is an application.
  void QuitOnRequest() const;

  /// The line that `arguments` ask for, with `model` at its other end; a request ends its Run().
  [[nodiscard]] std::unique_ptr<Line> MakeLine(LineModel& model, const Arguments& arguments) const;

 private:
  int requests_;  // a descriptor that becomes readable, or -1
};

}  // namespace kalivor::sim
