// The main window's place among the settings.
#pragma once

#include <QRect>
#include <QWidget>

#include "platform/MessageBox.h"
#include "platform/SettingsStore.h"

namespace kalivor::ui {

/// Places are stored in twips, 1440 to an inch, as text.
inline constexpr double kTwipsPerInch = 1440;

/// Position of the window with its frame and size without it, from the keys "MainLeft", "MainTop",
/// "MainWidth" and "MainHeight", in device-independent pixels of a screen of `dpi` pixels to an inch. A text
/// that is no number is reported in a box and replaced by its default: 1000, 1000, 6500, 6500.
[[nodiscard]] QRect LoadGeometry(const platform::SettingsStore& store, platform::MessageBox& box, double dpi);

void SaveGeometry(platform::SettingsStore& store, const QRect& place, double dpi);

/// `place` moved, and made smaller if need be, until it lies on one of the screens with its frame; unchanged
/// when enough of its upper edge to take hold of lies on one already and it is not larger than all of them.
/// `screens` are the areas that windows may use; the first is the main one.
[[nodiscard]] QRect OnScreen(const QRect& place, const QList<QRect>& screens);

}  // namespace kalivor::ui
