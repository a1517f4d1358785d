#include "history/Tables.h"

#include <QHash>
#include <algorithm>

#include "core/ParameterTypes.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

QString LaterRemark(const Remark& remark) {
  const QString& who = remark.stamp.technician;
  return ShownTime(remark.stamp.time) + (who.isEmpty() ? QString() : u' ' + who) + u": "_s + remark.text;
}

TableCell Text(const QString& text) {
  return {text};
}

TableCell Number(int number) {
  return {QString::number(number), true};
}

TableCell Value(const Change& change, const QString& text) {
  return {text, !text.isEmpty() && TypeOf(change.type).kind != ValueKind::Text};
}

}  // namespace

QString ShownTime(const QDateTime& time) {
  return time.toString(u"dd.MM.yyyy HH:mm:ss"_s);
}

QString PlantName(std::span<const Plant> plants, const QUuid& id) {
  const auto plant = std::ranges::find(plants, id, &Plant::id);
  return plant == plants.end() ? QString() : plant->name;
}

QString RemarksText(const Entry& entry, std::span<const Remark> remarks) {
  QStringList lines;
  if (!entry.remark.isEmpty()) lines << entry.remark;
  for (const Remark& remark : remarks)
    if (remark.entry == entry.id) lines << LaterRemark(remark);
  return lines.join(u'\n');
}

ListTable EntriesTable(std::span<const Entry> entries, std::span<const Plant> plants,
                       std::span<const Remark> remarks) {
  QHash<QUuid, QString> names;
  for (const Plant& plant : plants)
    names.insert(plant.id, plant.name);
  QHash<QUuid, std::vector<Remark>> later;
  for (const Remark& remark : remarks)
    later[remark.entry].push_back(remark);
  ListTable table;
  table.titles = {u"Zeit"_s,      u"Anlage"_s,        u"Art"_s,      u"Techniker"_s, u"Version"_s,
                  u"Anlageart"_s, u"Adresse"_s,       u"Ergebnis"_s, u"Geändert"_s,  u"Bemerkung"_s,
                  u"PC"_s,        u"Schnittstelle"_s, u"Leitung"_s,  u"Programm"_s,  u"Eintrag"_s};
  table.rows.reserve(entries.size());
  for (const Entry& entry : entries)
    table.rows.push_back({Text(ShownTime(entry.stamp.time)), Text(names.value(entry.plant)),
                          Text(KindText(entry.kind)), Text(entry.stamp.technician), Text(entry.version),
                          Text(entry.plantType), Number(entry.address), Text(entry.outcome),
                          Number(entry.changes), Text(RemarksText(entry, later.value(entry.id))),
                          Text(entry.pc), Text(entry.port), Text(entry.quality), Text(entry.program),
                          Text(entry.id.toString(QUuid::WithoutBraces))});
  return table;
}

ListTable ChangesTable(const Entry& entry, std::span<const Plant> plants, std::span<const Change> changes,
                       std::span<const Remark> remarks) {
  ListTable table;
  const auto say = [&table](const QString& what, const QString& text) {
    if (!text.isEmpty()) table.heading << what + u": "_s + text;
  };
  table.heading << u"Verlauf: "_s + KindText(entry.kind) + u", "_s + ShownTime(entry.stamp.time);
  say(u"Anlage"_s, PlantName(plants, entry.plant));
  say(u"Techniker"_s, entry.stamp.technician);
  say(u"Reglerversion"_s, entry.version);
  say(u"Anlageart"_s, entry.plantType);
  say(u"Geräteadresse"_s, QString::number(entry.address));
  say(u"Ergebnis"_s, entry.outcome);
  say(u"Leitung"_s, entry.quality);
  for (const QString& remark : RemarksText(entry, remarks).split(u'\n', Qt::SkipEmptyParts))
    say(u"Bemerkung"_s, remark);
  table.titles = {u"Nr"_s,      u"Gruppe"_s,  u"Name"_s,    u"Variable"_s, u"Vorher"_s,
                  u"Nachher"_s, u"Einheit"_s, u"Zustand"_s, u"Adresse"_s,  u"Typ"_s};
  table.rows.reserve(changes.size());
  for (const Change& change : changes)
    table.rows.push_back({Number(change.number), Text(change.group), Text(change.name), Text(change.variable),
                          Value(change, change.before), Value(change, change.after), Text(change.unit),
                          Text(change.state), Text(change.address), Text(change.type)});
  return table;
}

}  // namespace kalivor::history
