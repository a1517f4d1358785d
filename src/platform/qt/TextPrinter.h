// Printing a text: a title line, the lines, page numbers.
#pragma once

#include <QSizeF>
#include <QString>
#include <vector>

#include "platform/Printer.h"

namespace kalivor::platform {

/// The pages of `text` (lines separated by CR LF), at least one, for paper of that size, in a fixed-pitch
/// font. Lines that are too long go on in the next one. Each page draws itself on a painter in centimetres,
/// the origin at the upper left corner of the paper.
[[nodiscard]] std::vector<Printer::Draw> TextPages(const QString& title, const QString& text,
                                                   const QSizeF& paper_cm);

/// Asks for a printer and prints. Does nothing when the user cancels. Throws RuntimeError when the printer
/// does not take the job or the file cannot be written; a file that was there before stays as it was.
void AskAndPrintText(const QString& title, const QString& text);

}  // namespace kalivor::platform
