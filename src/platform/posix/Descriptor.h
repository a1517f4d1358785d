// Owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace kalivor::platform {

class Descriptor {
 public:
  Descriptor() = default;
  /// Takes over `fd`; a negative one stands for none.
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] bool Valid() const { return fd_ >= 0; }
  [[nodiscard]] int Get() const { return fd_; }

  /// Gives it away.
  [[nodiscard]] int Release() { return std::exchange(fd_, -1); }

  void Close() {
    // An interrupted close has released the descriptor all the same: trying again could hit somebody else's.
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }

 private:
  int fd_ = -1;
};

}  // namespace kalivor::platform
