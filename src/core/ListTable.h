// A table as it leaves the program: for a spreadsheet, a browser or paper.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstddef>
#include <vector>

namespace kalivor {

struct TableCell {
  QString text;         ///< numbers with a point
  bool number = false;  ///< stands at the right end of its column; a comma where that is wanted

  bool operator==(const TableCell&) const = default;
};

struct ListTable {
  QStringList heading;  ///< lines above it: controller version, plant type, file, date
  QStringList titles;
  std::vector<std::vector<TableCell>> rows;  ///< as many cells as titles each
};

/// True when most cells of the column that are not empty are numbers: its title stands at the right end too.
[[nodiscard]] bool IsNumberColumn(const ListTable& table, std::size_t column);

/// Semicolons, quotes where they are needed, a decimal comma, CR LF, UTF-8 with its mark. The heading comes
/// first, a line each, then an empty line. A text that a spreadsheet would take for a formula (=, +, - or @
/// at its beginning) gets an apostrophe in front; numbers stay numbers. Control characters other than tabs
/// and line breaks become blanks.
[[nodiscard]] QByteArray CsvOf(const ListTable& table);

/// A text as a page shows it: as it stands, control characters other than tabs and line breaks as blanks.
[[nodiscard]] QString HtmlText(const QString& text);

/// A page of its own in UTF-8, without anything from elsewhere; what texts hold is shown as it stands,
/// control characters as blanks. Numbers keep their point, as in the windows.
[[nodiscard]] QByteArray HtmlOf(const ListTable& table);

/// For the clipboard: columns separated by TAB, lines by LF, a decimal comma, no heading, the titles first. A
/// row is one line: control characters, tabs and line breaks become blanks. Formulas as in CsvOf; a text that
/// begins with a quote stands in quotes.
[[nodiscard]] QString ClipboardText(const ListTable& table);

}  // namespace kalivor
