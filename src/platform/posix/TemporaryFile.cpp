#include "platform/posix/TemporaryFile.h"

#include <unistd.h>

#include "platform/plain/TemporaryName.h"

namespace kalivor::platform {
namespace {

// True when the program that made the file has ended.
bool IsAbandoned(const OpenFile& file) {
  struct stat status {};
  if (file.Status(status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != geteuid()) return false;
  return file.Lock() == 0;
}

}  // namespace

int TemporaryFile::Create(const QByteArray& folder, mode_t mode) {
  constexpr int kMostAttempts = 16;
  int error = EEXIST;
  for (int i = 0; i < kMostAttempts && error == EEXIST; ++i) {
    path = folder + NewTemporaryName().toLatin1();
    error = TryCreate(mode);
  }
  return error;
}

// EEXIST: another name is to be tried.
int TemporaryFile::TryCreate(mode_t mode) {
  const int error = file.Open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
  if (error != 0) return error;
  // Another program may take the file for abandoned before it is locked, and hold the lock or have removed
  // it. Drives that know no locks leave theirs unlocked, and there nobody removes anything.
  bool taken = file.Lock() == EWOULDBLOCK;
  struct stat status {};
  if (!taken) taken = ErrorOf([&] { return calls_.LinkStatus(path, status); }) == ENOENT;
  if (taken) {
    (void)file.Close();
    (void)ErrorOf([&] { return calls_.Remove(path); });
    return EEXIST;
  }
  (void)lock_.Duplicate(file);
  return 0;
}

void RemoveAbandonedFiles(const FileCalls& calls, const QByteArray& folder) {
  QByteArrayList names;
  // Where the folder cannot be listed, they stay.
  (void)ErrorOf([&] { return calls.List(folder.isEmpty() ? QByteArray(".") : folder, names); });
  for (const QByteArray& name : names) {
    if (!IsTemporaryName(QString::fromLatin1(name))) continue;
    const QByteArray path = folder + name;
    OpenFile file(calls);
    if (file.Open(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK) == 0 && IsAbandoned(file))
      (void)ErrorOf([&] { return calls.Remove(path); });
  }
}

}  // namespace kalivor::platform
