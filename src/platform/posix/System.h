// What a program on this system is put together from.
#pragma once

#include <QDir>
#include <QString>
#include <cerrno>
#include <iostream>

#include "platform/Registry.h"
#include "platform/posix/FileErrors.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixSerialControl.h"
#include "platform/posix/SerialDevices.h"
#include "platform/posix/SystemClock.h"

namespace kalivor::platform::native {

using Clock = SystemClock;
using FileSystem = PosixFileSystem;
using SerialPorts = SerialDevices;
using SerialControl = PosixSerialControl;

/// The folder of the manual, seen from that of the program.
inline constexpr QStringView kManual = u"../share/doc/kalivor/handbuch";

/// The user's folder for what the program keeps for itself between two runs. Nothing is made.
[[nodiscard]] inline QString StateFolder() {
  const QString states = qEnvironmentVariable("XDG_STATE_HOME");
  const QString folder =
      QDir::isAbsolutePath(states) ? states : QDir::homePath() + QStringLiteral("/.local/state");
  return folder + QStringLiteral("/KALIVOR");
}

/// The user's folder for what the program collects for the user. Nothing is made.
[[nodiscard]] inline QString DataFolder() {
  const QString data = qEnvironmentVariable("XDG_DATA_HOME");
  const QString folder =
      QDir::isAbsolutePath(data) ? data : QDir::homePath() + QStringLiteral("/.local/share");
  return folder + QStringLiteral("/KALIVOR");
}

/// The toolkit's platform that paints where there is no display.
inline constexpr const char* kPaintingPlatform = "offscreen";

/// The system's registry; none here.
[[nodiscard]] inline Registry* SystemRegistry() {
  return nullptr;
}

/// Why the toolkit's last writing of a file has failed, in one German sentence.
[[nodiscard]] inline QString DescribeLastWriting() {
  return DescribeWriting(errno);
}

/// Lets standard output and error take UTF-8 with the line ends as they are written, which they do here.
inline void PrepareConsole() {}

/// What a program with windows says when it shows none: an answer to its command line, or why it does not
/// start.
inline void ShowAnswer(const QString& text) {
  std::cout << text.toStdString();
}
inline void ShowRefusal(const QString& text) {
  std::cerr << text.toStdString();
}

}  // namespace kalivor::platform::native
