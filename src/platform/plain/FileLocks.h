// Files that one running program has to itself.
#pragma once

#include <QString>
#include <memory>
#include <vector>

class QLockFile;

namespace kalivor::platform {

/// Released at the end of its life; what a program that was killed had is free again at once.
class FileLocks {
 public:
  FileLocks();
  ~FileLocks();
  FileLocks(const FileLocks&) = delete;
  FileLocks& operator=(const FileLocks&) = delete;

  /// Takes `path`, which need not exist, by a file beside it (".lock"). Its folder is made if it is missing.
  /// False where another program has it, or the folder takes no file.
  [[nodiscard]] bool Take(const QString& path);

 private:
  std::vector<std::unique_ptr<QLockFile>> locks_;
};

}  // namespace kalivor::platform
