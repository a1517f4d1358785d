#include "history/StoreFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QThread>
#include <QUrl>
#include <algorithm>

#include "commands/DamagedFile.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// Who writes waits in a thread of its own and tries again later, a window that reads has somebody waiting.
constexpr int kBusyWriting_ms = 1000;
constexpr int kBusyReading_ms = 500;

// So long another program may look at a large file.
constexpr int kLongestOpening_ms = 10000;
constexpr int kLookAgain_ms = 10;

// The files that belong to one database: what was written last may stand in the second one alone.
const QString kParts[] = {u""_s, u"-wal"_s, u"-shm"_s};

constexpr QFile::Permissions kUserAlone = QFile::ReadOwner | QFile::WriteOwner;

bool MakeFolders(const QString& folder) {
  if (QFileInfo(folder).isDir()) return true;
  const QString above = QFileInfo(folder).path();
  // Another program may make it at the same time.
  return above != folder && MakeFolders(above) &&
         (QDir().mkdir(folder, kUserAlone | QFile::ExeOwner) || QFileInfo(folder).isDir());
}

// A folder that is missing, or takes no file, is said by who opens the file.
void MakeFile(const QString& path) {
  QFile file(path);
  (void)file.open(QFile::NewOnly | QFile::WriteOnly, kUserAlone);
}

qint64 SizeOf(const QString& path) {
  return QFileInfo(path).size();
}

/// What one look at the file found.
struct Look {
  std::unique_ptr<FileConnection> connection = {};
  bool damaged = false;
  bool newer = false;
  bool empty = false;   ///< nothing is in it yet
  QString reason = {};  ///< why it cannot be used, in German; "" where it can, or is damaged

  [[nodiscard]] const QSqlDatabase& Database() const { return connection->Database(); }
};

Look Failed(const QSqlError& error, const QString& file) {
  Look look;
  look.damaged = FaultOf(error) == SqlFault::Damaged;
  if (!look.damaged) look.reason = ReasonOf(error, file);
  return look;
}

QStringList TableNames() {
  QStringList names{u"this_store"_s, u"parameter_name"_s};
  for (const TableDescription& table : Tables())
    names << table.name.toString();
  return names;
}

// Which version it is of, and whether it is a history at all.
Look LookAt(std::unique_ptr<FileConnection> connection, const QString& file, const SchemaVersions& schema) {
  QSqlError error = connection->Error();
  const QSqlDatabase& database = connection->Database();
  int version = 0;
  if (error.type() == QSqlError::NoError)
    version = FirstAnswer(database, u"PRAGMA user_version"_s, error).toInt();
  bool empty = false;
  if (error.type() == QSqlError::NoError)
    empty = FirstAnswer(database, u"SELECT count(*) FROM sqlite_schema"_s, error).toInt() == 0;
  bool whole = true;
  for (const QString& table : TableNames())
    if (error.type() == QSqlError::NoError && !empty)
      whole =
          whole &&
          FirstAnswer(database, u"SELECT count(*) FROM sqlite_schema WHERE name = '%1'"_s.arg(table), error)
                  .toInt() == 1;
  if (error.type() != QSqlError::NoError) return Failed(error, file);
  Look look;
  look.empty = empty && version == 0;
  look.newer = version > schema.version;
  const auto known = [&](const SchemaStep& step) { return step.from == version; };
  look.damaged =
      !look.empty && !look.newer &&
      (!whole || version == 0 || (version != schema.version && std::ranges::none_of(schema.steps, known)));
  look.connection = std::move(connection);
  return look;
}

// Brings it to the version, one step after the other. Another program may do the same.
QSqlError BringTo(const QSqlDatabase& database, const SchemaVersions& schema) {
  while (true) {
    Transaction step(database);
    int version = 0;
    step.Ask(u"PRAGMA user_version"_s, {},
             [&](const Statement& row) { version = static_cast<int>(row.Number(0)); });
    const auto next = std::ranges::find(schema.steps, version, &SchemaStep::from);
    if (!step.Works() || version == schema.version || next == schema.steps.end()) return step.Error();
    for (const QString& statement : next->statements)
      step.Do(statement);
    step.Do(u"PRAGMA user_version = %1"_s.arg(next->to));
    if (!step.Commit()) return step.Error();
  }
}

