// Modeless windows that belong to another one without being its children.
#pragma once

#include <QWidget>

namespace kalivor::platform {

/// Keeps `window` above `owner` on the screen. As a child it would be disabled together with its owner. Only
/// once `owner` has been shown there is something to stay above.
void KeepAbove(QWidget& window, const QWidget& owner);

/// Shows `window` in front and with the keyboard, also when it was shown already.
void ShowInFront(QWidget& window);

}  // namespace kalivor::platform
