// What was done with a controller's values, told to whoever keeps a history of it.
#pragma once

#include <QString>
#include <vector>

#include "base/ParameterTable.h"

namespace kalivor {

struct SafeRun;
struct ValueSet;
struct WalkResult;

enum class DeedKind { Received, Sent, SentSafely, Compared, Loaded, Saved, Reset, Restored };

/// How it ended.
enum class DeedEnd {
  Done,
  WithFailures,  ///< it came to its end, but some values were not read, not written or not verified
  Aborted,       ///< by the user, or by a run-time error
  NotDone,       ///< nothing was transferred, read or written
};

/// Told at its end. What it points to lives until the teller goes on; the table is as it is by then.
struct Deed {
  DeedKind kind = DeedKind::Received;
  DeedEnd end = DeedEnd::Done;
  QString file = {};                        ///< path, of Loaded and Saved
  const WalkResult* walk = nullptr;         ///< of the plain transfers: what happened to each parameter
  const SafeRun* run = nullptr;             ///< of the safe ones
  const ValueSet* values = nullptr;         ///< of a comparison of the list: what the controller holds
  std::vector<ParameterValue> before = {};  ///< of Loaded and Reset: parameter i of the table before it;
                                            ///< empty: other definitions were there
};

}  // namespace kalivor
