// Moving one parameter's value between PC and controller, word by word.
#pragma once

#include <optional>

#include "comm/COM_A.h"
#include "core/ParameterTypes.h"

namespace kalivor {

/// How far it came. What failed on the line has been told to the controller's failure handler.
struct Moved {
  bool complete = true;
  std::optional<int> failedWord = {};  ///< of a text, from 1; the words of a number are not told apart
};

struct ReadValue {
  Moved moved;
  ParameterValue value;  ///< a number when complete, a text as far as it could be read
};

/// Reads the record's value. Throws RuntimeError (Overflow), like COM_A.
[[nodiscard]] ReadValue ReadController(COM_A& controller, const ParameterRecord& record,
                                       const ParameterType& type);

/// Writes the record's value; stops at the first word that fails. Throws RuntimeError (Overflow).
[[nodiscard]] Moved WriteController(COM_A& controller, const ParameterRecord& record,
                                    const ParameterType& type);

}  // namespace kalivor
