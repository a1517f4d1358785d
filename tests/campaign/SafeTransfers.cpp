// Making up installations and lines for safe operations, and judging them by the controllers' memories alone.
#include "campaign/SafeTransfers.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <optional>

#include "campaign/Line.h"
#include "campaign/MortalFiles.h"
#include "campaign/Pc.h"
#include "campaign/Plant.h"
#include "commands/SafeCommands.h"
#include "core/Refresh.h"
#include "rules/ExchangeRules.h"

using namespace Qt::StringLiterals;

namespace kalivor::campaign {
namespace {

using Kind = PlantParameter::Kind;

/// Kinds of lines; a seed belongs to one.
enum class Scene {
  Clean,
  OneTrouble,
  Noisy,
  Slow,
  Unplugged,
  ExchangedUnlike,
  NoEffect,
  Shifted,
  ExchangedLike,
  Master,
  SumsThatFit,
  Everything,
  kCount
};
constexpr std::size_t kScenes = static_cast<std::size_t>(Scene::kCount);
constexpr const char* kSceneNames[kScenes] = {
    "undisturbed",         "one fault",      "many faults",    "slow controller",
    "unplugging, refusal", "exchanged",      "without effect", "shifted replies",
    "exchanged for like",  "foreign master", "sums that fit",  "everything together"};

/// Why something can be wrong that the program has reported as right. Nothing else may be.
enum class WrongClass { ForeignReply, SumPreserving, ExchangedForLike, kCount };
constexpr std::size_t kWrongClasses = static_cast<std::size_t>(WrongClass::kCount);
constexpr const char* kWrongNames[kWrongClasses] = {"foreign reply", "sum-preserving change",
                                                    "exchanged for its like"};
using WrongCounts = std::array<qint64, kWrongClasses>;

struct Totals {
  qint64 seeds = 0, runs = 0, exchanges = 0, strays = 0, notHeld = 0;
  qint64 claims = 0, wrong = 0;      // verified, equal, different or taken over
  qint64 shown = 0, shownWrong = 0;  // different before a sending, which reads again before it writes
  qint64 early = 0, finished = 0, takenBack = 0, repeated = 0, kills = 0, aborts = 0, clockSteps = 0;
  qint64 toldStrays = 0;             // changes in a controller that the program has found to be another one
  qint64 readings = 0, misread = 0;  // single ones, and those that brought a wrong word
  WrongCounts byClass{};
  double words = 0;      // that claims were made of
  double predicted = 0;  // words of which two readings in a row are wrong, by the share of single ones
  double virtual_s = 0;

