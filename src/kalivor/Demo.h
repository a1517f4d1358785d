// The demonstration: a simulated controller inside the program, on the shipped example.
#pragma once

#include <QString>
#include <QTemporaryDir>
#include <memory>

#include "platform/SerialControl.h"

namespace kalivor {

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

  /// The folder of the example's definitions. After Start().
  [[nodiscard]] const QString& Folder() const { return folder_; }

  /// A settings file for this run alone.
  [[nodiscard]] QString SettingsFile() const { return settings_.filePath(QStringLiteral("KALIVOR.ini")); }

  /// The folder of everything else that the program writes for itself in this run.
  [[nodiscard]] QString StateFolder() const { return settings_.path(); }

 private:
  struct Controller;

  QTemporaryDir settings_;
  std::unique_ptr<Controller> controller_;
  QString folder_;
};

}  // namespace kalivor
