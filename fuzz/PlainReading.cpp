#include "PlainReading.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

#include "base/Windows1252.h"

namespace kalivor::fuzz {
namespace {

constexpr qsizetype kLongestLine = 100'000;

bool IsBlank(const QString& text) {
  return text.count(u' ') == text.size();
}

// The rest of the line that the first item leaves, if it goes on.
std::optional<QString> TakeItem(QString line, QStringList& items) {
  while (line.startsWith(u' '))
    line.remove(0, 1);
  qsizetype end = 0;  // where a comma is looked for
  if (line.startsWith(u'"')) {
    const qsizetype closing = line.indexOf(u'"', 1);
    items.append(closing < 0 ? line.mid(1) : line.mid(1, closing - 1));
    if (closing < 0) return {};
    end = closing;
  }
  const qsizetype comma = line.indexOf(u',', end);
  if (end == 0) items.append(comma < 0 ? line : line.left(comma));
  if (comma < 0 || IsBlank(line.mid(comma + 1))) return {};
  return line.mid(comma + 1);
}

std::optional<double> HexNumber(const QString& digits) {
  std::string valid;
  for (const QChar c : digits) {
    if (c.unicode() > 0x7F || std::isxdigit(c.unicode()) == 0) break;
    valid += static_cast<char>(c.unicode());
  }
  if (valid.size() > 8) return {};
  const auto bits = static_cast<quint32>(std::strtoul(valid.c_str(), nullptr, 16));
  return valid.size() <= 4 ? static_cast<double>(static_cast<qint16>(bits))
                           : static_cast<double>(static_cast<qint32>(bits));
}

}  // namespace

std::optional<QStringList> PlainItems(QByteArrayView bytes) {
  if (const qsizetype end = bytes.indexOf('\x1A'); end >= 0) bytes.truncate(end);
  if (bytes.isEmpty() || bytes.contains('\0')) return {};
  const bool utf8 = bytes.startsWith("\xEF\xBB\xBF");
  const QString text = utf8 ? QString::fromUtf8(bytes.sliced(3)) : TextFromBytes(bytes);
  if (text.isEmpty()) return {};
  QStringList lines = text.split(u'\n');
  if (lines.last().isEmpty()) lines.removeLast();
  QStringList items;
  for (qsizetype i = 0; i < lines.size(); ++i) {
    QString line = lines.at(i);
    if (line.size() > kLongestLine) return {};
    if (line.endsWith(u'\r')) line.chop(1);
    if (i == 0 || IsBlank(line)) continue;
    for (std::optional<QString> rest = line; rest;)
      rest = TakeItem(*rest, items);
  }
  return items;
}

PlainColumns::PlainColumns(const QString& line) : line_(line) {
  for (qsizetype at = 0; at < line.size() || at == 0;) {
    qsizetype end = line.indexOf(QStringLiteral("  "), at);
    if (end < 0) end = line.size();
    columns_.append(line.mid(at, end - at));
    starts_.push_back(at);
    at = end;
    while (at < line.size() && line.at(at) == u' ')
      ++at;
    if (at == 0) break;
  }
}

QString PlainColumns::At(int n) const {
  return columns_.value(n);
}

QString PlainColumns::From(int n) const {
  return n < columns_.size() ? line_.mid(starts_[static_cast<std::size_t>(n)]) : QString();
}

std::optional<double> PlainNumberOf(const QString& text) {
  QString dense = text;
  dense.remove(u' ').remove(u'\t').remove(u'\n');
  if (dense.left(2).toUpper() == QStringLiteral("&H")) return HexNumber(dense.mid(2));
  std::string ascii;
  for (const QChar c : dense) {
    if (!QStringLiteral("0123456789+-.eE").contains(c)) break;
    ascii += static_cast<char>(c.unicode());
  }
  // The conversion knows a minus sign only.
  if (ascii.starts_with('+')) ascii.erase(0, 1);
  if (dense.startsWith(u'+') && (ascii.starts_with('-') || ascii.starts_with('+'))) return 0;
  double ignored = 0;
  const std::from_chars_result parsed = std::from_chars(ascii.data(), ascii.data() + ascii.size(), ignored);
  if (parsed.ec == std::errc::invalid_argument) return 0;
  const double number =
      std::strtod(ascii.substr(0, static_cast<std::size_t>(parsed.ptr - ascii.data())).c_str(), nullptr);
  if (std::isinf(number)) return {};
  return number;
}

std::optional<qint64> PlainInteger(const QString& text, qint64 lowest, qint64 highest) {
  const std::optional<double> number = PlainNumberOf(text);
  if (!number) return {};
  const double rounded = std::rint(*number);
  if (rounded < static_cast<double>(lowest) || rounded > static_cast<double>(highest)) return {};
  return static_cast<qint64>(rounded);
}

}  // namespace kalivor::fuzz
