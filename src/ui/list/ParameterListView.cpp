#include "ui/list/ParameterListView.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <algorithm>

#include "ui/list/ValueDelegate.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kValueColumn = static_cast<int>(ListColumn::Value);
constexpr int kNameColumn = static_cast<int>(ListColumn::Name);

// What a column is at first: so many digits wide, and shown or not.
struct FirstColumn {
  int digits = 0;
  bool shown = true;
};

FirstColumn FirstOf(ListColumn column) {
  switch (column) {
    case ListColumn::Mark:
    case ListColumn::Number:
      return {6};
    case ListColumn::Group:
      return {14};
    case ListColumn::Name:
      return {38};
    case ListColumn::Value:
    case ListColumn::Comparison:
    case ListColumn::Standard:
      return {16};
    case ListColumn::Difference:
      return {12, false};
    case ListColumn::State:
      return {27};
    case ListColumn::Unit:
      return {8};
    case ListColumn::Minimum:
    case ListColumn::Maximum:
      return {10};
    case ListColumn::Variable:
      return {28, false};
    case ListColumn::Address:
    case ListColumn::Type:
      return {11, false};
  }
  return {};
}

QString ActionName(int column) {
  return u"column%1"_s.arg(column);
}

}  // namespace

ParameterListView::ParameterListView(ParameterListProxy& proxy, QWidget* parent)
    : QTableView(parent), proxy_(proxy) {
  setModel(&proxy);
  PrepareTable(*this);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
  QHeaderView& header = *horizontalHeader();
  header.setStretchLastSection(false);
  header.setContextMenuPolicy(Qt::CustomContextMenu);
  auto* delegate = new ValueDelegate(this);
  delegate->OnLeave = [this](QWidget* editor, int rows, int columns) { Leave(editor, rows, columns); };
  setItemDelegate(delegate);
  BuildColumnMenu();
  SetDefaultColumns();
  setSortingEnabled(true);
  connect(&header, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& place) { columnMenu_.popup(horizontalHeader()->mapToGlobal(place)); });
  connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
    if (index.column() == kNameColumn) OpenCurrent();
  });
}

// --- columns ---

void ParameterListView::BuildColumnMenu() {
  columnMenu_.setObjectName(u"columnMenu"_s);
  for (int column = 0; column < kListColumns; ++column) {
    QAction* action = columnMenu_.addAction(ColumnTitle(static_cast<ListColumn>(column)));
    action->setObjectName(ActionName(column));
    action->setCheckable(true);
    connect(action, &QAction::triggered, this,
            [this, column](bool shown) { setColumnHidden(column, !shown); });
  }
  columnMenu_.addSeparator();
  const auto add = [this](const QString& name, const QString& caption, auto action) {
    columnMenu_.addAction(caption, this, action)->setObjectName(name);
  };
  add(u"columnLeft"_s, u"Nach &links"_s, [this] { MoveColumn(-1); });
  add(u"columnRight"_s, u"Nach &rechts"_s, [this] { MoveColumn(1); });
  add(u"columnSort"_s, u"&Sortieren"_s, [this] {
    const QHeaderView& header = *horizontalHeader();
    const int column = currentIndex().isValid() ? currentIndex().column() : 0;
    const bool again = header.sortIndicatorSection() == column;
    const bool turn = again && header.sortIndicatorOrder() == Qt::AscendingOrder;
    sortByColumn(column, turn ? Qt::DescendingOrder : Qt::AscendingOrder);
  });
  columnMenu_.addSeparator();
  add(u"columnDefaults"_s, u"&Grundeinstellung"_s, [this] { SetDefaultColumns(); });
  connect(&columnMenu_, &QMenu::aboutToShow, this, [this] { ShowInColumnMenu(); });
}

