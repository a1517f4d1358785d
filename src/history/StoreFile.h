// The file of a history: who may open it, its version, and what becomes of a damaged one.
#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "history/Sql.h"

namespace kalivor::history {

/// What brings the tables of one version to a later one; version 0 has none.
struct SchemaStep {
  int from = 0;
  int to = 0;
  QStringList statements;
};

/// A version, and the steps that lead to it. Each is a transaction: its statements and the version, or
/// neither.
struct SchemaVersions {
  int version = 0;
  std::vector<SchemaStep> steps;
};

/// Of this program.
[[nodiscard]] SchemaVersions CurrentSchema();

/// An open file, or why there is none.
struct OpenedFile {
  std::unique_ptr<FileConnection> connection;  ///< null: it cannot be used
  bool newer = false;                          ///< of a newer program: it can only be read
  QString note = {};  ///< what the user is to be told, with a connection too; else ""
};

/// Looks at the whole file first. One that is missing is made, for the user alone, as are folders on the way;
/// one of an older version is brought to this one; one that is damaged is set aside under its DamagedName(),
/// or that name with a number where there is one already, and begun anew, unless another program has it
/// open.
[[nodiscard]] OpenedFile OpenForWriting(const QString& file, const SchemaVersions& schema = CurrentSchema());

/// For reading alone, at once. There is no connection and no note where there is no file yet.
[[nodiscard]] OpenedFile OpenForReading(const QString& file, const SchemaVersions& schema = CurrentSchema());

}  // namespace kalivor::history
