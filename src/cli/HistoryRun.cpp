#include "cli/HistoryRun.h"

#include <QJsonDocument>
#include <algorithm>

#include "cli/Edits.h"
#include "core/ParameterList.h"
#include "history/Tables.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

using history::Change;
using history::Entry;
using history::Plant;
using history::Store;

QString IdText(const QUuid& id) {
  return id.toString(QUuid::WithoutBraces);
}

// With its offset from UTC: programs read it.
QString TimeText(const QDateTime& time) {
  return time.toString(Qt::ISODate);
}

Row ChangeRow(const Change& change) {
  return {{u"Nr"_s, change.number},         {u"Gruppe"_s, change.group},  {u"Name"_s, change.name},
          {u"Variable"_s, change.variable}, {u"Vorher"_s, change.before}, {u"Nachher"_s, change.after},
          {u"Einheit"_s, change.unit},      {u"Zustand"_s, change.state}};
}

}  // namespace

history::StoreWorld HistoryPlace(const World& world, const Arguments& arguments) {
  history::StoreWorld place = world.historyStore;
  if (arguments.history) place.file = *arguments.history;
  return place;
}

HistoryRun::HistoryRun(World& world, platform::MessageBox& box, const Arguments& arguments)
    : world_(world), box_(box), arguments_(arguments) {}

int HistoryRun::List() {
  Read();
  Table table;
  for (const Entry& entry : Chosen())
    table.push_back(RowOf(entry));
  if (arguments_.json) return Print(QJsonDocument(ToJson(table)).toJson());
  return Print((NamesLine(RowOf({})) + ToText(table)).toUtf8());
}

int HistoryRun::Show() {
  Read();
  const Entry& entry = Named(arguments_.words.first());
  Table changes;
  for (const Change& change : store_->Changes(entry.id))
    changes.push_back(ChangeRow(change));
  RequireRead();
  if (arguments_.save) SaveValues(entry);
  const Row head = RowOf(entry);
  if (arguments_.json) {
    QJsonObject all = ToJson(head);
    all.insert(u"changes"_s, ToJson(changes));
    return Print(QJsonDocument(all).toJson());
  }
  QString text;
  for (const auto& column : head)
    text += ToText(Row{{u"Angabe"_s, column.first}, {u"Wert"_s, column.second}});
  return Print((text + NamesLine(ChangeRow({})) + ToText(changes)).toUtf8());
}

int HistoryRun::Export() {
  Read();
  const ListTable table = history::EntriesTable(Chosen(), plants_, remarks_);
  const QByteArray text = arguments_.format == ListFormat::Html ? HtmlOf(table) : CsvOf(table);
  if (!arguments_.out) return Print(text);
  const QString error = world_.files.Replace(*arguments_.out, text);
  if (error.isEmpty()) return kDone;
  throw BadInput{u"Fehler beim schreiben von | "_s + *arguments_.out + u" | "_s + error};
}

int HistoryRun::Check() {
  Open();
  const QStringList faults = store_->Check();
  if (arguments_.json) {
    Print(QJsonDocument(QJsonArray::fromStringList(faults)).toJson());
  } else {
    for (const QString& fault : faults)
      Print((fault + u'\n').toUtf8());
  }
  return faults.isEmpty() ? kDone : kFindings;
}

void HistoryRun::Open() {
  const history::StoreWorld place = HistoryPlace(world_, arguments_);
  Store::Opened opened = Store::Open(place, history::Access::Read);
  if (!opened.note.isEmpty()) box_.Show(opened.note);
  if (!opened.store && opened.note.isEmpty()) box_.Show(u"Es gibt noch keinen Verlauf:\r\n"_s + place.file);
  if (!opened.store) throw BadInput{};
  store_ = std::move(opened.store);
}

void HistoryRun::Read() {
  Open();
  plants_ = store_->Plants();
  RequireRead();
  entries_ = store_->Entries();
  RequireRead();
  remarks_ = store_->Remarks();
  RequireRead();
}

