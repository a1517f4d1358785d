// The stored settings: reading, storing, and what the command line sets for one run.
#include "commands/SettingsTable.h"

#include <gtest/gtest.h>

#include "fakes/FakeForms.h"
#include "fakes/FakeSettingsStore.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

struct Settings : testing::Test {
  FakeSettingsStore store;
  FakeMessageBox box;
  Module1 module;

  void Load() { LoadSettings(module, store, box, u"/opt/kalivor"_s); }
};

TEST_F(Settings, HaveDefaultsForAFirstStart) {
  Load();
  EXPECT_EQ(module.Adresse, 1);
  EXPECT_EQ(module.Schnittstelle, 1);
  EXPECT_EQ(module.Userpath, u"/opt/kalivor"_s);
  EXPECT_EQ(module.Inipath, u"/opt/kalivor"_s);
  EXPECT_EQ(module.Inifile, u"VF.INI"_s);
}

TEST_F(Settings, AreReadUnderTheirNames) {
  store.values = {{u"Settings/Adresse"_s, u"17"_s},
                  {u"Settings/Schnittstelle"_s, u" 3 "_s},
                  {u"Settings/Userpath"_s, u"C:\\Werte"_s},
                  {u"Settings/Inipath"_s, u"C:\\Daten\\"_s},
                  {u"Settings/Inifile"_s, u"X.INI"_s}};
  Load();
  EXPECT_EQ(module.Adresse, 17);
  EXPECT_EQ(module.Schnittstelle, 3);
  EXPECT_EQ(module.Userpath, u"C:\\Werte"_s);
  EXPECT_EQ(module.Inipath, u"C:\\Daten\\"_s);
  EXPECT_EQ(module.Inifile, u"X.INI"_s);
}

TEST_F(Settings, ANumberThatCannotBeReadIsReportedAndReplaced) {
  struct {
    QString stored, description;
  } const cases[] = {
      {u"abc"_s, u"Der Text ist keine Zahl."_s},
      {u"12a"_s, u"Der Text ist keine Zahl."_s},
      {u""_s, u"Der Text ist keine Zahl."_s},
      {u"40000"_s, u"Zahl außerhalb des zulässigen Bereichs."_s},
  };
  for (const auto& example : cases) {
    store.values = {{u"Settings/Adresse"_s, example.stored},
                    {u"Settings/Schnittstelle"_s, u"2"_s},
                    {u"Settings/Inifile"_s, u"X.INI"_s}};
    module = Module1();
    Load();
    const auto boxes = box.Take();
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text, example.description);
    EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
    EXPECT_EQ(module.Adresse, 1);
    EXPECT_EQ(module.Schnittstelle, 2) << "reading goes on";
    EXPECT_EQ(module.Inifile, u"X.INI"_s);
  }
}

TEST_F(Settings, NumbersAreRoundedToEvenAndMayHaveAComma) {
  for (const auto& [stored, number] : {std::pair{u"2.5"_s, 2}, {u"3,5"_s, 4}, {u"1e2"_s, 100}}) {
    store.values[u"Settings/Adresse"_s] = stored;
    Load();
    EXPECT_EQ(module.Adresse, number);
  }
}

TEST_F(Settings, TheRestOfTheCarefulLineHasASectionOfItsOwn) {
  Load();
  EXPECT_EQ(module.Ruhezeit, 2000);
  store.values[u"SicherSenden/Ruhezeit"_s] = u"3500"_s;
  Load();
  EXPECT_EQ(module.Ruhezeit, 3500);
  module.Ruhezeit = 500;
  SaveSettings(module, store);
  EXPECT_EQ(store.values.value(u"SicherSenden/Ruhezeit"_s), u"500");
}

TEST_F(Settings, ComeBackAsTheyWereSaved) {
  module.Adresse = 255;
  module.Schnittstelle = 8;
  module.Userpath = u"C:"_s;
  module.Inipath = u"/Prüfstand/"_s;
  module.Inifile = QString();
  SaveSettings(module, store);
  EXPECT_EQ(store.values.keys(),
            (QStringList{u"Settings/Adresse"_s, u"Settings/Inifile"_s, u"Settings/Inipath"_s,
                         u"Settings/Schnittstelle"_s, u"Settings/Userpath"_s, u"SicherSenden/Ruhezeit"_s}));
  module = Module1();
  Load();
  EXPECT_EQ(module.Adresse, 255);
  EXPECT_EQ(module.Schnittstelle, 8);
  EXPECT_EQ(module.Userpath, u"C:"_s);
  EXPECT_EQ(module.Inipath, u"/Prüfstand/"_s);
  EXPECT_EQ(module.Inifile, QString());
}

TEST(RunSettings, StandForTheStoredOnesInOneRun) {
  kalivor::Settings settings;
  settings.Userpath = u"/werte"_s;
  TakeRunSettings(settings,
                  {.iniPath = u"/def"_s, .iniFile = u"X.INI"_s, .port = qint16{5}, .address = qint16{17}});
  EXPECT_EQ(settings.Inipath, u"/def"_s);
  EXPECT_EQ(settings.Inifile, u"X.INI"_s);
  EXPECT_EQ(settings.Schnittstelle, 5);
  EXPECT_EQ(settings.Adresse, 17);
  EXPECT_EQ(settings.Userpath, u"/werte"_s);
}

TEST(RunSettings, WhatIsNotSetStays) {
  kalivor::Settings settings;
  settings.Inipath = u"/def"_s;
  settings.Schnittstelle = 3;
  TakeRunSettings(settings, {});
  EXPECT_EQ(settings.Inipath, u"/def"_s);
  EXPECT_EQ(settings.Schnittstelle, 3);
}

TEST(RunSettings, StoredIsWhatTheRunHasChanged) {
  kalivor::Settings stored;
  stored.Adresse = 2;
  stored.Inifile = u"ALT.INI"_s;
  kalivor::Settings begun = stored;
  begun.Schnittstelle = 5;
  begun.Inipath = u"/lauf/"_s;
  kalivor::Settings now = begun;
  now.Inipath = u"/neu/"_s;
  now.Userpath = u"/werte"_s;
  const kalivor::Settings kept = SettingsToStore(now, begun, stored);
  EXPECT_EQ(kept.Adresse, 2);
  EXPECT_EQ(kept.Schnittstelle, 1) << "the command line's, which nobody has changed";
  EXPECT_EQ(kept.Inipath, u"/neu/"_s) << "the command line's, which the user has changed";
  EXPECT_EQ(kept.Inifile, u"ALT.INI"_s);
  EXPECT_EQ(kept.Userpath, u"/werte"_s);
}

TEST(TakePort, TakesANumberOrADevice) {
  const struct {
    QString text;
    std::optional<qint16> port;
    QString device, fault;
  } cases[] = {
      {u"1"_s, qint16{1}, {}, {}},
      {u"8"_s, qint16{8}, {}, {}},
      {u"/dev/ttyUSB0"_s, {}, u"/dev/ttyUSB0"_s, {}},
      {u"0"_s, {}, {}, u"Keine Schnittstelle von 1 bis 8: 0"_s},
      {u"9"_s, {}, {}, u"Keine Schnittstelle von 1 bis 8: 9"_s},
  };
  for (const auto& example : cases) {
    RunSettings run;
    QString device;
    EXPECT_EQ(TakePort(example.text, run, device), example.fault);
    EXPECT_EQ(run.port, example.port);
    EXPECT_EQ(device, example.device);
  }
}

}  // namespace
}  // namespace kalivor::test
