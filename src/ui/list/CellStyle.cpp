#include "ui/list/CellStyle.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>

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

// Rows as high as the table's font wants them, plus some air.
class RowHeight final : public QObject {
 public:
  RowHeight(QTableView& table, int air_px) : QObject(&table), table_(table), air_px_(air_px) {
    table.installEventFilter(this);
    Set();
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) Set();
    return QObject::eventFilter(watched, event);
  }

 private:
  void Set() {
    const int height = table_.fontMetrics().height() + air_px_;
    table_.verticalHeader()->setMinimumSectionSize(height);
    table_.verticalHeader()->setDefaultSectionSize(height);
  }

  QTableView& table_;
  int air_px_;
};

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

void PrepareTable(QTableView& table, int air_px) {
  table.setItemDelegate(new CellDelegate(&table));
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
  new RowHeight(table, air_px);
  QHeaderView& columns = *table.horizontalHeader();
  columns.setObjectName(u"columns"_s);
  columns.setSectionsMovable(true);
  columns.setHighlightSections(false);
  columns.setStretchLastSection(true);
}

void SetColumnWidths(QTableView& table, std::initializer_list<int> digits) {
  const int digit_px = table.fontMetrics().horizontalAdvance(u'0');
  int column = 0;
  for (const int count : digits)
    table.setColumnWidth(column++, count * digit_px);
}

int WholeWidth(const QTableView& table) {
  return table.horizontalHeader()->length() + table.verticalScrollBar()->sizeHint().width() +
         2 * table.frameWidth();
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
