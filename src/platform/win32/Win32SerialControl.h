// A serial port of Windows.
#pragma once

#include <windows.h>

#include <QByteArray>
#include <array>
#include <functional>

#include "platform/SerialControl.h"
#include "platform/plain/CommEvents.h"
#include "platform/plain/LineSettings.h"
#include "platform/plain/PortFault.h"
#include "platform/win32/Handle.h"
#include "platform/win32/SerialCalls.h"

namespace kalivor::platform {

/// Reading and writing go on while the program sleeps; the system's own exclusive use keeps others out.
/// Single-threaded. OnComm must neither open nor close the port.
class Win32SerialControl final : public SerialControl {
 public:
  /// The name of a port number as it is shown ("COM3"), "" when there is none.
  using NameResolver = std::function<QString(int number)>;

  /// `calls` must outlive the port.
  explicit Win32SerialControl(NameResolver resolver, SerialCalls& calls = SerialCalls::System());
  ~Win32SerialControl() override;
  Win32SerialControl(const Win32SerialControl&) = delete;
  Win32SerialControl& operator=(const Win32SerialControl&) = delete;

  [[nodiscard]] bool Open(int number, const QString& settings) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return port_ != INVALID_HANDLE_VALUE; }

  bool SetRts(bool raised) override;
  bool ClearInBuffer() override;
  bool ClearOutBuffer() override;

  /// What the driver has taken counts as sent: kCommEventSendDone is reported at once, or during a later
  /// wait.
  void SetSThreshold(int characters) override;
  void Output(const QByteArray& characters) override;
  [[nodiscard]] int InBufferCount() override;
  [[nodiscard]] QByteArray Input() override;

  /// Sends what is queued meanwhile.
  [[nodiscard]] InputWait WaitForInput(double seconds) override;
  [[nodiscard]] int CommEvent() override;
  [[nodiscard]] QString Fault() const override { return fault_.Text(); }

 private:
  // A read or a write that the system carries out; its event is set when it has ended.
  struct Operation {
    Operation() { overlapped.hEvent = event.Get(); }
    Handle event{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    OVERLAPPED overlapped{};
    bool underWay = false;
  };

  static constexpr DWORD kArrivingSize = 4096;

  [[nodiscard]] PortFault OpenPort(int number, const QString& settings);
  bool Configure(const LineSettings& settings);
  void NoteLineGone();
  void StartRead();
  void StartWrite();
  void TakeEnded(DWORD time_ms);
  void TakeRead();
  void TakeWritten();
  void Cancel(Operation& operation);
  void LookAtPort();

  NameResolver resolver_;
  SerialCalls& calls_;
  HANDLE port_ = INVALID_HANDLE_VALUE;
  bool lineGone_ = false;
  PortFault fault_;
  QString device_;  // the open one
  CommEvents events_{*this};
  DWORD waiting_ = 0;  // characters behind the last read, as far as is known
  Operation read_;
  Operation write_;
  std::array<char, kArrivingSize> arriving_{};  // where the read under way puts its characters
  QByteArray leaving_;                          // what the write under way sends
  QByteArray output_;                           // queued behind it
  QByteArray input_;                            // received, not yet taken by Input()
};

}  // namespace kalivor::platform
