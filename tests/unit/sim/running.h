// Helpers for tests at a real pseudo-terminal: the far end in a thread, the PC's end of the device.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <QByteArray>
#include <QFile>
#include <cstdint>

namespace kalivor::sim {

/// A descriptor that becomes readable on Signal().
class StopEvent {
 public:
  StopEvent() : descriptor_(eventfd(0, EFD_CLOEXEC)) {}
  ~StopEvent() { close(descriptor_); }
  StopEvent(const StopEvent&) = delete;
  StopEvent& operator=(const StopEvent&) = delete;

  [[nodiscard]] int Descriptor() const { return descriptor_; }
  void Signal() const {
    const std::uint64_t one = 1;
    EXPECT_EQ(write(descriptor_, &one, sizeof one), static_cast<ssize_t>(sizeof one));
  }

 private:
  int descriptor_;
};

/// The device as a PC opens it for one telegram.
class PcPort {
 public:
  explicit PcPort(const QString& device, speed_t speed = B9600)
      : descriptor_(open(QFile::encodeName(device).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    termios settings{};
    EXPECT_EQ(tcgetattr(descriptor_, &settings), 0);
    cfmakeraw(&settings);
    cfsetspeed(&settings, speed);
    EXPECT_EQ(tcsetattr(descriptor_, TCSANOW, &settings), 0);
    EXPECT_EQ(tcflush(descriptor_, TCIOFLUSH), 0);
  }
  ~PcPort() { close(descriptor_); }
  PcPort(const PcPort&) = delete;
  PcPort& operator=(const PcPort&) = delete;

  [[nodiscard]] int Descriptor() const { return descriptor_; }

  void Send(const QByteArray& bytes) const {
    EXPECT_EQ(write(descriptor_, bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
  }

  /// Waits for `count` bytes. Fewer are returned when the far end hangs up, or none comes for long.
  [[nodiscard]] QByteArray Receive(qsizetype count) const {
    QByteArray bytes;
    while (bytes.size() < count && Wait(kLong_ms)) {
      char byte = 0;
      if (read(descriptor_, &byte, 1) != 1) break;
      bytes += byte;
    }
    return bytes;
  }

  /// True when something can be read, which an ended line can as well.
  [[nodiscard]] bool Wait(int timeout_ms) const {
    pollfd watched{descriptor_, POLLIN, 0};
    return poll(&watched, 1, timeout_ms) > 0;
  }

  /// Waits for the hang-up.
  [[nodiscard]] bool HangsUp() const {
    pollfd watched{descriptor_, 0, 0};
    return poll(&watched, 1, kLong_ms) > 0 && (watched.revents & POLLHUP) != 0;
  }

 private:
  // Only a failing test waits for so long.
  static constexpr int kLong_ms = 20000;

  int descriptor_;
};

}  // namespace kalivor::sim
