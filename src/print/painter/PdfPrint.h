// Printing into a PDF file without a window.
#pragma once

#include <QGuiApplication>
#include <memory>
#include <optional>

#include "print/pages/PagesText.h"

namespace kalivor::print {

struct PdfRequest {
  PrintInput input;
  QString file;             ///< an existing one is replaced
  qint16 copies = 1;        ///< all of them in the same file; none: no file is written
  std::optional<int> page;  ///< one page only; otherwise all pages
};

/// The application object that fonts need, on the toolkit's `platform` that paints without a display. Make no
/// other application then.
[[nodiscard]] std::unique_ptr<QGuiApplication> NewPdfApplication(int& argc, char** argv,
                                                                 const char* platform);

/// Writes the PDF that the print command would print. Returns "", or why not, in German. Needs a
/// QGuiApplication. Throws RuntimeError as the preview does.
[[nodiscard]] QString PrintPdf(Core& core, const PdfRequest& request);

}  // namespace kalivor::print
