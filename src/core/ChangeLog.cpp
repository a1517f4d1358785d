#include "core/ChangeLog.h"

#include <QScopeGuard>
#include <array>

#include "core/Refresh.h"
#include "core/ValueSets.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kSources = static_cast<int>(ValueSource::Undone) + 1;

// How many values differ by reason of their last setting.
using Counts = std::array<int, kSources>;

int& CountOf(Counts& counts, ValueSource source) {
  return counts.at(static_cast<std::size_t>(source));
}

// "Empfangen, 312 Werte" for the most telling of the reasons; "" where there is none of them.
QString NameOfTransfer(Counts& counts) {
  constexpr std::pair<ValueSource, QStringView> kNames[] = {{ValueSource::Received, u"Empfangen"},
                                                            {ValueSource::Loaded, u"Laden"},
                                                            {ValueSource::Recovered, u"Wiederherstellen"},
                                                            {ValueSource::TakenOver, u"Übernehmen"},
                                                            {ValueSource::Standard, u"Standardwerte"}};
  for (const auto& [source, name] : kNames) {
    const int count = CountOf(counts, source);
    if (count > 0) return name.toString() + (count == 1 ? u", 1 Wert"_s : u", %1 Werte"_s.arg(count));
  }
  return {};
}

QString NameOfEdits(int count, const QString& parameter) {
  return count == 1 ? u"Ändern: "_s + parameter : u"Ändern, %1 Werte"_s.arg(count);
}

QString NameOfSelection(const Selected& before, const Module1& module) {
  if (before.VersionIndex != module.VersionIndex ||
      before.VersionList.Position() != module.VersionList.Position())
    return u"Reglerversion "_s + module.VersionList.SelectedText();
  if (before.PlantTypeList.Position() == module.PlantTypeList.Position()) return u"Definitionen gelesen"_s;
  const QString plantType = module.PlantTypeList.SelectedText();
  return u"Anlageart "_s + (plantType.isEmpty() ? u"(leer)"_s : plantType);
}

ParameterValue ValueOf(const ParameterRecord& record) {
  return {record.Wert, record.WertText};
}

// What a file or the controller pads is no other value to the user, but has to come back all the same.
bool SameUnpadded(const ParameterValue& left, const ParameterValue& right) {
  return left.number == right.number &&
         (left.text == right.text || WithoutTrailingBlanks(left.text) == WithoutTrailingBlanks(right.text));
}

bool IsAsBefore(const StepValue& value) {
  return value.typBefore == value.typAfter && SameUnpadded(value.before, value.after);
}

// Another parameter at the same place counts as another value, and so does one where there was none.
bool IsAsBefore(const Module1& module, int index, const ParameterTable& before) {
  const ParameterRecord& now = module.Par[index];
  const ParameterRecord& then = before.Par[index];
  return index < before.ParCount && now.Variable == then.Variable && now.Typ == then.Typ &&
         SameUnpadded(ValueOf(now), ValueOf(then));
}

bool Same(const ParameterRecord& now, const ParameterRecord& then) {
  if (now == then) return true;
  if (!SameUnpadded(ValueOf(now), ValueOf(then))) return false;
  ParameterRecord record = then;
  record.WertText = now.WertText;
  return record == now;
}

bool Same(const SelectionList& left, const SelectionList& right) {
  if (left.Count() != right.Count() || left.Position() != right.Position()) return false;
  for (int i = 0; i < left.Count(); ++i) {
    if (left.Text(i) != right.Text(i)) return false;
  }
  return true;
}

bool Same(const DefinedTable& before, const Module1& module) {
  const ParameterTable& table = *before.table;
  for (int i = 0; i <= kLastParameter; ++i) {
    if (!Same(module.Par[i], table.Par[i])) return false;
  }
  const Selected& selected = before.selected;
  return table.ParCount == module.ParCount && table.ParFile == module.ParFile &&
         table.ParLine == module.ParLine && selected.VersionIndex == module.VersionIndex &&
         Same(selected.VersionList, module.VersionList) &&
         Same(selected.PlantTypeList, module.PlantTypeList) &&
         selected.PlantTypeOffered == module.PlantTypeOffered &&
         selected.tree.NodeState == module.NodeState && selected.tree.ParNode == module.ParNode;
}

Selected SelectedOf(const Module1& module) {
  const TreeState& tree = module;
  return {module.VersionIndex, module.VersionList, module.PlantTypeList, module.PlantTypeOffered, tree};
}

