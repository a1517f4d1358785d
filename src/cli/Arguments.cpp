#include "cli/Arguments.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/CommandLine.h"
#include "base/Numbers.h"
#include "commands/SettingsTable.h"
#include "history/Entry.h"
#include "platform/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

const QString kHistory = u"history"_s;

// Each takes over the value of one option; returns a German complaint or "".

template <std::optional<QString> Arguments::*Member>
QString TakeText(Arguments& arguments, const QString& value) {
  if (arguments.*Member) return Repeated();
  arguments.*Member = value;
  return {};
}

QString TakeAddress(Arguments& arguments, const QString& value) {
  if (arguments.address) return Repeated();
  try {
    const qint16 address = StrictInt16(value);
    if (!kAdresse.Offers(address)) return NoAddress(value);
    arguments.address = address;
  } catch (const RuntimeError&) {
    return NoAddress(value);
  }
  return {};
}

QString TakeSet(Arguments& arguments, const QString& value) {
  if (value.indexOf(u'=') < 1) return u"erwartet VARIABLE=WERT statt "_s + value;
  arguments.set.append(value);
  return {};
}

template <bool Checked>
QString TakeMark(Arguments& arguments, const QString& value) {
  arguments.marks.push_back({value, Checked});
  return {};
}

QString TakeAnswer(Arguments& arguments, const QString& value) {
  if (value != u"first" && value != u"second") return u"erwartet first oder second statt "_s + value;
  arguments.answers.push_back(value == u"first" ? 1 : 2);
  return {};
}

// A whole number from `least` on.
template <std::optional<qint16> Arguments::*Member, int Least>
QString TakeCount(Arguments& arguments, const QString& value) {
  if (arguments.*Member) return Repeated();
  bool isNumber = false;
  const qint16 number = value.toShort(&isNumber);
  if (!isNumber || number < Least) return u"keine Zahl ab %1: %2"_s.arg(QString::number(Least), value);
  arguments.*Member = number;
  return {};
}

template <std::optional<QDate> Arguments::*Member>
QString TakeDate(Arguments& arguments, const QString& value) {
  if (arguments.*Member) return Repeated();
  const QDate date = QDate::fromString(value, Qt::ISODate);
  if (!date.isValid()) return u"kein Datum der Form JJJJ-MM-TT: "_s + value;
  arguments.*Member = date;
  return {};
}

QString TakeKind(Arguments& arguments, const QString& value) {
  if (arguments.kind) return Repeated();
  arguments.kind = history::KindOf(value);
  if (arguments.kind) return {};
  QStringList kinds;
  for (const DeedKind kind : history::kKinds)
    kinds << history::KindText(kind);
  return u"erwartet eines von %1 statt %2"_s.arg(kinds.join(u", "_s), value);
}

QString TakeOnly(Arguments& arguments, const QString& value) {
  constexpr std::array<std::pair<QStringView, bool ListFilter::*>, 4> kConditions = {
      {{u"checked", &ListFilter::checked},
       {u"different", &ListFilter::different},
       {u"nonstandard", &ListFilter::nonStandard},
       {u"outside", &ListFilter::outside}}};
  if (arguments.only) return Repeated();
  ListFilter& filter = arguments.only.emplace();
  for (const QString& word : value.split(u',')) {
    const auto* const known =
        std::ranges::find_if(kConditions, [&](const auto& one) { return word == one.first; });
    if (known == kConditions.end())
      return u"erwartet checked, different, nonstandard oder outside statt "_s + word;
    filter.*known->second = true;
  }
  return {};
}

QString TakeFormat(Arguments& arguments, const QString& value) {
  constexpr std::array<std::pair<QStringView, ListFormat>, 4> kFormats = {{{u"tsv", ListFormat::Tsv},
                                                                           {u"csv", ListFormat::Csv},
                                                                           {u"html", ListFormat::Html},
                                                                           {u"pdf", ListFormat::Pdf}}};
  if (arguments.format) return Repeated();
  for (const auto& [name, format] : kFormats) {
    if (value == name) arguments.format = format;
  }
  return arguments.format ? QString() : u"erwartet tsv, csv, html oder pdf statt "_s + value;
}

