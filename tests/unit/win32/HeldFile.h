// A file that another program has open.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <QDir>
#include <QString>
#include <string>

#include "platform/win32/Handle.h"

namespace kalivor::test {

[[nodiscard]] inline std::wstring Wide(const QString& path) {
  return QDir::toNativeSeparators(path).toStdWString();
}

class HeldFile {
 public:
  /// `access`: GENERIC_…; `sharing`: what others may do meanwhile (FILE_SHARE_…).
  HeldFile(const QString& path, DWORD access, DWORD sharing)
      : handle_(CreateFileW(Wide(path).c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_TRUE(handle_.Valid()) << GetLastError();
  }
  void Release() { EXPECT_TRUE(handle_.Close()); }

 private:
  platform::Handle handle_;
};

}  // namespace kalivor::test
