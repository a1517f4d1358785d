#include "platform/posix/FileNames.h"

#include <QFile>
#include <cerrno>

#include "platform/posix/Uninterrupted.h"

namespace kalivor::platform {
namespace {

// The one entry of `folder` that differs from `name` in case only, as the file system writes it. Fails with
// ENOENT when there is none, with ENOTUNIQ when there are several. Nothing is taken for missing when the
// folder cannot be listed: a second file could be made beside the one that is meant.
int MatchInFolder(const FileCalls& calls, const QByteArray& folder, const QByteArray& name,
                  QByteArray& match) {
  QByteArrayList entries;
  if (Uninterrupted([&] { return calls.List(folder, entries); }) < 0) return errno;
  const QString wanted = QFile::decodeName(name);
  int matches = 0;
  for (const QByteArray& entry : entries) {
    if (QFile::decodeName(entry).compare(wanted, Qt::CaseInsensitive) != 0) continue;
    match = entry;
    ++matches;
  }
  return matches == 1 ? 0 : matches == 0 ? ENOENT : ENOTUNIQ;
}

bool Exists(const FileCalls& calls, const QByteArray& path) {
  struct stat status {};
  // A link that leads nowhere exists as written, so nothing else is taken for it.
  return Uninterrupted([&] { return calls.LinkStatus(path, status); }) == 0;
}

}  // namespace

QByteArray SystemPath(const QString& path) {
  QString name = path;
  name.replace(u'\\', u'/');
  return QFile::encodeName(name);
}

int CorrectCase(const FileCalls& calls, QByteArray& path) {
  QByteArray found = path.startsWith('/') ? "/" : "";
  for (const QByteArray& name : path.split('/')) {
    if (name.isEmpty()) continue;
    QByteArray entry = name;
    if (!Exists(calls, found + name)) {
      const int error = MatchInFolder(calls, found.isEmpty() ? QByteArray(".") : found, name, entry);
      if (error != 0) return error;
    }
    found += entry + '/';
  }
  // A separator behind the last name would make it a folder's.
  if (!path.endsWith('/')) found.chop(1);
  path = found;
  return 0;
}

int CorrectCaseForWriting(const FileCalls& calls, QByteArray& path) {
  QByteArray folder = FolderPart(path);
  const QByteArray name = path.sliced(folder.size());
  if (name.isEmpty()) return folder.isEmpty() ? EINVAL : EISDIR;
  int error = CorrectCase(calls, folder);
  if (error != 0) return error;
  path = folder + name;
  error = CorrectCase(calls, path);
  return error == ENOENT ? 0 : error;
}

QByteArray FolderPart(const QByteArray& path) {
  return path.left(path.lastIndexOf('/') + 1);
}

}  // namespace kalivor::platform