Look LookForWriting(const QString& file, const SchemaVersions& schema) {
  Look look;
  // What is left of a file that was being set aside, or lost its beginning: the rest would be thrown away.
  look.damaged = SizeOf(file) == 0 && SizeOf(file + kParts[1]) > 0;
  if (look.damaged) return look;
  MakeFile(file);
  look = LookAt(std::make_unique<FileConnection>(file, u"QSQLITE_BUSY_TIMEOUT=%1"_s.arg(kBusyWriting_ms)),
                file, schema);
  if (!look.connection || look.damaged || look.newer) return look;
  // The library opens a protected one for reading, and says so with the first row only.
  if (!QFileInfo(file).isWritable()) {
    look.connection.reset();
    look.reason = ProtectedReason(file);
    return look;
  }
  QSqlError error;
  // What the disk has lost is noticed before anything is added to it.
  const QString state = FirstAnswer(look.Database(), u"PRAGMA quick_check(1)"_s, error).toString();
  if (error.type() != QSqlError::NoError) return Failed(error, file);
  look.damaged = state != u"ok";
  if (look.damaged) return look;
  // Each adding is on the disk when it is said to be, and nobody who reads keeps another from adding.
  for (const QString& setting :
       {u"PRAGMA journal_mode = WAL"_s, u"PRAGMA synchronous = FULL"_s, u"PRAGMA foreign_keys = ON"_s,
        u"PRAGMA trusted_schema = OFF"_s, u"PRAGMA cell_size_check = ON"_s}) {
    (void)FirstAnswer(look.Database(), setting, error);
    if (error.type() != QSqlError::NoError) return Failed(error, file);
  }
  error = BringTo(look.Database(), schema);
  return error.type() == QSqlError::NoError ? std::move(look) : Failed(error, file);
}

// Somebody who has it open would go on adding to a file that nobody looks for.
bool IsOpenElsewhere(const QString& file) {
  // To open a file that is gone would throw away what is left of it.
  if (SizeOf(file) == 0) return false;
  const FileConnection connection(file, u"QSQLITE_BUSY_TIMEOUT=%1"_s.arg(kBusyWriting_ms));
  QSqlError error;
  (void)FirstAnswer(connection.Database(), u"PRAGMA locking_mode = EXCLUSIVE"_s, error);
  (void)FirstAnswer(connection.Database(), u"SELECT count(*) FROM sqlite_schema"_s, error);
  return FaultOf(error) == SqlFault::Busy;
}

// The lock itself would look again after ever longer times.
bool TakeSoon(QLockFile& lock) {
  QElapsedTimer waiting;
  waiting.start();
  while (!lock.tryLock(0)) {
    if (lock.error() != QLockFile::LockFailedError || waiting.elapsed() > kLongestOpening_ms) return false;
    QThread::msleep(kLookAgain_ms);
  }
  return true;
}

bool SomethingIsAt(const QString& path) {
  return std::ranges::any_of(kParts, [&](const QString& part) { return QFile::exists(path + part); });
}

// A history cannot be made again, so none that was set aside earlier gives way. "" where it is not possible.
QString SetAside(const QString& file) {
  QString aside = DamagedName(file);
  for (int number = 2; SomethingIsAt(aside); ++number)
    aside = DamagedName(file).insert(DamagedName(file).lastIndexOf(u'.'), u"-%1"_s.arg(number));
  // The file first: what is left when the program ends here is known by that.
  for (const QString& part : kParts) {
    if (QFile::exists(file + part) && !QDir().rename(file + part, aside + part)) return {};
  }
  return aside;
}

OpenedFile Opened(Look look, const QString& note = {}) {
  OpenedFile opened{std::move(look.connection), look.newer, note};
  if (opened.newer)
    opened.note =
        u"Der Verlauf gehört zu einer neueren Version des Programms. Er kann gelesen werden, neue Einträge "
        "kommen nicht hinzu. Bitte die neuere Version verwenden."_s;
  return opened;
}

