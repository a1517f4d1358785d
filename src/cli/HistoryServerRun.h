// `history sync` and `history init-server`: the user's history and that of the department.
#pragma once

#include "cli/Arguments.h"
#include "cli/Cli.h"
#include "platform/MessageBox.h"

namespace kalivor::cli {

/// Exchanges what is missing with the server of --server, or the stored one, and prints how many rows went
/// which way. Returns an ExitStatus; throws BadInput.
[[nodiscard]] int RunHistorySync(World& world, platform::MessageBox& box, const Arguments& arguments);

/// Prepares the server of --server and prints what comes next. Returns an ExitStatus.
[[nodiscard]] int RunHistoryInitServer(World& world, platform::MessageBox& box, const Arguments& arguments);

}  // namespace kalivor::cli
