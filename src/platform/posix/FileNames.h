// Which file a name stands for.
#pragma once

#include <QByteArray>
#include <QString>

#include "platform/posix/FileCalls.h"

namespace kalivor::platform {

/// `path` as the system writes it, with "/" for "\". The names in it may differ in case from the real ones.
[[nodiscard]] QByteArray SystemPath(const QString& path);

/// Replaces every component of `path` that does not exist by the one entry that differs from it in case only.
/// Returns 0 or an error number: ENOENT when there is none, ENOTUNIQ when there are several.
[[nodiscard]] int CorrectCase(const FileCalls& calls, QByteArray& path);

/// The same for a file to be written: a last component without a match stays as it is.
[[nodiscard]] int CorrectCaseForWriting(const FileCalls& calls, QByteArray& path);

/// The folder part of `path` with its "/"; empty when it has none.
[[nodiscard]] QByteArray FolderPart(const QByteArray& path);

}  // namespace kalivor::platform
