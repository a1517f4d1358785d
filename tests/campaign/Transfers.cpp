// Making up an installation, a line and a user for a seed, and holding the outcome against the oracle.
#include "campaign/Transfers.h"

#include <unistd.h>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "campaign/Oracle.h"
#include "campaign/Pc.h"
#include "campaign/Usage.h"
#include "commands/EventBoundary.h"
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"

using namespace Qt::StringLiterals;

namespace kalivor::campaign {
namespace {

/// Kinds of lines; a seed belongs to one.
enum class Scene { Clean, OneTrouble, Noisy, Slow, Unplugged, Exchanged, Master, Everything, kCount };
constexpr std::size_t kScenes = static_cast<std::size_t>(Scene::kCount);
constexpr const char* kSceneNames[kScenes] = {
    "undisturbed",          "one fault",      "many faults",        "slow controller", "unplugging, refusal",
    "exchanged controller", "foreign master", "everything together"};
constexpr const char* kWrongNames[kWrongClasses] = {"foreign reply",           "late reply",
                                                    "sum-preserving change",   "write without effect",
                                                    "exchanged controller",    "version of other length",
                                                    "collision of two senders"};

struct Totals {
  qint64 seeds = 0, transfers = 0, exchanges = 0, accepted = 0;
  qint64 finished = 0, aborted = 0, runTimeErrors = 0, failures = 0, deviations = 0, userAborts = 0,
         clockSteps = 0;
  WrongCounts wrong{};
  double virtual_s = 0;

  void Add(const Totals& other) {
    seeds += other.seeds;
    transfers += other.transfers;
    exchanges += other.exchanges;
    accepted += other.accepted;
    finished += other.finished;
    aborted += other.aborted;
    runTimeErrors += other.runTimeErrors;
    failures += other.failures;
    deviations += other.deviations;
    userAborts += other.userAborts;
    clockSteps += other.clockSteps;
    for (std::size_t i = 0; i < kWrongClasses; ++i)
      wrong[i] += other.wrong[i];
    virtual_s += other.virtual_s;
  }
};

LineProfile RandomProfile(Random& random, Scene scene) {
  LineProfile profile;
  profile.echo = random.Chance(0.4);
  profile.paced = random.Chance(0.5);
  static constexpr int kRates[] = {0, 9600, 19200};
  profile.rate = random.Chance(0.7) ? 0 : kRates[random.Below(3)];
  const bool everything = scene == Scene::Everything;
  static constexpr double kTroubleRates[] = {0.02, 0.1, 0.3};
  if (scene == Scene::OneTrouble) profile.troubleAt = random.Below(25);
  if (scene == Scene::Noisy || everything) profile.troubleRate = kTroubleRates[random.Below(3)];
  if (scene == Scene::Noisy && random.Chance(0.5)) {
    profile.trouble = static_cast<Trouble>(random.Between(1, static_cast<int>(Trouble::kCount) - 1));
  }
  if (scene == Scene::Slow || (everything && random.Chance(0.3))) {
    profile.leastDelay_ms = random.Between(1, 350);
    profile.mostDelay_ms = random.Between(350, 1500);
    profile.forgetsWhileBusy = random.Chance(0.5);
  }
  if (scene == Scene::Unplugged) {
    profile.trouble = Trouble::Vanish;
    profile.troubleRate = 0.15;
    profile.refusalRate = random.Chance(0.5) ? 0.1 : 0;
  }
  if (scene == Scene::Exchanged || (everything && random.Chance(0.3))) profile.exchangedAt = random.Below(20);
  if (scene == Scene::Master || (everything && random.Chance(0.3))) {
    profile.masterPause_s = 0.02 + random.Fraction() * 0.3;
    profile.hearsMaster = random.Chance(0.5);
  }
  return profile;
}

double RandomStart_s(Random& random) {
  constexpr double day_s = 86400;
  return random.Chance(0.2) ? day_s - random.Fraction() * 10 : random.Fraction() * (day_s - 60);
}

// Somebody sets the clock during the transfers.
int PlanClockSteps(Random& random, StepClock& clock) {
  if (!random.Chance(0.2)) return 0;
  const int steps = random.Between(1, 3);
  for (int i = 0; i < steps; ++i) {
    static constexpr double kWidths_s[] = {0.3, 3, 3600, 40000};
    const double width_s = kWidths_s[random.Below(4)];
    clock.Plan({random.Fraction() * 8, (2 * random.Fraction() - 1) * width_s});
  }
  return steps;
}

/// The PC, the line and both controllers of a seed.
class Installation {
  Random random_;  // first: everything else is made up with it

