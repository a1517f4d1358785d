// Files of the computer.
#pragma once

#include "platform/FileSystem.h"

namespace kalivor::platform {

/// Names in any characters and of any length: drives, network folders ("\\server\folder") and names relative
/// to the current folder. The names of devices (CON, COM1) name no files.
class Win32FileSystem final : public FileSystem {
 public:
  [[nodiscard]] FileContent Read(const QString& path, qint64 largest_bytes = kLargestFile_bytes) override;

  /// A file that another program holds open is tried again for a second.
  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override;
  [[nodiscard]] QString Replace(const QString& path, const QByteArray& content) override;
  [[nodiscard]] FolderContent List(const QString& folder) override;
  [[nodiscard]] QString Remove(const QString& path) override;

  /// Meanwhile others may read the file, but neither write nor replace it.
  [[nodiscard]] OpenedLog OpenLog(const QString& path) override;
};

}  // namespace kalivor::platform
