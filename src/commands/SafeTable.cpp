#include "commands/SafeTable.h"

#include <algorithm>

#include "commands/SafeCommands.h"
#include "core/ParameterList.h"
#include "core/ParameterTypes.h"
#include "core/ValueSets.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

QString CountOf(int count) {
  return count == 1 ? u"1 Wert"_s : u"%1 Werte"_s.arg(count);
}

const std::optional<ParameterValue>& Before(const SafeValue& value) {
  return value.before ? value.before : value.controller;
}

QString ValueText(const ParameterRecord& record, const std::optional<ParameterValue>& value) {
  return value ? ExactText(record, *value) : QString();
}

QString StateText(const ParameterRecord& record, const SafeRun& run, const SafeValue& value) {
  QStringList reasons;
  if (!value.reason.isEmpty()) reasons.append(value.reason);
  if (IsNewOutside(record, run, value))
    reasons.append(u"außerhalb der Grenzen %1 bis %2"_s.arg(ExactNumber(record, record.Min),
                                                            ExactNumber(record, record.Max)));
  const QString state = SafeStateText(value.state);
  return reasons.isEmpty() ? state : state + u": "_s + reasons.join(u", "_s);
}

// "von 40 angekreuzten Werten"
QString WhoseValues(SafeKind kind) {
  switch (kind) {
    case SafeKind::Send:
    case SafeKind::Receive:
    case SafeKind::Verify:
    case SafeKind::Compare:
      return u"angekreuzten Werten"_s;
    case SafeKind::Restore:
      return u"Werten der Sicherung"_s;
    case SafeKind::Finish:
    case SafeKind::TakeBack:
      return u"Werten der Sendung"_s;
  }
  return {};
}

QString NothingToDo(SafeKind kind) {
  switch (kind) {
    case SafeKind::Send:
    case SafeKind::Finish:
      return u"Nichts zu senden"_s;
    case SafeKind::Receive:
      return u"Nichts zu übernehmen"_s;
    case SafeKind::Restore:
      return u"Nichts wiederherzustellen"_s;
    case SafeKind::TakeBack:
      return u"Nichts zurückzunehmen"_s;
    case SafeKind::Verify:
    case SafeKind::Compare:
      break;
  }
  return u"Kein Unterschied"_s;
}

// Behind "Nichts zu senden".
QString EqualText(int equal, int all) {
  if (equal == 0) return u"."_s;
  if (all == 1) return u": Der Wert ist gleich."_s;
  if (equal == all) return u": Alle %1 Werte sind gleich."_s.arg(all);
  return equal == 1 ? u": 1 Wert ist gleich."_s : u": %1 Werte sind gleich."_s.arg(equal);
}

// What becomes of `chosen` of the `different` values.
QString FateText(SafeKind kind, int chosen, int different) {
  const bool receive = kind == SafeKind::Receive;
  const QString done = receive ? u"in den PC übernommen."_s : u"in den Regler geschrieben."_s;
  if (chosen == 0) return receive ? u"keiner wird übernommen."_s : u"keiner wird geschrieben."_s;
  if (chosen < different)
    return (chosen == 1 ? u"1 davon wird "_s : u"%1 davon werden "_s.arg(chosen)) + done;
  return (chosen == 1 ? u"er wird "_s : u"sie werden "_s) + done;
}

}  // namespace

QString SafeColumnTitle(SafeKind kind, SafeColumn column) {
  switch (column) {
    case SafeColumn::Mark:
      return u"Kreuz"_s;
    case SafeColumn::Number:
      return u"Nr"_s;
    case SafeColumn::Name:
      return u"Name"_s;
    case SafeColumn::Old:
      return kind == SafeKind::Receive ? u"PC (alt)"_s : u"Regler (alt)"_s;
    case SafeColumn::New:
      switch (kind) {
        case SafeKind::Send:
        case SafeKind::Verify:
        case SafeKind::Compare:
          return u"PC (neu)"_s;
        case SafeKind::Receive:
          return u"Regler (neu)"_s;
        case SafeKind::Restore:
          return u"Sicherung (neu)"_s;
        case SafeKind::Finish:
          return u"Sendung (neu)"_s;
        case SafeKind::TakeBack:
          return u"vorher (neu)"_s;
      }
      return {};
    case SafeColumn::Now:
      return u"Regler (jetzt)"_s;
    case SafeColumn::Unit:
      return u"Einheit"_s;
    case SafeColumn::State:
      return u"Zustand"_s;
  }
  return {};
}

