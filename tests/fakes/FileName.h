// Names of files in tests that run on systems of either separator.
#pragma once

#include <QDir>
#include <QHash>
#include <QString>

namespace kalivor::test {

/// A text with "/" between its folders as it reads on this system.
[[nodiscard]] inline QString Native(const QString& text) {
  return QDir::toNativeSeparators(text);
}

/// The name of a file. On Windows both separators name the same one.
struct FileName {
  QString text;

  // From any text, as the paths of the program are.
  FileName(const QString& path) : text(QDir::fromNativeSeparators(path)) {}

  friend bool operator==(const FileName& a, const FileName& b) { return a.text == b.text; }
  friend size_t qHash(const FileName& name, size_t seed) { return qHash(name.text, seed); }
};

}  // namespace kalivor::test
