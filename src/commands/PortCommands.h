// Which device a port number stands for: what the user binds to it.
#pragma once

#include <QString>

#include "platform/PortDirectory.h"
#include "platform/SettingsStore.h"

namespace kalivor {

/// "frei", "belegt", "keine Rechte", "fehlt".
[[nodiscard]] QString StateText(platform::PortState state);

/// What the user reads where the computer has no port at all.
[[nodiscard]] QString NoPortsText();

/// What is wrong with a binding that was typed, in German; "" when it can be one, as the empty text can.
/// Whether there is such a device is not looked at.
[[nodiscard]] QString FaultOf(const QString& binding);

/// Binds `number` (1 to 8) to a device, or frees it with "", and stores that at once. Returns "", or in
/// German why it is not stored; it then holds for this run.
[[nodiscard]] QString BindPort(platform::PortDirectory& ports, platform::SettingsStore& settings, int number,
                               const QString& binding);

}  // namespace kalivor
