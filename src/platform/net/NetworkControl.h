// A serial port that is reached over the network.
#pragma once

#include <QDeadlineTimer>
#include <QTimer>
#include <functional>
#include <memory>

#include "platform/NetworkAddress.h"
#include "platform/SerialControl.h"
#include "platform/net/ComPort.h"
#include "platform/net/TcpConnection.h"
#include "platform/plain/CommEvents.h"
#include "platform/plain/LineSettings.h"

namespace kalivor::platform {

/// How long the network is waited for.
struct NetworkTimes {
  double opening_s = 5;  ///< by one opening at most: looking for the name, connecting, setting the line

  /// After nobody has answered, openings of that address fail at once for so long: a transfer tries again and
  /// again, and each time would take as long.
  double unanswered_s = 5;

  /// That a controller has for its answer once a request has come to it.
  double reply_s = 0.4;

  /// A connection that nobody uses is kept for so long. Needs an event loop; without one it is kept until
  /// Release().
  double keep_s = 10;
};

/// The port is opened and closed around every telegram; the connection is kept between them, for so long
/// that a transfer needs one, and released soon after it, so that others get at the server. What is under way
/// when the port is closed does not arrive at the next opening:
///
///  - With COM port control (rfc2217://) closing asks the server to discard what it has, and opening waits
///    until it has done so. Rate, parity, data and stop bits are the server's business; what it does not set
///    as it was asked to is a failed opening. It tells of line errors, but does not mark the character.
///  - A raw connection (socket://) says nothing about what is under way. It is used again only when an answer
///    has come as a whole, and nothing behind it; otherwise the next opening makes a new one. The settings
///    are those of the server, whatever they are; RTS and line errors do not exist.
///  - A request that was not answered may be late itself, and be answered when the discarding is done or the
///    new connection stands. So the next opening lets the controller have its time (NetworkTimes::reply_s)
///    and drops what it says. With COM port control the server discards once more behind that, so nothing is
///    left however slow the network is; on a raw line the answer may still be under way to here.
///
/// Opening waits for the network no longer than NetworkTimes say. What the system has taken counts as sent.
/// Single-threaded. OnComm must neither open nor close the port.
class NetworkControl final : public SerialControl {
 public:
  /// The device of a port number, "" when there is none.
  using DeviceResolver = std::function<QString(int number)>;

  explicit NetworkControl(DeviceResolver resolver, NetworkTimes times = {});
  ~NetworkControl() override;
  NetworkControl(const NetworkControl&) = delete;
  NetworkControl& operator=(const NetworkControl&) = delete;

  /// Characters kept for Input(); more are left to the system.
  static constexpr qsizetype kInputLimit_bytes = 65536;

  [[nodiscard]] bool Open(int number, const QString& settings) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return open_; }

  /// Ends the connection, unless the port is open.
  void Release();

  bool SetRts(bool raised) override;
  bool ClearInBuffer() override;
  bool ClearOutBuffer() override;
  void SetSThreshold(int characters) override;
  void Output(const QByteArray& characters) override;
  [[nodiscard]] int InBufferCount() override;
  [[nodiscard]] QByteArray Input() override;
  [[nodiscard]] InputWait WaitForInput(double seconds) override;
  [[nodiscard]] int CommEvent() override;
  [[nodiscard]] QString Fault() const override { return fault_; }

 private:
  /// What lasts from one telegram to the next.
  struct Line {
    NetworkAddress address;
    std::unique_ptr<TcpConnection> connection;
    std::unique_ptr<ComPort> comPort;  // null for a raw one
    bool rts = false;
    bool used = false;     // characters have passed since what the other side holds was discarded
    bool answered = true;  // what was asked for last has been answered as a whole
    QByteArray heard;      // the first characters that have come
    bool proven = false;   // the port could be opened
  };

  bool Connect(const NetworkAddress& address, QDeadlineTimer bound);
  bool AgreeOnControl(QDeadlineTimer bound);
  bool WaitForGreeting(double seconds);
  bool WaitOut(const LineSettings& settings);
  bool Reuse(const NetworkAddress& address);
  bool Settle(const LineSettings& settings, QDeadlineTimer bound);
  bool Hear();
  void Note(QByteArrayView characters);
  bool Fail(const QString& fault);
  bool FailUnanswered(const QString& fault);
  bool FailEnded();
  [[nodiscard]] QString FaultOfEnd() const;

  [[nodiscard]] bool Usable() const { return open_ && !gone_; }
  void SendControl();
  bool ReadPiece(QByteArray& characters);
  void ReadAll();
  void Purge();
  void NoteSent();

  DeviceResolver resolver_;
  NetworkTimes times_;
  std::unique_ptr<Line> line_;
  bool open_ = false;
  bool gone_ = false;
  bool owed_ = false;  // what was asked for last may still be answered
  QString fault_;
  CommEvents events_{*this};
  QByteArray input_;  // received, not yet taken by Input()
  NetworkAddress unanswered_;
  QDeadlineTimer unansweredUntil_{0};
  QTimer keep_;
};

}  // namespace kalivor::platform
