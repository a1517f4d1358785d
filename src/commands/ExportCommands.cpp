#include "commands/ExportCommands.h"

#include <algorithm>

#include "base/Paths.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

struct KindOfFile {
  QStringView description;
  QStringView suffix;
};

KindOfFile FileOf(ExportKind kind) {
  switch (kind) {
    case ExportKind::Csv:
      return {u"CSV für Tabellenkalkulation (*.csv)", u".csv"};
    case ExportKind::Html:
      return {u"HTML-Seite (*.html)", u".html"};
    case ExportKind::Pdf:
      break;
  }
  return {u"PDF-Dokument (*.pdf)", u".pdf"};
}

QByteArray ContentOf(const ExportContext& context, const ListTable& table, ExportKind kind) {
  switch (kind) {
    case ExportKind::Csv:
      return CsvOf(table);
    case ExportKind::Html:
      return HtmlOf(table);
    case ExportKind::Pdf:
      break;
  }
  return context.pdf(table);
}

// Letters behind the last point of the name; "Anlage 1.5" has none.
bool HasSuffix(const QString& path) {
  const auto isLetter = [](QChar c) { return c.isLetter(); };
  const auto point = std::find_if_not(path.rbegin(), path.rend(), isLetter);
  return point != path.rbegin() && point != path.rend() && *point == u'.';
}

// "" when the user cancels.
QString AskForFile(const ExportContext& context, const QString& title, const KindOfFile& kind) {
  const QString filter = u"%1|*%2|Alle Dateien (*.*)|*.*"_s.arg(kind.description, kind.suffix);
  for (;;) {
    QString path = context.dialogs.SaveFile(title, filter);
    if (path.isEmpty()) return {};
    if (!HasSuffix(path)) path += kind.suffix;
    // Nothing is read of a file that is there: it is larger than this.
    if (context.files.Read(path, 0).missing) return path;
    const QString question = u"Die Datei gibt es schon:\r\n%1\r\nSoll sie ersetzt werden?"_s.arg(path);
    if (context.box.Confirm(question, u"Ersetzen"_s)) return path;
  }
}

QString Write(const ExportContext& context, const QString& path, const QByteArray& content, QString error) {
  if (error.isEmpty()) error = context.files.Replace(path, content);
  if (error.isEmpty()) return path;
  context.box.Show(
      u"Nicht exportiert:\r\n%1\r\n%2\r\n\r\nBitte eine andere Datei oder einen anderen Ordner wählen."_s.arg(
          path, error));
  return {};
}

// A table is never empty, and neither is a document.
QString FaultOf(const QByteArray& content) {
  return content.isEmpty() ? u"Das PDF-Dokument lässt sich nicht erzeugen."_s : QString();
}

}  // namespace

QString ExportTable(const ExportContext& context, const ListTable& table, ExportKind kind) {
  const QString path = AskForFile(context, u"Exportieren"_s, FileOf(kind));
  if (path.isEmpty()) return {};
  const QByteArray content = ContentOf(context, table, kind);
  return Write(context, path, content, FaultOf(content));
}

QString ExportText(const ExportContext& context, const QString& title, const QByteArray& text) {
  const QString path = AskForFile(context, title, {u"Text (*.txt)", u".txt"});
  return path.isEmpty() ? path : Write(context, path, text, {});
}

QString ExportHtml(const ExportContext& context, const QString& title, const QByteArray& html) {
  const QString path = AskForFile(context, title, FileOf(ExportKind::Html));
  return path.isEmpty() ? path : Write(context, path, html, {});
}

QString ExportPdf(const ExportContext& context, const QString& title, const QByteArray& pdf) {
  const QString path = AskForFile(context, title, FileOf(ExportKind::Pdf));
  return path.isEmpty() ? path : Write(context, path, pdf, FaultOf(pdf));
}

QString ExportPicture(const ExportContext& context, const QString& title, const QByteArray& svg) {
  const QString path = AskForFile(context, title, {u"SVG-Bild (*.svg)", u".svg"});
  return path.isEmpty() ? path : Write(context, path, svg, {});
}

QString ExportValueFile(const ExportContext& context, const QString& title, const QByteArray& image) {
  const QString path = AskForFile(context, title, {u"MERVA Parameterfile (*.qpf)", u".qpf"});
  return path.isEmpty() ? path : Write(context, path, image, {});
}

}  // namespace kalivor
