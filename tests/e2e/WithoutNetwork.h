// Keeps this process and all its children off the network, without any rights.
#pragma once

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <array>
#include <cstddef>

namespace kalivor::test {

#if defined(__x86_64__)
inline constexpr unsigned kArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
inline constexpr unsigned kArchitecture = AUDIT_ARCH_AARCH64;
#else
#error "The architecture's number in <linux/audit.h> is to be added here."
#endif

/// From here on the system kills (SIGSYS) whoever listens, or makes a socket that is not a local one
/// (AF_UNIX, by which a display is reached). There is no way back. False when the system refuses.
[[nodiscard]] inline bool DenyNetwork() {
  constexpr unsigned short load = BPF_LD | BPF_W | BPF_ABS;
  constexpr unsigned short ifEqual = BPF_JMP | BPF_JEQ | BPF_K;
  constexpr unsigned short result = BPF_RET | BPF_K;
  std::array<sock_filter, 9> rules{{
      {load, 0, 0, offsetof(seccomp_data, arch)},
      {ifEqual, 0, 5, kArchitecture},
      {load, 0, 0, offsetof(seccomp_data, nr)},
      {ifEqual, 3, 0, SYS_listen},
      {ifEqual, 0, 3, SYS_socket},
      {load, 0, 0, offsetof(seccomp_data, args)},
      {ifEqual, 1, 0, AF_UNIX},
      {result, 0, 0, SECCOMP_RET_KILL_PROCESS},
      {result, 0, 0, SECCOMP_RET_ALLOW},
  }};
  const sock_fprog filter{rules.size(), rules.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

}  // namespace kalivor::test
