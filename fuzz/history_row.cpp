// Rows of a history from elsewhere: any values for the columns of any table, and the numbers and sets in
// them.
#include "history/RowCheck.h"

#include <QDateTime>
#include <QtEndian>

#include "Targets.h"
#include "base/ParameterTable.h"
#include "history/Entry.h"
#include "history/SetImage.h"
#include "history/Store.h"

namespace kalivor::fuzz {
namespace {

using namespace history;

/// Takes values from the front of the input; at its end there are none left.
class Taking {
 public:
  explicit Taking(QByteArrayView input) : left_(input) {}

  QByteArray Bytes(qsizetype size) {
    const QByteArray taken = left_.first(std::min(size, left_.size())).toByteArray();
    left_ = left_.sliced(taken.size());
    return taken;
  }
  unsigned char Byte() {
    const QByteArray taken = Bytes(1);
    return taken.isEmpty() ? 0 : static_cast<unsigned char>(taken.front());
  }

  // The kind says what it is, whatever the column wants.
  QVariant Value() {
    const unsigned kind = Byte();
    switch (kind % 5) {
      case 0:
        return {};
      case 1: {
        const QByteArray bytes = Bytes(8).leftJustified(8, '\0');
        return qFromLittleEndian<qint64>(bytes.constData());
      }
      case 2:
        return QString::fromUtf8(Bytes(Byte()));
      case 3: {
        const QByteArray bytes = Bytes(2 * (kind / 5));
        return QString(reinterpret_cast<const QChar*>(bytes.constData()), bytes.size() / 2);
      }
      default:
        return Bytes(kind < 64 ? 16 : kind < 128 ? 32 : kind);
    }
  }

 private:
  QByteArrayView left_;
};

void CheckTaken(const Column& column, const QVariant& value) {
  if (value.isNull()) {
    Require(column.MayBeNull(), "nothing where there must be something");
    return;
  }
  if (column.type == ColumnType::Text) {
    const QString text = value.toString();
    Require(StorableText(text) == text, "texts as they are stored");
    if (column.name == u"time")
      Require(QDateTime::fromString(text, Qt::ISODate).isValid(), "times are times");
    if (column.name == u"kind") Require(KindOf(text).has_value(), "kinds are known");
  }
  if (column.name == u"data") Require(Uncompressed(value.toByteArray()).has_value(), "sets can be read");
}

void CheckRow(QByteArrayView input) {
  Taking taking(input);
  const TableDescription& table = Tables()[taking.Byte() % Tables().size()];
  QVariantList row;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    row << taking.Value();
  if (!RowFault(table, row).isEmpty()) return;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    CheckTaken(table.columns[i], row[static_cast<qsizetype>(i)]);
  row.removeLast();
  Require(!RowFault(table, row).isEmpty(), "a value for each column");
}

void CheckNumbers(const QString& text) {
  const std::vector<int> numbers = HeldNumbers(text);
  int last = 0;
  for (const int number : numbers) {
    Require(number > last && number <= kLastParameter, "numbers of parameters, each once");
    last = number;
  }
  Require(HeldNumbers(HeldText(numbers)) == numbers, "numbers read back the same");
}

void CheckSet(const QByteArray& bytes) {
  const std::optional<QByteArray> plain = Uncompressed(bytes);
  Require(!plain || plain->size() <= kLargestImage_bytes, "no more memory than an image takes");
  const auto none = [](const QByteArray&) { return std::optional<QByteArray>(); };
  const auto self = [&](const QByteArray&) { return std::optional(bytes); };
  Require(!UnpackSet({SetId("another"), {}, bytes}, none), "what is not what it is called is none");
  Require(!UnpackSet({SetId("another"), SetId(bytes), bytes}, self), "what is not what it is called is none");
  if (plain) Require(UnpackSet({SetId(*plain), {}, bytes}, none) == plain, "what is what it is called");
  if (bytes.isEmpty()) return;
  Require(UnpackSet(PackSet(bytes), none) == bytes, "an image comes back");
  QByteArray changed = bytes;
  changed.back() = static_cast<char>(~changed.back());
  Require(UnpackSet(PackSet(changed, bytes, bytes.size()), self) == changed, "a difference comes back");
}

}  // namespace

void HistoryRow(QByteArrayView input) {
  CheckRow(input);
  CheckNumbers(QString::fromUtf8(input));
  if (InSample(input, 4)) CheckSet(input.toByteArray());
}

}  // namespace kalivor::fuzz
