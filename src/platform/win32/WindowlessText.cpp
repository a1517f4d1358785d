#include "platform/win32/WindowlessText.h"

#include <windows.h>

#include "platform/win32/Handle.h"

namespace kalivor::platform {
namespace {

// Into a file or a pipe, in UTF-8.
bool Write(DWORD stream, const QString& text) {
  const QByteArray bytes = text.toUtf8();
  DWORD written = 0;
  return WriteFile(GetStdHandle(stream), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) !=
         0;
}

// Such a program gets no console, but whoever started it may have one.
bool WriteToConsole(const std::wstring& text) {
  if (AttachConsole(ATTACH_PARENT_PROCESS) == 0) return false;
  const Handle console(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  DWORD written = 0;
  return WriteConsoleW(console.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0;
}

void Show(DWORD stream, UINT icon, const QString& text) {
  if (Write(stream, text)) return;
  const std::wstring wide = text.toStdWString();
  if (!WriteToConsole(wide)) MessageBoxW(nullptr, wide.c_str(), L"KALIVOR", MB_OK | icon);
}

}  // namespace

void ShowAnswer(const QString& text) {
  Show(STD_OUTPUT_HANDLE, MB_ICONINFORMATION, text);
}

void ShowRefusal(const QString& text) {
  Show(STD_ERROR_HANDLE, MB_ICONERROR, text);
}

}  // namespace kalivor::platform
