// Where a damaged file of the program's own is kept when a good one takes its place.
#pragma once

#include <QString>

#include "platform/FileSystem.h"

namespace kalivor {

/// "Auswahlen.json" becomes "Auswahlen.defekt.json".
[[nodiscard]] inline QString DamagedName(const QString& path) {
  return path.chopped(path.size() - path.lastIndexOf(u'.')) + QStringLiteral(".defekt") +
         path.sliced(path.lastIndexOf(u'.'));
}

/// Keeps `bytes` of the damaged file `path` beside it; those of an earlier damage give way. Returns "" or why
/// that is not possible, in German.
[[nodiscard]] inline QString SetAside(platform::FileSystem& files, const QString& path,
                                      const QByteArray& bytes) {
  return files.Replace(DamagedName(path), bytes);
}

}  // namespace kalivor
