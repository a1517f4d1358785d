// Two sides have the same afterwards, whatever happens in between.
#include "history/server/Sync.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <cstdio>
#include <utility>

#include "postgres/Clients.h"
#include "postgres/CuttingProxy.h"
#include "postgres/Histories.h"
#include "postgres/PostgresTest.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

using test::Always;
using test::ContentsOf;
using test::Difference;
using test::TheServer;

class SyncTest : public test::PostgresTest {
 protected:
  SyncTest() { EXPECT_FALSE(PrepareServer(Local(), Always).failure); }

  [[nodiscard]] std::unique_ptr<Store> History(const QString& name) const {
    return test::OpenHistory(folder_.filePath(name + u"/Verlauf.sqlite"_s));
  }
  [[nodiscard]] test::Contents ContentsOfServer() const {
    const ServerStore::Opened opened = ServerStore::Open(Local(), Always);
    EXPECT_TRUE(opened.store) << opened.failure.text.toStdString();
    return opened.store ? ContentsOf(*opened.store) : test::Contents();
  }
  static SyncCount CountOf(const SyncResult& result, QStringView table) {
    for (const SyncCount& count : result.counts)
      if (count.table == table) return count;
    return {};
  }
};

TEST_F(SyncTest, WhatIsMissingIsCopiedInBothDirections) {
  const auto left = History(u"left"_s);
  const auto right = History(u"right"_s);
  test::FillHistory(*left, 60, 1, 300);
  test::FillHistory(*right, 40, 2, 300);
  test::Contents all = ContentsOf(*left);
  test::Unite(all, ContentsOf(*right));

  SyncResult result = Synchronize(*left, Local(), {});
  EXPECT_EQ(SyncText(result).section(u' ', 0, 1), u"Gesendet: 60"_s);
  EXPECT_EQ(CountOf(result, u"entry").received, 0);
  // Sets that differ from others are among them, in whatever order their ids are.
  EXPECT_NE(Ask(u"SELECT count(*) FROM kalivor.value_set WHERE base > id"_s), QByteArray(8, '\0'));
  EXPECT_NE(Ask(u"SELECT count(*) FROM kalivor.value_set WHERE base < id"_s), QByteArray(8, '\0'));
  int lastDone = -1;
  int lastTotal = 0;
  result = Synchronize(*right, Local(), {Always, [&](int done, int total) {
                                           EXPECT_GE(done, lastDone);
                                           lastDone = done;
                                           lastTotal = total;
                                         }});
  ASSERT_FALSE(result.failure) << result.failure.text.toStdString();
  EXPECT_EQ(CountOf(result, u"entry").sent, 40);
  EXPECT_EQ(CountOf(result, u"entry").received, 60);
  EXPECT_EQ(lastDone, lastTotal);
  EXPECT_EQ(Difference(all, ContentsOf(*right)), QString());
  EXPECT_EQ(Difference(all, ContentsOfServer()), QString());

  ASSERT_FALSE(Synchronize(*left, Local(), {}).failure);
  EXPECT_EQ(Difference(all, ContentsOf(*left)), QString());
  EXPECT_EQ(left->Check(), QStringList());
  for (const Entry& entry : left->Entries())
    EXPECT_FALSE(left->Image(entry.set).isEmpty());

  result = Synchronize(*left, Local(), {});
  EXPECT_EQ(SyncText(result), u"Beide Seiten haben dasselbe."_s);
}

TEST_F(SyncTest, AnEmptyHistoryGetsEverything) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 600, 1, 3);
  ASSERT_FALSE(Synchronize(*left, Local(), {}).failure);
  const auto right = History(u"right"_s);
  ASSERT_FALSE(Synchronize(*right, Local(), {}).failure);
  EXPECT_EQ(Difference(ContentsOf(*left), ContentsOf(*right)), QString());
}

