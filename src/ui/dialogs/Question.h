// What the two questions have in common.
#pragma once

#include <QBoxLayout>
#include <QLabel>

#include "base/Module1.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// A text with buttons below it; each answer is written into `Antwort` and hides the question.
class Question : public Form {
 protected:
  /// `module` must outlive the dialog. The buttons are to be added to `layout_`.
  Question(Module1& module, const QString& name, const QString& title);

  /// Shows `question` without waiting, `characters` characters wide at least, with the keyboard in `focus`. A
  /// line break is a pair of CR and LF in either order.
  void Ask(const QString& question, int characters, QWidget& focus);

  /// Nobody has asked while the dialog is hidden.
  void Answer(qint16 answer);

  QVBoxLayout* layout_;

 private:
  Module1& module_;
  QLabel* label1_;
};

}  // namespace kalivor::ui
