#include "commands/SafeCommands.h"

#include <QScopeGuard>
#include <algorithm>

#include "core/Busy.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

SafeRun Ended(SafeRun run, const QString& error) {
  run.error = error;
  return run;
}

void Tell(const Core& core, DeedKind kind, const SafeRun& run, bool aborted) {
  core.OnDeed.Tell({.kind = kind, .aborted = aborted, .run = &run});
}

// A chosen value was judged after the writing: the writing has begun.
bool Wrote(const SafeRun& run) {
  return std::ranges::any_of(run.values, [](const SafeValue& value) {
    return value.chosen && (value.state == SafeState::Verified || value.state == SafeState::Deviating ||
                            value.state == SafeState::Failed || value.state == SafeState::Unverified);
  });
}

// The words as they were before the sending, as far as it wanted them.
std::vector<CodedWord> WordsBefore(const Sending& sending) {
  std::vector<CodedWord> words = sending.wanted;
  for (CodedWord& word : words)
    word.bits = static_cast<quint16>(sending.before.at(word.address) & word.mask);
  return words;
}

// An unfinished sending is over where its controller holds what was wanted, whichever run has seen to it but
// the one that is about to take it back; or what was there before, where that was brought back.
void Settle(const SafeContext& context, const SafeRun& run) {
  const std::optional<Sending>& sending = context.store.Unfinished();
  if (!sending || !run.error.isEmpty() || run.aborted || run.version != sending->head.version) return;
  if (run.kind == SafeKind::Receive || run.kind == SafeKind::Verify) return;
  const bool takesBack = run.kind == SafeKind::TakeBack;
  const bool finished = !takesBack && Holds(run.now, sending->wanted);
  const bool undone = (takesBack || run.kind == SafeKind::Restore) && Holds(run.now, WordsBefore(*sending));
  // Where it cannot be forgotten, it is offered once more, which does no harm.
  if (finished || undone) (void)context.store.Forget();
}

SafeRun Read(const SafeContext& context, SafeRun run) {
  if (context.core.module.BusyDepth > 0) return Ended(std::move(run), u"Es wird noch gearbeitet."_s);
  const BusyGuard busy(context.core);
  ReadWords(context.core, run, context.progress);
  Settle(context, run);
  return run;
}

SafeRun ReadTable(const SafeContext& context, SafeKind kind) {
  SafeRun run = WantedOfTable(context.core.module, kind);
  if (run.values.empty()) return Ended(std::move(run), u"Kein Parameter ist angekreuzt."_s);
  return Read(context, std::move(run));
}

// Why something of this controller does not fit what is selected; "" where it does.
QString SelectionFault(const Module1& module, const BackupHead& head) {
  const auto differs = [](const QString& what, const QString& theirs, const QString& ours) {
    return u"%1: %2\r\nAusgewählt ist %3."_s.arg(what, theirs, ours);
  };
  if (head.version != module.VersionList.SelectedText())
    return differs(u"Andere ReglerVersion"_s, head.version, module.VersionList.SelectedText());
  if (head.plantType != module.PlantTypeList.SelectedText())
    return differs(u"Andere Anlageart"_s, head.plantType, module.PlantTypeList.SelectedText());
  return {};
}

SafeRun ReadNamed(const SafeContext& context, SafeKind kind, const BackupHead& head,
                  const std::vector<NamedWords>& names, const ControllerImage& image, int& unknown) {
  SafeRun none;
  none.kind = kind;
  const QString fault = SelectionFault(context.core.module, head);
  if (!fault.isEmpty()) return Ended(std::move(none), fault);
  SafeRun run = WantedOfImage(context.core.module, kind, names, image, unknown);
  if (run.values.empty()) return Ended(std::move(none), u"Kein Wert davon passt zu den Definitionen."_s);
  return Read(context, std::move(run));
}

// The words that the sending wanted, as far as they were known; the rest of a word as it was.
ControllerImage WantedWords(const Sending& sending) {
  ControllerImage image = sending.before;
  for (const CodedWord& word : sending.wanted) {
    quint16& now = image[word.address];
    now = static_cast<quint16>((now & ~word.mask) | word.bits);
  }
  return image;
}

}  // namespace

