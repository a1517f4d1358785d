// What the commands print, as text and as JSON.
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <utility>
#include <vector>

#include "commands/TransferCommands.h"
#include "core/ParameterList.h"
#include "core/ValueFileFormat.h"
#include "platform/PortDirectory.h"

namespace kalivor::cli {

/// One line of a table: its columns with their names. Numbers are numbers.
using Row = std::vector<std::pair<QString, QJsonValue>>;
using Table = std::vector<Row>;

[[nodiscard]] Table VersionTableOf(const Module1& module);
[[nodiscard]] Table PlantTableOf(const SelectionList& plants);

/// The parameters; element 0 comes first when a plant-type record was read.
[[nodiscard]] Table ParameterTableOf(const Module1& module);
[[nodiscard]] Row ParameterRow(const Module1& module, int index);

/// Layout, stored count and version, and the records, numbered from 2.
[[nodiscard]] Row ValueFileHead(const ValueFileContent& content);
[[nodiscard]] Table RecordTableOf(const ValueFileContent& content);

/// The rows of the list as `table` has them; "Nr" is a number, the rest is text as it is shown.
[[nodiscard]] Table ListTableOf(const ListTable& table);

/// The parameters whose values are not equal. What the definitions do not know has neither number nor name;
/// a row of no value has nothing but the columns' names.
[[nodiscard]] Table DifferenceTableOf(const Module1& module, const ValueSet& left, const ValueSet& right);
[[nodiscard]] Row DifferenceRow(const Module1& module, const ValueSet& left, const ValueSet& right,
                                const ComparedValue& compared);

/// Columns are separated by TAB, lines end with LF; TAB, CR, LF and backslash inside a text are written as
/// a backslash and t, r, n or a second backslash.
[[nodiscard]] QString NamesLine(const Row& row);
[[nodiscard]] QString ToText(const Row& row);
[[nodiscard]] QString ToText(const Table& table);

[[nodiscard]] QJsonObject ToJson(const Row& row);
[[nodiscard]] QJsonArray ToJson(const Table& table);

/// The ports: number ("-" for none), device, description, serial number, state.
[[nodiscard]] Table PortTableOf(const QList<platform::PortEntry>& ports);

/// All that is known about them; number 0 for none.
[[nodiscard]] QJsonArray PortsJson(const QList<platform::PortEntry>& ports);

/// The nodes of the tree: key and text.
[[nodiscard]] QString TreeText(const platform::TreeView& tree);

/// A comparison; `report` are its lines, separated by CR LF.
[[nodiscard]] QJsonObject CompareJson(const Module1& module, const TransferOutcome& outcome,
                                      const QString& report);

}  // namespace kalivor::cli
