#include "ui/list/CellStyle.h"

#include <QHeaderView>

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

bool IsDark(const QPalette& palette) {
  // Lower lightness of a background is dark.
  constexpr int kDarkLightness = 128;
  return palette.color(QPalette::Base).lightness() < kDarkLightness;
}

// Of a box: to be seen on a dark background.
QColor OutlineOn(const QPalette& palette) {
  return palette.color(QPalette::Text).darker(120);
}

}  // namespace

QColor WarningColour(const QPalette& palette) {
  return IsDark(palette) ? QColor(255, 138, 128) : QColor(176, 0, 32);
}

// The styles draw the check box's outline in a darker shade of the window's colour. On a dark background that
// would leave nothing to see of an empty box.
void StyleCell(QStyleOptionViewItem& option) {
  if ((option.displayAlignment & Qt::AlignRight) != 0) option.text += kEndOfNumbers;
  QPalette& palette = option.palette;
  if (IsDark(palette)) palette.setColor(QPalette::Window, OutlineOn(palette));
}

void PrepareTable(QTableView& table) {
  table.setSelectionBehavior(QAbstractItemView::SelectRows);
  table.setEditTriggers(QAbstractItemView::NoEditTriggers);
  table.setTabKeyNavigation(false);
  table.setCornerButtonEnabled(false);
  table.setShowGrid(false);
  table.setAlternatingRowColors(true);
  table.setWordWrap(false);
  table.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  table.verticalHeader()->hide();
  table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  SetRowHeight(table);
  QHeaderView& columns = *table.horizontalHeader();
  columns.setObjectName(u"columns"_s);
  columns.setSectionsMovable(true);
  columns.setHighlightSections(false);
  columns.setStretchLastSection(true);
}

void SetRowHeight(QTableView& table, int air_px) {
  const int height = table.fontMetrics().height() + air_px;
  table.verticalHeader()->setMinimumSectionSize(height);
  table.verticalHeader()->setDefaultSectionSize(height);
}

void StyleBox(QAbstractButton& box) {
  QPalette palette = box.parentWidget()->palette();
  if (IsDark(palette)) palette.setColor(QPalette::Window, OutlineOn(palette));
  box.setPalette(palette);
}

void StylePlaceholders(QWidget& window) {
  constexpr float kFaint = 0.55F;
  for (QWidget* box : window.findChildren<QWidget*>()) {
    if (box->property("placeholderText").toString().isEmpty()) continue;
    QPalette own;
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
      QColor colour = window.palette().color(group, QPalette::Text);
      if (group != QPalette::Disabled) colour.setAlphaF(kFaint);
      own.setColor(group, QPalette::PlaceholderText, colour);
    }
    box->setPalette(own);
  }
}

}  // namespace kalivor::ui
