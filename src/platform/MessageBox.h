// The one door through which every message box passes.
#pragma once

#include <QString>

namespace kalivor::platform {

class MessageBox {
 public:
  enum class Icon { None, Information };

  virtual ~MessageBox() = default;

  /// Shows `text` with an OK button and returns when the user has pressed it. Lines of `text` are separated
  /// by CR LF; it is shown as it is, blanks and empty lines at its ends included. Without a title of its own
  /// the box has the program's name in its title bar.
  virtual void Show(const QString& text, const QString& title = QString(), Icon icon = Icon::None) = 0;

  /// Asks before something that cannot be taken back. `action` is the caption of the button that does it; the
  /// other one, "Abbrechen", is the one that Enter and Escape press. `text` as for Show(). False also where
  /// nobody can be asked.
  [[nodiscard]] virtual bool Confirm(const QString& text, const QString& action) {
    (void)text;
    (void)action;
    return false;
  }
};

}  // namespace kalivor::platform
