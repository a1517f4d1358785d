// The table with what no value file holds, kept for the case that the program ends before it is saved.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "commands/FileCommands.h"
#include "commands/OwnFile.h"
#include "core/ValueSets.h"

namespace kalivor {

/// The table as it was at some time. All of its values are kept, not only the unsaved ones: those beside them
/// would else be the standard values, and could be taken for what they were.
struct KeptTable {
  QDateTime time;
  QString plantType;
  QString valueFile;          ///< the current one; "" when none was open
  ValueSet set;               ///< parameters 1..ParCount - 1
  std::vector<bool> unsaved;  ///< by position in the set: no value file holds this value

  [[nodiscard]] int UnsavedCount() const;
};

/// The table of `module`. `unsaved` says of which parameters no value file holds the value.
[[nodiscard]] KeptTable KeptTableOf(const Module1& module, const std::function<bool(int index)>& unsaved,
                                    const QDateTime& now);

/// The file of it: JSON in UTF-8. Nothing where the bytes are no such file.
[[nodiscard]] std::optional<KeptTable> ParseKeptTable(const QByteArray& bytes);
[[nodiscard]] QByteArray ComposeKeptTable(const KeptTable& kept);

/// "12 Werte von gestern 16:40": how many are unsaved, and when they were.
[[nodiscard]] QString RecoveryText(const KeptTable& kept, const QDateTime& now);

/// Selects version and plant type where they differ; open editors are closed. Returns "" or in German which
/// of them is unknown; nothing changes then. Throws RuntimeError as reading definitions does.
[[nodiscard]] QString SelectController(Core& core, const QString& version, const QString& plantType);

/// Makes the table what it was: selects version and plant type where they differ, gives the parameters their
/// values (ValueSource::Recovered) and rebuilds the tree; open editors are closed. The current file is the
/// one of that time again. `saved` is told of each parameter whose value a file holds. Where version or plant
/// type are unknown, a box says so and nothing changes; false then. What does not fit the definitions is
/// counted in a box. Throws RuntimeError as reading definitions does. Not for while an operation is under
/// way.
bool RestoreTable(const FileCommandContext& context, const KeptTable& kept,
                  const std::function<void(int index)>& saved);

/// The world that recovery works in.
struct RecoveryWorld {
  QString folder = {};  ///< of the user's state; empty: nothing is kept. It need not exist.

  /// Makes `path` this program's until its end, and the folder if it is missing; false where another program
  /// has it.
  std::function<bool(const QString& path)> take = {};

  std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
  std::chrono::milliseconds rest{2000};  ///< how long a change rests before it is written
};

/// The file of what is unsaved, "Wiederherstellung.json"; each running program has one of its own.
class Recovery {
 public:
  /// `files` must outlive it.
  Recovery(platform::FileSystem& files, const RecoveryWorld& world);

  /// Takes the first file with something in it that is nobody else's. A damaged one is set aside. Returns
  /// what the user is to be told of that, else "".
  [[nodiscard]] QString Load();

  /// What an earlier run has left; nothing when it was restored.
  [[nodiscard]] const std::optional<KeptTable>& Offered() const { return offered_; }
  void ForgetOffered() { offered_.reset(); }

  /// Writes the table when something of it is unsaved, and else empties the file. What the earlier run had
  /// left gives way to something unsaved, and at the end of this run (`ends`). Returns what the user is to be
  /// told of a failure: the first time only, else "".
  [[nodiscard]] QString Keep(const KeptTable& kept, bool ends = false);

  [[nodiscard]] bool Works() const { return works_; }

 private:
  platform::FileSystem& files_;
  bool works_;
  OwnFile file_;
  std::optional<KeptTable> offered_;
  bool filled_ = false;  // the file holds something
  bool own_ = false;     // which this run has written
  bool told_ = false;    // of a failure
};

}  // namespace kalivor