 public:
  const Scene scene;
  Totals totals;

  /// The line behaves as the seed says, or as `profile` does.
  explicit Installation(quint64 seed, const std::optional<LineProfile>& profile = {})
      : random_(seed),
        scene(profile ? Scene::Clean : static_cast<Scene>(random_.Below(static_cast<int>(kScenes)))),
        plant_(RandomPlant(random_)),
        first_(StationOf(random_.Below(static_cast<int>(plant_.versions.size())))),
        second_(StationOf(random_.Below(static_cast<int>(plant_.versions.size())))),
        clock_(RandomStart_s(random_)),
        line_(clock_, random_, profile.value_or(RandomProfile(random_, scene)), *first_, *second_),
        pc_(line_, clock_, files_) {
    totals.seeds = 1;
    totals.clockSteps = PlanClockSteps(random_, clock_);
    files_.files = FilesOf(plant_);
    pc_.module.Inipath = u"ini"_s;
    pc_.events.onPending = [this] { UserMayAbort(); };
    pc_.events.onWait = [this] { UserAnswers(); };
    pc_.Start();
  }

  /// All transfers of the seed; "" or the first failure.
  QString Run() {
    QString problem = CompareState(u"start"_s);
    for (int left = random_.Between(1, 3); left > 0 && problem.isEmpty(); --left)
      problem = RunOne(static_cast<Command>(random_.Below(3)), random_.Chance(0.2));
    // Whatever has happened, a healthy line serves again.
    if (problem.isEmpty() && random_.Chance(0.25)) {
      line_.Heal();
      problem = RunOne(Command::Receive, false);
      const QString last = pc_.view.lines.value(0);
      if (problem.isEmpty() && last.contains(u"ERROR"_s))
        problem = u"no transfer on the healthy line: "_s + last;
    }
    totals.exchanges = static_cast<qint64>(line_.log.size());
    totals.virtual_s = clock_.Passed();
    if (problem.isEmpty() && MustBeRight() && totals.wrong != WrongCounts{}) {
      problem = u"a wrong value although nothing was wrong"_s;
    }
    return problem;
  }

  /// One transfer after the other until so many hours have passed; "" or the first failure. `watch` runs once
  /// an hour.
  QString RunFor(double hours, const std::function<void()>& watch) {
    constexpr double hour_s = 3600;
    double watched_s = 0;
    while (clock_.Passed() < hours * hour_s) {
      QString problem = RunOne(static_cast<Command>(totals.transfers % 3), false);
      if (!problem.isEmpty()) return problem;
      totals.exchanges += static_cast<qint64>(line_.log.size());
      line_.Forget();
      if (clock_.Passed() - watched_s < hour_s) continue;
      watched_s += hour_s;
      watch();
    }
    totals.virtual_s = clock_.Passed();
    return {};
  }

