// The table of a safe run: keys and columns.
#pragma once

#include <QSortFilterProxyModel>
#include <QTableView>

#include "platform/SettingsStore.h"
#include "ui/safe/SafeModel.h"

namespace kalivor::ui {

/// Space turns the marks of the highlighted rows, Ctrl+C copies the table.
class SafeView final : public QTableView {
 public:
  /// `model` must outlive the view.
  explicit SafeView(SafeModel& model, QWidget* parent = nullptr);

  /// Shows the columns of the phase, and the rows in the order of the model.
  void ShowPhase(SafePhase phase);

  /// Marks all rows that can be, or none.
  void ChooseAll(bool chosen);

  std::function<void()> OnCopy;

  /// That of an account whose columns have their first widths.
  [[nodiscard]] int WholeWidth() const;

  void Load(const platform::SettingsStore& settings);
  void Store(platform::SettingsStore& settings);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] std::vector<int> HighlightedRows() const;  // as the model counts them
  void ShowColumns(SafePhase phase);

  SafeModel& model_;
  QSortFilterProxyModel sorted_;
  SafePhase phase_ = SafePhase::Choice;
};

}  // namespace kalivor::ui
