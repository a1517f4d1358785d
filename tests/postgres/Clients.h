// Many technicians who exchange their histories with one server at the same time, over a network that cuts
// them off.
#pragma once

#include <QString>

#include "postgres/PostgresServer.h"

namespace kalivor::test {

struct Crowd {
  int clients = 0;
  int entries = 0;  ///< of each, before
  quint64 seed = 0;
  /// A connection is cut after so many bytes at most.
  qint64 longest_bytes = 0;
};

struct CrowdOutcome {
  int cuts = 0;        ///< of connections
  int rounds = 0;      ///< begun exchanges, of all
  double first_s = 0;  ///< until every client had sent all that it has
  double all_s = 0;    ///< until everybody had everything
  QString difference;  ///< between what was made and what clients and server have at the end; "" where there
                       ///< is none
};

/// On a prepared server that holds nothing. The histories lie in `folder`.
[[nodiscard]] CrowdOutcome RunCrowd(const PostgresServer& server, const Crowd& crowd, const QString& folder);

}  // namespace kalivor::test
