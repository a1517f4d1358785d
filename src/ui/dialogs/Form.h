// What the modeless dialogs have in common.
#pragma once

#include <QDialog>

namespace kalivor::ui {

/// A dialog with the program's icon that stays above the window that it belongs to.
class Form : public QDialog {
 public:
  /// The window to stay above; it must outlive the form.
  void SetOwner(const QWidget& owner) { owner_ = &owner; }

  /// Shows the form above its owner, in front and with the keyboard, also when it was shown already.
  void ShowAboveOwner();

 protected:
  Form(const QString& name, const QString& title);

 private:
  const QWidget* owner_ = nullptr;
};

}  // namespace kalivor::ui
