// A child process that does not outlive the program.
#pragma once

#include <sys/prctl.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>

namespace kalivor::platform {

/// For a child of process `parent`, before it becomes another program: it is asked to end (SIGTERM) when the
/// thread that started it ends, also when that is killed.
inline void EndWithParent(pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  // It may have ended before it was asked for.
  if (getppid() != parent) _exit(EXIT_FAILURE);
}

}  // namespace kalivor::platform
