// A drop-down list on the screen.
#pragma once

#include <QComboBox>

#include "base/SelectionList.h"
#include "platform/qt/EventGuard.h"

namespace kalivor::platform {

/// The widget. The mouse wheel does nothing while the list is closed: a turn over the window would otherwise
/// reload the definitions.
class DropDownList final : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

/// Shows a list in the widget, and selects in it what the user selects there.
class QtListBox {
 public:
  /// `widget` and `list` must outlive the adapter, and nobody else may change the widget. `guard` runs the
  /// list's handler after a change by the user.
  QtListBox(QComboBox& widget, SelectionList& list, EventGuard guard);
  ~QtListBox();
  QtListBox(const QtListBox&) = delete;
  QtListBox& operator=(const QtListBox&) = delete;

 private:
  void Show();
  void UserSelected(int position);

  QComboBox& widget_;
  SelectionList& list_;
  EventGuard guard_;
};

}  // namespace kalivor::platform