  void Add(const Totals& other) {
    for (qint64 Totals::*count :
         {&Totals::seeds, &Totals::runs, &Totals::exchanges, &Totals::claims, &Totals::wrong, &Totals::strays,
          &Totals::notHeld, &Totals::early, &Totals::finished, &Totals::takenBack, &Totals::repeated,
          &Totals::kills, &Totals::shown, &Totals::shownWrong, &Totals::aborts, &Totals::clockSteps,
          &Totals::toldStrays, &Totals::readings, &Totals::misread})
      this->*count += other.*count;
    for (std::size_t i = 0; i < kWrongClasses; ++i)
      byClass[i] += other.byClass[i];
    words += other.words;
    predicted += other.predicted;
    virtual_s += other.virtual_s;
  }
};

/// A property that does not hold.
struct Problem {
  QString text;
};

void Require(bool holds, const QString& text) {
  if (!holds) throw Problem{text};
}

// --- values as bytes, apart from the code under test ---

/// Where a value lies, and its bytes.
struct OwnBytes {
  int first = 0;
  QByteArray bytes;
};

int FirstAddress(const PlantParameter& parameter) {
  return parameter.address.right(4).toInt(nullptr, 16);
}

int SizeOf(const PlantParameter& parameter) {
  switch (parameter.kind) {
    case Kind::Long:
      return 4;
    case Kind::Int:
      return 2;
    case Kind::Char:
      return 1;
    case Kind::Text:
      return parameter.length;
    case Kind::Unknown:
      break;
  }
  return 0;
}

/// Nothing where the value has no place or does not fit.
std::optional<OwnBytes> BytesOf(const PlantParameter& parameter, qint32 number, const QString& text) {
  const int size = SizeOf(parameter);
  if (parameter.address.isEmpty() || size == 0 || FirstAddress(parameter) + size > 0x10000) return {};
  OwnBytes own{FirstAddress(parameter), {}};
  if (parameter.kind == Kind::Text) {
    for (const QChar c : text) {
      int code = 0;
      while (code < 256 && test::Character(code) != c)
        ++code;
      if (code == 256) return {};
      own.bytes += static_cast<char>(code);
    }
    while (own.bytes.size() > size && own.bytes.endsWith(' '))
      own.bytes.chop(1);
    if (own.bytes.size() > size) return {};
    own.bytes += QByteArray(size - own.bytes.size(), ' ');
    return own;
  }
  if (parameter.kind == Kind::Int && (number < -32768 || number > 32767)) return {};
  if (parameter.kind == Kind::Char && (number < -128 || number > 255)) return {};
  for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
    own.bytes += static_cast<char>(number >> shift & 0xFF);
  return own;
}

quint8 ByteAt(const sim::Memory& memory, int address) {
  const quint16 word = memory.Word(static_cast<quint16>(address));
  return static_cast<quint8>(address % 2 == 0 ? word >> 8 : word);
}

bool Holds(const Station& station, const OwnBytes& own) {
  for (int i = 0; i < own.bytes.size(); ++i) {
    if (ByteAt(station.memory, own.first + i) != static_cast<quint8>(own.bytes.at(i))) return false;
  }
  return true;
}

OwnBytes Held(const Station& station, const PlantParameter& parameter) {
  OwnBytes own{FirstAddress(parameter), {}};
  for (int i = 0; i < SizeOf(parameter); ++i)
    own.bytes += static_cast<char>(ByteAt(station.memory, own.first + i));
  return own;
}

/// Of each parameter, by its number among those of the version.
using OwnValues = std::map<int, OwnBytes>;

// --- the line ---

LineProfile RandomProfile(Random& random, Scene scene) {
  LineProfile profile;
  profile.echo = random.Chance(0.4);
  profile.paced = random.Chance(0.5);
  static constexpr int kRates[] = {0, 9600, 19200};
  profile.rate = random.Chance(0.7) ? 0 : kRates[random.Below(3)];
  profile.mostLate_ms = 1950;
  static constexpr double kTroubleRates[] = {0.005, 0.02, 0.1};
  const bool everything = scene == Scene::Everything;
  if (scene == Scene::OneTrouble) profile.troubleAt = random.Below(60);
  if (scene == Scene::Noisy || everything) profile.troubleRate = kTroubleRates[random.Below(3)];
  if (scene == Scene::Noisy && random.Chance(0.5)) {
    profile.trouble = static_cast<Trouble>(random.Between(1, static_cast<int>(Trouble::kCount) - 1));
  }
  if (scene == Scene::Slow || (everything && random.Chance(0.2))) {
    profile.leastDelay_ms = random.Between(1, 400);
    profile.mostDelay_ms = random.Between(350, 1980);
    if (random.Chance(0.5)) {
      // Late now and then, so that a run comes to its end.
      profile.leastDelay_ms = 1;
      profile.mostDelay_ms = 30;
      profile.trouble = Trouble::Late;
      profile.troubleRate = random.Fraction() * 0.2;
    }
    profile.forgetsWhileBusy = random.Chance(0.5);
  }
  if (scene == Scene::Unplugged) {
    profile.trouble = Trouble::Vanish;
    profile.troubleRate = 0.05;
    profile.refusalRate = random.Chance(0.5) ? 0.05 : 0;
  }
  if (scene == Scene::ExchangedUnlike || scene == Scene::ExchangedLike ||
      (everything && random.Chance(0.3))) {
    profile.exchangedAt = random.Below(80);
  }
  if (scene == Scene::NoEffect) {
    profile.trouble = Trouble::Forgetful;
    profile.troubleRate = random.Chance(0.3) ? 1 : 0.3;
  }
  if (scene == Scene::Shifted) profile.shiftedAt = random.Below(80);
  if (scene == Scene::SumsThatFit) {
    profile.trouble = random.Chance(0.7) ? Trouble::SumPreserving : Trouble::RequestSumPreserving;
    profile.troubleRate = 0.1 + random.Fraction() * 0.4;
  }
  if (scene == Scene::Master || (everything && random.Chance(0.3))) {
    profile.masterPause_s = 0.05 + random.Fraction() * (random.Chance(0.5) ? 0.5 : 5);
    profile.hearsMaster = random.Chance(0.5);
  }
  return profile;
}

double RandomStart_s(Random& random) {
  constexpr double day_s = 86400;
  return random.Chance(0.2) ? day_s - random.Fraction() * 20 : random.Fraction() * (day_s - 60);
}

/// A program from its start to its end.
struct Program {
  Pc pc;
  test::PlainProgress progress;
  SafeStore store;
  SafeContext context{pc.core, progress, store};

  Program(Line& line, StepClock& clock, platform::FileSystem& files)
      : pc(line, clock, files), store(files, World(clock)) {}

  static SafeWorld World(const StepClock& clock) {
    SafeWorld world;
    world.stateFolder = u"state"_s;
    world.programVersion = u"1.0"_s;
    world.take = [](const QString&) { return true; };
    world.now = [&clock] {
      return QDateTime(QDate(2026, 11, 22), QTime(8, 0), Qt::UTC)
          .addSecs(static_cast<qint64>(clock.Passed()));
    };
    return world;
  }
};

class Installation {
  Random random_;  // first: everything else is made up with it

 public:
  const Scene scene;
  Totals totals;

  explicit Installation(quint64 seed)
      : random_(seed),
        scene(static_cast<Scene>(random_.Below(static_cast<int>(kScenes)))),
        plant_(RandomPlant(random_)),
        plantType_(random_.Below(static_cast<int>(plant_.Selected().plants.size()))),
        first_(First()),
        second_(Second()),
        clock_(RandomStart_s(random_)),
        line_(clock_, random_, RandomProfile(random_, scene), *first_, *second_) {
    totals.seeds = 1;
    PlanClockSteps();
    files_.memory.files = FilesOf(plant_);
    StartProgram();
  }

