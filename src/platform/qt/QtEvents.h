// The event queue of the running application.
#pragma once

#include <QCoreApplication>

#include "platform/Events.h"

namespace kalivor::platform {

class QtEvents final : public Events {
 public:
  void ProcessPending() override {
    // One pass may deliver a part only; more passes are bounded, lest an animation hold up a transfer.
    constexpr int kLongestDelivery_ms = 50;
    QCoreApplication::processEvents(QEventLoop::AllEvents, kLongestDelivery_ms);
  }

  void WaitForNext() override {
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
};

}  // namespace kalivor::platform
