// How the added tables draw their cells.
#pragma once

#include <QAbstractButton>
#include <QStyleOptionViewItem>

namespace kalivor::ui {

/// Air between a number and a text that begins where it ends.
inline constexpr QChar kEndOfNumbers(0x2002);

/// Above and below the text of a row, together.
inline constexpr int kRowAir_px = 7;

/// Red that is read on the background.
[[nodiscard]] QColor WarningColour(const QPalette& palette);

/// Air behind a number, and an empty check box that can be seen on a dark background as well.
void StyleCell(QStyleOptionViewItem& option);

/// The same for a check box or radio button outside of tables; to be called whenever its window is shown.
void StyleBox(QAbstractButton& box);

}  // namespace kalivor::ui