  /// All operations of the seed; throws Problem.
  void Run() {
    for (int left = random_.Between(1, 3); left > 0; --left) {
      if (random_.Chance(0.15)) {
        TakeValues();
      } else if (random_.Chance(0.15)) {
        Verify();
      } else {
        SendOrRestore();
      }
      if (healed_) break;
    }
    totals.exchanges = static_cast<qint64>(line_.log.size());
    totals.virtual_s = clock_.Passed();
    if (scene == Scene::SumsThatFit) CountReadings();
  }

 private:
  // --- making up ---

  std::unique_ptr<Station> First() {
    const PlantVersion& version = plant_.Selected();
    auto station = std::make_unique<Station>(kStation, FixedText<2>(u"WR"_s),
                                             random_.Chance(0.02) ? QByteArray("ZZ9-0064") : version.payload);
    FillController(random_, version, station->memory);
    if (random_.Chance(0.95)) SetPlant(*station, plantType_);
    return station;
  }

  // Of the same version and plant number, or of another one.
  std::unique_ptr<Station> Second() {
    const PlantVersion& version = plant_.Selected();
    bool alike = scene == Scene::ExchangedLike;
    if (scene == Scene::Everything) alike = random_.Chance(0.5);
    const bool otherPlant = !alike && !version.plantAddress.isEmpty() && random_.Chance(0.5);
    const QByteArray payload =
        alike || otherPlant ? first_->version : sim::NextVersionPayload(first_->version);
    auto station = std::make_unique<Station>(kStation, FixedText<2>(u"WR"_s), payload);
    FillController(random_, version, station->memory);
    SetPlant(*station, PlantOf(*first_) + (otherPlant ? 1 : 0));
    // It may hold much of the same.
    if (random_.Chance(0.5)) {
      for (const PlantParameter& parameter : version.parameters) {
        if (parameter.address.isEmpty() || random_.Chance(0.2)) continue;
        for (int i = 0; i < SizeOf(parameter); ++i) {
          const int address = FirstAddress(parameter) + i;
          if (address < 0x10000)
            station->memory.SetByte(static_cast<quint16>(address), ByteAt(first_->memory, address));
        }
      }
    }
    return station;
  }

  [[nodiscard]] int PlantOf(const Station& station) {
    const QByteArray& address = plant_.Selected().plantAddress;
    return address.isEmpty() ? 0 : station.memory.Word(address.right(4).toUShort(nullptr, 16));
  }

  void SetPlant(Station& station, int number) {
    const QByteArray& address = plant_.Selected().plantAddress;
    if (address.isEmpty()) return;
    station.memory.SetWord(address.right(4).toUShort(nullptr, 16), static_cast<quint16>(number));
  }

  void PlanClockSteps() {
    if (!random_.Chance(0.2)) return;
    totals.clockSteps = random_.Between(1, 3);
    for (qint64 i = 0; i < totals.clockSteps; ++i) {
      static constexpr double kWidths_s[] = {0.3, 3, 3600, 40000};
      const double width_s = kWidths_s[random_.Below(4)];
      clock_.Plan({random_.Fraction() * 20, (2 * random_.Fraction() - 1) * width_s});
    }
  }

  void StartProgram() {
    program_.reset();
    files_.dead = false;
    files_.killAt = -1;
    killAtRequest_ = -1;
    program_ = std::make_unique<Program>(line_, clock_, files_);
    program_->pc.module.Inipath = u"ini"_s;
    program_->pc.module.Userpath = u"user"_s;
    program_->pc.events.onPending = [this] { UserMayAbort(); };
    line_.onRequest = [this] { LineMayKill(); };
    program_->pc.Start();
    Require(program_->store.Load().isEmpty(), u"the journal cannot be used"_s);
    plant_.Reload();
    if (plantType_ == 0) return;
    SelectionList& plants = Tables().PlantTypeList;
    plants.Select(plantType_);
    if (plants.OnChange) plants.OnChange();
    Require(plants.Position() == plantType_, u"the plant type cannot be selected"_s);
    plant_.plant = plantType_;
    plant_.Reload();
  }

  // --- what happens meanwhile ---

  void UserMayAbort() {
    if (pendingsUntilAbort_ < 0 || --pendingsUntilAbort_ != 0) return;
    pendingsUntilAbort_ = -1;
    ++totals.aborts;
    aborted_ = true;
    program_->pc.report.Command_Abbruch_Click();
  }

  void LineMayKill() {
    if (killAtRequest_ < 0 || --killAtRequest_ >= 0) return;
    files_.dead = true;
    throw Killed{};
  }

  // Somebody ends the program, or the user the operation, at a random moment.
  void PlanEnd() {
    aborted_ = false;
    pendingsUntilAbort_ = !healed_ && random_.Chance(0.2) ? random_.Between(1, 40) : -1;
    if (!healed_ && random_.Chance(0.25)) PlanKill();
  }

  void PlanKill() {
    if (random_.Chance(0.5)) {
      killAtRequest_ = random_.Below(160);
    } else {
      files_.killAt = random_.Below(16);
    }
  }

