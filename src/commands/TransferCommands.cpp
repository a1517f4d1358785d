#include "commands/TransferCommands.h"

#include <QScopeGuard>
#include <algorithm>
#include <new>

#include "base/Numbers.h"
#include "core/Busy.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// A number equal to the count passes here and fails at the selection.
bool PlantNumberFits(Core& core, qint16 number) {
  if (number <= core.module.PlantTypeList.Count()) return true;
  core.report.Add(u"Empfangene Anlagennummer ("_s + BlankNumber(number) + u") zu gross"_s);
  return false;
}

// Asks for the controller's version and keeps the answer.
Identification IdentifyController(Core& core) {
  Identification answer = core.controller.AskVersion(kSlot);
  core.module.ReglerVersion = answer.text;
  return answer;
}

// Reads the plant number; one that cannot be read, or is none, counts as a failure of the transfer.
qint16 QueryPlantNumber(Core& core, TransferOutcome& outcome) {
  const qint16 number = ReadPlantNumber(core);
  if (number == -1) outcome.walk.results.push_back({0, ParameterResult::Outcome::NotRead, 0});
  return number;
}

// Takes over the controller's plant type, as receiving and comparing do. False where it cannot be.
bool FollowPlantType(Core& core, qint16 number) {
  SelectionList& plants = core.module.PlantTypeList;
  // A single plant type needs no number.
  if (number <= -1) return plants.Count() < 2;
  if (plants.Position() == number) return true;
  if (!PlantNumberFits(core, number)) return false;
  core.module.SetNumber(0, number, ValueSource::PlantType);
  plants.Select(number);
  Refresh(core, 3);
  return true;
}

// The controller's values into table and tree. Where a RuntimeError ends the walk, the tree shows what had
// been taken over by then.
void ReceiveIntoTree(Core& core, WalkResult& walk) {
  try {
    Receive(core, walk);
  } catch (const RuntimeError&) {
    Refresh(core, 2);
    throw;
  }
  Refresh(core, 2);
}

// The lines and choices in which receiving and comparing differ.
struct FollowingTransfer {
  QString started;
  QString finished;
  QString aborted;
  bool switchesVersion;
  void (*engine)(Core&, WalkResult&);
};

// Identifies the controller and selects its version, if that is allowed. False where the transfer ends here,
// with the reason in the report.
bool FollowVersion(Core& core, const FollowingTransfer& transfer) {
  const Identification answer = IdentifyController(core);
  const QString& version = answer.text;
  if (!answer.succeeded) {
    core.report.Add(version);
    return false;
  }
  const int position = core.module.VersionList.Find(version);
  if (position < 0) {
    core.report.Add(version.left(5) == u"Error" ? version : u"Unbekannte ReglerVersion: "_s + version);
    return false;
  }
  if (core.module.VersionList.Position() == position) return true;
  if (!transfer.switchesVersion) {
    core.report.Add(u"Andere ReglerVersion: "_s + version);
    return false;
  }
  core.module.VersionList.Select(position);
  return true;
}

// Everything between the first and the last line. False where it was given up.
bool RunFollowing(Core& core, const FollowingTransfer& transfer, TransferOutcome& outcome) {
  if (!FollowVersion(core, transfer)) return false;
  if (FollowPlantType(core, QueryPlantNumber(core, outcome))) {
    transfer.engine(core, outcome.walk);
    outcome.transferred = true;
  }
  return core.module.Abbruch == kFalse;
}

// Told unless no parameter was reached.
void TellTransfer(const Core& core, const TransferOutcome& outcome, bool aborted) {
  const std::vector<ParameterResult>& results = outcome.walk.results;
  if (std::ranges::any_of(results, [](const ParameterResult& result) { return result.index > 0; }))
    core.OnDeed.Tell({.kind = outcome.kind, .aborted = aborted, .walk = &outcome.walk});
}

// The frame of every transfer: busy, the report, the first and the last line, also where a RuntimeError ends
// it. `run` returns false where the transfer was given up.
template <typename Run>
void RunTransfer(Core& core, TransferOutcome& outcome, const QString& started, const QString& finished,
                 const QString& givenUp, Run&& run) {
  if (core.module.BusyDepth > 0) return;
  const BusyGuard busy(core);
  bool aborted = true;
  const auto tell = qScopeGuard([&] { TellTransfer(core, outcome, aborted); });
  core.report.Show();
  core.report.Add(started);
  const auto giveUp = [&] {
    outcome.transferred = false;
    core.report.Add(givenUp);
  };
  try {
    const bool done = run();
    outcome.transferred = outcome.transferred && done;
    core.report.Add(done ? finished : givenUp);
    aborted = core.module.Abbruch != kFalse;
  } catch (const RuntimeError&) {
    giveUp();
    throw;
  } catch (const std::bad_alloc&) {
    giveUp();
    throw;
  }
}

