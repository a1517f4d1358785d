#include "commands/LineSearch.h"

#include <QScopeGuard>
#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "core/Busy.h"
#include "core/DefinitionFiles.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor {

using platform::PortEntry;
using platform::PortState;

namespace {

constexpr QStringView kRates[] = {kSettings9600, kSettings19200};

QStringList RatesOf(const PortEntry& port) {
  if (!port.carriesRate) return {kSettings9600.toString()};
  QStringList rates;
  for (const QStringView rate : kRates)
    rates.append(rate.toString());
  return rates;
}

// The one of the request first, none twice.
std::vector<qint16> AddressesOf(const LineSearchRequest& request) {
  std::vector<qint16> addresses{request.address};
  if (!request.range) return addresses;
  for (int address = request.range->first; address <= request.range->last; ++address) {
    if (address != request.address) addresses.push_back(static_cast<qint16>(address));
  }
  return addresses;
}

/// The plant number of controllers, as the definitions of their versions say; the selected version and its
/// table stay as they are.
class PlantReader {
 public:
  PlantReader(const Core& core, COM_T_frm& host) : core_(core), host_(host) {}

  void Read(FoundController& found) {
    versions_ = static_cast<const VersionTable&>(core_.module);
    const int position = versions_.VersionList.Find(found.version);
    found.known = position >= 0;
    if (!found.known) return;
    versions_.VersionList.Select(position);
    found.plant = Number();
    if (!found.plant) return;
    SelectionList plants;
    FillPlantTypes(plants, versions_.SelectedVersion().Anlagen);
    found.plantName = plants.Text(*found.plant);
  }

 private:
  // Of the controller that is being asked.
  std::optional<int> Number() {
    try {
      const QString address = Address();
      // Without a record of it there is one plant type, as in every transfer.
      if (address.isEmpty()) return 0;
      // Who looks on shall see the words as this version means them.
      host_.Exchanges.NameVersionsOf(versions_);
      const auto restore = qScopeGuard([this] { host_.Exchanges.NameVersionsOf(core_.module); });
      COM_A controller(core_.module, versions_, host_, [](const QString&) {});
      qint16 number = 0;
      if (controller.ReadInt(kSlot, number, address)) return number;
    } catch (const RuntimeError&) {
      // Unreadable definitions, or a reply that is no number.
    }
    return {};
  }

  // Where the selected version has it; throws RuntimeError as the reader of definitions does.
  QString Address() {
    const VersionRecord& version = versions_.SelectedVersion();
    const auto known = addresses_.find(version.Version);
    if (known != addresses_.end()) return known->second;
    const auto table = std::make_unique<ParameterTable>();
    ReadDefinitions(*table, core_.files, DefinitionPath(core_.module, version.DefDatei),
                    HasAddressList(version));
    return addresses_[version.Version] = table->Par[0].VarAdresse;
  }

  const Core& core_;
  COM_T_frm& host_;
  VersionTable versions_;
  std::map<QString, QString> addresses_;  // by version
};

/// The search at one port.
class PortSearch {
 public:
  PortSearch(Core& core, COM_T_frm& host, const LineSearchRequest& request, Progress& progress,
             SearchedPort& searched)
      : core_(core),
        host_(host),
        plants_(core, host),
        rates_(RatesOf(searched.port)),
        addresses_(AddressesOf(request)),
        progress_(progress),
        searched_(searched),
        left_(Exchanges()) {}

  [[nodiscard]] int Exchanges() const {
    return static_cast<int>(addresses_.size()) * static_cast<int>(rates_.size());
  }

  /// False once an abort was requested.
  bool Run() {
    // What will not be asked any more is no part of the remaining time.
    const auto drop = qScopeGuard([this] { progress_.Drop(left_); });
    host_.Exchanges.Settle();
    first_ = host_.Exchanges.Last() + 1;
    last_ = first_ - 1;
    // Nothing of it could stand in for the selected number, which would be asked in its place.
    if (Missing() || NoDevice()) return true;
    for (const qint16 address : addresses_) {
      for (qsizetype rate = 0; rate < rates_.size(); ++rate) {
        if (core_.module.Abbruch != kFalse) return false;
        const Answer answer = Ask(address, rates_.at(rate));
        if (answer == Answer::PortGone) return true;
        if (answer == Answer::None) continue;
        Drop(static_cast<int>(rates_.size() - rate) - 1);
        break;
      }
    }
    return core_.module.Abbruch == kFalse;
  }

  /// What the port without an answer had to say; `now` is what the directory knows of it by now.
  [[nodiscard]] PortFinding Finding(const PortEntry& now) const {
    if (Missing()) return {LineFinding::Missing, now.remark};
    if (NoDevice()) return {LineFinding::NotOpened, now.remark};
    return FindingOf(host_.Exchanges, first_, last_, now);
  }

