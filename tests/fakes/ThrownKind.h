// Which kind of run-time error an action ends with.
#pragma once

#include <optional>

#include "platform/RuntimeError.h"

namespace kalivor::test {

/// The kind of the RuntimeError that `action` throws; nothing when it throws none.
template <typename Action>
[[nodiscard]] std::optional<RuntimeError::Kind> ThrownKind(Action action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error.GetKind();
  }
  return std::nullopt;
}

}  // namespace kalivor::test
