// The serial channel: which port with which settings, opened and closed around every telegram.
#pragma once

#include <QString>

#include "base/BoundedArray.h"
#include "base/Module1.h"
#include "comm/ExchangeLog.h"
#include "comm/TH.h"
#include "platform/SerialControl.h"

namespace kalivor {

/// The protocol that controllers speak; 15..17 are received line by line, all others raw.
inline constexpr qint16 kControllerProtocol = 16;

/// The one channel slot that the program uses.
inline constexpr qint16 kSlot = 1;

/// Line settings: the rate after start, and the one that identification falls back to.
inline constexpr QStringView kSettings9600 = u"9600,o,7,1";
inline constexpr QStringView kSettings19200 = u"19200,o,7,1";

struct PortRecord {
  qint16 Offen = kFalse;  ///< the port is open for this slot
  qint16 PortNr = 0;      ///< serial port number, 1..8
  qint16 Protokoll = 0;   ///< protocol type code
  qint16 Adr = 0;         ///< station address
  QString Settings;       ///< "baud,parity,data bits,stop bits"

  bool operator==(const PortRecord&) const = default;
};

/// True when `text` is a failure: every routine of this layer reports one as a text that begins "ERROR: ".
[[nodiscard]] bool IsError(QStringView text);

/// A failure without its beginning and the blanks around it: what the user reads beside something else.
[[nodiscard]] QString ReasonOf(QStringView failure);

class COM_T_frm {
 public:
  COM_T_frm(const Conversation& conversation, platform::SerialControl& control, TH& timers);
  ~COM_T_frm();
  COM_T_frm(const COM_T_frm&) = delete;
  COM_T_frm& operator=(const COM_T_frm&) = delete;

  /// Slots 0..3; any other throws RuntimeError (Bounds).
  BoundedArray<PortRecord, 3> Ports;

  /// What went over the line.
  ExchangeLog Exchanges;

  /// When set, the port and its RTS line stay up between telegrams.
  /// kept: nothing sets it; it is the switch for looking at the line between telegrams.
  qint16 KeepOpen = kFalse;

  /// Set when the port reports that everything queued has been sent; cleared behind each output, so that a
  /// report that comes from inside the output does not count.
  /// kept: nothing reads it; it tells whoever looks into a stopped program whether the request has gone out.
  qint16 SendDone = kFalse;

  /// Stores the channel's data and tries the port once. Does nothing while an abort is requested.
  /// Returns "" or the failure for the user; the data is stored in either case.
  QString ConfigurePort(qint16 slot, qint16 protocol, qint16 address, qint16 portNumber,
                        const QString& settings);

  /// Opens the slot's port unless it is open. Returns "" or exactly "ERROR: ", also while the port is open
  /// for another slot.
  [[nodiscard]] QString OpenPort(qint16 slot);

  /// Closes the port (unless KeepOpen) and starts the pause that the next telegram waits out.
  void ClosePort();

  /// The port itself, for the telegram layer.
  [[nodiscard]] platform::SerialControl& Control() { return control_; }
  [[nodiscard]] TH& Timers() { return timers_; }

 private:
  QString SetupPort(qint16 slot, qint16 address, qint16 portNumber, const QString& settings);

  const Conversation& conversation_;
  platform::SerialControl& control_;
  TH& timers_;
};

}  // namespace kalivor
