#include "history/Recorder.h"

#include <exception>
#include <utility>

#include "core/LineHint.h"
#include "history/DeedObservation.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {

using Listener = Observer<const Deed&>::Function;

Recorder::Recorder(RecorderWorld world) : world_(std::move(world)) {}

Recorder::~Recorder() {
  world_.core.OnDeed = Listener();
}

void Recorder::Use(const HistorySettings& settings) {
  settings_ = settings;
  world_.core.OnDeed =
      settings.keeps && Works() ? Listener([this](const Deed& deed) { Record(deed); }) : Listener();
}

Writer& Recorder::GetWriter() {
  if (!writer_) writer_ = std::make_unique<Writer>(world_.store, world_.onFailure);
  return *writer_;
}

void Recorder::Settle(int longest_ms) {
  if (writer_) (void)writer_->Settle(longest_ms);
}

void Recorder::Record(const Deed& deed) noexcept {
  try {
    std::optional<Observation> observation = ObservationOf(deed, world_.core.module);
    if (!observation) return;
    TakeHead(observation->entry);
    GetWriter().Add(*std::move(observation));
  } catch (const std::exception&) {
    // The memory is used up, or the system has no thread left: the deed is done all the same.
    world_.onFailure(u"Ein Eintrag konnte nicht in den Verlauf aufgenommen werden."_s);
  }
}

void Recorder::TakeHead(Entry& entry) const {
  const Module1& module = world_.core.module;
  entry.stamp.time = world_.store.now();
  entry.stamp.technician = settings_.technician;
  entry.plant = settings_.plant;
  entry.pc = world_.store.pc;
  entry.program = world_.store.programVersion;
  entry.version = module.VersionList.SelectedText();
  entry.plantType = module.PlantTypeList.SelectedText();
  entry.address = module.Adresse;
  if (!ConcernsController(entry.kind)) return;
  entry.port = u"COM%1"_s.arg(module.Schnittstelle);
  const QString device = world_.deviceOfPort ? world_.deviceOfPort(module.Schnittstelle) : QString();
  if (!device.isEmpty()) entry.port += u' ' + device;
  // The last exchange counts as well.
  world_.exchanges.Settle();
  entry.quality = QualityLine(world_.exchanges.OfTransfer());
}

}  // namespace kalivor::history
