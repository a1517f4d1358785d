#include "platform/plain/PlainListBox.h"

#include "platform/RuntimeError.h"

namespace kalivor::platform {

void PlainListBox::Clear() {
  entries_.clear();
  position_ = -1;
}

void PlainListBox::Add(const QString& text) {
  entries_.append(text);
}

int PlainListBox::Count() const {
  return static_cast<int>(entries_.size());
}

QString PlainListBox::Text(int position) const {
  return position >= 0 && position < Count() ? entries_.at(position) : QString();
}

int PlainListBox::Position() const {
  return position_;
}

void PlainListBox::Select(int position) {
  if (position < 0 || position >= Count()) throw RuntimeError(RuntimeError::Kind::InvalidSelection);
  if (position == position_) return;
  position_ = position;
  if (OnChange) OnChange();
}

}  // namespace kalivor::platform
