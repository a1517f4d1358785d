// Runs a check as a user without privileges: the superuser is refused nothing.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace kalivor::test {

/// True when `check` holds in a child process without privileges.
template <typename Check>
[[nodiscard]] bool HoldsAsOrdinaryUser(Check check) {
  const pid_t child = fork();
  if (child == 0) {
    constexpr id_t kNobody = 65534;
    const bool ready =
        geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0);
    _exit(!ready ? 2 : check() ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 2) << "status " << status;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace kalivor::test
