// The parameter tree: node keys, node texts, and building it.
#pragma once

#include <QString>

#include "core/Core.h"

namespace kalivor {

/// True when the selected plant type occurs in `plantTypes` (a record's Zusatz). An empty one matches all.
[[nodiscard]] bool ShowParam(QStringView selectedPlantType, QStringView plantTypes);

/// A number of the record (value, limit or default) in display units, as every column shows it.
/// Throws RuntimeError (Overflow) when Zahl1 + Zahl2 is above 9.
[[nodiscard]] QString Scaled(const ParameterRecord& record, qint32 value);

/// The parameter line: name, value, unit, minimum, maximum, standard in columns.
/// Throws RuntimeError (Overflow) when Zahl1 + Zahl2 is above 9; the short line does as well.
[[nodiscard]] QString ParamText(const ParameterRecord& record);

/// The same without minimum, maximum and standard, for printing.
[[nodiscard]] QString ParamTextShort(const ParameterRecord& record);

/// The `text` (one of the two above) of parameter `index`; an error names the line of its definition.
[[nodiscard]] QString DefinedText(const Module1& module, int index, QString (*text)(const ParameterRecord&));

/// The text of a group node.
[[nodiscard]] QString GroupText(const QString& group);

/// Node keys: root "R", group "K 3", parameter "sK 17".
[[nodiscard]] QString RootKey();
[[nodiscard]] QString GroupKey(int group);
[[nodiscard]] QString ParameterKey(int index);

/// Rebuilds the main window's tree from Par. The tree is visible afterwards, also after an error, which names
/// the line of the definition.
void BuildTree(Core& core);

}  // namespace kalivor
