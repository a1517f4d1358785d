// The pictures that are built into the program.
#pragma once

#include <QIcon>
#include <QPixmap>

namespace kalivor::ui {

/// The program's icon in all its sizes.
[[nodiscard]] QIcon ProgramIcon();

/// The same as a picture of `size` device-independent pixels, sharp on the screen of `scale` pixels each.
[[nodiscard]] QPixmap Logo(int size, double scale);

}  // namespace kalivor::ui
