// The splash screen: what there is to see while the definitions load.
#pragma once

#include <QWidget>

namespace kalivor::ui {

class frmSplash final : public QWidget {
 public:
  frmSplash();

  /// Shows it in the middle of the screen and paints it as far as the window system is ready.
  void ShowNow();
};

}  // namespace kalivor::ui
