// Text in the fixed-pitch font on a page.
#pragma once

#include <QFont>
#include <QPainter>
#include <QString>

namespace kalivor::print {

/// Printers cannot print up to the edge of the paper.
inline constexpr double kPaperMargin = 0.8;

/// Draws on a painter in centimetres, which must outlive it.
class TextDrawer {
 public:
  /// In the size in which the characters have the pitch of the layout, TextWidth_cm(1, size_pt).
  TextDrawer(QPainter& painter, bool bold, double size_pt);

  /// One line, its upper edge at `y`; made narrower when it is wider than `room`. With Qt::AlignRight it ends
  /// at x + room. Control characters are drawn as blanks.
  void Draw(double x, double y, double room, const QString& text,
            Qt::Alignment alignment = Qt::AlignLeft) const;

  [[nodiscard]] double Height() const { return height_; }

 private:
  QPainter& painter_;
  QFont font_;
  double height_;
};

}  // namespace kalivor::print
