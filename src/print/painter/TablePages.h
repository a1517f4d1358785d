// A table on paper: where its columns, rows and pages are, and drawing them.
#pragma once

#include <QSizeF>
#include <QString>
#include <vector>

#include "core/ListTable.h"
#include "platform/Printer.h"
#include "print/pages/PagesText.h"

namespace kalivor::print {

/// What stands on every page around the table, as around the printed parameters.
struct PageLabels {
  QString header;  ///< controller version and plant type
  QString date;    ///< at the left of the footer
  QString path;    ///< at its end, shortened where there is no room for it
};

[[nodiscard]] PageLabels LabelsOf(const Module1& module, const PrintInput& input);

/// kLandscape when the table would be too small to read well on upright A4.
[[nodiscard]] int TableOrientation(const ListTable& table);

/// The pages of `table`, at least one, for paper of that size. The heading stands on the first one, the
/// titles on each. Columns are as wide as their longest text; where that is too much, the characters get
/// smaller as long as they can be read, and then long texts go on in further lines of their row: nothing is
/// left out. A row goes on on the next page only when it is longer than a page. Each page draws itself in
/// black on a painter in centimetres, the origin at the upper left corner of the paper. Needs a
/// QGuiApplication.
[[nodiscard]] std::vector<platform::Printer::Draw> TablePages(const ListTable& table,
                                                              const PageLabels& labels,
                                                              const QSizeF& paper_cm);

/// The pages for A4 in the better orientation as a PDF document. Needs a QGuiApplication.
[[nodiscard]] QByteArray TablePdf(const ListTable& table, const PageLabels& labels);

/// Writes that into a file; one that was there is replaced. Returns "", or why not, in German.
[[nodiscard]] QString SaveTablePdf(const ListTable& table, const PageLabels& labels, const QString& file);

}  // namespace kalivor::print
