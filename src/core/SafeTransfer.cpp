#include "core/SafeTransfer.h"

#include <algorithm>
#include <utility>

#include "comm/CarefulLine.h"
#include "core/ParameterTypes.h"
#include "core/ValueSets.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

const QString kExchanged = u"Ein anderer Regler ist angeschlossen als am Anfang."_s;

bool Writes(SafeKind kind) {
  return kind == SafeKind::Send || kind == SafeKind::Restore || kind == SafeKind::Finish ||
         kind == SafeKind::TakeBack;
}

// What is to be put right must not stay half done because of a limit.
bool IgnoresLimits(SafeKind kind) {
  return kind == SafeKind::Finish || kind == SafeKind::TakeBack;
}

void Add(ControllerImage& bits, ControllerImage& masks, const CodedWord& word) {
  bits[word.address] = static_cast<quint16>(bits[word.address] | word.bits);
  masks[word.address] = static_cast<quint16>(masks[word.address] | word.mask);
}

// Values that lie in each other's place and want something else cannot both be sent.
void RefuseConflicts(const Module1& module, SafeRun& run) {
  std::map<quint16, std::vector<std::pair<std::size_t, CodedWord>>> owners;
  for (std::size_t i = 0; i < run.values.size(); ++i) {
    SafeValue& second = run.values[i];
    if (!second.sendable) continue;
    for (const CodedWord& word : second.words) {
      for (const auto& [other, placed] : owners[word.address]) {
        SafeValue& first = run.values[other];
        const bool known = !first.sendable && !second.sendable;
        if (known || ((word.bits ^ placed.bits) & word.mask & placed.mask) == 0) continue;
        first.sendable = second.sendable = false;
        first.reason = u"liegt im selben Wort wie "_s + module.Par[second.index].Variable;
        second.reason = u"liegt im selben Wort wie "_s + module.Par[first.index].Variable;
      }
      owners[word.address].emplace_back(i, word);
    }
  }
}

/// The controller during a run, and what is said when it is not there as it has to be.
class Controller {
 public:
  Controller(Core& core, SafeRun& run, Progress& progress)
      : core_(core),
        run_(run),
        line_(core.controller.AskingCarefully([&progress] { return progress.GoOn(); })) {}

  // Who is there at the beginning of a run. Returns "" or why the run ends.
  [[nodiscard]] QString Meet() {
    const Identification answer = line_.Identify();
    core_.module.ReglerVersion = answer.text;
    if (!answer.succeeded) return answer.text;
    QString fault = VersionFault(answer.text);
    if (!fault.isEmpty()) return fault;
    run_.version = answer.text;
    if (!HasPlant()) return {};
    fault = ReadPlant(SelectedPlant(), run_.plant);
    if (!fault.isEmpty() || run_.kind == SafeKind::Compare || run_.plant == SelectedPlant()) return fault;
    return OtherPlant();
  }

  // Whether it is still the same one, and answers what it is asked: where each reply is that of the request
  // before, a repeated question is answered rightly. Different questions without a failed attempt between
  // them show it. Returns "" or what has happened.
  [[nodiscard]] QString MeetAgain() {
    constexpr int tries = 5;
    for (int i = 0; i < tries; ++i) {
      const int failed = line_.FailedAttempts();
      QString fault = AskAgain();
      if (!fault.isEmpty() || line_.FailedAttempts() == failed) return fault;
    }
    return u"Der Regler antwortet nicht zuverlässig.\r\nSeine Antworten können zu anderen Anfragen gehören."_s;
  }

  // A word, which becomes what the run knows of it.
  WordReading Read(quint16 address, std::optional<quint16> expected) {
    WordReading reading = line_.Read(address, expected);
    if (reading.word) run_.now[address] = *reading.word;
    return reading;
  }

  [[nodiscard]] QString Write(quint16 address, quint16 word) { return line_.Write(address, word); }

