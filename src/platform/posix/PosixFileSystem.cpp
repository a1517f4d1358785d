// Files of the computer.
#include "platform/posix/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileErrors.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/SafeSave.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

int CheckReadable(const struct stat& status, qint64 largest_bytes) {
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return ENOTSUP;
  if (status.st_size > largest_bytes) return EFBIG;
  return 0;
}

// Reads up to the end, which may lie elsewhere than the file's size says.
int ReadAll(int fd, qint64 expected_bytes, qint64 largest_bytes, QByteArray& bytes) {
  constexpr qsizetype kLeastStep_bytes = 4096;
  qsizetype used = 0;
  bytes.resize(expected_bytes + 1);
  for (;;) {
    const ssize_t count = read(fd, bytes.data() + used, static_cast<size_t>(bytes.size() - used));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) break;
    used += count;
    if (used > largest_bytes) return EFBIG;
    if (used == bytes.size()) bytes.resize(used + std::max(used / 2, kLeastStep_bytes));
  }
  bytes.resize(used);
  return 0;
}

int ReadFile(const FileCalls& calls, QByteArray path, qint64 largest_bytes, QByteArray& bytes) {
  if (path.contains('\0')) return EINVAL;
  struct stat status {};
  int error = stat(path.constData(), &status) == 0 ? 0 : errno;
  if (error == ENOENT && (error = CorrectCase(calls, path)) == 0) {
    error = stat(path.constData(), &status) == 0 ? 0 : errno;
  }
  // Before opening, because to open a device can already set it going.
  if (error == 0) error = CheckReadable(status, largest_bytes);
  if (error != 0) return error;

  const Descriptor file(open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file.Valid() || fstat(file.Get(), &status) != 0) return errno;
  // And again, because another file can have taken the name meanwhile.
  error = CheckReadable(status, largest_bytes);
  return error != 0 ? error : ReadAll(file.Get(), status.st_size, largest_bytes, bytes);
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
