#include "history/RowCheck.h"

#include <QDateTime>
#include <algorithm>
#include <limits>

#include "base/ParameterTable.h"
#include "history/Entry.h"
#include "history/SetImage.h"
#include "history/Store.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr qsizetype kId_bytes = 16;
constexpr qsizetype kSetId_bytes = 32;
constexpr qint64 kLastMoment_ms = 253402300799999;  // of the year 9999

struct Range {
  QStringView column;
  qint64 smallest;
  qint64 largest;
};
// "address" is a text where it is not that of a station.
constexpr Range kRanges[] = {{u"moment", 0, kLastMoment_ms},
                             {u"address", std::numeric_limits<int>::min(), std::numeric_limits<int>::max()},
                             {u"changes", 0, kLastParameter},
                             {u"position", 0, kLastParameter},
                             {u"number", 0, kLastParameter}};

bool IsStorable(const QString& text) {
  return text.size() <= kLongestText && !text.contains(QChar::Null) && QStringView(text).isValidUtf16();
}

QString NumberFault(const Column& column, qint64 number) {
  const auto* range = std::ranges::find(kRanges, column.name, &Range::column);
  const bool fits = range == std::end(kRanges) || (number >= range->smallest && number <= range->largest);
  return fits ? QString() : u"ist außerhalb des Bereichs"_s;
}

QString TextFault(const Column& column, const QString& text) {
  if (!IsStorable(text)) return u"ist kein gültiger Text oder zu lang"_s;
  if (column.name == u"time" && !QDateTime::fromString(text, Qt::ISODate).isValid())
    return u"ist keine Zeit"_s;
  if (column.name == u"kind" && !KindOf(text)) return u"ist keine bekannte Art"_s;
  if (column.name == u"held" && HeldText(HeldNumbers(text)) != text) return u"ist keine Liste von Nummern"_s;
  return {};
}

QString BytesFault(const Column& column, const QByteArray& bytes) {
  if (column.name == u"data")
    return Uncompressed(bytes) ? QString() : u"ist nicht der Wertesatz einer Wertedatei"_s;
  return bytes.size() == (column.type == ColumnType::Id ? kId_bytes : kSetId_bytes)
             ? QString()
             : u"hat eine falsche Länge"_s;
}

QString ValueFault(const Column& column, const QVariant& value) {
  if (value.isNull()) return column.MayBeNull() ? QString() : u"fehlt"_s;
  const QString otherType = u"ist von einem anderen Typ"_s;
  switch (column.type) {
    case ColumnType::Number:
      return value.typeId() == QMetaType::LongLong ? NumberFault(column, value.toLongLong()) : otherType;
    case ColumnType::Text:
      return value.typeId() == QMetaType::QString ? TextFault(column, value.toString()) : otherType;
    case ColumnType::Id:
    case ColumnType::Bytes:
      return value.typeId() == QMetaType::QByteArray ? BytesFault(column, value.toByteArray()) : otherType;
  }
  return otherType;
}

}  // namespace

QString StorableText(const QString& text) {
  QString stored = text.isNull() ? u""_s : text.left(kLongestText);
  if (IsStorable(stored)) return stored;
  for (qsizetype i = 0; i < stored.size(); ++i) {
    const QChar c = stored[i];
    const bool pair = c.isHighSurrogate() && i + 1 < stored.size() && stored[i + 1].isLowSurrogate();
    if (pair) {
      ++i;
    } else if (c.isNull() || c.isSurrogate()) {
      stored[i] = QChar::ReplacementCharacter;
    }
  }
  return stored;
}

QString RowFault(const TableDescription& table, const QVariantList& row) {
  if (row.size() != static_cast<qsizetype>(table.columns.size()))
    return u"%1 hat andere Spalten"_s.arg(table.name);
  for (qsizetype i = 0; i < row.size(); ++i) {
    const Column& column = table.columns[static_cast<std::size_t>(i)];
    const QString fault = ValueFault(column, row[i]);
    if (!fault.isEmpty()) return u"%1.%2 %3"_s.arg(table.name, column.name, fault);
  }
  return {};
}

}  // namespace kalivor::history
