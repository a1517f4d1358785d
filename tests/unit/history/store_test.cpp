// What is added to the history is there afterwards, and what was there before is known.
#include "history/Store.h"

#include "history/Sql.h"
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

TEST_F(StoreTest, PlantsStandInTheOrderOfTheGermanAlphabet) {
  const auto store = Opened();
  ASSERT_TRUE(store);
  for (const QString& name : {u"Turnhalle"_s, u"Haus 10"_s, u"Ärztehaus"_s, u"Haus 2"_s}) {
    Plant plant{{}, name, {}, {}};
    ASSERT_EQ(store->Describe(plant, {}), QString());
  }
  QStringList names;
  for (const Plant& plant : store->Plants())
    names << plant.name;
  EXPECT_EQ(names.join(u'|'), u"Ärztehaus|Haus 2|Haus 10|Turnhalle"_s);
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

// Whatever the clock does, the order is that of the rows; the time is the clock's.
TEST_F(StoreTest, AClockThatIsSetBackChangesNoOrder) {
  StoreWorld world = World(file_);
  QDateTime now(QDate(2024, 3, 5), QTime(14, 0), Qt::OffsetFromUTC, 3600);
  world.now = [&] { return now; };
  Plant plant{{}, u"Nord"_s, {}, {}};
  for (const int second : {0, -3600, 0, 7200}) {
    const Store::Opened opened = Store::Open(world, Access::Write);
    ASSERT_TRUE(opened.store);
    now = now.addSecs(second);
    ASSERT_EQ(opened.store->Add(Received(second)), QString());
    ASSERT_EQ(opened.store->Describe(plant, {}), QString());
  }
  const auto store = Opened();
  const std::vector<Entry> entries = store->Entries();
  ASSERT_EQ(entries.size(), 4u);
  QStringList times;
  for (const Entry& entry : entries)
    times << entry.stamp.time.toString(Qt::ISODate);
  EXPECT_EQ(times, (QStringList{u"2024-03-05T15:00:00+01:00"_s, u"2024-03-05T13:00:00+01:00"_s,
                                u"2024-03-05T13:00:00+01:00"_s, u"2024-03-05T14:00:00+01:00"_s}));
  for (std::size_t i = 1; i < entries.size(); ++i)
    EXPECT_GT(entries[i - 1].stamp.moment_ms, entries[i].stamp.moment_ms);
}

TEST_F(StoreTest, TimesAreReadInEveryNotation) {
  StoreWorld world = World(file_);
  for (const int offset_s : {0, 3600, -12600}) {
    const QDateTime time(QDate(2024, 2, 29), QTime(23, 59, 58), Qt::OffsetFromUTC, offset_s);
    world.now = [&] { return time; };
    const Store::Opened opened = Store::Open(world, Access::Write);
    ASSERT_EQ(opened.store->Add(Received(1)), QString());
    EXPECT_EQ(opened.store->Entries().front().stamp.time, time);
    EXPECT_EQ(opened.store->Entries().front().stamp.time.offsetFromUtc(), offset_s);
  }
}

// Of every kind, also of those that no controller had to do with.
TEST_F(StoreTest, EqualSetsAreStoredOnce) {
  const auto store = Opened();
  for (const DeedKind kind : kKinds) {
    Observation observation = Received(100, 500);
    observation.entry.kind = kind;
    for (ObservedValue& value : observation.values)
      value.held = ConcernsController(kind);
    ASSERT_EQ(store->Add(observation), QString());
  }
  EXPECT_EQ(store->Entries().size(), std::size(kKinds));
  EXPECT_EQ(store->Ids(u"value_set").size(), 1u);
}

TEST_F(StoreTest, SetsThatDifferLittleTakeLittleRoom) {
  const auto store = Opened();
  constexpr int kParameters = 1000;
  auto table = TableWith(0, kParameters);
  for (int i = 0; i < 60; ++i) {
    for (int change = 0; change < 10; ++change)
      table->SetNumber(1 + (i * 37 + change * 101) % kParameters, 5000 + i * 7 + change,
                       ValueSource::Received);
    ASSERT_EQ(store->Add(Received(std::make_shared<ParameterTable>(*table))), QString());
  }
  qsizetype whole_bytes = 0;
  qsizetype all_bytes = 0;
  for (const QVariantList& row : store->Rows(u"value_set", store->Ids(u"value_set")).rows) {
    if (row[1].isNull()) whole_bytes = std::max(whole_bytes, row[2].toByteArray().size());
    all_bytes += row[2].toByteArray().size();
  }
  EXPECT_LT(all_bytes, 60 * whole_bytes / 5);
  for (const Entry& entry : store->Entries())
    EXPECT_TRUE(store->Values(entry, true).Ok());
}

TEST_F(StoreTest, TheFirstObservationHasNoChanges) {
  const auto store = Opened();
  ASSERT_EQ(store->Add(Received(100)), QString());
  EXPECT_EQ(store->Entries()[0].changes, 0);
}

TEST_F(StoreTest, AnotherControllerIsNotWhatWasThereBefore) {
  const auto store = Opened();
  Plant plant{{}, u"Nord"_s, {}, {}};
  ASSERT_EQ(store->Describe(plant, {}), QString());
  ASSERT_EQ(store->Add(Received(100)), QString());
  Observation other = Received(200);
  other.entry.address = 4;
  ASSERT_EQ(store->Add(other), QString());
  other = Received(300);
  other.entry.version = u"V2"_s;
  ASSERT_EQ(store->Add(other), QString());
  other = Received(400);
  other.entry.plant = plant.id;
  ASSERT_EQ(store->Add(other), QString());
  for (const Entry& entry : store->Entries())
    EXPECT_EQ(entry.changes, 0);
  // Once it is known that the first one was there as well, it is.
  ASSERT_EQ(store->Assign(store->Entries().back().id, plant.id, {}), QString());
  const QUuid fourth = store->Entries().front().id;
  ASSERT_EQ(store->Assign(fourth, QUuid::createUuid(), {}), QString());
  other = Received(100);
  other.entry.plant = plant.id;
  ASSERT_EQ(store->Add(other), QString());
  EXPECT_EQ(store->Entries().front().changes, 0);
}

TEST_F(StoreTest, AValueIsLookedForInTheEntriesThatHeldIt) {
  const auto store = Opened();
  ASSERT_EQ(store->Add(Received(100, 3)), QString());
  Observation part = Received(500, 3);
  part.values = {{2, true, {}, {}}};
  ASSERT_EQ(store->Add(part), QString());
  ASSERT_EQ(store->Add(Received(100, 3)), QString());
  const std::vector<Change> changes = store->Changes(store->Entries().front().id);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].variable, u"Soll2"_s);
  EXPECT_EQ(changes[0].before, u"50.2"_s);
  EXPECT_EQ(changes[0].after, u"10.2"_s);
}

