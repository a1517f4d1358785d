// Which rows of the parameter list are shown, and in which order.
#pragma once

#include <QSortFilterProxyModel>

#include "ui/list/ParameterListModel.h"

namespace kalivor::ui {

class ParameterListProxy final : public QSortFilterProxyModel {
 public:
  /// `model` must outlive the proxy.
  explicit ParameterListProxy(ParameterListModel& model);

  void SetFilter(const ListFilter& filter);
  [[nodiscard]] const ListFilter& Filter() const { return filter_; }

  /// The row of the model, and the parameter, that a shown row stands for.
  [[nodiscard]] const ListRow& ShownRow(int row) const { return model_.At(SourceRow(row)); }
  [[nodiscard]] int SourceRow(int row) const { return mapToSource(index(row, 0)).row(); }

  /// All that are shown, in their order.
  [[nodiscard]] std::vector<ListRow> ShownRows() const;

  void sort(int column, Qt::SortOrder order) override;

 protected:
  [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
  [[nodiscard]] bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

 private:
  ParameterListModel& model_;
  ListFilter filter_;
  QStringList words_;
};

}  // namespace kalivor::ui
