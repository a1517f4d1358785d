// A database of its own for each test, on the one server that all of them share.
#pragma once

#include <gtest/gtest.h>

#include "postgres/PostgresServer.h"

namespace kalivor::test {

/// The server of this run. It speaks TLS with a certificate for "localhost" alone, issued by File("ca.crt").
[[nodiscard]] PostgresServer& TheServer();

class PostgresTest : public testing::Test {
 protected:
  PostgresTest() { EXPECT_EQ(TheServer().Do({QStringLiteral("CREATE DATABASE ") + database_}), QString()); }

  [[nodiscard]] QString Local(const QString& user = QStringLiteral("admin")) const {
    return TheServer().AtSocket(user, database_);
  }
  /// Over the network, with what libpq does unless it is told otherwise.
  [[nodiscard]] QString Remote(const QString& host, const QString& more = {}) const {
    return QStringLiteral("host=%1 port=%2 user=admin dbname=%3 ")
               .arg(host)
               .arg(TheServer().Port())
               .arg(database_) +
           more;
  }
  QString Do(const QStringList& statements, const QString& user = QStringLiteral("admin")) const {
    return TheServer().Do(statements, user, database_);
  }
  QByteArray Ask(const QString& query) const { return TheServer().Ask(query, database_); }

  QTemporaryDir folder_;
  QString database_ = QStringLiteral("test_%1").arg(QString::fromLatin1(
      QByteArray(testing::UnitTest::GetInstance()->current_test_info()->name()).toLower()));
};

}  // namespace kalivor::test