QString TakePorts(Arguments& arguments, const QString& value) {
  if (!arguments.ports.isEmpty()) return Repeated();
  for (const QString& port : value.split(u',')) {
    bool isNumber = false;
    const int number = port.toInt(&isNumber);
    if (port.isEmpty() || (isNumber && !kSchnittstelle.Offers(number)))
      return u"erwartet Nummern von 1 bis 8 oder Geräte, durch Komma getrennt, statt "_s + value;
    arguments.ports.append(port);
  }
  return {};
}

// "A-B", or one address.
QString TakeAddresses(Arguments& arguments, const QString& value) {
  if (arguments.addresses) return Repeated();
  bool firstIsNumber = false;
  bool lastIsNumber = false;
  const int first = value.section(u'-', 0, 0).toInt(&firstIsNumber);
  const int last = value.section(u'-', -1).toInt(&lastIsNumber);
  const bool valid = firstIsNumber && lastIsNumber && value.count(u'-') <= 1 && kAdresse.Offers(first) &&
                     kAdresse.Offers(last) && first <= last;
  if (!valid) return u"erwartet zwei Adressen von 0 bis 255 wie 1-31 statt "_s + value;
  arguments.addresses = {first, last};
  return {};
}

constexpr ValueOption<Arguments> kValueOptions[] = {
    {u"--ini-path", TakeText<&Arguments::iniPath>},
    {u"--ini-file", TakeText<&Arguments::iniFile>},
    {u"--controller", TakeText<&Arguments::controller>},
    {u"--plant", TakeText<&Arguments::plant>},
    {u"--port", TakeText<&Arguments::port>},
    {u"--address", TakeAddress},
    {u"--load", TakeText<&Arguments::load>},
    {u"--save", TakeText<&Arguments::save>},
    {u"--trace", TakeText<&Arguments::trace>},
    {u"--set", TakeSet},
    {u"--check", TakeMark<true>},
    {u"--uncheck", TakeMark<false>},
    {u"--answer", TakeAnswer},
    {u"--status-path", TakeText<&Arguments::statusPath>},
    {u"--date", TakeDate<&Arguments::date>},
    {u"--pdf", TakeText<&Arguments::pdf>},
    {u"--copies", TakeCount<&Arguments::copies, 0>},
    {u"--page", TakeCount<&Arguments::page, 1>},
    {u"--filter", TakeText<&Arguments::filter>},
    {u"--only", TakeOnly},
    {u"--against", TakeText<&Arguments::against>},
    {u"--format", TakeFormat},
    {u"--out", TakeText<&Arguments::out>},
    {u"--repeat", TakeCount<&Arguments::repeat, 0>},
    {u"--ports", TakePorts},
    {u"--addresses", TakeAddresses},
    {u"--history", TakeText<&Arguments::history>},
    {u"--plant-name", TakeText<&Arguments::plantName>},
    {u"--kind", TakeKind},
    {u"--technician", TakeText<&Arguments::technician>},
    {u"--from", TakeDate<&Arguments::from>},
    {u"--to", TakeDate<&Arguments::to>},
    {u"--parameter", TakeText<&Arguments::parameter>},
    {u"--server", TakeText<&Arguments::server>},
};

constexpr Switch<Arguments> kSwitches[] = {
    {u"--json", [](Arguments& arguments) { arguments.json = true; }},
    {u"--landscape", [](Arguments& arguments) { arguments.landscape = true; }},
    {u"--dry-run", [](Arguments& arguments) { arguments.dryRun = true; }},
    {u"--yes", [](Arguments& arguments) { arguments.yes = true; }},
    {u"--help", [](Arguments& arguments) { arguments.help = true; }},
    {u"--program-version", [](Arguments& arguments) { arguments.programVersion = true; }},
};

