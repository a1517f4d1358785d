// What is said when nobody has caught a lack of memory.
#pragma once

#include <unistd.h>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

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
    constexpr std::string_view text = "Der Arbeitsspeicher reicht nicht aus. Das Programm wird beendet.\n";
    (void)!write(STDERR_FILENO, text.data(), text.size());
    _exit(Status);
  } catch (...) {
    // Its trace is worth more than a message.
  }
  std::abort();
}

}  // namespace kalivor::platform
