#include "history/server/ServerStore.h"

#include <QtEndian>
#include <algorithm>
#include <optional>

#include "history/RowCheck.h"
#include "history/Schema.h"
#include "history/SetImage.h"
#include "history/server/RowCoding.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// Nobody waits for others without end, and nobody who has vanished keeps others waiting.
const QByteArray kSettings =
    "SELECT set_config('search_path', 'kalivor', false), set_config('lock_timeout', '10s', false), "
    "set_config('statement_timeout', '60s', false), "
    "set_config('idle_in_transaction_session_timeout', '60s', false)";

// With the schema's name: without the right to it a table in it would seem to be missing.
const QByteArray kVersion = "SELECT version FROM kalivor.schema_version";

// A code unit of a text takes at most three bytes there.
constexpr qsizetype kLongestText_bytes = 3 * kLongestText;
constexpr qsizetype kLargestData_bytes = kLargestImage_bytes + kLargestImage_bytes / 16;

Connection::Opened Connect(const QString& server, const GoOn& goOn) {
  Connection::Opened opened = Connection::Open(server, goOn);
  if (opened.failure) return opened;
  if (opened.connection->Encoding() != "UTF8")
    return {nullptr,
            {ServerFailure::Other,
             u"Die Datenbank auf dem Server muss die Zeichenkodierung UTF8 haben, sie hat %1."_s.arg(
                 QString::fromUtf8(opened.connection->Encoding()))}};
  ServerFailure failure = opened.connection->Run(kSettings).failure;
  if (failure) return {nullptr, std::move(failure)};
  return opened;
}

std::optional<qint64> NumberAt(const ServerRows& rows) {
  if (rows.failure || rows.Count() != 1 || rows.IsNull(0, 0) || rows.At(0, 0).size() != sizeof(qint64))
    return std::nullopt;
  return qFromBigEndian<qint64>(rows.At(0, 0).constData());
}

ServerFailure OtherVersion(const ServerRows& rows) {
  const std::optional<qint64> version = NumberAt(rows);
  if (!version) return {ServerFailure::Other, u"Der Verlauf auf dem Server nennt seine Fassung nicht."_s};
  if (*version == kSchemaVersion) return {};
  return {
      ServerFailure::Other,
      u"Der Verlauf auf dem Server hat die Fassung %1, dieses Programm kennt nur die Fassung %2. %3"_s.arg(
          QString::number(*version), QString::number(kSchemaVersion),
          *version > kSchemaVersion ? u"Für den Abgleich ist ein neueres KALIVOR nötig."_s
                                    : u"Für den Abgleich muss der Server eine neuere Fassung bekommen."_s)};
}

// What a colleague could add without it would fill everybody's memory.
QStringList Bounds() {
  QStringList statements;
  for (const TableDescription& table : Tables())
    for (const Column& column : table.columns) {
      const bool text = column.type == ColumnType::Text;
      if (!text && column.type != ColumnType::Bytes) continue;
      statements << u"ALTER TABLE %1 ADD CHECK (octet_length(%2) <= %3)"_s.arg(
          table.name, column.name, QString::number(text ? kLongestText_bytes : kLargestData_bytes));
    }
  return statements;
}

/// Statements one after the other, until one fails.
class Steps {
 public:
  explicit Steps(Connection& connection) : connection_(connection) {}

  ServerRows Do(const QString& statement) {
    if (failure_) return {};
    ServerRows rows = connection_.Run(statement.toUtf8());
    failure_ = rows.failure;
    return rows;
  }
  /// True where the query has a row.
  bool Has(const QString& query) { return Do(query).Count() > 0; }
  void Fail(const ServerFailure& failure) {
    if (!failure_) failure_ = failure;
  }
  [[nodiscard]] const ServerFailure& Failure() const { return failure_; }

 private:
  Connection& connection_;
  ServerFailure failure_;
};

}  // namespace

Preparation PrepareServer(const QString& server, const GoOn& goOn) {
  Connection::Opened opened = Connect(server, goOn);
  if (opened.failure) return {opened.failure, {}};
  Steps steps(*opened.connection);
  // What is not committed is gone with the connection.
  steps.Do(u"BEGIN"_s);
  // One at a time; the number is that of nobody else.
  steps.Do(u"SELECT pg_advisory_xact_lock(5414917432081)"_s);
  const bool there =
      steps.Has(u"SELECT 1 FROM pg_tables WHERE schemaname = 'kalivor' AND tablename = 'schema_version'"_s);
  if (there) {
    const ServerRows version = steps.Do(QString::fromUtf8(kVersion));
    if (!version.failure) steps.Fail(OtherVersion(version));
  } else {
    steps.Do(u"CREATE SCHEMA IF NOT EXISTS kalivor"_s);
    for (const QString& statement : CreateTables(Dialect::PostgreSQL) + Bounds())
      steps.Do(statement);
    steps.Do(u"CREATE TABLE schema_version (version bigint NOT NULL)"_s);
    steps.Do(u"INSERT INTO schema_version VALUES (%1)"_s.arg(kSchemaVersion));
  }
  if (!steps.Has(u"SELECT 1 FROM pg_roles WHERE rolname = 'kalivor_history'"_s))
    steps.Do(u"CREATE ROLE kalivor_history NOLOGIN"_s);
  steps.Do(u"GRANT USAGE ON SCHEMA kalivor TO kalivor_history"_s);
  QStringList tables;
  for (const TableDescription& table : Tables())
    tables << table.name.toString();
  const QString all = tables.join(u", "_s);
  steps.Do(u"REVOKE ALL ON schema_version, %1 FROM PUBLIC, kalivor_history"_s.arg(all));
  steps.Do(u"GRANT SELECT ON schema_version, %1 TO kalivor_history"_s.arg(all));
  steps.Do(u"GRANT INSERT ON %1 TO kalivor_history"_s.arg(all));
  steps.Do(u"COMMIT"_s);
  if (steps.Failure()) return {steps.Failure(), {}};
  return {
      {},
      (there
           ? u"Der Verlauf war auf diesem Server schon eingerichtet; die Rechte sind wieder wie am Anfang."_s
           : u"Der Verlauf ist auf diesem Server eingerichtet (Schema kalivor)."_s) +
          u"\nWer abgleichen soll, bekommt die Rolle kalivor_history, zum Beispiel:\n"
          "  GRANT kalivor_history TO meier;\n"
          "Sie darf lesen und hinzufügen, aber nichts ändern und nichts löschen."_s};
}