  void PlanNoEnd() {
    pendingsUntilAbort_ = -1;
    killAtRequest_ = files_.killAt = -1;
  }

  // The user edits values and check marks.
  void Tweak() {
    PlantVersion& version = plant_.Selected();
    for (std::size_t i = 0; i < version.parameters.size(); ++i) {
      PlantParameter& parameter = version.parameters[i];
      const int index = static_cast<int>(i) + 1;
      ParameterRecord& record = Tables().Par[index];
      if (random_.Chance(0.4)) {
        const int bits = parameter.kind == Kind::Long  ? random_.Below(25)
                         : parameter.kind == Kind::Int ? random_.Between(15, 18)
                                                       : random_.Between(23, 27);
        parameter.value = record.Wert = static_cast<qint32>(random_.Next()) >> bits;
      }
      if (parameter.kind == Kind::Text && random_.Chance(0.4)) {
        static constexpr QStringView kLetters = u"ABCxyz 0123äöü€";
        QString text;
        for (int left = random_.Below(parameter.length + 2); left > 0; --left)
          text += kLetters[random_.Below(static_cast<int>(kLetters.size()))];
        parameter.text = record.WertText = text;
      }
      if (random_.Chance(0.1)) parameter.checked = !parameter.checked;
      Tables().ParNode[index] = parameter.checked ? kTrue : kFalse;
    }
    Refresh(program_->pc.core, 2);
  }

  // --- operations ---

  /// Runs what may be killed; false where it was.
  template <typename Work>
  bool Lives(Work&& work) {
    const double begun_s = clock_.Passed();
    const std::size_t logged = line_.log.size();
    bool lives = true;
    line_.BeginTransfer();
    firstTouch_ = line_.touches.size();
    ++totals.runs;
    try {
      work();
    } catch (const Killed&) {
      lives = false;
      ++totals.kills;
    } catch (const RuntimeError& error) {
      throw Problem{u"run-time error: "_s + error.Description()};
    }
    PlanNoEnd();
    const auto openings = static_cast<double>(line_.log.size() - logged);
    Require(clock_.Passed() - begun_s <= 25 * (openings + 4), u"it took too long"_s);
    if (lives) {
      Require(program_->pc.Rests() && !line_.IsOpen(), u"not at rest"_s);
      Require(!program_->progress.visible, u"the progress is shown at rest"_s);
    }
    return lives;
  }

  void TakeValues() {
    Tweak();
    PlanEnd();
    SafeRun run;
    int taken = 0;
    const bool lives = Lives([&] {
      run = ReadToReceive(program_->context);
      Uncheck(run);
      if (run.error.isEmpty()) taken = TakeOverChosen(program_->pc.core, run);
    });
    RequireNothingWritten();
    if (!lives) {
      StartProgram();
      return;
    }
    Require(taken == 0 || run.error.isEmpty(), u"taken over in spite of an error"_s);
    for (const SafeValue& value : run.values) {
      PlantParameter& parameter = ParameterOf(value);
      const ParameterRecord& record = Tables().Par[value.index];
      if (run.error.isEmpty() && value.chosen && value.controller) {
        parameter.value = record.Wert;
        parameter.text = record.WertText;
      }
      Require(record.Wert == parameter.value && record.WertText == parameter.text,
              u"a value was taken over that was not chosen: "_s + parameter.variable);
    }
    JudgeReadings(run);
    RequireComplete(run);
  }

  void Verify() {
    Tweak();
    PlanEnd();
    SafeRun run;
    const bool lives = Lives([&] { run = ReadToVerify(program_->context); });
    RequireNothingWritten();
    if (!lives) {
      StartProgram();
      return;
    }
    JudgeReadings(run);
    RequireComplete(run);
  }

  void SendOrRestore() {
    Tweak();
    PlanEnd();
    const bool restores = !backups_.empty() && random_.Chance(0.4);
    auto backup = backups_.begin();
    if (restores) std::advance(backup, random_.Below(static_cast<int>(backups_.size())));
    wanted_ = restores ? backup->second : ValuesOfTable();
    own_ = &line_.Connected();
    atBegin_ = ValuesOf(*own_);
    chosen_.clear();
    SafeRun run;
    bool read = false;
    const bool lives = Lives([&] {
      if (restores) {
        const StoredBackup stored = ReadBackup(files_, backup->first);
        Require(stored.error.isEmpty(), u"the backup cannot be read: "_s + stored.error);
        int unknown = 0;
        run = ReadToRestore(program_->context, stored.backup, unknown);
      } else {
        run = ReadToSend(program_->context);
      }
      JudgeReadings(run);
      if (run.error.isEmpty() && line_.lastIdentified != nullptr) {
        own_ = line_.lastIdentified;
        atBegin_ = ValuesOf(*own_);
      }
      Uncheck(run);
      for (const SafeValue& value : run.values) {
        if (value.chosen) chosen_.insert(value.index - 1);
      }
      read = run.error.isEmpty();
      if (read) WriteChosen(program_->context, run);
    });
    if (!run.backup.isEmpty() && !backups_.contains(run.backup)) {
      OwnValues values;
      for (const SafeValue& value : run.values) {
        if (value.before) values.insert(*atBegin_.find(value.index - 1));
      }
      backups_[run.backup] = values;
    }
    JudgeWrites(run);
    sendTouch_ = firstTouch_;
    if (!lives) {
      ++totals.early;
      Heal();
      StartProgram();
      Resume(run, true);
      return;
    }
    if (read) {
      JudgeClaims(run, SafeState::Verified);
      for (const SafeValue& value : run.values) {
        Require(value.state != SafeState::Verified || value.chosen, u"verified and not chosen"_s);
      }
    }
    RequireComplete(run);
    const bool early = run.aborted || !run.error.isEmpty() || run.Count(SafeState::Verified) != run.Chosen();
    if (early) EndEarly(run);
  }

