// A program that is killed as it enters a call of the system.
#pragma once

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <csignal>

namespace kalivor::test {

enum class CallEnd { Killed, Finished, NotTraced };

/// Runs `prepare` and then `work` in a program of its own, which is killed as it enters call number `at` of
/// the system in `work`. Both return true where all went well.
template <typename Prepare, typename Work>
[[nodiscard]] CallEnd KillAtCall(int at, Prepare prepare, Work work) {
  const pid_t child = fork();
  if (child == 0) {
    if (!prepare() || ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(2);
    (void)raise(SIGSTOP);
    _exit(work() ? 0 : 1);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) return CallEnd::NotTraced;
  // Each call stops the program twice, as it begins and as it ends.
  for (int stop = 0; WIFSTOPPED(status); ++stop) {
    const bool kill = stop == 2 * at + 1;
    if ((kill ? ::kill(child, SIGKILL) : ptrace(PTRACE_SYSCALL, child, nullptr, nullptr)) != 0) break;
    if (waitpid(child, &status, 0) != child) break;
  }
  if (WIFSIGNALED(status)) return CallEnd::Killed;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  return CallEnd::Finished;
}

}  // namespace kalivor::test
