#include "print/TablePrinter.h"

#include <optional>

#include "platform/qt/QtPrinter.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {

void AskAndPrintTable(const QString& title, const ListTable& table, const PageLabels& labels) {
  platform::QtPrinter printer(title, title + u".pdf"_s);
  printer.SetOrientation(TableOrientation(table));
  const std::optional<int> copies = printer.Choose(platform::kNoSelection);
  if (!copies) return;
  const std::vector<platform::Printer::Draw> pages = TablePages(table, labels, printer.Paper_cm());
  for (int copy = 0; copy < *copies; ++copy) {
    for (const platform::Printer::Draw& page : pages)
      printer.PrintPage(page);
  }
  printer.EndDoc();
  (void)printer.EndPrinting();
}

}  // namespace kalivor::print
