// Definition files through the readers that the other programs use.
#include "sim/Definitions.h"

#include <QStringList>

#include "core/DefinitionFiles.h"
#include "platform/plain/PlainListBox.h"
#include "platform/plain/PlainTreeView.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

// The readers work on the core's collaborators. Apart from the lists and the box they do not touch them.

class NoMainForm final : public MainForm {
 public:
  [[nodiscard]] platform::ListBox& ComboVN() override { return versions_; }
  [[nodiscard]] platform::ListBox& ComboArt() override { return plants_; }
  [[nodiscard]] platform::TreeView& Tree() override { return tree_; }
  void SetPlantSelectorVisible(bool /*visible*/) override {}
  void SetEnabled(bool /*enabled*/) override {}
  void ShowState(const QString& /*text*/) override {}
  void ShowAgain() override {}

 private:
  platform::PlainListBox versions_;
  platform::PlainListBox plants_;
  platform::PlainTreeView tree_;
};

class NoReport final : public ReportForm {
 public:
  void Show() override {}
  void Add(const QString& /*text*/) override {}
  void AddC(const QString& /*text*/) override {}
  void SetOkEnabled(bool /*enabled*/) override {}
  void SetAbortEnabled(bool /*enabled*/) override {}
};

class NoChoice final : public ChoiceForm {
 public:
  void Show(const QString& /*question*/, const QString& /*first*/, const QString& /*second*/) override {}
};

class NoEditors final : public EditorForms {
 public:
  void ShowNumberEditor(const NumberEdit& /*content*/) override {}
  void ShowTextEditor(const TextEdit& /*content*/) override {}
  void HideEditors() override {}
};

class NoEvents final : public platform::Events {
 public:
  void ProcessPending() override {}
  void WaitForNext() override {}
};

class NoClock final : public platform::Clock {
 public:
  [[nodiscard]] double SecondsSinceMidnight() const override { return 0; }
  void Sleep(double /*seconds*/) override {}
};

class NoSerialControl final : public platform::SerialControl {
 public:
  [[nodiscard]] bool Open(int /*number*/, const QString& /*settings*/) override { return false; }
  void Close() override {}
  [[nodiscard]] bool IsOpen() const override { return false; }
  bool SetRts(bool /*raised*/) override { return false; }
  bool ClearInBuffer() override { return false; }
  bool ClearOutBuffer() override { return false; }
  void SetSThreshold(int /*characters*/) override {}
  void Output(const QByteArray& /*characters*/) override {}
  [[nodiscard]] int InBufferCount() override { return 0; }
  [[nodiscard]] QByteArray Input() override { return {}; }
  [[nodiscard]] platform::InputWait WaitForInput(double /*seconds*/) override {
    return platform::InputWait::LineGone;
  }
  [[nodiscard]] int CommEvent() override { return platform::kCommEventNone; }
};

// Keeps the boxes as lines.
class BoxLines final : public platform::MessageBox {
 public:
  QStringList lines;
  void Show(const QString& text, const QString& /*title*/, Icon /*icon*/) override {
    lines += text.trimmed().replace(u"\r\n"_s, u" | "_s);
  }
};

struct Workbench {
  explicit Workbench(Module1& module_, platform::FileSystem& files_) : module(module_), files(files_) {}

  Module1& module;
  platform::FileSystem& files;
  NoMainForm main;
  NoReport report;
  NoChoice choice;
  NoEditors editors;
  BoxLines box;
  NoEvents events;
  NoClock clock;
  NoSerialControl control;
  TH timers{clock};
  COM_T_frm host{module, control, timers};
  COM_A commands{module, host, main, report};
  Core core{module, main, report, choice, editors, box, files, events, commands};
};

QString SelectVersion(Workbench& bench, const QString& controller) {
  platform::ListBox& versions = bench.main.ComboVN();
  int position = 0;
  while (!controller.isEmpty() && position < versions.Count() && versions.Text(position) != controller) {
    ++position;
  }
  if (position >= versions.Count()) return u"Unbekannte Reglerversion: "_s + controller;
  versions.Select(position);
  bench.module.VersionIndex = static_cast<qint16>(position + 1);
  return {};
}

}  // namespace

QString LoadDefinitions(Module1& module, platform::FileSystem& files, const QString& controller) {
  Workbench bench(module, files);
  try {
    ReadVersionTable(bench.core);
    if (!bench.box.lines.isEmpty()) return bench.box.lines.join(u" | ");
    QString error = SelectVersion(bench, controller);
    if (!error.isEmpty()) return error;
    ReadDefinitions(bench.core);
    ReadAddressList(bench.core);
  } catch (const RuntimeError& error) {
    return u"Fehler beim Lesen der Definitionen: "_s + error.Description();
  }
  return bench.box.lines.join(u" | ");
}

}  // namespace kalivor::sim
