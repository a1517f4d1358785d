// What the benchmarks work on: generated definitions, files in memory, and a PC without a window.
#pragma once

#include "core/Wiring.h"
#include "fakes/FakeClock.h"
#include "fakes/NullForms.h"

namespace kalivor::bench {

inline constexpr int kGroups = 40;

/// The name of the generated variable `number`, as it stands in definitions and address lists.
[[nodiscard]] QString VariableName(int number);

/// The generated files. The version table knows the version "AB1-123.4" without address list, or with one.
[[nodiscard]] QByteArray VersionTable(bool withAddressList);

/// `parameters` int parameters in kGroups groups.
[[nodiscard]] QByteArray DefinitionFile(int parameters);

/// An address list of `lines` lines; the variables of a full definition file are spread over it.
[[nodiscard]] QByteArray AddressList(int lines);

/// The paths of the files that a site reads; the folder that it has stored ends with a separator.
inline const QString kVersionTable = QStringLiteral("bench/VF.INI");
inline const QString kDefinitions = QStringLiteral("bench//DEF.TXT");

/// A PC without windows and disk, on the line that it is given.
struct Site {
  Site(platform::SerialControl& line, platform::Clock& clock);

  /// Reads the files as at the program's start.
  void Start();

  test::MemoryFiles files;
  Module1 module;
  test::PlainMainForm main;
  test::NoEditors editors;
  test::PlainMessageBox box;
  test::PlainChoiceForm choice;
  test::HookedEvents events;
  TH timers;
  test::PlainReportView view;
  Report report{module, view, events, timers};
  Wiring wiring;
  COM_A& controller = wiring.controller;
  Core& core = wiring.core;
};

}  // namespace kalivor::bench
