#include "platform/win32/SerialPorts.h"

#include <windows.h>

// Behind windows.h.
#include <devguid.h>
#include <initguid.h>
#include <setupapi.h>

#include <algorithm>
#include <array>

#include "platform/SerialControl.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// The name under which programs open the device.
QString PortName(HDEVINFO devices, SP_DEVINFO_DATA& device) {
  const HKEY key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
  if (key == INVALID_HANDLE_VALUE) return {};
  std::array<wchar_t, 64> name{};
  auto size = static_cast<DWORD>((name.size() - 1) * sizeof(wchar_t));
  const LSTATUS status =
      RegQueryValueExW(key, L"PortName", nullptr, nullptr, reinterpret_cast<BYTE*>(name.data()), &size);
  RegCloseKey(key);
  return status == ERROR_SUCCESS ? QString::fromWCharArray(name.data()) : QString();
}

QString Description(HDEVINFO devices, SP_DEVINFO_DATA& device) {
  std::array<wchar_t, 256> text{};
  const auto size = static_cast<DWORD>((text.size() - 1) * sizeof(wchar_t));
  const bool ok = SetupDiGetDeviceRegistryPropertyW(devices, &device, SPDRP_FRIENDLYNAME, nullptr,
                                                    reinterpret_cast<BYTE*>(text.data()), size, nullptr) != 0;
  return ok ? QString::fromWCharArray(text.data()) : QString();
}

// Ports that a driver offers without a device of its own (virtual ones) are known by their names alone.
bool IsPresent(const QString& name) {
  std::array<wchar_t, 1024> target{};
  return QueryDosDeviceW(name.toStdWString().c_str(), target.data(), static_cast<DWORD>(target.size())) != 0;
}

int NumberOf(const QString& name) {
  return name.startsWith(u"COM"_s, Qt::CaseInsensitive) ? name.sliced(3).toInt() : 0;
}

}  // namespace

QList<SerialPortEntry> PresentSerialPorts() {
  QList<SerialPortEntry> ports;
  const HDEVINFO devices = SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, DIGCF_PRESENT);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof device;
  for (DWORD i = 0; devices != INVALID_HANDLE_VALUE && SetupDiEnumDeviceInfo(devices, i, &device) != 0; ++i) {
    const QString name = PortName(devices, device);
    // Printer ports are of the same class.
    if (NumberOf(name) > 0) ports.append({name, Description(devices, device)});
  }
  if (devices != INVALID_HANDLE_VALUE) SetupDiDestroyDeviceInfoList(devices);
  constexpr int kLargestNumber = 256;
  for (int number = 1; number <= kLargestNumber; ++number) {
    const QString name = u"COM%1"_s.arg(number);
    const bool known =
        std::any_of(ports.begin(), ports.end(), [&](const auto& port) { return port.name == name; });
    if (!known && IsPresent(name)) ports.append({name, {}});
  }
  std::sort(ports.begin(), ports.end(),
            [](const auto& a, const auto& b) { return NumberOf(a.name) < NumberOf(b.name); });
  return ports;
}

QList<PortEntry> SerialPorts::List() {
  QList<PortEntry> entries;
  for (int number = 1; number <= kLargestPortNumber; ++number) {
    const QString device = Device(number);
    if (!device.isEmpty()) entries.append({number, device, Shown(number)});
  }
  return entries;
}

QString SerialPorts::Device(int number) {
  if (number < 1 || number > kLargestPortNumber) return {};
  const QString device = Wanted(number);
  if (!device.isEmpty()) return device;
  const QString name = u"COM%1"_s.arg(number);
  return IsPresent(name) ? name : QString();
}

QString SerialPorts::Shown(int number) {
  const QString name = Device(number);
  for (const SerialPortEntry& port : PresentSerialPorts()) {
    if (port.name.compare(name, Qt::CaseInsensitive) != 0) continue;
    return port.description.isEmpty() ? port.name : port.name + u": "_s + port.description;
  }
  return {};
}

}  // namespace kalivor::platform
