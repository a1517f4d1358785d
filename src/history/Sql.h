// Statements and transactions on the file of a history, and what their failures mean.
#pragma once

#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariantList>
#include <functional>
#include <memory>

#include "history/Schema.h"

namespace kalivor::history {

/// Why a statement failed.
enum class SqlFault {
  None,
  Busy,         ///< another program holds the file for longer than was waited
  Full,         ///< the disk
  ReadOnly,     ///< the file, its folder or the medium
  Unreachable,  ///< the file or its folder cannot be opened
  Device,       ///< reading or writing failed
  Damaged,      ///< what is there is no such file, or not whole
  Refused,      ///< the row cannot be added, now or later
  Other,
};

[[nodiscard]] SqlFault FaultOf(const QSqlError& error);

/// The failure for the user, in one German sentence.
[[nodiscard]] QString ReasonOf(const QSqlError& error, const QString& file);
[[nodiscard]] QString ProtectedReason(const QString& file);
[[nodiscard]] QString CannotWrite(const QString& reason);
[[nodiscard]] QString CannotRead(const QString& reason);

/// An open file, for the thread that made it.
class FileConnection {
 public:
  /// `name` is a path, or a URI where the options say so; `options` are those of the driver.
  FileConnection(const QString& name, const QString& options);
  ~FileConnection();
  FileConnection(const FileConnection&) = delete;
  FileConnection& operator=(const FileConnection&) = delete;

  [[nodiscard]] const QSqlDatabase& Database() const { return database_; }
  /// Of opening.
  [[nodiscard]] const QSqlError& Error() const { return error_; }

 private:
  QString id_;
  QSqlDatabase database_;
  QSqlError error_;
};

/// One statement, which can be run again with other values.
class Statement {
 public:
  Statement(const QSqlDatabase& database, const QString& text);

  /// A value for each "?"; a number of it ("?1") is not understood by every driver.
  bool Run(const QVariantList& values = {});
  /// To the next row. False after the last one, and where it cannot be read: Error() tells them apart.
  bool Next() { return query_.next(); }
  [[nodiscard]] QVariant At(int column) const { return query_.value(column); }
  [[nodiscard]] QString Text(int column) const { return query_.value(column).toString(); }
  [[nodiscard]] QByteArray Bytes(int column) const { return query_.value(column).toByteArray(); }
  [[nodiscard]] QUuid Id(int column) const { return QUuid::fromRfc4122(Bytes(column)); }
  [[nodiscard]] qint64 Number(int column) const { return query_.value(column).toLongLong(); }
  [[nodiscard]] QSqlError Error() const { return query_.lastError(); }

 private:
  QSqlQuery query_;
  bool prepared_ = false;
};

/// Calls `row` for each row of the answer. Returns why that ended early; no error at its end.
[[nodiscard]] QSqlError Ask(const QSqlDatabase& database, const QString& question, const QVariantList& values,
                            const std::function<void(const Statement& row)>& row);

/// The first value of the first row; an invalid one where there is none. Sets `error` where it fails.
[[nodiscard]] QVariant FirstAnswer(const QSqlDatabase& database, const QString& question, QSqlError& error);

/// Ends without a trace unless it is committed. Waits for other writers at its beginning, so that nobody has
/// to give up in the middle. After a failure it does nothing more.
class Transaction {
 public:
  explicit Transaction(const QSqlDatabase& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Adds a row, a value for each column.
  void Insert(QStringView table, const QVariantList& values);
  /// Adds a row unless one of this key is there.
  void InsertMissing(QStringView table, const QVariantList& values);
  void Do(const QString& text, const QVariantList& values = {});
  void Ask(const QString& question, const QVariantList& values,
           const std::function<void(const Statement& row)>& row);

  /// Nothing of it is to be there.
  void GiveUp();

  /// True until something fails.
  [[nodiscard]] bool Works() const { return FaultOf(error_) == SqlFault::None; }
  /// True where everything is there from now on.
  [[nodiscard]] bool Commit();
  [[nodiscard]] const QSqlError& Error() const { return error_; }
  [[nodiscard]] const QSqlDatabase& Database() const { return database_; }

 private:
  QSqlDatabase database_;
  QHash<QString, std::shared_ptr<Statement>> statements_;  // by their text: most are run again and again
  QSqlError error_;
  bool open_ = false;
};

// Values as the tables hold them. Nothing is stored for a null id and for no bytes.
[[nodiscard]] QVariant IdValue(const QUuid& id);
[[nodiscard]] QVariant BytesValue(const QByteArray& bytes);

}  // namespace kalivor::history
