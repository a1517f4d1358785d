#include "check/CheckText.h"

#include <QStringDecoder>
#include <algorithm>

#include "base/Windows1252.h"
#include "core/DefinitionFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr QByteArrayView kUtf8Mark("\xEF\xBB\xBF");

// Text with umlauts is hardly ever valid UTF-8 by chance.
bool IsUnmarkedUtf8(const QByteArray& bytes) {
  const bool plain =
      std::none_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  if (plain || bytes.startsWith(kUtf8Mark)) return false;
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QString decoded = decoder.decode(bytes);
  return !decoder.hasError() && !decoded.isEmpty();
}

// True when anything but blanks, line ends and the byte that ends a text is there.
bool HoldsText(QByteArrayView bytes) {
  return std::any_of(bytes.begin(), bytes.end(),
                     [](char c) { return c != ' ' && c != '\r' && c != '\n' && c != '\x1A'; });
}

// Reports what is wrong with a line as such. True when its items are not what its author meant.
bool IsTorn(QByteArrayView line, const QString& file, int number, Findings& findings) {
  if (line.contains('\t')) {
    findings.Warning(file, number, u"Tabulator: er trennt keine Spalten und gehört zum Text."_s);
  }
  const QByteArrayView text = line.trimmed();
  if (text.startsWith('"')) {
    const qsizetype closing = text.indexOf('"', 1);
    if (closing == text.size() - 1 && closing > 0) return false;
    findings.Error(file, number,
                   closing < 0 ? u"Anführungszeichen am Zeilenanfang ohne Gegenstück."_s
                               : u"Text hinter dem schließenden Anführungszeichen; er wird nicht gelesen."_s);
    return true;
  }
  if (text.contains('"')) {
    findings.Warning(file, number, u"Anführungszeichen im Text; es wird mit angezeigt."_s);
  }
  if (!text.contains(',')) return false;
  findings.Error(file, number, u"Komma: der Rest der Zeile wird als neue Zeile gelesen."_s);
  return true;
}

}  // namespace

CheckedText ReadCheckedText(platform::FileSystem& files, const QString& path, const QString& file,
                            Findings& findings) {
  CheckedText text;
  text.items = ReadItems(files, path);
  QByteArray bytes = files.Read(path).bytes;
  const bool holdsMore = HoldsText(QByteArrayView(bytes).sliced(TextLength(bytes)));
  bytes.truncate(TextLength(bytes));
  if (holdsMore) {
    findings.Warning(file, static_cast<int>(bytes.count('\n')) + 1,
                     u"Hinter dem Zeichen 1A steht noch etwas; es wird nicht gelesen."_s);
  }
  if (IsUnmarkedUtf8(bytes)) {
    findings.Warning(
        file, 0, u"Die Datei ist als UTF-8 ohne Kennung (BOM) gespeichert; Umlaute werden falsch gelesen."_s);
  }

  QSet<int> torn;
  int number = 0;
  for (qsizetype start = 0; start < bytes.size();) {
    qsizetype end = bytes.indexOf('\n', start);
    if (end < 0) end = bytes.size();
    const QByteArrayView line = QByteArrayView(bytes).sliced(start, end - start);
    if (++number == 1) {
      const bool marked = line.startsWith(kUtf8Mark);
      text.heading = TextFromBytes((marked ? line.sliced(kUtf8Mark.size()) : line).trimmed());
    } else if (IsTorn(line, file, number, findings)) {
      torn.insert(number);
    }
    start = end + 1;
  }
  text.torn = !torn.isEmpty();
  std::erase_if(text.items.items, [&torn](const TextItem& item) { return torn.contains(item.line); });
  return text;
}

int ColumnCount(QStringView line, int most) {
  int count = 0;
  while (count < most && !GetRest(line, count).isEmpty())
    ++count;
  return count;
}

}  // namespace kalivor
