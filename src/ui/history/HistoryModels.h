// The history as rows: its entries, and the tables beside them.
#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <optional>
#include <vector>

#include "core/ListTable.h"
#include "history/Filter.h"

namespace kalivor::ui {

/// The entries that a filter shows, the newest first. Texts are made when a row is looked at.
class EntriesModel final : public QAbstractTableModel {
 public:
  enum Column { Time, Plant, Kind, Technician, Version, Outcome, Changes, Remarks, Columns };

  using QAbstractTableModel::QAbstractTableModel;

  void SetContent(std::vector<history::Entry> entries, std::vector<history::Plant> plants,
                  const std::vector<history::Remark>& remarks);
  void SetFilter(history::EntryFilter filter);

  [[nodiscard]] const std::vector<history::Entry>& All() const { return entries_; }
  [[nodiscard]] const std::vector<history::Plant>& Plants() const { return plants_; }
  /// Those of one entry, by time.
  [[nodiscard]] std::vector<history::Remark> RemarksOf(const QUuid& entry) const {
    return remarks_.value(entry);
  }

  [[nodiscard]] const history::Entry& At(int row) const {
    return entries_[static_cast<std::size_t>(shown_[static_cast<std::size_t>(row)])];
  }
  /// -1 where the entry is not shown.
  [[nodiscard]] int RowOf(const QUuid& entry) const;
  /// The shown ones as they leave the program.
  [[nodiscard]] ListTable Table() const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  [[nodiscard]] QString Text(const history::Entry& entry, int column) const;
  [[nodiscard]] QString Said(const history::Entry& entry) const;
  void Refilter();

  std::vector<history::Entry> entries_;
  std::vector<history::Plant> plants_;
  QHash<QUuid, QString> plantNames_;
  QHash<QUuid, std::vector<history::Remark>> remarks_;
  std::vector<QString> searched_;  // made with the first search
  history::EntryFilter filter_;
  std::vector<int> shown_;  // positions in entries_
};

/// Shows a table as it would leave the program. Qt::UserRole is what it is sorted by.
class ListTableModel final : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// Tables of one model have as many columns always.
  void Show(ListTable table);
  [[nodiscard]] const ListTable& Table() const { return table_; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  ListTable table_;
  std::vector<bool> isNumber_;  // of the columns
};

}  // namespace kalivor::ui
