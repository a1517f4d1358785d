// A second reading of texts and numbers, written down as plainly as the rules are, to compare with.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace kalivor::fuzz {

/// The items of a definition text; nothing when it cannot be read.
[[nodiscard]] std::optional<QStringList> PlainItems(QByteArrayView bytes);

/// The columns of a line.
class PlainColumns {
 public:
  explicit PlainColumns(const QString& line);

  /// Column `n` (from 0), "" beyond the last.
  [[nodiscard]] QString At(int n) const;

  /// Column `n` and everything behind it.
  [[nodiscard]] QString From(int n) const;

 private:
  QString line_;
  QStringList columns_;
  std::vector<qsizetype> starts_;
};

/// The number at the beginning of a text; nothing when it is too large.
[[nodiscard]] std::optional<double> PlainNumberOf(const QString& text);

/// The same, rounded half to even, if it lies within the limits.
[[nodiscard]] std::optional<qint64> PlainInteger(const QString& text, qint64 lowest, qint64 highest);

}  // namespace kalivor::fuzz