OpenedFile BeginAnew(const QString& file, const SchemaVersions& schema) {
  const QString damaged = u"Der Verlauf ist beschädigt: "_s + file;
  if (IsOpenElsewhere(file))
    return {nullptr, false,
            damaged +
                u"\r\nEin anderes Programm hat ihn noch offen. Bitte alle Programme schließen, die ihn "
                "verwenden; danach wird ein neuer begonnen."_s};
  const QString aside = SetAside(file);
  if (aside.isEmpty())
    return {nullptr, false, damaged + u"\r\nEr kann nicht umbenannt werden; bitte die Datei verschieben."_s};
  Look look = LookForWriting(file, schema);
  if (!look.connection) return {nullptr, false, CannotWrite(look.reason)};
  return Opened(
      std::move(look),
      u"Der Verlauf war beschädigt, ein neuer ist begonnen. Die beschädigte Datei ist aufgehoben:\r\n"_s +
          aside);
}

}  // namespace

SchemaVersions CurrentSchema() {
  QStringList creating = CreateTables(Dialect::SQLite);
  // By which names its parameters go: with an index of all changes by name the file would be a sixth larger.
  creating << u"CREATE TABLE parameter_name (name TEXT NOT NULL, variable TEXT NOT NULL, "
              "PRIMARY KEY (name, variable)) STRICT, WITHOUT ROWID"_s
           << u"CREATE TRIGGER change_named AFTER INSERT ON change BEGIN INSERT INTO parameter_name "
              "VALUES (NEW.name, NEW.variable) ON CONFLICT DO NOTHING; END"_s;
  creating << u"CREATE TABLE this_store (origin BLOB NOT NULL) STRICT"_s
           << u"INSERT INTO this_store VALUES (x'%1')"_s.arg(
                  QLatin1StringView(QUuid::createUuid().toRfc4122().toHex()));
  return {kSchemaVersion, {{0, kSchemaVersion, creating}}};
}

OpenedFile OpenForWriting(const QString& file, const SchemaVersions& schema) {
  if (!MakeFolders(QFileInfo(file).absolutePath()))
    return {
        nullptr, false,
        CannotWrite(u"Sein Ordner kann nicht angelegt werden (%1)."_s.arg(QFileInfo(file).absolutePath()))};
  // One program at a time: what one sets aside another would take for missing.
  QLockFile opening(file + u".lock"_s);
  if (!TakeSoon(opening)) {
    const bool held = opening.error() == QLockFile::LockFailedError;
    return {nullptr, false,
            CannotWrite(held ? u"Ein anderes Programm öffnet ihn gerade."_s
                             : u"In seinen Ordner kann nicht geschrieben werden (%1)."_s.arg(
                                   QFileInfo(file).absolutePath()))};
  }
  Look look = LookForWriting(file, schema);
  if (look.damaged) {
    look.connection.reset();
    return BeginAnew(file, schema);
  }
  if (!look.connection) return {nullptr, false, CannotWrite(look.reason)};
  return Opened(std::move(look));
}

OpenedFile OpenForReading(const QString& file, const SchemaVersions& schema) {
  if (SizeOf(file) == 0) return {};
  const QString options = u"QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=%1"_s.arg(kBusyReading_ms);
  Look look = LookAt(std::make_unique<FileConnection>(file, options), file, schema);
  if (!look.connection && !look.damaged && !QFile::exists(file + kParts[1])) {
    // In a folder that takes no file there is no room for what several programs share; nobody adds there.
    const QString name = QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded()) + u"?immutable=1"_s;
    look = LookAt(std::make_unique<FileConnection>(name, options + u";QSQLITE_OPEN_URI"_s), file, schema);
  }
  if (look.damaged)
    return {nullptr, false,
            CannotRead(u"Die Datei ist beschädigt (%1). Sie wird aufgehoben und ein neuer Verlauf begonnen, "
                       "sobald ein Eintrag hinzukommt."_s.arg(file))};
  if (!look.connection) return {nullptr, false, CannotRead(look.reason)};
  if (look.empty) return {};
  QSqlError error;
  const int version = FirstAnswer(look.Database(), u"PRAGMA user_version"_s, error).toInt();
  if (version < schema.version) {
    look.connection.reset();
    OpenedFile brought = OpenForWriting(file, schema);
    if (!brought.connection) return brought;
    brought.connection.reset();
    return OpenForReading(file, schema);
  }
  (void)FirstAnswer(look.Database(), u"PRAGMA trusted_schema = OFF"_s, error);
  return Opened(std::move(look));
}

}  // namespace kalivor::history
