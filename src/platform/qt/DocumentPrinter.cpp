#include "platform/qt/DocumentPrinter.h"

#include <optional>

#include "platform/RuntimeError.h"
#include "platform/qt/QtPrinter.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {

void AskAndPrintDocument(const QString& title, const HtmlDocument& document) {
  QtPrinter printer(title, title + u".pdf"_s);
  const std::optional<int> copies = printer.Choose(kNoSelection);
  if (!copies) return;
  const DocumentLayout layout = DocumentPages(document, printer.Paper_cm());
  if (!layout.error.isEmpty()) throw RuntimeError(RuntimeError::Kind::InvalidArgument, layout.error);
  for (int copy = 0; copy < *copies; ++copy) {
    for (const PageDrawing& page : layout.pages)
      printer.PrintPage(page);
  }
  printer.EndDoc();
  (void)printer.EndPrinting();
}

}  // namespace kalivor::platform
