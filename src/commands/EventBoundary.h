// The guard around every event handler.
#pragma once

#include <new>

#include "core/Core.h"

namespace kalivor {

/// Runs `handler`; a RuntimeError that escapes it is shown to the user, and the program goes on. So is a lack
/// of memory: what the handler had taken is free again by then. Returns false then. Scope guards have
/// restored busy state, flags and tree on the way.
template <typename Handler>
bool RunHandler(platform::MessageBox& box, Handler&& handler) {
  try {
    std::forward<Handler>(handler)();
    return true;
  } catch (const RuntimeError& error) {
    box.Show(error.Description(), QStringLiteral("KALIVOR"));
    return false;
  } catch (const std::bad_alloc&) {
    box.Show(QStringLiteral("Der Arbeitsspeicher reicht nicht aus."), QStringLiteral("KALIVOR"));
    return false;
  }
}

}  // namespace kalivor
