#include "platform/win32/SerialPorts.h"

#include <windows.h>

// Behind windows.h.
#include <cfgmgr32.h>
#include <devguid.h>
#include <initguid.h>
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <vector>

#include "platform/PortBinding.h"
#include "platform/SerialControl.h"
#include "platform/win32/DeviceIds.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr std::size_t kLongestText = 1024;

// The devices of the class of ports, as long as they are looked at.
class Devices {
 public:
  Devices() : list_(SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, DIGCF_PRESENT)) {}
  ~Devices() {
    if (Valid()) SetupDiDestroyDeviceInfoList(list_);
  }
  Devices(const Devices&) = delete;
  Devices& operator=(const Devices&) = delete;

  [[nodiscard]] bool Valid() const { return list_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HDEVINFO Get() const { return list_; }

 private:
  HDEVINFO list_;
};

// One of them.
class PortDevice {
 public:
  PortDevice(HDEVINFO list, SP_DEVINFO_DATA& data) : list_(list), data_(data) {}

  // The name under which programs open it.
  [[nodiscard]] QString Name() {
    const HKEY key = SetupDiOpenDevRegKey(list_, &data_, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    if (key == INVALID_HANDLE_VALUE) return {};
    std::array<wchar_t, 64> name{};
    auto size = static_cast<DWORD>((name.size() - 1) * sizeof(wchar_t));
    const LSTATUS status =
        RegQueryValueExW(key, L"PortName", nullptr, nullptr, reinterpret_cast<BYTE*>(name.data()), &size);
    RegCloseKey(key);
    return status == ERROR_SUCCESS ? QString::fromWCharArray(name.data()) : QString();
  }

  // One of SPDRP_…; the first of several texts.
  [[nodiscard]] QString Text(DWORD property) {
    std::array<wchar_t, kLongestText> text{};
    const auto size = static_cast<DWORD>((text.size() - 1) * sizeof(wchar_t));
    const bool ok =
        SetupDiGetDeviceRegistryPropertyW(list_, &data_, property, nullptr,
                                          reinterpret_cast<BYTE*>(text.data()), size, nullptr) != 0;
    return ok ? QString::fromWCharArray(text.data()) : QString();
  }

  [[nodiscard]] QString Instance() {
    std::array<wchar_t, kLongestText> text{};
    const bool ok = SetupDiGetDeviceInstanceIdW(list_, &data_, text.data(),
                                                static_cast<DWORD>(text.size() - 1), nullptr) != 0;
    return ok ? QString::fromWCharArray(text.data()) : QString();
  }

  // The problem that the system has with it; 0 for none.
  [[nodiscard]] unsigned long Problem() {
    ULONG status = 0;
    ULONG problem = 0;
    if (CM_Get_DevNode_Status(&status, &problem, data_.DevInst, 0) != CR_SUCCESS) return 0;
    return (status & DN_HAS_PROBLEM) != 0 ? problem : 0;
  }

  // What stands above it in the tree of devices.
  [[nodiscard]] QString ParentInstance() {
    DEVINST parent = 0;
    std::array<wchar_t, kLongestText> text{};
    const bool ok =
        CM_Get_Parent(&parent, data_.DevInst, 0) == CR_SUCCESS &&
        CM_Get_Device_IDW(parent, text.data(), static_cast<ULONG>(text.size() - 1), 0) == CR_SUCCESS;
    return ok ? QString::fromWCharArray(text.data()) : QString();
  }
  [[nodiscard]] QString ParentLocation() {
    DEVINST parent = 0;
    std::array<wchar_t, kLongestText> text{};
    auto size = static_cast<ULONG>((text.size() - 1) * sizeof(wchar_t));
    const bool ok = CM_Get_Parent(&parent, data_.DevInst, 0) == CR_SUCCESS &&
                    CM_Get_DevNode_Registry_PropertyW(parent, CM_DRP_LOCATION_PATHS, nullptr, text.data(),
                                                      &size, 0) == CR_SUCCESS;
    return ok ? QString::fromWCharArray(text.data()) : QString();
  }

 private:
  HDEVINFO list_;
  SP_DEVINFO_DATA& data_;
};

int NumberOf(const QString& name) {
  return name.startsWith(u"COM"_s, Qt::CaseInsensitive) ? name.sliced(3).toInt() : 0;
}

// "\\.\COM3" is another way to write it.
QString PlainName(const QString& device) {
  return (device.startsWith(u"\\\\.\\"_s) ? device.sliced(4) : device).toUpper();
}

bool IsPresent(const QString& name) {
  std::array<wchar_t, kLongestText> target{};
  return QueryDosDeviceW(name.toStdWString().c_str(), target.data(), static_cast<DWORD>(target.size())) != 0;
}

// Ports that a driver offers without a device of its own (virtual ones) are known by their names alone.
QStringList AllPortNames() {
  constexpr std::size_t kMost = 1U << 20U;
  std::vector<wchar_t> names(kMost / 16);
  DWORD length = 0;
  while ((length = QueryDosDeviceW(nullptr, names.data(), static_cast<DWORD>(names.size()))) == 0) {
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || names.size() >= kMost) return {};
    names.resize(names.size() * 2);
  }
  QStringList ports;
  for (const wchar_t* name = names.data(); *name != L'\0'; name += wcslen(name) + 1) {
    const QString text = QString::fromWCharArray(name);
    if (NumberOf(text) > 0) ports.append(text.toUpper());
  }
  return ports;
}

