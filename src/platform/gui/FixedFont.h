// The font of everything that is laid out in columns.
#pragma once

#include <QFont>

namespace kalivor::platform {

/// "Lucida Console" where it is installed, else the platform's fixed-pitch font; in the size of the
/// application's font.
[[nodiscard]] QFont FixedFont();

}  // namespace kalivor::platform
