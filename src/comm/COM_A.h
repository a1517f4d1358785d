// What the controller understands: its version, reading a word, writing a word.
#pragma once

#include <QString>
#include <functional>
#include <utility>

#include "base/Module1.h"
#include "comm/COM_T.h"
#include "comm/CarefulLine.h"

namespace kalivor {

/// "AB1-04D2…", the payload of a version reply, as the user reads it: "AB1-123.4".
[[nodiscard]] QString VersionText(const QString& payload);

/// Words are 16 bits. An address is hexadecimal text, of which the last four characters are sent. Command
/// letters come from the version table's row of the selected version.
class COM_A {
 public:
  /// Called with the text of a failure, before the operation returns.
  using FailureHandler = std::function<void(const QString& text)>;

  COM_A(const Settings& settings, const VersionTable& versions, COM_T_frm& host, FailureHandler onFailure)
      : settings_(settings),
        versions_(versions),
        host_(host),
        transport_(host),
        onFailure_(std::move(onFailure)) {}

  /// The same controller on the same line, whose failures are told to `onFailure` instead.
  [[nodiscard]] COM_A TellingFailuresTo(FailureHandler onFailure) const {
    return COM_A(settings_, versions_, host_, std::move(onFailure));
  }

  /// The same controller on the same line, asked with care; `goOn` as there.
  [[nodiscard]] CarefulLine AskingCarefully(std::function<bool()> goOn) const {
    return CarefulLine(settings_, versions_, host_, std::move(goOn));
  }

  /// The version text of the connected controller ("AB1-123.4"), or a failure ("ERROR: …"). Tries the
  /// current line rate, then 19200, then 9600 baud; the line keeps the rate that was tried last.
  [[nodiscard]] QString Identify(qint16 slot);

  /// The same, with success and text apart.
  [[nodiscard]] Identification AskVersion(qint16 slot);

  /// One version query without retries.
  [[nodiscard]] QString ReadVersion(qint16 slot);

  /// Writes the low 16 bits of `value`. A failure is told to the handler, and false returned.
  [[nodiscard]] bool WriteWord(qint16 slot, qint32 value, const QString& address);

  /// Read a word, signed or as 0..65535. On success `result` is set and true returned. A failure of the line
  /// is told to the handler; a reply of the wrong length is not.
  /// Throws RuntimeError (Overflow) when a reply that is no hexadecimal number leaves the 16-bit range.
  [[nodiscard]] bool ReadInt(qint16 slot, qint16& result, const QString& address);
  [[nodiscard]] bool ReadLong(qint16 slot, qint32& result, const QString& address);

  /// Configures the slot for the controller at the stored address and port.
  QString Configure(qint16 slot, QStringView settings);

 private:
  [[nodiscard]] QString Body(int letter, QStringView address) const;
  bool ReadWord(qint16 slot, QString& digits, const QString& address);

  const Settings& settings_;
  const VersionTable& versions_;
  COM_T_frm& host_;
  COM_T transport_;
  FailureHandler onFailure_;
};

}  // namespace kalivor