 private:
  enum class Answer { Version, None, PortGone };

  [[nodiscard]] bool Missing() const { return searched_.port.state == PortState::Missing; }
  [[nodiscard]] bool NoDevice() const { return searched_.port.device.isEmpty(); }

  Answer Ask(qint16 address, const QString& settings) {
    PortRecord& line = host_.Ports[kSlot];
    line.Protokoll = kControllerProtocol;
    line.Adr = address;
    line.PortNr = core_.module.Schnittstelle;
    line.Settings = settings;
    const QString payload = COM_T(host_).Transact(kSlot, u"v00", true);
    host_.Exchanges.Settle();
    last_ = host_.Exchanges.Last();
    const Exchange exchange = host_.Exchanges.Numbered(last_);
    const bool answered = exchange.end == ExchangeEnd::Good;
    if (answered) Take(exchange, payload);
    --left_;
    progress_.Done();
    (void)progress_.GoOn();
    if (answered) return Answer::Version;
    return exchange.end == ExchangeEnd::NoPort ? Answer::PortGone : Answer::None;
  }

  void Take(const Exchange& exchange, const QString& payload) {
    FoundController found;
    if (searched_.port.carriesRate) found.settings = exchange.settings;
    found.address = exchange.address;
    found.version = VersionText(payload);
    found.echo = exchange.received.View().startsWith(exchange.request.View());
    found.answer_ms = qRound(exchange.answer_s * 1000);
    plants_.Read(found);
    host_.Exchanges.Settle();
    searched_.answers.push_back(std::move(found));
  }

  void Drop(int exchanges) {
    left_ -= exchanges;
    progress_.Drop(exchanges);
  }

  Core& core_;
  COM_T_frm& host_;
  PlantReader plants_;
  const QStringList rates_;
  const std::vector<qint16> addresses_;
  Progress& progress_;
  SearchedPort& searched_;
  int left_;          // exchanges that are counted as still to come
  qint64 first_ = 1;  // of this port's exchanges; last_ is the last one that asked for a version
  qint64 last_ = 0;
};

// What the directory knows of the port now, while it stands in for the selected number. One that nobody has
// bound is not missed: why it could not be opened is the port's to say.
PortEntry Looked(platform::PortDirectory& ports, const PortEntry& port) {
  for (const PortEntry& entry : ports.List()) {
    if (entry.device == port.device && entry.state != PortState::Missing) return entry;
  }
  return port;
}

}  // namespace

bool LineSearch::Found() const {
  return std::ranges::any_of(ports, [](const SearchedPort& searched) { return !searched.answers.empty(); });
}

QString PlantText(const FoundController& found) {
  if (!found.plant) return u"unbekannt"_s;
  const QString number = QString::number(*found.plant);
  return found.plantName.isEmpty() ? number : found.plantName + u" ("_s + number + u')';
}

LineSearch SearchLine(Core& core, COM_T_frm& host, platform::PortDirectory& ports,
                      const LineSearchRequest& request, ProgressForm& form) {
  LineSearch search;
  if (core.module.BusyDepth > 0) {
    search.error = u"Es wird noch gearbeitet; gesucht wurde nicht."_s;
    return search;
  }
  const BusyGuard busy(core);
  const auto restore = qScopeGuard([&host, before = host.Ports[kSlot]] { host.Ports[kSlot] = before; });
  Progress progress(core, form, u"Regler suchen"_s);
  for (const PortEntry& port : request.ports)
    search.ports.push_back({port, {}, {}, {}});

  std::vector<std::unique_ptr<PortSearch>> searches;
  int total = 0;
  for (SearchedPort& searched : search.ports) {
    searches.push_back(std::make_unique<PortSearch>(core, host, request, progress, searched));
    total += searches.back()->Exchanges();
  }
  progress.Begin(total);

  const int number = core.module.Schnittstelle;
  for (std::size_t i = 0; i < searches.size() && !search.aborted; ++i) {
    const PortEntry& port = search.ports[i].port;
    // The selected port is the one that is opened anyway.
    std::optional<platform::StandIn> standIn;
    if (port.number != number) standIn.emplace(ports, number, port.device);
    search.aborted = !searches[i]->Run();
    if (search.ports[i].answers.empty()) search.ports[i].finding = searches[i]->Finding(Looked(ports, port));
  }
  for (SearchedPort& searched : search.ports) {
    if (searched.answers.empty()) searched.text = FindingText(searched.finding, request.EveryAddress());
  }
  return search;
}

}  // namespace kalivor
