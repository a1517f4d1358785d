// How far long work beside the transfers has come, with an abort.
#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "base/Module1.h"
#include "core/ControllerValues.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// "noch 12 s", from two minutes on "noch 3 min"; "" where it is negative: unknown.
[[nodiscard]] QString RemainingText(double remaining_s);

/// "Abbrechen", Esc and the window's frame request the abort; the work hides the dialog when it has ended.
class ProgressDialog final : public Form, public ProgressForm {
 public:
  /// `conversation` must outlive the dialog.
  explicit ProgressDialog(Conversation& conversation);

  // ProgressForm
  void Show(const QString& work) override;
  void Step(int done, int total, double remaining_s) override;
  void Hide() override { hide(); }

  void reject() override;

 private:
  Conversation& conversation_;
  QLabel* count_;
  QProgressBar* bar_;
  QLabel* remaining_;
  QPushButton* abort_;
};

}  // namespace kalivor::ui
