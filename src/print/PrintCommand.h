// The print command of the main window.
#pragma once

#include "print/MDIFormPrint.h"

namespace kalivor::print {

/// What the print dialog offers: 1048576, 8 and 4, their digits joined (not their sum).
inline constexpr qint32 kPrintDialogFlags = 104857684;

/// Asks for printer, copies and orientation, and shows the preview in `frame`. Any error ends it silently.
void mnuFilePrint_Click(MDIFormPrint& frame);

}  // namespace kalivor::print
