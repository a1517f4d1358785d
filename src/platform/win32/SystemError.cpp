#include "platform/win32/SystemError.h"

namespace kalivor::platform {

FileError KindOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return FileError::NotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
    case ERROR_NETWORK_ACCESS_DENIED:
      return FileError::NoPermission;
    case ERROR_CRC:
    case ERROR_SEEK:
    case ERROR_READ_FAULT:
    case ERROR_WRITE_FAULT:
    case ERROR_IO_DEVICE:
    case ERROR_NETNAME_DELETED:
      return FileError::InputOutput;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return FileError::DiskFull;
    case kErrorDiskQuotaExceeded:
      return FileError::QuotaExceeded;
    case ERROR_WRITE_PROTECT:
      return FileError::WriteProtected;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
      return FileError::InUse;
    case ERROR_DIRECTORY:
      return FileError::PartIsNoFolder;
    case kErrorDirectoryNotSupported:
      return FileError::IsFolder;
    case ERROR_NOT_SUPPORTED:
      return FileError::NotRegular;
    case ERROR_FILE_TOO_LARGE:
      return FileError::TooLarge;
    case ERROR_OPERATION_ABORTED:
      return FileError::Interrupted;
    case ERROR_CANT_RESOLVE_FILENAME:
      return FileError::TooManyLinks;
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_BUFFER_OVERFLOW:
      return FileError::NameTooLong;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_PARAMETER:
      return FileError::BadName;
    case ERROR_TOO_MANY_OPEN_FILES:
      return FileError::TooManyOpenFiles;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return FileError::NoMemory;
    case ERROR_NOT_READY:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_BAD_UNIT:
      return FileError::NoDevice;
    case ERROR_SEM_TIMEOUT:
      return FileError::TimedOut;
    default:
      return FileError::Other;
  }
}

}  // namespace kalivor::platform
