// A table as it leaves the program: for a spreadsheet, a browser or paper.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

namespace kalivor {

struct TableCell {
  QString text;         ///< numbers with a point
  bool number = false;  ///< stands at the right end of its column; a comma where that is wanted
};

struct ListTable {
  QStringList heading;  ///< lines above it: controller version, plant type, file, date
  QStringList titles;
  std::vector<std::vector<TableCell>> rows;  ///< as many cells as titles each
};

/// Semicolons, quotes where they are needed, a decimal comma, CR LF, UTF-8 with its mark. The heading comes
/// first, a line each, then an empty line.
[[nodiscard]] QByteArray CsvOf(const ListTable& table);

/// A page of its own in UTF-8, without anything from elsewhere; what texts hold is shown as it stands.
[[nodiscard]] QByteArray HtmlOf(const ListTable& table);

/// For the clipboard: columns separated by TAB, lines by LF, a decimal comma, no heading, the titles first.
[[nodiscard]] QString ClipboardText(const ListTable& table);

}  // namespace kalivor
