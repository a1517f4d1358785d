// The computer's clock.
#pragma once

#include "platform/Clock.h"
#include "platform/win32/Handle.h"

namespace kalivor::platform {

class Win32Clock final : public Clock {
 public:
  /// Lets all waiting of the program end within a millisecond of its time; the system otherwise looks 64
  /// times a second.
  Win32Clock();
  ~Win32Clock() override;
  Win32Clock(const Win32Clock&) = delete;
  Win32Clock& operator=(const Win32Clock&) = delete;

  [[nodiscard]] double SecondsSinceMidnight() const override;

  /// Setting the clock does not change it.
  void Sleep(double seconds) override;

 private:
  Handle timer_;
};

}  // namespace kalivor::platform