// Options that only some commands understand; returns a German complaint or "".
QString MisplacedOption(const Arguments& arguments, bool json) {
  const bool pages = arguments.command == u"pages";
  const bool print = arguments.command == u"print";
  const bool list = arguments.command == u"list";
  const bool safeSend = arguments.command == u"safe-send";
  const bool find = arguments.command == u"find";
  const bool history = arguments.command.startsWith(u"history ");
  const bool historyExport = arguments.command == u"history export";
  const bool initServer = arguments.command == u"history init-server";
  const bool entries = historyExport || arguments.command == u"history list";
  const bool writes = safeSend || arguments.command == u"restore";
  const struct {
    QStringView option;
    bool given = false;
    bool understood = false;
  } options[] = {
      {u"--json", arguments.json, json},
      {u"--save", arguments.save.has_value(), !history || arguments.command == u"history show"},
      {u"--landscape", arguments.landscape, pages || print},
      {u"--status-path", arguments.statusPath.has_value(), pages},
      {u"--date", arguments.date.has_value(), pages || list},
      {u"--pdf", arguments.pdf.has_value(), print},
      {u"--copies", arguments.copies.has_value(), print},
      {u"--page", arguments.page.has_value(), print},
      {u"--filter", arguments.filter.has_value(), list || entries},
      {u"--only", arguments.only.has_value(), list},
      {u"--against", arguments.against.has_value(), list},
      {u"--format", arguments.format.has_value(), list || historyExport},
      {u"--out", arguments.out.has_value(), list || historyExport},
      {u"--dry-run", arguments.dryRun, writes},
      {u"--yes", arguments.yes, writes},
      {u"--repeat", arguments.repeat.has_value(), safeSend},
      {u"--ports", !arguments.ports.isEmpty(), find},
      {u"--addresses", arguments.addresses.has_value(), find},
      {u"--plant-name", arguments.plantName.has_value(), entries},
      {u"--kind", arguments.kind.has_value(), entries},
      {u"--technician", arguments.technician.has_value(), entries},
      {u"--from", arguments.from.has_value(), entries},
      {u"--to", arguments.to.has_value(), entries},
      {u"--parameter", arguments.parameter.has_value(), entries},
      {u"--server", arguments.server.has_value(), initServer || arguments.command == u"history sync"}};
  for (const auto& [option, given, understood] : options) {
    if (given && !understood)
      return u"Option %1 gilt nicht für den Befehl %2."_s.arg(option, arguments.command);
  }
  if (initServer && !arguments.server)
    return u"Es fehlt die Option --server zum Befehl history init-server."_s;
  if (print && !arguments.pdf) return u"Es fehlt die Option --pdf zum Befehl print."_s;
  return {};
}

// Options that do not go together; returns a German complaint or "".
QString Contradictory(const Arguments& arguments) {
  if (arguments.only && arguments.only->different && !arguments.against)
    return u"Zu --only different gehört die Option --against."_s;
  if (arguments.format && arguments.json) return u"--json und --format schließen einander aus."_s;
  const bool inPages = arguments.format == ListFormat::Csv || arguments.format == ListFormat::Html;
  if (arguments.command == u"history export" && arguments.format && !inPages)
    return u"Für history export gibt es --format csv und html."_s;
  if (arguments.format == ListFormat::Pdf && !arguments.out)
    return u"Zu --format pdf gehört die Option --out."_s;
  return {};
}

// The commands of the history are two words.
QStringList WithWholeCommand(const QStringList& words) {
  if (words.size() < 2 || words.first() != kHistory) return words;
  return QStringList{words.at(0) + u' ' + words.at(1)} + words.sliced(2);
}

void CheckCommand(const QStringList& words, Arguments& arguments) {
  if (words.isEmpty()) {
    arguments.error = u"Es fehlt der Befehl; --help zeigt, welche es gibt."_s;
    return;
  }
  arguments.command = words.first();
  if (arguments.command == kHistory) {
    arguments.error = u"Es fehlt list, show, export, check, sync oder init-server zum Befehl history."_s;
    return;
  }
  const Command* command = FindCommand(arguments.command);
  const qsizetype expected = 1 + (command != nullptr ? command->words : 0);
  if (command == nullptr) {
    arguments.error = u"Unbekannter Befehl: "_s + arguments.command;
  } else if (words.size() < expected) {
    arguments.error =
        u"Es fehlt "_s + command->expected.toString() + u" zum Befehl "_s + arguments.command + u'.';
  } else if (words.size() > expected) {
    arguments.error = u"Überzähliges Argument: "_s + words.at(expected);
  } else {
    arguments.words = words.sliced(1);
    arguments.error = MisplacedOption(arguments, command->json);
    if (arguments.error.isEmpty()) arguments.error = Contradictory(arguments);
  }
}

