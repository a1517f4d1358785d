// What the benchmarks work on: generated definitions, files in memory, and a PC without a window.
#pragma once

#include <sstream>

#include "cli/TextForms.h"
#include "core/Wiring.h"
#include "platform/Clock.h"

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

/// Three files and one written file, so that no disk is measured.
class MemoryFiles final : public platform::FileSystem {
 public:
  QByteArray versions = VersionTable(false);
  QByteArray definitions;
  QByteArray addresses;
  QByteArray values;

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 largest_bytes) override;
  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override;
};

/// A line without anything at its end.
class NoLine final : public platform::SerialControl {
 public:
  [[nodiscard]] bool Open(int, const QString&) override { return false; }
  void Close() override {}
  [[nodiscard]] bool IsOpen() const override { return false; }
  bool SetRts(bool) override { return false; }
  bool ClearInBuffer() override { return false; }
  bool ClearOutBuffer() override { return false; }
  void SetSThreshold(int) override {}
  void Output(const QByteArray&) override {}
  [[nodiscard]] int InBufferCount() override { return 0; }
  [[nodiscard]] QByteArray Input() override { return {}; }
  [[nodiscard]] platform::InputWait WaitForInput(double) override { return platform::InputWait::TimedOut; }
  [[nodiscard]] int CommEvent() override { return platform::kCommEventNone; }
};

/// Passes only where somebody sleeps, and then at once: takes the pauses of the line out.
class PauselessClock final : public platform::Clock {
 public:
  [[nodiscard]] double SecondsSinceMidnight() const override { return now_s_; }
  void Sleep(double seconds) override { now_s_ += seconds + 1e-6; }

 private:
  double now_s_ = 36000;
};

/// Everything of the command line program but its process.
struct Site {
  Site(platform::SerialControl& line, platform::Clock& clock);

  /// Reads the files as at the program's start.
  void Start();

  MemoryFiles files;
  Module1 module;
  std::ostringstream messages;
  cli::TextMainForm main;
  cli::NoEditorForms editors;
  cli::TextMessageBox box{messages};
  cli::TextChoiceForm choice{module, messages, {}};
  cli::InterruptEvents events{module, [] { return false; }};
  TH timers;
  cli::TextReportView view{nullptr};
  Report report{module, view, events, timers};
  Wiring wiring;
  COM_A& controller = wiring.controller;
  Core& core = wiring.core;
};

}  // namespace kalivor::bench
