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

/// The error number of a call that is negative when it fails; 0 when it does not.
template <typename Call>
int ErrorOf(Call call) {
  return Uninterrupted(call) < 0 ? errno : 0;
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

  /// Reads up to the end, but no more than `largest_bytes`.
  [[nodiscard]] int ReadAll(qsizetype largest_bytes, QByteArray& bytes) const {
    constexpr qsizetype kStep_bytes = 65536;
    for (;;) {
      const qsizetype used = bytes.size();
      bytes.resize(used + kStep_bytes);
      const ssize_t count =
          Uninterrupted([&] { return calls_.Read(fd_, bytes.data() + used, kStep_bytes, used); });
      bytes.resize(used + std::max<ssize_t>(count, 0));
      if (count < 0) return errno;
      if (count == 0) return 0;
      if (bytes.size() > largest_bytes) return EFBIG;
    }
  }

  /// Writes at the file's beginning. `written`: how far it came.
  [[nodiscard]] int Write(const QByteArray& bytes, qsizetype& written) const {
    written = 0;
    while (written < bytes.size()) {
      const auto rest = static_cast<size_t>(bytes.size() - written);
      const ssize_t count =
          Uninterrupted([&] { return calls_.Write(fd_, bytes.constData() + written, rest, written); });
      if (count < 0) return errno;
      if (count == 0) return EIO;
      written += count;
    }
    return 0;
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
  const FileCalls& calls_;
  int fd_ = -1;
};

}  // namespace kalivor::platform