  /// One transfer held against the oracle; "" or how it differs.
  QString RunOne(Command command, bool mayAbort) {
    Tweak();
    line_.BeginTransfer();
    pc_.report.OKButton_Click();
    pc_.choice.questions.clear();
    pc_.box.texts.clear();
    user_ = {};
    pendingsUntilAbort_ = mayAbort ? random_.Between(1, 12) : -1;
    abortsInQuestion_ = mayAbort && random_.Chance(0.3);
    operationsBefore_ = pc_.view.operations;
    const std::size_t firstExchange = line_.log.size();

    TransferOutcome outcome;
    const bool returned = RunHandler(pc_.box, [&] {
      switch (command) {
        case Command::Receive:
          outcome = CommandEmpfangen_Click(pc_.core);
          break;
        case Command::Compare:
          outcome = CommandVergleichen_Click(pc_.core);
          break;
        case Command::Send:
          outcome = CommandSenden_Click(pc_.core);
          break;
      }
    });
    pendingsUntilAbort_ = -1;

    Oracle oracle(plant_, settings_, line_, clock_, firstExchange, user_);
    const QString mismatch = oracle.Run(command);
    const Expected& expected = oracle.Result();
    Count(expected);
    if (!mismatch.isEmpty())
      return mismatch + u"\nreport:\n"_s + pc_.view.lines.join(u"\n"_s) + u"\nexpected so far:\n"_s +
             expected.lines.join(u"\n"_s);
    if (pc_.view.lines != expected.lines) {
      return u"report:\n"_s + pc_.view.lines.join(u'\n') + u"\nexpected:\n"_s + expected.lines.join(u'\n');
    }
    if (pc_.box.texts != expected.boxes) return u"boxes: "_s + pc_.box.texts.join(u'|');
    if (pc_.choice.questions != expected.questions)
      return u"questions: "_s + pc_.choice.questions.join(u'\n');
    if (returned == expected.thrown) return u"run-time error"_s;
    if (returned &&
        (outcome.transferred != expected.transferred || outcome.walk.Failures() != expected.failures ||
         outcome.walk.Deviations() != expected.deviations)) {
      return u"outcome"_s;
    }
    return CompareState(u"state after "_s + pc_.view.lines.value(0));
  }

 private:
  std::unique_ptr<Station> StationOf(int version) {
    const PlantVersion& description = plant_.versions[static_cast<std::size_t>(version)];
    // Now and then one of a version that the PC does not know, or one that does not hear it.
    const QByteArray payload = random_.Chance(0.03) ? QByteArray("ZZ9-0064") : description.payload;
    auto station = std::make_unique<Station>(random_.Chance(0.02) ? kStation + 1 : kStation,
                                             FixedText<2>(u"WR"_s), payload);
    FillController(random_, description, station->memory);
    return station;
  }

  // Nothing can bring a wrong value here. A clock that is set or passes midnight can: it ends the wait for a
  // reply early, which then comes as the answer to a later request.
  [[nodiscard]] bool MustBeRight() const {
    return scene == Scene::Clean && !clock_.Disturbed(0, clock_.Passed());
  }

  // The user edits values and check marks between the transfers.
  void Tweak() {
    PlantVersion& version = plant_.Selected();
    for (std::size_t i = 0; i < version.parameters.size(); ++i) {
      PlantParameter& parameter = version.parameters[i];
      ParameterRecord& record = pc_.module.Par[static_cast<int>(i) + 1];
      if (random_.Chance(0.3)) {
        parameter.value = record.Wert = static_cast<qint32>(random_.Next()) >> random_.Between(0, 24);
      }
      if (random_.Chance(0.05)) {
        parameter.checked = !parameter.checked;
        pc_.module.ParNode[static_cast<int>(i) + 1] = parameter.checked ? kTrue : kFalse;
      }
    }
    Refresh(pc_.core, 2);
  }

  void UserMayAbort() {
    if (pendingsUntilAbort_ < 0 || --pendingsUntilAbort_ != 0) return;
    pendingsUntilAbort_ = -1;
    ++totals.userAborts;
    user_.abortAtOperation = pc_.view.operations - operationsBefore_;
    pc_.report.Command_Abbruch_Click();
  }