void Select(Module1& module, const Selected& selected) {
  module.VersionIndex = selected.VersionIndex;
  module.VersionList = selected.VersionList;
  // Other entries: who shows a list counts on its being filled from the start.
  module.PlantTypeList.Clear();
  module.PlantTypeList = selected.PlantTypeList;
  module.PlantTypeOffered = selected.PlantTypeOffered;
  module.NodeState = selected.tree.NodeState;
  module.ParNode = selected.tree.ParNode;
}

// With what goes along with a text that is not empty.
qsizetype SizeOf_bytes(const QString& text) {
  constexpr qsizetype kHeader_bytes = 32;
  return text.isEmpty() ? 0 : kHeader_bytes + text.capacity() * qsizetype{sizeof(QChar)};
}

qsizetype SizeOf_bytes(const ParameterRecord& record) {
  qsizetype size = 0;
  for (const QString* text :
       {&record.Rubrik, &record.Name, &record.WertText, &record.StandardText, &record.Einheit.Padded(),
        &record.VarAdresse, &record.Variable, &record.Typ.Padded(), &record.Zusatz, &record.Hilfetext})
    size += SizeOf_bytes(*text);
  return size;
}

qsizetype SizeOf_bytes(const DefinedTable& defined) {
  qsizetype size = sizeof(DefinedTable) + sizeof(ParameterTable);
  for (int i = 0; i <= kLastParameter; ++i)
    size += SizeOf_bytes(defined.table->Par[i]);
  for (const ParameterValue& value : defined.lastTaken)
    size += qsizetype{sizeof(ParameterValue)} + SizeOf_bytes(value.text);
  for (const SavedValue& saved : defined.saved)
    size += qsizetype{sizeof(SavedValue)} + SizeOf_bytes(saved.value.text);
  return size;
}

}  // namespace

// What the steps share with each other and with the table counts for each of them.
qsizetype ChangeStep::Size_bytes() const {
  qsizetype size = qsizetype{sizeof(ChangeStep)} + SizeOf_bytes(name);
  for (const StepValue& value : values) {
    size += qsizetype{sizeof(StepValue)} + SizeOf_bytes(value.before.text) + SizeOf_bytes(value.after.text);
  }
  return otherSide ? size + SizeOf_bytes(*otherSide) : size;
}

ChangeLog::ChangeLog(Module1& module)
    : module_(module), lastTaken_(kLastParameter + 1), saved_(kLastParameter + 1) {
  module_.OnValue = [this](const ValueChange& change) { Listen(change); };
  module_.OnDefinitions = [this](Rereading rereading) { Announce(rereading); };
  module_.OnSaved = [this](const QString& /*path*/) {
    for (int i = 1; i < module_.ParCount; ++i)
      TakeAsSaved(i);
  };
}

ChangeLog::~ChangeLog() {
  module_.OnValue = nullptr;
  module_.OnDefinitions = nullptr;
  module_.OnSaved = nullptr;
}

void ChangeLog::Begin() {
  if (depth_++ == 0) begun_ = SelectedOf(module_);
}

void ChangeLog::End() {
  if (--depth_ > 0) return;
  // Also when there is no memory left for a step.
  const auto rest = qScopeGuard([this] {
    DropRecorded();
    before_.reset();
    forgets_ = false;
  });
  if (forgets_) {
    if (OnForget) OnForget();
    return;
  }
  ChangeStep step = before_ ? StepOfDefinitions() : StepOfValues();
  if (!step.name.isEmpty() && OnStep) OnStep(std::move(step));
}

void ChangeLog::Listen(const ValueChange& change) {
  ++revision_;
  switch (change.source) {
    case ValueSource::Received:
    case ValueSource::Loaded:
      transferred_ = true;
      [[fallthrough]];
    case ValueSource::Defined:
      lastTaken_[static_cast<std::size_t>(change.index)] = change.after;
      break;
    default:
      break;
  }
  if (change.source == ValueSource::Loaded || change.source == ValueSource::Defined)
    saved_[static_cast<std::size_t>(change.index)] = {change.after, change.typAfter};
  // Steps hold the others already, or not at all.
  if (change.source == ValueSource::Undone || change.source == ValueSource::Defined) return;
  if (depth_ > 0) {
    Record(change);
  } else if (change.Differs() && change.source != ValueSource::PlantType) {
    // The plant type comes with definitions, of which there is no step here.
    Begin();
    Record(change);
    End();
  }
}

void ChangeLog::Record(const ValueChange& change) {
  qint16& place = place_[change.index];
  if (place == 0) {
    // Where nothing differs a later setting still may.
    recorded_.push_back({change.index, change.before, change.typBefore, change.source});
    place = static_cast<qint16>(recorded_.size());
  }
  recorded_[static_cast<std::size_t>(place - 1)].source = change.source;
}