QString HistoryHelpText() {
  return uR"(Aufruf: kalivor-cli history BEFEHL [OPTIONEN]

Zeigt den Verlauf: wann was an welchem Regler getan wurde und welche Werte sich
dabei geändert haben. Geführt wird er, wenn „Verlauf führen“ eingeschaltet ist.

Befehle:
  list                die Einträge, der neueste zuerst
  show EINTRAG        ein Eintrag mit seinen geänderten Werten; der Anfang seiner
                      Kennung genügt
  export              die Einträge als Tabelle (--format csv oder html)
  check               die Datei auf Fehler prüfen
  sync                mit dem Verlauf der Abteilung auf einem Server abgleichen: was einer
                      Seite fehlt, bekommt sie von der anderen
  init-server         einen PostgreSQL-Server für den Verlauf einer Abteilung einrichten

Optionen:
  --plant-name TEXT          nur Einträge dieser Anlage, '' ohne Anlage (list, export)
  --kind ART                 nur Einträge dieser Art: empfangen, gesendet, 'sicher gesendet',
                             verglichen, geladen, gespeichert, zurückgesetzt oder
                             wiederhergestellt (list, export)
  --technician NAME          nur Einträge dieses Technikers (list, export)
  --from JJJJ-MM-TT          nur Einträge von diesem Tag an (list, export)
  --to JJJJ-MM-TT            nur Einträge bis zu diesem Tag (list, export)
  --filter TEXT              nur Einträge, in denen alle Wörter vorkommen (list, export)
  --parameter NAME           nur Einträge, in denen sich dieser Parameter geändert hat:
                             Variable oder Name (list, export)
  --format csv | html        Form der Tabelle, sonst csv (export)
  --out DATEI                wohin die Tabelle geschrieben wird (export)
  --save DATEI               die Werte des Eintrags als Wertedatei schreiben (show)
  --server TEXT              der Server: eine Verbindungszeichenkette von libpq ohne Kennwort
                             oder der Name eines Dienstes; sync nimmt sonst den
                             eingestellten (sync, init-server)
  --history DATEI            Datei des Verlaufs statt der eigenen
  --json                     Ausgabe als JSON (alle außer export)
)"_s;
}

}  // namespace

Arguments ParseArguments(const QStringList& list) {
  Arguments arguments;
  QStringList words;
  bool optionsEnded = false;
  for (qsizetype at = 0; at < list.size() && arguments.error.isEmpty(); ++at) {
    if (!optionsEnded && list.at(at) == u"--") {
      optionsEnded = true;
    } else if (!optionsEnded && list.at(at).startsWith(u'-')) {
      arguments.error = TakeOption(kSwitches, kValueOptions, list, at, arguments);
    } else {
      words.append(list.at(at));
    }
  }
  if (arguments.help) {
    arguments.command = words.value(0);
  } else if (arguments.error.isEmpty() && !arguments.programVersion) {
    CheckCommand(WithWholeCommand(words), arguments);
  }
  return arguments;
}

bool Draws(const Arguments& arguments) {
  return arguments.command == u"print" ||
         (arguments.command == u"list" && arguments.format == ListFormat::Pdf);
}

