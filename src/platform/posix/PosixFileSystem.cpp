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

}  // namespace

FileContent PosixFileSystem::Read(const QString& path, qint64 largest_bytes) {
  FileContent content;
  const int error = ReadFile(calls_, SystemPath(path), largest_bytes, content.bytes);
  if (error == 0) return content;
  return {{}, DescribeReading(error)};
}

QString PosixFileSystem::Overwrite(const QString& path, const QByteArray& beginning) {
  QByteArray name = SystemPath(path);
  const int nameError = name.contains('\0') ? EINVAL : CorrectCaseForWriting(calls_, name);
  const SaveResult result = nameError != 0 ? SaveResult{nameError} : SafeSave(calls_, name, beginning);
  if (result.error == 0) return {};
  const QString description = DescribeWriting(result.error);
  return result.uncertain ? description + u" Der Inhalt der Datei ist jetzt ungewiss."_s : description;
}

}  // namespace kalivor::platform
