#include "history/server/RowCoding.h"

#include <QtEndian>

namespace kalivor::history {
namespace {

// By which number the protocol calls a type.
quint32 TypeNumber(ColumnType type) {
  switch (type) {
    case ColumnType::Id:
      return 2950;
    case ColumnType::Number:
      return 20;
    case ColumnType::Text:
      return 25;
    case ColumnType::Bytes:
      return 17;
  }
  return 0;
}

template <typename Number>
void Append(QByteArray& bytes, Number number) {
  const Number big = qToBigEndian(number);
  bytes.append(reinterpret_cast<const char*>(&big), sizeof big);
}

// Dimensions, whether there are nulls, type of the elements; of the one dimension size and first index.
QByteArray ArrayHead(ColumnType type, std::size_t count) {
  QByteArray head;
  Append<quint32>(head, 1);
  Append<quint32>(head, 1);
  Append<quint32>(head, TypeNumber(type));
  Append<quint32>(head, static_cast<quint32>(count));
  Append<quint32>(head, 1);
  return head;
}

void AppendElement(QByteArray& array, const QByteArray& bytes) {
  Append<qint32>(array, static_cast<qint32>(bytes.size()));
  array.append(bytes);
}

QByteArray BytesOf(ColumnType type, const QVariant& value) {
  if (type == ColumnType::Text) return value.toString().toUtf8();
  if (type != ColumnType::Number) return value.toByteArray();
  QByteArray number;
  Append<qint64>(number, value.toLongLong());
  return number;
}

}  // namespace

QByteArray IdArray(ColumnType type, const std::vector<QByteArray>& ids) {
  QByteArray array = ArrayHead(type, ids.size());
  for (const QByteArray& id : ids)
    AppendElement(array, id);
  return array;
}

QByteArray ColumnArray(ColumnType type, const std::vector<QVariantList>& rows, qsizetype column) {
  QByteArray array = ArrayHead(type, rows.size());
  for (const QVariantList& row : rows) {
    if (row[column].isNull()) {
      Append<qint32>(array, -1);
    } else {
      AppendElement(array, BytesOf(type, row[column]));
    }
  }
  return array;
}

QVariant ReceivedValue(ColumnType type, const QByteArray& bytes) {
  switch (type) {
    case ColumnType::Text:
      return QString::fromUtf8(bytes);
    case ColumnType::Number:
      return bytes.size() == sizeof(qint64) ? qFromBigEndian<qint64>(bytes.constData()) : QVariant();
    case ColumnType::Id:
    case ColumnType::Bytes:
      break;
  }
  return bytes;
}

QByteArray ServerType(ColumnType type) {
  switch (type) {
    case ColumnType::Id:
      return "uuid";
    case ColumnType::Number:
      return "bigint";
    case ColumnType::Text:
      return "text";
    case ColumnType::Bytes:
      break;
  }
  return "bytea";
}

}  // namespace kalivor::history
