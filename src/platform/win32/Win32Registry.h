// The registry of Windows.
#pragma once

#include "platform/Registry.h"

namespace kalivor::platform {

class Win32Registry final : public Registry {
 public:
  [[nodiscard]] Key OpenKey(Hive hive, const QString& path) override;
  [[nodiscard]] std::optional<Value> QueryValue(Key key, const QString& name, int capacity_bytes) override;
  void CloseKey(Key key) override;
};

}  // namespace kalivor::platform
