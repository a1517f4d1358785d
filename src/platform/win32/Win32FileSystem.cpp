#include "platform/win32/Win32FileSystem.h"

#include <aclapi.h>

#include <QDir>
#include <memory>

#include "platform/plain/TemporaryName.h"
#include "platform/win32/OpenFile.h"
#include "platform/win32/SystemError.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr DWORD kAllSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

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
// way cannot be removed: it is open for nobody else.
void RemoveAbandonedFiles(const std::wstring& folder) {
  WIN32_FIND_DATAW entry{};
  const HANDLE search = FindFirstFileW((folder + TemporaryPattern().toStdWString()).c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    constexpr DWORD kNoFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if ((entry.dwFileAttributes & kNoFile) == 0 && IsTemporaryName(QString::fromWCharArray(entry.cFileName)))
      (void)DeleteFileW((folder + entry.cFileName).c_str());
  } while (FindNextFileW(search, &entry) != 0);
  (void)FindClose(search);
}

// What a file takes over from the one whose place it gets. A drive that keeps no such things is no reason not
// to save.
class Properties {
 public:
  void Read(HANDLE file) {
    if (GetFileInformationByHandleEx(file, FileBasicInfo, &basic_, sizeof basic_) == 0) basic_ = {};
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &access_, nullptr,
                        &descriptor) == ERROR_SUCCESS)
      descriptor_.reset(descriptor);
  }

  void Give(HANDLE file) const {
    constexpr DWORD kKept =
        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    FILE_BASIC_INFO basic{};
    basic.CreationTime = basic_.CreationTime;
    basic.FileAttributes = (basic_.FileAttributes & kKept) | FILE_ATTRIBUTE_ARCHIVE;
    (void)SetFileInformationByHandle(file, FileBasicInfo, &basic, sizeof basic);
    if (descriptor_ == nullptr) return;
    (void)SetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | OwnAccess(), nullptr, nullptr,
                          access_, nullptr);
  }

 private:
  struct FreeLocal {
    void operator()(void* memory) const { LocalFree(memory); }
  };

  // Whether the folder has a say in who may do what, as it usually has.
  [[nodiscard]] SECURITY_INFORMATION OwnAccess() const {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    (void)GetSecurityDescriptorControl(descriptor_.get(), &control, &revision);
    return (control & SE_DACL_PROTECTED) != 0 ? PROTECTED_DACL_SECURITY_INFORMATION
                                              : UNPROTECTED_DACL_SECURITY_INFORMATION;
  }

  FILE_BASIC_INFO basic_{};
  std::unique_ptr<void, FreeLocal> descriptor_;
  PACL access_ = nullptr;  // in the descriptor
};

// The file that is to be replaced, if there is one.
struct OldFile {
  bool exists = false;
  QByteArray bytes;
  Properties properties;
};

// A file that is open anywhere cannot be replaced. The system says of it what it says of a file that must not
// be replaced.
DWORD Rename(const OpenFile& file, const std::wstring& path) {
  const DWORD error = file.Rename(path);
  if (error != ERROR_ACCESS_DENIED) return error;
  const DWORD removing = OpenFile().Open(path, DELETE, kAllSharing, OPEN_EXISTING);
  const bool allowed = removing == ERROR_SUCCESS || removing == ERROR_FILE_NOT_FOUND;
  return allowed ? DWORD{ERROR_SHARING_VIOLATION} : removing;
}

// Writes the image beside the file and puts it in its place, which is one step. Until then the image is open
// for nobody else, so that no other program takes it for abandoned.
DWORD Replace(const std::wstring& path, const OldFile& old, const QByteArray& image) {
  const std::wstring folder = FolderPart(path);
  // First, because they may be what fills the disk.
  RemoveAbandonedFiles(folder);
  const std::wstring temporary = folder + NewTemporaryName().toStdWString();
  OpenFile file;
  DWORD error = file.Open(temporary, GENERIC_READ | GENERIC_WRITE | DELETE | WRITE_DAC, 0, CREATE_NEW,
                          FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_WRITE_THROUGH);
  if (error != ERROR_SUCCESS) return error;
  qsizetype written = 0;
  error = file.Write(image, written);
  if (error == ERROR_SUCCESS) error = file.Flush();
  if (error == ERROR_SUCCESS) {
    old.properties.Give(file.Get());
    error = Patiently([&] { return Rename(file, path); });
  }
  (void)file.Close();
  if (error != ERROR_SUCCESS) (void)DeleteFileW(temporary.c_str());
  return error;
}

