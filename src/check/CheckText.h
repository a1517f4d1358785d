// Reading a definition text for its check: the items, and what disturbs them.
#pragma once

#include <QStringList>

#include "check/CheckFindings.h"
#include "core/TextFile.h"

namespace kalivor {

/// A definition text as the program sees it.
struct CheckedText {
  FileFindings findings;  ///< where what is wrong with it goes
  QString heading;        ///< the first line, which the program drops
  TextItems items;        ///< without those of lines that commas or quotes have torn apart
  bool torn = false;      ///< there were such lines
};

/// Reads the text at `path` and reports what disturbs its lines: commas, quotes, tabs, a wrong encoding, what
/// stands behind the text's end. Throws RuntimeError (FileError) like ReadItems().
[[nodiscard]] CheckedText ReadCheckedText(platform::FileSystem& files, const QString& path,
                                          const FileFindings& findings);

/// The columns of `line`, `most` of them at most. Blanks at its end do not begin a column.
[[nodiscard]] QStringList ColumnsOf(QStringView line, int most);

}  // namespace kalivor