  void EndEarly(SafeRun& run) {
    ++totals.early;
    if (!program_->store.Unfinished() && run.begun.empty()) {
      Expect(IsAsBefore(), u"nothing was begun and something changed"_s);
      return;
    }
    Heal();
    if (program_->store.Unfinished()) {
      if (random_.Chance(0.5)) StartProgram();
      Resume(run, false);
    } else if (random_.Chance(0.5)) {
      // What failed is tried again.
      ++totals.repeated;
      ChooseFailed(run);
      std::set<int> again;
      for (const SafeValue& value : run.values) {
        if (value.chosen) again.insert(value.index - 1);
      }
      // A second time for what somebody has changed meanwhile.
      for (int left = 2; left > 0 && run.Chosen() > 0; --left) {
        (void)Lives([&] { WriteChosen(program_->context, run); });
        Expect(run.error.isEmpty(), u"repeating fails: "_s + run.error);
        if (left > 1) ChooseFailed(run);
      }
      for (const int number : chosen_) {
        if (again.contains(number)) ExpectHeld(number, u"repeated"_s);
      }
    } else {
      ++totals.takenBack;
      SafeRun back;
      (void)Lives([&] {
        back = ReadToTakeBack(program_->context, run);
        if (back.error.isEmpty()) WriteChosen(program_->context, back);
      });
      ExpectTakenBack(back);
    }
  }

  // The sending that is offered is finished or taken back. `interrupted`: the run whose program was killed.
  void Resume(const SafeRun& interrupted, bool mayBeKilled) {
    if (!program_->store.Unfinished()) {
      // It was killed before the first word, or when everything was known.
      bool known = false;
      for (const SafeValue& value : interrupted.values)
        known = known || value.state == SafeState::Verified || value.state == SafeState::Deviating ||
                value.state == SafeState::Failed;
      Expect(known || IsAsBefore() || IsSent(), u"something was written and nothing is offered"_s);
      return;
    }
    const Sending sending = *program_->store.Unfinished();
    const bool finishes = random_.Chance(0.5);
    ++(finishes ? totals.finished : totals.takenBack);
    SafeRun run;
    // Whoever finishes a sending may be killed as well.
    if (mayBeKilled && random_.Chance(0.3)) PlanKill();
    const bool lives = Lives([&] {
      run = finishes ? ReadToFinish(program_->context, sending) : ReadToTakeBack(program_->context, sending);
      if (run.error.isEmpty()) WriteChosen(program_->context, run);
    });
    if (!lives) {
      Heal();
      StartProgram();
      resumedTwice_ = true;
      Resume(run, false);
      return;
    }
    if (resumedTwice_) {
      // What was to be taken back may have been complete, so that taking back was a sending of its own.
      // A word that went into a controller that was put there meanwhile stays where that one is.
      Expect(IsSent() || IsAsBefore(true), u"neither as before nor as sent"_s);
    } else if (finishes) {
      Expect(run.error.isEmpty(), u"finishing fails: "_s + run.error);
      Expect(
          run.Count(SafeState::Verified) + run.Count(SafeState::Equal) == static_cast<int>(run.values.size()),
          u"not finished: "_s + AccountText(run));
      for (const int number : chosen_)
        ExpectHeld(number, u"finished"_s);
    } else {
      ExpectTakenBack(run);
    }
    Expect(!program_->store.Unfinished(), u"the sending is still offered"_s);
  }

  void ExpectTakenBack(const SafeRun& run) {
    Expect(run.error.isEmpty() || run.values.empty(), u"taking back fails: "_s + run.error);
    Expect(
        run.Count(SafeState::Verified) + run.Count(SafeState::Equal) == static_cast<int>(run.values.size()),
        u"not taken back: "_s + AccountText(run));
    for (const auto& [number, own] : atBegin_)
      Expect(Holds(*own_, own), u"not as before: "_s + Name(number));
  }

  void ExpectHeld(int number, const QString& what) {
    const auto own = wanted_.find(number);
    Expect(own != wanted_.end() && Holds(*own_, own->second), what + u" and not held: "_s + Name(number));
  }

  // Where the line could lie, what comes of it is counted; else it is a problem.
  void Expect(bool holds, const QString& text) {
    if (holds) return;
    Require(Explanation().has_value(), text);
    ++totals.notHeld;
  }

