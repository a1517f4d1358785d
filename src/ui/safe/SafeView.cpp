#include "ui/safe/SafeView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QStyledItemDelegate>
#include <algorithm>
#include <numeric>

#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

int FirstDigits(SafeColumn column) {
  switch (column) {
    case SafeColumn::Mark:
    case SafeColumn::Number:
      return 6;
    case SafeColumn::Name:
      return 34;
    case SafeColumn::Old:
    case SafeColumn::New:
    case SafeColumn::Now:
      return 15;
    case SafeColumn::Unit:
      return 8;
    case SafeColumn::State:
      break;  // fills what is left
  }
  return 36;
}

class SafeDelegate final : public CellDelegate {
 public:
  using CellDelegate::CellDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    CellDelegate::initStyleOption(option, index);
    if (!index.data(SafeModel::kTroubleRole).toBool()) return;
    option->font.setBold(true);
    option->palette.setColor(QPalette::Text, WarningColour(option->palette));
  }
};

}  // namespace

SafeView::SafeView(SafeModel& model, QWidget* parent) : QTableView(parent), model_(model) {
  sorted_.setSourceModel(&model);
  sorted_.setSortRole(Qt::UserRole);
  sorted_.setSortLocaleAware(true);
  setModel(&sorted_);
  PrepareTable(*this);
  setItemDelegate(new SafeDelegate(this));
  QHeaderView& header = *horizontalHeader();
  header.setSortIndicatorClearable(true);
  header.setSortIndicator(-1, Qt::AscendingOrder);
  setSortingEnabled(true);
  const int digit_px = fontMetrics().horizontalAdvance(u'0');
  for (int column = 0; column < kSafeColumns; ++column)
    header.resizeSection(column, FirstDigits(static_cast<SafeColumn>(column)) * digit_px);
}

int SafeView::WholeWidth() const {
  return ui::WholeWidth(*this) - columnWidth(static_cast<int>(SafeColumn::Mark));
}

void SafeView::ShowColumns(SafePhase phase) {
  for (int column = 0; column < kSafeColumns; ++column)
    setColumnHidden(column, !HasColumn(model_.Kind(), phase, static_cast<SafeColumn>(column)));
}

void SafeView::ShowPhase(SafePhase phase) {
  phase_ = phase;
  horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
  model_.Show(phase);
  ShowColumns(phase);
  if (sorted_.rowCount() > 0) setCurrentIndex(sorted_.index(0, static_cast<int>(SafeColumn::Name)));
  scrollToTop();
}

void SafeView::ChooseAll(bool chosen) {
  std::vector<int> rows(static_cast<std::size_t>(model_.rowCount()));
  std::iota(rows.begin(), rows.end(), 0);
  model_.Choose(rows, chosen);
}

std::vector<int> SafeView::HighlightedRows() const {
  std::vector<int> rows;
  for (int row = 0; row < sorted_.rowCount(); ++row) {
    if (selectionModel()->isRowSelected(row, {}))
      rows.push_back(sorted_.mapToSource(sorted_.index(row, 0)).row());
  }
  return rows;
}

// All of them marked, they are unmarked; else marked.
void SafeView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    if (OnCopy) OnCopy();
  } else if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
    const std::vector<int> rows = HighlightedRows();
    const auto isOpen = [this](int row) { return model_.IsChoosable(row) && !model_.At(row).chosen; };
    if (phase_ == SafePhase::Choice) model_.Choose(rows, std::ranges::any_of(rows, isOpen));
  } else {
    QTableView::keyPressEvent(event);
  }
}

void SafeView::Load(const platform::SettingsStore& settings) {
  LoadColumns(*horizontalHeader(), settings, u"SicherSpalten"_s);
}

// Which columns are hidden is not the user's.
void SafeView::Store(platform::SettingsStore& settings) {
  for (int column = 0; column < kSafeColumns; ++column)
    setColumnHidden(column, false);
  horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
  SaveColumns(*horizontalHeader(), settings, u"SicherSpalten"_s);
  ShowColumns(phase_);
}

}  // namespace kalivor::ui
