#include "diagnosis/DiagnosisReport.h"

#include <algorithm>

#include "check/FindingsText.h"
#include "commands/PortCommands.h"
#include "core/DefinitionFiles.h"
#include "core/LineHint.h"
#include "core/ListTable.h"
#include "core/TelegramText.h"
#include "platform/RuntimeError.h"
#include "platform/SerialControl.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr QStringView kStyle =
    uR"(body { margin: 1.5em; max-width: 70em; font: 14px/1.4 system-ui, "Segoe UI", sans-serif;
  color: #1a1a1a; background: #fff; }
h1 { font-size: 1.4em; }
h2 { margin-top: 1.6em; font-size: 1.15em; border-bottom: 1px solid #777; }
h3 { font-size: 1em; }
table { margin-bottom: 18px; border-collapse: collapse; }
th, td { padding: .2em .7em; border-bottom: 1px solid #d5d5d5; text-align: left; vertical-align: top;
  overflow-wrap: anywhere; }
pre { font: 12px/1.35 ui-monospace, Consolas, "DejaVu Sans Mono", monospace; overflow-x: auto; }
svg { max-width: 100%; height: auto; }
)";

std::vector<NamedText> SettingsOf(const Module1& module, platform::PortDirectory& ports) {
  const auto named = [](const QString& text) { return text.isEmpty() ? u"–"_s : text; };
  const QString device = ports.Shown(module.Schnittstelle);
  std::vector<NamedText> settings{
      {u"Schnittstelle"_s, u"COM%1: %2"_s.arg(QString::number(module.Schnittstelle),
                                              device.isEmpty() ? u"nicht vorhanden"_s : device)},
      {u"Geräteadresse"_s, QString::number(module.Adresse)},
      {u"Ausgewählte Version"_s, named(module.VersionList.SelectedText())},
      {u"Ausgewählte Anlageart"_s, named(module.PlantTypeList.SelectedText())},
      {u"Version des Reglers bei der letzten Abfrage"_s, named(module.ReglerVersion)},
      {u"Versionstabelle"_s, named(VersionTablePath(module))},
      {u"Ordner der Wertedateien"_s, named(module.Userpath)},
      {u"Wertedatei"_s, named(module.Dateiname)},
      {u"Ruhezeit beim sicheren Senden"_s, u"%1 ms"_s.arg(module.Ruhezeit)}};
  for (int number = 1; number <= platform::kLargestPortNumber; ++number) {
    const QString binding = ports.Binding(number);
    if (!binding.isEmpty()) settings.emplace_back(u"COM%1 zugeordnet"_s.arg(number), binding);
  }
  return settings;
}

void CollectFindings(const DiagnosisSources& sources, Diagnosis& diagnosis) {
  const Module1& module = sources.module;
  try {
    diagnosis.findings = CheckDefinitions(sources.files, module.Inipath, module.Inifile);
  } catch (const RuntimeError& error) {
    diagnosis.findingsFailure = error.Description();
  }
}

void CollectTelegrams(const DiagnosisSources& sources, Diagnosis& diagnosis) {
  const ExchangeLog& log = sources.exchanges;
  const TelegramReader reader(sources.module);
  TelegramLines lines;
  const int count = log.Count();
  for (int i = std::max(0, count - kToldExchanges); i < count; ++i)
    diagnosis.telegrams += lines.Of(reader, log.At(i));
  diagnosis.exchanges = log.Last();
}

/// The page, part by part.
class Page {
 public:
  Page(const LeftOut& leftOut, const std::function<QString(const LineQuality& quality)>& picture)
      : discretion_(leftOut), picture_(picture) {}

  void Begin(const QString& title) {
    html_ =
        u"<!DOCTYPE html>\n<html lang=\"de\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
        "'unsafe-inline'\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>"_s;
    html_ += Text(title) + u"</title>\n<style>\n"_s + kStyle.toString() + u"</style>\n</head>\n<body>\n"_s;
    Line(u"h1", title);
  }

  [[nodiscard]] QString End() { return html_ + u"</body>\n</html>\n"_s; }

  void Line(QStringView element, const QString& text) {
    html_ += u"<%1>%2</%1>\n"_s.arg(element, Text(text));
  }

  /// Lines as they stand.
  void Lines(const QString& text) { Line(u"pre", QString(text).remove(u'\r').trimmed()); }

  void Pairs(const std::vector<NamedText>& pairs) {
    html_ += u"<table>\n"_s;
    for (const auto& [name, text] : pairs)
      html_ += u"<tr><th>%1</th><td>%2</td></tr>\n"_s.arg(Text(name), Text(text));
    html_ += u"</table>\n"_s;
  }

  void Table(const QStringList& titles, const std::vector<QStringList>& rows) {
    html_ += u"<table>\n"_s;
    Row(u"th", titles);
    for (const QStringList& row : rows)
      Row(u"td", row);
    html_ += u"</table>\n"_s;
  }

