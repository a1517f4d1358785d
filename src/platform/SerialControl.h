// One serial port as the telegram layer uses it.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

namespace kalivor::platform {

/// Ports are numbered from 1 to this.
inline constexpr int kLargestPortNumber = 8;

/// Numbers that CommEvent() can report.
enum CommEventCode : int {
  kCommEventNone = 0,
  kCommEventSendDone = 1,
  kCommEventBreak = 1001,
  kCommEventFraming = 1004,
  kCommEventOverrun = 1006,
  kCommEventReceiveOverflow = 1008,
  kCommEventParity = 1009,
  kCommEventTransmitFull = 1010,
  kCommEventDeviceControlBlock = 1011,
};

/// How a wait for input ended.
enum class InputWait {
  Input,     ///< at least one character waits
  TimedOut,  ///< the time is over
  LineGone,  ///< the device has vanished; nothing can come any more
};

/// Every operation on a closed port does nothing and fails, or reports an empty buffer.
class SerialControl {
 public:
  /// Characters that wait to be sent at most; Output() refuses what would exceed it, and reports
  /// kCommEventTransmitFull.
  static constexpr qsizetype kOutputLimit_bytes = 65536;

  virtual ~SerialControl() = default;

  /// Opens port `number` for this program alone with `settings` in the notation
  /// "baud,parity,data bits,stop bits" ("9600,o,7,1"), leaves RTS down, and clears CommEvent(). An open port
  /// is closed first. False when the port is absent, in use, not permitted or refuses the settings.
  [[nodiscard]] virtual bool Open(int number, const QString& settings) = 0;

  /// Closes the port without waiting for unsent characters, and drops what was received and not taken.
  virtual void Close() = 0;

  [[nodiscard]] virtual bool IsOpen() const = 0;

  /// Raises or drops the RTS line; false when the port refuses.
  virtual bool SetRts(bool raised) = 0;

  /// Discard what was received but not taken, or queued but not sent. False on a port failure.
  virtual bool ClearInBuffer() = 0;
  virtual bool ClearOutBuffer() = 0;

  /// From a number of 1 on, asks for a kCommEventSendDone when all that Output() queued has been sent; 0 asks
  /// for none. Outlasts Close().
  virtual void SetSThreshold(int characters) = 0;

  /// Queues characters for sending and returns without waiting for them to go out.
  virtual void Output(const QByteArray& characters) = 0;

  /// Number of received characters that Input() would return now.
  [[nodiscard]] virtual int InBufferCount() = 0;

  /// Takes the received characters: all of them, or those that the last wait or count has found. One with a
  /// parity error has become "?".
  [[nodiscard]] virtual QByteArray Input() = 0;

  /// Sleeps in the operating system until a character waits, `seconds` have passed or the device is gone.
  [[nodiscard]] virtual InputWait WaitForInput(double seconds) = 0;

  /// The last event since Open(): a line error if there was one, else kCommEventSendDone or none.
  [[nodiscard]] virtual int CommEvent() = 0;

  /// Why the last Open() failed, or the line that it opened is gone, as far as that has been noticed: in
  /// German, for the user ("COM3 ist belegt: …"). "" where there is nothing wrong. Outlasts Close().
  [[nodiscard]] virtual QString Fault() const { return {}; }

  /// Runs on communication events, from inside the operations above.
  std::function<void()> OnComm;
};

}  // namespace kalivor::platform
