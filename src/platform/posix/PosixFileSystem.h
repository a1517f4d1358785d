// Files of the computer.
#pragma once

#include "platform/FileSystem.h"
#include "platform/posix/FileCalls.h"

namespace kalivor::platform {

class PosixFileSystem final : public FileSystem {
 public:
  /// `calls` must outlive it.
  explicit PosixFileSystem(const FileCalls& calls = FileCalls::System()) : calls_(calls) {}

  [[nodiscard]] FileContent Read(const QString& path, qint64 largest_bytes = kLargestFile_bytes) override;
  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override;
  [[nodiscard]] QString Replace(const QString& path, const QByteArray& content) override;
  [[nodiscard]] FolderContent List(const QString& folder) override;
  [[nodiscard]] QString Remove(const QString& path) override;
  [[nodiscard]] OpenedLog OpenLog(const QString& path) override;

 private:
  const FileCalls& calls_;
};

}  // namespace kalivor::platform
