// Settings, the order of work at start, and the guard around every event.
#include "commands/StartUp.h"

#include <QMap>

#include "commands/EventBoundary.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

class FakeSettingsStore final : public platform::SettingsStore {
 public:
  QMap<QString, QString> values;

  QString Get(const QString& section, const QString& key, const QString& fallback) const override {
    return values.value(section + u'/' + key, fallback);
  }
  void Save(const QString& section, const QString& key, const QString& value) override {
    values[section + u'/' + key] = value;
  }
};

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

TEST_F(Settings, ComeBackAsTheyWereSaved) {
  module.Adresse = 255;
  module.Schnittstelle = 8;
  module.Userpath = u"C:"_s;
  module.Inipath = u"/Prüfstand/"_s;
  module.Inifile = QString();
  SaveSettings(module, store);
  EXPECT_EQ(store.values.keys(),
            (QStringList{u"Settings/Adresse"_s, u"Settings/Inifile"_s, u"Settings/Inipath"_s,
                         u"Settings/Schnittstelle"_s, u"Settings/Userpath"_s}));
  module = Module1();
  Load();
  EXPECT_EQ(module.Adresse, 255);
  EXPECT_EQ(module.Schnittstelle, 8);
  EXPECT_EQ(module.Userpath, u"C:"_s);
  EXPECT_EQ(module.Inipath, u"/Prüfstand/"_s);
  EXPECT_EQ(module.Inifile, QString());
}

// --- the order of work ---

TEST(StartUp, BuildsEverythingAndThenTheChannel) {
  Installation site;
  site.module.Adresse = 17;
  site.module.Schnittstelle = 3;
  site.AddFiles();
  site.Start();
  EXPECT_EQ(site.module.ParCount, 5);
  EXPECT_EQ(site.main.tree.Count(), 8);
  EXPECT_EQ(site.host.Ports[kSlot], (PortRecord{kFalse, 3, 16, 17, u"9600,o,7,1"_s}));
  EXPECT_EQ(site.line.openings, 1) << "the port is tried once";
  EXPECT_TRUE(site.Rests());
}

TEST(StartUp, ThePortIsTriedAfterEverythingElse) {
  Installation site;
  site.AddFiles();
  site.main.tree.onRebuild = [&] { EXPECT_EQ(site.line.openings, 0); };
  site.Start();
  EXPECT_EQ(site.main.tree.rebuilt, 2);
  EXPECT_EQ(site.line.openings, 1);
}

TEST(StartUp, APortThatCannotBeOpenedIsNoReasonToComplain) {
  Installation site;
  site.AddFiles();
  site.line.openable = false;
  site.Start();
  EXPECT_EQ(site.host.Ports[kSlot].PortNr, 1);
  EXPECT_EQ(site.report.lines, QStringList());
}

TEST(StartUp, WithoutDefinitionsTheChannelIsReadyAllTheSame) {
  Installation site;
  site.Start();
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
  EXPECT_EQ(site.host.Ports[kSlot].Settings, u"9600,o,7,1"_s);
  EXPECT_TRUE(site.Rests());
}

// --- the event boundary ---

TEST(EventBoundary, ShowsAnErrorAndGoesOn) {
  FakeMessageBox box;
  EXPECT_FALSE(RunHandler(box, [] { throw RuntimeError(RuntimeError::Kind::Bounds, u"Zu groß."_s); }));
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, u"Zu groß."_s);
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
}

TEST(EventBoundary, IsSilentWithoutAnError) {
  FakeMessageBox box;
  bool ran = false;
  EXPECT_TRUE(RunHandler(box, [&] { ran = true; }));
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace kalivor::test
