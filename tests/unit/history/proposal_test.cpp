// Which plant is proposed for a controller, and when one doubts that it belongs to the chosen one.
#include "history/Proposal.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

const std::pair<QString, int> kName{u"NAME"_s, 0};
const std::pair<QString, int> kPlace{u"ORT"_s, 0};

class ProposalTest : public testing::Test {
 protected:
  QUuid AddPlant(const QString& name) {
    plants.push_back({QUuid::createUuid(), name, {}, {}});
    return plants.back().id;
  }

  /// An entry that is newer than all before; the controller had these texts then.
  void See(const QUuid& plant, const Texts& seen, const QString& version = u"V1"_s, int address = 1) {
    Entry entry;
    entry.id = QUuid::createUuid();
    entry.plant = plant;
    entry.version = version;
    entry.address = address;
    entry.held = u"1-9"_s;
    texts[entry.id] = seen;
    entries.insert(entries.begin(), entry);
  }

  [[nodiscard]] KnownPlants Known() const {
    return {plants, entries, [this](const Entry& entry) { return texts.value(entry.id); }, nameParameter};
  }
  [[nodiscard]] QUuid Proposed() const { return ProposedPlant(controller, Known()); }
  [[nodiscard]] QString Doubt(const QUuid& chosen) const { return PlantDoubt(chosen, controller, Known()); }

  std::vector<Plant> plants;
  std::vector<Entry> entries;
  QHash<QUuid, Texts> texts;
  QString nameParameter;
  SeenController controller{u"V1"_s, 1, {{kName, u"Kessel"_s}}};
  QUuid north = AddPlant(u"Nord"_s);
  QUuid south = AddPlant(u"Süd"_s);
};

TEST_F(ProposalTest, NothingIsKnownNothingIsProposed) {
  EXPECT_TRUE(Proposed().isNull());
}

TEST_F(ProposalTest, TheSameVersionAddressAndTextsAreAPlant) {
  See(north, {{kName, u"Pumpe"_s}});
  See(south, {{kName, u"Kessel"_s}});
  EXPECT_EQ(Proposed(), south);
}

TEST_F(ProposalTest, AnotherVersionOrAddressIsAnotherController) {
  See(south, {{kName, u"Kessel"_s}}, u"V2"_s);
  See(south, {{kName, u"Kessel"_s}}, u"V1"_s, 2);
  EXPECT_TRUE(Proposed().isNull());
}

TEST_F(ProposalTest, TheLastEntryOfAPlantCounts) {
  See(south, {{kName, u"Kessel"_s}});
  See(south, {{kName, u"Pumpe"_s}});
  EXPECT_TRUE(Proposed().isNull());
}

TEST_F(ProposalTest, OneDifferentTextIsEnough) {
  controller.texts[kPlace] = u"Halle 1"_s;
  See(south, {{kName, u"Kessel"_s}, {kPlace, u"Halle 2"_s}});
  EXPECT_TRUE(Proposed().isNull());
}

TEST_F(ProposalTest, MoreEqualTextsDecide) {
  controller.texts[kPlace] = u"Halle 1"_s;
  See(north, {{kName, u"Kessel"_s}});
  See(south, {{kName, u"Kessel"_s}, {kPlace, u"Halle 1"_s}});
  EXPECT_EQ(Proposed(), south);
}

TEST_F(ProposalTest, WhereSeveralAreAsLikelyNoneIsProposed) {
  See(north, {{kName, u"Kessel"_s}});
  See(south, {{kName, u"Kessel"_s}});
  EXPECT_TRUE(Proposed().isNull());
}

TEST_F(ProposalTest, WithoutTextsTheOnlyPlantOfThatControllerIsProposed) {
  controller.texts = {{kName, {}}};
  See(north, {{kName, {}}});
  EXPECT_EQ(Proposed(), north);
  See(south, {{kName, {}}});
  EXPECT_TRUE(Proposed().isNull()) << "empty texts tell nothing";
}

TEST_F(ProposalTest, TheNameInTheControllerWins) {
  nameParameter = u"NAME"_s;
  See(north, {{kName, u"SUED"_s}});
  controller.texts[kName] = u" sued"_s;
  EXPECT_EQ(Proposed(), south);
  AddPlant(u"Süd"_s);
  EXPECT_TRUE(Proposed().isNull()) << "two plants have that name";
}

TEST_F(ProposalTest, AControllerOfAnotherPlantIsDoubted) {
  See(north, {{kName, u"Pumpe"_s}});
  See(south, {{kName, u"Kessel"_s}});
  EXPECT_EQ(Doubt(north), u"Der Regler passt nicht zur gewählten Anlage „Nord“, sondern zu „Süd“."_s);
  EXPECT_EQ(Doubt(south), QString());
  EXPECT_EQ(Doubt({}), QString());
}

TEST_F(ProposalTest, AControllerThatThePlantHasNeverHadIsDoubted) {
  EXPECT_EQ(Doubt(north), QString()) << "nothing is known of the plant";
  See(north, {}, u"V1"_s, 2);
  EXPECT_EQ(Doubt(north),
            u"Der Regler ist in der gewählten Anlage „Nord“ neu: Version V1 mit der Geräteadresse 1 war dort "
            "noch nicht."_s);
}

TEST_F(ProposalTest, TextsAreThoseThatWereRead) {
  ValueSet set;
  set.values = {{u"NAME"_s, u"string4"_s, {}, 0, {0, u"ab  "_s}, true},
                {u"NAME"_s, u"string4"_s, {}, 1, {0, u"cd"_s}, true},
                {u"ORT"_s, u"str20"_s, {}, 0, {0, u"x"_s}, false},
                {u"ZAHL"_s, u"int"_s, {}, 0, {7, {}}, true}};
  EXPECT_EQ(TextsOf(set), (Texts{{kName, u"ab"_s}, {{u"NAME"_s, 1}, u"cd"_s}}));
}

}  // namespace
}  // namespace kalivor::history
