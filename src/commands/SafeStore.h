// Backups and the journal of a sending, in their files.
#pragma once

#include <QDateTime>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "commands/OwnFile.h"
#include "core/BackupText.h"
#include "core/ValueSets.h"
#include "platform/FileSystem.h"

namespace kalivor {

/// The world that backups and journals live in.
struct SafeWorld {
  QString stateFolder = {};  ///< of the user; empty: no journal can be kept, so nothing is written
  QString programVersion = {};
  std::function<QString(int number)> deviceOfPort = {};  ///< "" when there is none; may be empty

  /// Makes `path` this program's until its end, and the folder if it is missing; false where another program
  /// has it.
  std::function<bool(const QString& path)> take = {};

  std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
};

/// The folder of the backups: "Sicherungen" under the folder of value files.
[[nodiscard]] QString BackupFolder(const Settings& settings);

/// A backup as it lies in its folder: two files of one name, a value file (".qpf") that every version of the
/// program opens, and a text (".txt") with the words.
struct StoredBackup {
  QString path;   ///< of the value file
  Backup backup;  ///< without anything where `error` is not empty
  QString error;  ///< in German why it cannot be used
};

/// All backups of the folder, the newest first; a folder that is missing has none.
struct BackupList {
  std::vector<StoredBackup> backups;
  QString error;  ///< in German why the folder cannot be read
};
[[nodiscard]] BackupList ListBackups(platform::FileSystem& files, const QString& folder);

/// Reads one backup; `path` is that of its value file or of its text.
[[nodiscard]] StoredBackup ReadBackup(platform::FileSystem& files, const QString& path);

/// The backup's values as a set for a comparison, with their addresses. What the definitions do not know is
/// left out; `name` is the file's path.
[[nodiscard]] ValueSet BackupValues(const ParameterTable& definitions, const StoredBackup& stored);

/// Which of them a sweep removes: all of the last 30 days stay, and before that the last one of each month
/// and controller (version, plant type and address); those that cannot be used stay too.
[[nodiscard]] std::vector<StoredBackup> ToSweep(const std::vector<StoredBackup>& backups,
                                                const QDateTime& now);

/// Removes their files. Returns "" or what could not be removed.
[[nodiscard]] QString Sweep(platform::FileSystem& files, const std::vector<StoredBackup>& backups);

/// The keeper of the program. Its journal is "Sendung.txt" (or "Sendung-2.txt"… where several programs run)
/// in the folder of the state; an empty one holds nothing. What belongs together stays in one journal: a run
/// that finishes a sending, repeats a part of it or takes it back goes on with its journal, so that until its
/// end all of it can be finished or taken back. Another sending gets another journal.
class SafeStore final : public SafeKeeper {
 public:
  /// `files` must outlive it.
  SafeStore(platform::FileSystem& files, const SafeWorld& world);
  ~SafeStore() override;
  SafeStore(const SafeStore&) = delete;
  SafeStore& operator=(const SafeStore&) = delete;

  // SafeKeeper
  [[nodiscard]] QString Begin(const Module1& module, SafeRun& run) override;
  [[nodiscard]] QString Before(quint16 address) override;
  /// Empties the journal, unless the run is unfinished.
  void End(const SafeRun& run) override;

  /// Takes the first journal with something in it that no other program has. A damaged one is set aside, one
  /// of which no word was begun is emptied. Returns what the user is to be told, else "".
  [[nodiscard]] QString Load();

  /// The sending that an earlier run, or a run of this program, has not finished; nothing else.
  [[nodiscard]] const std::optional<Sending>& Unfinished() const { return unfinished_; }

  /// The user lets it be: empties the journal. The backup stays. Returns "" or an error.
  [[nodiscard]] QString Forget();

 private:
  void TakeUp(const SafeRun& run);
  void LeaveUnfinished();
  [[nodiscard]] BackupHead HeadOf(const Module1& module, const SafeRun& run) const;
  [[nodiscard]] QString KeepBackup(const Module1& module, const BackupHead& head, SafeRun& run);
  [[nodiscard]] QString BeginJournal(const Module1& module, const BackupHead& head, const SafeRun& run);

  platform::FileSystem& files_;
  SafeWorld world_;
  OwnFile file_;
  std::optional<Sending> sending_;  // the last one: under way, at its end, or as it was loaded
  std::optional<Sending> unfinished_;
  int unfinishedNumber_ = 0;                    // of its journal
  std::unique_ptr<platform::LogFile> journal_;  // of the run under way
  bool underWay_ = false;
};

}  // namespace kalivor
