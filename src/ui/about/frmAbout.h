// The about box.
#pragma once

#include <QDialog>
#include <functional>

namespace kalivor::ui {

class frmAbout final : public QDialog {
 public:
  /// `systemInformation` is what the button for it does.
  frmAbout(QWidget* owner, const std::function<void()>& systemInformation);
};

/// "Version 1.2.3", the version of the program.
[[nodiscard]] QString VersionText();

}  // namespace kalivor::ui
