// The history that the demonstration brings is one that a plant could have.
#include "kalivor/DemoHistory.h"

#include <gtest/gtest.h>
#include <QTemporaryDir>
#include <algorithm>

#include "history/Store.h"
#include "kalivor/System.h"
#include "sim/Station.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

class DemoHistoryTest : public testing::Test {
 protected:
  void SetUp() override {
    module_.Inipath = QStringLiteral(KALIVOR_SOURCE_DIR "/examples/");
    ASSERT_EQ(sim::LoadDefinitions(module_, files_, {}), QString());
    plant_ = WriteDemoHistory(file_, module_, now_);
    ASSERT_FALSE(plant_.isNull());
    store_ = history::Store::Open({file_, {}, {}}, history::Access::Read).store;
    ASSERT_TRUE(store_);
  }

  platform::native::FileSystem files_;
  Module1 module_;
  QTemporaryDir folder_;
  const QString file_ = folder_.filePath(u"Verlauf.sqlite"_s);
  const QDateTime now_ = QDateTime({2026, 3, 1}, {10, 0});
  QUuid plant_;
  std::unique_ptr<history::Store> store_;
};

TEST_F(DemoHistoryTest, ReachesBackTwoYears) {
  const std::vector<history::Entry> entries = store_->Entries();
  ASSERT_GT(entries.size(), 20u);
  EXPECT_LT(entries.back().stamp.time, now_.addYears(-2).addDays(7));
  EXPECT_GT(entries.front().stamp.time, now_.addMonths(-1));
  // The newest first: the visits were written in the order of their times.
  EXPECT_TRUE(std::ranges::is_sorted(entries, std::greater(),
                                     [](const history::Entry& entry) { return entry.stamp.time; }));
}

TEST_F(DemoHistoryTest, EveryVisitChangedWhatItSaysItDid) {
  for (const history::Entry& entry : store_->Entries()) {
    const int said = entry.outcome.endsWith(u" geprüft") ? entry.outcome.split(u' ').front().toInt() : 0;
    EXPECT_EQ(entry.changes, said) << entry.stamp.time.toString().toStdString();
  }
}

TEST_F(DemoHistoryTest, EndsWithWhatTheControllerHolds) {
  const std::vector<history::Entry> entries = store_->Entries();
  const auto last = std::ranges::find(entries, plant_, &history::Entry::plant);
  ASSERT_NE(last, entries.end());
  const SetResult values = store_->Values(*last, true);
  ASSERT_TRUE(values.Ok());
  const ValueFileContent held = DemoValues();
  int different = 0;
  for (int i = 1; i < module_.ParCount; ++i) {
    const SetValue& value = values.set.values[static_cast<std::size_t>(i - 1)];
    ASSERT_EQ(value.Variable, module_.Par[i].Variable);
    const auto own = std::ranges::find(held.records, value.Variable, &ValueRecord::Variable);
    const qint32 expected = own == held.records.end() ? module_.Par[i].Standard : own->Wert;
    EXPECT_EQ(value.value.number, expected) << value.Variable.toStdString();
    different += module_.Par[i].Standard != value.value.number ? 1 : 0;
  }
  EXPECT_EQ(different, 3);
}

}  // namespace
}  // namespace kalivor
