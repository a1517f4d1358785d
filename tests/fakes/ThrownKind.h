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

/// What the user reads of it; empty when `action` throws none.
template <typename Action>
[[nodiscard]] QString ThrownText(Action action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error.Description();
  }
  return {};
}

}  // namespace kalivor::test
