// `find` as text: which controllers answer, and what was seen where none does.
#pragma once

#include "cli/Arguments.h"
#include "cli/Cli.h"
#include "commands/LineSearch.h"

namespace kalivor::cli {

/// Searches the ports of --ports, or the one of --port, or all there are, and prints what it finds. Returns
/// an ExitStatus.
[[nodiscard]] int RunFind(Core& core, COM_T_frm& host, World& world, const Arguments& arguments);

}  // namespace kalivor::cli
