#include "platform/posix/FileErrors.h"

#include <cerrno>

#include "platform/plain/FileError.h"

namespace kalivor::platform {
namespace {

FileError KindOf(int error) {
  switch (error) {
    case ENOENT:
      return FileError::NotFound;
    case EACCES:
    case EPERM:
      return FileError::NoPermission;
    case EIO:
      return FileError::InputOutput;
    case ENOSPC:
      return FileError::DiskFull;
    case EDQUOT:
      return FileError::QuotaExceeded;
    case EROFS:
      return FileError::WriteProtected;
    case EBUSY:
    case ETXTBSY:
      return FileError::InUse;
    case ENOTDIR:
      return FileError::PartIsNoFolder;
    case EISDIR:
      return FileError::IsFolder;
    case ENOTSUP:
      return FileError::NotRegular;
    case EFBIG:
      return FileError::TooLarge;
    case EINTR:
      return FileError::Interrupted;
    case ELOOP:
      return FileError::TooManyLinks;
    case ENAMETOOLONG:
      return FileError::NameTooLong;
    case EINVAL:
      return FileError::BadName;
    case EMFILE:
    case ENFILE:
      return FileError::TooManyOpenFiles;
    case ENOMEM:
      return FileError::NoMemory;
    case ENODEV:
    case ENXIO:
      return FileError::NoDevice;
    case ETIMEDOUT:
      return FileError::TimedOut;
    case ESTALE:
      return FileError::Stale;
    case ENOTUNIQ:
      return FileError::Ambiguous;
    default:
      return FileError::Other;
  }
}

}  // namespace

QString DescribeReading(int error) {
  return DescribeReading(KindOf(error), error);
}

QString DescribeWriting(int error) {
  return DescribeWriting(KindOf(error), error);
}

}  // namespace kalivor::platform
