// A file that is opened, used and closed through calls that tests can put in place of the system's.
#pragma once

#include <fcntl.h>

#include <QByteArray>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/posix/FileCalls.h"
#include "platform/posix/Uninterrupted.h"

namespace kalivor::platform {

/// What is wrong with a file of that status if it is to be a regular one.
[[nodiscard]] inline int KindError(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) ? 0 : ENOTSUP;
}

/// A file that was opened through the calls. Every operation returns 0 or an error number.
class OpenFile {
 public:
  explicit OpenFile(const FileCalls& calls) : calls_(calls) {}
  ~OpenFile() { (void)Close(); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  [[nodiscard]] int Open(const QByteArray& path, int flags, mode_t mode = 0) {
    fd_ = Uninterrupted([&] { return calls_.Open(path, flags | O_CLOEXEC | O_NOCTTY, mode); });
    return fd_ < 0 ? errno : 0;
  }

  [[nodiscard]] int Status(struct stat& status) const {
    return ErrorOf([&] { return calls_.OpenStatus(fd_, status); });
  }

  /// Opens the file of that status. Directories (EISDIR), devices and pipes (ENOTSUP) and files above
  /// `largest_bytes` (EFBIG) are refused.
  [[nodiscard]] int OpenRegular(const QByteArray& path, int flags, qint64 largest_bytes,
                                struct stat& status) {
    const auto check = [&] {
      const int error = KindError(status);
      return error == 0 && status.st_size > largest_bytes ? EFBIG : error;
    };
    // Before opening, because to open a device can already set it going.
    int error = check();
    if (error == 0) error = Open(path, flags | O_NONBLOCK);
    if (error == 0) error = Status(status);
    // And again, because another file can have taken the name meanwhile.
    return error != 0 ? error : check();
  }

  /// The same, and reads it up to its end.
  [[nodiscard]] int ReadRegular(const QByteArray& path, int flags, qint64 largest_bytes, struct stat& status,
                                QByteArray& bytes) {
    const int error = OpenRegular(path, flags, largest_bytes, status);
    return error != 0 ? error : ReadAll(status.st_size, largest_bytes, bytes);
  }

  /// Writes at the file's beginning. `written`: how far it came.
  [[nodiscard]] int Write(const QByteArray& bytes, qsizetype& written) const {
    written = 0;
    return InSteps(bytes, written,
                   [&](const char* from, size_t count) { return calls_.Write(fd_, from, count, written); });
  }

  /// Writes at the end of a file that was opened with O_APPEND.
  [[nodiscard]] int Append(const QByteArray& bytes) const {
    qsizetype written = 0;
    return InSteps(bytes, written,
                   [&](const char* from, size_t count) { return calls_.Append(fd_, from, count); });
  }

  [[nodiscard]] int Truncate(qsizetype size) const {
    return ErrorOf([&] { return calls_.Truncate(fd_, size); });
  }
  [[nodiscard]] int ChangeOwner(uid_t owner, gid_t group) const {
    return ErrorOf([&] { return calls_.ChangeOwner(fd_, owner, group); });
  }
  [[nodiscard]] int ChangeMode(mode_t mode) const {
    return ErrorOf([&] { return calls_.ChangeMode(fd_, mode); });
  }
  [[nodiscard]] int Sync() const {
    return ErrorOf([&] { return calls_.Sync(fd_); });
  }
  /// Locks the file for as long as it is open somewhere in this program. EWOULDBLOCK: it is locked already.
  [[nodiscard]] int Lock() const {
    return ErrorOf([&] { return calls_.Lock(fd_); });
  }
  /// Becomes a second descriptor of what `other` has open.
  [[nodiscard]] int Duplicate(const OpenFile& other) {
    fd_ = Uninterrupted([&] { return calls_.Duplicate(other.fd_); });
    return fd_ < 0 ? errno : 0;
  }

  [[nodiscard]] int Close() {
    if (fd_ < 0) return 0;
    const int result = calls_.Close(std::exchange(fd_, -1));
    // An interrupted close has released the descriptor all the same.
    return result < 0 && errno != EINTR ? errno : 0;
  }

 private:
  // As often as it takes: the system may write less than it is asked to.
  template <typename Call>
  [[nodiscard]] static int InSteps(const QByteArray& bytes, qsizetype& written, Call write) {
    while (written < bytes.size()) {
      const auto rest = static_cast<size_t>(bytes.size() - written);
      const ssize_t count = Uninterrupted([&] { return write(bytes.constData() + written, rest); });
      if (count < 0) return errno;
      if (count == 0) return EIO;
      written += count;
    }
    return 0;
  }

  // The end may lie elsewhere than the file's size says.
  [[nodiscard]] int ReadAll(qint64 expected_bytes, qint64 largest_bytes, QByteArray& bytes) const {
    constexpr qsizetype kLeastStep_bytes = 4096;
    qsizetype used = 0;
    bytes.resize(expected_bytes + 1);
    for (;;) {
      const auto room = static_cast<size_t>(bytes.size() - used);
      const ssize_t count = Uninterrupted([&] { return calls_.Read(fd_, bytes.data() + used, room, used); });
      if (count < 0) return errno;
      if (count == 0) break;
      used += count;
      if (used > largest_bytes) return EFBIG;
      if (used == bytes.size()) bytes.resize(used + std::max(used / 2, kLeastStep_bytes));
    }
    bytes.resize(used);
    return 0;
  }

  const FileCalls& calls_;
  int fd_ = -1;
};

}  // namespace kalivor::platform
