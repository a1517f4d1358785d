// A handle of the system that is closed when it goes.
#pragma once

#include <windows.h>

#include <utility>

namespace kalivor::platform {

class Handle {
 public:
  explicit Handle(HANDLE handle = INVALID_HANDLE_VALUE) : handle_(handle) {}
  ~Handle() { Close(); }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  [[nodiscard]] HANDLE Get() const { return handle_; }
  /// The system's calls say "none" in two ways.
  [[nodiscard]] bool Valid() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }

  /// False when what was written before has not reached the disk.
  bool Close() {
    const bool valid = Valid();
    const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
    return !valid || CloseHandle(handle) != 0;
  }

 private:
  HANDLE handle_;
};

}  // namespace kalivor::platform
