// The file that a new image is written to before it takes the place of the old one.
#pragma once

#include "platform/posix/OpenFile.h"

namespace kalivor::platform {

/// A new file of a name that nobody can have prepared. It is locked until the object ends, which tells other
/// programs that it is still needed.
struct TemporaryFile {
  explicit TemporaryFile(const FileCalls& calls) : file(calls), calls_(calls), lock_(calls) {}

  /// Makes it in `folder`, which is empty or ends with "/". Returns 0 or an error number.
  [[nodiscard]] int Create(const QByteArray& folder, mode_t mode);

  OpenFile file;  ///< open for writing; closing it does not end the lock
  QByteArray path;

 private:
  [[nodiscard]] int TryCreate(mode_t mode);

  const FileCalls& calls_;
  OpenFile lock_;
};

/// Removes what programs that ended in the middle of a save have left in `folder`: files of a temporary one's
/// name that belong to this user and that no program holds locked.
void RemoveAbandonedFiles(const FileCalls& calls, const QByteArray& folder);

}  // namespace kalivor::platform
