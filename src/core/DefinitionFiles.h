// Version table, definition files and address lists.
#pragma once

#include <QString>

#include "base/Module1.h"
#include "platform/FileSystem.h"

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
[[nodiscard]] QString VersionTablePath(const Settings& settings);
[[nodiscard]] QString DefinitionPath(const Settings& settings, const QString& fileName);

/// True when the version has an address list.
[[nodiscard]] bool HasAddressList(const VersionRecord& version);

/// What a box says when the version table, or another file, at `path` cannot be read.
[[nodiscard]] QString VersionTableFailure(const QString& path, const RuntimeError& error);
[[nodiscard]] QString ReadFailure(const QString& path, const RuntimeError& error);

/// Reads the version table at `path` into `table`; selects nothing. Throws RuntimeError: FileError when it
/// cannot be read, Overflow; the rows before it stay.
void ReadVersionTable(VersionTable& table, platform::FileSystem& files, const QString& path);

/// Reads a definition file into Par, ParFile and ParLine; `hasAddressList` decides what column 9 means.
/// Values of the slots are kept. Throws RuntimeError, with the file and the line in its description:
/// FileError when it cannot be read, Bounds at the 2001st parameter, Overflow.
void ReadDefinitions(ParameterTable& table, platform::FileSystem& files, const QString& path,
                     bool hasAddressList);

/// Reads an address list into the parameters 1..ParCount that bear its names, their own offsets added.
/// Throws RuntimeError (FileError) when it cannot be read; the addresses before the fault are taken over.
void ReadAddressList(ParameterTable& table, platform::FileSystem& files, const QString& path);

}  // namespace kalivor