struct SaveResult {
  DWORD error = ERROR_SUCCESS;
  bool uncertain = false;  ///< the file may hold part of the old and part of the new
};

SaveResult WriteInPlace(const std::wstring& path, const QByteArray& beginning, const QByteArray& old) {
  OpenFile file;
  SaveResult result{
      Patiently([&] { return file.Open(path, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING); })};
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

// Reads the file that is to be replaced. `path` becomes that of the file that a link leads to.
DWORD ReadOld(std::wstring& path, OldFile& old) {
  OpenFile file;
  // For writing as well, although it is to be replaced: a file that must not be written stays.
  DWORD error = Patiently([&] {
    return file.Open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING);
  });
  if (error == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
  if (error == ERROR_SUCCESS) error = file.ReadAll(FileSystem::kLargestFile_bytes, old.bytes);
  if (error != ERROR_SUCCESS) return error;
  old.exists = true;
  old.properties.Read(file.Get());
  if (const std::wstring target = file.FinalPath(); !target.empty()) path = target;
  return ERROR_SUCCESS;
}

// What becomes of the bytes of a longer file behind the new ones.
enum class Tail { Kept, Cut };

SaveResult Save(std::wstring path, const QByteArray& bytes, Tail tail) {
  // The image would be a file that is refused the next time.
  if (bytes.size() > FileSystem::kLargestFile_bytes) return {ERROR_FILE_TOO_LARGE};
  if (path.ends_with(L'\\')) return {kErrorDirectoryNotSupported};
  OldFile old;
  DWORD error = ReadOld(path, old);
  if (error != ERROR_SUCCESS) return {error};
  const QByteArray image = tail == Tail::Kept ? bytes + old.bytes.mid(bytes.size()) : bytes;
  error = Replace(path, old, image);
  // The folder takes no new file, or does not let go of this one.
  // Cutting a file in place would be a second step that may not come about.
  if (tail == Tail::Kept && old.exists && KindOf(error) == FileError::NoPermission)
    return WriteInPlace(path, bytes, old.bytes);
  return {error};
}

DWORD ListFiles(std::wstring folder, QStringList& files) {
  if (folder.empty()) return ERROR_INVALID_NAME;
  const DWORD present = GetFileAttributesW(folder.c_str());
  if (present == INVALID_FILE_ATTRIBUTES) return GetLastError();
  if ((present & FILE_ATTRIBUTE_DIRECTORY) == 0) return ERROR_DIRECTORY;
  if (!folder.ends_with(L'\\')) folder += L'\\';
  WIN32_FIND_DATAW entry{};
  const HANDLE search = FindFirstFileW((folder + L'*').c_str(), &entry);
  DWORD error = search == INVALID_HANDLE_VALUE ? GetLastError() : DWORD{ERROR_SUCCESS};
  while (error == ERROR_SUCCESS) {
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
      files.append(QString::fromWCharArray(entry.cFileName));
    error = ErrorOf(FindNextFileW(search, &entry));
  }
  if (search != INVALID_HANDLE_VALUE) (void)FindClose(search);
  // The root of a drive can be without any entry.
  return error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND ? DWORD{ERROR_SUCCESS} : error;
}

DWORD RemoveFile(const std::wstring& path) {
  if (path.empty()) return ERROR_INVALID_NAME;
  const DWORD present = GetFileAttributesW(path.c_str());
  if (present == INVALID_FILE_ATTRIBUTES) return GetLastError();
  if ((present & FILE_ATTRIBUTE_DIRECTORY) != 0) return kErrorDirectoryNotSupported;
  return Patiently([&] { return ErrorOf(DeleteFileW(path.c_str())); });
}

class Win32Log final : public LogFile {
 public:
  [[nodiscard]] DWORD Open(const std::wstring& path) {
    return Patiently([&] { return file_.Open(path, GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING); });
  }

  [[nodiscard]] QString Append(const QByteArray& bytes) override {
    DWORD error = file_.Append(bytes);
    if (error == ERROR_SUCCESS) error = file_.Flush();
    return error == ERROR_SUCCESS ? QString() : DescribeWriting(KindOf(error), static_cast<int>(error));
  }

 private:
  OpenFile file_;
};

QString DescriptionOf(const SaveResult& result) {
  if (result.error == ERROR_SUCCESS) return {};
  const QString description = DescribeWriting(KindOf(result.error), static_cast<int>(result.error));
  return result.uncertain ? description + u" Der Inhalt der Datei ist jetzt ungewiss."_s : description;
}

}  // namespace