  void UserAnswers() {
    clock_.Advance(random_.Fraction() * 5);
    if (abortsInQuestion_) {
      abortsInQuestion_ = false;
      ++totals.userAborts;
      user_.abortAtQuestion = static_cast<int>(pc_.choice.questions.size()) - 1;
      pc_.report.Command_Abbruch_Click();
    }
    user_.answers.push_back(static_cast<qint16>(random_.Between(1, 2)));
    pc_.module.Antwort = user_.answers.back();
  }

  void Count(const Expected& expected) {
    ++totals.transfers;
    totals.accepted += expected.accepted;
    totals.failures += expected.failures;
    totals.deviations += expected.deviations;
    for (std::size_t i = 0; i < kWrongClasses; ++i)
      totals.wrong[i] += expected.wrong[i];
    if (expected.thrown) {
      ++totals.runTimeErrors;
    } else if (!expected.lines.isEmpty() && expected.lines.last().endsWith(u"beendet"_s)) {
      ++totals.finished;
    } else {
      ++totals.aborted;
    }
  }

  // The PC's tables and flags against what they have to be.
  QString CompareState(const QString& what) {
    Module1& module = pc_.module;
    if (!pc_.Rests() || line_.IsOpen()) return what + u": not at rest"_s;
    if (pc_.module.VersionList.Position() != plant_.version ||
        pc_.module.PlantTypeList.Position() != plant_.plant) {
      return what + u": selections"_s;
    }
    const PlantVersion& version = plant_.Selected();
    if (!version.plantAddress.isEmpty() && module.Par[0].Wert != plant_.plantValue)
      return what + u": plant value"_s;
    if (module.ParCount != static_cast<int>(version.parameters.size()) + 1) return what + u": count"_s;
    for (std::size_t i = 0; i < version.parameters.size(); ++i) {
      const PlantParameter& parameter = version.parameters[i];
      const int index = static_cast<int>(i) + 1;
      const ParameterRecord& record = module.Par[index];
      if (record.Variable != parameter.variable ||
          record.VarAdresse != QString::fromLatin1(parameter.address) ||
          (module.ParNode[index] != kFalse) != parameter.checked) {
        return what + u": parameter "_s + parameter.variable;
      }
      if (record.Wert != parameter.value || record.WertText != parameter.text) {
        return what + u": %1 is %2 '%3' instead of %4 '%5'"_s.arg(record.Variable)
                          .arg(record.Wert)
                          .arg(record.WertText)
                          .arg(parameter.value)
                          .arg(parameter.text);
      }
    }
    return CompareTree(what);
  }

  // The tree shows what the table holds.
  QString CompareTree(const QString& what) {
    const platform::TreeView& tree = pc_.main.tree;
    for (int node = 1; node <= tree.Count(); ++node) {
      const QString key = tree.Key(node);
      if (!key.startsWith(u"sK"_s)) continue;
      const QString text = ParamText(pc_.module.Par[key.mid(3).toInt()]);
      if (tree.Text(node) != text)
        return what + u": the tree shows "_s + tree.Text(node) + u" instead of "_s + text;
    }
    return {};
  }

