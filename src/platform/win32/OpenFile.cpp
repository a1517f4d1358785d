#include "platform/win32/OpenFile.h"

#include <algorithm>
#include <vector>

#include "platform/win32/SystemError.h"

namespace kalivor::platform {
namespace {

// Calls for longer names and for names that the system gives come twice: the first one tells the length.
template <typename Call>
std::wstring Text(Call call) {
  const DWORD size = call(nullptr, DWORD{0});
  std::wstring text(size, L'\0');
  if (size > 0) text.resize(std::min(size, call(text.data(), size)));
  return text;
}

DWORD Move(HANDLE file, qint64 position, DWORD origin = FILE_BEGIN) {
  LARGE_INTEGER place{};
  place.QuadPart = position;
  return ErrorOf(SetFilePointerEx(file, place, nullptr, origin));
}

// Where the file stands. `written`: how far it came.
DWORD WriteHere(HANDLE file, const QByteArray& bytes, qsizetype& written) {
  DWORD error = ERROR_SUCCESS;
  while (error == ERROR_SUCCESS && written < bytes.size()) {
    DWORD count = 0;
    const auto rest = static_cast<DWORD>(bytes.size() - written);
    error = ErrorOf(WriteFile(file, bytes.constData() + written, rest, &count, nullptr));
    if (error == ERROR_SUCCESS && count == 0) error = ERROR_WRITE_FAULT;
    written += static_cast<qsizetype>(count);
  }
  return error;
}

}  // namespace

std::wstring SystemPath(const QString& path) {
  if (path.isEmpty() || path.contains(QChar(0))) return {};
  const std::wstring name = path.toStdWString();
  const std::wstring whole =
      Text([&](wchar_t* text, DWORD size) { return GetFullPathNameW(name.c_str(), size, text, nullptr); });
  if (whole.starts_with(LR"(\\.\)")) return {};
  if (whole.starts_with(LR"(\\?\)")) return whole;
  if (whole.starts_with(LR"(\\)")) return LR"(\\?\UNC)" + whole.substr(1);
  return LR"(\\?\)" + whole;
}

DWORD OpenFile::Open(const std::wstring& path, DWORD access, DWORD sharing, DWORD disposition,
                     DWORD attributes) {
  if (path.empty()) return ERROR_INVALID_NAME;
  if (disposition == OPEN_EXISTING) {
    const DWORD present = GetFileAttributesW(path.c_str());
    if (present == INVALID_FILE_ATTRIBUTES) return GetLastError();
    if ((present & FILE_ATTRIBUTE_DIRECTORY) != 0) return kErrorDirectoryNotSupported;
  }
  handle_ = Handle(CreateFileW(path.c_str(), access, sharing, nullptr, disposition, attributes, nullptr));
  if (!handle_.Valid()) return GetLastError();
  return GetFileType(handle_.Get()) == FILE_TYPE_DISK ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED;
}

DWORD OpenFile::ReadAll(qint64 largest_bytes, QByteArray& bytes) const {
  LARGE_INTEGER size{};
  if (GetFileSizeEx(handle_.Get(), &size) == 0) return GetLastError();
  if (size.QuadPart > largest_bytes) return ERROR_FILE_TOO_LARGE;
  bytes.resize(size.QuadPart);
  DWORD count = 0;
  const DWORD error =
      ErrorOf(ReadFile(handle_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr));
  bytes.resize(static_cast<qsizetype>(count));
  return error;
}

DWORD OpenFile::Write(const QByteArray& bytes, qsizetype& written) const {
  written = 0;
  const DWORD error = Move(handle_.Get(), 0);
  return error != ERROR_SUCCESS ? error : WriteHere(handle_.Get(), bytes, written);
}

DWORD OpenFile::Append(const QByteArray& bytes) const {
  qsizetype written = 0;
  const DWORD error = Move(handle_.Get(), 0, FILE_END);
  return error != ERROR_SUCCESS ? error : WriteHere(handle_.Get(), bytes, written);
}

DWORD OpenFile::Truncate(qint64 size) const {
  const DWORD error = Move(handle_.Get(), size);
  return error != ERROR_SUCCESS ? error : ErrorOf(SetEndOfFile(handle_.Get()));
}

DWORD OpenFile::Flush() const {
  return ErrorOf(FlushFileBuffers(handle_.Get()));
}

DWORD OpenFile::Close() {
  return ErrorOf(static_cast<BOOL>(handle_.Close()));
}

std::wstring OpenFile::FinalPath() const {
  return Text([this](wchar_t* text, DWORD size) {
    return GetFinalPathNameByHandleW(handle_.Get(), text, size, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
  });
}

DWORD OpenFile::Rename(const std::wstring& path) const {
  // The name stands behind the structure, whose end already has room for its first character.
  const std::size_t name_bytes = path.size() * sizeof(wchar_t);
  std::vector<FILE_RENAME_INFO> memory(2 + name_bytes / sizeof(FILE_RENAME_INFO));
  FILE_RENAME_INFO& info = memory.front();
  info.ReplaceIfExists = TRUE;
  info.FileNameLength = static_cast<DWORD>(name_bytes);
  std::ranges::copy(path, info.FileName);
  const auto size = static_cast<DWORD>(memory.size() * sizeof(FILE_RENAME_INFO));
  return ErrorOf(SetFileInformationByHandle(handle_.Get(), FileRenameInfo, &info, size));
}

}  // namespace kalivor::platform
