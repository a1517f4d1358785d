// The user's history: a file of the SQLite kind, to which rows are added and from which they are read.
#pragma once

#include <QString>
#include <QVariantList>
#include <functional>
#include <memory>
#include <vector>

#include "core/ValueSets.h"
#include "history/Entry.h"

namespace kalivor::history {

class FileConnection;
class Statement;
class Transaction;
struct TableDescription;

/// A value as it was observed or changed by a deed.
struct ObservedValue {
  int index = 0;      ///< in the table
  bool held = false;  ///< the controller holds the table's value
  std::optional<ParameterValue> before =
      {};              ///< what was there before; nothing: not known, the store looks it up
  QString state = {};  ///< "" where there is nothing to say but that it changed
};

/// A deed as it is given to the store, which makes rows of it.
struct Observation {
  Entry entry;  ///< without id, set and changes; the moment is set by the store
  std::shared_ptr<const ParameterTable> table;  ///< the values after it, with what the controller holds put
                                                ///< in; null: nothing is known of any value
  std::vector<ObservedValue> values;            ///< by index
};

/// What is known of the value of one parameter at one time.
struct CurvePoint {
  QUuid entry;
  QDateTime time;
  qint64 moment_ms = 0;
  double value = 0;  ///< in display units

  bool operator==(const CurvePoint&) const = default;
};

/// What the user looks for; empty members ask for nothing.
struct ParameterKey {
  QString variable;
  QString address;

  bool operator==(const ParameterKey&) const = default;
};

/// The file in the user's folder of data.
[[nodiscard]] inline QString FileIn(const QString& folder) {
  return folder + QStringLiteral("/Verlauf.sqlite");
}

/// Where the file lies and who opens it.
struct StoreWorld {
  QString file;  ///< path; its folder is made for the user alone
  QString programVersion;
  QString pc;  ///< name of the computer
  std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
};

/// Rows of one table as they are copied from one history to another: a value for each column, as RowFault
/// describes them.
struct TableRows {
  QStringView table;
  std::vector<QVariantList> rows;
};

enum class Access { Write, Read };

/// One connection to the file; belongs to the thread that opened it. Every adding is one transaction: all of
/// it is there afterwards, or nothing. Failures are returned in German, never thrown.
class Store {
 public:
  ~Store();
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  /// What came of opening.
  struct Opened {
    std::unique_ptr<Store> store;  ///< null: it cannot be used
    QString note;                  ///< what the user is to be told once, with a store too; else ""
  };

  /// Opens the file. For writing, it is looked at as a whole, which takes its time; one that is missing is
  /// made, one of an older version brought to this one, one that is damaged set aside under DamagedName()
  /// (with a number where there is one) and begun anew; that of a newer program can only be read. For
  /// reading, one that is missing has no store and no note, and one that is damaged a note.
  [[nodiscard]] static Opened Open(const StoreWorld& world, Access access);

  /// False where rows cannot be added.
  [[nodiscard]] bool Writable() const { return writable_; }

  /// What may help after an adding has failed.
  enum class Remedy {
    Waiting,    ///< until the file is free, or can be written again
    Reopening,  ///< it is damaged
    Nothing,    ///< it can never be added to this file
  };
  [[nodiscard]] Remedy LastRemedy() const { return remedy_; }

  // Each returns "" or why nothing was added.

  // A plant of that id that the file does not know, as it was begun anew, is added without a description.

  /// Adds an entry with its changed values and its set. What was there before an observed value, where that
  /// is not known, is looked up in the entries of the same plant (where none is named: without one), version
  /// and address.
  [[nodiscard]] QString Add(const Observation& observation);

  /// Adds a plant (with a null id, which it gets then) or another description of it.
  [[nodiscard]] QString Describe(Plant& plant, const QString& technician);

  [[nodiscard]] QString AddRemark(const QUuid& entry, const QString& text, const QString& technician);

  /// The entry belongs to that plant from now on.
  [[nodiscard]] QString Assign(const QUuid& entry, const QUuid& plant, const QString& technician);

  // Reading. What cannot be read is left out; Failure() says why, "" after all went well.

  /// As described last, by name.
  [[nodiscard]] std::vector<Plant> Plants();

  /// All entries, the newest first.
  [[nodiscard]] std::vector<Entry> Entries();

  /// In the order of the parameters.
  [[nodiscard]] std::vector<Change> Changes(const QUuid& entry);

  /// By time, of all entries.
  [[nodiscard]] std::vector<Remark> Remarks();

  /// The complete values, those alone that the controller held where `held` is given; an error where there
  /// are none or they are damaged.
  [[nodiscard]] SetResult Values(const Entry& entry, bool heldOnly);

  /// The image of a value file with them; empty where there is none.
  [[nodiscard]] QByteArray Image(const QByteArray& set);

  /// The entries in which a value with this variable (or this name) changed.
  [[nodiscard]] std::vector<QUuid> EntriesWith(const QString& parameter);

  /// How a number went in the entries of a plant (null: those of none), the oldest first: a point for each
  /// change, and one in front for what was there before the first. Texts have none.
  [[nodiscard]] std::vector<CurvePoint> Curve(const QUuid& plant, const ParameterKey& parameter);

  /// Looks at every row. Returns what is wrong, in German, nothing where all is well.
  [[nodiscard]] QStringList Check();

  [[nodiscard]] const QString& Failure() const { return failure_; }

  /// Another number than before when anybody else has added something since.
  [[nodiscard]] qint64 Generation();

  // Copying. Rows are found by their first column: their own id, of `change` that of the entry.

  /// Adds rows that were made elsewhere, all of them in one transaction or none; those that are there already
  /// stay as they are. What they refer to is among them, or there already. Returns
  /// "" or why nothing was added: a row that RowFault refuses, a set that is not what its id says.
  [[nodiscard]] QString Import(const std::vector<TableRows>& tables);

  /// Of all rows, in order, each once.
  [[nodiscard]] std::vector<QByteArray> Ids(QStringView table);

  /// Those with these ids; ids that are not there have none.
  [[nodiscard]] TableRows Rows(QStringView table, const std::vector<QByteArray>& ids);

  /// Of this file, on this computer.
  [[nodiscard]] const QUuid& Origin() const { return origin_; }

 private:
  explicit Store(const StoreWorld& world);

  [[nodiscard]] QString Adding(const std::function<void(Transaction& adding)>& rows);
  [[nodiscard]] Stamp NextStamp(Transaction& adding, const QDateTime& time, const QString& technician) const;
  void Read(const QString& question, const QVariantList& values,
            const std::function<void(const Statement& row)>& row);

  [[nodiscard]] QStringList FaultsOf(const TableDescription& table);
  [[nodiscard]] QString WrongSet(const Transaction& adding, const std::vector<TableRows>& tables);

  StoreWorld world_;
  std::unique_ptr<FileConnection> connection_;
  QUuid origin_;
  bool writable_ = false;
  Remedy remedy_ = Remedy::Waiting;
  QString failure_;
};

/// Records "1-12,14" and back; what is no such text, with numbers that grow, is none.
[[nodiscard]] QString HeldText(const std::vector<int>& numbers);
[[nodiscard]] std::vector<int> HeldNumbers(const QString& text);

}  // namespace kalivor::history
