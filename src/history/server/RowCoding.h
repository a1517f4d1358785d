// Rows of a history as a PostgreSQL server takes and sends them: in binary, a whole column as one array.
#pragma once

#include <QByteArray>
#include <QVariant>
#include <vector>

#include "history/Schema.h"

namespace kalivor::history {

/// The ids as an array of a type that is Id or Bytes.
[[nodiscard]] QByteArray IdArray(ColumnType type, const std::vector<QByteArray>& ids);

/// One column of the rows, whose values are as RowFault wants them.
[[nodiscard]] QByteArray ColumnArray(ColumnType type, const std::vector<QVariantList>& rows,
                                     qsizetype column);

/// A value that the server has sent, as the file's driver has it.
[[nodiscard]] QVariant ReceivedValue(ColumnType type, const QByteArray& bytes);

/// "uuid", "bigint" …: what a column is on the server.
[[nodiscard]] QByteArray ServerType(ColumnType type);

}  // namespace kalivor::history
