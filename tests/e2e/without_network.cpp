// Runs a program that is killed as soon as it listens or turns to the network.
// usage: without_network PROGRAM ARGUMENT…
#include "e2e/WithoutNetwork.h"

#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
  constexpr int kCannotRun = 126;
  if (argc < 2) return kCannotRun;
  if (kalivor::test::DenyNetwork()) execv(argv[1], argv + 1);
  std::perror(argv[1]);
  return kCannotRun;
}