TEST_F(SyncTest, DamagedRowsAreLeftOutWithWhatRefersToThem) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 10, 1);
  ASSERT_FALSE(Synchronize(*left, Local(), {}).failure);
  const std::vector<QByteArray> entries = left->Ids(u"entry");
  const QString first = QString::fromLatin1(entries.front().toHex());
  const QString last = QString::fromLatin1(entries.back().toHex());
  // A time that is none, a change too many; a remark refers to the first one.
  ASSERT_EQ(
      Do({u"UPDATE kalivor.entry SET time = 'gestern' WHERE id = '%1'"_s.arg(first),
          u"INSERT INTO kalivor.change SELECT entry, 1000, number, group_name, name, variable, type, "
          u"address, "
          "unit, before, after, state FROM (SELECT '%1'::uuid AS entry, 1 AS number, '' AS group_name, '' AS "
          "name, '' AS variable, '' AS type, '' AS address, '' AS unit, '' AS before, '' AS after, '' AS "
          "state) "
          "AS c"_s.arg(last),
          u"INSERT INTO kalivor.value_set VALUES (decode(repeat('ab', 32), 'hex'), NULL, 'x')"_s,
          u"INSERT INTO kalivor.remark VALUES ('%1', '%2', '%1', 1, '2026-01-01T10:00:00+01:00', '', '')"_s
              .arg(u"00000000-0000-0000-0000-000000000001"_s, first)}),
      QString());
  const auto right = History(u"right"_s);
  const SyncResult result = Synchronize(*right, Local(), {});
  EXPECT_FALSE(result.failure) << result.failure.text.toStdString();
  EXPECT_EQ(right->Ids(u"entry").size(), entries.size() - 2);
  // Set, two entries, remarks and assignments of the first.
  EXPECT_GE(result.leftOut, 4);
  EXPECT_TRUE(result.reasons.contains(u"entry.time ist keine Zeit"_s))
      << result.reasons.join(u'\n').toStdString();
  EXPECT_TRUE(result.reasons.contains(u"remark.entry verweist auf etwas, das fehlt"_s));
  EXPECT_TRUE(SyncText(result).contains(u"Ausgelassen, weil beschädigt: %1"_s.arg(result.leftOut)));
  EXPECT_EQ(right->Check(), QStringList());
  // Nothing of it comes back to the server.
  EXPECT_FALSE(Synchronize(*right, Local(), {}).failure);
}

TEST_F(SyncTest, ASetThatIsNotWhatItsIdSaysIsNotTaken) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 10, 1);
  ASSERT_FALSE(Synchronize(*left, Local(), {}).failure);
  // The content of another set, well formed in itself, in one that no other refers to.
  ASSERT_EQ(Do({u"UPDATE kalivor.value_set SET (base, data) = (SELECT base, data FROM kalivor.value_set "
                u"ORDER BY id "
                "LIMIT 1) WHERE id = (SELECT id FROM kalivor.value_set WHERE id NOT IN (SELECT base FROM "
                "kalivor.value_set WHERE base IS NOT NULL) ORDER BY id DESC LIMIT 1)"_s}),
            QString());
  const auto right = History(u"right"_s);
  const SyncResult result = Synchronize(*right, Local(), {});
  EXPECT_FALSE(result.failure) << result.failure.text.toStdString();
  EXPECT_EQ(right->Ids(u"value_set").size() + 1, left->Ids(u"value_set").size());
  EXPECT_TRUE(result.reasons.contains(u"value_set.data ist nicht, was value_set.id sagt"_s));
  EXPECT_EQ(right->Check(), QStringList());
}

TEST_F(SyncTest, AnAbortEndsItAfterTheBatch) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 2000, 1, 3);
  bool goesOn = true;
  const SyncResult result = Synchronize(
      *left, Local(), {[&] { return goesOn; }, [&](int done, int) { goesOn = goesOn && done < 300; }});
  EXPECT_EQ(result.failure.kind, ServerFailure::Aborted);
  const std::size_t sent = ContentsOfServer()[u"entry"].size();
  EXPECT_TRUE(sent > 0 && sent < 2000) << sent;
  ASSERT_FALSE(Synchronize(*left, Local(), {}).failure);
  EXPECT_EQ(Difference(ContentsOf(*left), ContentsOfServer()), QString());
}

