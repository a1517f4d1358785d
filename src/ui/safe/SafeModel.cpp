#include "ui/safe/SafeModel.h"

#include <QApplication>
#include <QStyle>

#include "core/ParameterTypes.h"
#include "core/ValueSets.h"
#include "ui/list/CellStyle.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

SafeColumn ColumnOf(const QModelIndex& index) {
  return static_cast<SafeColumn>(index.column());
}

bool IsValueColumn(SafeColumn column) {
  return column == SafeColumn::Old || column == SafeColumn::New || column == SafeColumn::Now;
}

// Their shapes differ, not only their colours.
QVariant StateIcon(SafeState state) {
  const QStyle& style = *QApplication::style();
  switch (state) {
    case SafeState::Verified:
      return style.standardIcon(QStyle::SP_DialogApplyButton);
    case SafeState::Deviating:
    case SafeState::Failed:
      return style.standardIcon(QStyle::SP_MessageBoxCritical);
    case SafeState::Unverified:
    case SafeState::NotRead:
      return style.standardIcon(QStyle::SP_MessageBoxWarning);
    case SafeState::Equal:
    case SafeState::Different:
      break;
  }
  return {};
}

}  // namespace

void SafeModel::Show(SafePhase phase) {
  beginResetModel();
  phase_ = phase;
  rows_ = SafeRows(run_, phase);
  endResetModel();
}

void SafeModel::Choose(const std::vector<int>& rows, bool chosen) {
  for (const int row : rows) {
    SafeValue& value = run_.values[rows_[static_cast<std::size_t>(row)]];
    if (!CanBeChosen(run_, value) || value.chosen == chosen) continue;
    value.chosen = chosen;
    const QModelIndex mark = index(row, static_cast<int>(SafeColumn::Mark));
    Q_EMIT dataChanged(mark, mark);
  }
  if (OnChoice) OnChoice();
}

int SafeModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int SafeModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kSafeColumns;
}

bool SafeModel::IsNumber(int row, SafeColumn column) const {
  if (column == SafeColumn::Number) return true;
  return IsValueColumn(column) && TypeOf(definitions_.Par[At(row).index].Typ).kind != ValueKind::Text;
}

QString SafeModel::AccessibleText(int row, SafeColumn column) const {
  const SafeValue& value = At(row);
  if (column != SafeColumn::Mark) return SafeCellText(definitions_.Par[value.index], run_, value, column);
  if (!CanBeChosen(run_, value)) return u"nicht ankreuzbar"_s;
  return value.chosen ? u"angekreuzt"_s : u"nicht angekreuzt"_s;
}

QVariant SafeModel::SortKey(int row, SafeColumn column) const {
  const SafeValue& value = At(row);
  if (column == SafeColumn::Mark) return !value.chosen;
  const QString text = AccessibleText(row, column);
  if (!IsNumber(row, column) || text.isEmpty()) return text;
  return column == SafeColumn::Number ? value.index : text.toDouble();
}

QVariant SafeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const SafeValue& value = At(index.row());
  const SafeColumn column = ColumnOf(index);
  switch (role) {
    case Qt::DisplayRole:
      return SafeCellText(definitions_.Par[value.index], run_, value, column);
    case Qt::ToolTipRole:
      return AccessibleText(index.row(), column);
    case Qt::CheckStateRole:
      if (column != SafeColumn::Mark || !CanBeChosen(run_, value)) return {};
      return value.chosen ? Qt::Checked : Qt::Unchecked;
    case Qt::DecorationRole:
      return column == SafeColumn::State ? StateIcon(value.state) : QVariant();
    case Qt::TextAlignmentRole:
      return QVariant(Qt::AlignVCenter | (IsNumber(index.row(), column) ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::AccessibleTextRole:
      return AccessibleText(index.row(), column);
    case Qt::AccessibleDescriptionRole:
      return u"%1, %2"_s.arg(SafeColumnTitle(run_.kind, column), definitions_.Par[value.index].Name);
    case Qt::UserRole:
      return SortKey(index.row(), column);
    case kTroubleRole:
      if (phase_ == SafePhase::Account)
        return IsTrouble(value.state) && (column == SafeColumn::State || column == SafeColumn::Now);
      return IsNewOutside(definitions_.Par[value.index], run_, value) &&
             (column == SafeColumn::New || column == SafeColumn::State);
    default:
      return {};
  }
}

QVariant SafeModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= kSafeColumns) return {};
  const auto column = static_cast<SafeColumn>(section);
  const QString title = SafeColumnTitle(run_.kind, column);
  switch (role) {
    case Qt::DisplayRole:
      // Ends where the numbers below it end.
      return column == SafeColumn::Number || IsValueColumn(column) ? title + kEndOfNumbers : title;
    case Qt::AccessibleTextRole:
      return title;
    case Qt::TextAlignmentRole:
      return QVariant(
          Qt::AlignVCenter |
          (column == SafeColumn::Number || IsValueColumn(column) ? Qt::AlignRight : Qt::AlignLeft));
    default:
      return {};
  }
}

bool SafeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole) return false;
  Choose({index.row()}, value.value<Qt::CheckState>() == Qt::Checked);
  return true;
}

Qt::ItemFlags SafeModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (ColumnOf(index) == SafeColumn::Mark && CanBeChosen(run_, At(index.row())))
    flags |= Qt::ItemIsUserCheckable;
  return flags;
}

}  // namespace kalivor::ui
