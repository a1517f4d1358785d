#include "history/server/Connection.h"

#include <QDeadlineTimer>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "history/server/LibPq.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// How long nobody is asked whether to go on.
constexpr double kLook_s = 0.1;

QString TextOf(const char* text) {
  return QString::fromUtf8(text).simplified();
}

// Keywords and values of a connection, in the order in which they count.
using Words = std::vector<std::pair<QByteArray, QByteArray>>;

PGconn* Start(const LibPq& pq, const Words& words) {
  std::vector<const char*> keywords;
  std::vector<const char*> values;
  for (const auto& [keyword, value] : words) {
    keywords.push_back(keyword.constData());
    values.push_back(value.constData());
  }
  keywords.push_back(nullptr);
  values.push_back(nullptr);
  return pq.connectStartParams(keywords.data(), values.data(), 1);
}

QByteArray ValueOf(const PQconninfoOption* options, QByteArrayView keyword) {
  for (; options != nullptr && options->keyword != nullptr; ++options)
    if (keyword == options->keyword) return options->val;
  return {};
}

// What string, service, environment and the library's defaults together come to. The library looks at the
// last of these words before it connects, and does not know its value.
QByteArray Effective(const LibPq& pq, Words words, const char* keyword) {
  words.emplace_back("target_session_attrs", "none of them");
  PGconn* probe = Start(pq, words);
  PQconninfoOption* options = pq.conninfo(probe);
  QByteArray value = ValueOf(options, keyword);
  pq.conninfoFree(options);
  pq.finish(probe);
  return value;
}

// The library's own default, which encrypts where the server wants to and verifies nothing.
constexpr QByteArrayView kPrefer = "prefer";

ServerFailure BadServer(const QString& text) {
  return {ServerFailure::BadServer, text};
}

// What the user has typed, as words. The library's default for encryption is replaced; a service that asks
// for just that cannot be told from one that says nothing.
Words WordsOf(const LibPq& pq, const QString& server, ServerFailure& failure) {
  const QByteArray text = server.trimmed().toUtf8();
  if (text.isEmpty()) {
    failure = BadServer(u"Es ist kein Server angegeben."_s);
    return {};
  }
  Words words;
  bool saysMode = qEnvironmentVariableIsSet("PGSSLMODE");
  if (!text.contains('=') && !text.contains("://")) {
    words.emplace_back("service", text);
  } else {
    char* complaint = nullptr;
    PQconninfoOption* options = pq.conninfoParse(text.constData(), &complaint);
    if (options == nullptr) {
      failure = BadServer(u"Die Angabe zum Server ist nicht zu verstehen: "_s + TextOf(complaint));
      pq.freemem(complaint);
      return {};
    }
    saysMode = saysMode || !ValueOf(options, "sslmode").isEmpty();
    const bool tellsPassword =
        !ValueOf(options, "password").isEmpty() || !ValueOf(options, "sslpassword").isEmpty();
    pq.conninfoFree(options);
    if (tellsPassword) {
      failure = BadServer(
          u"In die Angabe zum Server gehört kein Kennwort, denn sie wird in den Einstellungen gespeichert. "
          u"Es wird "
          "in ~/.pgpass gesucht (unter Windows %APPDATA%\\postgresql\\pgpass.conf), in der Servicedatei und "
          "in "
          "PGPASSWORD."_s);
      return {};
    }
    words.emplace_back("dbname", text);
  }
  words.emplace_back("fallback_application_name", "KALIVOR");
  words.emplace_back("client_encoding", "UTF8");
  if (!saysMode && Effective(pq, words, "sslmode") == kPrefer) words.emplace_back("sslmode", "verify-full");
  // Looking for tickets that nobody has can take long.
  if (Effective(pq, words, "gssencmode") == kPrefer) words.emplace_back("gssencmode", "disable");
  return words;
}

// What a thread leaves for whoever still waits for it.
struct Starting {
  std::mutex mutex;
  std::condition_variable changed;
  PGconn* connection = nullptr;
  bool started = false;
  bool forgotten = false;
};