// The last one stays: without a heading there would be no way back.
void ParameterListView::ShowInColumnMenu() {
  const std::size_t shown = ShownColumns().size();
  for (int column = 0; column < kListColumns; ++column) {
    auto* action = columnMenu_.findChild<QAction*>(ActionName(column));
    action->setChecked(!isColumnHidden(column));
    action->setEnabled(isColumnHidden(column) || shown > 1);
  }
  const QString title = ColumnTitle(static_cast<ListColumn>(std::max(currentIndex().column(), 0)));
  const auto caption = [&](const QString& name, const QString& text) {
    columnMenu_.findChild<QAction*>(name)->setText(text.arg(title));
  };
  caption(u"columnLeft"_s, u"„%1“ nach &links\tStrg+Umschalt+Links"_s);
  caption(u"columnRight"_s, u"„%1“ nach &rechts\tStrg+Umschalt+Rechts"_s);
  caption(u"columnSort"_s, u"Nach „%1“ &sortieren"_s);
}

void ParameterListView::SetDefaultColumns() {
  QHeaderView& header = *horizontalHeader();
  const int digit_px = fontMetrics().horizontalAdvance(u'0');
  for (int column = 0; column < kListColumns; ++column) {
    const FirstColumn first = FirstOf(static_cast<ListColumn>(column));
    header.moveSection(header.visualIndex(column), column);
    header.setSectionHidden(column, false);
    header.resizeSection(column, first.digits * digit_px);
    header.setSectionHidden(column, !first.shown);
  }
  sortByColumn(static_cast<int>(ListColumn::Number), Qt::AscendingOrder);
}

std::vector<ListColumn> ParameterListView::ShownColumns() const {
  std::vector<ListColumn> columns;
  for (int place = 0; place < kListColumns; ++place) {
    const int column = horizontalHeader()->logicalIndex(place);
    if (!isColumnHidden(column)) columns.push_back(static_cast<ListColumn>(column));
  }
  return columns;
}

// Past those that are not shown.
void ParameterListView::MoveColumn(int by) {
  if (!currentIndex().isValid()) return;
  QHeaderView& header = *horizontalHeader();
  const int from = header.visualIndex(currentIndex().column());
  int to = from + by;
  while (to >= 0 && to < kListColumns && header.isSectionHidden(header.logicalIndex(to)))
    to += by;
  if (to >= 0 && to < kListColumns) header.moveSection(from, to);
  scrollTo(currentIndex());
}

// --- rows ---

std::vector<ListRow> ParameterListView::HighlightedRows() const {
  std::vector<int> shown;
  for (const QModelIndex& index : selectionModel()->selectedRows())
    shown.push_back(index.row());
  std::ranges::sort(shown);
  std::vector<ListRow> rows;
  rows.reserve(shown.size());
  for (const int row : shown)
    rows.push_back(proxy_.ShownRow(row));
  return rows;
}

void ParameterListView::GoToRow(int row) {
  const int column = currentIndex().isValid() ? currentIndex().column() : kValueColumn;
  setCurrentIndex(proxy_.index(row, column));
}

// All of them marked, they are unmarked; else marked.
void ParameterListView::ToggleMarks() {
  const std::vector<ListRow> rows = HighlightedRows();
  if (rows.empty() || !OnMark) return;
  std::vector<int> indexes;
  indexes.reserve(rows.size());
  for (const ListRow& row : rows)
    indexes.push_back(row.index);
  OnMark(indexes, !std::ranges::all_of(rows, &ListRow::checked));
}

void ParameterListView::OpenCurrent() {
  if (CurrentRow() >= 0 && OnOpen) OnOpen(proxy_.ShownRow(CurrentRow()).index);
}

// --- editing ---

QModelIndex ParameterListView::ValueOfCurrentRow() const {
  return CurrentRow() < 0 ? QModelIndex() : proxy_.index(CurrentRow(), kValueColumn);
}

void ParameterListView::EditValue() {
  const QModelIndex value = ValueOfCurrentRow();
  if (!value.isValid() || isColumnHidden(kValueColumn) || (value.flags() & Qt::ItemIsEditable) == 0) return;
  setCurrentIndex(value);
  edit(value);
}

