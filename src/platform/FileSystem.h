// Reading and overwriting files as a whole.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <memory>

namespace kalivor::platform {

/// What a file held, or why it could not be read.
struct FileContent {
  QByteArray bytes;
  QString error;         ///< German description of the failure; empty on success
  bool missing = false;  ///< the failure is that there is no such file

  [[nodiscard]] bool Ok() const { return error.isEmpty(); }
};

/// What a folder holds, or why it could not be read.
struct FolderContent {
  QStringList names;     ///< of the regular files, without their folder, in no particular order
  QString error;         ///< German description of the failure; empty on success
  bool missing = false;  ///< the failure is that there is no such folder
};

/// A file that only grows while it is open.
class LogFile {
 public:
  virtual ~LogFile() = default;

  /// Appends `bytes` and brings them to the disk. Returns "" or a German description of the failure; a part
  /// of the bytes may be there then.
  [[nodiscard]] virtual QString Append(const QByteArray& bytes) = 0;
};

/// A log, or why it could not be opened.
struct OpenedLog {
  std::unique_ptr<LogFile> log;
  QString error;  ///< German description of the failure; empty on success
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

  /// The regular files of a folder.
  [[nodiscard]] virtual FolderContent List(const QString& folder) = 0;

  /// Removes a regular file; one that is missing is no failure. Returns "" or a German description.
  [[nodiscard]] virtual QString Remove(const QString& path) = 0;

  /// Opens an existing regular file for appending.
  [[nodiscard]] virtual OpenedLog OpenLog(const QString& path) = 0;
};

}  // namespace kalivor::platform
