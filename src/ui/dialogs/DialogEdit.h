// The editor of a numeric parameter.
#pragma once

#include <vector>

#include "core/Forms.h"
#include "ui/dialogs/ParameterEditor.h"

namespace kalivor::ui {

class DialogEdit final : public ParameterEditor {
 public:
  DialogEdit();

  void Fill(const NumberEdit& content);
  [[nodiscard]] NumberEdit Content() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void TakeStandard();

  QLineEdit* textVon_;
  QLineEdit* textBis_;
  QLineEdit* textStd_;
  QPushButton* commandStd_;
  std::vector<QLabel*> units_;
  QLineEdit* treedex_;
};

}  // namespace kalivor::ui