// Looks for the server's name, which no system bounds: a thread of its own takes as long as it takes, and is
// forgotten when nobody waits any more. Null then.
PGconn* StartInTime(const LibPq& pq, const Words& words, QDeadlineTimer bound, const GoOn& goOn) {
  const auto starting = std::make_shared<Starting>();
  std::thread([starting, pq, words] {
    PGconn* connection = Start(pq, words);
    const std::lock_guard lock(starting->mutex);
    if (starting->forgotten) {
      pq.finish(connection);
      return;
    }
    starting->connection = connection;
    starting->started = true;
    starting->changed.notify_all();
  }).detach();
  std::unique_lock lock(starting->mutex);
  while (!starting->started && !bound.hasExpired() && goOn())
    starting->changed.wait_for(lock, std::chrono::duration<double>(kLook_s));
  starting->forgotten = !starting->started;
  return starting->connection;
}

ServerFailure Unreached(const QString& said) {
  QString text = u"Der Server ist nicht zu erreichen: "_s + said;
  if (said.contains(u"SSL") || said.contains(u"ertifi")) {
    text +=
        u" – Das Zertifikat der Stelle, die das des Servers ausgestellt hat, wird in ~/.postgresql/root.crt "
        "gesucht (unter Windows %APPDATA%\\postgresql\\root.crt) oder in der Datei, die sslrootcert nennt."_s;
  }
  return {ServerFailure::NotReached, text};
}

ServerFailure Silent(ServerFailure::Kind kind, int limit_ms) {
  constexpr int kSecond_ms = 1000;
  return {kind, u"Der Server antwortet seit %1 s nicht."_s.arg(limit_ms / kSecond_ms)};
}

ServerFailure Abort() {
  return {ServerFailure::Aborted, u"Der Abgleich wurde abgebrochen."_s};
}

ServerFailure::Kind KindOf(QByteArrayView state) {
  // Deadlock, cannot be put in one order with others, waited too long for them, takes too long, is shut down.
  for (const QByteArrayView busy : {"40P01", "40001", "55P03", "57014"})
    if (state == busy) return ServerFailure::Busy;
  if (state.startsWith("57P") || state.startsWith("08")) return ServerFailure::Lost;
  if (state == "42P01" || state == "3F000") return ServerFailure::NotThere;
  if (state == "42501") return ServerFailure::NoRight;
  return ServerFailure::Other;
}

}  // namespace

/// The library, and the connection that it has.
struct ServerHandle {
  ~ServerHandle() { pq.finish(connection); }

  LibPq pq;
  PGconn* connection = nullptr;
};

struct ServerRows::Source {
  ~Source() { handle->pq.clear(result); }

  std::shared_ptr<const ServerHandle> handle;
  PGresult* result = nullptr;
};

bool ServerRows::IsNull(int row, int column) const {
  return source_->handle->pq.getisnull(source_->result, row, column) != 0;
}

QByteArray ServerRows::At(int row, int column) const {
  const LibPq& pq = source_->handle->pq;
  return {pq.getvalue(source_->result, row, column), pq.getlength(source_->result, row, column)};
}

Connection::Connection() = default;
Connection::~Connection() = default;

Connection::Opened Connection::Open(const QString& server, GoOn goOn) {
  std::unique_ptr<Connection> connection(new Connection);
  connection->goOn_ = std::move(goOn);
  ServerFailure failure = connection->Connect(server);
  if (failure) return {nullptr, std::move(failure)};
  return {std::move(connection), {}};
}

ServerFailure Connection::Connect(const QString& server) {
  QString missing;
  const std::optional<LibPq> pq = OpenLibPq(missing);
  if (!pq) return {ServerFailure::NotReached, missing};
  ServerFailure failure;
  const Words words = WordsOf(*pq, server, failure);
  if (failure) return failure;

  const QDeadlineTimer bound(kConnecting_ms);
  const auto handle = std::make_shared<ServerHandle>();
  handle->pq = *pq;
  handle->connection = StartInTime(*pq, words, bound, goOn_);
  handle_ = handle;
  if (handle->connection != nullptr) {
    PostgresPollingStatusType wanted = PGRES_POLLING_WRITING;
    while (wanted != PGRES_POLLING_OK && wanted != PGRES_POLLING_FAILED && !bound.hasExpired() && goOn_()) {
      const platform::sockets::Ready ready =
          Wait(wanted == PGRES_POLLING_READING, wanted == PGRES_POLLING_WRITING);
      if (ready.input || ready.output) wanted = pq->connectPoll(handle->connection);
    }
    if (wanted == PGRES_POLLING_FAILED) return Unreached(TextOf(pq->errorMessage(handle->connection)));
    if (wanted == PGRES_POLLING_OK) {
      (void)pq->setnonblocking(handle->connection, 1);
      (void)pq->setNoticeReceiver(
          handle->connection, [](void*, const PGresult*) {}, nullptr);
      return {};
    }
  }
  return goOn_() ? Silent(ServerFailure::NotReached, kConnecting_ms) : Abort();
}

