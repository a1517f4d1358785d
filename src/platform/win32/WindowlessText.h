// What a program with windows says when it shows none: an answer to its command line, or why it does not
// start.
#pragma once

#include <QString>

namespace kalivor::platform {

/// Goes to standard output where that leads somewhere, else to the console that the program was started from,
/// else into a message box.
void ShowAnswer(const QString& text);

/// The same with standard error.
void ShowRefusal(const QString& text);

}  // namespace kalivor::platform
