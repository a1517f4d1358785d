#include "base/Paths.h"

#include <QDir>

#include "platform/RuntimeError.h"

namespace kalivor {

bool IsSeparator(QChar c) {
  return c == u'/' || c == u'\\';
}

QChar SeparatorFor(QStringView directory) {
  if (directory.contains(u'\\') && !directory.contains(u'/')) return u'\\';
  return QDir::separator();
}

QString WithSeparator(const QString& directory) {
  if (!directory.isEmpty() && IsSeparator(directory.back())) return directory;
  return directory + SeparatorFor(directory);
}

PathParts SplitPath(const QString& path) {
  qsizetype end = path.size();
  while (end > 0 && !IsSeparator(path.at(end - 1)))
    --end;
  if (end == 0) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
  return {path.left(end), path.sliced(end)};
}

}  // namespace kalivor