  void Heal() {
    line_.Heal();
    // Nor does the clock, which may end an operation.
    constexpr double day_s = 86400;
    constexpr double longest_s = 3600;
    clock_.ForgetSteps();
    if (const double left_s = day_s - clock_.SecondsSinceMidnight(); left_s < longest_s)
      clock_.Advance(left_s + 1);
    line_.PutBack(*own_);
    healed_ = true;
    PlanNoEnd();
  }

  void Uncheck(SafeRun& run) {
    if (!random_.Chance(0.5)) return;
    for (SafeValue& value : run.values)
      value.chosen = value.chosen && random_.Chance(0.7);
  }

  // --- judging ---

  // What the line has done so far that no rule can see; nothing where there was nothing of the kind.
  [[nodiscard]] std::optional<WrongClass> Explanation() const {
    std::optional<WrongClass> found;
    if (exchangedForLike()) return WrongClass::ExchangedForLike;
    for (const Origin& origin : line_.origins) {
      if (origin.kind == Origin::Kind::Foreign) return WrongClass::ForeignReply;
      if (origin.damages >= 2 || origin.requestDamages >= 2) found = WrongClass::SumPreserving;
    }
    return found;
  }

  [[nodiscard]] bool exchangedForLike() const {
    const bool happened = line_.Exchanged() || wasExchanged_;
    return happened && first_->version == second_->version && samePlant_;
  }

  void CountWrong(const QString& text, bool shown = false) {
    const std::optional<WrongClass> found = Explanation();
    Require(found.has_value(), text);
    if (shown) {
      ++totals.shownWrong;
      return;
    }
    ++totals.wrong;
    ++totals.byClass[static_cast<std::size_t>(*found)];
  }

  // The controller that has answered the last version query of the run.
  [[nodiscard]] const Station& Truth() const {
    return line_.lastIdentified != nullptr ? *line_.lastIdentified : *first_;
  }

  // What a run says of values that were read, before anything is written.
  void JudgeReadings(const SafeRun& run) {
    wasExchanged_ = wasExchanged_ || line_.Exchanged();
    if (!run.error.isEmpty()) {
      for (const SafeValue& value : run.values)
        Require(value.state == SafeState::NotRead || !value.chosen, u"chosen in spite of an error"_s);
      return;
    }
    for (const SafeValue& value : run.values) {
      if (value.state != SafeState::Equal && value.state != SafeState::Different) continue;
      const PlantParameter& parameter = ParameterOf(value);
      const bool shown = value.state == SafeState::Different && run.kind != SafeKind::Receive &&
                         run.kind != SafeKind::Verify;
      ++(shown ? totals.shown : totals.claims);
      if (!shown) totals.words += static_cast<double>(value.words.size());
      const std::optional<OwnBytes> read =
          BytesOf(parameter, value.controller->number, value.controller->text);
      if (!read || !Holds(Truth(), *read)) {
        CountWrong(u"read and not held: "_s + parameter.variable, shown);
        continue;
      }
      if (run.kind == SafeKind::Receive) continue;
      const auto own = wanted_.find(value.index - 1);
      const auto wanted = run.kind == SafeKind::Verify ? BytesOf(parameter, parameter.value, parameter.text)
                          : own == wanted_.end()       ? std::nullopt
                                                       : std::optional(own->second);
      const bool holds = wanted && Holds(Truth(), *wanted);
      if (value.sendable && holds != (value.state == SafeState::Equal))
        CountWrong((holds ? u"different and held: "_s : u"equal and not held: "_s) + parameter.variable);
    }
  }

  void JudgeClaims(const SafeRun& run, SafeState state) {
    wasExchanged_ = wasExchanged_ || line_.Exchanged();
    for (const SafeValue& value : run.values) {
      if (value.state != state) continue;
      ++totals.claims;
      totals.words += static_cast<double>(value.words.size());
      const auto own = wanted_.find(value.index - 1);
      Require(own != wanted_.end(), u"verified and not wanted: "_s + Name(value.index - 1));
      if (!Holds(Truth(), own->second)) CountWrong(u"verified and not held: "_s + Name(value.index - 1));
    }
  }

  // No byte has changed but those of chosen values.
  void JudgeWrites(const SafeRun& run) {
    wasExchanged_ = wasExchanged_ || line_.Exchanged();
    std::set<int> mine;
    for (const int number : chosen_) {
      const auto own = wanted_.find(number);
      for (int i = 0; own != wanted_.end() && i < own->second.bytes.size(); ++i)
        mine.insert(own->second.first + i);
    }
    std::set<std::pair<const Station*, int>> seen;
    for (std::size_t i = firstTouch_; i < line_.touches.size(); ++i) {
      const Touch& touch = line_.touches[i];
      for (int half = 0; half < 2; ++half) {
        const int address = touch.address + half;
        if (mine.contains(address) || !seen.insert({touch.station, address}).second) continue;
        const auto before = static_cast<quint8>(half == 0 ? touch.before >> 8 : touch.before);
        if (ByteAt(touch.station->memory, address) == before) continue;
        // A word is read, and written to a controller that was put there in between: nothing is said to be
        // verified then.
        if (touch.station == second_.get() && !exchangedForLike() && run.Count(SafeState::Verified) == 0) {
          ++totals.toldStrays;
          continue;
        }
        Require(Explanation().has_value(), u"%1 was changed by nobody"_s.arg(address, 4, 16));
        ++totals.strays;
      }
    }
  }

