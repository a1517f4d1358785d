// A list of texts of which one may be selected, as the program knows it; a list box on the screen shows it.
#pragma once

#include <QStringList>
#include <functional>

namespace kalivor {

/// Copies keep entries and position only: handler and view stay with the list that they were given to.
class SelectionList {
 public:
  SelectionList() = default;
  ~SelectionList() = default;
  SelectionList(const SelectionList& other) : entries_(other.entries_), position_(other.position_) {}
  SelectionList& operator=(const SelectionList& other);

  /// Removes every entry and the selection (position -1). Does not run the handler.
  void Clear();

  /// Appends an entry. Neither selects it nor runs the handler.
  void Add(const QString& text);

  [[nodiscard]] int Count() const { return static_cast<int>(entries_.size()); }

  /// The entry at `position`, counted from 0; "" outside the list.
  [[nodiscard]] QString Text(int position) const;

  /// The first position of `text`, -1 when there is none.
  [[nodiscard]] int Find(const QString& text) const { return static_cast<int>(entries_.indexOf(text)); }

  /// The selected position, -1 when none is.
  [[nodiscard]] int Position() const { return position_; }

  /// The selected entry, "" when none is.
  [[nodiscard]] QString SelectedText() const { return Text(position_); }

  /// Selects an entry and runs OnChange once if the position changed by it.
  /// Throws RuntimeError (InvalidSelection) outside 0..Count()-1; nothing is changed then.
  void Select(int position);

  /// The handler: runs once for every change of the position, whoever changes it.
  std::function<void()> OnChange;

  /// The view: runs after each change of entries or position, before the handler.
  std::function<void()> OnShow;

 private:
  void Show() const {
    if (OnShow) OnShow();
  }

  QStringList entries_;
  int position_ = -1;
};

}  // namespace kalivor