bool HasColumn(SafeKind kind, SafePhase phase, SafeColumn column) {
  if (column == SafeColumn::Mark) return phase == SafePhase::Choice;
  if (column == SafeColumn::Now) return phase == SafePhase::Account || kind == SafeKind::Finish;
  return true;
}

bool IsTrouble(SafeState state) {
  return state == SafeState::Deviating || state == SafeState::Failed || state == SafeState::Unverified;
}

std::vector<std::size_t> SafeRows(const SafeRun& run, SafePhase phase) {
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < run.values.size(); ++i) {
    const SafeState state = run.values[i].state;
    const bool shown = phase == SafePhase::Choice ? state != SafeState::Equal
                                                  : state == SafeState::Verified || IsTrouble(state);
    if (shown) rows.push_back(i);
  }
  if (phase == SafePhase::Account)
    std::stable_partition(rows.begin(), rows.end(),
                          [&](std::size_t i) { return IsTrouble(run.values[i].state); });
  return rows;
}

bool CanBeChosen(const SafeRun& run, const SafeValue& value) {
  if (value.state != SafeState::Different) return false;
  return run.kind == SafeKind::Receive ? value.controller.has_value() : value.sendable;
}

bool IsNewOutside(const ParameterRecord& record, const SafeRun& run, const SafeValue& value) {
  if (run.kind != SafeKind::Receive) return value.outside;
  return value.controller && IsOutside(record, *value.controller);
}

QString SafeCellText(const ParameterRecord& record, const SafeRun& run, const SafeValue& value,
                     SafeColumn column) {
  const bool receive = run.kind == SafeKind::Receive;
  switch (column) {
    case SafeColumn::Mark:
      return {};
    case SafeColumn::Number:
      return QString::number(value.index);
    case SafeColumn::Name:
      return record.Name;
    case SafeColumn::Old:
      return receive ? ExactText(record, value.wanted) : ValueText(record, Before(value));
    case SafeColumn::New:
      return receive ? ValueText(record, value.controller) : ExactText(record, value.wanted);
    case SafeColumn::Now:
      return ValueText(record, value.controller);
    case SafeColumn::Unit:
      return record.Einheit.Trimmed();
    case SafeColumn::State:
      return StateText(record, run, value);
  }
  return {};
}

QString ChoiceText(const SafeRun& run, int unknown) {
  const int all = static_cast<int>(run.values.size());
  const int different = run.Count(SafeState::Different);
  const int unread = run.Count(SafeState::NotRead);
  QStringList sentences;
  if (different == 0) {
    sentences.append(NothingToDo(run.kind) + EqualText(run.Count(SafeState::Equal), all));
  } else {
    const QString found = all == 1 ? u"Der Wert ist verschieden"_s
                                   : u"%1 von %2 %3 %4 verschieden"_s.arg(
                                         QString::number(different), QString::number(all),
                                         WhoseValues(run.kind), different == 1 ? u"ist"_s : u"sind"_s);
    sentences.append(found + u"; "_s + FateText(run.kind, run.Chosen(), different));
  }
  if (unread > 0)
    sentences.append(unread == 1 ? u"1 Wert konnte nicht gelesen werden."_s
                                 : u"%1 Werte konnten nicht gelesen werden."_s.arg(unread));
  if (unknown > 0)
    sentences.append(unknown == 1 ? u"1 weiterer steht nicht in den Definitionen."_s
                                  : u"%1 weitere stehen nicht in den Definitionen."_s.arg(unknown));
  return sentences.join(u' ');
}

QString ChoiceCommand(const SafeRun& run) {
  QString command;
  switch (run.kind) {
    case SafeKind::Receive:
      command = u"&übernehmen"_s;
      break;
    case SafeKind::Restore:
      command = u"&wiederherstellen"_s;
      break;
    case SafeKind::TakeBack:
      command = u"&zurückschreiben"_s;
      break;
    case SafeKind::Send:
    case SafeKind::Finish:
    case SafeKind::Verify:
    case SafeKind::Compare:
      command = u"&senden"_s;
      break;
  }
  return CountOf(run.Chosen()) + u' ' + command;
}

