#include "ui/list/ParameterListProxy.h"

namespace kalivor::ui {

ParameterListProxy::ParameterListProxy(ParameterListModel& model) : model_(model) {
  setSourceModel(&model);
}

void ParameterListProxy::SetFilter(const ListFilter& filter) {
  filter_ = filter;
  words_ = SearchWords(filter.search);
  // Not row by row: the view would lay itself out anew for each run of them.
  invalidate();
}

std::vector<ListRow> ParameterListProxy::ShownRows() const {
  std::vector<ListRow> rows;
  rows.reserve(static_cast<std::size_t>(rowCount()));
  for (int row = 0; row < rowCount(); ++row)
    rows.push_back(ShownRow(row));
  return rows;
}

bool ParameterListProxy::filterAcceptsRow(int row, const QModelIndex& /*parent*/) const {
  return Shows(filter_, words_, model_.At(row), model_.SearchedTextOf(row));
}

// The view sorts by one column at a time.
void ParameterListProxy::sort(int column, Qt::SortOrder order) {
  if (column >= 0) model_.SetKeyColumn(static_cast<ListColumn>(column));
  QSortFilterProxyModel::sort(column, order);
}

bool ParameterListProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
  return model_.KeyOfRow(left.row()) < model_.KeyOfRow(right.row());
}

}  // namespace kalivor::ui
