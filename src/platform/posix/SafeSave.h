// Saving a file so that an interruption leaves the old one or the new one, never a part.
#pragma once

#include <QByteArray>

#include "platform/posix/FileCalls.h"

namespace kalivor::platform {

struct SaveResult {
  int error = 0;           ///< error number of the system; 0 when the new image is in place
  bool uncertain = false;  ///< the old image could not be brought back: the file may hold parts of both
};

/// What becomes of the bytes of a longer file behind the new ones.
enum class Tail { Kept, Cut };

/// Puts `bytes` over the beginning of the file `path`, or into a new one. See FileSystem::Overwrite() and
/// Replace(); the name is taken as it is written.
[[nodiscard]] SaveResult SafeSave(const FileCalls& calls, const QByteArray& path, const QByteArray& bytes,
                                  Tail tail);

/// Brings the names in a folder to the disk; an empty one is the current folder. Nothing can be done about a
/// failure, so it is not told.
void SyncFolder(const FileCalls& calls, const QByteArray& folder);

}  // namespace kalivor::platform