  // After a failure: false where the rest would fail as well; the run has the reason.
  bool GoesOn() {
    const QString fault = core_.module.Abbruch == kFalse ? CheckVersion() : QString();
    if (core_.module.Abbruch != kFalse) {
      run_.aborted = true;
      return true;  // the walk ends by itself
    }
    if (run_.error.isEmpty()) run_.error = fault;
    return fault.isEmpty();
  }

 private:
  [[nodiscard]] QString CheckVersion() {
    const Identification answer = line_.AskVersion();
    if (!answer.succeeded) return u"Der Regler antwortet nicht mehr.\r\n"_s + ReasonOf(answer.text);
    if (answer.text == run_.version) return {};
    return kExchanged + u"\r\nReglerVersion: "_s + answer.text;
  }

  [[nodiscard]] QString AskAgain() {
    QString fault = CheckVersion();
    if (!fault.isEmpty()) return fault;
    if (!HasPlant()) {
      if (run_.now.empty()) return {};
      const auto [address, word] = *run_.now.begin();
      const WordReading reading = line_.Read(address, word);
      return reading.word ? QString() : u"Der Regler antwortet nicht mehr.\r\n"_s + ReasonOf(reading.failure);
    }
    qint16 plant = 0;
    fault = ReadPlant(run_.plant, plant);
    if (!fault.isEmpty() || plant == run_.plant) return fault;
    return kExchanged + u"\r\nAnlagennummer: "_s + QString::number(plant);
  }

  // The plant number is a word whatever type its record has.
  [[nodiscard]] bool HasPlant() const { return !core_.module.Par[0].VarAdresse.isEmpty(); }
  [[nodiscard]] QString ReadPlant(qint16 expected, qint16& plant) {
    const CodedValue place = PlaceOfWord(core_.module.Par[0].VarAdresse);
    QString fault = place.fault;
    if (fault.isEmpty()) {
      const WordReading reading = line_.Read(place.words.front().address, static_cast<quint16>(expected));
      if (reading.word) plant = static_cast<qint16>(*reading.word);
      fault = ReasonOf(reading.failure);
    }
    return fault.isEmpty() ? QString() : u"Die Anlageart im Regler ist nicht lesbar.\r\n"_s + fault;
  }
  [[nodiscard]] qint16 SelectedPlant() const {
    return static_cast<qint16>(core_.module.PlantTypeList.Position());
  }

  [[nodiscard]] QString VersionFault(const QString& version) const {
    const SelectionList& versions = core_.module.VersionList;
    if (version == versions.SelectedText()) return {};
    if (versions.Find(version) < 0) return u"Unbekannte ReglerVersion: "_s + version;
    return u"Andere ReglerVersion: "_s + version + u"\r\nAusgewählt ist "_s + versions.SelectedText() + u'.';
  }

  // "Heizung (Nummer 1)"; the first plant type has no name as a rule.
  [[nodiscard]] QString PlantName(int number) const {
    const QString name = core_.module.PlantTypeList.Text(number);
    return name.isEmpty() ? u"Nummer %1"_s.arg(number) : u"%1 (Nummer %2)"_s.arg(name).arg(number);
  }

  [[nodiscard]] QString OtherPlant() const {
    return u"Andere Anlageart: "_s + PlantName(run_.plant) + u"\r\nAusgewählt ist "_s +
           PlantName(core_.module.PlantTypeList.Position()) + u'.';
  }

  Core& core_;
  SafeRun& run_;
  CarefulLine line_;
};

/// What the values of a run want of each word; nothing of those that cannot be sent.
using WantedWords = std::multimap<quint16, std::optional<CodedWord>>;

WantedWords WordsWanted(const SafeRun& run) {
  WantedWords wanted;
  for (const SafeValue& value : run.values) {
    for (const CodedWord& word : value.words)
      wanted.emplace(word.address, value.sendable ? std::optional(word) : std::nullopt);
  }
  return wanted;
}

