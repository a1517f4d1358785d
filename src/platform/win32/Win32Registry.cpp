#include "platform/win32/Win32Registry.h"

#include <windows.h>

#include <vector>

namespace kalivor::platform {
namespace {

// As programs of the code page for Western Europe read it, whatever the code page of this one is.
QByteArray Windows1252(const wchar_t* text, int length) {
  constexpr UINT kCodePage = 1252;
  const auto convert = [&](char* bytes, int size) {
    return WideCharToMultiByte(kCodePage, 0, text, length, bytes, size, nullptr, nullptr);
  };
  QByteArray bytes(length > 0 ? convert(nullptr, 0) : 0, '\0');
  if (!bytes.isEmpty()) (void)convert(bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

}  // namespace

Registry::Key Win32Registry::OpenKey(Hive hive, const QString& path) {
  HKEY key = nullptr;
  const HKEY root = hive == Hive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  if (RegOpenKeyExW(root, path.toStdWString().c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return 0;
  return reinterpret_cast<Key>(key);
}

std::optional<Registry::Value> Win32Registry::QueryValue(Key key, const QString& name, int capacity_bytes) {
  // Texts are stored in characters of two bytes.
  std::vector<wchar_t> memory(static_cast<std::size_t>(capacity_bytes));
  DWORD type = 0;
  auto size = static_cast<DWORD>(memory.size() * sizeof(wchar_t));
  if (RegQueryValueExW(reinterpret_cast<HKEY>(key), name.toStdWString().c_str(), nullptr, &type,
                       reinterpret_cast<BYTE*>(memory.data()), &size) != ERROR_SUCCESS)
    return {};
  Value value;
  if (type == REG_SZ || type == REG_EXPAND_SZ) {
    value = {Type::String, Windows1252(memory.data(), static_cast<int>(size / sizeof(wchar_t)))};
  } else {
    value = {type == REG_DWORD ? Type::Number32 : Type::Other,
             QByteArray(reinterpret_cast<const char*>(memory.data()), static_cast<qsizetype>(size))};
  }
  if (value.bytes.size() > capacity_bytes) return {};
  return value;
}

void Win32Registry::CloseKey(Key key) {
  RegCloseKey(reinterpret_cast<HKEY>(key));
}

}  // namespace kalivor::platform
