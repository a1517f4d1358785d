#include "platform/plain/StoredDevices.h"

#include "platform/PortBinding.h"
#include "platform/SerialControl.h"

namespace kalivor::platform {

QMap<int, QString> StoredDevices(const SettingsStore& settings) {
  QMap<int, QString> devices;
  for (int number = 1; number <= kLargestPortNumber; ++number) {
    const QString device = settings.Get(kPortsSection.toString(), PortKey(number), QString());
    if (!device.isEmpty()) devices[number] = device;
  }
  return devices;
}

}  // namespace kalivor::platform
