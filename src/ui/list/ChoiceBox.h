// A drop-down list of commands.
#pragma once

#include <QComboBox>

namespace kalivor::ui {

/// Nothing is chosen on the way: keys open the list, and only Enter or a click there chooses. The mouse wheel
/// does nothing.
class ChoiceBox final : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace kalivor::ui
