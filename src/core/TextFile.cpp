#include "core/TextFile.h"

#include <algorithm>

#include "base/Windows1252.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// No line of a definition text is nearly as long; a file with longer ones is something else.
constexpr qsizetype kLongestLine = 100'000;

[[noreturn]] void Fail(const QString& description) {
  throw RuntimeError(RuntimeError::Kind::FileError, description);
}

QString Decode(QByteArrayView bytes) {
  constexpr QByteArrayView utf8Mark("\xEF\xBB\xBF");
  return bytes.startsWith(utf8Mark) ? QString::fromUtf8(bytes.sliced(utf8Mark.size())) : TextFromBytes(bytes);
}

bool IsBlank(QStringView line) {
  return std::all_of(line.begin(), line.end(), [](QChar c) { return c == u' '; });
}

// Cuts `line` into its items.
void AppendItems(QStringView line, int number, std::vector<TextItem>& items) {
  for (;;) {
    while (line.startsWith(u' '))
      line = line.sliced(1);
    qsizetype comma = 0;
    if (line.startsWith(u'"')) {
      const qsizetype closing = line.indexOf(u'"', 1);
      items.push_back({line.mid(1, closing < 0 ? -1 : closing - 1), number});
      // What stands between the closing quote and the comma is lost.
      comma = closing < 0 ? -1 : line.indexOf(u',', closing);
    } else {
      comma = line.indexOf(u',');
      items.push_back({line.left(comma < 0 ? line.size() : comma), number});
    }
    if (comma < 0 || IsBlank(line.sliced(comma + 1))) return;
    line = line.sliced(comma + 1);
  }
}

}  // namespace

qsizetype TextLength(QByteArrayView bytes) {
  const qsizetype end = bytes.indexOf('\x1A');
  return end < 0 ? bytes.size() : end;
}

TextItems ReadItems(platform::FileSystem& files, const QString& path) {
  const platform::FileContent content = files.Read(path);
  if (!content.Ok()) Fail(content.error);
  const QByteArrayView bytes = QByteArrayView(content.bytes).first(TextLength(content.bytes));
  if (bytes.contains('\0')) Fail(u"Die Datei ist keine Textdatei."_s);

  TextItems result;
  result.text = Decode(bytes);
  const QStringView text = result.text;
  int number = 0;
  for (qsizetype start = 0; start < text.size();) {
    qsizetype end = text.indexOf(u'\n', start);
    if (end < 0) end = text.size();
    if (end - start > kLongestLine) Fail(u"Die Datei ist keine Textdatei."_s);
    QStringView line = text.sliced(start, end - start);
    if (line.endsWith(u'\r')) line.chop(1);
    ++number;
    if (number > 1 && !IsBlank(line)) AppendItems(line, number, result.items);
    start = end + 1;
  }
  if (number == 0) Fail(u"Die Datei ist leer."_s);
  return result;
}

}  // namespace kalivor