void ParameterListView::CloseEditor() {
  if (state() != EditingState) return;
  if (auto* editor = viewport()->findChild<QLineEdit*>(u"valueEdit"_s))
    closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

// The row to go to is that which follows now: storing may sort the edited one to elsewhere.
void ParameterListView::Leave(QWidget* editor, int rows, int columns) {
  const QPointer<QWidget> open(editor);
  const QHeaderView& header = *horizontalHeader();
  const QModelIndex here = currentIndex();
  int place = header.visualIndex(here.column()) + columns;
  while (place >= 0 && place < kListColumns && header.isSectionHidden(header.logicalIndex(place)))
    place += columns;
  const int column = place < 0 || place >= kListColumns ? here.column() : header.logicalIndex(place);
  const int row = std::clamp(here.row() + rows, 0, std::max(proxy_.rowCount() - 1, 0));
  const QPersistentModelIndex next(proxy_.index(row, column));

  commitData(editor);
  if (open) closeEditor(editor, QAbstractItemDelegate::NoHint);
  if (next.isValid()) setCurrentIndex(next);
  setFocus();
}

bool ParameterListView::BeginsTyping(const QKeyEvent& event) const {
  const Qt::KeyboardModifiers other = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
  // A third level of the keyboard is Ctrl and Alt on some systems.
  const bool types = other == Qt::NoModifier || other == (Qt::ControlModifier | Qt::AltModifier);
  return types && !event.text().isEmpty() && event.text().front().isPrint();
}

void ParameterListView::keyPressEvent(QKeyEvent* event) {
  const bool control = event->modifiers() == Qt::ControlModifier;
  const bool controlShift = event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
  const int key = event->key();
  if (event->matches(QKeySequence::Copy)) {
    if (OnCopy) OnCopy();
  } else if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    if (control) {
      OpenCurrent();
    } else if (CurrentRow() + 1 < proxy_.rowCount()) {
      GoToRow(CurrentRow() + 1);
    }
  } else if (key == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
    ToggleMarks();
  } else if (key == Qt::Key_F2) {
    EditValue();
  } else if (controlShift && (key == Qt::Key_Left || key == Qt::Key_Right)) {
    MoveColumn(key == Qt::Key_Left ? -1 : 1);
  } else if (BeginsTyping(*event)) {
    const QModelIndex value = ValueOfCurrentRow();
    if (!value.isValid() || isColumnHidden(kValueColumn)) return;
    selectionModel()->setCurrentIndex(value, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    edit(value, AnyKeyPressed, event);
  } else {
    QTableView::keyPressEvent(event);
  }
}

void ParameterListView::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKeyboard = event->reason() == QContextMenuEvent::Keyboard;
  if (CurrentRow() < 0) return;
  rowMenu_.clear();
  rowMenu_.setObjectName(u"rowMenu"_s);
  const auto add = [this](const QString& name, const QString& caption, bool enabled, auto action) {
    QAction* item = rowMenu_.addAction(caption, this, action);
    item->setObjectName(name);
    item->setEnabled(enabled);
  };
  const bool editable = (ValueOfCurrentRow().flags() & Qt::ItemIsEditable) != 0;
  const bool hidden = proxy_.ShownRow(CurrentRow()).hidden;
  add(u"rowEdit"_s, u"&Wert ändern\tF2"_s, editable, [this] { EditValue(); });
  add(u"rowOpen"_s, u"Parameter ö&ffnen\tStrg+Eingabe"_s, !hidden, [this] { OpenCurrent(); });
  add(u"rowMark"_s, u"&Ankreuzen oder nicht\tLeertaste"_s, true, [this] { ToggleMarks(); });
  rowMenu_.addSeparator();
  add(u"rowCopy"_s, u"&Kopieren\tStrg+C"_s, true, [this] {
    if (OnCopy) OnCopy();
  });
  const QPoint cell = viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft());
  rowMenu_.popup(byKeyboard ? cell : event->globalPos());
}

}  // namespace kalivor::ui
