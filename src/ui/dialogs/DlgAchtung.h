// A warning that is answered with yes or no.
#pragma once

#include <QDialog>
#include <QLabel>

#include "base/Module1.h"

namespace kalivor::ui {

/// "Ja" writes 1 into `Antwort`; "Nein", Escape and the window's frame write 0. Every answer hides it.
class DlgAchtung final : public QDialog {
 public:
  /// `module` must outlive the dialog.
  explicit DlgAchtung(Module1& module);

  /// The window to stay above.
  void SetOwner(const QWidget& owner) { owner_ = &owner; }

  /// Shows the question without waiting. A line break is a pair of CR and LF in either order.
  void Show(const QString& question);

  void reject() override { Answer(0); }

 private:
  void Answer(qint16 answer);

  Module1& module_;
  const QWidget* owner_ = nullptr;
  QLabel* label1_;
  QPushButton* cancelButton_;
};

}  // namespace kalivor::ui
