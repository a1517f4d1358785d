#include "commands/TransferCommands.h"

#include <new>

#include "base/Numbers.h"
#include "core/Busy.h"
#include "core/Questions.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

void AddPlantNumberTooLarge(Core& core, qint16 number) {
  core.report.Add(u"Empfangene Anlagennummer ("_s + BlankNumber(number) + u") zu gross"_s);
}

// Reads the plant number; one that cannot be read counts as a failure of the transfer.
qint16 QueryPlantNumber(Core& core, TransferOutcome& outcome) {
  const qint16 number = ReadPlantNumber(core);
  if (number == -1) ++outcome.walk.failures;
  return number;
}

// Takes over the controller's plant type, as receiving and comparing do. False where it cannot be.
bool FollowPlantType(Core& core, qint16 number) {
  SelectionList& plants = core.module.PlantTypeList;
  // A single plant type needs no number.
  if (number <= -1) return plants.Count() < 2;
  if (plants.Position() == number) return true;
  // A number equal to the count passes here and fails at the selection.
  if (plants.Count() < number) {
    AddPlantNumberTooLarge(core, number);
    return false;
  }
  core.module.SetNumber(0, number, ValueSource::PlantType);
  plants.Select(number);
  Refresh(core, 3);
  return true;
}

// The controller's values into table and tree. Where a RuntimeError ends the walk, the tree shows what had
// been taken over by then.
WalkResult ReceiveIntoTree(Core& core) {
  WalkResult walk;
  try {
    walk = Receive(core);
  } catch (const RuntimeError&) {
    Refresh(core, 2);
    throw;
  }
  Refresh(core, 2);
  return walk;
}

// The lines and choices in which receiving and comparing differ.
struct FollowingTransfer {
  QString started;
  QString finished;
  QString aborted;
  bool switchesVersion;
  WalkResult (*engine)(Core&);
};

// Identifies the controller and selects its version, if that is allowed. False where the transfer ends here,
// with the reason in the report.
bool FollowVersion(Core& core, const FollowingTransfer& transfer) {
  QString& version = core.module.ReglerVersion;
  version = core.controller.Identify(kSlot);
  if (IsError(version)) {
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
    const WalkResult walk = transfer.engine(core);
    outcome.walk.failures += walk.failures;
    outcome.walk.deviations += walk.deviations;
    outcome.transferred = true;
  }
  return core.module.Abbruch == kFalse;
}

// The frame of every transfer: busy, the report, the first and the last line, also where a RuntimeError ends
// it. `run` returns false where the transfer was given up.
template <typename Run>
TransferOutcome RunTransfer(Core& core, const QString& started, const QString& finished,
                            const QString& aborted, Run&& run) {
  TransferOutcome outcome;
  if (core.module.BusyDepth > 0) return outcome;
  const BusyGuard busy(core);
  core.report.Show();
  core.report.Add(started);
  try {
    const bool done = run(outcome);
    outcome.transferred = outcome.transferred && done;
    core.report.Add(done ? finished : aborted);
  } catch (const RuntimeError&) {
    core.report.Add(aborted);
    throw;
  } catch (const std::bad_alloc&) {
    core.report.Add(aborted);
    throw;
  }
  return outcome;
}

TransferOutcome Follow(Core& core, const FollowingTransfer& transfer) {
  return RunTransfer(core, transfer.started, transfer.finished, transfer.aborted,
                     [&](TransferOutcome& outcome) { return RunFollowing(core, transfer, outcome); });
}

// The controller's values into the table, after the user decided for the controller's side of a question.
void TakeOverValues(Core& core, TransferOutcome& outcome) {
  outcome.walk.failures += ReceiveIntoTree(core).failures;
}

void WritePlantType(Core& core, TransferOutcome& outcome) {
  const ParameterRecord& plantType = core.module.Par[0];
  if (plantType.VarAdresse.isEmpty()) return;
  if (core.controller.WriteWord(kSlot, plantType.Wert, plantType.VarAdresse)) return;
  core.report.Add(u"Fehler bei: "_s + plantType.Variable);
  ++outcome.walk.failures;
}

}  // namespace

TransferOutcome CommandEmpfangen_Click(Core& core) {
  return Follow(
      core, {u"Empfangen.."_s, u"Empfangen beendet"_s, u"Empfangen abgebrochen"_s, true, ReceiveIntoTree});
}

TransferOutcome CommandVergleichen_Click(Core& core) {
  return Follow(core,
                {u"Vergleichen.."_s, u"Vergleich beendet"_s, u"Vergleich abgebrochen"_s, false, Compare});
}

TransferOutcome CommandSenden_Click(Core& core) {
  return RunTransfer(core, u"Senden.."_s, u"Senden beendet"_s, u"Senden abgebrochen"_s,
                     [&core](TransferOutcome& outcome) {
                       if (!VersionVergleichen(core, outcome)) return false;
                       if (!AnlagenVergleichen(core, outcome)) return false;
                       outcome.walk.failures += Send(core).failures;
                       outcome.transferred = true;
                       return core.module.Abbruch == kFalse;
                     });
}

void CommandStandard_Click(Core& core) {
  if (core.module.BusyDepth > 0) return;
  SetStandard(core.module);
  Refresh(core, 2);
}

bool VersionVergleichen(Core& core, TransferOutcome& outcome) {
  SelectionList& versions = core.module.VersionList;
  const QString version = core.module.ReglerVersion = core.controller.Identify(kSlot);
  if (version == versions.SelectedText()) return true;
  const int position = core.module.VersionList.Find(version);
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
    TakeOverValues(core, outcome);
  }
  return false;
}

bool AnlagenVergleichen(Core& core, TransferOutcome& outcome) {
  SelectionList& plants = core.module.PlantTypeList;
  const qint16 number = QueryPlantNumber(core, outcome);
  if (number <= -1) return false;
  if (plants.Position() == number) return true;
  if (plants.Count() < number) {
    AddPlantNumberTooLarge(core, number);
    return false;
  }
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
  TakeOverValues(core, outcome);
  return false;
}

}  // namespace kalivor
