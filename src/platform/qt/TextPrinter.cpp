#include "platform/qt/TextPrinter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStringList>
#include <algorithm>

#include "platform/gui/FixedFont.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/ShownText.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr double kFontSize_pt = 9;
constexpr double kCentimetresPerPoint = 2.54 / 72;
constexpr double kPaperMargin_cm = 1.5;
constexpr int kHeadingLines = 2;  // the title and a blank line
constexpr int kFooterLines = 2;   // a blank line and the page number

// Fonts have whole sizes, so text is drawn in thousandths of a centimetre.
constexpr double kUnitsPerCentimetre = 1000;

QFont TextFont() {
  QFont font = FixedFont();
  font.setPixelSize(static_cast<int>(kFontSize_pt * kCentimetresPerPoint * kUnitsPerCentimetre));
  font.setKerning(false);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

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

std::vector<Printer::Draw> TextPages(const QString& title, const QString& text, const QSizeF& paper_cm) {
  const QFont font = TextFont();
  const QFontMetricsF metrics(font);
  const double pitch = metrics.lineSpacing();
  const double margin = kPaperMargin_cm * kUnitsPerCentimetre;
  const QSizeF area = paper_cm * kUnitsPerCentimetre - QSizeF(2 * margin, 2 * margin);
  const int perLine = std::max(1, static_cast<int>(area.width() / metrics.horizontalAdvance(u'0')));
  const int perPage = std::max(1, static_cast<int>(area.height() / pitch) - kHeadingLines - kFooterLines);

  const QStringList lines = CutLines(text, perLine);
  const qsizetype count = (lines.size() + perPage - 1) / perPage;
  std::vector<Printer::Draw> pages;
  for (qsizetype page = 0; page < count; ++page) {
    const QString number = u"Seite %1 von %2"_s.arg(page + 1).arg(count);
    pages.emplace_back([=, shown = lines.mid(page * perPage, perPage)](QPainter& painter) {
      painter.scale(1 / kUnitsPerCentimetre, 1 / kUnitsPerCentimetre);
      painter.translate(margin, margin);
      painter.setFont(font);
      const auto draw = [&](qsizetype line, const QString& content, Qt::Alignment alignment) {
        painter.drawText(QRectF(0, static_cast<double>(line) * pitch, area.width(), pitch),
                         static_cast<int>(alignment) | Qt::TextSingleLine, content);
      };
      draw(0, title, Qt::AlignLeft);
      for (qsizetype line = 0; line < shown.size(); ++line)
        draw(kHeadingLines + line, shown.at(line), Qt::AlignLeft);
      draw(kHeadingLines + perPage + 1, number, Qt::AlignHCenter);
    });
  }
  return pages;
}

void AskAndPrintText(const QString& title, const QString& text) {
  QtPrinter printer(title, title + u".pdf"_s);
  const std::optional<int> copies = printer.Choose(kNoSelection);
  if (!copies) return;
  const std::vector<Printer::Draw> pages = TextPages(title, text, printer.Paper_cm());
  for (int copy = 0; copy < *copies; ++copy) {
    for (const Printer::Draw& page : pages)
      printer.PrintPage(page);
  }
  printer.EndDoc();
  (void)printer.EndPrinting();
}

}  // namespace kalivor::platform
