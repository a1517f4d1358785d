#include "platform/win32/Win32Registry.h"

#include <windows.h>

namespace kalivor::platform {

Registry::Key Win32Registry::OpenKey(Hive hive, const QString& path) {
  HKEY key = nullptr;
  const HKEY root = hive == Hive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  if (RegOpenKeyExA(root, path.toLocal8Bit().constData(), 0, KEY_READ, &key) != ERROR_SUCCESS) return 0;
  return reinterpret_cast<Key>(key);
}

std::optional<Registry::Value> Win32Registry::QueryValue(Key key, const QString& name, int capacity_bytes) {
  QByteArray bytes(capacity_bytes, '\0');
  DWORD type = 0;
  auto size = static_cast<DWORD>(capacity_bytes);
  if (RegQueryValueExA(reinterpret_cast<HKEY>(key), name.toLocal8Bit().constData(), nullptr, &type,
                       reinterpret_cast<BYTE*>(bytes.data()), &size) != ERROR_SUCCESS) {
    return {};
  }
  bytes.truncate(static_cast<qsizetype>(size));
  const bool isString = type == REG_SZ || type == REG_EXPAND_SZ;
  return Value{isString ? Type::String : type == REG_DWORD ? Type::Number32 : Type::Other, bytes};
}

void Win32Registry::CloseKey(Key key) {
  RegCloseKey(reinterpret_cast<HKEY>(key));
}

}  // namespace kalivor::platform
