#include "platform/qt/QtListBox.h"

#include <QAbstractItemView>
#include <QSignalBlocker>
#include <QWheelEvent>

#include "platform/RuntimeError.h"

namespace kalivor::platform {

void DropDownList::wheelEvent(QWheelEvent* event) {
  if (view()->isVisible()) {
    QComboBox::wheelEvent(event);
  } else {
    event->ignore();
  }
}

QtListBox::QtListBox(QComboBox& widget, EventGuard guard) : widget_(widget), guard_(std::move(guard)) {
  QObject::connect(&widget_, &QComboBox::currentIndexChanged, &widget_,
                   [this](int position) { UserSelected(position); });
}

void QtListBox::Clear() {
  const QSignalBlocker silent(widget_);
  widget_.clear();
  position_ = -1;
}

void QtListBox::Add(const QString& text) {
  const QSignalBlocker silent(widget_);
  widget_.addItem(text);
  // The widget selects the first entry that it gets by itself.
  ShowPosition();
}

int QtListBox::Count() const {
  return widget_.count();
}

QString QtListBox::Text(int position) const {
  return widget_.itemText(position);
}

void QtListBox::Select(int position) {
  if (position < 0 || position >= Count()) throw RuntimeError(RuntimeError::Kind::InvalidSelection);
  if (position == position_) return;
  position_ = position;
  ShowPosition();
  if (OnChange) OnChange();
}

void QtListBox::UserSelected(int position) {
  if (position == position_) return;
  if (!widget_.isEnabled() || position < 0) {
    ShowPosition();
    return;
  }
  position_ = position;
  if (OnChange) guard_([this] { OnChange(); });
}

void QtListBox::ShowPosition() {
  const QSignalBlocker silent(widget_);
  widget_.setCurrentIndex(position_);
}

}  // namespace kalivor::platform
