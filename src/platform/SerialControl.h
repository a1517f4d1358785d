// One serial port as the telegram layer uses it.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

namespace kalivor::platform {

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

class SerialControl {
 public:
  virtual ~SerialControl() = default;

  /// Opens port `number` for this program alone with `settings` in the notation
  /// "baud,parity,data bits,stop bits" ("9600,o,7,1"), and clears CommEvent(). False when the port is absent,
  /// in use, not permitted or refuses the settings.
  [[nodiscard]] virtual bool Open(int number, const QString& settings) = 0;

  /// Closes the port without waiting for unsent characters. Does nothing when it is not open.
  virtual void Close() = 0;

  [[nodiscard]] virtual bool IsOpen() const = 0;

  /// Raises or drops the RTS line; false when the port refuses.
  virtual bool SetRts(bool raised) = 0;

  /// Discard what was received but not taken, or queued but not sent. False on a port failure.
  virtual bool ClearInBuffer() = 0;
  virtual bool ClearOutBuffer() = 0;

  /// Asks for a kCommEventSendDone when at most `characters` wait to be sent; 0 asks for none.
  virtual void SetSThreshold(int characters) = 0;

  /// Queues characters for sending and returns without waiting for them to go out.
  virtual void Output(const QByteArray& characters) = 0;

  /// Number of received characters that Input() would return now.
  [[nodiscard]] virtual int InBufferCount() = 0;

  /// Takes the received characters: all of them, or all that the last wait has found, where one has just
  /// ended with Input. One with a parity error has become "?".
  [[nodiscard]] virtual QByteArray Input() = 0;

  /// Sleeps in the operating system until a character waits, `seconds` have passed or the device is gone.
  [[nodiscard]] virtual InputWait WaitForInput(double seconds) = 0;

  /// The same for a caller who can do nothing with fewer than `characters` (1 or more): may leave the ones
  /// before the last unnoticed for as long as they take at the line's rate, and then ends with whatever
  /// waits. The device being gone, and the end of the time, are noticed at once.
  [[nodiscard]] virtual InputWait WaitForInputOf(int /*characters*/, double seconds) {
    return WaitForInput(seconds);
  }

  /// The last event since Open(): a line error if there was one, else kCommEventSendDone or none.
  [[nodiscard]] virtual int CommEvent() = 0;

  /// Runs on communication events, from inside the operations above.
  std::function<void()> OnComm;
};

}  // namespace kalivor::platform
