// The one door through which every message box passes.
#pragma once

#include <QString>

namespace kalivor::platform {

class MessageBox {
 public:
  enum class Icon { None, Information };

  virtual ~MessageBox() = default;

  /// Shows `text` with an OK button and returns when the user has pressed it. Lines of `text` are separated
  /// by CR LF. An empty `title` stands for a box without title text.
  virtual void Show(const QString& text, const QString& title = QString(), Icon icon = Icon::None) = 0;
};

}  // namespace kalivor::platform
