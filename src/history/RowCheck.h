// Whether a row that comes from elsewhere (a server, another file) may be added to a history.
#pragma once

#include <QString>
#include <QVariantList>

#include "history/Schema.h"

namespace kalivor::history {

/// A longer text is no text of a history; what the program itself adds is cut to it.
inline constexpr qsizetype kLongestText = 65536;

/// What a text is stored as: no longer than kLongestText, without characters that not every database keeps
/// (a zero character, half a pair of surrogates), which become U+FFFD. Never null.
[[nodiscard]] QString StorableText(const QString& text);

/// "" where the row may be added, else why not, in German ("entry.time ist keine Zeit"). A value for each
/// column, as the file's driver has them: Id and Bytes are QByteArray, Number is qint64, Text is QString,
/// nothing is a null QVariant. What it refers to is not looked up, and a set that differs from another
/// is not put together.
[[nodiscard]] QString RowFault(const TableDescription& table, const QVariantList& row);

}  // namespace kalivor::history