  void RequireNothingWritten() {
    Require(line_.touches.size() == firstTouch_ || Explanation().has_value(), u"reading has written"_s);
  }

  [[nodiscard]] bool IsSent() const {
    return std::ranges::all_of(chosen_, [this](int number) {
      const auto own = wanted_.find(number);
      return own != wanted_.end() && Holds(*own_, own->second);
    });
  }

  // What the sending has touched is as it was; in the controller that it began with, or in all of them.
  [[nodiscard]] bool IsAsBefore(bool ownAlone = false) const {
    std::set<std::pair<const Station*, quint16>> seen;
    for (std::size_t i = sendTouch_; i < line_.touches.size(); ++i) {
      const Touch& touch = line_.touches[i];
      if (ownAlone && touch.station != own_) continue;
      if (seen.insert({touch.station, touch.address}).second &&
          touch.station->memory.Word(touch.address) != touch.before)
        return false;
    }
    return true;
  }

  // Where nothing goes wrong everything comes out.
  void RequireComplete(const SafeRun& run) {
    if (scene != Scene::Clean || healed_ || aborted_ || clock_.Disturbed(0, clock_.Passed())) return;
    // The reply to a program that was killed may be under way to the next one.
    if (totals.kills > 0) return;
    if (first_->version != plant_.Selected().payload) return;
    if (!plant_.Selected().plantAddress.isEmpty() && PlantOf(*first_) != plantType_) return;
    if (run.values.empty()) return;
    Require(run.error.isEmpty(), u"an error where nothing is wrong: "_s + run.error);
    for (const SafeValue& value : run.values) {
      Require(!value.chosen || run.kind == SafeKind::Verify || run.kind == SafeKind::Receive ||
                  value.state == SafeState::Verified,
              u"not verified where nothing is wrong: "_s + Name(value.index - 1) + u' ' + value.reason);
      Require(value.state != SafeState::NotRead || !value.reason.isEmpty(), u"not read without a reason"_s);
    }
    if (run.kind != SafeKind::Send && run.kind != SafeKind::Verify) return;
    // Each checked value that fits is there.
    std::set<int> there;
    for (const SafeValue& value : run.values)
      there.insert(value.index - 1);
    int number = 0;
    for (const PlantParameter& parameter : plant_.Selected().parameters) {
      if (parameter.checked && parameter.kind != Kind::Unknown)
        Require(there.contains(number), u"checked and missing: "_s + parameter.variable);
      ++number;
    }
  }

  // Of all single readings, how many brought a word that the controller did not hold?
  void CountReadings() {
    for (const Exchange& exchange : line_.log) {
      if (!exchange.frame || exchange.frame->mid(5, 1) != QByteArray(1, kReadLetter)) continue;
      test::ExchangeReading reading(exchange.frame->size(), exchange.sentShown_s);
      for (const Taken& taken : exchange.takes) {
        if (reading.GetState() != test::ExchangeReading::State::Waiting) break;
        reading.Take(taken.shown_s, taken.bytes, taken.gone);
      }
      const test::Verdict verdict = reading.Result(exchange.event.value_or(0));
      bool isHex = false;
      const quint16 word = verdict.payload.toUShort(&isHex, 16);
      if (!verdict.failure.isEmpty() || verdict.payload.size() != 4 || !isHex) continue;
      ++totals.readings;
      if (word != exchange.heldBefore) ++totals.misread;
    }
    const auto all = static_cast<double>(totals.readings);
    const auto wrong = static_cast<double>(totals.misread);
    if (all > 1) totals.predicted = totals.words * wrong * (wrong - 1) / (all * (all - 1));
  }

  // --- small ---

  Module1& Tables() { return program_->pc.module; }

  PlantParameter& ParameterOf(const SafeValue& value) {
    return plant_.Selected().parameters[static_cast<std::size_t>(value.index) - 1];
  }

  [[nodiscard]] QString Name(int number) {
    return plant_.Selected().parameters[static_cast<std::size_t>(number)].variable;
  }

  // The checked values of the PC's table that can be sent.
  OwnValues ValuesOfTable() {
    OwnValues values;
    int number = 0;
    for (const PlantParameter& parameter : plant_.Selected().parameters) {
      const std::optional<OwnBytes> own = BytesOf(parameter, parameter.value, parameter.text);
      if (own && parameter.checked) values[number] = *own;
      ++number;
    }
    return values;
  }

  OwnValues ValuesOf(const Station& station) {
    OwnValues values;
    int number = 0;
    for (const PlantParameter& parameter : plant_.Selected().parameters) {
      if (!parameter.address.isEmpty() && FirstAddress(parameter) + SizeOf(parameter) <= 0x10000)
        values[number] = Held(station, parameter);
      ++number;
    }
    return values;
  }

  Plant plant_;
  int plantType_;
  std::unique_ptr<Station> first_;
  std::unique_ptr<Station> second_;
  bool samePlant_ = PlantOf(*first_) == PlantOf(*second_);
  StepClock clock_;
  Line line_;
  MortalFiles files_{random_};
  std::unique_ptr<Program> program_;

