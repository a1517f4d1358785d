#include "ui/list/ParameterListModel.h"

#include <tuple>

#include "commands/ListCommands.h"
#include "core/ParameterTypes.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// Everything of a record but its value.
auto DefinitionOf(const ParameterRecord& record) {
  return std::tie(record.Name, record.Rubrik, record.Min, record.Max, record.Standard, record.StandardText,
                  record.Einheit, record.Zahl1, record.Zahl2, record.VarAdresse, record.Variable, record.Typ,
                  record.Hilfetext);
}

ListColumn ColumnOf(const QModelIndex& index) {
  return static_cast<ListColumn>(index.column());
}

Qt::Alignment Aligned(bool atRightEnd) {
  return Qt::AlignVCenter | (atRightEnd ? Qt::AlignRight : Qt::AlignLeft);
}

// Texts among numbers begin at the left as all texts do.
bool IsNumber(const ParameterRecord& record, ListColumn column) {
  return IsNumeric(column) && (column == ListColumn::Number || TypeOf(record.Typ).kind != ValueKind::Text);
}

// The value's own column and those that say what is the matter with it.
ParameterListModel::Emphasis EmphasisOf(const ListRow& row, ListColumn column) {
  using Model = ParameterListModel;
  const bool different = Differs(row);
  switch (column) {
    case ListColumn::Value:
      return row.outside ? Model::Outside : Model::None;
    case ListColumn::Comparison:
      if (row.comparisonOutside) return Model::Outside;
      return different ? Model::Different : Model::None;
    case ListColumn::Difference:
      return different ? Model::Different : Model::None;
    case ListColumn::State:
      return row.outside ? Model::Outside : Model::None;
    default:
      return Model::None;
  }
}

}  // namespace

bool ParameterListModel::DefinitionsChanged() const {
  if (std::max(module_.ParCount - 1, 0) != static_cast<int>(definitions_.size())) return true;
  int index = 0;
  for (const ParameterRecord& definition : definitions_) {
    if (DefinitionOf(module_.Par[++index]) != DefinitionOf(definition)) return true;
  }
  return false;
}

void ParameterListModel::SetRows(std::vector<ListRow> rows) {
  if (rows.size() != rows_.size() || DefinitionsChanged()) {
    Begin(std::move(rows));
    return;
  }
  // Neighbours are told of together.
  rows_.swap(rows);
  const int count = rowCount();
  const auto changed = [&](int row) { return At(row) != rows[static_cast<std::size_t>(row)]; };
  for (int first = 0; first < count; ++first) {
    if (!changed(first)) continue;
    int last = first;
    while (last + 1 < count && changed(last + 1))
      ++last;
    for (int row = first; row <= last; ++row)
      keys_[static_cast<std::size_t>(row)] = KeyOf(module_, At(row), keyColumn_);
    Q_EMIT dataChanged(index(first, 0), index(last, kListColumns - 1));
    first = last;
  }
}

void ParameterListModel::Begin(std::vector<ListRow> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  definitions_.clear();
  searched_.clear();
  for (const ListRow& row : rows_) {
    definitions_.push_back(module_.Par[row.index]);
    searched_.push_back(SearchedText(module_.Par[row.index]));
  }
  SetKeyColumn(keyColumn_);
  endResetModel();
}

void ParameterListModel::SetKeyColumn(ListColumn column) {
  keyColumn_ = column;
  keys_.clear();
  for (const ListRow& row : rows_)
    keys_.push_back(KeyOf(module_, row, column));
}

int ParameterListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ParameterListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kListColumns;
}

QVariant ParameterListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const ListRow& row = At(index.row());
  const ListColumn column = ColumnOf(index);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return CellText(Record(index.row()), row, column);
    case Qt::CheckStateRole:
      if (column != ListColumn::Mark) return {};
      return row.checked ? Qt::Checked : Qt::Unchecked;
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Aligned(IsNumber(Record(index.row()), column)));
    case Qt::ToolTipRole: {
      // Not as markup, whatever it holds.
      const QString help = QString(Record(index.row()).Hilfetext).replace(u'\\', u'\n');
      if (help.isEmpty()) return {};
      return QString(u"<span>"_s + help.toHtmlEscaped().replace(u'\n', u"<br>"_s) + u"</span>"_s);
    }
    case Qt::AccessibleTextRole:
      if (column == ListColumn::Mark) return row.checked ? u"angekreuzt"_s : u"nicht angekreuzt"_s;
      return CellText(Record(index.row()), row, column);
    case Qt::AccessibleDescriptionRole:
      return u"%1, %2"_s.arg(ColumnTitle(column), Record(index.row()).Name);
    case MarkRole:
      return row.checked;
    case HiddenRole:
      return row.hidden;
    case EmphasisRole:
      return EmphasisOf(row, column);
    default:
      return {};
  }
}

QVariant ParameterListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= kListColumns) return {};
  const auto column = static_cast<ListColumn>(section);
  if (role == Qt::DisplayRole) {
    // Ends where the numbers below it end.
    const QString title = ColumnTitle(column);
    return IsNumeric(column) && column != ListColumn::Number ? title + kEndOfNumbers : title;
  }
  if (role == Qt::AccessibleTextRole) return ColumnTitle(column);
  if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Aligned(IsNumeric(column)));
  return {};
}

bool ParameterListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid()) return false;
  const int parameter = At(index.row()).index;
  if (role == Qt::CheckStateRole && OnMark) {
    OnMark(parameter, value.value<Qt::CheckState>() == Qt::Checked);
    return true;
  }
  if (role == Qt::EditRole && OnEdit) {
    OnEdit(parameter, value.toString());
    return true;
  }
  return false;
}

Qt::ItemFlags ParameterListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  const ListColumn column = ColumnOf(index);
  if (column == ListColumn::Mark) flags |= Qt::ItemIsUserCheckable;
  if (column == ListColumn::Value && CanBeEdited(Record(index.row())) && (!Editable || Editable()))
    flags |= Qt::ItemIsEditable;
  return flags;
}

}  // namespace kalivor::ui
