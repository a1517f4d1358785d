#include "kalivor/DemoHistory.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "core/SafeTransfer.h"
#include "history/Store.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

/// A value that a visit leaves, as it is stored.
struct Left {
  QStringView variable;
  qint32 number = 0;
};

/// What somebody has done, so many days ago.
struct Visit {
  int daysAgo;
  int hour;
  QStringView technician;
  DeedKind kind;
  std::span<const Left> left = {};  ///< with it the controller, where the kind changes that
  QStringView remark = {};
  std::size_t plant = 0;  ///< in kPlants
};

/// Each with a controller of its own.
struct VisitedPlant {
  QStringView name;
  QStringView place;
  int address = 0;
};
constexpr std::array kPlants{VisitedPlant{u"Ärztehaus Nordflügel", u"Heizzentrale Haus 01", 1},
                             VisitedPlant{u"Turnhalle Seematt", u"Untergeschoss", 2}};

constexpr QStringView kKeller = u"R. Keller";
constexpr QStringView kBrunner = u"S. Brunner";

constexpr Left kFirst[] = {
    {u"_Hk1KurveSteil", 150}, {u"_Hk2VorlaufMax", 480}, {u"_WwSollTag", 560}, {u"_KesselMax", 780}};
constexpr Left kFirstWinter[] = {{u"_Hk1RaumSollTag", 220}, {u"_Hk1KurveSteil", 155}};
constexpr Left kColdSpell[] = {{u"_Hk1RaumSollTag", 230}, {u"_Hk1KurveSteil", 165}, {u"_Hk2VorlaufMax", 500}};
constexpr Left kMarch[] = {{u"_Hk1RaumSollTag", 215}, {u"_Hk1RaumSollNacht", 165}, {u"_WwZirkLaufzeit", 20}};
constexpr Left kSummer[] = {{u"_SommerGrenze", 160}, {u"_WwSollTag", 550}};
constexpr Left kFilter[] = {{u"_ZulFilterGrenze", 180}, {u"_ZulStromStufe2", 2600}};
constexpr Left kAutumn[] = {{u"_Hk1RaumSollTag", 225}, {u"_Hk1KurveSteil", 158}, {u"_KesselMax", 800}};
constexpr Left kComplaint[] = {{u"_Hk1RaumSollTag", 235}, {u"_Hk2VorlaufMax", 520}};
constexpr Left kBack[] = {{u"_Hk1RaumSollTag", 225}, {u"_Hk1RaumSollNacht", 170}, {u"_WwZirkLaufzeit", 15}};
constexpr Left kSecondSummer[] = {
    {u"_SommerGrenze", 180}, {u"_ZulFilterGrenze", 150}, {u"_ZulStromStufe2", 2400}};
constexpr Left kHall[] = {{u"_ZulStromStufe1", 1000}, {u"_AblStromStufe1", 950}};
constexpr Left kLast[] = {{u"_Hk1KurveSteil", 160}};

constexpr std::array kVisits{
    Visit{729, 9, kKeller, DeedKind::Received, {}, u"Inbetriebnahme, Auslieferungszustand"},
    Visit{729, 11, kKeller, DeedKind::SentSafely, kFirst},
    Visit{729, 11, kKeller, DeedKind::Saved},
    Visit{694, 8, kKeller, DeedKind::Received},
    Visit{694, 9, kKeller, DeedKind::SentSafely, kFirstWinter, u"Büros im Nordflügel zu kühl"},
    Visit{662, 14, kBrunner, DeedKind::SentSafely, kColdSpell,
          u"Kälteperiode, auf Wunsch des Hauswarts angehoben"},
    Visit{615, 10, kBrunner, DeedKind::Received},
    Visit{615, 10, kBrunner, DeedKind::SentSafely, kMarch, u"Nach der Kälteperiode zurückgenommen"},
    Visit{560, 13, kKeller, DeedKind::Compared},
    Visit{521, 9, kKeller, DeedKind::SentSafely, kSummer, u"Sommerbetrieb"},
    Visit{470, 15, kBrunner, DeedKind::Received},
    Visit{470, 16, kBrunner, DeedKind::SentSafely, kFilter, u"Filter der Zuluft ersetzt"},
    Visit{402, 8, kKeller, DeedKind::Received},
    Visit{402, 9, kKeller, DeedKind::SentSafely, kAutumn, u"Herbstwartung"},
    Visit{402, 10, kKeller, DeedKind::Saved},
    Visit{331, 7, kBrunner, DeedKind::SentSafely, kComplaint,
          u"Reklamation 2. Stock, Ventil im Verteiler klemmte"},
    Visit{298, 11, kKeller, DeedKind::Received},
    Visit{298, 11, kKeller, DeedKind::SentSafely, kBack, u"Ventil ersetzt, Sollwerte wieder wie im Herbst"},
    Visit{241, 14, kKeller, DeedKind::Received, {}, u"Wartungsvertrag übernommen", 1},
    Visit{241, 15, kKeller, DeedKind::SentSafely, kHall, u"Lüftung zu laut", 1},
    Visit{180, 9, kBrunner, DeedKind::Compared},
    Visit{152, 10, kBrunner, DeedKind::SentSafely, kSecondSummer, u"Lüftung neu eingemessen"},
    Visit{61, 8, kKeller, DeedKind::Received},
    Visit{61, 9, kKeller, DeedKind::SentSafely, kLast, u"Herbstwartung"},
    Visit{12, 13, kBrunner, DeedKind::Compared},
};

