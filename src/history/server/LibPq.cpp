#include "history/server/LibPq.h"

#include <QCoreApplication>
#include <QLibrary>

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

class Functions {
 public:
  explicit Functions(QLibrary& library) : library_(library) {}

  template <typename Function>
  void Resolve(const char* name, Function& function) {
    function = reinterpret_cast<Function>(library_.resolve(name));
    complete_ = complete_ && function != nullptr;
  }
  [[nodiscard]] bool Complete() const { return complete_; }

 private:
  QLibrary& library_;
  bool complete_ = true;
};

bool ResolveAll(QLibrary& library, LibPq& pq) {
  Functions functions(library);
  functions.Resolve("PQconninfoParse", pq.conninfoParse);
  functions.Resolve("PQconninfoFree", pq.conninfoFree);
  functions.Resolve("PQconninfo", pq.conninfo);
  functions.Resolve("PQfreemem", pq.freemem);
  functions.Resolve("PQconnectStartParams", pq.connectStartParams);
  functions.Resolve("PQconnectPoll", pq.connectPoll);
  functions.Resolve("PQfinish", pq.finish);
  functions.Resolve("PQstatus", pq.status);
  functions.Resolve("PQsocket", pq.socket);
  functions.Resolve("PQerrorMessage", pq.errorMessage);
  functions.Resolve("PQparameterStatus", pq.parameterStatus);
  functions.Resolve("PQsslInUse", pq.sslInUse);
  functions.Resolve("PQsetnonblocking", pq.setnonblocking);
  functions.Resolve("PQsetNoticeReceiver", pq.setNoticeReceiver);
  functions.Resolve("PQsendQueryParams", pq.sendQueryParams);
  functions.Resolve("PQflush", pq.flush);
  functions.Resolve("PQconsumeInput", pq.consumeInput);
  functions.Resolve("PQisBusy", pq.isBusy);
  functions.Resolve("PQgetResult", pq.getResult);
  functions.Resolve("PQclear", pq.clear);
  functions.Resolve("PQresultStatus", pq.resultStatus);
  functions.Resolve("PQresultErrorMessage", pq.resultErrorMessage);
  functions.Resolve("PQresultErrorField", pq.resultErrorField);
  functions.Resolve("PQntuples", pq.ntuples);
  functions.Resolve("PQgetvalue", pq.getvalue);
  functions.Resolve("PQgetlength", pq.getlength);
  functions.Resolve("PQgetisnull", pq.getisnull);
  return functions.Complete();
}

}  // namespace

QStringList LibPqFiles() {
#ifdef Q_OS_WIN
  return {QCoreApplication::applicationDirPath() + u"/libpq.dll"_s, u"libpq.dll"_s};
#else
  return {u"libpq.so.5"_s};
#endif
}

std::optional<LibPq> OpenLibPq(QString& failure, const QStringList& files) {
  for (const QString& file : files) {
    QLibrary library(file);
    LibPq pq;
    if (library.load() && ResolveAll(library, pq)) return pq;
    failure =
        u"Für den Abgleich fehlt die Bibliothek libpq. Unter Debian ist sie im Paket libpq5, unter Windows "
        "gehört libpq.dll neben das Programm. (%1)"_s.arg(library.errorString());
  }
  return std::nullopt;
}

}  // namespace kalivor::history
