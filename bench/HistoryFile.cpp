#include "HistoryFile.h"

#include <algorithm>
#include <ctime>
#include <random>

#include "history/Store.h"

using namespace Qt::StringLiterals;

namespace kalivor::bench {
namespace {

constexpr int kGroups = 40;
constexpr int kCurve = 17;  // the parameter that always changes

std::shared_ptr<ParameterTable> Definitions() {
  auto table = std::make_shared<ParameterTable>();
  table->ParCount = static_cast<qint16>(kHistoryParameters + 1);
  for (int i = 1; i <= kHistoryParameters; ++i) {
    ParameterRecord& record = table->Par[i];
    record.Rubrik = u"Regelkreis %1"_s.arg(i % kGroups);
    record.Name = u"Sollwert Vorlauf %1"_s.arg(i);
    record.Variable = u"SollVorl%1"_s.arg(i);
    record.VarAdresse = QString::number(2 * i, 16).toUpper().rightJustified(4, u'0');
    record.Typ = u"int"_s;
    record.Einheit = u"°C"_s;
    record.Zahl1 = 1;
    record.Wert = i % 900;
  }
  return table;
}

void Require(const QString& failure) {
  if (failure.isEmpty()) return;
  qCritical("%s", qPrintable(failure));
  std::abort();
}

}  // namespace

QString CurveVariable() {
  return Definitions()->Par[kCurve].Variable;
}

QString CurveAddress() {
  return Definitions()->Par[kCurve].VarAdresse;
}

HistoryAdded AddHistory(const QString& file, int entries) {
  using namespace history;
  QDateTime time(QDate(2020, 1, 7), QTime(8, 0), Qt::OffsetFromUTC, 3600);
  Store::Opened opened = Store::Open({file, u"1.0"_s, u"PC-7"_s, [&] { return time; }}, Access::Write);
  Require(opened.note);
  Store& store = *opened.store;
  std::mt19937 random(1);
  std::vector<Plant> plants(kHistoryPlants);
  for (std::size_t i = 0; i < plants.size(); ++i) {
    plants[i].name = u"Heizwerk %1"_s.arg(i + 1);
    plants[i].place = u"Ort %1"_s.arg(i % 9);
    Require(store.Describe(plants[i], u"Meier"_s));
  }
  std::vector<std::shared_ptr<ParameterTable>> tables;
  for (std::size_t i = 0; i < plants.size(); ++i)
    tables.push_back(Definitions());

  HistoryAdded added;
  for (int i = 0; i < entries; ++i) {
    time = time.addSecs(9000);
    // Half of all concern the first plant, so that its curve is long.
    const std::size_t at = i % 2 == 0 ? 0 : random() % plants.size();
    Observation observation;
    observation.entry.plant = plants[at].id;
    observation.entry.kind = i % 3 == 0 ? DeedKind::Received : DeedKind::SentSafely;
    observation.entry.stamp.technician = i % 5 == 0 ? u"Huber"_s : u"Meier"_s;
    observation.entry.pc = u"PC-7"_s;
    observation.entry.version = u"AB1-12%1.4"_s.arg(at % 3);
    observation.entry.plantType = u"Fernwärme"_s;
    observation.entry.address = static_cast<int>(at % 4);
    observation.entry.port = u"COM1 (/dev/ttyUSB0)"_s;
    observation.entry.program = u"1.0"_s;
    observation.entry.outcome = u"1999 Werte"_s;
    observation.entry.quality = u"2004 Telegramme, 3 wiederholt, 0 beschädigt"_s;
    ParameterTable& table = *tables[at];
    table.SetNumber(kCurve, (table.Par[kCurve].Wert + 1) % 900, ValueSource::Received);
    const int others = i % 20 == 0 ? 199 : 9;
    for (int change = 0; change < others; ++change) {
      const int index = 100 + static_cast<int>(random() % 1800);
      table.SetNumber(index, static_cast<qint32>(random() % 900), ValueSource::Received);
    }
    observation.table = tables[at];
    observation.values.reserve(kHistoryParameters);
    for (int index = 1; index <= kHistoryParameters; ++index)
      observation.values.push_back({index, true, {}, {}});
    const std::clock_t begin = std::clock();
    Require(store.Add(observation));
    const double took_ms = static_cast<double>(std::clock() - begin) * 1000 / CLOCKS_PER_SEC;
    added.add_ms += took_ms / entries;
    added.longestAdd_ms = std::max(added.longestAdd_ms, took_ms);
  }
  for (const Entry& entry : store.Entries())
    added.changes += entry.changes;
  return added;
}

}  // namespace kalivor::bench
