// What stands around everything that the user sets off.
#pragma once

#include <functional>

namespace kalivor::platform {

/// Runs a handler and deals with the RuntimeErrors that escape it, so that none reaches the toolkit. Adapters
/// call the handlers of the user's actions through it; changes by the program go without, as their errors
/// belong to the operation that caused them.
using EventGuard = std::function<void(const std::function<void()>& handler)>;

}  // namespace kalivor::platform
