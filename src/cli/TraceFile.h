// The file of --trace: every telegram of a run as text, written while the run goes on.
#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "comm/ExchangeLog.h"
#include "core/TelegramText.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "platform/PortDirectory.h"

namespace kalivor::cli {

/// As long as it lives it is told of every exchange, and of the definitions; nobody else may be. What it has
/// not written yet is written at its end.
class TraceFile {
 public:
  /// What a trace is taken from and where it goes. Everything must outlive it.
  struct World {
    Module1& module;
    ExchangeLog& exchanges;
    platform::FileSystem& files;
    const platform::Clock& clock;
    platform::MessageBox& box;
    platform::PortDirectory& ports;
  };

  TraceFile(const World& world, QString path);
  ~TraceFile();
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  /// Makes the file anew, empty. Returns "" or what the user reads.
  [[nodiscard]] QString Open();

 private:
  void Note(const Exchange& exchange);
  void Write();
  [[nodiscard]] QString Failure(const QString& reason) const;

  World world_;
  QString path_;
  std::unique_ptr<platform::LogFile> file_;  // null: nothing can be written (any more)
  TelegramReader reader_;
  bool readerIsOld_ = true;  // the definitions are others since it was made
  TelegramLines lines_;
  QString device_;  // behind the port of the last exchange
  QByteArray unwritten_;
  double written_s_ = 0;  // when something was last written
};

}  // namespace kalivor::cli
