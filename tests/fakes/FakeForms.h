// Forms, boxes and events that record what they are asked and answer as the test says.
#pragma once

#include <gtest/gtest.h>
#include <QStringList>
#include <functional>

#include "base/Module1.h"
#include "core/Forms.h"
#include "fakes/FakeTree.h"
#include "platform/Events.h"
#include "platform/MessageBox.h"

namespace kalivor::test {

class FakeMainForm final : public MainForm {
 public:
  FakeTree tree;
  bool plantSelectorVisible = true;
  bool enabled = true;
  QString state;
  int shownAgain = 0;

  [[nodiscard]] platform::TreeView& Tree() override { return tree; }
  void SetPlantSelectorVisible(bool visible) override { plantSelectorVisible = visible; }
  void SetEnabled(bool on) override { enabled = on; }
  void ShowState(const QString& text) override { state = text; }
  void ShowAgain() override { ++shownAgain; }
};

/// Keeps the lines as the report dialog would show them.
class FakeReportForm final : public ReportForm {
 public:
  QStringList lines;
  bool shown = false;
  bool okEnabled = true;
  bool abortEnabled = false;
  // A line or its continuation lets the window live: the moments at which an abort can arrive.
  std::function<void()> onLine;
  std::function<void()> onDot;

  void Show() override { shown = true; }
  void Add(const QString& text) override {
    lines.append(text);
    if (onLine) onLine();
  }
  void AddC(const QString& text) override {
    if (lines.isEmpty()) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
    lines.last() += text;
    if (onDot) onDot();
  }
  void SetOkEnabled(bool on) override { okEnabled = on; }
  void SetAbortEnabled(bool on) override { abortEnabled = on; }
};

/// Answers questions in the order given; a question without an answer left fails the test.
class FakeChoiceForm final : public ChoiceForm {
 public:
  explicit FakeChoiceForm(Module1& module) : module_(module) {}

  struct Question {
    QString question, first, second;
  };
  std::vector<Question> asked;
  std::vector<qint16> answers;

  void Show(const QString& question, const QString& first, const QString& second) override {
    asked.push_back({question, first, second});
    if (asked.size() > answers.size()) {
      ADD_FAILURE() << "unexpected question: " << question.toStdString();
      module_.Antwort = 1;
      return;
    }
    module_.Antwort = answers[asked.size() - 1];
  }

 private:
  Module1& module_;
};

class FakeEditorForms final : public EditorForms {
 public:
  std::vector<NumberEdit> numberEdits;
  std::vector<TextEdit> textEdits;
  int hidden = 0;

  void ShowNumberEditor(const NumberEdit& content) override { numberEdits.push_back(content); }
  void ShowTextEditor(const TextEdit& content) override { textEdits.push_back(content); }
  void HideEditors() override { ++hidden; }
};

/// Collects boxes. One that the test has not looked at when it ends fails the test.
class FakeMessageBox final : public platform::MessageBox {
 public:
  struct Box {
    QString text, title;
    Icon icon = Icon::None;
  };

  std::function<void()> onShow;  ///< runs while a box is open

  FakeMessageBox() = default;
  FakeMessageBox(const FakeMessageBox&) = delete;
  FakeMessageBox& operator=(const FakeMessageBox&) = delete;
  ~FakeMessageBox() override {
    for (const Box& box : shown_)
      ADD_FAILURE() << "unexpected box: " << box.text.toStdString();
  }

  void Show(const QString& text, const QString& title, Icon icon) override {
    shown_.push_back({text, title, icon});
    if (onShow) onShow();
  }

  /// A question fails the test when no answer is left for it.
  [[nodiscard]] bool Confirm(const QString& text, const QString& action) override {
    asked.push_back({text, action});
    if (asked.size() <= answers.size()) return answers[asked.size() - 1];
    ADD_FAILURE() << "unexpected question: " << text.toStdString();
    return false;
  }
  struct Question {
    QString text, action;
  };
  std::vector<Question> asked;
  std::vector<bool> answers;  ///< to the questions, in their order

  /// All boxes since the last call.
  [[nodiscard]] std::vector<Box> Take() { return std::exchange(shown_, {}); }

 private:
  std::vector<Box> shown_;
};

class FakeEvents final : public platform::Events {
 public:
  int processed = 0;
  std::function<void()> onProcess;

  void ProcessPending() override {
    ++processed;
    if (onProcess) onProcess();
  }
  void WaitForNext() override {
    ADD_FAILURE() << "waits for an event that no test sends";
    throw RuntimeError(RuntimeError::Kind::MissingObject);
  }
};

}  // namespace kalivor::test
