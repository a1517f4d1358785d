#include "platform/qt/NodeTree.h"

#include <QFontMetricsF>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QtMath>
#include <algorithm>
#include <cmath>

namespace kalivor::platform {
namespace {

// So far a level stands behind the one above it. With five characters the headings of the root's text stand
// above the columns of the parameters, two levels below.
constexpr int kIndentation_characters = 5;
constexpr int kLevels = 3;

// Lower lightness of a background is dark.
constexpr int kDarkLightness = 80;

class NodeDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    // Styles draw the check box's outline in a darker shade of the window's colour. On a dark background that
    // would leave nothing to see of an empty box.
    if (option->palette.base().color().lightness() < kDarkLightness)
      option->palette.setColor(QPalette::Window, option->palette.text().color().darker(120));
  }
};

}  // namespace

// Not in whole pixels: over a hundred characters the fractions sum up.
double NodeTree::CharacterWidth() const {
  return QFontMetricsF(font()).horizontalAdvance(u'0');
}

NodeTree::NodeTree(QWidget* parent) : QTreeView(parent) {
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setEditTriggers(NoEditTriggers);
  setTextElideMode(Qt::ElideNone);
  setHorizontalScrollMode(ScrollPerPixel);
  header()->setStretchLastSection(false);
  header()->setMinimumSectionSize(0);
  connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
    if (!checked_ && OnOpen) OnOpen(index);
  });
  setItemDelegate(new NodeDelegate(this));
  connect(this, &QTreeView::expanded, this, &NodeTree::RepaintAll);
  connect(this, &QTreeView::collapsed, this, &NodeTree::RepaintAll);
  Indent();
}

// Where a pixel of ours is one and a half of the screen's, repainting single rows leaves lines between them.
void NodeTree::RepaintAll() {
  if (devicePixelRatioF() != std::floor(devicePixelRatioF())) viewport()->update();
}

void NodeTree::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTreeView::currentChanged(current, previous);
  RepaintAll();
}

void NodeTree::Indent() {
  setIndentation(qRound(kIndentation_characters * CharacterWidth()));
}

void NodeTree::SetTextWidth(qsizetype characters) {
  characters_ = characters;
  const int box = style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this) +
                  2 * style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, this);
  const int text = qCeil(static_cast<double>(characters + 1) * CharacterWidth());
  header()->resizeSection(0, std::max(kLevels * indentation() + box + text, viewport()->width()));
}

void NodeTree::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  SetTextWidth(characters_);
}

void NodeTree::changeEvent(QEvent* event) {
  QTreeView::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  Indent();
  SetTextWidth(characters_);
}

void NodeTree::keyPressEvent(QKeyEvent* event) {
  const QModelIndex current = currentIndex();
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (current.isValid() && OnOpen) OnOpen(current);
      return;
    case Qt::Key_Asterisk:
      // Node by node, as the toolkit's own way to expand a whole branch reports the topmost node only.
      ExpandBelow(current);
      return;
    default:
      QTreeView::keyPressEvent(event);
  }
}

void NodeTree::ExpandBelow(const QModelIndex& index) {
  if (!index.isValid() || !model()->hasChildren(index)) return;
  expand(index);
  for (int row = 0; row < model()->rowCount(index); ++row)
    ExpandBelow(model()->index(row, 0, index));
}

void NodeTree::mouseReleaseEvent(QMouseEvent* event) {
  checked_ = false;
  QTreeView::mouseReleaseEvent(event);
}

}  // namespace kalivor::platform