// Reads a word, twice where one of its values wants something else.
WordReading ReadWord(Controller& controller, SafeRun& run, const WantedWords& wanted, quint16 address) {
  WordReading reading = controller.Read(address, {});
  const auto [first, last] = wanted.equal_range(address);
  const bool differs = reading.word && std::any_of(first, last, [&reading](const auto& one) {
                         return !one.second || !one.second->FitsIn(*reading.word);
                       });
  if (!differs) return reading;
  run.now.erase(address);
  return controller.Read(address, *reading.word);
}

// Reads the words of one value that have not been read yet. False where a word cannot be read.
bool ReadValueWords(Controller& controller, SafeRun& run, const WantedWords& wanted, SafeValue& value) {
  for (const CodedWord& word : value.words) {
    if (run.now.contains(word.address)) continue;
    const WordReading reading = ReadWord(controller, run, wanted, word.address);
    if (reading.word) continue;
    value.reason = ReasonOf(reading.failure);
    return false;
  }
  return true;
}

void Judge(const Module1& module, SafeRun& run, SafeValue& value) {
  const ParameterRecord& record = module.Par[value.index];
  value.controller = Decoded(record, run.now);
  if (!value.controller) return;
  value.before = value.controller;
  const bool equal = value.sendable && Holds(run.now, value.words);
  value.state = equal ? SafeState::Equal : SafeState::Different;
  if (run.kind == SafeKind::Receive) value.outside = IsOutside(record, *value.controller);
  value.chosen = !equal && (value.sendable || run.kind == SafeKind::Receive) &&
                 (!value.outside || IgnoresLimits(run.kind));
}

void ReadAll(Core& core, SafeRun& run, Controller& controller, Progress& progress) {
  const WantedWords wanted = WordsWanted(run);
  progress.Begin(static_cast<int>(run.values.size()));
  for (SafeValue& value : run.values) {
    run.aborted = core.module.Abbruch != kFalse;
    if (run.aborted) return;
    if (value.words.empty()) {
      progress.Done();
      continue;
    }
    if (ReadValueWords(controller, run, wanted, value)) {
      Judge(core.module, run, value);
    } else if (!controller.GoesOn()) {
      return;
    }
    progress.Done();
  }
}

void ForgetReadings(SafeRun& run) {
  run.now.clear();
  for (SafeValue& value : run.values) {
    value.state = SafeState::NotRead;
    value.controller.reset();
    value.before.reset();
    value.chosen = false;
  }
}

// --- writing ---

/// What happened to a word that was to be written.
struct WordFate {
  quint16 expected = 0;  // what it has to be now
  bool begun = false;
  QString failure;  // why it could not be written
};

/// The chosen values on their way into the controller and back.
class Writing {
 public:
  Writing(Core& core, SafeRun& run, Controller& controller, SafeKeeper& keeper, Progress& progress)
      : core_(core), run_(run), controller_(controller), keeper_(keeper), progress_(progress) {
    for (const SafeValue& value : run_.values) {
      if (!value.chosen) continue;
      for (const CodedWord& word : value.words)
        Add(bits_, masks_, word);
    }
  }

  // False where the controller is gone or another one. A journal that cannot be written ends it as well, but
  // what was written by then can be read back.
  bool WriteAll() {
    progress_.Begin(run_.Chosen(), u"Schreiben"_s);
    for (const SafeValue& value : run_.values) {
      if (!value.chosen) continue;
      run_.aborted = core_.module.Abbruch != kFalse;
      if (run_.aborted) break;
      const Next next = WriteValue(value);
      if (next == Next::Lost) return false;
      if (next == Next::Stop) break;
      reached_.insert(value.index);
      progress_.Done();
    }
    return true;
  }

  // False where the controller is gone or another one.
  bool ReadBack() {
    // The reading back has an abort of its own.
    core_.module.Abbruch = kFalse;
    const std::set<quint16> addresses = ToReadBack();
    progress_.Begin(static_cast<int>(addresses.size()), u"Prüfen"_s);
    for (const quint16 address : addresses) {
      if (core_.module.Abbruch != kFalse) {
        run_.aborted = true;
        break;
      }
      const quint16 known = ExpectedAt(address);
      expected_[address] = known;
      if (controller_.Read(address, known).word) {
        back_.insert(address);
      } else if (!controller_.GoesOn()) {
        return false;
      }
      progress_.Done();
    }
    core_.module.Abbruch = kFalse;
    const QString fault = controller_.MeetAgain();
    if (run_.error.isEmpty()) run_.error = fault;
    return fault.isEmpty();
  }

