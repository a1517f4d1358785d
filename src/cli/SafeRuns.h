// The safe commands as text: differences, accounts and backups.
#pragma once

#include "cli/Arguments.h"
#include "cli/Cli.h"
#include "cli/Output.h"
#include "cli/TextForms.h"
#include "commands/SafeCommands.h"

namespace kalivor::cli {

/// Each command returns an ExitStatus. Throws BadInput and UnansweredQuestion as the other commands do.
class SafeRuns {
 public:
  /// Everything must outlive it.
  SafeRuns(Core& core, World& world, const Arguments& arguments)
      : core_(core), world_(world), arguments_(arguments), store_(world.files, world.safe) {}

  int Receive();
  int Verify();
  int Send();
  int Restore();
  int Backups();

 private:
  int Write(SafeRun run);
  void TellUnfinished();
  void TellUnsent(const SafeRun& run);
  bool Confirmed(const SafeRun& run);
  int Print(const SafeRun& run, const Table& table);

  Core& core_;
  World& world_;
  const Arguments& arguments_;
  NoProgress progress_;
  SafeStore store_;
  SafeContext context_{core_, progress_, store_};
};

}  // namespace kalivor::cli
