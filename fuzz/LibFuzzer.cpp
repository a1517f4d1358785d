// The entry point that libFuzzer calls: one program for each target.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>

#include "Targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    kalivor::fuzz::KALIVOR_FUZZ_TARGET(QByteArrayView(data, static_cast<qsizetype>(size)));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    throw;
  }
  return 0;
}
