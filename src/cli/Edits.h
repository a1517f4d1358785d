// What the options change in the table before the command runs.
#pragma once

#include <QString>

#include "base/Module1.h"
#include "cli/Arguments.h"

namespace kalivor::cli {

/// Ends the run with kBadInput. An empty message: what is wrong has been said already.
struct BadInput {
  QString message;
};

/// `--set`: edits one parameter as its editor would; `edit` is "VARIABLE=VALUE". Throws BadInput for a
/// variable that no parameter or several have, and for a value that the editor would refuse.
void SetParameter(Module1& module, const QString& edit);

/// `--check` and `--uncheck`. Throws BadInput when no parameter is meant.
void SetMarks(Module1& module, const MarkChange& change);

}  // namespace kalivor::cli