void ChangeLog::DropRecorded() {
  for (const Recorded& recorded : recorded_)
    place_[recorded.index] = 0;
  recorded_.clear();
}

void ChangeLog::Announce(Rereading rereading) {
  ++revision_;
  if (depth_ == 0) {
    if (OnForget) OnForget();
    return;
  }
  if (rereading == Rereading::Everything) {
    forgets_ = true;
    transferred_ = false;
    before_.reset();
  }
  if (!before_ && !forgets_) before_ = TableBefore();
  // What was set until now is read anew.
  DropRecorded();
}

std::unique_ptr<DefinedTable> ChangeLog::TableBefore() const {
  auto before = std::make_unique<DefinedTable>();
  before->table = std::make_unique<ParameterTable>(module_);
  for (const Recorded& recorded : recorded_)
    before->table->SetTyped(recorded.index, recorded.before, recorded.typBefore, ValueSource::Undone);
  before->selected = begun_;
  before->lastTaken = lastTaken_;
  before->saved = saved_;
  return before;
}

ChangeStep ChangeLog::StepOfValues() {
  ChangeStep step;
  Counts counts{};
  int count = 0;
  QString last;
  for (Recorded& recorded : recorded_) {
    const ParameterRecord& record = module_.Par[recorded.index];
    StepValue value{recorded.index, std::move(recorded.before), ValueOf(record),
                    std::move(recorded.typBefore), record.Typ};
    if (value.before == value.after && value.typBefore == value.typAfter) continue;
    if (!IsAsBefore(value)) {
      ++count;
      ++CountOf(counts, recorded.source);
      last = record.Name;
    }
    step.values.push_back(std::move(value));
  }
  if (count == 0) return {};
  step.name = NameOfTransfer(counts);
  if (step.name.isEmpty()) step.name = NameOfEdits(count, last);
  return step;
}

ChangeStep ChangeLog::StepOfDefinitions() {
  ChangeStep step;
  step.otherSide = std::move(before_);
  if (Same(*step.otherSide, module_)) return step;
  Counts counts{};
  for (const Recorded& recorded : recorded_) {
    if (!IsAsBefore(module_, recorded.index, *step.otherSide->table)) ++CountOf(counts, recorded.source);
  }
  step.name = NameOfTransfer(counts);
  if (step.name.isEmpty()) step.name = NameOfSelection(step.otherSide->selected, module_);
  return step;
}

void ChangeLog::Undo(ChangeStep& step) {
  if (step.otherSide) Swap(*step.otherSide);
  for (const StepValue& value : step.values)
    module_.SetTyped(value.index, value.before, value.typBefore, ValueSource::Undone);
}

void ChangeLog::Redo(ChangeStep& step) {
  if (step.otherSide) Swap(*step.otherSide);
  for (const StepValue& value : step.values)
    module_.SetTyped(value.index, value.after, value.typAfter, ValueSource::Undone);
}

void ChangeLog::Swap(DefinedTable& other) {
  ++revision_;
  ParameterTable& table = *other.table;
  // One after the other: a table is too large for the stack.
  for (int i = 0; i <= kLastParameter; ++i) {
    std::swap(module_.Par[i], table.Par[i]);
    std::swap(module_.ParLine[i], table.ParLine[i]);
  }
  std::swap(module_.ParCount, table.ParCount);
  std::swap(module_.ParFile, table.ParFile);
  Selected now = SelectedOf(module_);
  Select(module_, other.selected);
  other.selected = std::move(now);
  std::swap(lastTaken_, other.lastTaken);
  std::swap(saved_, other.saved);
}

bool ChangeLog::Changed(int index) const {
  return !SameUnpadded(lastTaken_[static_cast<std::size_t>(index)], ValueOf(module_.Par[index]));
}

bool ChangeLog::Unsaved(int index) const {
  const ParameterRecord& record = module_.Par[index];
  const SavedValue& saved = saved_[static_cast<std::size_t>(index)];
  return record.Typ != saved.typ || !SameUnpadded(saved.value, ValueOf(record));
}

void ChangeLog::TakeAsSaved(int index) {
  ++revision_;
  const ParameterRecord& record = module_.Par[index];
  saved_[static_cast<std::size_t>(index)] = {ValueOf(record), record.Typ};
}

int ChangeLog::Outside() const {
  int count = 0;
  for (int i = 1; transferred_ && i < module_.ParCount; ++i) {
    if (IsOutside(module_.Par[i], ValueOf(module_.Par[i]))) ++count;
  }
  return count;
}

void ShowTable(Core& core) {
  core.main.SetPlantSelectorVisible(core.module.PlantTypeOffered);
  Refresh(core, 2);
}

}  // namespace kalivor
