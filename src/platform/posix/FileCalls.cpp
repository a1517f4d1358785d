#include "platform/posix/FileCalls.h"

#include <dirent.h>

#include <cerrno>
#include <climits>
#include <memory>

namespace kalivor::platform {

const FileCalls& FileCalls::System() {
  static const FileCalls calls;
  return calls;
}

int FileCalls::List(const QByteArray& folder, QByteArrayList& names) const {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.constData()), closedir);
  if (!entries) return -1;
  errno = 0;
  while (const dirent* entry = readdir(entries.get()))
    names.append(entry->d_name);
  return errno == 0 ? 0 : -1;
}

int FileCalls::ReadLink(const QByteArray& path, QByteArray& target) const {
  target.resize(PATH_MAX);
  const ssize_t length = readlink(path.constData(), target.data(), PATH_MAX);
  target.resize(length < 0 ? 0 : length);
  return length < 0 ? -1 : 0;
}

}  // namespace kalivor::platform
