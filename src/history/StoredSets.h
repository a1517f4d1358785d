// The sets of values in a file: each image once.
#pragma once

#include <QByteArray>
#include <optional>
#include <vector>

#include "history/Sql.h"

namespace kalivor::history {

/// The image of a stored set; nothing where it is not there or damaged. `error` tells one that cannot be
/// read.
[[nodiscard]] std::optional<QByteArray> StoredImage(const QSqlDatabase& database, const QByteArray& id,
                                                    QSqlError& error);

/// Adds an image, unless it is there, as a whole or by what it differs from a whole one that is likely to be
/// like it: that of one of the sets `alike`, or of the last one of this controller version. Returns its id.
QByteArray AddSet(Transaction& adding, const QByteArray& image, const std::vector<QByteArray>& alike,
                  const QString& version);

}  // namespace kalivor::history
