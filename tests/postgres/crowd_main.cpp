// kalivor-sync-crowd: many technicians exchange large histories with one server at once. script/campaign
// starts it.
#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QStringList>
#include <cstdio>

#include "history/server/ServerStore.h"
#include "postgres/Clients.h"

using namespace Qt::StringLiterals;

namespace {

int Option(const QStringList& arguments, const QString& name, int fallback) {
  const qsizetype at = arguments.indexOf(name);
  return at < 0 ? fallback : arguments.value(at + 1).toInt();
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kalivor;
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  constexpr int kLongest_bytes = 5'000'000;
  const test::Crowd crowd{Option(arguments, u"--clients"_s, 20), Option(arguments, u"--entries"_s, 10'000),
                          static_cast<quint64>(Option(arguments, u"--seed"_s, 1)),
                          Option(arguments, u"--bytes"_s, kLongest_bytes)};
  if (crowd.clients < 1 || crowd.entries < 1 || crowd.longest_bytes < 1) {
    (void)std::fprintf(stderr,
                       "usage: kalivor-sync-crowd [--clients N] [--entries N] [--seed N] [--bytes N]\n");
    return 2;
  }
  test::PostgresServer server;
  const history::Preparation prepared = history::PrepareServer(server.AtSocket(), test::Always);
  QString fault = prepared.failure.text;
  if (fault.isEmpty()) {
    const QTemporaryDir folder;
    const test::CrowdOutcome outcome = test::RunCrowd(server, crowd, folder.path());
    (void)std::printf(
        "%d clients with %d entries each: %d connections cut, %d exchanges, %.0f s until the server had "
        "everything, "
        "%.0f s until everybody had.\n",
        crowd.clients, crowd.entries, outcome.cuts, outcome.rounds, outcome.first_s, outcome.all_s);
    fault = outcome.difference;
  }
  if (fault.isEmpty() && !testing::UnitTest::GetInstance()->Failed()) {
    (void)std::printf("Nothing lost, nothing twice.\n");
    return 0;
  }
  (void)std::printf("%s\n", fault.toUtf8().constData());
  return 1;
}
