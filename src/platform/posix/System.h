// What a program on this system is put together from.
#pragma once

#include <cerrno>

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

}  // namespace kalivor::platform::native
