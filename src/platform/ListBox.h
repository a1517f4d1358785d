// A drop-down list: entries, one selected position, one change handler.
#pragma once

#include <QString>
#include <functional>

namespace kalivor::platform {

class ListBox {
 public:
  virtual ~ListBox() = default;

  /// Removes every entry and the selection (position -1). Does not run the handler.
  virtual void Clear() = 0;

  /// Appends an entry. Neither selects it nor runs the handler.
  virtual void Add(const QString& text) = 0;

  [[nodiscard]] virtual int Count() const = 0;

  /// The entry at `position`, counted from 0; "" outside the list.
  [[nodiscard]] virtual QString Text(int position) const = 0;

  /// The selected position, -1 when none is.
  [[nodiscard]] virtual int Position() const = 0;

  /// Selects an entry and runs OnChange once if the position changed by it.
  /// Throws RuntimeError (InvalidSelection) outside 0..Count()-1; nothing is changed then.
  virtual void Select(int position) = 0;

  /// The selected entry, "" when none is.
  [[nodiscard]] QString SelectedText() const { return Text(Position()); }

  /// Runs once for every change of the position, by the user or by Select().
  std::function<void()> OnChange;
};

}  // namespace kalivor::platform
