// What the system knows about a serial device.
#pragma once

#include <QString>

#include "platform/PortDirectory.h"

namespace kalivor::platform {

/// Systems have device files for many more built-in ports than they have ports: whether there is hardware
/// behind that of this name ("ttyS3"). `systemFolder` is where the system tells ("/sys").
[[nodiscard]] bool HasHardware(const QString& systemFolder, const QString& name);

/// Puts down what identifies the device of this name, and what it calls itself: description, serial number,
/// place, and what binds a number to it.
void DescribeDevice(const QString& systemFolder, const QString& name, PortEntry& entry);

}  // namespace kalivor::platform
