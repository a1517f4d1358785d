// The bytes of a value file: fixed-length records, no magic number.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "base/FixedText.h"

namespace kalivor {

/// Length of a record in bytes; it tells the two layouts apart.
inline constexpr int kCurrentRecord_bytes = 62;
inline constexpr int kOldRecord_bytes = 52;

/// Characters of a record's text, and of a name in the old layout; what is longer has been cut.
inline constexpr int kFileTextWidth = 20;
inline constexpr int kOldNameWidth = 20;

/// One record. In the first one only Wert (the stored parameter count) and Variable (the version) count.
struct ValueRecord {
  qint32 Wert = 0;
  QString WertText;  ///< kFileTextWidth characters as stored, with their padding
  QString Variable;  ///< without trailing blanks
  FixedText<8> Typ;
};

struct ValueFileContent {
  int recordLength = kCurrentRecord_bytes;
  bool hasHeader = false;            ///< the first record is whole; without it everything else is empty
  qint32 storedCount = 0;            ///< ParCount when the file was written
  QString version;                   ///< controller version, without trailing blanks
  std::vector<ValueRecord> records;  ///< the parameters, in file order
};

/// A larger value file is refused: a full table takes a hundredth of it.
inline constexpr qint64 kLargestValueFile_bytes = 16LL * 1024 * 1024;

/// One record of the current layout, its texts cut or padded with blanks to their fields.
[[nodiscard]] QByteArray ComposeRecord(qint32 number, const QString& text, const QString& name,
                                       const QString& type);

/// Reads the image of a value file. An incomplete record at the end is ignored, as is a count that does not
/// agree. A file is of the old layout when the last character of its version field is no blank, or when its
/// size is a multiple of the old length only. Never fails: what is shorter than a record holds nothing.
[[nodiscard]] ValueFileContent ParseValueFile(const QByteArray& image);

}  // namespace kalivor
