// A pseudo-terminal: the port under test is its slave, the test plays the other end of the line.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <termios.h>

#include <gtest/gtest.h>
#include <QByteArray>
#include <QString>
#include <algorithm>
#include <cstdlib>

#include "platform/posix/Descriptor.h"

namespace kalivor::test {

class PseudoTerminal {
 public:
  PseudoTerminal() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    char path[64] = "";
    if (grantpt(Master()) != 0 || unlockpt(Master()) != 0 || ptsname_r(Master(), path, sizeof path) != 0) {
      ADD_FAILURE() << "no pseudo-terminal";
    }
    path_ = QString::fromUtf8(path);
  }

  [[nodiscard]] const QString& Path() const { return path_; }
  [[nodiscard]] int Master() const { return master_.Get(); }

  /// The line goes dead: the device of the port has vanished.
  void Vanish() { master_.Close(); }

  void Send(const QByteArray& bytes) const {
    ASSERT_EQ(write(Master(), bytes.constData(), static_cast<size_t>(bytes.size())), bytes.size());
  }

  /// Reads `count` bytes, fewer when none come for two seconds.
  [[nodiscard]] QByteArray Receive(qsizetype count) const {
    QByteArray bytes;
    while (bytes.size() < count && Readable(2000)) {
      char piece[4096];
      const auto wanted = std::min<qsizetype>(count - bytes.size(), sizeof piece);
      const ssize_t got = read(Master(), piece, static_cast<size_t>(wanted));
      if (got <= 0) break;
      bytes.append(piece, got);
    }
    return bytes;
  }

  [[nodiscard]] bool Readable(int timeout_ms) const {
    pollfd wait{Master(), POLLIN, 0};
    return poll(&wait, 1, timeout_ms) > 0;
  }

  /// The settings that the port has now.
  [[nodiscard]] termios Attributes() const {
    termios attributes{};
    EXPECT_EQ(tcgetattr(Master(), &attributes), 0);
    return attributes;
  }

  /// Takes the port's PARMRK away, so that Send() can deliver marks as a driver makes them.
  void LetMarksThrough() const {
    termios attributes = Attributes();
    attributes.c_iflag &= ~static_cast<tcflag_t>(PARMRK);
    ASSERT_EQ(tcsetattr(Master(), TCSANOW, &attributes), 0);
  }

 private:
  platform::Descriptor master_;
  QString path_;
};

}  // namespace kalivor::test
