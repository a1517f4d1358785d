#include "postgres/Clients.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <atomic>
#include <mutex>
#include <thread>

#include "history/server/Sync.h"
#include "postgres/CuttingProxy.h"
#include "postgres/Histories.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

constexpr int kMostRounds = 500;
constexpr double kMillisecond_s = 0.001;

// Each in a thread of its own.
void ForEach(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i)
    threads.emplace_back([&work, i] { work(i); });
  for (std::thread& thread : threads)
    thread.join();
}

// Again and again until it comes to its end; returns how often.
int ExchangeUntilDone(history::Store& store, const QString& server, QString& failure) {
  for (int round = 1; round <= kMostRounds; ++round) {
    const history::SyncResult result = history::Synchronize(store, server, {});
    failure = result.failure.text;
    if (result.leftOut > 0) failure = result.reasons.join(u"; "_s);
    if (failure.isEmpty()) return round;
  }
  return kMostRounds;
}

}  // namespace

CrowdOutcome RunCrowd(const PostgresServer& server, const Crowd& crowd, const QString& folder) {
  CrowdOutcome outcome;
  Contents made;
  std::mutex mutex;
  const auto file = [&](int client) { return u"%1/%2/Verlauf.sqlite"_s.arg(folder).arg(client); };
  ForEach(crowd.clients, [&](int client) {
    const auto store = OpenHistory(file(client));
    FillHistory(*store, crowd.entries, crowd.seed + static_cast<quint64>(client));
    const Contents contents = ContentsOf(*store);
    const std::lock_guard lock(mutex);
    Unite(made, contents);
  });

  QElapsedTimer time;
  time.start();
  const auto exchange = [&](int client, const QString& where, std::atomic<int>& rounds) {
    const auto store = OpenHistory(file(client));
    QString failure;
    rounds += ExchangeUntilDone(*store, where, failure);
    const std::lock_guard lock(mutex);
    if (!failure.isEmpty()) outcome.difference += u"client %1: %2\n"_s.arg(client).arg(failure);
  };
  std::atomic<int> rounds = 0;
  std::atomic<int> cuts = 0;
  const auto exchangeAll = [&](quint64 phase) {
    ForEach(crowd.clients, [&](int client) {
      QRandomGenerator random(
          static_cast<quint32>(1000 * (2 * crowd.seed + phase) + static_cast<quint64>(client)));
      CuttingProxy proxy(server.Port(), [&](int) { return random.bounded(crowd.longest_bytes); });
      exchange(client, server.OverNetwork(proxy.Port()), rounds);
      cuts += proxy.Cuts();
    });
    return static_cast<double>(time.elapsed()) * kMillisecond_s;
  };
  outcome.first_s = exchangeAll(0);
  // What the others have sent since.
  outcome.all_s = exchangeAll(1);
  outcome.rounds = rounds;
  outcome.cuts = cuts;

  const auto there = history::ServerStore::Open(server.AtSocket(), Always);
  outcome.difference += there.failure.text;
  if (there.store) outcome.difference += Difference(made, ContentsOf(*there.store));
  ForEach(crowd.clients, [&](int client) {
    const auto store = OpenHistory(file(client));
    const QString difference = Difference(made, ContentsOf(*store)) + store->Check().join(u'\n');
    const std::lock_guard lock(mutex);
    outcome.difference += difference;
  });
  return outcome;
}

}  // namespace kalivor::test
