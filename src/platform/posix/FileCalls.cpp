#include "platform/posix/FileCalls.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <memory>

namespace kalivor::platform {

const FileCalls& FileCalls::System() {
  static const FileCalls calls;
  return calls;
}

int FileCalls::List(const QByteArray& folder, QByteArrayList& names) const {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.constData()), closedir);
  if (!entries) return -1;
  errno = 0;
  while (const dirent* entry = readdir(entries.get()))
    names.append(entry->d_name);
  return errno == 0 ? 0 : -1;
}

int FileCalls::Status(const QByteArray& path, struct stat& status) const {
  return stat(path.constData(), &status);
}

int FileCalls::LinkStatus(const QByteArray& path, struct stat& status) const {
  return lstat(path.constData(), &status);
}

int FileCalls::ReadLink(const QByteArray& path, QByteArray& target) const {
  target.resize(PATH_MAX);
  const ssize_t length = readlink(path.constData(), target.data(), PATH_MAX);
  target.resize(length < 0 ? 0 : length);
  return length < 0 ? -1 : 0;
}

int FileCalls::Open(const QByteArray& path, int flags, mode_t mode) const {
  return open(path.constData(), flags, mode);
}

int FileCalls::OpenStatus(int fd, struct stat& status) const {
  return fstat(fd, &status);
}

ssize_t FileCalls::Read(int fd, char* bytes, size_t count, off_t position) const {
  return pread(fd, bytes, count, position);
}

ssize_t FileCalls::Write(int fd, const char* bytes, size_t count, off_t position) const {
  return pwrite(fd, bytes, count, position);
}

int FileCalls::Truncate(int fd, off_t size) const {
  return ftruncate(fd, size);
}

int FileCalls::ChangeOwner(int fd, uid_t owner, gid_t group) const {
  return fchown(fd, owner, group);
}

int FileCalls::ChangeMode(int fd, mode_t mode) const {
  return fchmod(fd, mode);
}

int FileCalls::Sync(int fd) const {
  return fsync(fd);
}

int FileCalls::Lock(int fd) const {
  return flock(fd, LOCK_EX | LOCK_NB);
}

int FileCalls::Duplicate(int fd) const {
  return fcntl(fd, F_DUPFD_CLOEXEC, 0);
}

int FileCalls::Close(int fd) const {
  return close(fd);
}

int FileCalls::Rename(const QByteArray& from, const QByteArray& to) const {
  return rename(from.constData(), to.constData());
}

int FileCalls::Remove(const QByteArray& path) const {
  return unlink(path.constData());
}

}  // namespace kalivor::platform