void HistoryRun::RequireRead() {
  if (store_->Failure().isEmpty()) return;
  box_.Show(store_->Failure());
  throw BadInput{};
}

std::vector<Entry> HistoryRun::Chosen() {
  history::EntryFilter filter;
  filter.kind = arguments_.kind;
  filter.technician = arguments_.technician.value_or(QString());
  filter.from = arguments_.from.value_or(QDate());
  filter.to = arguments_.to.value_or(QDate());
  filter.words = SearchWords(arguments_.filter.value_or(QString()));
  if (arguments_.parameter) {
    const std::vector<QUuid> with = store_->EntriesWith(*arguments_.parameter);
    RequireRead();
    filter.entries = QSet<QUuid>(with.begin(), with.end());
  }
  const std::optional<QSet<QUuid>> plants =
      arguments_.plantName ? std::optional(PlantsNamed(*arguments_.plantName)) : std::nullopt;
  const std::vector<QString> texts = history::SearchedTexts(entries_, plants_, remarks_);
  std::vector<Entry> chosen;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Entry& entry = entries_[i];
    if ((!plants || plants->contains(entry.plant)) && Shows(filter, entry, texts[i])) chosen.push_back(entry);
  }
  return chosen;
}

// Several may have the same name; "" stands for no plant.
QSet<QUuid> HistoryRun::PlantsNamed(const QString& name) const {
  QSet<QUuid> ids;
  if (name.isEmpty()) ids.insert(QUuid());
  for (const Plant& plant : plants_)
    if (Folded(plant.name) == Folded(name)) ids.insert(plant.id);
  if (ids.isEmpty()) throw BadInput{u"Unbekannte Anlage: "_s + name};
  return ids;
}

const Entry& HistoryRun::Named(const QString& beginning) const {
  const auto is = [&beginning](const Entry& entry) {
    return IdText(entry.id).startsWith(beginning, Qt::CaseInsensitive);
  };
  const auto entry = std::ranges::find_if(entries_, is);
  if (entry == entries_.end()) throw BadInput{u"Unbekannter Eintrag: "_s + beginning};
  if (std::ranges::count_if(entries_, is) > 1)
    throw BadInput{u"Mehrere Einträge beginnen so: "_s + beginning};
  return *entry;
}

Row HistoryRun::RowOf(const Entry& entry) const {
  return {{u"Eintrag"_s, IdText(entry.id)},
          {u"Zeit"_s, TimeText(entry.stamp.time)},
          {u"Anlage"_s, history::PlantName(plants_, entry.plant)},
          {u"Art"_s, history::KindText(entry.kind)},
          {u"Techniker"_s, entry.stamp.technician},
          {u"Version"_s, entry.version},
          {u"Anlageart"_s, entry.plantType},
          {u"Adresse"_s, entry.address},
          {u"Ergebnis"_s, entry.outcome},
          {u"Geändert"_s, entry.changes},
          {u"Bemerkung"_s, RemarksText(entry, remarks_)},
          {u"PC"_s, entry.pc},
          {u"Schnittstelle"_s, entry.port},
          {u"Leitung"_s, entry.quality},
          {u"Programm"_s, entry.program}};
}

void HistoryRun::SaveValues(const Entry& entry) {
  const QByteArray image = store_->Image(entry.set);
  if (image.isEmpty()) throw BadInput{u"Zu diesem Eintrag gibt es keine Werte, oder sie sind beschädigt."_s};
  const QString error = world_.files.Replace(*arguments_.save, image);
  if (!error.isEmpty())
    throw BadInput{u"Fehler beim schreiben von | "_s + *arguments_.save + u" | "_s + error};
}

int HistoryRun::Print(const QByteArray& text) {
  world_.out << text.toStdString();
  return kDone;
}

}  // namespace kalivor::cli
