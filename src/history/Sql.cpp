#include "history/Sql.h"

using namespace Qt::StringLiterals;

#ifdef Q_OS_WIN
// The toolkit's driver asks SQLite of which table a column is, which SQLite tells only where it was built for
// that. It is not, and nobody here wants to know: the driver takes null for "none".
struct sqlite3_stmt;
extern "C" const void* sqlite3_column_table_name16(sqlite3_stmt* /*statement*/, int /*column*/) {
  return nullptr;
}
#endif

namespace kalivor::history {
namespace {

// Result codes of SQLite, which stand in the lower byte; what is above tells them apart further.
constexpr int kPermission = 3;
constexpr int kBusy = 5;
constexpr int kLocked = 6;
constexpr int kReadOnly = 8;
constexpr int kDevice = 10;
constexpr int kCorrupt = 11;
constexpr int kFull = 13;
constexpr int kCannotOpen = 14;
constexpr int kTooBig = 18;
constexpr int kConstraint = 19;
constexpr int kMismatch = 20;
constexpr int kNoDatabase = 26;
constexpr int kNoRoomForShared = kDevice | 19 << 8;

QString InsertText(QStringView table) {
  const TableDescription& description = TableNamed(table);
  const QStringList marks(static_cast<qsizetype>(description.columns.size()), u"?"_s);
  return u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(description.name, ColumnNames(description),
                                                  marks.join(u','));
}

}  // namespace

SqlFault FaultOf(const QSqlError& error) {
  if (error.type() == QSqlError::NoError) return SqlFault::None;
  const int code = error.nativeErrorCode().toInt();
  if (code == kNoRoomForShared) return SqlFault::Full;
  switch (code & 0xFF) {
    case kBusy:
    case kLocked:
      return SqlFault::Busy;
    case kFull:
      return SqlFault::Full;
    case kReadOnly:
      return SqlFault::ReadOnly;
    case kPermission:
    case kCannotOpen:
      return SqlFault::Unreachable;
    case kDevice:
      return SqlFault::Device;
    case kCorrupt:
    case kNoDatabase:
      return SqlFault::Damaged;
    case kTooBig:
    case kConstraint:
    case kMismatch:
      return SqlFault::Refused;
    default:
      return SqlFault::Other;
  }
}

QString ProtectedReason(const QString& file) {
  return u"Die Datei oder ihr Ordner ist schreibgeschützt (%1)."_s.arg(file);
}

QString ReasonOf(const QSqlError& error, const QString& file) {
  switch (FaultOf(error)) {
    case SqlFault::Busy:
      return u"Ein anderes Programm hält ihn gerade gesperrt."_s;
    case SqlFault::Full:
      return u"Auf dem Datenträger ist kein Platz mehr; bitte Platz schaffen."_s;
    case SqlFault::ReadOnly:
      return ProtectedReason(file);
    case SqlFault::Unreachable:
      return u"Die Datei lässt sich nicht öffnen; bitte Platz und Rechte in ihrem Ordner prüfen (%1)."_s.arg(
          file);
    case SqlFault::Device:
      return u"Der Datenträger meldet einen Fehler; bitte prüfen, ob er noch da und in Ordnung ist (%1)."_s
          .arg(file);
    case SqlFault::Damaged:
      return u"Die Datei ist beschädigt (%1)."_s.arg(file);
    case SqlFault::Refused:
      return u"Der Eintrag passt nicht dazu (%1)."_s.arg(error.databaseText());
    case SqlFault::None:
    case SqlFault::Other:
      break;
  }
  return u"%1 (%2)."_s.arg(error.databaseText(), file);
}

QString CannotWrite(const QString& reason) {
  return u"Der Verlauf kann nicht geschrieben werden: "_s + reason;
}

QString CannotRead(const QString& reason) {
  return u"Der Verlauf kann nicht gelesen werden: "_s + reason;
}

FileConnection::FileConnection(const QString& name, const QString& options)
    : id_(u"history "_s + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
  database_ = QSqlDatabase::addDatabase(u"QSQLITE"_s, id_);
  database_.setDatabaseName(name);
  database_.setConnectOptions(options);
  if (!database_.open()) error_ = database_.lastError();
}

FileConnection::~FileConnection() {
  database_ = {};
  QSqlDatabase::removeDatabase(id_);
}

Statement::Statement(const QSqlDatabase& database, const QString& text) : query_(database) {
  query_.setForwardOnly(true);
  prepared_ = query_.prepare(text);
}

bool Statement::Run(const QVariantList& values) {
  for (int i = 0; i < values.size(); ++i)
    query_.bindValue(i, values[i]);
  return prepared_ && query_.exec();
}

QSqlError Ask(const QSqlDatabase& database, const QString& question, const QVariantList& values,
              const std::function<void(const Statement& row)>& row) {
  Statement statement(database, question);
  if (!statement.Run(values)) return statement.Error();
  while (statement.Next())
    row(statement);
  return statement.Error();
}

QVariant FirstAnswer(const QSqlDatabase& database, const QString& question, QSqlError& error) {
  QVariant answer;
  error = Ask(database, question, {}, [&](const Statement& row) {
    if (!answer.isValid()) answer = row.At(0);
  });
  return answer;
}

Transaction::Transaction(const QSqlDatabase& database) : database_(database) {
  Statement begin(database, u"BEGIN IMMEDIATE"_s);
  open_ = begin.Run();
  if (!open_) error_ = begin.Error();
}

Transaction::~Transaction() {
  statements_.clear();
  if (open_) (void)Statement(database_, u"ROLLBACK"_s).Run();
}

void Transaction::Insert(QStringView table, const QVariantList& values) {
  Do(InsertText(table), values);
}

void Transaction::InsertMissing(QStringView table, const QVariantList& values) {
  Do(InsertText(table) + u" ON CONFLICT DO NOTHING"_s, values);
}

void Transaction::Do(const QString& text, const QVariantList& values) {
  if (!Works()) return;
  std::shared_ptr<Statement>& statement = statements_[text];
  if (!statement) statement = std::make_shared<Statement>(database_, text);
  if (!statement->Run(values)) error_ = statement->Error();
}

void Transaction::Ask(const QString& question, const QVariantList& values,
                      const std::function<void(const Statement& row)>& row) {
  if (Works()) error_ = history::Ask(database_, question, values, row);
}

void Transaction::GiveUp() {
  if (Works()) error_ = QSqlError({}, {}, QSqlError::TransactionError, QString::number(kConstraint));
}

bool Transaction::Commit() {
  if (!Works()) return false;
  Statement commit(database_, u"COMMIT"_s);
  open_ = !commit.Run();
  if (open_) error_ = commit.Error();
  return !open_;
}

QVariant IdValue(const QUuid& id) {
  return id.isNull() ? QVariant(QMetaType::fromType<QByteArray>()) : QVariant(id.toRfc4122());
}

QVariant BytesValue(const QByteArray& bytes) {
  return bytes.isEmpty() ? QVariant(QMetaType::fromType<QByteArray>()) : QVariant(bytes);
}

}  // namespace kalivor::history
