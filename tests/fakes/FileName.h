// Names of files in tests that run on systems of either separator, and what file systems in memory share.
#pragma once

#include <QDir>
#include <QHash>
#include <QString>
#include <functional>

#include "platform/FileSystem.h"

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

/// The names of those that lie in `folder` itself; missing where there is nothing in it or below it.
template <typename Files>
[[nodiscard]] platform::FolderContent FolderOf(const Files& files, const QString& folder) {
  platform::FolderContent content{{}, QStringLiteral("Der Ordner ist nicht vorhanden."), true};
  QString beginning = FileName(folder).text;
  if (!beginning.endsWith(u'/')) beginning += u'/';
  for (const FileName& file : files.keys()) {
    if (!file.text.startsWith(beginning)) continue;
    if (content.missing) content = {};
    const QString name = file.text.sliced(beginning.size());
    if (!name.contains(u'/')) content.names.append(name);
  }
  return content;
}

/// A log that appends by calling a function.
class CalledLog final : public platform::LogFile {
 public:
  explicit CalledLog(std::function<QString(const QByteArray& bytes)> append) : append_(std::move(append)) {}
  [[nodiscard]] QString Append(const QByteArray& bytes) override { return append_(bytes); }

 private:
  std::function<QString(const QByteArray& bytes)> append_;
};

}  // namespace kalivor::test
