// The history of a department: the tables of Schema.h on a PostgreSQL server.
#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <vector>

#include "history/Store.h"
#include "history/server/Connection.h"

namespace kalivor::history {

/// Where the tables lie, and the role that may read them and add to them, but neither change nor delete.
inline constexpr QStringView kServerSchema = u"kalivor";
inline constexpr QStringView kServerRole = u"kalivor_history";

/// What came of preparing a server.
struct Preparation {
  ServerFailure failure;
  QString text;  ///< what was done and what comes next, several lines; "" after a failure
};

/// Makes schema, tables and role, all of them or nothing; what is there already stays. The user needs the
/// rights to make schemas and roles.
[[nodiscard]] Preparation PrepareServer(const QString& server, const GoOn& goOn);

/// One connection to a prepared server. As Store does, it adds all rows or none, and those that are there
/// already stay as they are.
class ServerStore {
 public:
  struct Opened {
    std::unique_ptr<ServerStore> store;  ///< null after a failure
    ServerFailure failure;
  };

  /// Refuses a server with tables of another version.
  [[nodiscard]] static Opened Open(const QString& server, const GoOn& goOn);

  // Each leaves why it did not work in Failure(), and returns nothing then.

  /// So many ids at once: few enough for a connection that does not last.
  static constexpr int kIdsTogether = 10'000;

  /// The next kIdsTogether behind `after` (empty: from the beginning), in order, each once; fewer at the end.
  [[nodiscard]] std::vector<QByteArray> IdsAfter(QStringView table, const QByteArray& after);

  /// Those with these ids, by key; ids that are not there have none.
  [[nodiscard]] TableRows Rows(QStringView table, const std::vector<QByteArray>& ids);

  void Import(const std::vector<TableRows>& tables);

  [[nodiscard]] const ServerFailure& Failure() const { return failure_; }

  /// For who looks at it himself.
  [[nodiscard]] Connection& Line() { return *connection_; }

 private:
  explicit ServerStore(std::unique_ptr<Connection> connection);

  ServerRows Run(const QByteArray& statement, const std::vector<QByteArray>& parameters = {});

  std::unique_ptr<Connection> connection_;
  ServerFailure failure_;
};

}  // namespace kalivor::history
