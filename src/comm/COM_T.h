// One telegram to the controller and its reply.
#pragma once

#include <QString>

#include "comm/COM_T_frm.h"

namespace kalivor {

/// A reply's characters at least: header, mark, checksum and line end.
inline constexpr qsizetype kShortestReply = 9;

/// Two hexadecimal digits of the sum of all character codes.
[[nodiscard]] QString TelegramSum(QStringView characters);

/// What the user reads about a refusal with this code of two characters, with a blank in front.
[[nodiscard]] QString RefusalText(const QString& code);

/// The same about a line error (a kCommEvent… number), with a blank in front; "" for any other event.
[[nodiscard]] QString LineErrorText(int event);

/// A request is "#", the station address, "02", a body, a checksum and a carriage return. Every failure is a
/// returned text that begins "ERROR: ".
class COM_T {
 public:
  explicit COM_T(COM_T_frm& host) : host_(host) {}

  /// Transact up to `maxTries` times; returns the first good result or the last failure.
  [[nodiscard]] QString SendWithRetry(qint16 slot, QStringView body, bool wantReply, int maxTries);

  /// One attempt: the payload of a good reply, or a failure. "" when no reply is wanted.
  [[nodiscard]] QString Transact(qint16 slot, QStringView body, bool wantReply);

  /// The complete request with this body, for the slot's station.
  [[nodiscard]] QString Frame(qint16 slot, QStringView body);

  /// The payload of a `reply` as SendReceive() returns it, or a failure.
  [[nodiscard]] static QString PayloadOf(const QString& reply);

  /// Sends the complete `frame` and returns the reply without the echo of the frame. Opens the port before
  /// and closes it after. A line ends at its first control character, however its characters arrive; what
  /// stands behind it is the beginning of the next line of this exchange.
  [[nodiscard]] QString SendReceive(qint16 slot, const QString& frame, bool wantReply);

 private:
  /// How waiting for the end of a line ended.
  enum class LineEnd {
    Complete,
    NotInTime,     ///< the reply's time is over, or the device is gone
    ExchangeOver,  ///< the exchange has taken too long, as echo followed echo
  };

  void Send(const QString& frame);
  QString Receive(qint16 slot, qsizetype frameLength, bool wantReply);
  bool WaitForFirstCharacter(const SoftTimer& bound);
  LineEnd ReceiveLine(const SoftTimer& bound);
  bool TakeLine();
  QString Taken();
  /// kept: for protocols other than 15..17, which no controller of today speaks.
  QString ReceiveRaw();
  QString WithLineError(const QString& result, const QString& reply);

  COM_T_frm& host_;
  QString received_;  // behind the line that was taken last
  QString reply_;     // that line
};

}  // namespace kalivor
