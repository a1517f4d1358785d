// The tables of a history, the same in the user's file and on a department's server.
#pragma once

#include <QString>
#include <QStringList>
#include <span>

namespace kalivor::history {

/// What a column holds. In the file: Id and Bytes are BLOB, Number is INTEGER, Text is TEXT; on a server
/// uuid, bytea, bigint and text.
enum class ColumnType { Id, Number, Text, Bytes };

struct Column {
  QStringView name;
  ColumnType type = ColumnType::Text;
  QStringView constraint = u"NOT NULL";  ///< in words of SQL that both understand

  [[nodiscard]] bool MayBeNull() const { return !constraint.startsWith(u"NOT NULL"); }
};

/// Rows are only ever added. The first column is the key, unless `key` names several.
struct TableDescription {
  QStringView name;
  std::span<const Column> columns;
  QStringView key = {};
};

/// The tables in the order in which their rows refer to each other: what a row refers to is in a table above
/// it (in value_set, above it in the same table).
[[nodiscard]] std::span<const TableDescription> Tables();

/// By its name; one that does not exist is a fault of the program.
[[nodiscard]] const TableDescription& TableNamed(QStringView name);

/// The version of these tables. A change of them is another version, and a step from the one before.
inline constexpr int kSchemaVersion = 1;

/// "id, plant, origin, …"
[[nodiscard]] QString ColumnNames(const TableDescription& table);

enum class Dialect { SQLite, PostgreSQL };

/// The statements that make the tables of version kSchemaVersion, but for the one that holds the version
/// itself (schema_version) and what a store knows of itself.
[[nodiscard]] QStringList CreateTables(Dialect dialect);

}  // namespace kalivor::history
