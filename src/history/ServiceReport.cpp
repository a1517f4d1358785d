#include "history/ServiceReport.h"

#include <QHash>
#include <algorithm>
#include <iterator>
#include <utility>

#include "core/ValueSets.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr QStringView kTimeFormat = u"dd.MM.yyyy HH:mm";
constexpr QStringView kDateFormat = u"dd.MM.yyyy";

// In the order in which the values are put together below.
constexpr QStringView kControllerTexts[] = {u"version", u"anlageart", u"adresse"};
constexpr QStringView kValueTexts[] = {u"regler",   u"nr",      u"gruppe",      u"name",
                                       u"variable", u"einheit", u"vorgefunden", u"hinterlassen"};
constexpr QStringView kChangeTexts[] = {u"zeit",     u"vorgang", u"regler", u"nr",      u"gruppe", u"name",
                                        u"variable", u"einheit", u"vorher", u"nachher", u"zustand"};
constexpr QStringView kRemarkTexts[] = {u"zeit", u"techniker", u"text"};
constexpr QStringView kEntryTexts[] = {u"zeit",      u"vorgang", u"ergebnis",      u"techniker", u"version",
                                       u"anlageart", u"adresse", u"schnittstelle", u"leitung",   u"notiz"};
constexpr TemplateList kEntryLists[] = {{u"aenderungen", {kChangeTexts}}, {u"bemerkungen", {kRemarkTexts}}};
constexpr QStringView kTexts[] = {u"titel",      u"bemerkung", u"briefkopf", u"briefbild",
                                  u"bildbreite", u"bildhoehe", u"anlage",    u"ort",
                                  u"zuranlage",  u"techniker", u"datum"};
constexpr TemplateList kLists[] = {{u"regler", {kControllerTexts}},
                                   {u"werte", {kValueTexts}},
                                   {u"aenderungen", {kChangeTexts}},
                                   {u"bemerkungen", {kRemarkTexts}},
                                   {u"eintraege", {kEntryTexts, kEntryLists}}};
constexpr TemplateScope kScope{kTexts, kLists};

using Entries = std::vector<const ServiceEntry*>;

Entries InOrder(const ServiceVisit& visit) {
  Entries entries;
  for (const ServiceEntry& entry : visit.entries)
    entries.push_back(&entry);
  std::ranges::stable_sort(entries, {}, [](const ServiceEntry* each) { return each->entry.stamp.moment_ms; });
  return entries;
}

bool Observes(DeedKind kind) {
  return kind == DeedKind::Received || kind == DeedKind::Compared;
}

// What differs in a comparison has not changed, and what is loaded changes the PC's table alone.
bool Changes(DeedKind kind) {
  return ConcernsController(kind) && kind != DeedKind::Compared;
}

QString ControllerText(const Entry& entry) {
  return u"%1, Adresse %2"_s.arg(entry.version).arg(entry.address);
}

// Each once, in the order in which they came.
QStringList Controllers(const Entries& entries) {
  QStringList controllers;
  for (const ServiceEntry* each : entries) {
    if (ConcernsController(each->entry.kind)) controllers << ControllerText(each->entry);
  }
  controllers.removeDuplicates();
  return controllers;
}

std::vector<TemplateRow> ControllerRows(const Entries& entries) {
  std::vector<TemplateRow> rows;
  for (const ServiceEntry* each : entries) {
    const Entry& entry = each->entry;
    const QStringList texts{entry.version, entry.plantType, QString::number(entry.address)};
    const bool known = std::ranges::any_of(rows, [&](const TemplateRow& row) { return row.texts == texts; });
    if (ConcernsController(entry.kind) && !known) rows.push_back({texts});
  }
  return rows;
}

QString Technicians(const Entries& entries) {
  QStringList names;
  for (const ServiceEntry* each : entries) {
    const QString& name = each->entry.stamp.technician;
    if (!name.isEmpty()) names << name;
  }
  names.removeDuplicates();
  return names.join(u", "_s);
}

// "21.11.2026", or both ends where there are several days.
QString Days(const Entries& entries) {
  if (entries.empty()) return {};
  const QString first = entries.front()->entry.stamp.time.toString(kDateFormat);
  const QString last = entries.back()->entry.stamp.time.toString(kDateFormat);
  return first == last ? first : first + u" – "_s + last;
}

QString TimeText(const Stamp& stamp) {
  return stamp.time.toString(kTimeFormat);
}

