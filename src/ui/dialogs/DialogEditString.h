// The editor of a string parameter.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <functional>

#include "core/Forms.h"

namespace kalivor::ui {

class DialogEditString final : public QDialog {
 public:
  DialogEditString();

  /// "OK" with what the dialog holds then; the dialog does not hide by itself.
  std::function<void(const TextEdit& content)> OnOk;

  /// "Abbrechen", Escape and the window's frame.
  std::function<void()> OnCancel;

  void Fill(const TextEdit& content);
  [[nodiscard]] TextEdit Content() const;

  void reject() override;
  void setVisible(bool visible) override;

 private:
  void Limit(const QString& text);

  int limit_ = 0;   // characters that can be typed
  QString before_;  // the value before the present key
  QLabel* labelName_;
  QLineEdit* textWert_;
  QLabel* labelHilfetext_;
  QLineEdit* nr_;
};

}  // namespace kalivor::ui
