#include "platform/plain/FileLocks.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>

namespace kalivor::platform {

FileLocks::FileLocks() = default;

FileLocks::~FileLocks() = default;

bool FileLocks::Take(const QString& path) {
  if (!QDir().mkpath(QFileInfo(path).path())) return false;
  auto lock = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
  // However long a program runs.
  lock->setStaleLockTime(0);
  if (!lock->tryLock(0)) return false;
  locks_.push_back(std::move(lock));
  return true;
}

}  // namespace kalivor::platform