ServerStore::ServerStore(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}

ServerStore::Opened ServerStore::Open(const QString& server, const GoOn& goOn) {
  Connection::Opened opened = Connect(server, goOn);
  if (opened.failure) return {nullptr, std::move(opened.failure)};
  const ServerRows version = opened.connection->Run(kVersion);
  ServerFailure failure = version.failure;
  if (failure.kind == ServerFailure::NotThere) {
    failure.text =
        u"Auf diesem Server ist noch kein Verlauf eingerichtet. Das macht ein Verwalter der Datenbank mit "
        "kalivor-cli history init-server."_s;
  } else if (failure.kind == ServerFailure::NoRight) {
    failure.text =
        u"Auf diesem Server fehlt das Recht am Verlauf. Ein Verwalter der Datenbank gibt es mit GRANT "
        "kalivor_history TO und dem Namen des Benutzers."_s;
  } else if (!failure) {
    failure = OtherVersion(version);
  }
  if (failure) return {nullptr, std::move(failure)};
  return {std::unique_ptr<ServerStore>(new ServerStore(std::move(opened.connection))), {}};
}

ServerRows ServerStore::Run(const QByteArray& statement, const std::vector<QByteArray>& parameters) {
  ServerRows rows = connection_->Run(statement, parameters);
  failure_ = rows.failure;
  return rows;
}

std::vector<QByteArray> ServerStore::IdsAfter(QStringView table, const QByteArray& after) {
  const TableDescription& description = TableNamed(table);
  const Column& first = description.columns.front();
  const QString behind =
      after.isEmpty() ? QString()
                      : u"WHERE %1 > $1::%2"_s.arg(first.name, QString::fromUtf8(ServerType(first.type)));
  const ServerRows rows =
      Run(u"SELECT DISTINCT %1 FROM %2 %3 ORDER BY %1 LIMIT %4"_s.arg(first.name, description.name, behind)
              .arg(kIdsTogether)
              .toUtf8(),
          after.isEmpty() ? std::vector<QByteArray>() : std::vector<QByteArray>{after});
  std::vector<QByteArray> ids;
  ids.reserve(static_cast<std::size_t>(rows.Count()));
  for (int row = 0; row < rows.Count(); ++row)
    ids.push_back(rows.At(row, 0));
  return ids;
}

TableRows ServerStore::Rows(QStringView table, const std::vector<QByteArray>& ids) {
  const TableDescription& description = TableNamed(table);
  const Column& first = description.columns.front();
  const ServerRows rows =
      Run(u"SELECT %1 FROM %2 WHERE %3 = ANY ($1::%4[]) ORDER BY %5"_s
              .arg(ColumnNames(description), description.name, first.name,
                   QString::fromUtf8(ServerType(first.type)),
                   description.key.isEmpty() ? first.name.toString() : description.key.toString())
              .toUtf8(),
          {IdArray(first.type, ids)});
  TableRows found{description.name, {}};
  for (int row = 0; row < rows.Count(); ++row) {
    QVariantList& values = found.rows.emplace_back();
    for (std::size_t i = 0; i < description.columns.size(); ++i) {
      const int column = static_cast<int>(i);
      values << (rows.IsNull(row, column) ? QVariant()
                                          : ReceivedValue(description.columns[i].type, rows.At(row, column)));
    }
  }
  return found;
}

void ServerStore::Import(const std::vector<TableRows>& tables) {
  failure_ = {};
  const bool several = tables.size() > 1;
  if (several) (void)Run("BEGIN");
  for (const TableRows& rows : tables) {
    if (failure_) break;
    if (rows.rows.empty()) continue;
    const TableDescription& description = TableNamed(rows.table);
    std::vector<QByteArray> columns;
    QStringList arrays;
    for (const Column& column : description.columns) {
      columns.push_back(ColumnArray(column.type, rows.rows, static_cast<qsizetype>(columns.size())));
      arrays << u"$%1::%2[]"_s.arg(QString::number(columns.size()),
                                   QString::fromUtf8(ServerType(column.type)));
    }
    (void)Run(u"INSERT INTO %1 (%2) SELECT * FROM unnest(%3) ON CONFLICT DO NOTHING"_s
                  .arg(description.name, ColumnNames(description), arrays.join(u", "_s))
                  .toUtf8(),
              columns);
  }
  if (!several) return;
  const ServerFailure failure = failure_;
  (void)Run(failure ? "ROLLBACK" : "COMMIT");
  if (failure) failure_ = failure;
}

}  // namespace kalivor::history