QString HelpText(const QString& command) {
  if (command == kHistory) return HistoryHelpText();
  return uR"(Aufruf: kalivor-cli [OPTIONEN] BEFEHL

Parametriert einen Regler über eine serielle Leitung, ohne Fenster.

Befehle:
  versions            Zeilen der Versionstabelle
  plants              Einträge der Anlagearten: Position, Text
  params              alle Parameter als Tabelle
  tree                der Parameterbaum, wie ihn das Fenster zeigt
  identify            Version des angeschlossenen Reglers
  receive             angekreuzte Parameter vom Regler empfangen
  send                angekreuzte Parameter an den Regler senden
  compare             angekreuzte Parameter mit dem Regler vergleichen
  standard            alle Parameter auf ihre Standardwerte setzen
  show DATEI          den Inhalt einer Wertedatei zeigen, ohne Definitionen
  pages               die gedruckten Seiten als Text
  print --pdf DATEI   die gedruckten Seiten als PDF
  check-definitions   Definitionsdateien auf Fehler prüfen
  list                die Parameterliste, auf Wunsch mit einem Vergleich
  diff LINKS RECHTS   worin sich zwei Sätze von Werten unterscheiden
  safe-receive        angekreuzte Parameter sicher empfangen
  verify              angekreuzte Parameter sicher lesen und vergleichen
  safe-send           angekreuzte Parameter sicher senden: sichern, schreiben, prüfen
  backups             die Sicherungen, die vor dem Schreiben angelegt wurden
  restore SICHERUNG   die Werte einer Sicherung sicher in den Regler schreiben
  ports               die seriellen Schnittstellen: Nummer, Gerät, Zustand
  find                Regler suchen: an welcher Schnittstelle, mit welcher Adresse
  history …           der Verlauf: was wo wann geändert wurde; siehe history --help

LINKS und RECHTS sind table (die Werte auf dem PC), standard, controller (der Regler)
oder eine Wertedatei.

Optionen (vor oder nach dem Befehl):
  --ini-path ORDNER          Ordner der Versionstabelle und der Definitionsdateien
  --ini-file NAME            Dateiname der Versionstabelle
  --controller TEXT          Reglerversion, genau wie in der Versionstabelle
  --plant TEXT | '#N'        Anlageart, als Text oder als Position ab 0
  --port N | GERÄT           serielle Schnittstelle 1 bis 8 oder ein Gerät: ein Pfad,
                             socket://RECHNER:PORT oder rfc2217://RECHNER:PORT
  --address N                Geräteadresse 0 bis 255
  --load DATEI               Wertedatei laden, bevor der Befehl läuft
  --save DATEI               Wertedatei schreiben, wenn der Befehl erledigt ist (0 oder 1)
  --set VARIABLE=WERT        einen Parameter ändern wie im Editor (mehrfach)
  --check WAS                ankreuzen: all, Nummer, Variable oder group=RUBRIK (mehrfach)
  --uncheck WAS              Kreuz entfernen, ebenso
  --answer first | second    Antwort auf die nächste Frage (mehrfach)
  --trace DATEI              jedes Telegramm mit seiner Bedeutung in diese Datei schreiben
  --landscape                Querformat (pages, print)
  --status-path TEXT         Dateipfad in der Fußzeile (pages)
  --date JJJJ-MM-TT          Datum in der Fußzeile oder im Kopf (pages, list)
  --pdf DATEI                wohin gedruckt wird (print)
  --copies N                 Anzahl der Exemplare (print)
  --page N                   nur diese Seite (print)
  --filter TEXT              nur Parameter, in denen alle Wörter vorkommen (list)
  --only WAS,…               nur checked, different, nonstandard, outside (list)
  --against WAS              Vergleich mit standard, controller oder einer Wertedatei (list)
  --format FORMAT            tsv, csv, html oder pdf (list)
  --out DATEI                wohin die Liste geschrieben wird (list)
  --dry-run                  nur zeigen, was geschrieben würde (safe-send, restore)
  --yes                      schreiben, ohne zu fragen (safe-send, restore)
  --repeat N                 bis zu N-mal wiederholen, was nicht geprüft ist (safe-send)
  --ports A,B,…              nur diese Schnittstellen: Nummern oder Geräte (find)
  --addresses A-B            auch alle Adressen von A bis B fragen (find)
  --history DATEI            Datei des Verlaufs statt der eigenen
  --json                     Ausgabe als JSON (versions, plants, params, show, compare
                             und alle Befehle ab list)
  --help                     diese Hilfe
  --program-version          Name und Version des Programms

Rückgabewert: 0 erledigt; 1 erledigt, mit Befund; 2 Eingabe fehlerhaft;
3 Übertragung nicht zustande gekommen oder abgebrochen; 4 Frage unbeantwortet.
)"_s;
}

}  // namespace kalivor::cli