  void Quality(const QString& title, const LineQuality& quality) {
    Line(u"h3", title);
    for (const QString& text : HintOf(quality).texts)
      Line(u"p", text);
    if (quality.All() > 0) html_ += u"<p>"_s + picture_(quality) + u"</p>\n"_s;
  }

 private:
  [[nodiscard]] QString Text(const QString& text) const { return HtmlText(discretion_.Of(text)); }

  void Row(QStringView element, const QStringList& cells) {
    html_ += u"<tr>"_s;
    for (const QString& cell : cells)
      html_ += u"<%1>%2</%1>"_s.arg(element, Text(cell));
    html_ += u"</tr>\n"_s;
  }

  Discretion discretion_;
  const std::function<QString(const LineQuality& quality)>& picture_;
  QString html_;
};

void AddPorts(const Diagnosis& diagnosis, Page& page) {
  page.Line(u"h2", u"Schnittstellen"_s);
  if (diagnosis.ports.isEmpty()) {
    page.Line(u"p", NoPortsText());
    return;
  }
  std::vector<QStringList> rows;
  for (const platform::PortEntry& port : diagnosis.ports) {
    rows.push_back({port.number > 0 ? u"COM%1"_s.arg(port.number) : u"–"_s, port.device, port.description,
                    port.serialNumber, port.place, StateText(port.state), port.remark});
  }
  page.Table({u"Nummer"_s, u"Gerät"_s, u"Beschreibung"_s, u"Seriennummer"_s, u"Steckplatz"_s, u"Zustand"_s,
              u"Bemerkung"_s},
             rows);
}

void AddFindings(const Diagnosis& diagnosis, Page& page) {
  page.Line(u"h2", u"Prüfung der Definitionsdateien"_s);
  page.Line(u"p",
            diagnosis.findingsFailure.isEmpty() ? SummaryOf(diagnosis.findings) : diagnosis.findingsFailure);
  if (diagnosis.findings.empty()) return;
  std::vector<QStringList> rows;
  for (const Finding& finding : diagnosis.findings) {
    rows.push_back({finding.file, finding.line > 0 ? QString::number(finding.line) : QString(),
                    SeverityText(finding), finding.text});
  }
  page.Table({u"Datei"_s, u"Zeile"_s, u"Schwere"_s, u"Text"_s}, rows);
}

void AddTelegrams(const Diagnosis& diagnosis, Page& page) {
  page.Line(u"h2", u"Telegramme"_s);
  if (diagnosis.exchanges == 0) {
    page.Line(u"p", u"Seit dem Start wurde nichts gesendet."_s);
    return;
  }
  page.Line(u"p",
            u"Anfragen seit dem Start: %1. Hier stehen die letzten, höchstens %2, mit ihren Antworten."_s.arg(
                QString::number(diagnosis.exchanges), QString::number(kToldExchanges)));
  page.Lines(diagnosis.telegrams);
}

}  // namespace

Diagnosis Collect(const DiagnosisSources& sources, const QDateTime& now) {
  Diagnosis diagnosis;
  diagnosis.time = now;
  diagnosis.system = sources.system;
  diagnosis.ports = sources.ports.List();
  diagnosis.settings = SettingsOf(sources.module, sources.ports);
  CollectFindings(sources, diagnosis);
  diagnosis.ofTransfer = sources.exchanges.OfTransfer();
  diagnosis.sinceStart = sources.exchanges.SinceStart();
  diagnosis.report = sources.report;
  CollectTelegrams(sources, diagnosis);
  return diagnosis;
}

QString DiagnosisHtml(const Diagnosis& diagnosis, const LeftOut& leftOut,
                      const std::function<QString(const LineQuality& quality)>& picture) {
  Page page(leftOut, picture);
  page.Begin(u"KALIVOR: Diagnosebericht"_s);
  page.Line(u"p", u"Erstellt am %1 um %2 Uhr."_s.arg(diagnosis.time.toString(u"dd.MM.yyyy"),
                                                     diagnosis.time.toString(u"HH:mm:ss")));
  page.Line(u"h2", u"Programm und System"_s);
  page.Pairs(diagnosis.system);
  AddPorts(diagnosis, page);
  page.Line(u"h2", u"Einstellungen"_s);
  page.Pairs(diagnosis.settings);
  AddFindings(diagnosis, page);
  page.Line(u"h2", u"Qualität der Leitung"_s);
  page.Quality(u"Die letzte Übertragung"_s, diagnosis.ofTransfer);
  page.Quality(u"Seit dem Start"_s, diagnosis.sinceStart);
  page.Line(u"h2", u"Der letzte Report"_s);
  if (diagnosis.report.isEmpty()) {
    page.Line(u"p", u"Es gab noch keinen."_s);
  } else {
    page.Lines(diagnosis.report);
  }
  AddTelegrams(diagnosis, page);
  return page.End();
}

}  // namespace kalivor
