#include "ui/main/Launch.h"

namespace kalivor::ui {

std::unique_ptr<Desktop> Launch(frmSplash& splash, const World& world, const RunSettings& run,
                                const std::function<void(Desktop&)>& loaded) {
  splash.ShowNow();
  auto desktop = std::make_unique<Desktop>(world, run);
  if (loaded) loaded(*desktop);
  desktop->Start();
  desktop->Show();
  splash.close();
  return desktop;
}

}  // namespace kalivor::ui
