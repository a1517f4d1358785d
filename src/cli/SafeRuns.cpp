#include "cli/SafeRuns.h"

#include <QJsonDocument>

#include "cli/Edits.h"
#include "core/Busy.h"
#include "core/ValueSets.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

QString Shown(const ParameterRecord& record, const std::optional<ParameterValue>& value) {
  return value ? ExactText(record, *value) : QString();
}

// As `diff` prints it: what is wanted at the left, the controller at the right.
Table DifferencesOf(const Module1& module, const SafeRun& run) {
  Table table;
  for (const SafeValue& value : run.values) {
    if (value.state == SafeState::Equal) continue;
    const ParameterRecord& record = module.Par[value.index];
    table.push_back({{u"Nr"_s, value.index},
                     {u"Gruppe"_s, record.Rubrik},
                     {u"Name"_s, record.Name},
                     {u"Variable"_s, record.Variable},
                     {u"Links"_s, ExactText(record, value.wanted)},
                     {u"Rechts"_s, Shown(record, value.controller)},
                     {u"Einheit"_s, record.Einheit.Trimmed()},
                     {u"Zustand"_s, SafeStateText(value.state)}});
  }
  return table;
}

// One value between two columns.
Row AccountRow(const Module1& module, const SafeValue& value, const QString& left, const QString& leftText,
               const QString& right, const QString& rightText) {
  const ParameterRecord& record = module.Par[value.index];
  return {{u"Nr"_s, value.index}, {u"Name"_s, record.Name}, {u"Variable"_s, record.Variable},
          {left, leftText},       {right, rightText},       {u"Zustand"_s, SafeStateText(value.state)}};
}

Table ReadingsOf(const Module1& module, const SafeRun& run) {
  Table table;
  for (const SafeValue& value : run.values) {
    const ParameterRecord& record = module.Par[value.index];
    table.push_back(AccountRow(module, value, u"PC"_s, ExactText(record, value.wanted), u"Regler"_s,
                               Shown(record, value.controller)));
  }
  return table;
}

// What was written, and what has changed without being written.
Table WrittenOf(const Module1& module, const SafeRun& run) {
  Table table;
  for (const SafeValue& value : run.values) {
    if (value.state == SafeState::Equal || value.state == SafeState::Different ||
        value.state == SafeState::NotRead)
      continue;
    const ParameterRecord& record = module.Par[value.index];
    table.push_back(AccountRow(module, value, u"alt"_s, Shown(record, value.before), u"neu"_s,
                               ExactText(record, value.wanted)));
  }
  return table;
}

QJsonObject SummaryOf(const SafeRun& run) {
  QJsonObject counts;
  for (const SafeState state :
       {SafeState::Equal, SafeState::Different, SafeState::NotRead, SafeState::Verified, SafeState::Deviating,
        SafeState::Failed, SafeState::Unverified}) {
    if (run.Count(state) > 0) counts.insert(SafeStateText(state), run.Count(state));
  }
  return counts;
}

bool AllAre(const SafeRun& run, SafeState state) {
  return run.Count(state) == static_cast<int>(run.values.size());
}

}  // namespace

int SafeRuns::Receive() {
  SafeRun run = ReadToReceive(context_);
  if (!run.error.isEmpty() || run.aborted) return Print(run, {});
  const Table table = ReadingsOf(core_.module, run);
  // Without a user to ask, the limits decide as little as they do in a plain receive.
  for (SafeValue& value : run.values)
    value.chosen = value.state == SafeState::Different;
  const int status = Print(run, table);
  TakeOverChosen(core_, run);
  return run.Count(SafeState::NotRead) > 0 ? kFindings : status;
}

int SafeRuns::Verify() {
  const SafeRun run = ReadToVerify(context_);
  const int status = Print(run, ReadingsOf(core_.module, run));
  return status == kDone && !AllAre(run, SafeState::Equal) ? kFindings : status;
}

int SafeRuns::Send() {
  TellUnfinished();
  return Write(ReadToSend(context_));
}

int SafeRuns::Restore() {
  const StoredBackup stored = ReadBackup(world_.files, arguments_.words.first());
  if (!stored.error.isEmpty()) throw BadInput{stored.error};
  TellUnfinished();
  int unknown = 0;
  SafeRun run = ReadToRestore(context_, stored.backup, unknown);
  if (unknown > 0) {
    core_.box.Show(
        u"Zu %1 der gesicherten Werte gibt es hier keinen Parameter mit derselben Adresse und "
        "demselben Typ."_s.arg(unknown));
  }
  const int status = Write(std::move(run));
  return status == kDone && unknown > 0 ? kFindings : status;
}

