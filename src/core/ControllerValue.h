// A parameter's value as the controller holds it.
#pragma once

#include <optional>

#include "core/Core.h"

namespace kalivor {

/// How a parameter is transferred, by the first three letters of its type.
enum class Transfer { None, Long, Int, Char, String };

[[nodiscard]] Transfer TransferOf(const ParameterRecord& record);

/// Length of a string parameter: the number from character 7 of its type on.
[[nodiscard]] int StringLength(const ParameterRecord& record);

/// Address of the low word of a long value: always 8 digits.
[[nodiscard]] QString LowWordAddress(const ParameterRecord& record);

/// True when the parameter is the low byte of its word.
[[nodiscard]] bool IsOddAddress(const ParameterRecord& record);

/// Reads a long, int or char value. Empty after a failure, which is in the report then.
[[nodiscard]] std::optional<qint32> ReadNumber(Core& core, const ParameterRecord& record);

/// A string as far as it could be read.
struct ReadText {
  QString text;
  bool complete = false;  ///< false after a failure, which is in the report then
};
[[nodiscard]] ReadText ReadString(Core& core, const ParameterRecord& record);

}  // namespace kalivor
