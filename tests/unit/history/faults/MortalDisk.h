// A disk in memory for the database library: it can fill up, and its computer can end at every access.
#pragma once

#include <QByteArray>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace kalivor::test {

/// All files that the database library opens while it lives; there is one at a time. What was written is with
/// the system, what was synced on the disk.
class MortalDisk {
 public:
  explicit MortalDisk(unsigned seed);
  ~MortalDisk();
  MortalDisk(const MortalDisk&) = delete;
  MortalDisk& operator=(const MortalDisk&) = delete;

  enum class Fault {
    None,
    Ends,      ///< the program: access number `at` is done by any part, none after it
    Full,      ///< access number `at` finds no room, if it needs some
    StaysFull  ///< so does each after it
  };
  void Plan(Fault fault, int at);

  /// Of those that change something: writes, truncations, syncs, removals, new files.
  [[nodiscard]] int Accesses() const { return accesses_; }

  /// The program begins again on what the system has.
  void StartProgram();

  /// The computer begins again: of what was not synced any part of any write is there, in sectors; a removal
  /// that was not synced may not have happened.
  void StartComputer();

  // For the database library.

  struct Write {
    qint64 offset = 0;
    QByteArray bytes;   // of a truncation none
    bool cuts = false;  // to `offset`
  };
  struct File {
    bool isJournal = false;
    bool stays = false;  // its name is on the disk
    QByteArray synced;
    QByteArray now;
    std::vector<Write> unsynced;
    std::vector<std::unique_ptr<QByteArray>> shared;  // memory that programs share
  };

  enum class Answer { Done, Full, Dead };
  [[nodiscard]] Answer Change(File& file, const Write& write);
  [[nodiscard]] Answer Sync(File& file);
  [[nodiscard]] Answer Remove(const std::string& name, bool syncs);
  [[nodiscard]] std::shared_ptr<File> Find(const std::string& name) const;
  [[nodiscard]] std::shared_ptr<File> Make(const std::string& name);
  [[nodiscard]] bool IsDead() const { return dead_; }

 private:
  [[nodiscard]] Answer Access(bool needsRoom);
  [[nodiscard]] int Below(int limit);
  static void Apply(QByteArray& bytes, const Write& write);

  std::mt19937 random_;
  std::map<std::string, std::shared_ptr<File>> files_;
  std::map<std::string, std::shared_ptr<File>> removed_;  // that is not synced
  Fault fault_ = Fault::None;
  int at_ = 0;
  int accesses_ = 0;
  bool dead_ = false;
};

}  // namespace kalivor::test