QString AdviceText(const SafeRun& run) {
  QStringList sentences;
  if (run.aborted) sentences.append(u"Abgebrochen."_s);
  if (!run.error.isEmpty()) sentences.append(QString(run.error).replace(u"\r\n"_s, u" "_s));
  if (run.begun.empty()) {
    sentences.append(u"Es wurde nichts geschrieben; der Regler ist, wie er war."_s);
  } else if (std::ranges::none_of(run.values, IsTrouble, &SafeValue::state)) {
    sentences.append(u"Was geschrieben wurde, ist zurückgelesen: Es steht so im Regler."_s);
  } else {
    sentences.append(
        u"Nicht alle Werte stehen sicher im Regler. „Fehlgeschlagene wiederholen“ sendet die übrigen "
        "noch einmal, „Zurücknehmen“ schreibt zurück, was vorher im Regler stand."_s);
  }
  return sentences.join(u' ');
}

ListTable SafeTable(const Module1& module, const SafeRun& run, SafePhase phase, const QDate& date) {
  ListTable table{{SafeTitle(run.kind)}, {}, {}};
  table.heading += ListHeading(module, date);
  if (phase == SafePhase::Account) table.heading.append(u"Ergebnis: "_s + AccountText(run));
  if (!run.backup.isEmpty()) table.heading.append(u"Sicherung: "_s + run.backup);
  std::vector<SafeColumn> columns;
  for (int i = 0; i < kSafeColumns; ++i) {
    const auto column = static_cast<SafeColumn>(i);
    if (!HasColumn(run.kind, phase, column)) continue;
    columns.push_back(column);
    table.titles.append(SafeColumnTitle(run.kind, column));
  }
  for (const std::size_t row : SafeRows(run, phase)) {
    const SafeValue& value = run.values[row];
    const ParameterRecord& record = module.Par[value.index];
    const bool isText = TypeOf(record.Typ).kind == ValueKind::Text;
    std::vector<TableCell>& cells = table.rows.emplace_back();
    for (const SafeColumn column : columns) {
      if (column == SafeColumn::Mark) {
        cells.push_back({value.chosen ? u"x"_s : QString(), false});
        continue;
      }
      const bool isValue =
          column == SafeColumn::Old || column == SafeColumn::New || column == SafeColumn::Now;
      cells.push_back(
          {SafeCellText(record, run, value, column), column == SafeColumn::Number || (isValue && !isText)});
    }
  }
  return table;
}

QString ControllerText(const BackupHead& head) {
  QStringList parts{head.version};
  if (!head.plantType.isEmpty()) parts.append(u"Anlageart "_s + head.plantType);
  parts.append(u"Adresse %1"_s.arg(head.address));
  if (!head.port.isEmpty()) parts.append(head.port);
  return parts.join(u", "_s);
}

QString UnfinishedSentence(const Module1& module, const Sending& sending, const QString& written) {
  QStringList lines{written.isEmpty() ? u"Eine Sendung an den Regler wurde unterbrochen."_s
                                      : u"Eine Sendung an den Regler wurde unterbrochen: %1."_s.arg(written)};
  lines << u"Ein Teil der Werte im Regler ist vielleicht neu, der Rest alt."_s << QString()
        << u"Regler: "_s + ControllerText(sending.head)
        << u"Begonnen: "_s + sending.head.time.toString(u"dd.MM.yyyy HH:mm"_s) << QString();
  if (sending.head.address != module.Adresse)
    lines.append(u"Eingestellt ist jetzt die Adresse %1; bitte prüfen, ob das derselbe Regler ist."_s.arg(
        module.Adresse));
  if (sending.head.version != module.VersionList.SelectedText() ||
      sending.head.plantType != module.PlantTypeList.SelectedText())
    lines.append(
        u"Version und Anlageart der Sendung werden dafür gewählt; ihre Definitionen werden neu gelesen."_s);
  lines.append(
      u"„Zu Ende senden“ schreibt die fehlenden Werte, „Zurücknehmen“ schreibt zurück, was vorher im "
      "Regler stand. Beide zeigen zuerst, was geschrieben wird."_s);
  return lines.join(u'\n');
}

}  // namespace kalivor
