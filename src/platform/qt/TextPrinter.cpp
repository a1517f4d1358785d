#include "platform/qt/TextPrinter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QStringList>
#include <algorithm>

#include "platform/RuntimeError.h"
#include "platform/qt/FixedFont.h"
#include "platform/qt/PrintJobs.h"
#include "platform/qt/ShownText.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr double kFontSize_pt = 9;
constexpr int kHeadingLines = 2;  // the title and a blank line
constexpr int kFooterLines = 2;   // a blank line and the page number

QStringList CutLines(const QString& text, qsizetype width) {
  QStringList lines;
  for (const QString& line : WithPlainLineBreaks(text).trimmed().split(u'\n')) {
    qsizetype from = 0;
    do {
      lines.append(line.mid(from, width));
      from += width;
    } while (from < line.size());
  }
  return lines;
}

}  // namespace

int PrintText(QPagedPaintDevice& device, const QString& title, const QString& text) {
  QPainter painter;
  if (!painter.begin(&device)) return 0;
  QFont font = FixedFont();
  font.setPointSizeF(kFontSize_pt);
  painter.setFont(font);
  const QFontMetricsF metrics(font, &device);
  const double pitch = metrics.lineSpacing();
  const QRectF area(0, 0, painter.window().width(), painter.window().height());
  const auto perLine = std::max(1, static_cast<int>(area.width() / metrics.horizontalAdvance(u'0')));
  const int perPage = std::max(1, static_cast<int>(area.height() / pitch) - kHeadingLines - kFooterLines);

  const QStringList lines = CutLines(text, perLine);
  const int pages = static_cast<int>((lines.size() + perPage - 1) / perPage);
  const auto draw = [&](int line, const QString& content, Qt::Alignment alignment) {
    painter.drawText(QRectF(0, line * pitch, area.width(), pitch),
                     static_cast<int>(alignment) | Qt::TextSingleLine, content);
  };
  for (int page = 0; page < pages; ++page) {
    if (page > 0 && !device.newPage()) break;
    draw(0, title, Qt::AlignLeft);
    for (int i = 0; i < perPage && page * perPage + i < lines.size(); ++i)
      draw(kHeadingLines + i, lines.at(page * perPage + i), Qt::AlignLeft);
    draw(kHeadingLines + perPage + 1, u"Seite %1 von %2"_s.arg(page + 1).arg(pages), Qt::AlignHCenter);
  }
  return pages;
}

void AskAndPrintText(QWidget* parent, const QString& title, const QString& text) {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(title);
  if (printer.outputFormat() == QPrinter::PdfFormat)
    printer.setOutputFileName(ProposedFile(title + u".pdf"_s));
  QPrintDialog dialog(&printer, parent);
  dialog.setObjectName(u"CDlg"_s);
  if (dialog.exec() != QDialog::Accepted) return;
  const bool printed = PrintText(printer, title, text) > 0;
  if (printer.outputFormat() == QPrinter::PdfFormat) {
    if (printed) return;
    throw RuntimeError(RuntimeError::Kind::FileError,
                       u"Die Datei kann nicht geschrieben werden: "_s + printer.outputFileName());
  }
  const std::optional<QString> refusal = RefusedJob();
  if (!printed || refusal)
    throw RuntimeError(RuntimeError::Kind::FileError, RefusalText(printer.printerName(), refusal));
}

}  // namespace kalivor::platform
