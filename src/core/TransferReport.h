// What a transfer did to each parameter, and the report's lines about it.
#pragma once

#include <optional>
#include <vector>

#include "core/Core.h"

namespace kalivor {

/// What happened to one parameter.
struct ParameterResult {
  enum class Outcome {
    Sent,
    Received,
    Equal,       ///< compared: PC and controller hold the same
    Differs,     ///< compared: they do not
    NotSent,     ///< a word could not be written, or not be read before
    NotRead,     ///< a word could not be read
    NoAddress,   ///< none is known
    PassedOver,  ///< its type is unknown
  };

  int index = 0;  ///< in Par; 0: the plant type
  Outcome outcome = Outcome::PassedOver;
  std::optional<int> failedWord = {};  ///< of NotSent, NotRead, where the report names it
  ParameterValue pc = {};              ///< of Differs: both sides
  ParameterValue controller = {};

  [[nodiscard]] bool Failed() const {
    return outcome == Outcome::NotSent || outcome == Outcome::NotRead || outcome == Outcome::NoAddress;
  }
};

/// The results in the order in which they came about.
struct WalkResult {
  std::vector<ParameterResult> results;

  [[nodiscard]] int Failures() const;
  [[nodiscard]] int Deviations() const;
};

/// A value as report and `--json` show it: a number as in the tree, a text as it stands. Throws RuntimeError
/// (Overflow) when Zahl1 + Zahl2 is above 9.
[[nodiscard]] QString ShownValue(const ParameterRecord& record, const ParameterValue& value);

/// Adds the lines about `result`: none when all went well. A word of a text that could not be sent is shown
/// in a box first, the only failure that interrupts the user. Throws RuntimeError, like ShownValue, before
/// the first line.
void ReportResult(Core& core, const ParameterResult& result);

/// The same, and the dot of progress behind the last line of the report, which a parameter without address
/// does not get.
void ReportProgress(Core& core, const ParameterResult& result);

}  // namespace kalivor