// Which controller it was is said only where there are several.
std::vector<TemplateRow> ChangeRows(const ServiceEntry& entry, bool several) {
  std::vector<TemplateRow> rows;
  rows.reserve(entry.changes.size());
  for (const Change& change : entry.changes) {
    rows.push_back(
        {{TimeText(entry.entry.stamp), KindText(entry.entry.kind),
          several ? ControllerText(entry.entry) : QString(), QString::number(change.number), change.group,
          change.name, change.variable, change.unit, change.before, change.after, change.state}});
  }
  return rows;
}

std::vector<TemplateRow> RemarkRows(const std::vector<Remark>& remarks) {
  std::vector<TemplateRow> rows;
  rows.reserve(remarks.size());
  for (const Remark& remark : remarks)
    rows.push_back({{TimeText(remark.stamp), remark.stamp.technician, remark.text}});
  return rows;
}

std::vector<TemplateRow> EntryRows(const Entries& entries, bool several) {
  std::vector<TemplateRow> rows;
  for (const ServiceEntry* each : entries) {
    const Entry& entry = each->entry;
    rows.push_back(
        {{TimeText(entry.stamp), KindText(entry.kind), entry.outcome, entry.stamp.technician, entry.version,
          entry.plantType, QString::number(entry.address), entry.port, entry.quality, entry.remark},
         {ChangeRows(*each, several), RemarkRows(each->remarks)}});
  }
  return rows;
}

// A value that was sent, and of which it is not known that the controller holds it.
QString LeftText(const FoundAndLeft& value) {
  if (value.state.isEmpty() || value.state == u"geprüft") return value.left;
  return value.left.isEmpty() ? value.state : u"%1 (%2)"_s.arg(value.left, value.state);
}

std::vector<TemplateRow> ValueRows(const ServiceVisit& visit, bool several) {
  std::vector<TemplateRow> rows;
  for (const FoundAndLeft& value : FoundAndLeftValues(visit)) {
    const Change& parameter = value.parameter;
    rows.push_back(
        {{several ? value.controller : QString(), QString::number(parameter.number), parameter.group,
          parameter.name, parameter.variable, parameter.unit, value.found, LeftText(value)}});
  }
  return rows;
}

}  // namespace

std::vector<FoundAndLeft> FoundAndLeftValues(const ServiceVisit& visit) {
  std::vector<FoundAndLeft> values;
  QHash<QStringList, std::size_t> places;
  for (const ServiceEntry* each : InOrder(visit)) {
    const Entry& entry = each->entry;
    if (!ConcernsController(entry.kind)) continue;
    const QString controller = ControllerText(entry);
    const bool observes = Observes(entry.kind);
    for (const Change& change : each->changes) {
      // Something that was not read, for example, tells nothing of the controller.
      const bool read = change.state.isEmpty() || change.state == DifferenceText(Difference::Different);
      if (observes && !read) continue;
      const QString state = observes ? QString() : change.state;
      const QStringList key{controller, change.variable, change.address, QString::number(change.number)};
      const auto place = places.constFind(key);
      if (place == places.constEnd()) {
        places.insert(key, values.size());
        values.push_back({controller, change, observes ? change.after : change.before, change.after, state});
      } else {
        values[*place].left = change.after;
        values[*place].state = state;
      }
    }
  }
  return values;
}

const TemplateScope& ServiceScope() {
  return kScope;
}

TemplateRow ServiceValues(const ServiceVisit& visit, const ServiceTexts& texts) {
  const Entries entries = InOrder(visit);
  const bool several = Controllers(entries).size() > 1;
  std::vector<TemplateRow> changes;
  std::vector<Remark> remarks;
  for (const ServiceEntry* each : entries) {
    if (Changes(each->entry.kind)) std::ranges::move(ChangeRows(*each, several), std::back_inserter(changes));
    std::ranges::copy(each->remarks, std::back_inserter(remarks));
  }
  std::ranges::stable_sort(remarks, {}, [](const Remark& each) { return each.stamp.moment_ms; });
  return {{texts.title, texts.remark, texts.letterhead, texts.picture, QString::number(texts.pictureWidth),
           QString::number(texts.pictureHeight), visit.plant.name, visit.plant.place, visit.plant.remark,
           Technicians(entries), Days(entries)},
          {ControllerRows(entries), ValueRows(visit, several), std::move(changes), RemarkRows(remarks),
           EntryRows(entries, several)}};
}

}  // namespace kalivor::history