platform::sockets::Ready Connection::Wait(bool wantsInput, bool wantsOutput) const {
  const int socket = handle_->pq.socket(handle_->connection);
  // Without one the next call says why.
  if (socket < 0) return {true, true};
  return platform::sockets::Wait(socket, wantsInput, wantsOutput, kLook_s);
}

ServerFailure Connection::LostNow() const {
  return {ServerFailure::Lost, u"Die Verbindung zum Server ist abgebrochen: "_s +
                                   TextOf(handle_->pq.errorMessage(handle_->connection))};
}

ServerRows Connection::Run(const QByteArray& statement, const std::vector<QByteArray>& parameters) {
  const LibPq& pq = handle_->pq;
  PGconn* connection = handle_->connection;
  ServerRows rows;
  std::vector<const char*> values;
  std::vector<int> lengths;
  for (const QByteArray& parameter : parameters) {
    values.push_back(parameter.isNull() ? nullptr : parameter.constData());
    lengths.push_back(static_cast<int>(parameter.size()));
  }
  const std::vector<int> binary(parameters.size(), 1);
  if (pq.sendQueryParams(connection, statement.constData(), static_cast<int>(parameters.size()), nullptr,
                         values.data(), lengths.data(), binary.data(), 1) == 0) {
    rows.failure = LostNow();
    return rows;
  }
  QDeadlineTimer silence(kSilence_ms);
  bool unsent = true;
  while (true) {
    if (unsent) {
      const int left = pq.flush(connection);
      unsent = left == 1;
      if (left < 0) break;
    }
    if (pq.isBusy(connection) == 0) {
      PGresult* result = pq.getResult(connection);
      if (result == nullptr) return rows;
      const auto source = std::make_shared<ServerRows::Source>();
      source->handle = handle_;
      source->result = result;
      const ExecStatusType status = pq.resultStatus(result);
      if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK) {
        rows.source_ = source;
        rows.count_ = pq.ntuples(result);
      } else if (!rows.failure) {
        const char* state = pq.resultErrorField(result, PG_DIAG_SQLSTATE);
        rows.failure = state == nullptr || pq.status(connection) == CONNECTION_BAD
                           ? LostNow()
                           : ServerFailure{KindOf(state),
                                           u"Der Server meldet: "_s + TextOf(pq.resultErrorMessage(result))};
      }
      continue;
    }
    if (!goOn_()) {
      rows.failure = Abort();
      return rows;
    }
    if (silence.hasExpired()) {
      rows.failure = Silent(ServerFailure::Lost, kSilence_ms);
      return rows;
    }
    const platform::sockets::Ready ready = Wait(true, unsent);
    if (ready.input || ready.output) silence.setRemainingTime(kSilence_ms);
    if (ready.input && pq.consumeInput(connection) == 0) break;
  }
  rows.failure = LostNow();
  return rows;
}

bool Connection::Encrypted() const {
  return handle_->pq.sslInUse(handle_->connection) != 0;
}

ServerFailure ServerFault(const QString& server) {
  QString missing;
  const std::optional<LibPq> pq = OpenLibPq(missing);
  if (!pq) return {ServerFailure::NotReached, missing};
  ServerFailure failure;
  (void)WordsOf(*pq, server, failure);
  return failure;
}

QByteArray Connection::Encoding() const {
  return handle_->pq.parameterStatus(handle_->connection, "server_encoding");
}

}  // namespace kalivor::history