  Plant plant_;
  std::unique_ptr<Station> first_;
  std::unique_ptr<Station> second_;
  StepClock clock_;
  Line line_;
  test::MemoryFiles files_;
  Pc pc_;
  QString settings_ = u"9600,o,7,1"_s;
  UserActions user_;
  int pendingsUntilAbort_ = -1;
  bool abortsInQuestion_ = false;
  int operationsBefore_ = 0;
};

void PrintTable(const std::array<Totals, kScenes>& scenes, double seconds) {
  Totals all;
  std::printf("%-21s %9s %10s %11s %10s %9s %9s %8s\n", "line", "seeds", "transfers", "exchanges", "finished",
              "ended", "errors", "wrong");
  for (std::size_t i = 0; i < kScenes; ++i) {
    const Totals& scene = scenes[i];
    all.Add(scene);
    qint64 wrong = 0;
    for (const qint64 count : scene.wrong)
      wrong += count;
    std::printf("%-21s %9lld %10lld %11lld %10lld %9lld %9lld %8lld\n", kSceneNames[i],
                static_cast<long long>(scene.seeds), static_cast<long long>(scene.transfers),
                static_cast<long long>(scene.exchanges), static_cast<long long>(scene.finished),
                static_cast<long long>(scene.aborted), static_cast<long long>(scene.runTimeErrors),
                static_cast<long long>(wrong));
  }
  std::printf("\nwrong values by class:\n");
  for (std::size_t i = 0; i < kWrongClasses; ++i)
    std::printf("  %-24s %10lld\n", kWrongNames[i], static_cast<long long>(all.wrong[i]));
  std::printf("  %-24s %10d\n", "outside every class", 0);
  std::printf(
      "\n%lld seeds, %lld transfers, %lld exchanges, %lld good replies, %lld reported failures, "
      "%lld deviations, %lld aborts by the user, %lld clock steps\n",
      static_cast<long long>(all.seeds), static_cast<long long>(all.transfers),
      static_cast<long long>(all.exchanges), static_cast<long long>(all.accepted),
      static_cast<long long>(all.failures), static_cast<long long>(all.deviations),
      static_cast<long long>(all.userAborts), static_cast<long long>(all.clockSteps));
  std::printf("%.1f days on their clocks in %.1f s: %.0f seeds/s\n", all.virtual_s / 86400, seconds,
              static_cast<double>(all.seeds) / seconds);
}

}  // namespace

int RunTransfers(quint64 first, qint64 count) {
  std::array<Totals, kScenes> scenes;
  const auto start = std::chrono::steady_clock::now();
  const auto seconds = [start] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  for (qint64 i = 0; i < count; ++i) {
    const quint64 seed = first + static_cast<quint64>(i);
    Installation installation(seed);
    QString problem;
    try {
      problem = installation.Run();
    } catch (const std::exception& error) {
      problem = QString::fromUtf8(error.what());
    }
    if (!problem.isEmpty()) {
      std::printf("seed %llu (%s): %s\nReplay with: script/campaign transfers --seeds 1 --seed %llu\n",
                  static_cast<unsigned long long>(seed),
                  kSceneNames[static_cast<std::size_t>(installation.scene)], qPrintable(problem),
                  static_cast<unsigned long long>(seed));
      return 1;
    }
    scenes[static_cast<std::size_t>(installation.scene)].Add(installation.totals);
    if ((i + 1) % 50'000 == 0) {
      (void)std::fprintf(stderr, "%lld seeds, %.0f s\n", static_cast<long long>(i + 1), seconds());
    }
  }
  PrintTable(scenes, seconds());
  return 0;
}

int RunSimulatedEndurance(double hours) {
  constexpr quint64 seed = 1;
  constexpr qint64 allowance_kib = 512;
  LineProfile profile;
  profile.paced = true;
  profile.echo = true;
  Installation installation(seed, profile);
  Course course;
  const QString problem = installation.RunFor(hours, [&course] { course.Add(UsageOf(getpid())); });
  if (!problem.isEmpty()) {
    std::printf("%s\n", qPrintable(problem));
    return 1;
  }
  const Totals& totals = installation.totals;
  qint64 wrong = 0;
  for (const qint64 count : totals.wrong)
    wrong += count;
  std::printf(
      "%.1f hours on its clock: %lld transfers, %lld finished, %lld exchanges, %lld reported failures, "
      "%lld wrong values\n%s\n",
      totals.virtual_s / 3600, static_cast<long long>(totals.transfers),
      static_cast<long long>(totals.finished), static_cast<long long>(totals.exchanges),
      static_cast<long long>(totals.failures), static_cast<long long>(wrong), qPrintable(course.Text()));
  const bool constant = course.Constant(allowance_kib) && totals.finished == totals.transfers;
  std::printf("%s\n", constant ? "constant" : "NOT CONSTANT");
  return constant ? 0 : 1;
}

}  // namespace kalivor::campaign
