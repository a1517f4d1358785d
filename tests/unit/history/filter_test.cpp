// Which entries are shown for what the user looks for.
#include "history/Filter.h"

#include <gtest/gtest.h>
#include <QTimeZone>

#include "core/ParameterList.h"
#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

class FilterTest : public testing::Test {
 protected:
  FilterTest() {
    entry.id = QUuid::createUuid();
    entry.plant = plant.id;
    entry.kind = DeedKind::SentSafely;
    entry.stamp = {1, QDateTime(QDate(2026, 3, 4), QTime(23, 30), Qt::OffsetFromUTC, 3600), u"Meier"_s};
    entry.version = u"AB1-123.4"_s;
    entry.outcome = u"3 geprüft"_s;
  }

  [[nodiscard]] bool Found(const QString& search) const {
    EntryFilter filter;
    filter.words = SearchWords(search);
    return Shows(filter, entry, Text());
  }
  [[nodiscard]] bool Passes(const EntryFilter& filter) const { return Shows(filter, entry, Text()); }
  [[nodiscard]] QString Text() const {
    return SearchedTexts(std::span(&entry, 1), std::span(&plant, 1), remarks)[0];
  }

  Plant plant{QUuid::createUuid(), u"Wärmewerk Süd"_s, u"Halle 7"_s, u"Tor 3"_s};
  std::vector<Remark> remarks;
  Entry entry;
};

TEST_F(FilterTest, AllWordsMustOccurWhateverTheirSpelling) {
  EXPECT_TRUE(Found({}));
  EXPECT_TRUE(Found(u"waermewerk HALLE tor"_s));
  EXPECT_TRUE(Found(u"meier geprüft"_s));
  EXPECT_TRUE(Found(u"sicher 04.03.2026"_s));
  EXPECT_FALSE(Found(u"meier nord"_s));
}

TEST_F(FilterTest, LaterRemarksAreSearchedWithTheirEntry) {
  remarks = {{QUuid::createUuid(), QUuid::createUuid(), {}, u"Pumpe"_s}};
  EXPECT_FALSE(Found(u"pumpe"_s)) << "it belongs to another entry";
  remarks.push_back({QUuid::createUuid(), entry.id, {}, u"Ventil klemmt"_s});
  remarks.push_back({QUuid::createUuid(), entry.id, {}, u"getauscht"_s});
  EXPECT_TRUE(Found(u"ventil getauscht"_s));
}

TEST_F(FilterTest, PlantKindAndTechnician) {
  EXPECT_TRUE(Passes({.plant = plant.id}));
  EXPECT_FALSE(Passes({.plant = QUuid()}));
  EXPECT_FALSE(Passes({.plant = QUuid::createUuid()}));
  EXPECT_TRUE(Passes({.kind = DeedKind::SentSafely}));
  EXPECT_FALSE(Passes({.kind = DeedKind::Sent}));
  EXPECT_TRUE(Passes({.technician = u"MEIER"_s}));
  EXPECT_FALSE(Passes({.technician = u"Mei"_s}));
  entry.plant = QUuid();
  EXPECT_TRUE(Passes({.plant = QUuid()}));
}

TEST_F(FilterTest, DaysAreThoseOfTheClockThatMadeTheEntry) {
  const QDate day(2026, 3, 4);
  EXPECT_TRUE(Passes({.from = day, .to = day}));
  EXPECT_FALSE(Passes({.from = day.addDays(1)}));
  EXPECT_FALSE(Passes({.to = day.addDays(-1)}));
}

TEST_F(FilterTest, NoneButTheGivenEntries) {
  EXPECT_TRUE(Passes({.entries = QSet<QUuid>{entry.id}}));
  EXPECT_FALSE(Passes({.entries = QSet<QUuid>{}}));
}

}  // namespace
}  // namespace kalivor::history