FileContent Win32FileSystem::Read(const QString& path, qint64 largest_bytes) {
  FileContent content;
  OpenFile file;
  DWORD error = path.isEmpty() ? DWORD{ERROR_FILE_NOT_FOUND} : Patiently([&] {
    return file.Open(SystemPath(path), GENERIC_READ, kAllSharing, OPEN_EXISTING);
  });
  if (error == ERROR_SUCCESS) error = file.ReadAll(largest_bytes, content.bytes);
  if (error == ERROR_SUCCESS) return content;
  const FileError kind = KindOf(error);
  return {{}, DescribeReading(kind, static_cast<int>(error)), kind == FileError::NotFound};
}

QString Win32FileSystem::Overwrite(const QString& path, const QByteArray& beginning) {
  return DescriptionOf(Save(SystemPath(path), beginning, Tail::Kept));
}

QString Win32FileSystem::Replace(const QString& path, const QByteArray& content) {
  SaveResult result = Save(SystemPath(path), content, Tail::Cut);
  if (result.error == ERROR_PATH_NOT_FOUND && QDir().mkpath(QFileInfo(path).path()))
    result = Save(SystemPath(path), content, Tail::Cut);
  return DescriptionOf(result);
}

FolderContent Win32FileSystem::List(const QString& folder) {
  FolderContent content;
  const DWORD error =
      folder.isEmpty() ? DWORD{ERROR_PATH_NOT_FOUND} : ListFiles(SystemPath(folder), content.names);
  if (error == ERROR_SUCCESS) return content;
  const FileError kind = KindOf(error);
  const auto number = static_cast<int>(error);
  // The folder is what is missing, as it is for writing.
  const bool missing = kind == FileError::NotFound;
  return {{}, missing ? DescribeWriting(kind, number) : DescribeReading(kind, number), missing};
}

QString Win32FileSystem::Remove(const QString& path) {
  const DWORD error = path.isEmpty() ? DWORD{ERROR_FILE_NOT_FOUND} : RemoveFile(SystemPath(path));
  const FileError kind = KindOf(error);
  const bool gone = error == ERROR_SUCCESS || kind == FileError::NotFound;
  return gone ? QString() : DescribeWriting(kind, static_cast<int>(error));
}

OpenedLog Win32FileSystem::OpenLog(const QString& path) {
  auto log = std::make_unique<Win32Log>();
  const DWORD error = path.isEmpty() ? DWORD{ERROR_FILE_NOT_FOUND} : log->Open(SystemPath(path));
  if (error == ERROR_SUCCESS) return {std::move(log), {}};
  const FileError kind = KindOf(error);
  const auto number = static_cast<int>(error);
  return {nullptr,
          kind == FileError::NotFound ? DescribeReading(kind, number) : DescribeWriting(kind, number)};
}

}  // namespace kalivor::platform
