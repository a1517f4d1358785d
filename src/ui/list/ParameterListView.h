// The table of the parameter list: keys, columns, editing in place.
#pragma once

#include <QMenu>
#include <QTableView>
#include <functional>

#include "ui/list/ParameterListProxy.h"

namespace kalivor::ui {

/// Keys: arrows as in a spreadsheet; typing, F2 and a double click edit the value, Enter stores it and goes
/// down, Esc drops it; Space turns the marks of the highlighted rows; Ctrl+C copies them; Ctrl+Enter and a
/// double click on the name open the parameter's editor; Ctrl+Shift with Left and Right moves the column.
class ParameterListView final : public QTableView {
 public:
  /// `proxy` must outlive the view.
  explicit ParameterListView(ParameterListProxy& proxy, QWidget* parent = nullptr);

  std::function<void(const std::vector<int>& indexes, bool checked)> OnMark;
  std::function<void(int index)> OnOpen;
  std::function<void()> OnCopy;

  /// The rows that are highlighted, in the order shown.
  [[nodiscard]] std::vector<ListRow> HighlightedRows() const;

  /// The columns that are shown, from the left.
  [[nodiscard]] std::vector<ListColumn> ShownColumns() const;

  /// The row of the current cell; -1: there is none.
  [[nodiscard]] int CurrentRow() const { return currentIndex().row(); }

  /// Makes a row the current and only highlighted one, in view; the column stays.
  void GoToRow(int row);

  /// Begins to edit the value of the current row, if it can be.
  void EditValue();

  /// Drops what is being typed.
  void CloseEditor();

  /// Which columns are shown, and where they stand.
  [[nodiscard]] QMenu& ColumnMenu() { return columnMenu_; }

  /// Order, widths and sorting of the first time.
  void SetDefaultColumns();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyboardSearch(const QString& /*search*/) override {}

 private:
  void BuildColumnMenu();
  void ShowInColumnMenu();
  void MoveColumn(int by);
  void ToggleMarks();
  void OpenCurrent();
  void Leave(QWidget* editor, int rows, int columns);
  [[nodiscard]] bool BeginsTyping(const QKeyEvent& event) const;
  [[nodiscard]] QModelIndex ValueOfCurrentRow() const;

  ParameterListProxy& proxy_;
  QMenu columnMenu_{this};
  QMenu rowMenu_{this};
};

}  // namespace kalivor::ui
