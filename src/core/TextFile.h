// The items of a text file: one line is one item, unless commas or quotes cut it.
#pragma once

#include <QString>
#include <vector>

#include "core/Core.h"

namespace kalivor {

/// An item and where it stands.
struct TextItem {
  QStringView text;
  int line = 0;  ///< line of the file, counted from 1
};

/// The items of one file, and the text that they are parts of: a list of a hundred thousand lines would
/// otherwise be as many small allocations.
struct TextItems {
  QString text;
  std::vector<TextItem> items;

  [[nodiscard]] auto begin() const { return items.begin(); }
  [[nodiscard]] auto end() const { return items.end(); }
};

/// How many of the `bytes` of a definition text count. The byte 1A ends the text: editors of the time in
/// which the first files were written closed them with it.
[[nodiscard]] qsizetype TextLength(QByteArrayView bytes);

/// Reads a definition text. The first line is a heading and dropped; blank lines are skipped. Leading blanks
/// of an item are dropped, a comma ends it and the rest of the line is the next one; an item that begins with
/// a double quote runs to the closing quote. Lines end with LF or CR LF, the text at TextLength(). The bytes
/// are windows-1252, or UTF-8 after a byte order mark.
/// Throws RuntimeError (FileError) when the file cannot be read, has no heading, or is no text; its
/// description does not name the path.
[[nodiscard]] TextItems ReadItems(platform::FileSystem& files, const QString& path);

}  // namespace kalivor
