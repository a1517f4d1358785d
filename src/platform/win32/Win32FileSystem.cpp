#include "platform/win32/Win32FileSystem.h"

#include <aclapi.h>

#include <QRandomGenerator>
#include <algorithm>
#include <memory>

#include "platform/win32/OpenFile.h"
#include "platform/win32/SystemError.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr DWORD kAllSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// No dialog of the program shows files of this suffix.
const QString kPrefix = u".kalivor-"_s;
const QString kSuffix = u".tmp"_s;
constexpr int kDigits = 16;

std::wstring NewName() {
  const quint64 number = QRandomGenerator::system()->generate64();
  return (kPrefix + QString::number(number, 16).rightJustified(kDigits, u'0') + kSuffix).toStdWString();
}

// The folder part of a whole path with its "\".
std::wstring FolderPart(const std::wstring& path) {
  return path.substr(0, path.find_last_of(L'\\') + 1);
}

// Programs that look through new files (virus scanners, indexing) hold them for moments.
template <typename Call>
DWORD Patiently(Call call) {
  constexpr int kMostAttempts = 20;
  constexpr DWORD kPause_ms = 50;
  DWORD error = call();
  for (int i = 1; i < kMostAttempts && KindOf(error) == FileError::InUse; ++i) {
    Sleep(kPause_ms);
    error = call();
  }
  return error;
}

// Removes what programs that ended in the middle of a save have left in `folder`. The file of a save under
// way cannot be removed.
void RemoveAbandonedFiles(const std::wstring& folder) {
  WIN32_FIND_DATAW entry{};
  const std::wstring pattern = folder + (kPrefix + QString(kDigits, u'?') + kSuffix).toStdWString();
  const HANDLE search = FindFirstFileW(pattern.c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    DeleteFileW((folder + entry.cFileName).c_str());
  } while (FindNextFileW(search, &entry) != 0);
  FindClose(search);
}

// Who may do what with the old file holds for the new one, and so does what kind of file it is.
void TakeOverPermissions(const std::wstring& from, const std::wstring& to) {
  PACL access = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  auto source = from;
  auto target = to;
  if (GetNamedSecurityInfoW(source.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                            &access, nullptr, &descriptor) == ERROR_SUCCESS) {
    (void)SetNamedSecurityInfoW(target.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                access, nullptr);
    LocalFree(descriptor);
  }
  const DWORD attributes = GetFileAttributesW(from.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) (void)SetFileAttributesW(to.c_str(), attributes);
}

// Writes the image beside the file and puts it in its place, which is one step.
DWORD Replace(const std::wstring& path, bool exists, const QByteArray& image) {
  const std::wstring folder = FolderPart(path);
  // First, because they may be what fills the disk.
  RemoveAbandonedFiles(folder);
  const std::wstring temporary = folder + NewName();
  OpenFile file;
  DWORD error = file.Open(temporary, GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_HIDDEN);
  if (error != ERROR_SUCCESS) return error;
  qsizetype written = 0;
  error = file.Write(image, written);
  if (error == ERROR_SUCCESS) error = file.Flush();
  const DWORD closing = file.Close();
  if (error == ERROR_SUCCESS) error = closing;
  if (error == ERROR_SUCCESS) {
    if (exists) {
      TakeOverPermissions(path, temporary);
    } else {
      (void)SetFileAttributesW(temporary.c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    error = Patiently([&] {
      return ErrorOf(
          MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    });
  }
  if (error != ERROR_SUCCESS) (void)DeleteFileW(temporary.c_str());
  return error;
}

struct SaveResult {
  DWORD error = ERROR_SUCCESS;
  bool uncertain = false;  ///< the file may hold part of the old and part of the new
};

SaveResult WriteInPlace(const std::wstring& path, const QByteArray& beginning, const QByteArray& old) {
  OpenFile file;
  SaveResult result{file.Open(path, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING)};
  if (result.error != ERROR_SUCCESS) return result;
  qsizetype written = 0;
  result.error = file.Write(beginning, written);
  if (result.error == ERROR_SUCCESS) result.error = file.Flush();
  if (result.error == ERROR_SUCCESS) return result;
  // Puts back what it has reached so far.
  qsizetype restored = 0;
  result.uncertain =
      file.Write(old.left(written), restored) != ERROR_SUCCESS || file.Truncate(old.size()) != ERROR_SUCCESS;
  return result;
}

SaveResult Save(std::wstring path, const QByteArray& beginning) {
  // The image would be a file that is refused the next time.
  if (beginning.size() > FileSystem::kLargestFile_bytes) return {ERROR_FILE_TOO_LARGE};
  QByteArray old;
  OpenFile file;
  // For writing as well, although it is to be replaced: a file that must not be written stays.
  DWORD error = Patiently([&] {
    return file.Open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING);
  });
  const bool exists = error != ERROR_FILE_NOT_FOUND;
  if (exists) {
    if (error == ERROR_SUCCESS) error = file.ReadAll(FileSystem::kLargestFile_bytes, old);
    if (error != ERROR_SUCCESS) return {error};
    path = file.FinalPath();
    if (path.empty()) return {GetLastError()};
    (void)file.Close();
  }
  error = Replace(path, exists, beginning + old.mid(beginning.size()));
  // A folder that takes no new file.
  if (exists && KindOf(error) == FileError::NoPermission) return WriteInPlace(path, beginning, old);
  return {error};
}

}  // namespace

FileContent Win32FileSystem::Read(const QString& path, qint64 largest_bytes) {
  FileContent content;
  OpenFile file;
  DWORD error =
      Patiently([&] { return file.Open(SystemPath(path), GENERIC_READ, kAllSharing, OPEN_EXISTING); });
  if (error == ERROR_SUCCESS) error = file.ReadAll(largest_bytes, content.bytes);
  if (error == ERROR_SUCCESS) return content;
  return {{}, DescribeReading(KindOf(error), static_cast<int>(error))};
}

QString Win32FileSystem::Overwrite(const QString& path, const QByteArray& beginning) {
  const SaveResult result = Save(SystemPath(path), beginning);
  if (result.error == ERROR_SUCCESS) return {};
  const QString description = DescribeWriting(KindOf(result.error), static_cast<int>(result.error));
  return result.uncertain ? description + u" Der Inhalt der Datei ist jetzt ungewiss."_s : description;
}

}  // namespace kalivor::platform