QString ProblemRemark(unsigned long problem) {
  if (problem == CM_PROB_DISABLED)
    return u"Das Gerät ist im Geräte-Manager deaktiviert. Es dort wieder aktivieren."_s;
  const QString begin =
      u"Windows meldet für das Gerät das Problem %1"_s.arg(QString::number(static_cast<uint>(problem)));
  if (problem == CM_PROB_FAILED_INSTALL) {
    return begin +
           u": Der Treiber fehlt. Ihn über Windows Update oder vom Hersteller des Adapters installieren."_s;
  }
  return begin + u". Es abziehen und wieder einstecken; hilft das nicht, den Treiber neu installieren."_s;
}

PortEntry EntryOf(PortDevice& device, const QString& name) {
  PortEntry entry;
  entry.device = name;
  entry.description = PortDescription(device.Text(SPDRP_MFG), device.Text(SPDRP_FRIENDLYNAME));
  if (const unsigned long problem = device.Problem(); problem != 0) {
    entry.state = PortState::NoPermission;
    entry.remark = ProblemRemark(problem);
  }
  const std::optional<UsbPort> usb = UsbPortOfInstance(device.Instance(), device.ParentInstance());
  if (!usb) return entry;
  entry.serialNumber = usb->serialNumber;
  if (!usb->serialNumber.isEmpty()) entry.bySerialNumber = BindingTo(*usb);
  QString location = device.Text(SPDRP_LOCATION_PATHS);
  if (location.isEmpty()) location = device.ParentLocation();
  entry.place = ShownPlace(location);
  if (!entry.place.isEmpty()) entry.byPlace = BindingToPlace(location);
  return entry;
}

QList<PortEntry> Scan() {
  QList<PortEntry> entries;
  const Devices devices;
  SP_DEVINFO_DATA data{};
  data.cbSize = sizeof data;
  for (DWORD i = 0; devices.Valid() && SetupDiEnumDeviceInfo(devices.Get(), i, &data) != 0; ++i) {
    PortDevice device(devices.Get(), data);
    const QString name = device.Name().toUpper();
    // Printer ports are of the same class.
    if (NumberOf(name) > 0) entries.append(EntryOf(device, name));
  }
  for (const QString& name : AllPortNames()) {
    if (std::ranges::find(entries, name, &PortEntry::device) == entries.end()) entries.append({0, name});
  }
  std::ranges::sort(entries, {}, [](const PortEntry& entry) { return NumberOf(entry.device); });
  for (PortEntry& entry : entries) {
    const int number = NumberOf(entry.device);
    if (number <= kLargestPortNumber) entry.number = number;
  }
  return entries;
}

}  // namespace

QList<PortEntry> SerialPorts::Present() {
  // A device that is gone meanwhile fails to open, and its name is not given to another one so soon.
  constexpr std::chrono::seconds kGood{2};
  if (!present_ || Steady::now() - seenAt_ > kGood) {
    present_ = Scan();
    seenAt_ = Steady::now();
  }
  return *present_;
}

QString SerialPorts::Counted(int number) {
  const QString name = u"COM%1"_s.arg(number);
  return IsPresent(name) ? name : QString();
}

QString SerialPorts::Find(const QString& device) {
  const QString name = PlainName(device);
  return IsPresent(name) ? name : QString();
}

QString SerialPorts::ShownDevice(const QString& device) {
  const QString name = PlainName(device);
  for (const PortEntry& port : Present()) {
    if (port.device == name && !port.description.isEmpty()) return name + u": "_s + port.description;
  }
  return name;
}

void SerialPorts::Examine(QList<PortEntry>& entries) {
  for (PortEntry& entry : entries) {
    if (entry.state == PortState::Free)
      entry.remark = u"Ob ein anderes Programm sie benutzt, zeigt sich unter Windows erst beim Öffnen."_s;
  }
}

}  // namespace kalivor::platform
