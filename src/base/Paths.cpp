#include "base/Paths.h"

#include <QDir>

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

}  // namespace kalivor
