// The pictures that are built into the program.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <array>

namespace kalivor::ui {

/// The program's icon in all its sizes.
[[nodiscard]] QIcon ProgramIcon();

/// The pictures of opening, saving and printing, in this order.
[[nodiscard]] std::array<QIcon, 3> CommandIcons();

/// The program's icon as a picture of `size` device-independent pixels, sharp on the screen of `scale` pixels
/// each.
[[nodiscard]] QPixmap Logo(int size, double scale);

}  // namespace kalivor::ui