void Follow(Core& core, TransferOutcome& outcome, const FollowingTransfer& transfer) {
  RunTransfer(core, outcome, transfer.started, transfer.finished, transfer.aborted,
              [&] { return RunFollowing(core, transfer, outcome); });
}

void WritePlantType(Core& core, TransferOutcome& outcome) {
  const ParameterRecord& plantType = core.module.Par[0];
  if (plantType.VarAdresse.isEmpty()) return;
  if (core.controller.WriteWord(kSlot, plantType.Wert, plantType.VarAdresse)) return;
  outcome.walk.results.push_back({0, ParameterResult::Outcome::NotSent});
  ReportResult(core, outcome.walk.results.back());
}

// True when the controller's version is the selected one. Otherwise the user may take over the controller's
// version and values; the send does not go on in either case.
bool VersionVergleichen(Core& core, TransferOutcome& outcome) {
  SelectionList& versions = core.module.VersionList;
  // A failure is looked up like a version, and found as little.
  const QString version = IdentifyController(core).text;
  if (version == versions.SelectedText()) return true;
  const int position = versions.Find(version);
  if (position < 0) {
    core.report.Add(u"Unbekannte ReglerVersion: "_s + version);
    return false;
  }
  const qint16 answer =
      AskChoice(core,
                u"Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r"
                "Der Befehl Senden kann nicht ausgeführt werden.\n\r\n\rBitte wählen Sie:"_s,
                u"PC     (Senden Abbrechen)  : "_s + versions.SelectedText(),
                u"Regler (Werte neu Einlesen): "_s + version);
  if (answer == 2) {
    core.module.VersionIndex = static_cast<qint16>(position + 1);
    versions.Select(position);
    Refresh(core, 4);
    outcome.kind = DeedKind::Received;
    ReceiveIntoTree(core, outcome.walk);
  }
  return false;
}

// True when the plant types agree or the user decided for the PC's, which is then written.
bool AnlagenVergleichen(Core& core, TransferOutcome& outcome) {
  SelectionList& plants = core.module.PlantTypeList;
  const qint16 number = QueryPlantNumber(core, outcome);
  if (number <= -1) return false;
  if (plants.Position() == number) return true;
  if (!PlantNumberFits(core, number)) return false;
  const qint16 answer =
      AskChoice(core,
                u"Die Anlageart auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r\n\r"
                "Bitte wählen Sie:"_s,
                u"PC: "_s + plants.SelectedText(), u"Regler: "_s + plants.Text(number));
  if (answer == kNoAnswer) return false;
  if (answer == 1) {
    WritePlantType(core, outcome);
    return true;
  }
  plants.Select(number);
  Refresh(core, 3);
  outcome.kind = DeedKind::Received;
  ReceiveIntoTree(core, outcome.walk);
  return false;
}

}  // namespace

void RunReceive(Core& core, TransferOutcome& outcome) {
  Follow(core, outcome,
         {u"Empfangen.."_s, u"Empfangen beendet"_s, u"Empfangen abgebrochen"_s, true, ReceiveIntoTree});
}

void RunCompare(Core& core, TransferOutcome& outcome) {
  outcome.kind = DeedKind::Compared;
  Follow(core, outcome,
         {u"Vergleichen.."_s, u"Vergleich beendet"_s, u"Vergleich abgebrochen"_s, false, Compare});
}

void RunSend(Core& core, TransferOutcome& outcome) {
  outcome.kind = DeedKind::Sent;
  RunTransfer(core, outcome, u"Senden.."_s, u"Senden beendet"_s, u"Senden abgebrochen"_s, [&] {
    if (!VersionVergleichen(core, outcome)) return false;
    if (!AnlagenVergleichen(core, outcome)) return false;
    Send(core, outcome.walk);
    outcome.transferred = true;
    return core.module.Abbruch == kFalse;
  });
}

TransferOutcome CommandEmpfangen_Click(Core& core) {
  TransferOutcome outcome;
  RunReceive(core, outcome);
  return outcome;
}

TransferOutcome CommandVergleichen_Click(Core& core) {
  TransferOutcome outcome;
  RunCompare(core, outcome);
  return outcome;
}

TransferOutcome CommandSenden_Click(Core& core) {
  TransferOutcome outcome;
  RunSend(core, outcome);
  return outcome;
}

void CommandStandard_Click(Core& core) {
  if (core.module.BusyDepth > 0) return;
  Deed reset{.kind = DeedKind::Reset, .aborted = true};
  if (core.OnDeed.Listens()) reset.before = ValuesOf(core.module);
  const auto tell = qScopeGuard([&] { core.OnDeed.Tell(reset); });
  SetStandard(core.module);
  Refresh(core, 2);
  reset.aborted = false;
}

}  // namespace kalivor
