#include "platform/win32/SerialCalls.h"

namespace kalivor::platform {

SerialCalls& SerialCalls::System() {
  static SerialCalls calls;
  return calls;
}

bool SerialCalls::IsRealPort() {
  // Wine names itself there.
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr;
}

HANDLE SerialCalls::Open(const wchar_t* name) {
  return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED,
                     nullptr);
}

DWORD SerialCalls::LastError() {
  return GetLastError();
}

void SerialCalls::Close(HANDLE port) {
  CloseHandle(port);
}

bool SerialCalls::GetState(HANDLE port, DCB& state) {
  state.DCBlength = sizeof state;
  return GetCommState(port, &state) != 0;
}

bool SerialCalls::SetState(HANDLE port, const DCB& state) {
  DCB wanted = state;
  return SetCommState(port, &wanted) != 0;
}

bool SerialCalls::SetTimeouts(HANDLE port, const COMMTIMEOUTS& timeouts) {
  COMMTIMEOUTS wanted = timeouts;
  return SetCommTimeouts(port, &wanted) != 0;
}

bool SerialCalls::Escape(HANDLE port, DWORD function) {
  return EscapeCommFunction(port, function) != 0;
}

bool SerialCalls::Purge(HANDLE port, DWORD what) {
  return PurgeComm(port, what) != 0;
}

bool SerialCalls::ClearError(HANDLE port, DWORD& errors, COMSTAT& status) {
  return ClearCommError(port, &errors, &status) != 0;
}

bool SerialCalls::StartRead(HANDLE port, char* bytes, DWORD count, OVERLAPPED& operation) {
  return ReadFile(port, bytes, count, nullptr, &operation) != 0 || GetLastError() == ERROR_IO_PENDING;
}

bool SerialCalls::StartWrite(HANDLE port, const char* bytes, DWORD count, OVERLAPPED& operation) {
  return WriteFile(port, bytes, count, nullptr, &operation) != 0 || GetLastError() == ERROR_IO_PENDING;
}

void SerialCalls::Cancel(HANDLE port, OVERLAPPED& operation) {
  DWORD count = 0;
  // What has ended meanwhile is not found; nothing is to be waited for then.
  if (CancelIoEx(port, &operation) != 0 || GetLastError() != ERROR_NOT_FOUND)
    (void)GetOverlappedResult(port, &operation, &count, TRUE);
}

bool SerialCalls::Result(HANDLE port, OVERLAPPED& operation, DWORD& count) {
  return GetOverlappedResult(port, &operation, &count, FALSE) != 0 ||
         GetLastError() == ERROR_OPERATION_ABORTED;
}

void SerialCalls::Wait(std::span<const HANDLE> events, DWORD time_ms) {
  (void)WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(), FALSE, time_ms);
}

}  // namespace kalivor::platform
