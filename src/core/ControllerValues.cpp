#include "core/ControllerValues.h"

#include "comm/TH.h"
#include "core/Busy.h"
#include "core/ControllerValue.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// Time since the beginning; what the clock jumps backwards, as it does at midnight, is left out.
class Stopwatch {
 public:
  explicit Stopwatch(const platform::Clock& clock) : clock_(&clock), last_(clock.SecondsSinceMidnight()) {}

  double Passed_s() {
    const double now = clock_->SecondsSinceMidnight();
    if (now > last_) passed_ += now - last_;
    last_ = now;
    return passed_;
  }

 private:
  const platform::Clock* clock_;
  double last_;  // seconds since midnight
  double passed_ = 0;
};

// Shows how far the work has come, and lets the window live, at most ten times a second.
class Progress {
 public:
  Progress(Core& core, ProgressForm& form, const QString& work)
      : core_(core), form_(form), watch_(core.clock) {
    form_.Show(work);
    core_.events.ProcessPending();
  }
  ~Progress() { form_.Hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // The work that is counted begins now.
  void Begin(int total) {
    total_ = total;
    watch_ = Stopwatch(core_.clock);
  }

  void Done() {
    ++done_;
    const double passed_s = watch_.Passed_s();
    if (done_ < total_ && pause_.Remaining() > 0) return;
    constexpr int kPause_ms = 100;
    pause_ = SoftTimer(core_.clock, kPause_ms);
    form_.Step(done_, total_, passed_s / done_ * (total_ - done_));
    core_.events.ProcessPending();
  }

 private:
  Core& core_;
  ProgressForm& form_;
  Stopwatch watch_;
  SoftTimer pause_;
  int total_ = 0;
  int done_ = 0;
};

// Why the connected controller's values are of no use; "" where they are.
QString ControllerFault(Core& core) {
  const Identification answer = core.controller.AskVersion(kSlot);
  core.module.ReglerVersion = answer.text;
  if (!answer.succeeded) return answer.text;
  const SelectionList& versions = core.module.VersionList;
  if (answer.text == versions.SelectedText()) return {};
  if (versions.Find(answer.text) < 0) return u"Unbekannte ReglerVersion: "_s + answer.text;
  return u"Andere ReglerVersion: "_s + answer.text + u"\r\nAusgewählt ist "_s + versions.SelectedText() +
         u'.';
}

// The checked parameters whose type is known.
std::vector<int> ToRead(const Module1& module) {
  std::vector<int> indices;
  for (int i = 1; i < module.ParCount; ++i) {
    if (module.ParNode[i] != kFalse && TypeOf(module.Par[i].Typ).kind != ValueKind::Unknown)
      indices.push_back(i);
  }
  return indices;
}

}  // namespace

SetResult ReadControllerValues(Core& core, ProgressForm& form) {
  const Module1& module = core.module;
  SetResult result;
  if (module.BusyDepth > 0) {
    result.error = u"Es wird noch gearbeitet; die Werte des Reglers wurden nicht gelesen."_s;
    return result;
  }
  const BusyGuard busy(core);
  Progress progress(core, form, u"Regler lesen"_s);
  result.error = ControllerFault(core);
  if (!result.Ok()) return result;

  // Identity and order are those of the table.
  ValueSet table = TableValues(module);
  ValueSet& set = result.set;
  set.origin = Origin::Controller;
  set.name = u"Regler"_s;
  set.version = table.version;
  set.partial = true;
  // The report tells of transfers alone.
  COM_A controller = core.controller.TellingFailuresTo([](const QString& /*text*/) {});
  const std::vector<int> indices = ToRead(module);
  progress.Begin(static_cast<int>(indices.size()));
  for (const int index : indices) {
    result.aborted = module.Abbruch != kFalse;
    if (result.aborted) break;
    const ParameterRecord& record = module.Par[index];
    SetValue& value = set.values.emplace_back(std::move(table.values[static_cast<std::size_t>(index) - 1]));
    ReadValue read{{false}, {}};
    if (!record.VarAdresse.isEmpty()) read = ReadController(controller, record, TypeOf(record.Typ));
    value.read = read.moved.complete;
    value.value = value.read ? read.value : ParameterValue();
    progress.Done();
  }
  return result;
}

}  // namespace kalivor
