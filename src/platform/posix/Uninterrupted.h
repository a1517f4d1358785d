// Repeating what a signal interrupted.
#pragma once

#include <cerrno>

namespace kalivor::platform {

/// Runs `call` again when it fails with EINTR. Not for ever: a network drive whose server is away can answer
/// so each time. The result is that of the last run.
template <typename Call>
auto Uninterrupted(Call call) {
  constexpr int kMostInterruptions = 100;
  auto result = call();
  for (int i = 0; result < 0 && errno == EINTR && i < kMostInterruptions; ++i)
    result = call();
  return result;
}

/// The error number of a call that is negative when it fails; 0 when it does not.
template <typename Call>
int ErrorOf(Call call) {
  return Uninterrupted(call) < 0 ? errno : 0;
}

}  // namespace kalivor::platform
