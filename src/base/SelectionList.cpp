#include "base/SelectionList.h"

#include "platform/RuntimeError.h"

namespace kalivor {

SelectionList& SelectionList::operator=(const SelectionList& other) {
  entries_ = other.entries_;
  position_ = other.position_;
  Show();
  return *this;
}

void SelectionList::Clear() {
  entries_.clear();
  position_ = -1;
  Show();
}

void SelectionList::Add(const QString& text) {
  entries_.append(text);
  Show();
}

QString SelectionList::Text(int position) const {
  return position >= 0 && position < Count() ? entries_.at(position) : QString();
}

void SelectionList::Select(int position) {
  if (position < 0 || position >= Count()) throw RuntimeError(RuntimeError::Kind::InvalidSelection);
  if (position == position_) return;
  position_ = position;
  Show();
  if (OnChange) OnChange();
}

}  // namespace kalivor
