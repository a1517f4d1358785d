#include "core/ValueFileFormat.h"

#include <QtEndian>

#include "base/Windows1252.h"

namespace kalivor {
namespace {

// Offsets and widths of a record's fields.
constexpr int kTextAt = 4;
constexpr int kNameAt = kTextAt + kFileTextWidth;
constexpr int kTypeWidth = 8;

constexpr int NameWidth(int recordLength) {
  return recordLength - kNameAt - kTypeWidth;
}

ValueRecord ParseRecord(QByteArrayView bytes) {
  const int length = static_cast<int>(bytes.size());
  ValueRecord record;
  record.Wert = qFromLittleEndian<qint32>(bytes.data());
  record.WertText = TextFromBytes(bytes.sliced(kTextAt, kFileTextWidth));
  record.Variable = WithoutTrailingBlanks(TextFromBytes(bytes.sliced(kNameAt, NameWidth(length))));
  record.Typ = TextFromBytes(bytes.last(kTypeWidth));
  return record;
}

int RecordLength(const QByteArray& image) {
  // A current file pads its version with blanks to the end of the field.
  constexpr qsizetype kLastOfVersion = kNameAt + NameWidth(kCurrentRecord_bytes) - 1;
  if (image.size() > kLastOfVersion && image.at(kLastOfVersion) != ' ') return kOldRecord_bytes;
  // In an old file that byte belongs to the second record's value and may look like a blank.
  const bool fitsOldOnly =
      image.size() % kCurrentRecord_bytes != 0 && image.size() % kOldRecord_bytes == 0 && !image.isEmpty();
  return fitsOldOnly ? kOldRecord_bytes : kCurrentRecord_bytes;
}

}  // namespace

QByteArray ComposeRecord(qint32 number, const QString& text, const QString& name, const QString& type) {
  QByteArray record(4, '\0');
  qToLittleEndian(number, record.data());
  record += BytesFromText(text.leftJustified(kFileTextWidth, u' ', true));
  record += BytesFromText(name.leftJustified(NameWidth(kCurrentRecord_bytes), u' ', true));
  record += BytesFromText(type.leftJustified(kTypeWidth, u' ', true));
  return record;
}

ValueFileContent ParseValueFile(const QByteArray& image) {
  ValueFileContent content;
  content.recordLength = RecordLength(image);
  const qsizetype count = image.size() / content.recordLength;
  for (qsizetype i = 0; i < count; ++i) {
    ValueRecord record =
        ParseRecord(QByteArrayView(image).sliced(i * content.recordLength, content.recordLength));
    if (i == 0) {
      content.hasHeader = true;
      content.storedCount = record.Wert;
      content.version = record.Variable;
    } else {
      content.records.push_back(std::move(record));
    }
  }
  return content;
}

}  // namespace kalivor
