#include "Allocations.h"

#include <atomic>
#include <cstddef>

// The C library's own functions, under the names by which it offers them to replacements.
extern "C" {
void* __libc_malloc(std::size_t size);  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c)
void* __libc_calloc(std::size_t count,
                    std::size_t size);                // NOLINT(bugprone-reserved-identifier,cert-dcl37-c)
void* __libc_realloc(void* block, std::size_t size);  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c)
}

namespace {
std::atomic<long> requests{0};
}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  requests.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  requests.fetch_add(1, std::memory_order_relaxed);
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
  requests.fetch_add(1, std::memory_order_relaxed);
  return __libc_realloc(block, size);
}
}

namespace kalivor::bench {

long HeapRequests() {
  return requests.load(std::memory_order_relaxed);
}

}  // namespace kalivor::bench
