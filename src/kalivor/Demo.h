// The demonstration: a simulated controller inside the program, on the shipped example.
#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QUuid>
#include <memory>

#include "platform/SerialControl.h"
#include "platform/plain/PortBindings.h"

namespace kalivor {

/// Whatever the number, the simulated controller is there.
class DemoPorts final : public platform::PortBindings {
 public:
  DemoPorts() : PortBindings({}) {}
  [[nodiscard]] QList<platform::PortEntry> List() override;
  [[nodiscard]] QString Device(int number) override { return Shown(number); }
  [[nodiscard]] QString Shown(int number) override;
};

class Demo {
 public:
  Demo();
  ~Demo();
  Demo(const Demo&) = delete;
  Demo& operator=(const Demo&) = delete;

  /// Prepares the controller. Returns "" or the reason in German why it cannot be.
  [[nodiscard]] QString Start();

  /// The line to the controller, whatever the port's number. After Start().
  [[nodiscard]] platform::SerialControl& Line();

  [[nodiscard]] platform::PortDirectory& Ports() { return ports_; }

  /// The folder of the example's definitions. After Start().
  [[nodiscard]] const QString& Folder() const { return folder_; }

  /// A settings file for this run alone.
  [[nodiscard]] QString SettingsFile() const { return settings_.filePath(QStringLiteral("KALIVOR.ini")); }

  /// The plant of the controller, in the history that the demonstration brings; null without one. After
  /// Start().
  [[nodiscard]] const QUuid& Plant() const { return plant_; }

  /// The folder of everything else that the program writes for itself in this run.
  [[nodiscard]] QString StateFolder() const { return settings_.path(); }

 private:
  struct Controller;

  QTemporaryDir settings_;
  DemoPorts ports_;
  std::unique_ptr<Controller> controller_;
  QString folder_;
  QUuid plant_;
};

}  // namespace kalivor
