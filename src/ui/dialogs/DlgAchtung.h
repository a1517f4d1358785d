// A warning that is answered with yes or no.
#pragma once

#include <QPushButton>

#include "ui/dialogs/Question.h"

namespace kalivor::ui {

/// kept: nothing asks it at present; it is the form for questions of which one answer does harm.
/// "Ja" writes 1 into `Antwort`; "Nein", Escape and the window's frame write 0. Every answer hides it.
class DlgAchtung final : public Question {
 public:
  /// `module` must outlive the dialog.
  explicit DlgAchtung(Module1& module);

  /// Shows the question without waiting. A line break is a pair of CR and LF in either order.
  void Show(const QString& question);

  void reject() override { Answer(0); }

 private:
  QPushButton* cancelButton_;
};

}  // namespace kalivor::ui
