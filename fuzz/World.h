// The world that the fuzz targets work in: everything in memory, cheap to use again for the next input.
#pragma once

#include <QHash>
#include <QStringList>
#include <memory>

#include "core/Wiring.h"
#include "platform/plain/PlainTreeView.h"

namespace kalivor::fuzz {

class MemoryFiles final : public platform::FileSystem {
 public:
  QHash<QString, QByteArray> files;

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 largest_bytes) override {
    const auto found = files.constFind(path);
    if (found == files.constEnd()) return {{}, QStringLiteral("Datei nicht gefunden.")};
    if (found->size() > largest_bytes) return {{}, QStringLiteral("Die Datei ist zu groß.")};
    return {*found, {}};
  }

  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    files[path].replace(0, beginning.size(), beginning);
    return {};
  }
};

class PlainMainForm final : public MainForm {
 public:
  platform::PlainTreeView tree;
  bool plantSelectorVisible = true;
  bool enabled = true;

  [[nodiscard]] platform::TreeView& Tree() override { return tree; }
  void SetPlantSelectorVisible(bool visible) override { plantSelectorVisible = visible; }
  void SetEnabled(bool on) override { enabled = on; }
  void ShowState(const QString&) override {}
  void ShowAgain() override {}
};

class PlainReport final : public ReportForm {
 public:
  QStringList lines;

  void Show() override {}
  void Add(const QString& text) override { lines.append(text); }
  void AddC(const QString& text) override {
    if (lines.isEmpty()) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
    lines.last() += text;
  }
  void SetOkEnabled(bool) override {}
  void SetAbortEnabled(bool) override {}
};

/// Answers every question at once.
class PlainChoice final : public ChoiceForm {
 public:
  explicit PlainChoice(Module1& module) : module_(module) {}

  qint16 answer = 1;
  int asked = 0;

  void Show(const QString&, const QString&, const QString&) override {
    ++asked;
    module_.Antwort = answer;
  }

 private:
  Module1& module_;
};

class NoEditors final : public EditorForms {
 public:
  void ShowNumberEditor(const NumberEdit&) override {}
  void ShowTextEditor(const TextEdit&) override {}
  void HideEditors() override {}
};

class CountedBoxes final : public platform::MessageBox {
 public:
  int shown = 0;
  void Show(const QString&, const QString&, Icon) override { ++shown; }
};

class NoEvents final : public platform::Events {
 public:
  void ProcessPending() override {}
  void WaitForNext() override { throw RuntimeError(RuntimeError::Kind::MissingObject); }
};

/// Time that passes only while somebody waits.
class VirtualClock final : public platform::Clock {
 public:
  double now = 36000;

  [[nodiscard]] double SecondsSinceMidnight() const override { return now; }

  // The little more makes up for rounding: else a sleep shorter than the clock's steps would never end.
  void Sleep(double seconds) override {
    if (seconds > 0) now += seconds + 1e-9;
  }
};

/// No port can be opened.
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
  [[nodiscard]] platform::InputWait WaitForInput(double) override { return platform::InputWait::LineGone; }
  [[nodiscard]] int CommEvent() override { return platform::kCommEventNone; }
};

/// A PC without a window, on the line that it is given.
struct World {
  explicit World(platform::SerialControl& line, platform::Clock& clock)
      : timers(clock), wiring(module, timers, line, {main, report, choice, editors, box, files, events}) {
    module.Inipath = QStringLiteral("ini/");
  }

  Module1 module;
  MemoryFiles files;
  PlainMainForm main;
  PlainReport report;
  PlainChoice choice{module};
  NoEditors editors;
  CountedBoxes box;
  NoEvents events;
  TH timers;
  Wiring wiring;
  COM_T_frm& host = wiring.host;
  COM_A& controller = wiring.controller;
  Core& core = wiring.core;
};

/// The one without a line, made once: the tables are large. Each target has its own program, or its turn.
[[nodiscard]] inline std::unique_ptr<World> WorldWithoutLine() {
  static NoLine line;
  static VirtualClock clock;
  return std::make_unique<World>(line, clock);
}

}  // namespace kalivor::fuzz
