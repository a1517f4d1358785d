// The window system's event queue, as far as long operations need it.
#pragma once

namespace kalivor::platform {

class Events {
 public:
  virtual ~Events() = default;

  /// Delivers what waits in the queue (repaints, the abort button) and returns without waiting for more.
  virtual void ProcessPending() = 0;

  /// Sleeps until at least one event has come, and delivers it.
  virtual void WaitForNext() = 0;
};

}  // namespace kalivor::platform
