// The parts of a running program, wired together: the one place where that is done.
#pragma once

#include "core/Core.h"

namespace kalivor {

/// The channel, the controller's commands and the core, on one set of tables and one line. A failure of the
/// line is a line of the report.
struct Wiring {
  /// Everything must outlive the wiring.
  Wiring(Module1& module, TH& timers, platform::SerialControl& line, const Surroundings& world)
      : host(module, line, timers),
        controller(module, module, host, [&report = world.report](const QString& text) { report.Add(text); }),
        core{world, module, controller, timers.GetClock()} {
    host.Exchanges.NameVersionsOf(module);
  }
  Wiring(const Wiring&) = delete;
  Wiring& operator=(const Wiring&) = delete;

  COM_T_frm host;
  COM_A controller;
  Core core;
};

}  // namespace kalivor
