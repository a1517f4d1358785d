// File calls that work until a chosen one fails, comes short, or ends the program.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "platform/posix/FileCalls.h"

namespace kalivor::test {

enum class FileCall {
  List,
  Status,
  LinkStatus,
  ReadLink,
  Open,
  OpenStatus,
  Read,
  Write,
  Append,
  Truncate,
  ChangeOwner,
  ChangeMode,
  Sync,
  Lock,
  Duplicate,
  Close,
  MakeFolder,
  Rename,
  Remove,
};

/// What befalls the calls.
struct FileFault {
  enum class Lasting { Once, SameCall, Everything };

  /// Values of `failure` that are no error numbers.
  static constexpr int kShort = -1;  ///< reads and writes do half of what is asked for
  static constexpr int kKill = -2;   ///< the program ends in the call, before it has done anything
  static constexpr int kKilledExit = 77;

  int at = -1;  ///< the call that it strikes first, counted from 0; -1: none
  int failure = EIO;
  Lasting lasting = Lasting::Once;
};

class FaultyFileCalls final : public platform::FileCalls {
 public:
  FileFault fault;
  bool folderRefuses = false;  ///< the folder takes no new names and gives none up

  /// Every call so far, in order.
  [[nodiscard]] const std::vector<FileCall>& Calls() const { return calls_; }

  int List(const QByteArray& folder, QByteArrayList& names) const override {
    return Fails(FileCall::List) ? -1 : FileCalls::List(folder, names);
  }
  int Status(const QByteArray& path, struct stat& status) const override {
    return Fails(FileCall::Status) ? -1 : FileCalls::Status(path, status);
  }
  int LinkStatus(const QByteArray& path, struct stat& status) const override {
    return Fails(FileCall::LinkStatus) ? -1 : FileCalls::LinkStatus(path, status);
  }
  int ReadLink(const QByteArray& path, QByteArray& target) const override {
    return Fails(FileCall::ReadLink) ? -1 : FileCalls::ReadLink(path, target);
  }
  int Open(const QByteArray& path, int flags, mode_t mode) const override {
    if (Fails(FileCall::Open) || Refuses((flags & O_CREAT) != 0)) return -1;
    return FileCalls::Open(path, flags, mode);
  }
  int OpenStatus(int fd, struct stat& status) const override {
    return Fails(FileCall::OpenStatus) ? -1 : FileCalls::OpenStatus(fd, status);
  }
  ssize_t Read(int fd, char* bytes, size_t count, off_t position) const override {
    return Fails(FileCall::Read) ? -1 : FileCalls::Read(fd, bytes, Shortened(count), position);
  }
  ssize_t Write(int fd, const char* bytes, size_t count, off_t position) const override {
    return Fails(FileCall::Write) ? -1 : FileCalls::Write(fd, bytes, Shortened(count), position);
  }
  ssize_t Append(int fd, const char* bytes, size_t count) const override {
    return Fails(FileCall::Append) ? -1 : FileCalls::Append(fd, bytes, Shortened(count));
  }
  int Truncate(int fd, off_t size) const override {
    return Fails(FileCall::Truncate) ? -1 : FileCalls::Truncate(fd, size);
  }
  int ChangeOwner(int fd, uid_t owner, gid_t group) const override {
    return Fails(FileCall::ChangeOwner) ? -1 : FileCalls::ChangeOwner(fd, owner, group);
  }
  int ChangeMode(int fd, mode_t mode) const override {
    return Fails(FileCall::ChangeMode) ? -1 : FileCalls::ChangeMode(fd, mode);
  }
  // Nothing of these tests outlives the system, and the disk is slow.
  int Sync(int /*fd*/) const override { return Fails(FileCall::Sync) ? -1 : 0; }
  int Lock(int fd) const override { return Fails(FileCall::Lock) ? -1 : FileCalls::Lock(fd); }
  int Duplicate(int fd) const override { return Fails(FileCall::Duplicate) ? -1 : FileCalls::Duplicate(fd); }
  int Close(int fd) const override {
    const bool fails = Fails(FileCall::Close);
    const int error = errno;
    // The system releases the descriptor even when it reports a failure.
    FileCalls::Close(fd);
    errno = error;
    return fails ? -1 : 0;
  }
  int MakeFolder(const QByteArray& path, mode_t mode) const override {
    return Fails(FileCall::MakeFolder) || Refuses(true) ? -1 : FileCalls::MakeFolder(path, mode);
  }
  int Rename(const QByteArray& from, const QByteArray& to) const override {
    return Fails(FileCall::Rename) || Refuses(true) ? -1 : FileCalls::Rename(from, to);
  }
  int Remove(const QByteArray& path) const override {
    return Fails(FileCall::Remove) || Refuses(true) ? -1 : FileCalls::Remove(path);
  }

 private:
  [[nodiscard]] bool Strikes(FileCall call, int number) const {
    if (fault.at < 0 || number < fault.at) return false;
    if (number == fault.at) return true;
    switch (fault.lasting) {
      case FileFault::Lasting::Once:
        return false;
      case FileFault::Lasting::SameCall:
        return call == calls_[static_cast<size_t>(fault.at)];
      case FileFault::Lasting::Everything:
        return true;
    }
    return false;
  }

  [[nodiscard]] bool Fails(FileCall call) const {
    calls_.push_back(call);
    short_ = false;
    if (!Strikes(call, static_cast<int>(calls_.size()) - 1)) return false;
    if (fault.failure == FileFault::kKill) _exit(FileFault::kKilledExit);
    short_ = fault.failure == FileFault::kShort;
    if (short_) return false;
    errno = fault.failure;
    return true;
  }

  [[nodiscard]] size_t Shortened(size_t count) const {
    return short_ ? std::max<size_t>(count / 2, 1) : count;
  }

  [[nodiscard]] bool Refuses(bool changesFolder) const {
    if (changesFolder && folderRefuses) errno = EACCES;
    return changesFolder && folderRefuses;
  }

  mutable std::vector<FileCall> calls_;
  mutable bool short_ = false;
};

}  // namespace kalivor::test