// A value file holds the beginning of a text alone.
TEST_F(StoreTest, ALongTextDoesNotSeemToChange) {
  const auto store = Opened();
  auto table = TableWith(0);
  table->Par[1].Typ = u"string32"_s;
  table->SetText(1, u"Ein Text mit mehr als zwanzig Zei"_s, ValueSource::Received);
  ASSERT_EQ(store->Add(Received(table)), QString());
  ASSERT_EQ(store->Add(Received(table)), QString());
  EXPECT_EQ(store->Entries()[0].changes, 0);
}

TEST_F(StoreTest, WhatTheDeedKnowsOfBeforeCounts) {
  const auto store = Opened();
  Observation sent = Received(100);
  sent.entry.kind = DeedKind::SentSafely;
  sent.values = {{1, true, ParameterValue{101, {}}, u"geprüft"_s}, {2, true, ParameterValue{7, {}}, {}}};
  ASSERT_EQ(store->Add(sent), QString());
  const std::vector<Change> changes = store->Changes(store->Entries()[0].id);
  ASSERT_EQ(changes.size(), 2u);
  EXPECT_EQ(changes[0].state, u"geprüft"_s);
  EXPECT_EQ(changes[0].before, changes[0].after);
  EXPECT_EQ(changes[1].before, u"0.7"_s);
}

// As after a damaged file was set aside: the settings still name the plant.
TEST_F(StoreTest, APlantThatTheFileDoesNotKnowIsNoHindrance) {
  const auto store = Opened();
  Plant plant{QUuid::createUuid(), u"Nord"_s, {}, {}};
  Observation observation = Received(1);
  observation.entry.plant = plant.id;
  ASSERT_EQ(store->Add(observation), QString());
  EXPECT_EQ(store->Entries()[0].plant, plant.id);
  EXPECT_TRUE(store->Plants().empty());
  ASSERT_EQ(store->Describe(plant, {}), QString());
  EXPECT_EQ(store->Plants(), std::vector<Plant>{plant});
}