  // `same`: it is the controller of the beginning.
  void JudgeAll(bool same) {
    for (SafeValue& value : run_.values) {
      if (value.chosen) {
        JudgeChosen(value, same);
      } else if (same) {
        JudgeNeighbour(value);
      }
      value.controller = Decoded(core_.module.Par[value.index], run_.now);
    }
  }

 private:
  enum class Next { GoOn, Stop, Lost };

  Next WriteValue(const SafeValue& value) {
    for (const CodedWord& word : value.words) {
      const Next next = fates_.contains(word.address) ? Next::GoOn : WriteWord(word.address);
      if (next != Next::GoOn) return next;
      // The words behind a failed one stay as they are.
      if (!fates_.at(word.address).failure.isEmpty()) break;
    }
    return Next::GoOn;
  }

  Next WriteWord(quint16 address) {
    WordFate& fate = fates_[address];
    const CodedWord wanted{address, masks_.at(address), bits_.at(address)};
    const quint16 known = run_.now.at(address);
    fate.expected = known;
    if (wanted.FitsIn(known)) return Next::GoOn;
    const WordReading reading = controller_.Read(address, known);
    if (!reading.word) return Failed(fate, reading.failure);
    fate.expected = *reading.word;
    if (wanted.FitsIn(*reading.word)) return Next::GoOn;
    if (((*reading.word ^ known) & wanted.mask) != 0) {
      fate.failure = u"inzwischen geändert"_s;
      return Next::GoOn;
    }
    run_.error = keeper_.Before(address);
    if (!run_.error.isEmpty()) return Next::Stop;
    fate.begun = true;
    fate.expected = static_cast<quint16>((*reading.word & ~wanted.mask) | wanted.bits);
    run_.begun.insert(address);
    const QString failure = controller_.Write(address, fate.expected);
    return failure.isEmpty() ? Next::GoOn : Failed(fate, failure);
  }

  Next Failed(WordFate& fate, const QString& failure) {
    fate.failure = ReasonOf(failure);
    return controller_.GoesOn() ? Next::GoOn : Next::Lost;
  }

  // The words of what was sent, and those beside the written ones.
  [[nodiscard]] std::set<quint16> ToReadBack() const {
    std::set<quint16> addresses;
    for (const SafeValue& value : run_.values) {
      if (!value.chosen || !Touched(value)) continue;
      for (const CodedWord& word : value.words)
        addresses.insert(word.address);
    }
    for (const auto& [address, fate] : fates_) {
      if (!fate.begun) continue;
      for (const int beside : {address - 2, address + 2}) {
        const auto word = static_cast<quint16>(beside);
        if (word == beside && run_.now.contains(word)) addresses.insert(word);
      }
    }
    return addresses;
  }

  // Something of it was written, or it was found to be there already.
  [[nodiscard]] bool Touched(const SafeValue& value) const {
    if (reached_.contains(value.index) && Failure(value).isEmpty()) return true;
    return std::ranges::any_of(value.words, [this](const CodedWord& word) {
      const auto fate = fates_.find(word.address);
      return fate != fates_.end() && fate->second.begun;
    });
  }

  [[nodiscard]] QString Failure(const SafeValue& value) const {
    for (const CodedWord& word : value.words) {
      const auto fate = fates_.find(word.address);
      if (fate != fates_.end() && !fate->second.failure.isEmpty()) return fate->second.failure;
    }
    return {};
  }

  [[nodiscard]] quint16 ExpectedAt(quint16 address) const {
    const auto fate = fates_.find(address);
    return fate == fates_.end() ? run_.now.at(address) : fate->second.expected;
  }

