// The rows of the parameter list as the toolkit's views read them.
#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <vector>

#include "core/ParameterList.h"
#include "ui/list/CellStyle.h"

namespace kalivor::ui {

/// A row for each parameter, in their order; a column for each ListColumn. It changes nothing by itself.
class ParameterListModel final : public QAbstractTableModel {
 public:
  /// For views and their delegates.
  enum Role {
    MarkRole = Qt::UserRole,  ///< bool: the row's parameter is checked
    HiddenRole,               ///< bool: the plant type hides it
    EmphasisRole,             ///< Emphasis of the cell
  };

  /// What a cell wants to be noticed for. Its text says the same.
  enum Emphasis { None, Different, Outside };

  /// `module` must outlive the model.
  explicit ParameterListModel(const Module1& module) : module_(module) {}

  /// Takes over these rows and tells what changed; begins anew where the definitions are other ones.
  void SetRows(std::vector<ListRow> rows);

  /// True where the definitions are not those that the rows were made of.
  [[nodiscard]] bool DefinitionsChanged() const;

  [[nodiscard]] const std::vector<ListRow>& Rows() const { return rows_; }
  [[nodiscard]] const ListRow& At(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  /// The parameter as the row was made of it: the table may hold another version's by now. Its value is that
  /// of the row.
  [[nodiscard]] const ParameterRecord& Record(int row) const {
    return definitions_[static_cast<std::size_t>(row)];
  }
  [[nodiscard]] const QString& SearchedTextOf(int row) const {
    return searched_[static_cast<std::size_t>(row)];
  }

  /// By which column the rows are to be compared, and what each is compared by.
  void SetKeyColumn(ListColumn column);
  [[nodiscard]] const ListKey& KeyOfRow(int row) const { return keys_[static_cast<std::size_t>(row)]; }

  /// What the user wants: a mark of one parameter, and a value as typed.
  std::function<void(int index, bool checked)> OnMark;
  std::function<void(int index, const QString& text)> OnEdit;

  /// False while nothing may be edited.
  std::function<bool()> Editable;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  void Begin(std::vector<ListRow> rows);

  const Module1& module_;
  std::vector<ListRow> rows_;
  std::vector<ParameterRecord> definitions_;  // as they were when the rows were begun
  std::vector<QString> searched_;
  std::vector<ListKey> keys_;
  ListColumn keyColumn_ = ListColumn::Number;
};

}  // namespace kalivor::ui