int SafeRuns::Backups() {
  const BackupList list = ListBackups(world_.files, BackupFolder(core_.module));
  if (!list.error.isEmpty()) throw BadInput{list.error};
  Table table;
  bool damaged = false;
  for (const StoredBackup& stored : list.backups) {
    if (!stored.error.isEmpty()) {
      core_.box.Show(stored.path + u"\r\n"_s + stored.error);
      damaged = true;
      continue;
    }
    const BackupHead& head = stored.backup.head;
    table.push_back({{u"Zeit"_s, head.time.toString(Qt::ISODate)},
                     {u"Regler"_s, head.version},
                     {u"Anlageart"_s, head.plantType},
                     {u"Adresse"_s, head.address},
                     {u"Werte"_s, static_cast<int>(stored.backup.values.size())},
                     {u"Datei"_s, stored.path}});
  }
  world_.out << (arguments_.json ? QString::fromUtf8(QJsonDocument(ToJson(table)).toJson()) : ToText(table))
                    .toStdString();
  return damaged ? kFindings : kDone;
}

// From the difference table to the account.
int SafeRuns::Write(SafeRun run) {
  const auto print = [this](const QString& text) {
    if (!arguments_.json) world_.out << text.toStdString() << std::flush;
  };
  if (!run.error.isEmpty() || run.aborted) return Print(run, {});
  const Table differences = DifferencesOf(core_.module, run);
  print(u"Nr\tGruppe\tName\tVariable\tLinks\tRechts\tEinheit\tZustand\n"_s + ToText(differences));
  TellUnsent(run);
  bool written = false;
  if (run.Chosen() == 0) {
    print(u"Nichts zu senden\n"_s);
  } else if (!arguments_.dryRun) {
    if (!Confirmed(run)) return kNoTransfer;
    WriteChosen(context_, run);
    for (int left = arguments_.repeat.value_or(0); left > 0 && !run.aborted && ChooseFailed(run) > 0; --left)
      WriteChosen(context_, run);
    written = !run.backup.isEmpty();
  }
  const Table account = WrittenOf(core_.module, run);
  if (arguments_.json) {
    world_.out << QJsonDocument(QJsonObject{{u"differences"_s, ToJson(differences)},
                                            {u"backup"_s, run.backup},
                                            {u"values"_s, ToJson(account)},
                                            {u"summary"_s, SummaryOf(run)}})
                      .toJson()
                      .toStdString();
  } else if (written) {
    print(run.backup + u'\n' + ToText(account) + AccountText(run) + u'\n');
  }
  if (!run.error.isEmpty()) core_.box.Show(run.error);
  if (run.aborted) core_.box.Show(u"Das Senden wurde abgebrochen."_s);
  if (!run.error.isEmpty() || run.aborted) return kNoTransfer;
  const int good = run.Count(SafeState::Equal) + run.Count(SafeState::Verified);
  return good == static_cast<int>(run.values.size()) ? kDone : kFindings;
}

void SafeRuns::TellUnfinished() {
  const QString fault = store_.Load();
  if (!fault.isEmpty()) core_.box.Show(fault);
  const std::optional<Sending>& left = store_.Unfinished();
  if (!left) return;
  core_.box.Show(u"Eine Sendung vom %1 wurde unterbrochen: %2.\r\nSicherung davor: %3"_s.arg(
      left->head.time.toString(u"dd.MM.yyyy HH:mm"_s), UnfinishedText(core_.module, *left), left->backup));
}

// What differs and is left as it is.
void SafeRuns::TellUnsent(const SafeRun& run) {
  QStringList unsent;
  for (const SafeValue& value : run.values) {
    if (value.chosen || value.state == SafeState::Equal) continue;
    const QString reason = !value.reason.isEmpty() ? value.reason : u"außerhalb der Grenzen"_s;
    unsent.append(u"%1 (%2)"_s.arg(core_.module.Par[value.index].Variable, reason));
  }
  if (!unsent.isEmpty()) core_.box.Show(u"Nicht gesendet wird: "_s + unsent.join(u", "_s));
}

bool SafeRuns::Confirmed(const SafeRun& run) {
  if (arguments_.yes) return true;
  const int count = run.Chosen();
  return AskChoice(core_,
                   count == 1 ? u"1 Wert in den Regler schreiben?"_s
                              : u"%1 Werte in den Regler schreiben?"_s.arg(count),
                   u"Senden"_s, u"Abbrechen"_s) == 1;
}

// The lines of what was read and the summary, or why there are none.
int SafeRuns::Print(const SafeRun& run, const Table& table) {
  if (!run.error.isEmpty() || run.aborted) {
    core_.box.Show(run.error.isEmpty() ? u"Das Lesen des Reglers wurde abgebrochen."_s : run.error);
    return kNoTransfer;
  }
  if (arguments_.json) {
    world_.out << QJsonDocument(QJsonObject{{u"values"_s, ToJson(table)}, {u"summary"_s, SummaryOf(run)}})
                      .toJson()
                      .toStdString();
  } else {
    world_.out << (ToText(table) + AccountText(run) + u'\n').toStdString();
  }
  return kDone;
}

}  // namespace kalivor::cli
