#include "cli/FindRun.h"

#include <QJsonDocument>

#include "cli/Output.h"
#include "cli/TextForms.h"
#include "commands/PortCommands.h"
#include "platform/PortBinding.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

using platform::PortEntry;

// What the user calls a port: a number or a device.
PortEntry NamedPort(platform::PortDirectory& ports, const QString& name) {
  bool isNumber = false;
  const int number = name.toInt(&isNumber);
  for (const PortEntry& entry : ports.List()) {
    if (isNumber ? entry.number == number : entry.device == name) return entry;
  }
  PortEntry entry;
  if (isNumber) {
    entry.number = number;
    entry.device = ports.Device(number);
    if (entry.device.isEmpty()) entry.remark = u"Eine Schnittstelle mit dieser Nummer gibt es nicht."_s;
  } else {
    entry.device = name;
  }
  entry.carriesRate = platform::CarriesRate(entry.device);
  return entry;
}

QList<PortEntry> PortsOf(platform::PortDirectory& ports, const Arguments& arguments) {
  QStringList names = arguments.ports;
  if (names.isEmpty() && arguments.port) names.append(*arguments.port);
  if (names.isEmpty()) return ports.List();
  QList<PortEntry> entries;
  for (const QString& name : names)
    entries.append(NamedPort(ports, name));
  return entries;
}

QString NameOf(const PortEntry& port) {
  return port.device.isEmpty() ? u"COM%1"_s.arg(port.number) : port.device;
}

Row AnswerRow(const PortEntry& port, const FoundController& found) {
  const QString rate = RateOf(found.settings);
  return {{u"Schnittstelle"_s, NameOf(port)},
          {u"Rate"_s, rate.isEmpty() ? QJsonValue(u"-"_s) : QJsonValue(rate.toInt())},
          {u"Adresse"_s, found.address},
          {u"Version"_s, found.version},
          {u"Versionstabelle"_s, found.known ? u"bekannt"_s : u"unbekannt"_s},
          {u"Anlagennummer"_s, found.plant ? QJsonValue(*found.plant) : QJsonValue(u"unbekannt"_s)},
          {u"Echo"_s, found.echo ? u"ja"_s : u"nein"_s},
          {u"Millisekunden"_s, found.answer_ms}};
}

QJsonObject JsonOf(const LineSearch& search) {
  QJsonArray ports;
  for (const SearchedPort& searched : search.ports) {
    QJsonArray answers;
    for (const FoundController& found : searched.answers) {
      QJsonObject answer = ToJson(AnswerRow(searched.port, found));
      answer.insert(u"Anlageart"_s, found.plantName);
      answers.append(answer);
    }
    QJsonObject port{{u"port"_s, NameOf(searched.port)},
                     {u"number"_s, searched.port.number},
                     {u"description"_s, searched.port.description},
                     {u"serialNumber"_s, searched.port.serialNumber},
                     {u"place"_s, searched.port.place},
                     {u"answers"_s, answers}};
    if (searched.answers.empty()) {
      port.insert(u"finding"_s, FindingName(searched.finding.kind));
      port.insert(u"text"_s, searched.text);
    }
    ports.append(port);
  }
  return {{u"ports"_s, ports}, {u"aborted"_s, search.aborted}};
}

}  // namespace

int RunFind(Core& core, COM_T_frm& host, World& world, const Arguments& arguments) {
  LineSearchRequest request{PortsOf(world.ports, arguments), core.module.Adresse, {}};
  if (arguments.addresses) {
    request.range = {static_cast<qint16>(arguments.addresses->first),
                     static_cast<qint16>(arguments.addresses->second)};
  }
  NoProgress progress;
  const LineSearch search = SearchLine(core, host, world.ports, request, progress);
  if (arguments.json) {
    world.out << QJsonDocument(JsonOf(search)).toJson().toStdString();
  }
  for (const SearchedPort& searched : search.ports) {
    if (!arguments.json) {
      for (const FoundController& found : searched.answers)
        world.out << ToText(AnswerRow(searched.port, found)).toStdString();
    }
    if (searched.answers.empty()) core.box.Show(NameOf(searched.port) + u": "_s + searched.text);
  }
  if (search.ports.empty()) core.box.Show(NoPortsText());
  if (search.aborted) core.box.Show(u"Die Suche wurde abgebrochen."_s);
  return search.Found() && !search.aborted ? kDone : kNoTransfer;
}

}  // namespace kalivor::cli
