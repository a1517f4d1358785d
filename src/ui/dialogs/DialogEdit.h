// The editor of a numeric parameter.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <functional>

#include "core/Forms.h"

namespace kalivor::ui {

class DialogEdit final : public QDialog {
 public:
  DialogEdit();

  /// "OK" with what the dialog holds then; the dialog does not hide by itself.
  std::function<void(const NumberEdit& content)> OnOk;

  /// "Abbrechen", Escape and the window's frame.
  std::function<void()> OnCancel;

  void Fill(const NumberEdit& content);
  [[nodiscard]] NumberEdit Content() const;

  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void TakeStandard();

  QLabel* labelName_;
  QLineEdit* textWert_;
  QLineEdit* textVon_;
  QLineEdit* textBis_;
  QLineEdit* textStd_;
  QPushButton* commandStd_;
  std::vector<QLabel*> units_;
  QLabel* labelHilfetext_;
  QLineEdit* nr_;
  QLineEdit* treedex_;
};

}  // namespace kalivor::ui
