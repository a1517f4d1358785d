// How the added tables look, and how they draw their cells.
#pragma once

#include <QAbstractButton>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>
#include <QTableView>
#include <initializer_list>

namespace kalivor::ui {

/// Air between a number and a text that begins where it ends.
inline constexpr QChar kEndOfNumbers(0x2002);

/// Above and below the text of a row, together.
inline constexpr int kRowAir_px = 7;

/// Red that is read on the background.
[[nodiscard]] QColor WarningColour(const QPalette& palette);

/// Air behind a number, and an empty check box that can be seen on a dark background as well.
void StyleCell(QStyleOptionViewItem& option);

/// Draws cells so.
class CellDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    StyleCell(*option);
  }
};

/// What the added tables have in common: whole rows are selected, nothing is edited, the user moves the
/// columns, Tab leaves the table, cells look like CellDelegate's. Each row is a line of text high, whatever
/// the font becomes, plus `air_px`.
void PrepareTable(QTableView& table, int air_px = kRowAir_px);

/// Gives the columns, from the first one on, room for so many digits.
void SetColumnWidths(QTableView& table, std::initializer_list<int> digits);

/// In which all its columns are seen, with a scroll bar beside them; in device-independent pixels.
[[nodiscard]] int WholeWidth(const QTableView& table);

/// The same as StyleCell() for a check box or radio button outside of tables; to be called whenever its
/// window is shown.
void StyleBox(QAbstractButton& box);

/// Makes the words of the empty text boxes of a window readable: some colour schemes leave them as dark as
/// their background. To be called whenever the window is shown.
void StylePlaceholders(QWidget& window);

}  // namespace kalivor::ui
