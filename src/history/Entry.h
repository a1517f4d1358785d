// What the history holds: plants, entries, changed values, remarks.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUuid>
#include <optional>

#include "core/Deed.h"

namespace kalivor::history {

/// "empfangen", "gesendet", "sicher gesendet", "verglichen", "geladen", "gespeichert", "zurückgesetzt",
/// "wiederhergestellt": for the user, and what the tables hold.
[[nodiscard]] QString KindText(DeedKind kind);
[[nodiscard]] std::optional<DeedKind> KindOf(QStringView text);
inline constexpr DeedKind kKinds[] = {DeedKind::Received, DeedKind::Sent,    DeedKind::SentSafely,
                                      DeedKind::Compared, DeedKind::Loaded,  DeedKind::Saved,
                                      DeedKind::Reset,    DeedKind::Restored};

/// True for what was exchanged with a controller; the others concern the table of the PC alone.
[[nodiscard]] bool ConcernsController(DeedKind kind);

/// When something was added. Rows are put in order by `moment_ms`, never by the clock: within a store it only
/// ever grows, whatever the clock is set to.
struct Stamp {
  qint64 moment_ms =
      0;               ///< since 1970 in UTC; at least 1 more than that of the row before from the same store
  QDateTime time;      ///< that the clock showed, with its offset from UTC, to the second
  QString technician;  ///< may be ""

  bool operator==(const Stamp&) const = default;
};

/// A plant as it was described last.
struct Plant {
  QUuid id;
  QString name;
  QString place;
  QString remark;

  bool operator==(const Plant&) const = default;
};

/// One deed. Texts are as the user gave them or the program had them: anything may stand in them.
struct Entry {
  QUuid id;
  Stamp stamp;
  QUuid plant;        ///< null: none was named; what was assigned later counts
  QString pc;         ///< name of the computer
  QString version;    ///< of the controller
  QString plantType;  ///< "" where there is none
  int address = 0;    ///< station address
  QString port;       ///< "COM1", and the device where it is known; "" where none was used
  QString program;    ///< version of the program
  DeedKind kind = DeedKind::Received;
  QString outcome;  ///< "1999 Werte", "38 geprüft, 2 abweichend" …
  QString remark;   ///< of the time when it was made: a file's path
  QString quality;  ///< of the line during the transfer, as QualityLine; "" where none was used
  QByteArray set;   ///< identifies the complete set of values; empty: there is none
  QString held;     ///< which of its values the controller held, as numbers of records: "1-12,14"; "": none
  int changes = 0;  ///< how many changed values it has

  bool operator==(const Entry&) const = default;
};

/// One value of an entry that changed, or that something is to be said of. Self-contained: it can be read
/// without the definitions that it comes from.
struct Change {
  int number = 0;  ///< of the parameter
  QString group;
  QString name;
  QString variable;
  QString type;     ///< without trailing blanks
  QString address;  ///< in the controller, hexadecimal; "": unknown
  QString unit;
  QString before;  ///< as list and report show it ("-0.50"); "": not known
  QString after;   ///< the same
  QString state;   ///< "geprüft", "nicht gelesen" …; "" where there is nothing to say

  bool operator==(const Change&) const = default;
};

/// What somebody had to say about an entry later.
struct Remark {
  QUuid id;
  QUuid entry;
  Stamp stamp;
  QString text;

  bool operator==(const Remark&) const = default;
};

}  // namespace kalivor::history
