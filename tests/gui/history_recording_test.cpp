// What the user does in the window stands in the history, where the user wishes it.
#include <QFile>
#include <QTemporaryDir>

#include "fakes/Installation.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class HistoryRecording : public GuiTest {
 protected:
  HistoryRecording() {
    place.file = folder.filePath(u"Verlauf.sqlite"_s);
    place.pc = u"Werkstatt"_s;
    settings.values[u"Verlauf/Fuehren"_s] = u"1"_s;
    settings.values[u"Verlauf/Techniker"_s] = u"Meier"_s;
  }

  void StartHere() {
    ui::World world = World();
    world.historyStore = place;
    desktop = std::make_unique<ui::Desktop>(world);
    desktop->Start();
    desktop->main.show();
  }

  void Receive() {
    Click(desktop->main, u"CommandEmpfangen"_s);
    ExpectReady();
  }

  std::vector<history::Entry> Entries() {
    desktop->recorder.Settle();
    const auto store = history::Store::Open(place, history::Access::Read).store;
    return store ? store->Entries() : std::vector<history::Entry>();
  }

  /// The history cannot be kept: where its folder is to be lies a file.
  void Block() {
    QFile file(folder.filePath(u"Datei"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    place.file = file.fileName() + u"/Verlauf.sqlite"_s;
  }

  QTemporaryDir folder;
  history::StoreWorld place;
};

TEST_F(HistoryRecording, ATransferOfTheWindowIsOneEntry) {
  StartHere();
  Receive();
  const std::vector<history::Entry> entries = Entries();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].kind, DeedKind::Received);
  EXPECT_EQ(entries[0].stamp.technician, u"Meier"_s);
  EXPECT_EQ(entries[0].pc, u"Werkstatt"_s);
  EXPECT_EQ(entries[0].outcome, u"7 Werte"_s);
  EXPECT_NE(entries[0].quality, QString());
}

TEST_F(HistoryRecording, IsOffUntilTheUserWishesIt) {
  settings.values.remove(u"Verlauf/Fuehren"_s);
  StartHere();
  Receive();
  desktop->recorder.Settle();
  EXPECT_FALSE(QFile::exists(place.file));
  history::HistorySettings wished = desktop->recorder.Used();
  wished.keeps = true;
  desktop->UseHistory(wished);
  EXPECT_EQ(settings.values[u"Verlauf/Fuehren"_s], u"1"_s);
  Receive();
  EXPECT_EQ(Entries().size(), 1u);
}

TEST_F(HistoryRecording, AFailureIsSaidOnceAndNotDuringATransfer) {
  Block();
  StartHere();
  Receive();
  desktop->recorder.Settle();
  events.onPending = [this] { EXPECT_TRUE(box.Take().empty()); };
  Receive();
  events.onPending = {};
  QCoreApplication::processEvents();
  EXPECT_EQ(box.Take().size(), 1u);
  Receive();
  desktop->recorder.Settle();
  QCoreApplication::processEvents();
  EXPECT_TRUE(box.Take().empty());
}

TEST_F(HistoryRecording, AFailureOfTheLastMomentIsSaidBeforeTheWindowCloses) {
  Block();
  StartHere();
  Receive();
  desktop->recorder.Settle();
  QCoreApplication::processEvents();
  EXPECT_EQ(box.Take().size(), 1u);
  desktop->main.close();
  const QStringList said = TakeBoxes(box);
  ASSERT_EQ(said.size(), 1);
  EXPECT_TRUE(said[0].contains(u"Es fehlen darin: 1."_s)) << said[0].toStdString();
}

}  // namespace
}  // namespace kalivor::test