int IndexOf(const ParameterTable& table, QStringView variable) {
  int index = table.ParCount - 1;
  while (index > 0 && table.Par[index].Variable != variable)
    --index;
  return index;
}

/// The controllers through the years.
class Years {
 public:
  Years(const QString& file, const Module1& module, const QDateTime& now)
      : module_(module), now_(now), clock_(now), tables_(kPlants.size(), module) {
    for (ParameterTable& table : tables_) {
      for (int i = 1; i < table.ParCount; ++i)
        table.SetValue(i, {table.Par[i].Standard, table.Par[i].StandardText}, ValueSource::Standard);
    }
    history::StoreWorld world{file, QStringLiteral(KALIVOR_VERSION), kComputer};
    world.now = [this] { return clock_; };
    store_ = history::Store::Open(world, history::Access::Write).store;
  }

  /// Returns the first plant; null where something could not be written.
  [[nodiscard]] QUuid Write() {
    if (!store_) return {};
    clock_ = TimeOf(kVisits.front());
    for (const VisitedPlant& each : kPlants) {
      history::Plant plant{{}, each.name.toString(), each.place.toString(), {}};
      if (!store_->Describe(plant, kKeller.toString()).isEmpty()) return {};
      plants_.push_back(plant.id);
    }
    const bool all = std::ranges::all_of(kVisits, [this](const Visit& visit) { return Add(visit); });
    return all ? plants_.front() : QUuid();
  }

 private:
  bool Add(const Visit& visit) {
    clock_ = TimeOf(visit);
    ParameterTable& table = tables_[visit.plant];
    history::Observation observation{EntryOf(visit), {}, {}};
    for (int i = 1; i < table.ParCount; ++i)
      observation.values.push_back({i, history::ConcernsController(visit.kind)});
    for (const Left& left : visit.left) {
      const int index = IndexOf(table, left.variable);
      if (index == 0) continue;
      history::ObservedValue& value = observation.values[static_cast<std::size_t>(index - 1)];
      value.before = {table.Par[index].Wert, {}};
      value.state = SafeStateText(SafeState::Verified);
      table.SetNumber(index, left.number, ValueSource::Edited);
    }
    observation.table = std::make_shared<const ParameterTable>(table);
    if (!store_->Add(observation).isEmpty()) return false;
    if (visit.remark.isEmpty()) return true;
    const QUuid entry = store_->Entries().front().id;
    return store_->AddRemark(entry, visit.remark.toString(), visit.technician.toString()).isEmpty();
  }

  [[nodiscard]] QDateTime TimeOf(const Visit& visit) const {
    return {now_.date().addDays(-visit.daysAgo), QTime(visit.hour, (visit.daysAgo * 7) % 60)};
  }

  [[nodiscard]] history::Entry EntryOf(const Visit& visit) const {
    history::Entry entry;
    entry.stamp = {0, clock_, visit.technician.toString()};
    entry.plant = plants_[visit.plant];
    entry.pc = kComputer;
    entry.version = module_.VersionList.SelectedText();
    entry.plantType = module_.PlantTypeList.SelectedText();
    entry.address = kPlants[visit.plant].address;
    entry.program = QStringLiteral(KALIVOR_VERSION);
    entry.kind = visit.kind;
    entry.outcome =
        visit.left.empty() ? u"%1 Werte"_s.arg(module_.ParCount - 1) : u"%1 geprüft"_s.arg(visit.left.size());
    if (history::ConcernsController(visit.kind)) entry.port = u"COM1"_s;
    return entry;
  }

  const QString kComputer = u"SERVICE-2"_s;
  const Module1& module_;
  QDateTime now_;
  QDateTime clock_;
  std::vector<ParameterTable> tables_;  // what the controller of each plant holds
  std::vector<QUuid> plants_;
  std::unique_ptr<history::Store> store_;
};

}  // namespace

QUuid WriteDemoHistory(const QString& file, const Module1& module, const QDateTime& now) {
  return Years(file, module, now).Write();
}

ValueFileContent DemoValues() {
  std::map<QStringView, qint32> left;
  for (const Visit& visit : kVisits) {
    if (visit.plant != 0) continue;
    for (const Left& value : visit.left)
      left[value.variable] = value.number;
  }
  ValueFileContent values;
  for (const auto& [variable, number] : left)
    values.records.push_back({number, {}, variable.toString(), {}});
  return values;
}

}  // namespace kalivor
