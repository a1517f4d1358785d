// What was done with a controller's values, told to whoever keeps a history of it.
#pragma once

#include <QString>
#include <vector>

#include "base/ParameterTable.h"

namespace kalivor {

struct SafeRun;
struct WalkResult;

enum class DeedKind { Received, Sent, SentSafely, Compared, Loaded, Saved, Reset, Restored };

/// Told at its end, unless no value was touched by then. What it points to lives until the teller goes on;
/// the table is as it is by then.
struct Deed {
  DeedKind kind = DeedKind::Received;
  bool aborted = false;                     ///< by the user, a failure of the line or a run-time error
  QString file = {};                        ///< path, of Loaded and Saved
  const WalkResult* walk = nullptr;         ///< of the plain transfers: what happened to each parameter
  const SafeRun* run = nullptr;             ///< of the safe ones, and of a comparison of the list
  std::vector<ParameterValue> before = {};  ///< of Loaded and Reset: parameter i of the table before it;
                                            ///< empty: other definitions were there
};

/// The values of parameters 0..ParCount - 1, as a deed has those before it.
[[nodiscard]] std::vector<ParameterValue> ValuesOf(const ParameterTable& table);

}  // namespace kalivor
