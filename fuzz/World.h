// The world that the fuzz targets work in: everything in memory, cheap to use again for the next input.
#pragma once

#include <memory>

#include "core/Wiring.h"
#include "fakes/FakeClock.h"
#include "fakes/NullForms.h"

namespace kalivor::fuzz {

/// A PC without a window, on the line that it is given.
struct World {
  explicit World(platform::SerialControl& line, platform::Clock& clock)
      : timers(clock), wiring(module, timers, line, {main, report, choice, editors, box, files, events}) {
    module.Inipath = QStringLiteral("ini/");
    choice.onShow = [this] { module.Antwort = 1; };
  }

  Module1 module;
  test::MemoryFiles files;
  test::PlainMainForm main;
  test::PlainReportView view;
  test::PlainChoiceForm choice;
  test::NoEditors editors;
  test::PlainMessageBox box;
  test::HookedEvents events;
  TH timers;
  Report report{module, view, events, timers};
  Wiring wiring;
  COM_T_frm& host = wiring.host;
  COM_A& controller = wiring.controller;
  Core& core = wiring.core;
};

/// The one without a line, made once: the tables are large. Each target has its own program, or its turn.
[[nodiscard]] inline std::unique_ptr<World> WorldWithoutLine() {
  static test::NoLine line;
  static test::FakeClock clock;
  return std::make_unique<World>(line, clock);
}

}  // namespace kalivor::fuzz
