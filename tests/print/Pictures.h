// The preview and printed pages side by side.
#pragma once

#include "print/FormPrintPreview.h"
#include "print/Poppler.h"
#include "print/painter/PagePainter.h"

namespace kalivor::test {

/// `area` of the page, in centimetres, in pixels of `picture`.
inline QRect Pixels(const QRectF& area, const print::Geometry& page, const QSize& picture) {
  const double x = picture.width() / page.ScaleWidth;
  const double y = picture.height() / page.ScaleHeight;
  return QRectF(area.x() * x, area.y() * y, area.width() * x, area.height() * y).toRect();
}

/// The smallest rectangle around everything dark in `area`.
inline QRect Ink(const QImage& picture, const QRect& area) {
  QRect ink;
  for (int y = std::max(0, area.top()); y <= std::min(area.bottom(), picture.height() - 1); ++y) {
    for (int x = std::max(0, area.left()); x <= std::min(area.right(), picture.width() - 1); ++x) {
      if (qGray(picture.pixel(x, y)) < 128) ink |= QRect(x, y, 1, 1);
    }
  }
  return ink;
}

/// Header, footer and each line of the page that `preview` shows at 1:1 have their text in the same place on
/// `page` of the PDF, within a millimetre.
inline void ExpectSamePlaces(print::FormPrintPreview& preview, const QString& file, int page) {
  ASSERT_EQ(preview.Masstab, 1);
  const QImage screen = preview.grab().toImage();
  const QImage paper = PdfPicture(file, page, screen.size());
  const print::PageView view = preview.View();
  const print::Geometry& geometry = view.geometry;
  const double millimetre = screen.width() / (geometry.ScaleWidth * 10);

  std::vector<QRectF> areas{{0, geometry.HeaderTop, geometry.ScaleWidth, 0.5},
                            {0, geometry.FooterTop, geometry.ScaleWidth, 0.5}};
  for (int line = view.lines.first; line <= view.lines.last; ++line) {
    // The text only.
    const int level = view.list.nodes[static_cast<std::size_t>(line - 1)].level;
    areas.push_back(print::LineArea(geometry, line - view.lines.first).adjusted(level + 0.95, 0, 0, 0));
  }
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const QRect area = Pixels(areas[i], geometry, screen.size());
    const QRect shown = Ink(screen, area);
    const QRect printed = Ink(paper, area);
    ASSERT_FALSE(printed.isEmpty()) << "page " << page << ", area " << i;
    EXPECT_NEAR(shown.left(), printed.left(), millimetre) << "page " << page << ", area " << i;
    EXPECT_NEAR(shown.right(), printed.right(), millimetre) << "page " << page << ", area " << i;
    EXPECT_NEAR(shown.top(), printed.top(), millimetre) << "page " << page << ", area " << i;
    EXPECT_NEAR(shown.bottom(), printed.bottom(), millimetre) << "page " << page << ", area " << i;
  }
}

/// The page of the PDF holds the texts that `preview` shows, in the same order.
inline void ExpectSameLines(const print::FormPrintPreview& preview, const QString& file, int page) {
  const print::PageView view = preview.View();
  QStringList lines{view.header};
  for (int line = view.lines.first; line <= view.lines.last; ++line)
    lines.append(view.list.nodes[static_cast<std::size_t>(line - 1)].text);
  lines.append(view.footer);
  for (QString& line : lines)
    line.remove(u' ');
  EXPECT_EQ(PdfLines(file, page), lines) << "page " << page;
}

}  // namespace kalivor::test
