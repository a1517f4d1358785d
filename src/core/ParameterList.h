// The parameter list: its rows, columns, filters and order, free of widgets.
#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <optional>
#include <span>
#include <tuple>
#include <vector>

#include "base/Module1.h"
#include "core/ListTable.h"
#include "core/ValueSets.h"

namespace kalivor {

/// In the order in which they stand at first.
enum class ListColumn {
  Mark,
  Number,
  Group,
  Name,
  Value,
  Comparison,
  Difference,  ///< comparison value less value, of numbers that differ, with its sign
  State,
  Unit,
  Minimum,
  Maximum,
  Standard,
  Variable,
  Address,
  Type,
};
inline constexpr int kListColumns = static_cast<int>(ListColumn::Type) + 1;

/// Its heading: "Nr", "Gruppe", "Name", "Wert" …
[[nodiscard]] QString ColumnTitle(ListColumn column);

/// True for the columns whose numbers are aligned at their right end.
[[nodiscard]] bool IsNumeric(ListColumn column);

/// One parameter as the list knows it.
struct ListRow {
  int index = 0;  ///< in Par
  bool checked = false;
  bool hidden = false;       ///< the selected plant type does not show it
  bool nonStandard = false;  ///< its value is not the standard one
  bool changed = false;      ///< since it was loaded or received
  bool outside = false;      ///< its value is outside its limits
  ParameterValue value;
  Difference difference = Difference::NotCompared;  ///< right: the comparison
  /// Nothing where there is none, or it was not read, or is a text where the value is a number.
  std::optional<ParameterValue> comparison;
  bool comparisonOutside = false;

  bool operator==(const ListRow&) const = default;
};

[[nodiscard]] inline bool Differs(const ListRow& row) {
  return Differs(row.difference);
}

/// The rows of parameters 1..ParCount - 1 in their order. `comparison` null: nothing is compared. `changed`
/// may be empty: no row is.
[[nodiscard]] std::vector<ListRow> ListRows(const Module1& module, const ValueSet* comparison,
                                            const std::function<bool(int index)>& changed = {});

/// What stands in a cell; "" for Mark. State joins what there is to say by ", ": the difference, "außerhalb",
/// "nicht Standard", "geändert", "ausgeblendet".
[[nodiscard]] QString CellText(const Module1& module, const ListRow& row, ListColumn column);

/// The same; `record` is the row's parameter.
[[nodiscard]] QString CellText(const ParameterRecord& record, const ListRow& row, ListColumn column);

/// What a row is ordered by in a column. Sorting makes them once and compares them often.
struct ListKey {
  bool isText = false;  ///< numbers come first
  double number = 0;    ///< in display units
  QString text;         ///< its letters without case and marks, its numbers of equal length
  int index = 0;        ///< in Par; orders what is equal otherwise

  friend bool operator<(const ListKey& left, const ListKey& right) {
    return std::tie(left.isText, left.number, left.text, left.index) <
           std::tie(right.isText, right.number, right.text, right.index);
  }
};

/// Numbers as numbers in display units, before texts; texts by the German alphabet, digits in them as
/// numbers; equal ones by their index.
[[nodiscard]] ListKey KeyOf(const Module1& module, const ListRow& row, ListColumn column);

/// KeyOf of the left row is less.
[[nodiscard]] bool ListBefore(const Module1& module, const ListRow& left, const ListRow& right,
                              ListColumn column);

/// `text` as searching sees it: case and umlaut spelling do not matter ("Wärme" is "waerme").
[[nodiscard]] QString Folded(const QString& text);

/// Everything of a parameter that a search looks at, folded: name, group, variable, help text, address.
[[nodiscard]] QString SearchedText(const ParameterRecord& record);

/// What the list shows: all that are set must hold.
struct ListFilter {
  QString search;  ///< words, all of which must occur
  bool checked = false;
  bool different = false;  ///< Differs(row)
  bool nonStandard = false;
  bool changed = false;
  bool outside = false;

  bool operator==(const ListFilter&) const = default;
};

/// `words` are the folded words of the search.
[[nodiscard]] bool Shows(const ListFilter& filter, const QStringList& words, const ListRow& row,
                         const QString& searchedText);

/// The folded words of a search.
[[nodiscard]] QStringList SearchWords(const QString& search);

/// How many rows each button of the filters would show, and the line about them.
struct ListCounts {
  int all = 0;
  int checked = 0;
  int different = 0;
  int nonStandard = 0;
  int changed = 0;
  int outside = 0;
};
[[nodiscard]] ListCounts CountRows(std::span<const ListRow> rows);

/// "37 von 2000 · 5 verschieden · 2 außerhalb": the shown rows, and the findings among them; what is 0 is
/// left out.
[[nodiscard]] QString CountLine(int all, const ListCounts& shown);

/// The lines above a list that leaves the program: controller version, plant type, file, date. What is empty
/// has no line.
[[nodiscard]] QStringList ListHeading(const Module1& module, const QDate& date);

/// The rows as they leave the program; a mark is an "x".
[[nodiscard]] ListTable TableOf(const Module1& module, std::span<const ListRow> rows,
                                std::span<const ListColumn> columns, const QStringList& heading);

}  // namespace kalivor
