// Which serial ports the computer has.
#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <chrono>
#include <optional>
#include <utility>

#include "platform/plain/SystemPorts.h"

namespace kalivor::platform {

/// Port n is COMn, unless the user has set another one for it. Windows tells who uses a port to the one who
/// opens it, and to nobody else; as opening raises the modem lines, which may switch on whatever hangs there,
/// nothing is opened to find out.
class SerialPorts final : public SystemPorts {
 public:
  explicit SerialPorts(QMap<int, QString> bindings) : SystemPorts(std::move(bindings)) {}

 protected:
  void LookAnew() override { present_.reset(); }
  [[nodiscard]] QList<PortEntry> Present() override;
  [[nodiscard]] QString Counted(int number) override;
  [[nodiscard]] QString Find(const QString& device) override;

  /// With what the system calls the device.
  [[nodiscard]] QString ShownDevice(const QString& device) override;

  /// What is the matter with a port is found together with it.
  void Examine(QList<PortEntry>& entries) override;

 private:
  using Steady = std::chrono::steady_clock;

  std::optional<QList<PortEntry>> present_;
  Steady::time_point seenAt_;
};

}  // namespace kalivor::platform
