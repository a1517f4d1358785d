// Nobody waits for the writer, and nothing that can be written is lost.
#include "history/Writer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include "history/Sql.h"
#include "unit/history/HistoryFixture.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr int kLong_ms = 30000;

class WriterTest : public HistoryFixture {
 protected:
  [[nodiscard]] std::unique_ptr<Writer> Begin() {
    return std::make_unique<Writer>(World(file_), [this](const QString& text) {
      const std::lock_guard lock(mutex_);
      told_ << text;
    });
  }
  [[nodiscard]] QStringList Told() {
    const std::lock_guard lock(mutex_);
    return told_;
  }

  // Settles although the first attempts fail.
  static bool SettlesAtLast(Writer& writer) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < kLong_ms)
      if (writer.Settle(kLong_ms)) return true;
    return false;
  }

  [[nodiscard]] std::size_t Count() const {
    const Store::Opened opened = Store::Open(World(file_), Access::Read);
    return opened.store ? opened.store->Entries().size() : 0;
  }

  // Another program that holds the file.
  class Holder {
   public:
    explicit Holder(const QString& file) : connection_(file, {}) {
      EXPECT_TRUE(Statement(connection_.Database(), u"BEGIN IMMEDIATE"_s).Run());
    }

   private:
    FileConnection connection_;
  };

 private:
  std::mutex mutex_;
  QStringList told_;
};

TEST_F(WriterTest, AddsInOrderUntilItsEnd) {
  {
    const auto writer = Begin();
    for (qint32 number = 1; number <= 20; ++number)
      writer->Add(Received(number));
  }
  EXPECT_EQ(Told(), QStringList());
  const auto store = Opened();
  const std::vector<Entry> entries = store->Entries();
  ASSERT_EQ(entries.size(), 20u);
  for (std::size_t i = 0; i < entries.size(); ++i)
    EXPECT_EQ(store->Values(entries[i], false).set.values[0].value.number, 21 - static_cast<int>(i));
}

TEST_F(WriterTest, GivesBackTheCallerAtOnce) {
  // Held by another program, with as many values as there can be.
  (void)Opened();
  const Holder holder(file_);
  const auto writer = Begin();
  const auto table = TableWith(1, kLastParameter - 1);
  for (int i = 0; i < 20; ++i) {
    Observation observation = Received(table);
    QElapsedTimer clock;
    clock.start();
    writer->Add(std::move(observation));
    EXPECT_LE(clock.elapsed(), 5);
  }
  QElapsedTimer clock;
  clock.start();
  writer->Do([](Store&) { return QString(); });
  EXPECT_LE(clock.elapsed(), 5);
}

TEST_F(WriterTest, WaitsForAnotherProgramAndSaysSoOnce) {
  (void)Opened();
  const auto writer = Begin();
  {
    const Holder holder(file_);
    for (qint32 number = 1; number <= 3; ++number) {
      writer->Add(Received(number));
      EXPECT_FALSE(writer->Settle(kLong_ms));
    }
    EXPECT_EQ(Told(),
              QStringList{u"Der Verlauf kann nicht geschrieben werden: Ein anderes Programm hält ihn gerade "
                          "gesperrt. Neue Einträge warten, solange das Programm läuft."_s});
    EXPECT_EQ(Count(), 0u);
  }
  EXPECT_TRUE(SettlesAtLast(*writer));
  EXPECT_EQ(Count(), 3u);
  EXPECT_EQ(Told().size(), 1);
  {
    const Holder holder(file_);
    writer->Add(Received(4));
    EXPECT_FALSE(writer->Settle(kLong_ms));
  }
  EXPECT_EQ(Told().size(), 2);  // again, as there was an end to it meanwhile
}

TEST_F(WriterTest, EndsInTimeAndSaysWhatIsMissing) {
  (void)Opened();
  const Holder holder(file_);
  QElapsedTimer clock;
  {
    const auto writer = Begin();
    writer->Add(Received(1));
    writer->Add(Received(2));
    clock.start();
  }
  EXPECT_LE(clock.elapsed(), Writer::kLongestEnd_ms);
  ASSERT_FALSE(Told().isEmpty());
  EXPECT_EQ(Told().back(),
            u"Der Verlauf konnte bis zum Ende des Programms nicht geschrieben werden. Es fehlen "
            "darin: 2."_s);
}

TEST_F(WriterTest, KeepsABoundedNumberOfTasks) {
  (void)Opened();
  const auto table = TableWith(1);
  const auto writer = Begin();
  {
    const Holder holder(file_);
    for (std::size_t i = 0; i < Writer::kMostWaiting + 5; ++i)
      writer->Add(Received(table));
    EXPECT_FALSE(writer->Settle(kLong_ms));
    EXPECT_FALSE(writer->Settle(kLong_ms));
    EXPECT_TRUE(Told().contains(u"Es warten zu viele Einträge auf den Verlauf; weitere gehen verloren."_s));
  }
  EXPECT_TRUE(SettlesAtLast(*writer));
  EXPECT_EQ(Count(), Writer::kMostWaiting);
}

TEST_F(WriterTest, DropsWhatCanNeverBeAdded) {
  const auto writer = Begin();
  writer->Do([](Store& store) { return store.AddRemark(QUuid::createUuid(), u"?"_s, {}); });
  writer->Add(Received(1));
  EXPECT_TRUE(writer->Settle(kLong_ms));
  EXPECT_EQ(Count(), 1u);
  ASSERT_EQ(Told().size(), 1);
  EXPECT_TRUE(
      Told()[0].startsWith(u"Der Verlauf kann nicht geschrieben werden: Der Eintrag passt nicht dazu"_s));
}

#ifndef Q_OS_WIN
// Windows does not let anybody remove a file that is open.
TEST_F(WriterTest, BeginsAnewWhereTheFileIsRemoved) {
  const auto writer = Begin();
  writer->Add(Received(1));
  ASSERT_TRUE(writer->Settle(kLong_ms));
  for (const QString& part : {u""_s, u"-wal"_s, u"-shm"_s})
    ASSERT_TRUE(QFile::remove(file_ + part));
  writer->Add(Received(2));
  ASSERT_TRUE(writer->Settle(kLong_ms));
  EXPECT_EQ(Count(), 1u);
}
#endif

TEST_F(WriterTest, SaysThatTheFileIsOfANewerProgramAndKeepsNothingForIt) {
  (void)Opened();
  {
    const FileConnection connection(file_, {});
    EXPECT_TRUE(Statement(connection.Database(), u"PRAGMA user_version = 99"_s).Run());
  }
  const auto writer = Begin();
  writer->Add(Received(1));
  writer->Add(Received(2));
  EXPECT_TRUE(writer->Settle(kLong_ms));
  ASSERT_EQ(Told().size(), 1);
  EXPECT_TRUE(Told()[0].startsWith(u"Der Verlauf gehört zu einer neueren Version"_s));
}

TEST_F(WriterTest, TwoAddToOneFile) {
  {
    const auto first = Begin();
    const auto second = Begin();
    for (qint32 number = 1; number <= 50; ++number)
      (number % 2 == 0 ? first : second)->Add(Received(number));
  }
  EXPECT_EQ(Told(), QStringList());
  const auto store = Opened();
  EXPECT_EQ(store->Entries().size(), 50u);
  EXPECT_EQ(store->Check(), QStringList());
}

}  // namespace
}  // namespace kalivor::history
