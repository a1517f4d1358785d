// Reading files as a whole.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalivor::platform {

/// What a file held, or why it could not be read.
struct FileContent {
  QByteArray bytes;
  QString error;  ///< German description of the failure; empty on success

  [[nodiscard]] bool Ok() const { return error.isEmpty(); }
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Files larger than this are refused: nothing the program reads comes near it.
  static constexpr qint64 kLargestFile_bytes = 256LL * 1024 * 1024;

  /// Reads a regular file. Directories, devices, pipes and files above kLargestFile_bytes are refused with a
  /// description, never read. Both "/" and "\" separate folders. Where the name does not exist as written,
  /// a single match that differs in case only is taken, folder by folder: definition tables are made on
  /// systems that do not tell the cases apart.
  [[nodiscard]] virtual FileContent Read(const QString& path) = 0;
};

}  // namespace kalivor::platform
