// Draws a page, the same on printer, PDF and screen.
#pragma once

#include <QPainter>

#include "print/pages/PreviewPages.h"

namespace kalivor::print {

/// Draws `page` in black on whatever is there. `painter` is in centimetres, the origin at the upper left
/// corner of the paper.
void DrawPage(QPainter& painter, const PageView& page);

/// Where line `line` (from 0, counted on the page) is, and the sign before a line of `level` that expands or
/// collapses it. In centimetres; `list` and `geometry` are those of the page.
[[nodiscard]] QRectF LineArea(const Geometry& geometry, int line);
[[nodiscard]] QRectF SignArea(const PrintList& list, const Geometry& geometry, int line, int level);

}  // namespace kalivor::print
