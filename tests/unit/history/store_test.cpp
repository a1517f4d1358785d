// What is added to the history is there afterwards, and what was there before is known.
#include "history/Store.h"

#include "unit/history/HistoryFixture.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

class StoreTest : public HistoryFixture {};

TEST_F(StoreTest, AnEntryComesBackAsItWasAdded) {
  const auto store = Opened();
  ASSERT_TRUE(store);
  ASSERT_EQ(store->Add(Received(100)), QString());
  const std::vector<Entry> entries = store->Entries();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].version, u"V1"_s);
  EXPECT_EQ(entries[0].address, 3);
  EXPECT_EQ(entries[0].held, u"1-2"_s);
  const SetResult values = store->Values(entries[0], true);
  ASSERT_TRUE(values.Ok());
  ASSERT_EQ(values.set.values.size(), 2u);
  EXPECT_EQ(values.set.values[1].value.number, 102);
}

TEST_F(StoreTest, ChangesAreThoseSinceTheControllerWasLastSeen) {
  const auto store = Opened();
  ASSERT_TRUE(store);
  ASSERT_EQ(store->Add(Received(100)), QString());
  Observation later = Received(100);
  auto table = TableWith(100);
  table->SetNumber(2, -5, ValueSource::Received);
  later.table = table;
  ASSERT_EQ(store->Add(later), QString());
  const std::vector<Entry> entries = store->Entries();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].changes, 0);
  const std::vector<Change> changes = store->Changes(entries[0].id);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].before, u"10.2"_s);
  EXPECT_EQ(changes[0].after, u"-0.5"_s);
  const std::vector<CurvePoint> curve = store->Curve({}, {u"Soll2"_s, u"0014"_s});
  ASSERT_EQ(curve.size(), 2u);
  EXPECT_EQ(curve[0].value, 10.2);
  EXPECT_EQ(curve[1].value, -0.5);
}

TEST_F(StoreTest, APlantIsCalledAsItWasCalledLast) {
  const auto store = Opened();
  ASSERT_TRUE(store);
  Plant plant{{}, u"Nord"_s, u"Halle 1"_s, {}};
  ASSERT_EQ(store->Describe(plant, {}), QString());
  plant.name = u"Nord 2"_s;
  ASSERT_EQ(store->Describe(plant, {}), QString());
  EXPECT_EQ(store->Plants(), std::vector<Plant>{plant});
  ASSERT_EQ(store->Add(Received(1)), QString());
  const QUuid entry = store->Entries()[0].id;
  ASSERT_EQ(store->Assign(entry, plant.id, u"Meier"_s), QString());
  EXPECT_EQ(store->Entries()[0].plant, plant.id);
  ASSERT_EQ(store->AddRemark(entry, u"Ventil klemmt"_s, u"Meier"_s), QString());
  EXPECT_EQ(store->Remarks()[0].text, u"Ventil klemmt"_s);
  EXPECT_EQ(store->Check(), QStringList());
}

}  // namespace
}  // namespace kalivor::history
