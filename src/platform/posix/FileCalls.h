// The operating system's calls that finding and saving a file consists of.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <QByteArrayList>

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
  virtual int Status(const QByteArray& path, struct stat& status) const;      ///< of what a link leads to
  virtual int LinkStatus(const QByteArray& path, struct stat& status) const;  ///< of the link itself
  virtual int ReadLink(const QByteArray& path, QByteArray& target) const;

  virtual int Open(const QByteArray& path, int flags, mode_t mode) const;
  virtual int OpenStatus(int fd, struct stat& status) const;
  virtual ssize_t Read(int fd, char* bytes, size_t count, off_t position) const;
  virtual ssize_t Write(int fd, const char* bytes, size_t count, off_t position) const;
  virtual int Truncate(int fd, off_t size) const;
  virtual int ChangeOwner(int fd, uid_t owner, gid_t group) const;
  virtual int ChangeMode(int fd, mode_t mode) const;
  virtual int Sync(int fd) const;
  virtual int Lock(int fd) const;       ///< at once or not at all (EWOULDBLOCK); closing ends it
  virtual int Duplicate(int fd) const;  ///< a second descriptor, closed when another program is started
  virtual int Close(int fd) const;

  virtual int Rename(const QByteArray& from, const QByteArray& to) const;
  virtual int Remove(const QByteArray& path) const;
};

}  // namespace kalivor::platform
