// Files of the computer.
#include "platform/posix/PosixFileSystem.h"

#include <QFile>
#include <cerrno>

#include "platform/posix/FileErrors.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/OpenFile.h"
#include "platform/posix/SafeSave.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// Finds what exists under a name, which becomes the real one.
int Find(const FileCalls& calls, QByteArray& path, struct stat& status) {
  if (path.contains('\0')) return EINVAL;
  const auto find = [&] { return ErrorOf([&] { return calls.Status(path, status); }); };
  int error = find();
  if (error == ENOENT && (error = CorrectCase(calls, path)) == 0) error = find();
  return error;
}

int ReadFile(const FileCalls& calls, QByteArray path, qint64 largest_bytes, QByteArray& bytes) {
  struct stat status {};
  const int error = Find(calls, path, status);
  return error != 0 ? error : OpenFile(calls).ReadRegular(path, O_RDONLY, largest_bytes, status, bytes);
}

int ListFiles(const FileCalls& calls, QByteArray folder, QStringList& files) {
  struct stat status {};
  int error = Find(calls, folder, status);
  if (error == 0 && !S_ISDIR(status.st_mode)) error = ENOTDIR;
  QByteArrayList names;
  if (error == 0) error = ErrorOf([&] { return calls.List(folder, names); });
  if (error != 0) return error;
  for (const QByteArray& name : names) {
    error = ErrorOf([&] { return calls.Status(folder + '/' + name, status); });
    // It is gone meanwhile, or a link that leads nowhere.
    if (error == ENOENT || error == ELOOP) continue;
    if (error != 0) return error;
    if (S_ISREG(status.st_mode)) files.append(QFile::decodeName(name));
  }
  return 0;
}

int RemoveFile(const FileCalls& calls, QByteArray path) {
  struct stat status {};
  int error = Find(calls, path, status);
  if (error == 0) error = KindError(status);
  if (error == 0) error = ErrorOf([&] { return calls.Remove(path); });
  return error == ENOENT ? 0 : error;
}

class PosixLog final : public LogFile {
 public:
  explicit PosixLog(const FileCalls& calls) : calls_(calls), file_(calls) {}

  [[nodiscard]] int Open(QByteArray path) {
    struct stat status {};
    const int error = Find(calls_, path, status);
    constexpr int kFlags = O_WRONLY | O_APPEND;
    return error != 0 ? error : file_.OpenRegular(path, kFlags, FileSystem::kLargestFile_bytes, status);
  }

  [[nodiscard]] QString Append(const QByteArray& bytes) override {
    int error = file_.Append(bytes);
    if (error == 0) error = file_.Sync();
    return error == 0 ? QString() : DescribeWriting(error);
  }

 private:
  const FileCalls& calls_;
  OpenFile file_;
};

QString DescriptionOf(const SaveResult& result) {
  if (result.error == 0) return {};
  const QString description = DescribeWriting(result.error);
  return result.uncertain ? description + u" Der Inhalt der Datei ist jetzt ungewiss."_s : description;
}

SaveResult Save(const FileCalls& calls, QByteArray path, const QByteArray& bytes, Tail tail) {
  const int error = path.contains('\0') ? EINVAL : CorrectCaseForWriting(calls, path);
  return error != 0 ? SaveResult{error} : SafeSave(calls, path, bytes, tail);
}

// Makes a folder, and those above it that are missing too. `path` becomes its real name.
int MakeFolders(const FileCalls& calls, QByteArray& path) {
  while (path.endsWith('/'))
    path.chop(1);
  int error = CorrectCaseForWriting(calls, path);
  if (QByteArray above = FolderPart(path); error == ENOENT) {
    const QByteArray name = path.sliced(above.size());
    error = MakeFolders(calls, above);
    path = above + '/' + name;
  }
  if (error == 0) error = ErrorOf([&] { return calls.MakeFolder(path, S_IRWXU); });
  // What is saved in it would be lost with it.
  if (error == 0) SyncFolder(calls, FolderPart(path));
  // Another program may have been quicker.
  return error == EEXIST ? 0 : error;
}

}  // namespace

FileContent PosixFileSystem::Read(const QString& path, qint64 largest_bytes) {
  FileContent content;
  const int error = ReadFile(calls_, SystemPath(path), largest_bytes, content.bytes);
  if (error == 0) return content;
  return {{}, DescribeReading(error), error == ENOENT};
}

QString PosixFileSystem::Overwrite(const QString& path, const QByteArray& beginning) {
  return DescriptionOf(Save(calls_, SystemPath(path), beginning, Tail::Kept));
}

QString PosixFileSystem::Replace(const QString& path, const QByteArray& content) {
  const QByteArray name = SystemPath(path);
  SaveResult result = Save(calls_, name, content, Tail::Cut);
  if (QByteArray folder = FolderPart(name); result.error == ENOENT && !folder.isEmpty()) {
    result.error = MakeFolders(calls_, folder);
    if (result.error == 0) result = Save(calls_, name, content, Tail::Cut);
  }
  return DescriptionOf(result);
}

FolderContent PosixFileSystem::List(const QString& folder) {
  FolderContent content;
  const int error = ListFiles(calls_, SystemPath(folder), content.names);
  if (error == 0) return content;
  // The folder is what is missing, as it is for writing.
  const bool missing = error == ENOENT;
  return {{}, missing ? DescribeWriting(error) : DescribeReading(error), missing};
}

QString PosixFileSystem::Remove(const QString& path) {
  const int error = RemoveFile(calls_, SystemPath(path));
  return error == 0 ? QString() : DescribeWriting(error);
}

OpenedLog PosixFileSystem::OpenLog(const QString& path) {
  auto log = std::make_unique<PosixLog>(calls_);
  const int error = log->Open(SystemPath(path));
  if (error != 0) return {nullptr, error == ENOENT ? DescribeReading(error) : DescribeWriting(error)};
  return {std::move(log), {}};
}

}  // namespace kalivor::platform
