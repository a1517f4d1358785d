// A file that is opened, used and closed.
#pragma once

#include <windows.h>

#include <QByteArray>
#include <QString>
#include <string>

#include "platform/win32/Handle.h"

namespace kalivor::platform {

/// `path` as the system's calls take it: whole, with "\", beyond the old limit of 260 characters. Empty for
/// what names no file (nothing, a device, a name with a character of code 0).
[[nodiscard]] std::wstring SystemPath(const QString& path);

/// Every operation returns 0 (ERROR_SUCCESS) or an error number of the system.
class OpenFile {
 public:
  /// `access`: GENERIC_READ, GENERIC_WRITE, DELETE…; `sharing`: what others may do meanwhile (FILE_SHARE_…);
  /// `disposition`: OPEN_EXISTING or CREATE_NEW. What is no regular file is refused.
  [[nodiscard]] DWORD Open(const std::wstring& path, DWORD access, DWORD sharing, DWORD disposition,
                           DWORD attributes = FILE_ATTRIBUTE_NORMAL);

  /// Reads all of it, if that is not more than `largest_bytes`.
  [[nodiscard]] DWORD ReadAll(qint64 largest_bytes, QByteArray& bytes) const;

  /// Writes at the file's beginning. `written`: how far it came.
  [[nodiscard]] DWORD Write(const QByteArray& bytes, qsizetype& written) const;

  /// Writes at the file's end.
  [[nodiscard]] DWORD Append(const QByteArray& bytes) const;
  [[nodiscard]] DWORD Truncate(qint64 size) const;

  /// Brings what was written to the disk.
  [[nodiscard]] DWORD Flush() const;
  [[nodiscard]] DWORD Close();

  /// The file that a link leads to; empty where the drive's driver cannot tell.
  [[nodiscard]] std::wstring FinalPath() const;

  /// Gives the file another name on its drive, in one step also in place of another file. It has to be open
  /// with DELETE.
  [[nodiscard]] DWORD Rename(const std::wstring& path) const;

  [[nodiscard]] HANDLE Get() const { return handle_.Get(); }

 private:
  Handle handle_;
};

/// The error number of a call that returns 0 when it fails; 0 when it does not.
[[nodiscard]] inline DWORD ErrorOf(BOOL succeeded) {
  return succeeded != 0 ? ERROR_SUCCESS : GetLastError();
}

}  // namespace kalivor::platform
