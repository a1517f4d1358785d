// Files of the computer.
#include "platform/posix/PosixFileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <memory>

#include "platform/posix/Descriptor.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

QString Describe(int error) {
  switch (error) {
    case ENOENT:
      return u"Datei nicht gefunden."_s;
    case ENOTDIR:
      return u"Ein Teil des Pfades ist kein Verzeichnis."_s;
    case EACCES:
    case EPERM:
      return u"Keine Berechtigung zum Lesen der Datei."_s;
    case EISDIR:
      return u"Der Pfad ist ein Verzeichnis."_s;
    case ENOTSUP:
      return u"Der Pfad ist keine gewöhnliche Datei."_s;
    case EFBIG:
      return u"Die Datei ist zu groß."_s;
    case EIO:
      return u"Ein-/Ausgabefehler beim Lesen der Datei."_s;
    case ELOOP:
      return u"Zu viele symbolische Verknüpfungen im Pfad."_s;
    case ENAMETOOLONG:
      return u"Der Dateiname ist zu lang."_s;
    case EINVAL:
      return u"Der Dateiname ist ungültig."_s;
    case EMFILE:
    case ENFILE:
      return u"Zu viele geöffnete Dateien."_s;
    case ENOMEM:
      return u"Nicht genügend Arbeitsspeicher."_s;
    case ENODEV:
    case ENXIO:
      return u"Das Gerät ist nicht vorhanden."_s;
    case ETIMEDOUT:
      return u"Zeitüberschreitung beim Zugriff auf die Datei."_s;
    case ESTALE:
      return u"Die Datei auf dem Netzlaufwerk ist nicht mehr gültig."_s;
    case ENOTUNIQ:
      return u"Mehrere Dateien unterscheiden sich nur in der Groß- und Kleinschreibung."_s;
    default:
      return u"Die Datei kann nicht gelesen werden (Systemfehler %1)."_s.arg(error);
  }
}

// The one entry of `folder` that differs from `name` in case only, as the file system writes it. Fails with
// ENOENT when there is none, with ENOTUNIQ when there are several.
int MatchInFolder(const QByteArray& folder, const QByteArray& name, QByteArray& match) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.constData()), closedir);
  if (!entries) return ENOENT;
  const QString wanted = QFile::decodeName(name);
  int matches = 0;
  while (const dirent* entry = readdir(entries.get())) {
    if (QFile::decodeName(entry->d_name).compare(wanted, Qt::CaseInsensitive) != 0) continue;
    match = entry->d_name;
    ++matches;
  }
  return matches == 1 ? 0 : matches == 0 ? ENOENT : ENOTUNIQ;
}

bool Exists(const QByteArray& path) {
  struct stat status {};
  // A link that leads nowhere exists as written, so nothing else is taken for it.
  return lstat(path.constData(), &status) == 0;
}

// Replaces every component of `path` that does not exist by its match. The result is an error number or 0.
int CorrectCase(QByteArray& path) {
  QByteArray found = path.startsWith('/') ? "/" : "";
  for (const QByteArray& name : path.split('/')) {
    if (name.isEmpty()) continue;
    if (!Exists(found + name)) {
      QByteArray match;
      const int error = MatchInFolder(found.isEmpty() ? QByteArray(".") : found, name, match);
      if (error != 0) return error;
      found += match;
    } else {
      found += name;
    }
    found += '/';
  }
  // A separator behind the last name would make it a folder's.
  if (!path.endsWith('/')) found.chop(1);
  path = found;
  return 0;
}

int CheckReadable(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return ENOTSUP;
  if (status.st_size > FileSystem::kLargestFile_bytes) return EFBIG;
  return 0;
}

// Reads up to the end, which may lie elsewhere than the file's size says.
int ReadAll(int fd, qint64 expected_bytes, QByteArray& bytes) {
  constexpr qsizetype kLeastStep_bytes = 4096;
  qsizetype used = 0;
  bytes.resize(expected_bytes + 1);
  for (;;) {
    const ssize_t count = read(fd, bytes.data() + used, static_cast<size_t>(bytes.size() - used));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) break;
    used += count;
    if (used > FileSystem::kLargestFile_bytes) return EFBIG;
    if (used == bytes.size()) bytes.resize(used + std::max(used / 2, kLeastStep_bytes));
  }
  bytes.resize(used);
  return 0;
}

int ReadFile(QByteArray path, QByteArray& bytes) {
  if (path.contains('\0')) return EINVAL;
  struct stat status {};
  int error = stat(path.constData(), &status) == 0 ? 0 : errno;
  if (error == ENOENT && (error = CorrectCase(path)) == 0) {
    error = stat(path.constData(), &status) == 0 ? 0 : errno;
  }
  // Before opening, because to open a device can already set it going.
  if (error == 0) error = CheckReadable(status);
  if (error != 0) return error;

  const Descriptor file(open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file.Valid() || fstat(file.Get(), &status) != 0) return errno;
  // And again, because another file can have taken the name meanwhile.
  error = CheckReadable(status);
  return error != 0 ? error : ReadAll(file.Get(), status.st_size, bytes);
}

}  // namespace

FileContent PosixFileSystem::Read(const QString& path) {
  FileContent content;
  QString name = path;
  name.replace(u'\\', u'/');
  const int error = ReadFile(QFile::encodeName(name), content.bytes);
  if (error == 0) return content;
  return {{}, Describe(error)};
}

}  // namespace kalivor::platform
