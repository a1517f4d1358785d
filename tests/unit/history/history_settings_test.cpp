// What the user has set for the history is what the next start finds.
#include "history/HistorySettings.h"

#include <gtest/gtest.h>

#include "fakes/FakeSettingsStore.h"
#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

TEST(HistorySettings, NothingIsKeptUntilTheUserWishesIt) {
  EXPECT_EQ(LoadHistorySettings(test::FakeSettingsStore()), HistorySettings());
  EXPECT_FALSE(HistorySettings().keeps);
}

TEST(HistorySettings, ComeBackAsTheyWereStored) {
  const HistorySettings settings{true,
                                 u"Meier"_s,
                                 QUuid::createUuid(),
                                 u"service=verlauf"_s,
                                 u"_AnlageName"_s,
                                 u"Muster GmbH\nWeg 1"_s,
                                 u"/a/bild.png"_s,
                                 u"/a/vorlage.html"_s};
  test::FakeSettingsStore store;
  SaveHistorySettings(settings, store);
  EXPECT_EQ(LoadHistorySettings(store), settings);
  EXPECT_EQ(store.values.value(u"Verlauf/Fuehren"_s), u"1"_s);
  EXPECT_EQ(store.values.size(), 8);
}

TEST(HistorySettings, WhatIsNoValueHasItsDefault) {
  test::FakeSettingsStore store;
  store.values = {{u"Verlauf/Fuehren"_s, u"vielleicht"_s}, {u"Verlauf/Anlage"_s, u"Nord"_s}};
  EXPECT_EQ(LoadHistorySettings(store), HistorySettings());
}

}  // namespace
}  // namespace kalivor::history
