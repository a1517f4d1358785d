// Files of the computer.
#pragma once

#include "platform/FileSystem.h"

namespace kalivor::platform {

class PosixFileSystem final : public FileSystem {
 public:
  [[nodiscard]] FileContent Read(const QString& path) override;
};

}  // namespace kalivor::platform
