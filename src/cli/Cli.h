// kalivor-cli without the process around it.
#pragma once

#include <QStringList>
#include <functional>
#include <ostream>

#include "commands/SafeStore.h"
#include "history/Store.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/PortDirectory.h"
#include "platform/SerialControl.h"
#include "platform/SettingsStore.h"

namespace kalivor::cli {

enum ExitStatus : int {
  kDone = 0,        ///< done; compare: no deviation
  kFindings = 1,    ///< done, but with deviations, failed parameters or errors in definitions
  kBadInput = 2,    ///< the input is at fault; the command did not run
  kNoTransfer = 3,  ///< the transfer did not take place or was aborted
  kUnanswered = 4,  ///< a question was left unanswered
};

/// The world that a run works in. Everything must outlive the run.
struct World {
  std::ostream& out;
  std::ostream& err;
  const platform::SettingsStore& settings;
  platform::FileSystem& files;
  platform::SerialControl& line;
  platform::Clock& clock;
  QString programFolder;  ///< default of the definitions' folder
  platform::PortDirectory& ports;
  std::function<bool()> interrupted;      ///< true once the user has pressed Ctrl+C
  SafeWorld safe = {};                    ///< of backups and journals
  history::StoreWorld historyStore = {};  ///< without a file no history can be kept
};

/// Runs one command line (without the program's name) and returns the exit status.
[[nodiscard]] int Run(const QStringList& arguments, World& world);

}  // namespace kalivor::cli
