// What is said when nobody has caught a lack of memory.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace kalivor::platform {

/// A terminate handler (std::set_terminate). A lack of memory that nothing in the program dealt with ends it
/// with a German line on standard error and `Status`; everything else is a fault of the program and aborts
/// it.
template <int Status>
[[noreturn]] void LastResort() {
  try {
    if (const std::exception_ptr error = std::current_exception()) std::rethrow_exception(error);
  } catch (const std::bad_alloc&) {
    // Nothing that takes memory may be used any more.
    (void)std::fputs("Der Arbeitsspeicher reicht nicht aus. Das Programm wird beendet.\n", stderr);
    std::_Exit(Status);
  } catch (...) {
    // Its trace is worth more than a message.
  }
  std::abort();
}

}  // namespace kalivor::platform
