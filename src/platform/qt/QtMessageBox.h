// Message boxes on the screen.
#pragma once

#include <functional>

#include "platform/MessageBox.h"

namespace kalivor::platform {

class QtMessageBox final : public MessageBox {
 public:
  /// Runs before a box appears; the splash screen goes away here, as it would cover the box.
  std::function<void()> BeforeShow;

  /// Without a title the box carries the application's name.
  void Show(const QString& text, const QString& title, Icon icon) override;

  [[nodiscard]] bool Confirm(const QString& text, const QString& action) override;
};

}  // namespace kalivor::platform
