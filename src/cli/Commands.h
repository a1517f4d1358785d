// The commands of kalivor-cli.
#pragma once

#include <QStringView>

namespace kalivor::cli {

class Session;

/// What must have been read before a command runs.
enum class Needs {
  Nothing,      ///< it reads by itself what it works on
  Versions,     ///< the version table; faults of definitions are told and do not matter
  Definitions,  ///< the version table and the definitions of the selected version
};

/// One command: how it is written, what it needs and what it runs.
struct Command {
  QStringView name;
  int (Session::*run)() = nullptr;  ///< returns an ExitStatus
  Needs needs = Needs::Definitions;
  bool json = false;  ///< can answer in JSON
  bool file = false;  ///< a file follows
};

/// The command of that name; null when there is none.
[[nodiscard]] const Command* FindCommand(QStringView name);

}  // namespace kalivor::cli
