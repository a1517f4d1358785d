// Printing a table by the toolkit's dialog.
#pragma once

#include <QString>

#include "print/painter/TablePages.h"

namespace kalivor::print {

/// Asks for a printer, proposing the orientation that suits the table, and prints. Does nothing when the user
/// cancels. `title` names the document. Throws RuntimeError when the printer does not take the job or the
/// file cannot be written; a file that was there before stays as it was.
void AskAndPrintTable(const QString& title, const ListTable& table, const PageLabels& labels);

}  // namespace kalivor::print
