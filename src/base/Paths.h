// Folder separators: both kinds are understood on every platform.
#pragma once

#include <QString>

namespace kalivor {

[[nodiscard]] bool IsSeparator(QChar c);

/// The separator to append to `directory`: the kind that it uses already, else the platform's own.
[[nodiscard]] QChar SeparatorFor(QStringView directory);

/// `directory` with a separator at its end, appended when there is none. An empty text gets one as well.
[[nodiscard]] QString WithSeparator(const QString& directory);

/// A full path in two parts.
struct PathParts {
  QString folder;  ///< with the separator at its end
  QString file;
};

/// Splits behind the last separator. Throws RuntimeError (InvalidArgument) when there is none.
[[nodiscard]] PathParts SplitPath(const QString& path);

}  // namespace kalivor
