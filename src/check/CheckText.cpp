#include "check/CheckText.h"

#include <QStringDecoder>
#include <algorithm>

#include "base/Windows1252.h"
#include "core/DefinitionFiles.h"

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
bool IsTorn(QByteArrayView line, int number, const FileFindings& findings) {
  if (line.contains('\t')) {
    findings.Warning(number, u"Tabulator: er trennt keine Spalten und gehört zum Text.");
  }
  const QByteArrayView text = line.trimmed();
  if (text.startsWith('"')) {
    const qsizetype closing = text.indexOf('"', 1);
    if (closing == text.size() - 1 && closing > 0) return false;
    findings.Error(number, closing < 0
                               ? u"Anführungszeichen am Zeilenanfang ohne Gegenstück."
                               : u"Text hinter dem schließenden Anführungszeichen; er wird nicht gelesen.");
    return true;
  }
  if (text.contains('"')) {
    findings.Warning(number, u"Anführungszeichen im Text; es wird mit angezeigt.");
  }
  if (!text.contains(',')) return false;
  findings.Error(number, u"Komma: der Rest der Zeile wird als neue Zeile gelesen.");
  return true;
}

}  // namespace

CheckedText ReadCheckedText(platform::FileSystem& files, const QString& path, const FileFindings& findings) {
  CheckedText text{findings, {}, ReadItems(files, path)};
  QByteArray bytes = files.Read(path).bytes;
  const bool holdsMore = HoldsText(QByteArrayView(bytes).sliced(TextLength(bytes)));
  bytes.truncate(TextLength(bytes));
  const QByteArrayList lines = bytes.split('\n');
  if (holdsMore) {
    findings.Warning(static_cast<int>(lines.size()),
                     u"Hinter dem Zeichen 1A steht noch etwas; es wird nicht gelesen.");
  }
  if (IsUnmarkedUtf8(bytes)) {
    findings.Warning(
        0, u"Die Datei ist als UTF-8 ohne Kennung (BOM) gespeichert; Umlaute werden falsch gelesen.");
  }

  QByteArrayView heading = lines.first();
  if (heading.startsWith(kUtf8Mark)) heading = heading.sliced(kUtf8Mark.size());
  text.heading = TextFromBytes(heading.trimmed());
  QSet<int> torn;
  for (int number = 2; number <= lines.size(); ++number) {
    if (IsTorn(lines[number - 1], number, findings)) torn.insert(number);
  }
  text.torn = !torn.isEmpty();
  std::erase_if(text.items.items, [&torn](const TextItem& item) { return torn.contains(item.line); });
  return text;
}

QStringList ColumnsOf(QStringView line, int most) {
  QStringList columns;
  while (columns.size() < most && !GetRest(line, static_cast<int>(columns.size())).isEmpty())
    columns.append(GetField(line, static_cast<int>(columns.size())));
  return columns;
}

}  // namespace kalivor
