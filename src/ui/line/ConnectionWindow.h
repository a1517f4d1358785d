// The connection: which ports there are, which controllers answer, and why none does.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>

#include "commands/LineSearch.h"
#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"
#include "ui/line/BindingDialog.h"
#include "ui/line/PortModel.h"
#include "ui/list/ProgressDialog.h"

namespace kalivor::ui {

/// What the window works with. Everything must outlive it.
struct ConnectionSurroundings {
  Core& core;
  COM_T_frm& host;
  platform::PortDirectory& ports;
  platform::SettingsStore& settings;
  platform::EventGuard guard;  ///< runs what the user sets off
};

/// Looks at the ports twice a second while it is visible, but not while an operation has the line. Keeps its
/// place and columns in the settings, under "VerbindungPlatz", "VerbindungSpalten" and "VerbindungAntworten".
class ConnectionWindow final : public Form {
 public:
  explicit ConnectionWindow(ConnectionSurroundings surroundings);

  void Open();

  /// It takes input while the search is under way, and the dialog while nothing is.
  [[nodiscard]] ProgressDialog& Progress() { return progress_; }
  [[nodiscard]] BindingDialog& Binding() { return binding_; }

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// One line of the answers.
  struct Answer {
    platform::PortEntry port;
    FoundController found;
  };

  void BuildPorts();
  void BuildAnswers();
  void BuildLayout();
  void Connect(QPushButton* button, void (ConnectionWindow::*command)());
  void LookAtPorts();
  void ShowPort();
  void ShowCommands();
  void ToggleMarks();
  void Search();
  void ShowSearch();
  void ShowAnswers();
  void TakeOver();
  void TakeOver(int number, const Answer& answer);
  void Assign();
  /// The highlighted one; null where there is none.
  [[nodiscard]] const Answer* CurrentAnswer() const;
  [[nodiscard]] platform::PortEntry CurrentPort() const;

  ConnectionSurroundings surroundings_;
  ProgressDialog progress_;
  BindingDialog binding_;
  PortModel model_;
  QTimer timer_;
  LineSearch search_;
  std::vector<Answer> answers_;

  QLabel* summary_;
  QTableView* ports_;
  QLabel* remark_;
  QPushButton* find_;
  QCheckBox* everyAddress_;
  QPushButton* assign_;
  QLabel* result_;
  QTableWidget* answersTable_;
  QPlainTextEdit* findings_;
  QPushButton* takeOver_;
  QPushButton* close_;
};

}  // namespace kalivor::ui
