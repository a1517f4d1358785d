#include "platform/qt/WindowPlacing.h"

#include <QWindow>

namespace kalivor::platform {

void KeepAbove(QWidget& window, const QWidget& owner) {
  (void)window.winId();  // makes the window handle
  window.windowHandle()->setTransientParent(owner.windowHandle());
}

void ShowInFront(QWidget& window) {
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace kalivor::platform
