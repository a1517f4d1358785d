#include "platform/posix/TemporaryFile.h"

#include <unistd.h>

#include <QRandomGenerator>

namespace kalivor::platform {
namespace {

// The point hides it, and no dialog shows files of this suffix.
constexpr char kPrefix[] = ".kalivor-";
constexpr char kSuffix[] = ".tmp";
constexpr int kDigits = 16;

QByteArray NewName() {
  const quint64 number = QRandomGenerator::system()->generate64();
  return kPrefix + QByteArray::number(number, 16).rightJustified(kDigits, '0') + kSuffix;
}

bool IsTemporaryName(const QByteArray& name) {
  if (!name.startsWith(kPrefix) || !name.endsWith(kSuffix)) return false;
  const QByteArray number = name.chopped(sizeof kSuffix - 1).sliced(sizeof kPrefix - 1);
  return number.size() == kDigits && std::all_of(number.begin(), number.end(), [](char digit) {
           return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
         });
}

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
    path = folder + NewName();
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
    if (!IsTemporaryName(name)) continue;
    const QByteArray path = folder + name;
    OpenFile file(calls);
    if (file.Open(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK) == 0 && IsAbandoned(file))
      (void)ErrorOf([&] { return calls.Remove(path); });
  }
}

}  // namespace kalivor::platform
