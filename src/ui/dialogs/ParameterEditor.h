// What the two editors have in common.
#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <functional>

#include "ui/dialogs/Controls.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// Name, value and help text of a parameter, with "OK" and "Abbrechen". It does not hide by itself.
class ParameterEditor : public Form {
 public:
  /// "OK" and the Enter key.
  std::function<void()> OnOk;

  /// "Abbrechen", Escape and the window's frame.
  std::function<void()> OnCancel;

  void reject() override;

 protected:
  /// Begins with the name; the editor adds what stands below it to `layout_`.
  explicit ParameterEditor(const QString& name);

  /// Ends with the help text and the buttons.
  void AddHelpAndButtons();

  /// Shows these texts, with all sizes as they need them and the keyboard in the value. To be called last.
  void FillCommon(const QString& name, const QString& help, const QString& nr);

  QVBoxLayout* layout_;
  QLabel* labelName_;
  QLineEdit* textWert_;
  QLabel* labelHilfetext_ = nullptr;
  QLineEdit* nr_ = nullptr;
  OkCancel buttons_{};
};

}  // namespace kalivor::ui
