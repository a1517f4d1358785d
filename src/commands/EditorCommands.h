// Filling the parameter editors, and what their OK does.
#pragma once

#include <optional>

#include "core/Core.h"

namespace kalivor {

/// What the editors show for parameter `index` (0..2000, else RuntimeError Bounds) at tree node `node`.
/// Throws RuntimeError (Overflow, DivisionByZero) when Zahl1 + Zahl2 makes no usable power of ten.
[[nodiscard]] NumberEdit NumberEditOf(const Module1& module, int index, int node);
[[nodiscard]] TextEdit TextEditOf(const Module1& module, int index);

/// The stored value for what was typed: `wert` if it lies between `von` and `bis` (all in display units, read
/// up to the first character that is no number), with Zahl1 decimals kept and Zahl2 digits forced to zero.
/// Empty when it lies outside. Throws RuntimeError (Overflow).
[[nodiscard]] std::optional<qint32> EditedValue(const ParameterRecord& record, const QString& von,
                                                const QString& wert, const QString& bis);

/// OK of the numeric editor: stores the value, refreshes the node and checks it. A value outside the limits
/// is dropped without a message (false). Throws RuntimeError: TypeMismatch, Bounds, Overflow; nothing is
/// stored then.
bool DialogEdit_OK(Core& core, const NumberEdit& content);

/// OK of the string editor: stores the text exactly as typed and rebuilds the tree.
void DialogEditString_OK(Core& core, const TextEdit& content);

/// To be called by an editor that has been hidden, however it was closed.
void EditorHidden(Module1& module, bool otherEditorVisible);

}  // namespace kalivor
