// Files of the computer.
#include "platform/posix/PosixFileSystem.h"

#include <cerrno>

#include "platform/posix/FileErrors.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/OpenFile.h"
#include "platform/posix/SafeSave.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

int ReadFile(const FileCalls& calls, QByteArray path, qint64 largest_bytes, QByteArray& bytes) {
  if (path.contains('\0')) return EINVAL;
  struct stat status {};
  const auto find = [&] { return ErrorOf([&] { return calls.Status(path, status); }); };
  int error = find();
  if (error == ENOENT && (error = CorrectCase(calls, path)) == 0) error = find();
  return error != 0 ? error : OpenFile(calls).ReadRegular(path, O_RDONLY, largest_bytes, status, bytes);
}

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

}  // namespace kalivor::platform
