// What a program on this system is put together from.
#pragma once

#include <windows.h>

// Behind windows.h.
#include <fcntl.h>
#include <io.h>

#include <QStandardPaths>
#include <cstdio>

#include "platform/win32/SerialPorts.h"
#include "platform/win32/SystemError.h"
#include "platform/win32/Win32Clock.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32SerialControl.h"
#include "platform/win32/WindowlessText.h"

namespace kalivor::platform::native {

using Clock = Win32Clock;
using FileSystem = Win32FileSystem;
using SerialPorts = platform::SerialPorts;
using SerialControl = Win32SerialControl;
using platform::ShowAnswer;
using platform::ShowRefusal;

/// The folder of the manual, seen from that of the program.
inline constexpr QStringView kManual = u"handbuch";

/// The user's folder for what the program keeps for itself between two runs: that of the settings. Nothing is
/// made.
[[nodiscard]] inline QString StateFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/KALIVOR");
}

/// The user's folder for what the program collects for the user: the same. Nothing is made.
[[nodiscard]] inline QString DataFolder() {
  return StateFolder();
}

/// The toolkit's platform that paints without a window: the one that knows the system's fonts.
inline constexpr const char* kPaintingPlatform = "windows";

/// The system's registry, for the whole run.
[[nodiscard]] inline Registry* SystemRegistry() {
  static Win32Registry registry;
  return &registry;
}

/// Why the toolkit's last writing of a file has failed, in one German sentence.
[[nodiscard]] inline QString DescribeLastWriting() {
  const DWORD error = GetLastError();
  return DescribeWriting(KindOf(error), static_cast<int>(error));
}

/// Lets standard output and error take UTF-8 with the line ends as they are written.
inline void PrepareConsole() {
  for (std::FILE* stream : {stdout, stderr})
    (void)_setmode(_fileno(stream), _O_BINARY);
  (void)SetConsoleOutputCP(CP_UTF8);
}

}  // namespace kalivor::platform::native
