// Printing a text: a title line, the lines, page numbers.
#pragma once

#include <QPagedPaintDevice>
#include <QString>

class QWidget;

namespace kalivor::platform {

/// Draws `text` (lines separated by CR LF) on the pages of `device` in a fixed-pitch font. Lines that are too
/// long go on in the next one. Returns the number of pages; 0 when the device cannot be drawn on.
int PrintText(QPagedPaintDevice& device, const QString& title, const QString& text);

/// Asks for a printer and prints. Does nothing when the user cancels. Throws RuntimeError (FileError) when
/// the printer does not take the job or the file cannot be written.
void AskAndPrintText(QWidget* parent, const QString& title, const QString& text);

}  // namespace kalivor::platform
