// Which serial devices there are, and which of them a port number stands for.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <chrono>
#include <filesystem>
#include <optional>

#include "platform/plain/SystemPorts.h"
#include "platform/posix/PortUsers.h"

namespace kalivor::platform {

/// Where the system keeps its devices, what it knows about them and who uses them.
struct SystemFolders {
  QString devices = QStringLiteral("/dev");
  QString knowledge = QStringLiteral("/sys");
  QString processes = QStringLiteral("/proc");
  QStringList locks = {QStringLiteral("/run/lock"), QStringLiteral("/var/lock")};
};

/// Numbers without a device of their own count the serial devices that are present: the built-in ports, then
/// the USB adapters (ttyUSB before ttyACM), each in the order of their numbers.
class SerialDevices final : public SystemPorts {
 public:
  explicit SerialDevices(QMap<int, QString> bindings, SystemFolders folders = {});

 protected:
  void LookAnew() override;
  [[nodiscard]] QList<PortEntry> Present() override;
  [[nodiscard]] QString Counted(int number) override;
  [[nodiscard]] QString Find(const QString& device) override;
  [[nodiscard]] QString ShownDevice(const QString& device) override { return device; }
  void Examine(QList<PortEntry>& entries) override;

 private:
  using FileTime = std::filesystem::file_time_type;

  void Look();
  [[nodiscard]] QStringList Scan() const;

  SystemFolders folders_;
  PortUsers users_;
  // The last scan, good as long as the device folder is unchanged.
  QStringList names_;
  FileTime seenAt_;
  std::optional<QList<PortEntry>> present_;  // the same with all that is known; none: not asked for yet
};

}  // namespace kalivor::platform
