#include "platform/qt/QtListBox.h"

#include <QAbstractItemView>
#include <QSignalBlocker>
#include <QWheelEvent>

namespace kalivor::platform {

void DropDownList::wheelEvent(QWheelEvent* event) {
  if (view()->isVisible()) {
    QComboBox::wheelEvent(event);
  } else {
    event->ignore();
  }
}

QtListBox::QtListBox(QComboBox& widget, SelectionList& list, EventGuard guard)
    : widget_(widget), list_(list), guard_(std::move(guard)) {
  QObject::connect(&widget_, &QComboBox::currentIndexChanged, &widget_,
                   [this](int position) { UserSelected(position); });
  list_.OnShow = [this] { Show(); };
  Show();
}

QtListBox::~QtListBox() {
  list_.OnShow = nullptr;
}

// A list is only ever cleared or appended to. The widget selects the first entry that it gets by itself.
void QtListBox::Show() {
  const QSignalBlocker silent(widget_);
  if (list_.Count() < widget_.count()) widget_.clear();
  while (widget_.count() < list_.Count())
    widget_.addItem(list_.Text(widget_.count()));
  widget_.setCurrentIndex(list_.Position());
}

void QtListBox::UserSelected(int position) {
  if (widget_.isEnabled() && position >= 0) {
    guard_([this, position] { list_.Select(position); });
  } else {
    Show();
  }
}

}  // namespace kalivor::platform
