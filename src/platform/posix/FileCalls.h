// The operating system's calls that finding, saving and removing a file consists of.
#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArrayList>
#include <cstdio>

namespace kalivor::platform {

/// Each call does what the system's one does: the result is negative and errno tells why when it fails. Tests
/// put calls in its place that fail, or end the program, at a chosen moment.
class FileCalls {
 public:
  virtual ~FileCalls() = default;

  /// The calls of the system itself.
  [[nodiscard]] static const FileCalls& System();

  /// Appends the names of a folder's entries, "." and ".." among them.
  virtual int List(const QByteArray& folder, QByteArrayList& names) const;
  /// Of what a link leads to.
  virtual int Status(const QByteArray& path, struct stat& status) const {
    return stat(path.constData(), &status);
  }
  /// Of the link itself.
  virtual int LinkStatus(const QByteArray& path, struct stat& status) const {
    return lstat(path.constData(), &status);
  }
  virtual int ReadLink(const QByteArray& path, QByteArray& target) const;

  virtual int Open(const QByteArray& path, int flags, mode_t mode) const {
    return open(path.constData(), flags, mode);
  }
  virtual int OpenStatus(int fd, struct stat& status) const { return fstat(fd, &status); }
  virtual ssize_t Read(int fd, char* bytes, size_t count, off_t position) const {
    return pread(fd, bytes, count, position);
  }
  virtual ssize_t Write(int fd, const char* bytes, size_t count, off_t position) const {
    return pwrite(fd, bytes, count, position);
  }
  /// To a file that was opened with O_APPEND.
  virtual ssize_t Append(int fd, const char* bytes, size_t count) const { return write(fd, bytes, count); }
  virtual int Truncate(int fd, off_t size) const { return ftruncate(fd, size); }
  virtual int ChangeOwner(int fd, uid_t owner, gid_t group) const { return fchown(fd, owner, group); }
  virtual int ChangeMode(int fd, mode_t mode) const { return fchmod(fd, mode); }
  virtual int Sync(int fd) const { return fsync(fd); }
  /// At once or not at all (EWOULDBLOCK); closing ends it.
  virtual int Lock(int fd) const { return flock(fd, LOCK_EX | LOCK_NB); }
  /// A second descriptor, closed when another program is started.
  virtual int Duplicate(int fd) const { return fcntl(fd, F_DUPFD_CLOEXEC, 0); }
  virtual int Close(int fd) const { return close(fd); }

  virtual int MakeFolder(const QByteArray& path, mode_t mode) const { return mkdir(path.constData(), mode); }
  virtual int Rename(const QByteArray& from, const QByteArray& to) const {
    return rename(from.constData(), to.constData());
  }
  virtual int Remove(const QByteArray& path) const { return unlink(path.constData()); }
};

}  // namespace kalivor::platform
