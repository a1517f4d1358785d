// What the user reads when a file cannot be read or written.
#pragma once

#include <QString>

namespace kalivor::platform {

/// The kinds of failures that have a sentence of their own, whatever number a system gives them.
enum class FileError {
  NotFound,  ///< reading: the file; writing: its folder
  NoPermission,
  InputOutput,
  DiskFull,
  QuotaExceeded,
  WriteProtected,
  InUse,
  PartIsNoFolder,
  IsFolder,
  NotRegular,
  TooLarge,
  Interrupted,
  TooManyLinks,
  NameTooLong,
  BadName,
  TooManyOpenFiles,
  NoMemory,
  NoDevice,
  TimedOut,
  Stale,
  Ambiguous,  ///< several files differ from the name in case only
  Other,
};

/// One German sentence; the system's own words would be English. `number` is the system's error number, which
/// stands in the sentence of Other.
[[nodiscard]] QString DescribeReading(FileError error, int number);
[[nodiscard]] QString DescribeWriting(FileError error, int number);

}  // namespace kalivor::platform
