// The entry point that libFuzzer calls: one program for each target.
#include <sys/time.h>

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "Targets.h"

namespace {

// One input may take a second of processor time. libFuzzer's own limit is one of the clock on the wall, which
// a busy or sleeping computer breaks without any defect.
constexpr itimerval kLimit = {.it_interval = {}, .it_value = {.tv_sec = 1, .tv_usec = 0}};

}  // namespace

// By the sum of the bytes: a mark in the input would be what the search looks for, and soon stand in most
// inputs.
bool kalivor::fuzz::InSample(QByteArrayView input, unsigned share) {
  unsigned sum = 0;
  for (const char c : input)
    sum += static_cast<unsigned char>(c);
  return sum % share == 0;
}

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  (void)std::signal(SIGPROF, [](int) { std::abort(); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  setitimer(ITIMER_PROF, &kLimit, nullptr);
  try {
    kalivor::fuzz::KALIVOR_FUZZ_TARGET(QByteArrayView(data, static_cast<qsizetype>(size)));
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    throw;
  }
  return 0;
}
