// The forms of the program as text: report on standard output, boxes and questions on standard error.
#pragma once

#include <functional>
#include <ostream>
#include <vector>

#include "base/Module1.h"
#include "core/ControllerValues.h"
#include "core/Forms.h"
#include "core/Report.h"
#include "platform/Events.h"
#include "platform/MessageBox.h"

namespace kalivor::cli {

class TextMainForm final : public MainForm {
 public:
  [[nodiscard]] platform::TreeView& Tree() override { return tree_; }
  void SetPlantSelectorVisible(bool) override {}
  void SetEnabled(bool) override {}
  void ShowState(const QString&) override {}
  void ShowAgain() override {}

 private:
  platform::TreeView tree_;
};

/// Shows no progress: the output is for other programs.
class NoProgress final : public ProgressForm {
 public:
  void Show(const QString&) override {}
  void Step(int, int, double) override {}
  void Hide() override {}
};

class NoEditorForms final : public EditorForms {
 public:
  void ShowNumberEditor(const NumberEdit&) override {}
  void ShowTextEditor(const TextEdit&) override {}
  void HideEditors() override {}
};

/// Writes the report as it grows; a line ends when the next one begins.
class TextReportView final : public ReportView {
 public:
  /// `out` null: keeps silent.
  explicit TextReportView(std::ostream* out) : out_(out) {}

  void SetVisible(bool) override {}
  void Clear() override {}
  void AppendLine(const QString& text) override;
  void ContinueLine(const QString& text) override;
  void SetOkEnabled(bool) override {}
  void SetAbortEnabled(bool) override {}

  /// Ends the last line.
  void Finish();

 private:
  std::ostream* out_;
  bool lineOpen_ = false;
};

/// Writes each box on a line of its own.
class TextMessageBox final : public platform::MessageBox {
 public:
  explicit TextMessageBox(std::ostream& err) : err_(err) {}
  void Show(const QString& text, const QString& title, Icon icon) override;

  /// How many boxes have been shown.
  [[nodiscard]] int Count() const { return count_; }

 private:
  std::ostream& err_;
  int count_ = 0;
};

/// Thrown out of a command when it asks a question that no answer is left for.
struct UnansweredQuestion {};

/// Answers questions in the order of the given answers (1 or 2).
class TextChoiceForm final : public ChoiceForm {
 public:
  TextChoiceForm(Module1& module, std::ostream& err, std::vector<qint16> answers)
      : module_(module), err_(err), answers_(std::move(answers)) {}

  void Show(const QString& question, const QString& first, const QString& second) override;

 private:
  Module1& module_;
  std::ostream& err_;
  std::vector<qint16> answers_;
  std::size_t asked_ = 0;
};

/// There is no window to serve: the one event is the user's interrupt, which requests an abort, once from
/// Expect() on: what is still done after it is not aborted as well.
class InterruptEvents final : public platform::Events {
 public:
  InterruptEvents(Module1& module, std::function<bool()> interrupted)
      : module_(module), interrupted_(std::move(interrupted)) {}

  void Expect() { told_ = false; }

  void ProcessPending() override {
    if (told_ || !interrupted_()) return;
    told_ = true;
    module_.Abbruch = kTrue;
  }
  void WaitForNext() override {}

 private:
  Module1& module_;
  std::function<bool()> interrupted_;
  bool told_ = false;
};

}  // namespace kalivor::cli
