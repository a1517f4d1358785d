// Printing a page of HTML by the toolkit's dialog.
#pragma once

#include <QString>

#include "platform/gui/DocumentPages.h"

namespace kalivor::platform {

/// Asks for a printer and prints the document on its paper; `title` names it. Does nothing when the user
/// cancels. Throws RuntimeError when the document has no pages, the printer does not take the job or the file
/// cannot be written; a file that was there before stays as it was.
void AskAndPrintDocument(const QString& title, const HtmlDocument& document);

}  // namespace kalivor::platform
