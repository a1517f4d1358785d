// What is unsaved survives a crash: when it is kept, what the next start offers, and restoring it.
#include <QAction>
#include <QPushButton>

#include "core/TreeTexts.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

const QString kFile = u"/zustand/Wiederherstellung.json"_s;

class RecoveryTest : public GuiTest {
 public:
  ~RecoveryTest() override { desktop.reset(); }

 protected:
  RecoveryTest() {
    recovery.folder = u"/zustand"_s;
    recovery.take = [this](const QString& path) {
      if (taken.contains(path)) return false;
      taken.append(path);
      return true;
    };
    recovery.now = [this] { return now; };
    recovery.rest = std::chrono::milliseconds(kRest_ms);
  }

  static constexpr int kRest_ms = 50;

  [[nodiscard]] QByteArray Stored() { return files.files.value(kFile).bytes; }

  /// Lets every change rest.
  void Rest() { QTest::qWait(4 * kRest_ms); }

  /// The program is gone, without closing its window.
  void Crash() {
    desktop.reset();
    taken.clear();
  }
  void End() {
    ASSERT_TRUE(desktop->main.close());
    Crash();
  }

  void Edit(qint32 number) {
    desktop->guard([&] { desktop->module.SetNumber(1, number, ValueSource::Edited); });
  }

  [[nodiscard]] QAction& Item() {
    auto* item = desktop->main.findChild<QAction*>(u"mnuWerkzeugeWiederherstellen"_s);
    if (item == nullptr) throw std::runtime_error("no item");
    return *item;
  }
  /// The caption as long as the item is offered.
  [[nodiscard]] QString Offered() {
    return Item().isVisible() && Item().isEnabled() ? Item().text() : QString();
  }

  QDateTime now = QDateTime(QDate(2026, 11, 12), QTime(16, 40));
  QStringList taken;
};

TEST_F(RecoveryTest, WithoutChangesNothingIsWrittenOrOffered) {
  Start();
  EXPECT_EQ(Offered(), QString());
  Rest();
  EXPECT_FALSE(files.files.contains(kFile));
  EXPECT_EQ(taken, QStringList());
  End();
  EXPECT_FALSE(files.files.contains(kFile));
}

TEST_F(RecoveryTest, AChangeIsWrittenOnceItRests) {
  Start();
  for (int number = 1; number <= 6; ++number) {
    Edit(number);
    EXPECT_FALSE(files.files.contains(kFile)) << "each change begins the rest anew";
    QTest::qWait(kRest_ms / 5);
  }
  QTRY_VERIFY(files.files.contains(kFile));
  EXPECT_EQ(ParseKeptTable(Stored())->UnsavedCount(), 1);
  EXPECT_EQ(ParseKeptTable(Stored())->set.values.front().value.number, 6);
}

TEST_F(RecoveryTest, ACrashIsOfferedAndRestoringIsOneStep) {
  Start();
  desktop->guard([&] { desktop->module.PlantTypeList.Select(1); });
  Edit(77);
  desktop->module.Dateiname = u"/werte/a.qpf"_s;
  Rest();
  Crash();

  now = now.addDays(1);
  Start();
  EXPECT_EQ(Offered(), u"Wieder&herstellen: 1 Wert von gestern 16:40");
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500) << "nothing happens by itself";
  Item().trigger();
  EXPECT_EQ(desktop->module.Par[1].Wert, 77);
  EXPECT_EQ(desktop->module.Dateiname, u"/werte/a.qpf");
  EXPECT_EQ(Main<QLabel>(u"file"_s).text(), u"/werte/a.qpf");
  EXPECT_EQ(Offered(), QString());
  EXPECT_EQ(desktop->undo.UndoName(), u"Wiederherstellen, 1 Wert");
  desktop->main.findChild<QAction*>(u"mnuWerkzeugeRueckgaengig"_s)->trigger();
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_EQ(desktop->undo.UndoName(), QString());
}

TEST_F(RecoveryTest, ReceivedValuesAreUnsavedAndSavedOnesAreNot) {
  far->memory.SetWord(0x1F00, 1600);
  Start();
  Click(desktop->main, u"CommandEmpfangen"_s);
  ExpectReady();
  ASSERT_EQ(desktop->module.Par[1].Wert, 1600);
  Rest();
  const std::optional<KeptTable> kept = ParseKeptTable(Stored());
  ASSERT_TRUE(kept);
  EXPECT_TRUE(kept->unsaved.front());
  dialogs.answers = {u"/werte/a.qpf"_s};
  desktop->main.findChild<QAction*>(u"mnuFileSaveAs"_s)->trigger();
  Rest();
  EXPECT_EQ(Stored(), QByteArray());
  Crash();
  Start();
  EXPECT_EQ(Offered(), QString());
}

