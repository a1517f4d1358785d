// Counts the requests to the heap of the whole process.
#pragma once

namespace kalivor::bench {

/// Calls of malloc, calloc and realloc so far, on whatever thread; operator new and the toolkit's containers
/// come down to them.
[[nodiscard]] long HeapRequests();

}  // namespace kalivor::bench
