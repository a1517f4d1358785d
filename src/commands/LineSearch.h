// Finding the controller: who answers at which port, rate and address.
#pragma once

#include <QList>
#include <QString>
#include <optional>
#include <vector>

#include "comm/COM_T_frm.h"
#include "core/Core.h"
#include "core/LineFinding.h"
#include "core/Progress.h"
#include "platform/PortDirectory.h"

namespace kalivor {

/// Whom to ask.
struct LineSearchRequest {
  struct Range {
    qint16 first = 0;
    qint16 last = 255;
  };

  QList<platform::PortEntry> ports;  ///< one after the other
  qint16 address = 1;                ///< that is asked first, at every port
  std::optional<Range> range = {};   ///< that are asked behind it, 0..255 each

  [[nodiscard]] bool EveryAddress() const { return range && range->first == 0 && range->last == 255; }
};

/// One controller that gave its version.
struct FoundController {
  QString settings;  ///< of the line, "9600,o,7,1"; "" where they cannot be chosen
  qint16 address = 0;
  QString version;
  bool known = false;  ///< in the version table
  std::optional<int>
      plant;          ///< its plant number; empty where nobody knows how to read it, or it could not be
  QString plantName;  ///< of that number in the version table; may be empty
  bool echo = false;  ///< the request came back as well
  int answer_ms = 0;
};

/// One port that was to be asked.
struct SearchedPort {
  platform::PortEntry port;
  std::vector<FoundController> answers;
  PortFinding finding;  ///< where nobody answered
  QString text;         ///< the same in German; "" where somebody did
};

struct LineSearch {
  std::vector<SearchedPort> ports;  ///< in the order of the request, every one of it
  bool aborted = false;
  QString error;  ///< in German why nothing was asked

  [[nodiscard]] bool Found() const;
};

/// Asks every port for a version, with one attempt at each address and rate: first at the address of the
/// request at 9600 and 19200 baud, then at each of the range. An address that has answered is not asked
/// again; a port whose line settings cannot be chosen is asked once for each address. The plant number of a
/// known version is read as its own definitions say. Neither tables nor tree nor the report change, and port,
/// address and rate of the channel are afterwards what they were. Busy meanwhile; an abort request ends it
/// behind the exchange at hand. Does nothing while an operation is under way (an error then).
[[nodiscard]] LineSearch SearchLine(Core& core, COM_T_frm& host, platform::PortDirectory& ports,
                                    const LineSearchRequest& request, ProgressForm& form);

/// "Heizung (1)", "1" without a name, or "unbekannt".
[[nodiscard]] QString PlantText(const FoundController& found);

}  // namespace kalivor
