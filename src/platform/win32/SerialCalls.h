// The calls of Windows that a serial port consists of.
#pragma once

#include <windows.h>

#include <span>

namespace kalivor::platform {

/// Each call does what the system's one does, and says by its result whether it succeeded. Tests put others
/// in its place.
class SerialCalls {
 public:
  virtual ~SerialCalls() = default;

  /// The calls of the system itself.
  [[nodiscard]] static SerialCalls& System();

  /// False where a port keeps neither parity nor data bits nor the RTS line and says so by failing: such are
  /// the pseudo-terminals that stand for ports where Windows itself is imitated.
  [[nodiscard]] virtual bool IsRealPort();

  /// For this program alone, overlapped. INVALID_HANDLE_VALUE on failure.
  [[nodiscard]] virtual HANDLE Open(const wchar_t* name);
  virtual void Close(HANDLE port);

  /// Why Open() has just failed: ERROR_…
  [[nodiscard]] virtual DWORD LastError();

  [[nodiscard]] virtual bool GetState(HANDLE port, DCB& state);
  [[nodiscard]] virtual bool SetState(HANDLE port, const DCB& state);
  [[nodiscard]] virtual bool SetTimeouts(HANDLE port, const COMMTIMEOUTS& timeouts);
  [[nodiscard]] virtual bool Escape(HANDLE port, DWORD function);
  [[nodiscard]] virtual bool Purge(HANDLE port, DWORD what);

  /// Errors since the last call (CE_…), and what waits.
  [[nodiscard]] virtual bool ClearError(HANDLE port, DWORD& errors, COMSTAT& status);

  /// Begin an operation. True: done or under way (its event tells the end), false: failed.
  [[nodiscard]] virtual bool StartRead(HANDLE port, char* bytes, DWORD count, OVERLAPPED& operation);
  [[nodiscard]] virtual bool StartWrite(HANDLE port, const char* bytes, DWORD count, OVERLAPPED& operation);

  /// Asks an operation to end, and waits for its end.
  virtual void Cancel(HANDLE port, OVERLAPPED& operation);

  /// What an operation that has ended came to: `count` bytes, also of one that was cancelled. False: failed.
  [[nodiscard]] virtual bool Result(HANDLE port, OVERLAPPED& operation, DWORD& count);

  /// Sleeps until one of the events is set or the time is over.
  virtual void Wait(std::span<const HANDLE> events, DWORD time_ms);
};

}  // namespace kalivor::platform