  [[nodiscard]] bool Back(const CodedWord& word) const { return back_.contains(word.address); }

  // The part of a word that was not to be changed is as it was.
  [[nodiscard]] bool KeptItsNeighbour(const CodedWord& word) const {
    const int changed = run_.now.at(word.address) ^ expected_.at(word.address);
    return (changed & ~masks_.at(word.address)) == 0;
  }

  void JudgeChosen(SafeValue& value, bool same) {
    const QString failure = Failure(value);
    value.reason = failure;
    if (!Touched(value)) {
      value.state = failure.isEmpty() ? SafeState::Unverified : SafeState::Failed;
      if (failure.isEmpty()) value.reason = u"nicht gesendet"_s;
    } else if (!same || !std::ranges::all_of(value.words, [this](const CodedWord& w) { return Back(w); })) {
      value.state = SafeState::Unverified;
      if (failure.isEmpty()) value.reason = u"gesendet und nicht geprüft"_s;
    } else if (!Holds(run_.now, value.words) && failure.isEmpty() && !reached_.contains(value.index)) {
      // Cut off between two of its words: it has to be finished.
      value.state = SafeState::Unverified;
      value.reason = u"nicht vollständig gesendet"_s;
    } else if (!Holds(run_.now, value.words)) {
      value.state = failure.isEmpty() ? SafeState::Deviating : SafeState::Failed;
    } else if (!std::ranges::all_of(value.words,
                                    [this](const CodedWord& w) { return KeptItsNeighbour(w); })) {
      value.state = SafeState::Deviating;
      value.reason = u"das andere Byte des Wortes hat sich geändert"_s;
    } else {
      value.state = SafeState::Verified;
      value.reason.clear();
    }
  }

  void JudgeNeighbour(SafeValue& value) const {
    for (const CodedWord& word : value.words) {
      if (!Back(word) || ((run_.now.at(word.address) ^ expected_.at(word.address)) & word.mask) == 0)
        continue;
      value.reason = value.state == SafeState::Verified ? u"hat sich seit der Prüfung geändert"_s
                                                        : u"wurde nicht gesendet und hat sich geändert"_s;
      value.state = SafeState::Deviating;
      return;
    }
  }

  Core& core_;
  SafeRun& run_;
  Controller& controller_;
  SafeKeeper& keeper_;
  Progress& progress_;
  ControllerImage bits_;   // of the chosen values, by address
  ControllerImage masks_;  // the same
  std::map<quint16, WordFate> fates_;
  std::set<int> reached_;     // parameters whose writing came to its end
  ControllerImage expected_;  // what the words had to be that were read back
  std::set<quint16> back_;    // words that were read back
};

}  // namespace

QString SafeStateText(SafeState state) {
  switch (state) {
    case SafeState::NotRead:
      return u"nicht gelesen"_s;
    case SafeState::Equal:
      return u"gleich"_s;
    case SafeState::Different:
      return u"verschieden"_s;
    case SafeState::Verified:
      return u"geprüft"_s;
    case SafeState::Deviating:
      return u"abweichend"_s;
    case SafeState::Failed:
      return u"fehlgeschlagen"_s;
    case SafeState::Unverified:
      return u"nicht geprüft"_s;
  }
  return {};
}

int SafeRun::Count(SafeState state) const {
  return static_cast<int>(std::ranges::count(values, state, &SafeValue::state));
}

int SafeRun::Chosen() const {
  return static_cast<int>(std::ranges::count(values, true, &SafeValue::chosen));
}

bool SafeRun::Unfinished() const {
  return !begun.empty() && Count(SafeState::Unverified) > 0;
}

NamedWords NameOf(const ParameterRecord& record) {
  return {record.Variable, record.VarAdresse, record.Typ.Trimmed()};
}

