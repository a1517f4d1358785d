// One telegram to the controller and its reply.
#pragma once

#include <QString>

#include "comm/COM_T_frm.h"

namespace kalivor {

/// A request is "#", the station address, "02", a body, a checksum and a carriage return. Every failure is a
/// returned text that begins "ERROR: ".
class COM_T {
 public:
  explicit COM_T(COM_T_frm& host);

  /// Transact up to `maxTries` times; returns the first good result or the last failure.
  [[nodiscard]] QString SendWithRetry(qint16 slot, QStringView body, bool wantReply, int maxTries,
                                      int payloadLength = 0);

  /// One attempt: the payload of a good reply, or a failure. "" when no reply is wanted. `payloadLength` is
  /// the length of the payload where it is known: a reply is taken whatever its length is, but one as long as
  /// that costs less than one that is taken character by character.
  [[nodiscard]] QString Transact(qint16 slot, QStringView body, bool wantReply, int payloadLength = 0);

  /// Sends the complete `frame` and returns the reply without the echo of the frame. Opens the port before
  /// and closes it after.
  [[nodiscard]] QString SendReceive(qint16 slot, const QString& frame, bool wantReply, int payloadLength = 0);

 private:
  QString Exchange(qint16 slot, const QString& frame, bool wantReply, int payloadLength);
  bool WaitForFirstCharacter(const SoftTimer& bound);
  QString ReceiveRaw();
  QString WithLineError(const QString& result, const QString& reply);

  COM_T_frm& host_;
  int RetryCount = 0;

  // Kept from telegram to telegram, so that a transfer needs no new memory for each.
  QString frame_;
  QByteArray output_;
  QString reply_;
  QString checksum_;
  QString payload_;
};

}  // namespace kalivor
