// What the identifiers of Windows tell about a serial port.
#pragma once

#include <QString>
#include <optional>

#include "platform/PortBinding.h"

namespace kalivor::platform {

/// The adapter that an instance identifier names, and the one of the device above it in the tree
/// ("FTDIBUS\VID_0403+PID_6001+A12345A\0000"). Its serial number is empty where it has none: Windows then
/// makes up one of its own, which belongs to the socket. None where the port is no USB adapter.
[[nodiscard]] std::optional<UsbPort> UsbPortOfInstance(const QString& instance, const QString& parent);

/// The sockets of a location path, as the user counts them: "USB 2.1" of "PCIROOT(0)#PCI(1400)#USBROOT(0)
/// #USB(2)#USB(1)"; "" where it leads over none.
[[nodiscard]] QString ShownPlace(const QString& locationPath);

/// Maker and product: what the system calls a port, without its name in brackets.
[[nodiscard]] QString PortDescription(const QString& maker, const QString& friendlyName);

}  // namespace kalivor::platform
