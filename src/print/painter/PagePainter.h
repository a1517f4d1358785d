// Draws a page, the same on printer, PDF and screen.
#pragma once

#include <QFont>
#include <QPainter>

#include "print/pages/PreviewPages.h"

namespace kalivor::print {

class PagePainter {
 public:
  PagePainter();

  /// Draws `page` in black on whatever is there. `painter` is in centimetres, the origin at the upper left
  /// corner of the paper.
  void Draw(QPainter& painter, const PageView& page) const;

  /// Where line `line` (from 0, counted on the page) is, and the sign before a line of `level` that expands
  /// or collapses it. In centimetres; `list` and `geometry` are those of the page.
  [[nodiscard]] static QRectF LineArea(const Geometry& geometry, int line);
  [[nodiscard]] static QRectF SignArea(const PrintList& list, const Geometry& geometry, int line, int level);

 private:
  QFont plain_;
  QFont bold_;
  double plainPitch_;  // width of a character as a part of the font's size
  double boldPitch_;
};

}  // namespace kalivor::print
