#include "platform/plain/StoredDevices.h"

#include "platform/SerialControl.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {

QMap<int, QString> StoredDevices(const SettingsStore& settings) {
  QMap<int, QString> devices;
  for (int number = 1; number <= kLargestPortNumber; ++number) {
    const QString device = settings.Get(u"Ports"_s, u"COM%1"_s.arg(number), QString());
    if (!device.isEmpty()) devices[number] = device;
  }
  return devices;
}

}  // namespace kalivor::platform
