// The devices that the user has set for port numbers.
#pragma once

#include <QMap>
#include <QString>

#include "platform/SettingsStore.h"

namespace kalivor::platform {

/// The devices that the user has set for port numbers: section "Ports", keys "COM1" to "COM8".
[[nodiscard]] QMap<int, QString> StoredDevices(const SettingsStore& settings);

}  // namespace kalivor::platform
