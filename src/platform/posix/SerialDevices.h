// Which device a serial port number stands for.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <chrono>
#include <filesystem>

#include "platform/SerialControl.h"
#include "platform/plain/PortBindings.h"

namespace kalivor::platform {

/// Numbers without a device of their own count the serial devices that are present: the built-in ports, then
/// the USB adapters (ttyUSB before ttyACM), each in the order of their numbers.
class SerialDevices final : public PortBindings {
 public:
  /// The folders are where the system keeps its devices and what it knows about them.
  explicit SerialDevices(QMap<int, QString> bindings, QString deviceFolder = QStringLiteral("/dev"),
                         QString systemFolder = QStringLiteral("/sys"));

  [[nodiscard]] QList<PortEntry> List() override;
  [[nodiscard]] QString Device(int number) override;
  [[nodiscard]] QString Shown(int number) override;

 private:
  using FileTime = std::filesystem::file_time_type;

  [[nodiscard]] QStringList Scan() const;

  QString deviceFolder_;
  QString systemFolder_;
  // The last scan, good as long as the device folder is unchanged.
  QStringList present_;
  FileTime presentAt_;
};

}  // namespace kalivor::platform
