// File dialogs on the screen.
#pragma once

#include "platform/FileDialogs.h"

namespace kalivor::platform {

/// "desc (*.a)|*.a|all (*.*)|*.*" as the toolkit writes it, each description followed by its pattern:
/// "desc (*.a) (*.a)" and "all (*.*) (*)".
[[nodiscard]] QStringList ToolkitFilters(const QString& filter);

class QtFileDialogs final : public FileDialogs {
 public:
  /// Dialogs stand above the active window. `native` asks for the desktop's own dialogs.
  explicit QtFileDialogs(bool native = true) : native_(native) {}

  [[nodiscard]] QString OpenFile(const QString& title, const QString& folder, const QString& filter) override;
  [[nodiscard]] QString SaveFile(const QString& title, const QString& filter) override;

 private:
  bool native_;
};

}  // namespace kalivor::platform
