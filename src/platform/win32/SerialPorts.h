// Which serial ports the computer has.
#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <utility>

#include "platform/plain/PortBindings.h"

namespace kalivor::platform {

struct SerialPortEntry {
  QString name;         ///< "COM3"
  QString description;  ///< what the system calls the device; may be empty
};

/// The serial ports that are present, in the order of their numbers.
[[nodiscard]] QList<SerialPortEntry> PresentSerialPorts();

/// Port n is COMn, unless the user has set another one for it.
class SerialPorts final : public PortBindings {
 public:
  explicit SerialPorts(QMap<int, QString> bindings) : PortBindings(std::move(bindings)) {}

  [[nodiscard]] QList<PortEntry> List() override;
  [[nodiscard]] QString Device(int number) override;

  /// With what the system calls the device.
  [[nodiscard]] QString Shown(int number) override;
};

}  // namespace kalivor::platform
