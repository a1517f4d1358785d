// Which device a serial port number stands for.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <chrono>
#include <filesystem>

#include "platform/SerialControl.h"

namespace kalivor::platform {

/// Numbers without a device of their own count the serial devices that are present: the built-in ports, then
/// the USB adapters (ttyUSB before ttyACM), each in the order of their numbers.
class SerialDevices {
 public:
  /// `overrides`: device by port number, "" for none. The folders are where the system keeps its devices and
  /// what it knows about them.
  explicit SerialDevices(QMap<int, QString> overrides, QString deviceFolder = QStringLiteral("/dev"),
                         QString systemFolder = QStringLiteral("/sys"));

  /// Lets `device` stand for `number`, whatever else was set for it.
  void Override(int number, const QString& device) { overrides_[number] = device; }

  /// The device path of port `number`, "" when there is none or the number is not 1..8.
  [[nodiscard]] QString Device(int number);

  /// The same for the user to see, "" when the device is not there now.
  [[nodiscard]] QString Shown(int number);

 private:
  using FileTime = std::filesystem::file_time_type;

  [[nodiscard]] QStringList Scan() const;

  QMap<int, QString> overrides_;
  QString deviceFolder_;
  QString systemFolder_;
  // The last scan, good as long as the device folder is unchanged.
  QStringList present_;
  FileTime presentAt_;
};

}  // namespace kalivor::platform