TEST_F(RecoveryTest, NothingIsWrittenDuringATransfer) {
  Start();
  Edit(77);
  int pending = 0;
  events.onPending = [&] {
    if (pending++ > 0) return;
    Rest();
    EXPECT_FALSE(files.files.contains(kFile));
    EXPECT_EQ(taken, QStringList());
  };
  Click(desktop->main, u"CommandVergleichen"_s);
  ASSERT_GT(pending, 0);
  QTRY_VERIFY(files.files.contains(kFile));
}

TEST_F(RecoveryTest, ANormalEndKeepsAtOnceWhatIsUnsavedForOneStart) {
  recovery.rest = std::chrono::hours(1);
  Start();
  Edit(77);
  End();
  EXPECT_EQ(ParseKeptTable(Stored())->UnsavedCount(), 1);
  Start();
  EXPECT_EQ(Offered(), u"Wieder&herstellen: 1 Wert von heute 16:40");
  End();
  EXPECT_EQ(Stored(), QByteArray());
  Start();
  EXPECT_EQ(Offered(), QString());
}

TEST_F(RecoveryTest, WhatHasRestedKeepsItsTimeAtTheEnd) {
  Start();
  Edit(77);
  QTRY_VERIFY(files.files.contains(kFile));
  const QByteArray kept = Stored();
  now = now.addSecs(3600);
  End();
  EXPECT_EQ(Stored(), kept);
}

TEST_F(RecoveryTest, TheOfferSurvivesACrashWithoutChanges) {
  Start();
  Edit(77);
  Rest();
  Crash();
  Start();
  Rest();
  Crash();
  Start();
  EXPECT_EQ(Offered(), u"Wieder&herstellen: 1 Wert von heute 16:40");
}

TEST_F(RecoveryTest, SwitchesVersionAndPlantType) {
  Start();
  desktop->guard([&] { desktop->module.VersionList.Select(1); });
  desktop->guard([&] { desktop->module.PlantTypeList.Select(1); });
  desktop->guard([&] { desktop->module.SetNumber(8, 99, ValueSource::Edited); });
  Rest();
  Crash();
  Start();
  Open(ParameterKey(1));
  ASSERT_TRUE(desktop->editors.number.isVisible());
  Item().trigger();
  EXPECT_FALSE(desktop->editors.number.isVisible()) << "it would show another parameter";
  EXPECT_EQ(desktop->module.VersionList.SelectedText(), u"AB1-012.0");
  EXPECT_EQ(desktop->module.PlantTypeList.SelectedText(), u"A");
  EXPECT_EQ(desktop->module.Par[8].Wert, 99);
  ExpectReady();
}

TEST_F(RecoveryTest, AnUnknownVersionChangesNothingAndStaysOffered) {
  Start();
  Edit(77);
  Rest();
  Crash();
  files.files[kFile].bytes.replace("AB1-123.4", "AB1-999.9");
  Start();
  Item().trigger();
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes.front().text,
            u"Die Werte können nicht wiederhergestellt werden.\r\nUnbekannte ReglerVersion: AB1-999.9");
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_NE(Offered(), QString());
}

TEST_F(RecoveryTest, IsRefusedDuringATransfer) {
  Start();
  Edit(77);
  Rest();
  Crash();
  Start();
  int pending = 0;
  events.onPending = [&] {
    if (pending++ == 0) Item().trigger();
    EXPECT_NE(desktop->module.Par[1].Wert, 77);
  };
  Click(desktop->main, u"CommandVergleichen"_s);
  ASSERT_GT(pending, 0);
  EXPECT_NE(Offered(), QString());
}

TEST_F(RecoveryTest, ADamagedFileIsToldOnceAndNeverOffered) {
  files.files[kFile] = {"{\"Format\": 1", {}};
  Start();
  ASSERT_EQ(box.Take().size(), 1U);
  EXPECT_EQ(Offered(), QString());
  EXPECT_EQ(files.files.value(u"/zustand/Wiederherstellung.defekt.json"_s).bytes, "{\"Format\": 1");
  End();
  Start();
  EXPECT_EQ(Offered(), QString());
}

TEST_F(RecoveryTest, AFailureIsToldOnceInARun) {
  Start();
  files.writeError = u"Kein Platz."_s;
  Edit(77);
  Rest();
  ASSERT_EQ(box.Take().size(), 1U);
  Edit(78);
  Rest();
  EXPECT_TRUE(desktop->main.close());
}

TEST_F(RecoveryTest, ASecondProgramHasAFileOfItsOwn) {
  Start();
  Edit(77);
  Rest();
  const QByteArray first = Stored();
  desktop.reset();  // but it still holds its file
  Start();
  EXPECT_EQ(Offered(), QString());
  Edit(78);
  Rest();
  EXPECT_EQ(Stored(), first);
  EXPECT_TRUE(files.files.contains(u"/zustand/Wiederherstellung-2.json"_s));
}

}  // namespace
}  // namespace kalivor::test