SafeRun WantedOfTable(const Module1& module, SafeKind kind) {
  SafeRun run;
  run.kind = kind;
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    // Parameters of an unknown type are nobody's: the plain transfers pass them over as well.
    if (module.ParNode[i] == kFalse || TypeOf(record.Typ).kind == ValueKind::Unknown) continue;
    SafeValue& value = run.values.emplace_back();
    value.index = i;
    value.wanted = {record.Wert, record.WertText};
    CodedValue coded = Coded(record, value.wanted);
    value.sendable = coded.fault.isEmpty();
    value.reason = coded.fault;
    value.words = value.sendable ? std::move(coded.words) : PlacesOf(record).words;
    value.outside = IsOutside(record, value.wanted);
  }
  if (Writes(kind)) RefuseConflicts(module, run);
  return run;
}

SafeRun WantedOfImage(const Module1& module, SafeKind kind, std::span<const NamedWords> names,
                      const ControllerImage& image, int& unknown) {
  const std::set<NamedWords> asked(names.begin(), names.end());
  std::set<NamedWords> found;
  SafeRun run;
  run.kind = kind;
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    if (!asked.contains(NameOf(record))) continue;
    const std::optional<ParameterValue> wanted = Decoded(record, image);
    if (!wanted) continue;
    found.insert(NameOf(record));
    SafeValue& value = run.values.emplace_back();
    value.index = i;
    value.wanted = *wanted;
    value.words = PlacesOf(record).words;
    for (CodedWord& word : value.words)
      word.bits = static_cast<quint16>(image.at(word.address) & word.mask);
    value.outside = IsOutside(record, value.wanted);
  }
  unknown = static_cast<int>(asked.size() - found.size());
  return run;
}

SafeRun WantedBack(const Module1& module, const SafeRun& run) {
  std::vector<NamedWords> names;
  for (const SafeValue& value : run.values) {
    const bool written = std::ranges::any_of(
        value.words, [&run](const CodedWord& word) { return run.begun.contains(word.address); });
    if (written || value.state == SafeState::Deviating) names.push_back(NameOf(module.Par[value.index]));
  }
  int unknown = 0;
  return WantedOfImage(module, SafeKind::TakeBack, names, run.before, unknown);
}

void ReadWords(Core& core, SafeRun& run, ProgressForm& form) {
  Progress progress(core, form, u"Regler lesen"_s);
  Controller controller(core, run, progress);
  run.error = controller.Meet();
  if (!run.error.isEmpty()) return;
  ReadAll(core, run, controller, progress);
  // What was read so far counts only if it came from one controller, also after an abort.
  core.module.Abbruch = kFalse;
  if (run.error.isEmpty()) run.error = controller.MeetAgain();
  if (!run.error.isEmpty()) ForgetReadings(run);
  run.before = run.now;
}

void WriteWords(Core& core, SafeRun& run, SafeKeeper& keeper, ProgressForm& form) {
  for (SafeValue& value : run.values)
    value.chosen = value.chosen && value.sendable && value.controller;
  if (run.Chosen() == 0) return;
  Progress progress(core, form, u"Sicherung anlegen"_s);
  Controller controller(core, run, progress);
  run.aborted = false;
  // Nothing is written into a controller that was exchanged while the user read the table.
  run.error = controller.MeetAgain();
  if (run.error.isEmpty()) run.error = keeper.Begin(core.module, run);
  if (!run.error.isEmpty()) return;
  Writing writing(core, run, controller, keeper, progress);
  writing.JudgeAll(writing.WriteAll() && writing.ReadBack());
  keeper.End(run);
}

QString AccountText(const SafeRun& run) {
  QStringList counts;
  const auto add = [&](SafeState state) {
    if (const int count = run.Count(state); count > 0)
      counts.append(u"%1 %2"_s.arg(QString::number(count), SafeStateText(state)));
  };
  for (const SafeState state :
       {SafeState::Verified, SafeState::Deviating, SafeState::Failed, SafeState::Unverified})
    add(state);
  if (counts.isEmpty()) {
    for (const SafeState state : {SafeState::Equal, SafeState::Different, SafeState::NotRead})
      add(state);
  }
  return counts.isEmpty() ? u"kein Wert"_s : counts.join(u", "_s);
}

}  // namespace kalivor
