// The event queue of the running application.
#pragma once

#include "platform/Events.h"

namespace kalivor::platform {

class QtEvents final : public Events {
 public:
  void ProcessPending() override;
  void WaitForNext() override;
};

}  // namespace kalivor::platform
