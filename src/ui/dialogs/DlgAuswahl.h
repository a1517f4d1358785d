// A question with two alternatives.
#pragma once

#include <QPushButton>

#include "core/Forms.h"
#include "ui/dialogs/Question.h"

namespace kalivor::ui {

/// Its buttons write 1 or 2 into `Antwort` and hide it. Neither is a safe answer that closing the window
/// could stand for, so it cannot be closed otherwise; nor does a key answer it that was meant for another
/// window: no button has the focus until Tab gives it to one.
class DlgAuswahl final : public Question, public ChoiceForm {
 public:
  /// `module` must outlive the dialog.
  explicit DlgAuswahl(Module1& module);

  void Show(const QString& question, const QString& first, const QString& second) override;

  void reject() override {}

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QPushButton* button1_;
  QPushButton* button2_;
};

}  // namespace kalivor::ui
