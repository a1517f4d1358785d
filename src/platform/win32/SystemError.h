// What an error number of the system means for a file.
#pragma once

#include <windows.h>

#include "platform/plain/FileError.h"

namespace kalivor::platform {

// Numbers of the system that older headers do not name.
inline constexpr DWORD kErrorDirectoryNotSupported = 336;
inline constexpr DWORD kErrorDiskQuotaExceeded = 1295;

[[nodiscard]] FileError KindOf(DWORD error);

}  // namespace kalivor::platform
