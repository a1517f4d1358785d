// PostgreSQL's client library, opened when it is first needed: who has no server needs no library.
#pragma once

#include <libpq-fe.h>
#include <QString>
#include <QStringList>
#include <optional>

namespace kalivor::history {

/// The functions of the library that are used, each as its manual describes it.
struct LibPq {
  decltype(&PQconninfoParse) conninfoParse = nullptr;
  decltype(&PQconninfoFree) conninfoFree = nullptr;
  decltype(&PQconninfo) conninfo = nullptr;
  decltype(&PQfreemem) freemem = nullptr;
  decltype(&PQconnectStartParams) connectStartParams = nullptr;
  decltype(&PQconnectPoll) connectPoll = nullptr;
  decltype(&PQfinish) finish = nullptr;
  decltype(&PQstatus) status = nullptr;
  decltype(&PQsocket) socket = nullptr;
  decltype(&PQerrorMessage) errorMessage = nullptr;
  decltype(&PQparameterStatus) parameterStatus = nullptr;
  decltype(&PQsslInUse) sslInUse = nullptr;
  decltype(&PQsetnonblocking) setnonblocking = nullptr;
  decltype(&PQsetNoticeReceiver) setNoticeReceiver = nullptr;
  decltype(&PQsendQueryParams) sendQueryParams = nullptr;
  decltype(&PQflush) flush = nullptr;
  decltype(&PQconsumeInput) consumeInput = nullptr;
  decltype(&PQisBusy) isBusy = nullptr;
  decltype(&PQgetResult) getResult = nullptr;
  decltype(&PQclear) clear = nullptr;
  decltype(&PQresultStatus) resultStatus = nullptr;
  decltype(&PQresultErrorMessage) resultErrorMessage = nullptr;
  decltype(&PQresultErrorField) resultErrorField = nullptr;
  decltype(&PQntuples) ntuples = nullptr;
  decltype(&PQgetvalue) getvalue = nullptr;
  decltype(&PQgetlength) getlength = nullptr;
  decltype(&PQgetisnull) getisnull = nullptr;
};

/// What the library may be called here, the one beside the program first.
[[nodiscard]] QStringList LibPqFiles();

/// Opens the first of `files` that there is. Nothing, and why in German, where there is none.
[[nodiscard]] std::optional<LibPq> OpenLibPq(QString& failure, const QStringList& files = LibPqFiles());

}  // namespace kalivor::history
