#include "platform/posix/SafeSave.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/FileSystem.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/OpenFile.h"
#include "platform/posix/TemporaryFile.h"

namespace kalivor::platform {
namespace {

constexpr mode_t kPermissions = 07777;
constexpr mode_t kNewFile = 0666;    // what the user's mask leaves of it
constexpr mode_t kOwnerOnly = 0600;  // until the permissions of the old file are known to hold

// The file that is to be replaced, if there is one.
struct OldFile {
  explicit OldFile(const FileCalls& calls) : file(calls) {}

  bool exists = false;
  OpenFile file;
  struct stat status {};
  QByteArray bytes;
};

// Replaces a link by what it leads to, which need not exist.
int FollowLinks(const FileCalls& calls, QByteArray& path) {
  constexpr int kMostLinks = 40;
  for (int i = 0; i < kMostLinks; ++i) {
    struct stat status {};
    int error = ErrorOf([&] { return calls.LinkStatus(path, status); });
    if (error == ENOENT || (error == 0 && !S_ISLNK(status.st_mode))) return 0;
    QByteArray target;
    if (error == 0) error = ErrorOf([&] { return calls.ReadLink(path, target); });
    if (error != 0) return error;
    path = target.startsWith('/') ? target : FolderPart(path) + target;
  }
  return ELOOP;
}

int OpenOldFile(const FileCalls& calls, const QByteArray& path, OldFile& old) {
  int error = ErrorOf([&] { return calls.Status(path, old.status); });
  if (error == ENOENT) return 0;
  // Opened for writing as well, although it is to be replaced: a file that must not be written stays.
  if (error == 0)
    error = old.file.ReadRegular(path, O_RDWR, FileSystem::kLargestFile_bytes, old.status, old.bytes);
  old.exists = error == 0;
  return error;
}

// Gives the new file the owner and the permissions of the old one. That another user's file keeps its owner
// is granted to the superuser only, so it is no failure when it does not.
int TakeOverPermissions(const OpenFile& file, const struct stat& old) {
  struct stat now {};
  if (const int error = file.Status(now); error != 0) return error;
  mode_t mode = old.st_mode & kPermissions;
  if ((now.st_uid != old.st_uid || now.st_gid != old.st_gid) &&
      file.ChangeOwner(old.st_uid, old.st_gid) != 0 && now.st_gid != old.st_gid &&
      file.ChangeOwner(static_cast<uid_t>(-1), old.st_gid) != 0) {
    // Another group must not get what was meant for the old one.
    mode = (mode & ~static_cast<mode_t>(S_IRWXG)) | (mode & S_IRWXG & ((mode & S_IRWXO) << 3));
  }
  return (now.st_mode & kPermissions) == mode ? 0 : file.ChangeMode(mode);
}

int WriteTemporary(OpenFile& file, const OldFile& old, const QByteArray& image) {
  int error = old.exists ? TakeOverPermissions(file, old.status) : 0;
  qsizetype written = 0;
  if (error == 0) error = file.Write(image, written);
  if (error == 0) error = file.Sync();
  const int closing = file.Close();
  return error != 0 ? error : closing;
}

int Replace(const FileCalls& calls, const QByteArray& path, const OldFile& old, const QByteArray& image) {
  const QByteArray folder = FolderPart(path);
  // First, because they may be what fills the disk.
  RemoveAbandonedFiles(calls, folder);
  TemporaryFile temporary(calls);
  int error = temporary.Create(folder, old.exists ? kOwnerOnly : kNewFile);
  if (error != 0) return error;
  error = WriteTemporary(temporary.file, old, image);
  if (error == 0) error = ErrorOf([&] { return calls.Rename(temporary.path, path); });
  if (error != 0) {
    // Nothing more can be done when this fails too; the next save into this folder tries it again.
    (void)ErrorOf([&] { return calls.Remove(temporary.path); });
    return error;
  }
  // The image is in place and safe already; all that a failure leaves open is whether a loss of power now
  // would bring back the old one, which is as complete.
  SyncFolder(calls, folder);
  return 0;
}

// True for the answers of a folder, or of its file system, that takes no new file or does not let the old one
// be replaced (that of another user in a common folder, one that is mounted by itself).
bool FolderRefused(int error) {
  return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

// Puts back what writing in place has reached so far.
bool Restore(const OldFile& old, qsizetype reached) {
  qsizetype written = 0;
  int error = old.file.Write(old.bytes.left(reached), written);
  if (error == 0 && reached > old.bytes.size()) error = old.file.Truncate(old.bytes.size());
  return error == 0;
}

SaveResult WriteInPlace(const OldFile& old, const QByteArray& beginning) {
  qsizetype written = 0;
  int error = old.file.Write(beginning, written);
  if (error == 0) error = old.file.Sync();
  if (error == 0) return {};
  return {error, !Restore(old, written)};
}

}  // namespace

void SyncFolder(const FileCalls& calls, const QByteArray& folder) {
  OpenFile file(calls);
  if (file.Open(folder.isEmpty() ? QByteArray(".") : folder, O_RDONLY | O_DIRECTORY) == 0) (void)file.Sync();
}

SaveResult SafeSave(const FileCalls& calls, const QByteArray& path, const QByteArray& bytes, Tail tail) {
  // The image would be a file that is refused the next time.
  if (bytes.size() > FileSystem::kLargestFile_bytes) return {EFBIG};
  OldFile old(calls);
  QByteArray target = path;
  int error = OpenOldFile(calls, path, old);
  if (error == 0) error = FollowLinks(calls, target);
  if (error != 0) return {error};

  const QByteArray image = tail == Tail::Kept ? bytes + old.bytes.mid(bytes.size()) : bytes;
  error = Replace(calls, target, old, image);
  // Cutting a file in place is a second step that may not come about.
  if (tail == Tail::Kept && old.exists && FolderRefused(error)) return WriteInPlace(old, bytes);
  return {error};
}

}  // namespace kalivor::platform
