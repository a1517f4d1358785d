#include "print/painter/PagePainter.h"

#include <algorithm>

#include "print/painter/TextDrawer.h"

namespace kalivor::print {
namespace {

// Lines that are too long make the whole list smaller, down to this part of its size: beyond it the list
// could not be read, and the long lines alone are made narrower.
constexpr double kSmallestList = 0.5;

constexpr double kLineWidth = 0.012;
constexpr double kSignSize = 0.26;
constexpr double kBranchGap = 0.08;  // between branch and text

double UsableWidth(const Geometry& geometry) {
  return std::min(geometry.TreeWidth, geometry.ScaleWidth - geometry.TreeLeft - kPaperMargin);
}

// Where the text of a line begins, counted from the left edge of the tree, at full size: one step for its
// branch more than its level.
double TextLeft(const Geometry& geometry, int level) {
  return (level + 1) * geometry.TreeIndentation;
}

// The part of its full size at which every line of the list fits.
double ListScale(const PrintList& list, const Geometry& geometry) {
  double widest = 0;
  for (const PrintNode& node : list.nodes) {
    const double width = TextWidth_cm(node.text.size(), geometry.FontSize_pt);
    widest = std::max(widest, TextLeft(geometry, node.level) + width);
  }
  const double usable = UsableWidth(geometry);
  return widest <= usable ? 1 : std::max(kSmallestList, usable / widest);
}

// The sign that expands or collapses a line of the page.
QRectF Sign(const Geometry& geometry, double scale, int line, int level) {
  const double size = kSignSize * scale;
  const QPointF middle(geometry.TreeLeft + (level + 0.5) * geometry.TreeIndentation * scale,
                       LineArea(geometry, line).center().y());
  return {middle.x() - size / 2, middle.y() - size / 2, size, size};
}

// The branches of the tree: a step of indentation for each level, the sign or branch in its middle.
class BranchDrawer {
 public:
  BranchDrawer(QPainter& painter, const PageView& page, double scale)
      : painter_(painter), page_(page), scale_(scale), step_(page.geometry.TreeIndentation * scale) {
    const std::vector<PrintNode>& nodes = page.list.nodes;
    const auto last =
        std::find_if(nodes.rbegin(), nodes.rend(), [](const PrintNode& node) { return node.level == 1; });
    lastOnTop_ = static_cast<int>(nodes.rend() - last);
  }

  // The branches before line `number` of the list.
  void Draw(int number, const QRectF& area) const {
    const PrintNode& node = page_.list.Node(number);
    painter_.setPen(QPen(Qt::gray, kLineWidth));
    if (node.level > 0) {
      const double y = area.center().y();
      painter_.drawLine(QPointF(X(node.level), y), QPointF(X(node.level) + step_ / 2 - kBranchGap, y));
      painter_.drawLine(QPointF(X(node.level), area.top()),
                        QPointF(X(node.level), HasNext(number, node.level) ? area.bottom() : y));
    }
    if (node.level == 2 && number < lastOnTop_)
      painter_.drawLine(QPointF(X(1), area.top()), QPointF(X(1), area.bottom()));
    if (node.level == 0 || node.IsGroup())
      DrawSign(Sign(page_.geometry, scale_, number - page_.lines.first, node.level));
  }

 private:
  [[nodiscard]] double X(int level) const { return page_.geometry.TreeLeft + (level + 0.5) * step_; }
  [[nodiscard]] bool HasNext(int number, int level) const {
    return level == 1 ? number < lastOnTop_
                      : number < page_.list.Count() && page_.list.Node(number + 1).level == level;
  }

  void DrawSign(const QRectF& box) const {
    painter_.fillRect(box, Qt::white);
    painter_.drawRect(box);
    painter_.setPen(QPen(Qt::black, kLineWidth));
    const double inset = box.width() / 4;
    painter_.drawLine(QPointF(box.left() + inset, box.center().y()),
                      QPointF(box.right() - inset, box.center().y()));
  }

  QPainter& painter_;
  const PageView& page_;
  double scale_;
  double step_;
  int lastOnTop_ = 0;  // the number of the last line directly below the root
};

}  // namespace

QRectF LineArea(const Geometry& geometry, int line) {
  return {geometry.TreeLeft, geometry.TreeTop + line * geometry.LinePitch(), UsableWidth(geometry),
          geometry.LinePitch()};
}

QRectF SignArea(const PrintList& list, const Geometry& geometry, int line, int level) {
  return Sign(geometry, ListScale(list, geometry), line, level);
}

void DrawPage(QPainter& painter, const PageView& page) {
  const Geometry& geometry = page.geometry;
  painter.save();
  painter.setPen(Qt::black);
  const TextDrawer label(painter, false, geometry.FontSize_pt);
  label.Draw(geometry.HeaderLeft, geometry.HeaderTop,
             geometry.ScaleWidth - geometry.HeaderLeft - kPaperMargin, page.header);
  label.Draw(geometry.FooterLeft, geometry.FooterTop, geometry.FooterRoom(), page.footer);

  const double scale = ListScale(page.list, geometry);
  const TextDrawer plain(painter, false, geometry.FontSize_pt * scale);
  const TextDrawer bold(painter, true, geometry.FontSize_pt * scale);
  const BranchDrawer branches(painter, page, scale);
  for (int number = page.lines.first; number <= page.lines.last; ++number) {
    const PrintNode& node = page.list.Node(number);
    const QRectF area = LineArea(geometry, number - page.lines.first);
    branches.Draw(number, area);
    painter.setPen(Qt::black);
    const double left = TextLeft(geometry, node.level) * scale;
    const TextDrawer& text = node.IsGroup() ? bold : plain;
    text.Draw(area.left() + left, area.center().y() - text.Height() / 2, area.width() - left, node.text);
  }
  painter.restore();
}

}  // namespace kalivor::print
