// A PC wired as the programs wire it, on any line, clock and files.
#pragma once

#include "commands/StartUp.h"
#include "core/Wiring.h"
#include "fakes/NullForms.h"

namespace kalivor::campaign {

/// Everything of one running program. `line`, `clock` and `files` must outlive it.
struct Pc {
  Module1 module;
  test::PlainMainForm main;
  test::PlainReportView view;
  test::PlainChoiceForm choice;
  test::NoEditors editors;
  test::PlainMessageBox box;
  test::HookedEvents events;
  TH timers;
  Report report;
  Wiring wiring;
  COM_T_frm& host = wiring.host;
  Core& core = wiring.core;

  Pc(platform::SerialControl& line, platform::Clock& clock, platform::FileSystem& files)
      : timers(clock),
        report(module, view, events, timers),
        wiring(module, timers, line, {main, report, choice, editors, box, files, events}) {}

  /// Reads the definitions that `module` names and configures the channel.
  void Start() {
    ConnectHandlers(core);
    StartUp(core);
  }

  /// Nothing is under way: no busy state, no flag, no open port.
  [[nodiscard]] bool Rests() const {
    return module.BusyDepth == 0 && module.Abbruch == kFalse && module.TreeUpdating == kFalse &&
           main.enabled && main.state == QStringLiteral("Ready") && main.tree.Visible() && view.okEnabled &&
           !view.abortEnabled && host.Ports[kSlot].Offen == kFalse;
  }
};

}  // namespace kalivor::campaign