TEST_F(SyncTest, GoesOnWhereAConnectionWasCut) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 500, 1, 5);
  for (quint32 seed = 1; seed <= 4; ++seed) {
    const auto right = History(QString::number(seed));
    test::FillHistory(*right, 100, 10 + seed, 5);
    QRandomGenerator random(seed);
    test::CuttingProxy proxy(TheServer().Port(), [&](int) { return random.bounded(200'000); });
    for (Store* store : {left.get(), right.get(), left.get()}) {
      SyncResult result;
      for (int round = 0; round < 100; ++round) {
        result = Synchronize(*store, TheServer().OverNetwork(proxy.Port(), u"admin"_s, database_), {});
        if (!result.failure) break;
      }
      EXPECT_FALSE(result.failure) << result.failure.text.toStdString();
    }
    EXPECT_GT(proxy.Cuts(), 0);
    EXPECT_EQ(Difference(ContentsOf(*left), ContentsOfServer()), QString()) << "seed " << seed;
    EXPECT_EQ(Difference(ContentsOf(*left), ContentsOf(*right)), QString()) << "seed " << seed;
  }
}

TEST_F(SyncTest, GoesOnWhereTheServerWasKilledAndStartsAgain) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 3000, 1, 3);
  bool killed = false;
  const SyncResult result = Synchronize(*left, Local(), {Always, [&](int done, int) {
                                                           if (done < 300 || std::exchange(killed, true))
                                                             return;
                                                           TheServer().Kill();
                                                           TheServer().Start();
                                                         }});
  EXPECT_TRUE(killed);
  EXPECT_FALSE(result.failure) << result.failure.text.toStdString();
  EXPECT_EQ(Difference(ContentsOf(*left), ContentsOfServer()), QString());
}

TEST_F(SyncTest, AServerThatIsGoneForGoodIsSaid) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 50, 1);
  TheServer().Stop();
  const SyncResult result = Synchronize(*left, Local(), {});
  EXPECT_EQ(result.failure.kind, ServerFailure::NotReached);
  TheServer().Start();
}

TEST_F(SyncTest, TenThousandEntriesTakeSeconds) {
  const auto left = History(u"left"_s);
  test::FillHistory(*left, 10'000, 1);
  QElapsedTimer time;
  time.start();
  ASSERT_FALSE(
      Synchronize(*left, TheServer().OverNetwork(TheServer().Port(), u"admin"_s, database_), {}).failure);
  const qint64 sent_ms = time.restart();
  const auto right = History(u"right"_s);
  ASSERT_FALSE(
      Synchronize(*right, TheServer().OverNetwork(TheServer().Port(), u"admin"_s, database_), {}).failure);
  const qint64 received_ms = time.restart();
  ASSERT_FALSE(
      Synchronize(*right, TheServer().OverNetwork(TheServer().Port(), u"admin"_s, database_), {}).failure);
  std::printf("10,000 entries: sent in %lld ms, received in %lld ms, compared in %lld ms\n",
              static_cast<long long>(sent_ms), static_cast<long long>(received_ms),
              static_cast<long long>(time.elapsed()));
  constexpr qint64 kLongest_ms = 20'000;
  EXPECT_LT(sent_ms, kLongest_ms);
  EXPECT_LT(received_ms, kLongest_ms);
}

TEST_F(SyncTest, ManyAtOnceLoseNothingAndDoubleNothing) {
  // The crowd works in a database of its own name.
  ASSERT_FALSE(PrepareServer(TheServer().AtSocket(), Always).failure);
  const test::CrowdOutcome outcome = test::RunCrowd(TheServer(), {6, 300, 1, 150'000}, folder_.path());
  EXPECT_EQ(outcome.difference, QString());
  EXPECT_GT(outcome.cuts, 6);
}

}  // namespace
}  // namespace kalivor::history
