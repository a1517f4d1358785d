// Files in memory, each readable or failing with a given text.
#pragma once

#include <QHash>

#include "base/Windows1252.h"
#include "fakes/FileName.h"
#include "platform/FileSystem.h"

namespace kalivor::test {

class FakeFileSystem final : public platform::FileSystem {
 public:
  QHash<FileName, platform::FileContent> files;
  QStringList reads;  ///< every path that was asked for, in order, with "/" also where Windows has "\"

  /// Adds a file of windows-1252 text.
  void AddText(const QString& path, const QString& text) { files[path] = {BytesFromText(text), {}}; }

  QString writeError;  ///< what every Overwrite() and Replace() fails with; "" for none

  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    if (!writeError.isEmpty()) return writeError;
    QByteArray& bytes = files[path].bytes;
    bytes.replace(0, beginning.size(), beginning);
    return {};
  }

  [[nodiscard]] QString Replace(const QString& path, const QByteArray& content) override {
    if (writeError.isEmpty()) files[path] = {content, {}};
    return writeError;
  }

  void AddFailure(const QString& path, const QString& error) { files[path] = {{}, error}; }

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 /*largest_bytes*/) override {
    reads.append(FileName(path).text);
    const auto found = files.constFind(path);
    return found == files.constEnd()
               ? platform::FileContent{{}, QStringLiteral("Datei nicht gefunden."), true}
               : *found;
  }
};

}  // namespace kalivor::test