TEST_F(StoreTest, EntriesAreFoundByVariableAndByName) {
  const auto store = Opened();
  ASSERT_EQ(store->Add(Received(1)), QString());
  auto table = TableWith(1);
  table->SetNumber(2, 77, ValueSource::Received);
  ASSERT_EQ(store->Add(Received(table)), QString());
  const QUuid second = store->Entries()[0].id;
  EXPECT_EQ(store->EntriesWith(u"Soll2"_s), std::vector<QUuid>{second});
  EXPECT_EQ(store->EntriesWith(u"Sollwert 2"_s), std::vector<QUuid>{second});
  EXPECT_TRUE(store->EntriesWith(u"Soll1"_s).empty());
  EXPECT_TRUE(store->EntriesWith(u"' OR 1 = 1 --"_s).empty());
}

// Texts that mean something to somebody mean nothing here.
TEST_F(StoreTest, TextsComeBackAsTheyWere) {
  const auto store = Opened();
  const QString strange = u"'; DROP TABLE entry; -- <b>\"%s?1:x\\ \U0001F321\r\n"_s;
  Observation observation = Received(1);
  for (QString* text :
       {&observation.entry.stamp.technician, &observation.entry.pc, &observation.entry.version,
        &observation.entry.plantType, &observation.entry.port, &observation.entry.program,
        &observation.entry.outcome, &observation.entry.remark, &observation.entry.quality})
    *text = strange;
  ASSERT_EQ(store->Add(observation), QString());
  const Entry entry = store->Entries().at(0);
  for (const QString& text : {entry.stamp.technician, entry.pc, entry.version, entry.plantType, entry.port,
                              entry.program, entry.outcome, entry.remark, entry.quality})
    EXPECT_EQ(text, strange);
  EXPECT_EQ(store->Check(), QStringList());
}

// What grows with the history is not searched from its beginning.
TEST_F(StoreTest, FrequentQuestionsGoByAnIndex) {
  (void)Opened();
  const FileConnection connection(file_, {});
  for (const QString& question :
       {u"SELECT max(moment) FROM entry WHERE origin = x'00'"_s,
        u"SELECT max(moment) FROM plant_text WHERE origin = x'00'"_s,
        u"SELECT e.value_set FROM entry e WHERE e.version = '' AND e.address = 1 AND e.held <> '' "
        "ORDER BY e.moment DESC LIMIT 20"_s,
        u"SELECT e.value_set FROM entry e WHERE e.version = '' AND e.value_set IS NOT NULL "
        "ORDER BY e.moment DESC LIMIT 1"_s,
        u"SELECT entry FROM change WHERE variable = ''"_s, u"SELECT * FROM change WHERE entry = x'00'"_s,
        u"SELECT plant FROM assignment WHERE entry = x'00' ORDER BY moment DESC, id DESC LIMIT 1"_s,
        u"SELECT variable FROM parameter_name WHERE name = ''"_s}) {
    const QSqlError error =
        Ask(connection.Database(), u"EXPLAIN QUERY PLAN "_s + question, {}, [&](const Statement& row) {
          const QString step = row.Text(3);
          EXPECT_TRUE(step.startsWith(u"SEARCH")) << question.toStdString() << ": " << step.toStdString();
        });
    EXPECT_EQ(error.type(), QSqlError::NoError) << error.text().toStdString();
  }
}

TEST_F(StoreTest, TheCheckFindsWhatIsWrongWithARow) {
  {
    const auto store = Opened();
    ASSERT_EQ(store->Add(Received(1, 100)), QString());
    EXPECT_EQ(store->Check(), QStringList());
  }
  {
    const FileConnection connection(file_, {});
    for (const QString& statement :
         {u"DROP TRIGGER entry_no_UPDATE"_s, u"UPDATE entry SET kind = 'verschwunden', plant = x'00'"_s,
          u"DROP TRIGGER value_set_no_UPDATE"_s, u"UPDATE value_set SET data = x'00000001'"_s})
      ASSERT_TRUE(Statement(connection.Database(), statement).Run()) << statement.toStdString();
  }
  const QStringList faults = Opened()->Check();
  EXPECT_TRUE(faults.contains(u"entry.plant hat eine falsche Länge"_s)) << faults.join(u'\n').toStdString();
  EXPECT_TRUE(faults.contains(u"In entry verweist eine Zeile auf eine, die in plant fehlt."_s));
  EXPECT_TRUE(faults.contains(u"value_set.data ist nicht der Wertesatz einer Wertedatei"_s));
  EXPECT_EQ(Opened()->Entries().size(), 1u);
}

}  // namespace
}  // namespace kalivor::history
