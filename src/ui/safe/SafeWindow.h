// Sending, receiving and restoring safely: what differs, and what became of it.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <functional>
#include <vector>

#include "commands/SafeCommands.h"
#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"
#include "ui/list/ExportMenu.h"
#include "ui/list/ProgressDialog.h"
#include "ui/safe/SafeModel.h"
#include "ui/safe/SafeView.h"

namespace kalivor::ui {

/// What the window works with. Everything must outlive it.
struct SafeSurroundings {
  Core& core;
  SafeStore& store;
  platform::SettingsStore& settings;
  platform::EventGuard guard;  ///< runs what the user sets off
  std::vector<ListExport> exports;
  const QWidget& main;              ///< below the progress until the window is shown
  std::function<void()> onWritten;  ///< there may be another backup
};

/// Reads first, with a progress, and is shown when there is something to decide; else a box says what there
/// is to say. No other window takes input while it is open. Keeps its place and columns in the settings,
/// under "SicherPlatz" and "SicherSpalten".
class SafeWindow final : public Form {
 public:
  explicit SafeWindow(SafeSurroundings surroundings);
  ~SafeWindow() override;
  SafeWindow(const SafeWindow&) = delete;
  SafeWindow& operator=(const SafeWindow&) = delete;

  // To be called inside the event guard.
  void Send();
  void Receive();
  void Restore(const Backup& backup);
  void Finish(const Sending& sending);
  void TakeBack(const Sending& sending);

  [[nodiscard]] ProgressDialog& Progress() { return progress_; }

  /// Nothing while it works.
  void reject() override;

 protected:
  void changeEvent(QEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void BuildTable();
  void BuildButtons();
  QPushButton* NewCommand(const QString& name, const QString& caption, const std::function<void()>& command);

  [[nodiscard]] SafeContext Context();
  void Begin(SafeRun run, int unknown = 0);
  void Show(SafePhase phase);
  void ShowChoice();
  void ShowAccount();
  void Do();
  void Write();
  void ShowWritten();
  void TakeBackRun();
  void Copy();

  SafeSurroundings surroundings_;
  SafeRun run_;
  int unknown_ = 0;  // values of a backup or a sending that the definitions do not know
  SafePhase phase_ = SafePhase::Choice;
  SafeModel model_;
  ProgressDialog progress_;

  QLabel* sentence_;
  QLabel* advice_;
  SafeView* view_;
  QLabel* backupLabel_;
  QLineEdit* backup_;
  QPushButton* all_ = nullptr;
  QPushButton* none_ = nullptr;
  QPushButton* export_ = nullptr;
  QPushButton* do_ = nullptr;
  QPushButton* repeat_ = nullptr;
  QPushButton* takeBack_ = nullptr;
  QPushButton* close_ = nullptr;
};

}  // namespace kalivor::ui
