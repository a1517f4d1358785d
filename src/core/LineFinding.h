// What a port without a controller has to say: from its exchanges to a sentence for the user.
#pragma once

#include <QString>

#include "comm/ExchangeLog.h"
#include "platform/PortDirectory.h"

namespace kalivor {

/// What was seen at a port where no controller gave its version. Where several things were seen, the first of
/// this order is told: what leaves the search incomplete, then what tells most about who is there.
enum class LineFinding {
  Unplugged,     ///< the device vanished during the search
  InUse,         ///< the port could not be opened: another program has it
  NoPermission,  ///< the same: this user may not
  Missing,       ///< the same: a number is bound to the device, and it is not there
  NotOpened,     ///< the same, for another reason
  Refused,       ///< a controller answered that it does not do it
  Damaged,       ///< a reply of a controller, but not a whole one
  OtherText,     ///< text that is no telegram
  Garbled,       ///< characters that mean nothing
  EchoOnly,      ///< nothing but the request itself
  Silent,        ///< nothing
  NotAsked,      ///< the search was aborted before
};

/// What one port's search has come to.
struct PortFinding {
  LineFinding kind = LineFinding::NotAsked;
  QString detail = {};  ///< of Refused: its text; of OtherText: the text, shortened; of a port that could not
                        ///< be opened or is gone: what the system says, and what to do
  qint16 address = -1;  ///< of Refused and Damaged: whom the request was for
  QString settings = {};  ///< of Refused, Damaged and OtherText: of the line, "9600,o,7,1"

  bool operator==(const PortFinding&) const = default;
};

/// What the exchanges `first` to `last` of the log say, none of which was a good one; all of them are at the
/// same port, settled and still kept. `port` is what the directory knew of it afterwards: it says why the
/// port could not be opened. NotAsked where there are none.
[[nodiscard]] PortFinding FindingOf(const ExchangeLog& log, qint64 first, qint64 last,
                                    const platform::PortEntry& port);

/// What was seen, what that means and what to do, in German. `everyAddress`: all of them were asked.
[[nodiscard]] QString FindingText(const PortFinding& finding, bool everyAddress);

/// The same kind in one word, for other programs: "silent", "echo-only".
[[nodiscard]] QString FindingName(LineFinding kind);

/// "9600" of "9600,o,7,1".
[[nodiscard]] QString RateOf(const QString& settings);

}  // namespace kalivor
