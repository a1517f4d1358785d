#include "ui/list/ChoiceBox.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace kalivor::ui {

void ChoiceBox::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_F4:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      showPopup();
      return;
    default:
      event->ignore();
  }
}

void ChoiceBox::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

}  // namespace kalivor::ui
