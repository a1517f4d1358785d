// What the parameter list does to marks and values.
#pragma once

#include <span>

#include "core/Core.h"
#include "core/ParameterList.h"

namespace kalivor {

// What changes something returns at once while an operation is under way.

/// The tree's node of a parameter; 0 where the plant type hides it.
[[nodiscard]] int NodeOfParameter(Core& core, int index);

/// Makes the parameter's node current and visible, if it has one.
void ShowInTree(Core& core, int index);

/// Gives the parameters this mark, the same that their nodes show. Nothing is handed up or down.
void MarkParameters(Core& core, std::span<const int> indexes, bool checked);

/// Marks these parameters and no others.
void MarkOnly(Core& core, std::span<const int> indexes);

/// What typed text comes to.
struct TypedValue {
  enum class Verdict {
    Complete,    ///< can be stored
    Incomplete,  ///< not yet
    Refused,     ///< nor after further characters
  };

  Verdict verdict = Verdict::Refused;
  QString reason;        ///< in German: why it is no value; empty when it is one, or when nothing is typed
  ParameterValue value;  ///< of a complete one: the number, or the text
};

/// Judges what was typed as value of the parameter. Of numbers comma and point are decimal signs, and blanks
/// around them do not count.
[[nodiscard]] TypedValue JudgeTyped(const ParameterRecord& record, const QString& text);

/// True for a parameter that can be edited: its type has an editor, and its decimals make numbers.
[[nodiscard]] bool CanBeEdited(const ParameterRecord& record);

/// Stores what was typed as the editors' OK does: a number with its mark and its node's text, a text with a
/// new tree. False when it is not complete; nothing is stored then.
bool EditParameter(Core& core, int index, const QString& text);

/// Those of the rows whose comparison values can be taken over: checked, different, and read.
[[nodiscard]] std::vector<ListRow> RowsToTakeOver(std::span<const ListRow> shown);

/// Asks how many values are to be taken over, and a second time about those outside their limits; then the
/// comparison values become the PC's. Returns how many did.
int TakeOver(Core& core, std::span<const ListRow> shown);

}  // namespace kalivor
