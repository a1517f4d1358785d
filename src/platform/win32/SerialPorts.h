// Which serial ports the computer has.
#pragma once

#include <QList>
#include <QMap>
#include <QString>

namespace kalivor::platform {

struct SerialPortEntry {
  QString name;         ///< "COM3"
  QString description;  ///< what the system calls the device; may be empty
};

/// The serial ports that are present, in the order of their numbers.
[[nodiscard]] QList<SerialPortEntry> PresentSerialPorts();

/// Port n is COMn, unless the user has set another one for it.
class SerialPorts {
 public:
  /// `overrides`: name by port number, "" for none.
  explicit SerialPorts(QMap<int, QString> overrides) : overrides_(std::move(overrides)) {}

  /// Lets `name` stand for `number`, whatever else was set for it.
  void Override(int number, const QString& name) { overrides_[number] = name; }

  /// The name of port `number`, "" when the number is not 1..8 or there is no such port. A port that the user
  /// has set is not looked for.
  [[nodiscard]] QString Device(int number) const;

  /// The same for the user to see, with what the system calls the device; "" when it is not there now.
  [[nodiscard]] QString Shown(int number) const;

 private:
  QMap<int, QString> overrides_;
};

}  // namespace kalivor::platform
