// The values of a safe run as the toolkit's views read them.
#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <vector>

#include "base/ParameterTable.h"
#include "commands/SafeTable.h"

namespace kalivor::ui {

/// A row for each of SafeRows, a column for each SafeColumn. Qt::UserRole is what they are sorted by.
class SafeModel final : public QAbstractTableModel {
 public:
  /// bool: the cell says that something is the matter.
  static constexpr int kTroubleRole = Qt::UserRole + 1;

  /// Both must outlive the model.
  SafeModel(const ParameterTable& definitions, SafeRun& run) : definitions_(definitions), run_(run) {}

  /// The run is another one, or has gone on.
  void Show(SafePhase phase);

  /// Chooses the values of these rows, or not, as far as they can be chosen.
  void Choose(const std::vector<int>& rows, bool chosen);

  [[nodiscard]] const SafeValue& At(int row) const {
    return run_.values[rows_[static_cast<std::size_t>(row)]];
  }

  [[nodiscard]] SafeKind Kind() const { return run_.kind; }
  [[nodiscard]] bool IsChoosable(int row) const { return CanBeChosen(run_, At(row)); }

  /// Runs when the user has chosen otherwise.
  std::function<void()> OnChoice;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  [[nodiscard]] bool IsNumber(int row, SafeColumn column) const;
  [[nodiscard]] QString AccessibleText(int row, SafeColumn column) const;
  [[nodiscard]] QVariant SortKey(int row, SafeColumn column) const;

  const ParameterTable& definitions_;
  SafeRun& run_;
  SafePhase phase_ = SafePhase::Choice;
  std::vector<std::size_t> rows_;  // positions in the run
};

}  // namespace kalivor::ui
