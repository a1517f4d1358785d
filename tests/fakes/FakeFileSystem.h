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

  QString writeError;  ///< what everything that changes a file fails with; "" for none
  int goodWrites = 0;  ///< but so many of them succeed before
  int writes = 0;      ///< how many there were

  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    QString error = NextWrite();
    if (error.isEmpty()) files[path].bytes.replace(0, beginning.size(), beginning);
    return error;
  }

  [[nodiscard]] QString Replace(const QString& path, const QByteArray& content) override {
    QString error = NextWrite();
    if (error.isEmpty()) files[path] = {content, {}};
    return error;
  }

  [[nodiscard]] QString Remove(const QString& path) override {
    QString error = NextWrite();
    if (error.isEmpty()) files.remove(path);
    return error;
  }

  /// One that has a failure is that failure.
  [[nodiscard]] platform::FolderContent List(const QString& folder) override {
    const QString error = files.value(folder).error;
    return error.isEmpty() ? FolderOf(files, folder) : platform::FolderContent{{}, error};
  }

  /// Opening changes nothing.
  [[nodiscard]] platform::OpenedLog OpenLog(const QString& path) override {
    const platform::FileContent content = Read(path, 0);
    if (!content.Ok()) return {nullptr, content.error};
    return {std::make_unique<CalledLog>([this, path](const QByteArray& bytes) {
              QString error = NextWrite();
              if (error.isEmpty()) files[path].bytes += bytes;
              return error;
            }),
            {}};
  }

  void AddFailure(const QString& path, const QString& error) { files[path] = {{}, error}; }

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 /*largest_bytes*/) override {
    reads.append(FileName(path).text);
    const auto found = files.constFind(path);
    return found == files.constEnd()
               ? platform::FileContent{{}, QStringLiteral("Datei nicht gefunden."), true}
               : *found;
  }

 private:
  [[nodiscard]] QString NextWrite() {
    ++writes;
    return writeError.isEmpty() || goodWrites-- > 0 ? QString() : writeError;
  }
};

}  // namespace kalivor::test