SafeRun ReadToSend(const SafeContext& context) {
  return ReadTable(context, SafeKind::Send);
}

SafeRun ReadToReceive(const SafeContext& context) {
  return ReadTable(context, SafeKind::Receive);
}

SafeRun ReadToVerify(const SafeContext& context) {
  SafeRun run = ReadTable(context, SafeKind::Verify);
  // A reading with an error has no values.
  if (run.error.isEmpty()) Tell(context.core, DeedKind::Compared, run, run.aborted);
  return run;
}

SafeRun ReadToRestore(const SafeContext& context, const Backup& backup, int& unknown) {
  return ReadNamed(context, SafeKind::Restore, backup.head, backup.values, backup.words, unknown);
}

SafeRun ReadToFinish(const SafeContext& context, const Sending& sending) {
  int unknown = 0;
  SafeRun run =
      ReadNamed(context, SafeKind::Finish, sending.head, sending.values, WantedWords(sending), unknown);
  // What was there before the sending is what can be taken back, not what it has left.
  for (const auto& [address, word] : sending.before) {
    if (run.before.contains(address)) run.before[address] = word;
  }
  for (SafeValue& value : run.values)
    value.before = Decoded(context.core.module.Par[value.index], run.before);
  run.begun.insert(sending.begun.begin(), sending.begun.end());
  run.backup = sending.backup;
  return run;
}

SafeRun ReadToTakeBack(const SafeContext& context, const Sending& sending) {
  int unknown = 0;
  return ReadNamed(context, SafeKind::TakeBack, sending.head, sending.values, sending.before, unknown);
}

SafeRun ReadToTakeBack(const SafeContext& context, const SafeRun& run) {
  SafeRun back = WantedBack(context.core.module, run);
  if (back.values.empty()) return Ended(std::move(back), u"Es wurde nichts geschrieben."_s);
  return Read(context, std::move(back));
}

void WriteChosen(const SafeContext& context, SafeRun& run) {
  if (context.core.module.BusyDepth > 0) {
    run.error = u"Es wird noch gearbeitet."_s;
    return;
  }
  const BusyGuard busy(context.core);
  bool aborted = true;
  const auto tell = qScopeGuard([&] {
    const bool restores = run.kind == SafeKind::Restore || run.kind == SafeKind::TakeBack;
    if (Wrote(run)) Tell(context.core, restores ? DeedKind::Restored : DeedKind::SentSafely, run, aborted);
  });
  WriteWords(context.core, run, context.store, context.progress);
  Settle(context, run);
  aborted = run.aborted || !run.error.isEmpty();
}

int ChooseFailed(SafeRun& run) {
  for (SafeValue& value : run.values) {
    value.chosen = value.chosen && value.sendable &&
                   (value.state == SafeState::Failed || value.state == SafeState::Deviating ||
                    value.state == SafeState::Unverified);
  }
  return run.Chosen();
}

int TakeOverChosen(Core& core, SafeRun& run) {
  if (core.module.BusyDepth > 0) return 0;
  int taken = 0;
  for (SafeValue& value : run.values) {
    if (!value.chosen || !value.controller) continue;
    core.module.SetValue(value.index, *value.controller, ValueSource::Received);
    value.state = SafeState::Equal;
    ++taken;
  }
  const auto tell = qScopeGuard([&] { Tell(core, DeedKind::Received, run, run.aborted); });
  if (taken > 0) Refresh(core, 2);
  return taken;
}

QString SafeTitle(SafeKind kind) {
  switch (kind) {
    case SafeKind::Send:
      return u"Sicher senden"_s;
    case SafeKind::Receive:
      return u"Sicher empfangen"_s;
    case SafeKind::Verify:
    case SafeKind::Compare:
      return u"Prüfen"_s;
    case SafeKind::Restore:
      return u"Wiederherstellen"_s;
    case SafeKind::Finish:
      return u"Zu Ende senden"_s;
    case SafeKind::TakeBack:
      return u"Zurücknehmen"_s;
  }
  return {};
}

QString UnfinishedText(const ParameterTable& definitions, const Sending& sending) {
  return u"%1 von %2 Werten geschrieben"_s.arg(ValuesBegun(definitions, sending)).arg(sending.values.size());
}

}  // namespace kalivor
