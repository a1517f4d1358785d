// What the file is called that a save writes beside the one it replaces.
#pragma once

#include <QString>

namespace kalivor::platform {

/// A name that cannot be guessed. The point hides it on some systems, and no dialog shows files of its
/// suffix.
[[nodiscard]] QString NewTemporaryName();

/// Matches all of these names, and some others.
[[nodiscard]] QString TemporaryPattern();

[[nodiscard]] bool IsTemporaryName(QStringView name);

}  // namespace kalivor::platform