  int pendingsUntilAbort_ = -1;
  int killAtRequest_ = -1;
  bool aborted_ = false;
  bool healed_ = false;
  bool wasExchanged_ = false;
  bool resumedTwice_ = false;

  // Of the present operation.
  std::size_t firstTouch_ = 0;
  std::size_t sendTouch_ = 0;  // of the sending that may have to be finished
  OwnValues wanted_;
  Station* own_ = first_.get();           // the controller that was there when it began
  OwnValues atBegin_;                     // what it held
  std::set<int> chosen_;                  // numbers of the values that the user lets be written
  std::map<QString, OwnValues> backups_;  // what the controller held, by path
};

void PrintTable(const std::array<Totals, kScenes>& scenes, double seconds) {
  Totals all;
  const auto number = [](qint64 count) { return static_cast<long long>(count); };
  std::printf("%-20s %8s %8s %10s %9s %8s %8s %8s %8s %6s %6s\n", "line", "seeds", "runs", "exchanges",
              "claims", "early", "finished", "back", "again", "wrong", "stray");
  for (std::size_t i = 0; i < kScenes; ++i) {
    const Totals& scene = scenes[i];
    all.Add(scene);
    std::printf("%-20s %8lld %8lld %10lld %9lld %8lld %8lld %8lld %8lld %6lld %6lld\n", kSceneNames[i],
                number(scene.seeds), number(scene.runs), number(scene.exchanges), number(scene.claims),
                number(scene.early), number(scene.finished), number(scene.takenBack), number(scene.repeated),
                number(scene.wrong), number(scene.strays));
  }
  std::printf("\nclaims that are wrong, by class:\n");
  for (std::size_t i = 0; i < kWrongClasses; ++i)
    std::printf("  %-24s %8lld\n", kWrongNames[i], number(all.byClass[i]));
  std::printf("  %-24s %8d\n", "outside every class", 0);
  const Totals& sums = scenes[static_cast<std::size_t>(Scene::SumsThatFit)];
  std::printf(
      "\nsums that fit: %lld of %lld single readings are wrong (%.2f %%). Two in a row, by the square of "
      "each "
      "seed's share: %.0f of %.0f words; wrong claims: %lld\n",
      number(sums.misread), number(sums.readings),
      100 * static_cast<double>(sums.misread) / static_cast<double>(std::max<qint64>(1, sums.readings)),
      sums.predicted, sums.words, number(sums.wrong));
  std::printf("%lld values shown as different before a sending, %lld of them wrong in the classes above\n",
              number(all.shown), number(all.shownWrong));
  std::printf(
      "%lld bytes changed in a controller that was then found to be another one; %lld values not "
      "finished or taken back in the classes above\n",
      number(all.toldStrays), number(all.notHeld));
  std::printf(
      "%lld seeds, %lld runs, %lld exchanges, %lld claims, %lld kills, %lld aborts, %lld clock steps\n",
      number(all.seeds), number(all.runs), number(all.exchanges), number(all.claims), number(all.kills),
      number(all.aborts), number(all.clockSteps));
  std::printf("%.1f days on their clocks in %.1f s: %.0f seeds/s\n", all.virtual_s / 86400, seconds,
              static_cast<double>(all.seeds) / seconds);
}

}  // namespace

int RunSafeTransfers(quint64 first, qint64 count) {
  std::array<Totals, kScenes> scenes;
  const auto start = std::chrono::steady_clock::now();
  const auto seconds = [start] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  for (qint64 i = 0; i < count; ++i) {
    const quint64 seed = first + static_cast<quint64>(i);
    QString problem;
    std::size_t scene = 0;
    try {
      Installation installation(seed);
      scene = static_cast<std::size_t>(installation.scene);
      try {
        installation.Run();
      } catch (const Problem& found) {
        problem = found.text;
      }
      scenes[scene].Add(installation.totals);
    } catch (const Problem& found) {
      problem = found.text;
    } catch (const std::exception& error) {
      problem = QString::fromUtf8(error.what());
    }
    if (!problem.isEmpty()) {
      std::printf("seed %llu (%s): %s\nReplay with: script/campaign safe --seeds 1 --seed %llu\n",
                  static_cast<unsigned long long>(seed), kSceneNames[scene], qPrintable(problem),
                  static_cast<unsigned long long>(seed));
      return 1;
    }
    if ((i + 1) % 50'000 == 0) {
      (void)std::fprintf(stderr, "%lld seeds, %.0f s\n", static_cast<long long>(i + 1), seconds());
    }
  }
  PrintTable(scenes, seconds());
  // Two readings that agree are rarely wrong, one alone is so by far more often.
  const Totals& sums = scenes[static_cast<std::size_t>(Scene::SumsThatFit)];
  constexpr double factor = 4;
  constexpr double allowance = 20;
  if (static_cast<double>(sums.wrong) <= factor * sums.predicted + allowance) return 0;
  std::printf("MORE WRONG CLAIMS THAN TWO READINGS IN A ROW EXPLAIN\n");
  return 1;
}

}  // namespace kalivor::campaign
