#include "platform/net/LineSwitch.h"

#include "platform/NetworkAddress.h"

namespace kalivor::platform {

LineSwitch::LineSwitch(SerialControl& native, const DeviceResolver& resolver)
    : resolver_(resolver), native_(native), network_(resolver) {
  const auto tell = [this] {
    if (OnComm) OnComm();
  };
  native_.OnComm = tell;
  network_.OnComm = tell;
}

LineSwitch::~LineSwitch() {
  native_.OnComm = nullptr;
}

bool LineSwitch::Open(int number, const QString& settings) {
  SerialControl* const wanted =
      IsNetworkAddress(resolver_(number)) ? static_cast<SerialControl*>(&network_) : &native_;
  if (wanted != chosen_) {
    chosen_->Close();
    network_.Release();
    chosen_ = wanted;
  }
  return chosen_->Open(number, settings);
}

// It outlasts the connection, whichever comes next.
void LineSwitch::SetSThreshold(int characters) {
  native_.SetSThreshold(characters);
  network_.SetSThreshold(characters);
}

}  // namespace kalivor::platform
