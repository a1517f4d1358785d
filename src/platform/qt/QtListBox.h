// A drop-down list on the screen.
#pragma once

#include <QComboBox>

#include "platform/ListBox.h"
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

class QtListBox final : public ListBox {
 public:
  /// `widget` must outlive the adapter and be changed by nobody else. `guard` runs OnChange after a change by
  /// the user.
  QtListBox(QComboBox& widget, EventGuard guard);

  void Clear() override;
  void Add(const QString& text) override;
  [[nodiscard]] int Count() const override;
  [[nodiscard]] QString Text(int position) const override;
  [[nodiscard]] int Position() const override { return position_; }
  void Select(int position) override;

 private:
  void UserSelected(int position);
  void ShowPosition();

  QComboBox& widget_;
  EventGuard guard_;
  int position_ = -1;  // the widget's own is its display only
};

}  // namespace kalivor::platform
