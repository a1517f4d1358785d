#include "core/ListTable.h"

#include <QStringView>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

bool IsControl(QChar c) {
  return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0);
}

// Characters that no device shows become blanks, as on paper.
QString WithoutControls(QString text, QStringView kept) {
  for (QChar& c : text) {
    if (IsControl(c) && !kept.contains(c)) c = u' ';
  }
  return text;
}

bool IsDigits(QStringView text) {
  return !text.isEmpty() &&
         std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

// A sign, digits, at most one point between them: what a spreadsheet calculates with and nothing else.
bool IsPlainNumber(QStringView text) {
  if (text.startsWith(u'-') || text.startsWith(u'+')) text = text.sliced(1);
  const qsizetype point = text.indexOf(u'.');
  return point < 0 ? IsDigits(text) : IsDigits(text.first(point)) && IsDigits(text.sliced(point + 1));
}

// A spreadsheet calculates, or fetches from elsewhere, what begins with one of these, in quotes as well. An
// apostrophe in front makes it a text there and stays visible, so that nobody takes the text for the
// original.
QString NoFormula(const QString& text) {
  constexpr QStringView kBeginnings = u"=+-@";
  const auto first =
      std::find_if(text.begin(), text.end(), [](QChar c) { return !c.isSpace() && !IsControl(c); });
  return first != text.end() && kBeginnings.contains(*first) ? u'\'' + text : text;
}

// What a cell is to a German spreadsheet.
QString SpreadsheetText(const TableCell& cell) {
  if (!cell.number || !IsPlainNumber(cell.text)) return NoFormula(cell.text);
  return QString(cell.text).replace(u'.', u',');
}

QString Quoted(QString text) {
  return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

QString CsvField(const QString& text) {
  const QString field = WithoutControls(text, u"\t\r\n");
  const bool plain = std::none_of(field.begin(), field.end(),
                                  [](QChar c) { return c == u';' || c == u'"' || IsControl(c); });
  // Blanks at the ends are not part of a field without quotes to every reader.
  return plain && field == field.trimmed() ? field : Quoted(field);
}

// A quote at the beginning would open a field that goes on over columns and lines.
QString ClipboardField(const QString& text) {
  const QString field = WithoutControls(text, {});
  return field.startsWith(u'"') ? Quoted(field) : field;
}

// Appends one line of `cells`, each as `field` has it.
template <class Cells, class Field>
void AppendLine(QString& text, const Cells& cells, QChar separator, QStringView end, const Field& field) {
  bool first = true;
  for (const auto& cell : cells) {
    if (!first) text += separator;
    first = false;
    text += field(cell);
  }
  text += end;
}

// Colours and sizes are the reader's own: the page goes by what browser and system are set to.
constexpr QStringView kStyle =
    uR"(:root { color-scheme: light dark; }
body { margin: 1.5em; font: 14px/1.4 system-ui, "Segoe UI", sans-serif; color: #1a1a1a; background: #fff; }
header p { margin: 0; white-space: pre-wrap; overflow-wrap: anywhere; }
header p:first-child { font-size: 1.2em; font-weight: 600; }
table { margin-top: 1em; border-collapse: collapse; }
th, td { padding: .2em .7em; border-bottom: 1px solid #d5d5d5; text-align: left; vertical-align: top;
  white-space: pre-wrap; overflow-wrap: anywhere; min-width: 2em; max-width: 40em; }
th { position: sticky; top: 0; border-bottom: 2px solid #777; background: #f0f0f0; }
.n { text-align: right; font-variant-numeric: tabular-nums; white-space: pre; }
@media (prefers-color-scheme: dark) {
  body { color: #e6e6e6; background: #1b1b1b; }
  th, td { border-color: #444; }
  th { border-bottom-color: #999; background: #2a2a2a; }
}
@media print {
  body { margin: 0; font-size: 9pt; color: #000; background: #fff; }
  thead { display: table-header-group; }
  tr { break-inside: avoid; }
  th { position: static; background: none; }
}
)";

}  // namespace

bool IsNumberColumn(const ListTable& table, std::size_t column) {
  int numbers = 0;
  int others = 0;
  for (const std::vector<TableCell>& row : table.rows) {
    if (column >= row.size() || row[column].text.isEmpty()) continue;
    ++(row[column].number ? numbers : others);
  }
  return numbers > others;
}

QByteArray CsvOf(const ListTable& table) {
  constexpr QStringView kEnd = u"\r\n";
  const auto title = [](const QString& text) { return CsvField(NoFormula(text)); };
  QString text;
  for (const QString& line : table.heading)
    AppendLine(text, QStringList{line}, u';', kEnd, title);
  if (!table.heading.isEmpty()) text += kEnd;
  AppendLine(text, table.titles, u';', kEnd, title);
  for (const std::vector<TableCell>& row : table.rows)
    AppendLine(text, row, u';', kEnd, [](const TableCell& cell) { return CsvField(SpreadsheetText(cell)); });
  return kByteOrderMark + text.toUtf8();
}

QString HtmlText(const QString& text) {
  return WithoutControls(text, u"\t\r\n").toHtmlEscaped();
}

QByteArray HtmlOf(const ListTable& table) {
  QString text =
      u"<!DOCTYPE html>\n<html lang=\"de\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
      "'unsafe-inline'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>"_s;
  text += table.heading.isEmpty() ? u"KALIVOR"_s : HtmlText(table.heading.first());
  text += u"</title>\n<style>\n"_s;
  text += kStyle;
  text += u"</style>\n</head>\n<body>\n"_s;
  if (!table.heading.isEmpty()) {
    text += u"<header>\n"_s;
    for (const QString& line : table.heading)
      text += u"<p>"_s + HtmlText(line) + u"</p>\n"_s;
    text += u"</header>\n"_s;
  }
  text += u"<table>\n<thead>\n<tr>"_s;
  for (qsizetype column = 0; column < table.titles.size(); ++column) {
    const bool number = IsNumberColumn(table, static_cast<std::size_t>(column));
    text += number ? u"<th scope=\"col\" class=\"n\">"_s : u"<th scope=\"col\">"_s;
    text += HtmlText(table.titles.at(column)) + u"</th>"_s;
  }
  text += u"</tr>\n</thead>\n<tbody>\n"_s;
  for (const std::vector<TableCell>& row : table.rows) {
    text += u"<tr>"_s;
    for (const TableCell& cell : row)
      text += (cell.number ? u"<td class=\"n\">"_s : u"<td>"_s) + HtmlText(cell.text) + u"</td>"_s;
    text += u"</tr>\n"_s;
  }
  text += u"</tbody>\n</table>\n</body>\n</html>\n"_s;
  return text.toUtf8();
}

QString ClipboardText(const ListTable& table) {
  QString text;
  AppendLine(text, table.titles, u'\t', u"\n",
             [](const QString& title) { return ClipboardField(NoFormula(title)); });
  for (const std::vector<TableCell>& row : table.rows) {
    AppendLine(text, row, u'\t', u"\n",
               [](const TableCell& cell) { return ClipboardField(SpreadsheetText(cell)); });
  }
  return text;
}

}  // namespace kalivor
