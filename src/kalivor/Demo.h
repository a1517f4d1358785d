// The demonstration: a simulated controller as a child process, on the shipped example.
#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <optional>

namespace kalivor {

class Demo {
 public:
  ~Demo();

  /// Starts the controller. Returns "" or the reason in German why it cannot be.
  [[nodiscard]] QString Start();

  /// The device that it answers on.
  [[nodiscard]] const QString& Device() const { return device_; }

  /// The folder of the example's definitions.
  [[nodiscard]] const QString& Folder() const { return folder_; }

  /// A settings file for this run alone. After Start().
  [[nodiscard]] QString SettingsFile() const { return settings_->filePath(QStringLiteral("KALIVOR.ini")); }

 private:
  QProcess controller_;
  std::optional<QTemporaryDir> settings_;  // only where there is a demonstration
  QString device_;
  QString folder_;
};

}  // namespace kalivor
