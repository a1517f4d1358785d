// The programs as a user runs them: real processes at the two ends of a pseudo-terminal.
#pragma once

#include <gtest/gtest.h>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include "fakes/QtPrinters.h"

namespace kalivor::test {

/// A folder of the build with the programs, and the shipped example.
inline QString Program(const QString& name) {
  return QStringLiteral(KALIVOR_BINARY_DIR "/src/") + name;
}
inline QString Examples() {
  return QStringLiteral(KALIVOR_SOURCE_DIR "/examples");
}

/// Long enough for any run here on a loaded machine; only a hang takes it.
inline constexpr int kHang_ms = 60'000;

struct Outcome {
  int status = -1;
  QString out;
  QString err;
};

/// A running kalivor-sim. It ends with the object. Its device is a link of its own: the system gives the
/// number of a pseudo-terminal that is gone to the next one, and a program that still tries the old number
/// would reach it.
class Simulator {
 public:
  explicit Simulator(const QStringList& options = {}, const QString& definitions = Examples()) {
    process_.start(Program(QStringLiteral("kalivor-sim")),
                   QStringList{QStringLiteral("--ini-path"), definitions, QStringLiteral("--link"),
                               folder_.filePath(QStringLiteral("regler"))} +
                       options);
    while (!process_.canReadLine() && process_.state() != QProcess::NotRunning) {
      if (!process_.waitForReadyRead(kHang_ms)) break;
    }
    if (process_.readLine().trimmed().isEmpty()) {
      ADD_FAILURE() << process_.readAllStandardError().toStdString();
    }
  }

  ~Simulator() { Stop(); }
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  [[nodiscard]] QString Device() const { return folder_.filePath(QStringLiteral("regler")); }
  [[nodiscard]] qint64 ProcessId() const { return process_.processId(); }

  /// Ends it as a user would (SIGTERM) and returns what it said.
  Outcome Stop() {
    if (process_.state() != QProcess::NotRunning) {
      process_.terminate();
      if (!process_.waitForFinished(kHang_ms)) process_.kill();
    }
    return {process_.exitCode(), QString::fromUtf8(process_.readAllStandardOutput()),
            QString::fromUtf8(process_.readAllStandardError())};
  }

  void Kill() {
    process_.kill();
    process_.waitForFinished(kHang_ms);
  }

 private:
  QTemporaryDir folder_;
  QProcess process_;
};

/// kalivor-cli with a settings folder of its own.
class Cli {
 public:
  explicit Cli(QString device = {}, QString definitions = Examples())
      : device_(std::move(device)), definitions_(std::move(definitions)) {}

  /// Starts without waiting.
  void Start(const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), settings_.path());
    environment.insert(QStringLiteral("XDG_STATE_HOME"), settings_.path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), settings_.path());
    process_.setProcessEnvironment(environment);
    QStringList all{QStringLiteral("--ini-path"), definitions_};
    if (!device_.isEmpty()) all += {QStringLiteral("--port"), device_};
    process_.start(Program(QStringLiteral("kalivor-cli")), all + arguments);
    EXPECT_TRUE(process_.waitForStarted(kHang_ms));
  }

  /// Waits until standard output begins with `text`; false when the program ends before.
  [[nodiscard]] bool WaitForOutput(const QByteArray& text) {
    while (!process_.peek(text.size()).startsWith(text)) {
      if (process_.waitForReadyRead(kHang_ms)) continue;
      ADD_FAILURE() << process_.readAllStandardOutput().toStdString()
                    << process_.readAllStandardError().toStdString() << "state " << process_.state()
                    << ", status " << process_.exitCode();
      return false;
    }
    return true;
  }

  Outcome Finish() {
    if (!process_.waitForFinished(kHang_ms)) {
      ADD_FAILURE() << "kalivor-cli hangs";
      process_.kill();
      process_.waitForFinished();
    }
    return {process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1,
            QString::fromUtf8(process_.readAllStandardOutput()),
            QString::fromUtf8(process_.readAllStandardError())};
  }

  Outcome Run(const QStringList& arguments) {
    Start(arguments);
    return Finish();
  }

  [[nodiscard]] QProcess& Process() { return process_; }
  [[nodiscard]] QString SettingsFolder() const { return settings_.path(); }

 private:
  QString device_;
  QString definitions_;
  QTemporaryDir settings_;
  QProcess process_;
};

}  // namespace kalivor::test
