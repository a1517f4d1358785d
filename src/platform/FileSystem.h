// Reading and overwriting files as a whole.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalivor::platform {

/// What a file held, or why it could not be read.
struct FileContent {
  QByteArray bytes;
  QString error;         ///< German description of the failure; empty on success
  bool missing = false;  ///< the failure is that there is no such file

  [[nodiscard]] bool Ok() const { return error.isEmpty(); }
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Files larger than this are refused: nothing the program reads comes near it.
  static constexpr qint64 kLargestFile_bytes = 256LL * 1024 * 1024;

  /// Reads a regular file. Directories, devices, pipes and files above `largest_bytes` are refused with a
  /// description, never read. Both "/" and "\" separate folders. Where the name does not exist as written,
  /// a single match that differs in case only is taken, folder by folder: definition tables are made on
  /// systems that do not tell the cases apart.
  [[nodiscard]] virtual FileContent Read(const QString& path, qint64 largest_bytes = kLargestFile_bytes) = 0;

  /// Puts `beginning` over the beginning of a regular file, or into a new one; what a longer file holds
  /// behind it stays. The name is understood as Read() does. Whatever happens meanwhile, the file is
  /// afterwards either the old one or the complete new one: the new image is written beside it, brought to
  /// the disk and put in its place. Symbolic links are followed and permissions kept. Only where the folder
  /// takes no new file, but the file itself can be written, it is written in place. What a save that was
  /// killed has left in the folder is removed. Returns "" or a German description of the failure.
  [[nodiscard]] virtual QString Overwrite(const QString& path, const QByteArray& beginning) = 0;

  /// As Overwrite(), but the file is afterwards exactly `content`, a folder that takes no new file is a
  /// failure, and folders that are missing on the way are made, for the user alone.
  [[nodiscard]] virtual QString Replace(const QString& path, const QByteArray& content) = 0;
};

}  // namespace kalivor::platform
