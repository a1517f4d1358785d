// What the user reads of a safe run: the table of its values and the sentences about it.
#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "core/BackupText.h"
#include "core/ListTable.h"
#include "core/SafeTransfer.h"

namespace kalivor {

/// Before anything is written the user chooses; afterwards there is the account.
enum class SafePhase { Choice, Account };

/// In the order in which they stand at first.
enum class SafeColumn { Mark, Number, Name, Old, New, Now, Unit, State };
inline constexpr int kSafeColumns = static_cast<int>(SafeColumn::State) + 1;

/// Its heading: "Nr", "Regler (alt)", "PC (neu)" …
[[nodiscard]] QString SafeColumnTitle(SafeKind kind, SafeColumn column);

/// Only the choice has marks, and only the account what there is now; and the choice of an unfinished
/// sending, whose old values are those before it.
[[nodiscard]] bool HasColumn(SafeKind kind, SafePhase phase, SafeColumn column);

/// The positions in `run.values` that the table shows: to choose from, all that are not equal; of the account
/// all that were to be written or have changed, those that are not verified first.
[[nodiscard]] std::vector<std::size_t> SafeRows(const SafeRun& run, SafePhase phase);

/// True for a value that the user may choose: another one, which can be sent, or taken over.
[[nodiscard]] bool CanBeChosen(const SafeRun& run, const SafeValue& value);

/// Something was to be written and is not verified.
[[nodiscard]] bool IsTrouble(SafeState state);

/// What becomes, or would become, the new value is outside the parameter's limits.
[[nodiscard]] bool IsNewOutside(const ParameterRecord& record, const SafeRun& run, const SafeValue& value);

/// What stands in a cell; "" for Mark. State says the reason too.
[[nodiscard]] QString SafeCellText(const ParameterRecord& record, const SafeRun& run, const SafeValue& value,
                                   SafeColumn column);

/// What will happen to the chosen values, or that there is nothing to do: "3 von 40 angekreuzten Werten sind
/// verschieden; sie werden in den Regler geschrieben." `unknown` values of a backup or a sending are not in
/// the definitions.
[[nodiscard]] QString ChoiceText(const SafeRun& run, int unknown);

/// The command that does it: "3 Werte &senden".
[[nodiscard]] QString ChoiceCommand(const SafeRun& run);

/// What the account means and what can be done: the line below AccountText.
[[nodiscard]] QString AdviceText(const SafeRun& run);

/// The table as it leaves the program, with its heading.
[[nodiscard]] ListTable SafeTable(const Module1& module, const SafeRun& run, SafePhase phase,
                                  const QDate& date);

/// Which controller it was: "AB1-123.4, Anlageart A, Adresse 1, COM1 (/dev/ttyS0)".
[[nodiscard]] QString ControllerText(const BackupHead& head);

/// What the user has to know to decide about an unfinished sending; `written` is what UnfinishedText says, ""
/// where that cannot be told.
[[nodiscard]] QString UnfinishedSentence(const Module1& module, const Sending& sending,
                                         const QString& written);

}  // namespace kalivor
