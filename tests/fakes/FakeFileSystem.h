// Files in memory, each readable or failing with a given text.
#pragma once

#include <QDir>
#include <QHash>

#include "base/Windows1252.h"
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

class FakeFileSystem final : public platform::FileSystem {
 public:
  QHash<FileName, platform::FileContent> files;
  QStringList reads;  ///< every path that was asked for, in order, with "/" also where Windows has "\"

  /// Adds a file of windows-1252 text.
  void AddText(const QString& path, const QString& text) { files[path] = {BytesFromText(text), {}}; }

  QString writeError;  ///< what every Overwrite() fails with; "" for none

  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    if (!writeError.isEmpty()) return writeError;
    QByteArray& bytes = files[path].bytes;
    bytes.replace(0, beginning.size(), beginning);
    return {};
  }

  void AddFailure(const QString& path, const QString& error) { files[path] = {{}, error}; }

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 /*largest_bytes*/) override {
    reads.append(FileName(path).text);
    const auto found = files.constFind(path);
    return found == files.constEnd() ? platform::FileContent{{}, QStringLiteral("Datei nicht gefunden.")}
                                     : *found;
  }
};

}  // namespace kalivor::test
