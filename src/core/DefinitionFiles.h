// Version table, definition files and address lists.
#pragma once

#include <QString>

#include "core/Core.h"

namespace kalivor {

/// Column `n` (from 0) of a line whose columns are separated by two or more blanks; "" beyond the last.
[[nodiscard]] QString GetField(QStringView line, int n);

/// Everything from the start of column `n` to the end of the line.
[[nodiscard]] QString GetRest(QStringView line, int n);

/// The number of `hex` plus `offset`, as upper-case hexadecimal of the same length, cut from the left.
[[nodiscard]] QString AddOffset(const QString& hex, qint32 offset);

/// `error` with the definition file that it comes from behind its description, and the line (from 1) if that
/// is known.
[[nodiscard]] RuntimeError DefinitionError(const RuntimeError& error, const QString& path, int line = 0);

/// One definition line as a record; values and address list are not considered (Wert, WertText stay empty).
/// `hasAddressList` decides what column 9 means. Throws RuntimeError (Overflow) for a number that does not
/// fit its field.
[[nodiscard]] ParameterRecord ParseDefinition(QStringView line, bool hasAddressList);

/// One line of the version table.
[[nodiscard]] VersionRecord ParseVersion(QStringView line);

/// Full paths of the files. The definition paths hold a doubled separator, which every system accepts.
[[nodiscard]] QString VersionTablePath(const Module1& module);
[[nodiscard]] QString DefinitionPath(const Module1& module, const QString& fileName);

/// Reads the version table into Versionen and the version list and selects the first version, which rebuilds
/// everything below. Any error on the way is shown in a box. Appends the missing separator to Inipath.
/// The result is always false: the rebuild has then happened through the list's change handler.
bool ReadVersionTable(Core& core);

/// Reads the definition file of the selected version into Par, ParFile and ParLine. Values of the slots are
/// kept. Throws RuntimeError, with the file and the line in its description: FileError when it cannot be
/// read, Bounds at the 2001st parameter, Overflow.
void ReadDefinitions(Core& core);

/// Reads the address list of the selected version, if it has one, into the parameters. An error is shown in a
/// box.
void ReadAddressList(Core& core);

/// Gives parameters 1..ParCount named `name` the address `value`, their own offset added.
void SetAddress(Module1& module, const QString& value, const QString& name);

}  // namespace kalivor
