// A disk that gets full.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <csignal>

namespace kalivor::test {

/// While it lives, this process can write no file beyond its first `room_bytes` bytes.
class FullDisk {
 public:
  explicit FullDisk(rlim_t room_bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0);
    const rlimit small{room_bytes, before_.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  }
  ~FullDisk() {
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &before_), 0);
    (void)std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  void (*handler_)(int);
  rlimit before_{};
};

}  // namespace kalivor::test
