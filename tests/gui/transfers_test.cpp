// The four buttons through the real windows, against a simulated controller.
#include "core/ValueFileFormat.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class TransfersTest : public GuiTest {
 protected:
  void Press(const QString& button) { Click(desktop->main, button); }

  /// Answers the next question with that button, after a look at it.
  void Answer(const QString& button) {
    events.onWait = [this, button] {
      ASSERT_TRUE(desktop->auswahl.isVisible());
      EXPECT_FALSE(desktop->main.isEnabled());
      question = In<QLabel>(desktop->auswahl, u"Label1"_s).text();
      first = In<QPushButton>(desktop->auswahl, u"Button1"_s).text();
      second = In<QPushButton>(desktop->auswahl, u"Button2"_s).text();
      Click(desktop->auswahl, button);
    };
  }

  void SetWord(quint16 address, quint16 value) { far->memory.SetWord(address, value); }

  /// Presses the abort button at the `pass`-th moment at which a user could.
  void AbortAt(int pass) {
    events.onPending = [this, pass, passes = 0]() mutable {
      if (++passes == pass) Click(desktop->reportDialog, u"Command_Abbruch"_s);
    };
  }

  [[nodiscard]] int WritesSent() const { return static_cast<int>(line->sent.count("02W")); }

  QString question, first, second;
};

TEST_F(TransfersTest, ReceiveTakesOverTheCheckedValues) {
  Start();
  SetWord(0x1F00, 2000);
  SetWord(0x1F20, 300);
  Toggle(u"sK 4"_s);
  Press(u"CommandEmpfangen"_s);
  EXPECT_TRUE(desktop->reportDialog.isVisible());
  EXPECT_EQ(ReportLines().join(u'|'), u"Empfangen........|Empfangen beendet"_s)
      << "a dot for each of six parameters";
  EXPECT_EQ(desktop->module.Par[1].Wert, 2000);
  EXPECT_TRUE(Tree().Text(3).contains(u"   200.0 1/m |"_s));
  EXPECT_EQ(desktop->module.Par[4].Wert, 200) << "not checked";
  ExpectReady();
}

TEST_F(TransfersTest, TheMainWindowIsDisabledDuringATransfer) {
  Start();
  int looks = 0;
  events.onPending = [&] {
    ++looks;
    EXPECT_EQ(State(), u"Busy"_s);
    EXPECT_FALSE(desktop->main.isEnabled());
    EXPECT_FALSE(desktop->main.close());
    Click(desktop->main, u"CommandStandard"_s);
  };
  Press(u"CommandEmpfangen"_s);
  EXPECT_GE(looks, 2);
  EXPECT_TRUE(desktop->main.isVisible());
  ExpectReady();
}

// Clicked while the transfer ran and still undelivered when it ends: it must not happen afterwards.
TEST_F(TransfersTest, InputOfTheWaitIsDropped) {
  Start();
  auto& button = Main<QPushButton>(u"CommandVergleichen"_s);
  bool clicked = false;
  events.afterPending = [&] {
    if (clicked || ReportLines().last() != u"Empfangen beendet") return;
    clicked = true;
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      const QPointF point(20, 10);
      QCoreApplication::postEvent(&button, new QMouseEvent(type, point, button.mapToGlobal(point),
                                                           Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    }
  };
  Press(u"CommandEmpfangen"_s);
  EXPECT_TRUE(clicked);
  QCoreApplication::processEvents();
  EXPECT_EQ(ReportLines().join(u'|'), u"Empfangen.........|Empfangen beendet"_s);
}

TEST_F(TransfersTest, ReceiveFollowsAKnownVersion) {
  UseController(u"AB1-012.0"_s);
  Start();
  SetWord(0x1F60, 42);
  Toggle(u"sK 4"_s);
  Press(u"CommandEmpfangen"_s);
  EXPECT_EQ(desktop->module.VersionList.SelectedText(), u"AB1-012.0"_s);
  EXPECT_EQ(ReportLines().last(), u"Empfangen beendet"_s);
  EXPECT_EQ(desktop->module.Par[8].Wert, 42);
  EXPECT_TRUE(Tree().Checked(Node(u"sK 4"_s))) << "all are checked again";
  ExpectReady();
}

TEST_F(TransfersTest, ReceiveFollowsThePlantType) {
  Start();
  SetWord(0x1E00, 1);
  Press(u"CommandEmpfangen"_s);
  EXPECT_EQ(desktop->module.PlantTypeList.SelectedText(), u"A"_s);
  EXPECT_EQ(desktop->module.Par[0].Wert, 1);
  EXPECT_EQ(ReportLines().last(), u"Empfangen beendet"_s);
}

TEST_F(TransfersTest, AbortWorksAtEveryMoment) {
  Start();
  for (int pass = 1; pass < 50; ++pass) {
    AbortAt(pass);
    far->faults.Add({{.kind = sim::FaultKind::Late, .delay_ms = 300, .code = {}}, 1, std::nullopt});
    Press(u"CommandEmpfangen"_s);
    events.onPending = nullptr;
    const QString last = ReportLines().last();
    ExpectReady();
    Click(desktop->reportDialog, u"OKButton"_s);
    if (last == u"Empfangen beendet") {
      EXPECT_GT(pass, 5) << "the transfer offered few moments only";
      return;
    }
    EXPECT_EQ(last, u"Empfangen abgebrochen"_s) << pass;
  }
  FAIL() << "no run came to its end";
}

TEST_F(TransfersTest, AbortWorksAfterASwitchOfVersionAndPlantType) {
  UseController(u"AB1-012.0"_s);
  Start();
  SetWord(0x1E00, 2);
  far->faults.Add({{.kind = sim::FaultKind::Late, .delay_ms = 300, .code = {}}, 1, std::nullopt});
  events.onPending = [this] {
    if (desktop->module.PlantTypeList.Position() == 2 && ReportText().count(u'.') > 4) {
      EXPECT_TRUE(In<QPushButton>(desktop->reportDialog, u"Command_Abbruch"_s).isEnabled());
      Click(desktop->reportDialog, u"Command_Abbruch"_s);
    }
  };
  Press(u"CommandEmpfangen"_s);
  EXPECT_EQ(desktop->module.VersionList.Position(), 1);
  EXPECT_EQ(ReportLines().last(), u"Empfangen abgebrochen"_s);
  ExpectReady();
}

TEST_F(TransfersTest, ADeadLineIsReported) {
  Start();
  far->faults.Add({{.kind = sim::FaultKind::Silent, .delay_ms = 0, .code = {}}, 1, std::nullopt});
  Press(u"CommandEmpfangen"_s);
  EXPECT_EQ(ReportLines().join(u'|'), u"Empfangen..|ERROR: kein Empfang|Empfangen abgebrochen"_s);
  ExpectReady();
}

TEST_F(TransfersTest, AMissingPortIsReported) {
  Start();
  line->openable = false;
  Press(u"CommandSenden"_s);
  EXPECT_EQ(ReportLines().join(u'|'),
            u"Senden..|Unbekannte ReglerVersion: ERROR: COM 1 nicht verfügber|Senden abgebrochen"_s);
  ExpectReady();
}

TEST_F(TransfersTest, PlantNumbersOutsideTheListAreReported) {
  Start();
  SetWord(0x1E00, 4);
  Press(u"CommandEmpfangen"_s);
  EXPECT_EQ(ReportLines().join(u'|'),
            u"Empfangen..|Empfangene Anlagennummer ( 4) zu gross|Empfangen beendet"_s);
}

TEST_F(TransfersTest, APlantNumberEqualToTheCountEndsInAnErrorBox) {
  Start();
  SetWord(0x1E00, 3);
  Press(u"CommandEmpfangen"_s);
  EXPECT_EQ(ReportLines().join(u'|'), u"Empfangen..|Empfangen abgebrochen"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, RuntimeError(RuntimeError::Kind::InvalidSelection).Description());
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
  ExpectReady();
}

TEST_F(TransfersTest, CompareReportsTheDifferences) {
  Start();
  SetWord(0x1F00, 1499);
  Press(u"CommandVergleichen"_s);
  const QStringList lines = ReportLines();
  EXPECT_TRUE(lines.first().startsWith(u"Vergleichen.."_s));
  EXPECT_TRUE(ReportText().contains(u"Änderung bei: Drehzahl\n   PC    :    150.0 \n   Regler:    149.9"_s))
      << ReportText().toStdString();
  EXPECT_EQ(lines.last(), u"Vergleich beendet"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  ExpectReady();
}

TEST_F(TransfersTest, CompareRefusesAnotherVersion) {
  UseController(u"AB1-012.0"_s);
  Start();
  Press(u"CommandVergleichen"_s);
  EXPECT_EQ(ReportLines().join(u'|'),
            u"Vergleichen..|Andere ReglerVersion: AB1-012.0|Vergleich abgebrochen"_s);
  EXPECT_EQ(desktop->module.VersionList.Position(), 0);
}

TEST_F(TransfersTest, SendWritesTheCheckedValues) {
  Start();
  desktop->module.Par[1].Wert = 1777;
  Press(u"CommandSenden"_s);
  EXPECT_EQ(ReportLines().last(), u"Senden beendet"_s);
  EXPECT_EQ(far->memory.Word(0x1F00), 1777);
  ExpectReady();
}

// The mark of group 2 is kept in the slot of parameter 2, so that parameter is not sent, though its box is
// ticked.
TEST_F(TransfersTest, SendGoesByTheStoredMarks) {
  Start();
  Toggle(u"K 2"_s);
  desktop->module.Par[1].Wert = 1777;
  desktop->module.Par[2].Wert = 2770;
  EXPECT_TRUE(Tree().Checked(Node(u"sK 2"_s)));
  Press(u"CommandSenden"_s);
  EXPECT_EQ(far->memory.Word(0x1F00), 1777);
  EXPECT_EQ(far->memory.Word(0x1F04), 1000);
}

TEST_F(TransfersTest, SendWithAnotherVersionCanBeGivenUp) {
  UseController(u"AB1-012.0"_s);
  Start();
  Answer(u"Button1"_s);
  Press(u"CommandSenden"_s);
  EXPECT_EQ(question,
            u"Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n"
            "Der Befehl Senden kann nicht ausgeführt werden.\n\nBitte wählen Sie:"_s);
  EXPECT_EQ(first, u"PC     (Senden Abbrechen)  : AB1-123.4"_s);
  EXPECT_EQ(second, u"Regler (Werte neu Einlesen): AB1-012.0"_s);
  EXPECT_EQ(ReportLines().last(), u"Senden abgebrochen"_s);
  EXPECT_EQ(desktop->module.VersionList.Position(), 0);
  EXPECT_EQ(WritesSent(), 0);
  ExpectReady();
}

TEST_F(TransfersTest, SendWithAnotherVersionCanTakeOverTheControllers) {
  UseController(u"AB1-012.0"_s);
  Start();
  SetWord(0x1F60, 42);
  Answer(u"Button2"_s);
  Press(u"CommandSenden"_s);
  EXPECT_EQ(desktop->module.VersionList.Position(), 1);
  EXPECT_EQ(files.reads.count(kFolder + u"/ZWEI.TXT"_s), 4);
  EXPECT_EQ(desktop->module.Par[8].Wert, 42);
  EXPECT_EQ(ReportLines().last(), u"Senden abgebrochen"_s);
  EXPECT_EQ(WritesSent(), 0);
  ExpectReady();
}

TEST_F(TransfersTest, SendWithAnotherPlantTypeCanKeepThePcs) {
  Start();
  SetWord(0x1E00, 2);
  desktop->module.PlantTypeList.Select(1);
  Answer(u"Button1"_s);
  Press(u"CommandSenden"_s);
  EXPECT_EQ(
      question,
      u"Die Anlageart auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\nBitte wählen Sie:"_s);
  EXPECT_EQ(first, u"PC: A"_s);
  EXPECT_EQ(second, u"Regler: B"_s);
  EXPECT_EQ(ReportLines().last(), u"Senden beendet"_s);
  EXPECT_EQ(far->memory.Word(0x1E00), 1);
  ExpectReady();
}

TEST_F(TransfersTest, SendWithAnotherPlantTypeCanTakeOverTheControllers) {
  Start();
  SetWord(0x1E00, 2);
  SetWord(0x1F00, 2000);
  desktop->module.PlantTypeList.Select(1);
  Answer(u"Button2"_s);
  Press(u"CommandSenden"_s);
  EXPECT_EQ(desktop->module.PlantTypeList.Position(), 2);
  EXPECT_EQ(desktop->module.Par[1].Wert, 2000);
  EXPECT_EQ(ReportLines().last(), u"Senden abgebrochen"_s);
  EXPECT_EQ(WritesSent(), 0);
}

TEST_F(TransfersTest, TheAbortButtonDoesNotAnswerAQuestion) {
  UseController(u"AB1-012.0"_s);
  Start();
  int waits = 0;
  events.onWait = [&] {
    if (++waits == 1) Click(desktop->reportDialog, u"Command_Abbruch"_s);
    EXPECT_EQ(desktop->module.Antwort, -1);
    if (waits == 3) Click(desktop->auswahl, u"Button1"_s);
  };
  Press(u"CommandSenden"_s);
  EXPECT_EQ(waits, 3);
  EXPECT_EQ(ReportLines().last(), u"Senden abgebrochen"_s);
  ExpectReady();
}

/// The session ends while a question waits for its answer. Nobody gives one any more.
class SessionEndTest : public TransfersTest {
 protected:
  void EndSessionInQuestion() {
    events.onWait = [this] {
      // The question waits on; without this, for ever.
      if (++waits > 1) throw RuntimeError(RuntimeError::Kind::MissingObject);
      ASSERT_TRUE(desktop->auswahl.isVisible());
      desktop->main.EndSession();
    };
  }

  void ExpectEnded() {
    EXPECT_EQ(waits, 1) << "one question, given up at once";
    EXPECT_EQ(WritesSent(), 0);
    QCoreApplication::processEvents();
    EXPECT_FALSE(desktop->main.isVisible());
    EXPECT_FALSE(desktop->auswahl.isVisible());
    EXPECT_EQ(settings.values[u"Adresse"_s], u"1"_s) << "the settings are stored";
    EXPECT_EQ(desktop->module.BusyDepth, 0);
  }

  int waits = 0;
};

TEST_F(SessionEndTest, TheQuestionForTheVersionIsGivenUp) {
  UseController(u"AB1-012.0"_s);
  Start();
  EndSessionInQuestion();
  Press(u"CommandSenden"_s);
  EXPECT_EQ(ReportLines().join(u'|'), u"Senden..|Senden abgebrochen"_s);
  EXPECT_EQ(desktop->module.VersionList.Position(), 0);
  ExpectEnded();
}

TEST_F(SessionEndTest, TheQuestionForThePlantTypeIsGivenUp) {
  Start();
  SetWord(0x1E00, 2);
  SetWord(0x1F00, 2000);
  desktop->module.PlantTypeList.Select(1);
  EndSessionInQuestion();
  Press(u"CommandSenden"_s);
  EXPECT_EQ(ReportLines().join(u'|'), u"Senden..|Senden abgebrochen"_s);
  EXPECT_EQ(desktop->module.PlantTypeList.Position(), 1);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500) << "nothing is received";
  ExpectEnded();
}

TEST_F(SessionEndTest, AQuestionThatComesAfterwardsIsNotAsked) {
  UseController(u"AB1-012.0"_s);
  Start();
  events.onPending = [this] { desktop->main.EndSession(); };
  Press(u"CommandSenden"_s);
  EXPECT_EQ(ReportLines().join(u'|'), u"Senden..|Senden abgebrochen"_s);
  waits = 1;
  ExpectEnded();
}

TEST_F(SessionEndTest, TheQuestionForTheFilesVersionIsGivenUp) {
  Start();
  files.files[u"/werte/x.qpf"_s].bytes =
      ComposeRecord(2, {}, u"AB1-012.0"_s, {}) + ComposeRecord(99, {}, u"n"_s, u"int"_s);
  EndSessionInQuestion();
  desktop->OpenFile(u"/werte/x.qpf"_s);
  EXPECT_EQ(desktop->module.VersionList.Position(), 0);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500) << "nothing is read";
  ExpectEnded();
}

TEST_F(TransfersTest, StandardResetsEveryParameterWithoutAReport) {
  Start();
  desktop->module.Par[1].Wert = 1;
  desktop->module.Par[3].WertText = u"Otto"_s;
  Toggle(u"sK 1"_s);
  Press(u"CommandStandard"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500) << "checked or not";
  EXPECT_EQ(desktop->module.Par[3].WertText, u"Anna"_s);
  EXPECT_TRUE(Tree().Text(3).contains(u"   150.0 1/m |"_s));
  EXPECT_FALSE(Tree().Checked(3));
  EXPECT_FALSE(desktop->reportDialog.isVisible());
  EXPECT_EQ(line->openings, 1) << "the start's only";
}

TEST_F(TransfersTest, TheReportCollectsUntilItIsClosed) {
  Start();
  Press(u"CommandVergleichen"_s);
  Press(u"CommandSenden"_s);
  EXPECT_TRUE(ReportText().contains(u"Vergleich beendet\nSenden.."_s)) << ReportText().toStdString();
}

TEST_F(TransfersTest, AnUnpluggedLineEndsTheTransfer) {
  Start();
  events.onPending = [this] {
    if (ReportText().startsWith(u"Empfangen..."_s)) line->Unplug();
  };
  far->faults.Add({{.kind = sim::FaultKind::Late, .delay_ms = 300, .code = {}}, 1, std::nullopt});
  Press(u"CommandEmpfangen"_s);
  EXPECT_TRUE(ReportText().contains(u"nicht verfügber"_s)) << ReportText().toStdString();
  EXPECT_EQ(ReportLines().last(), u"Empfangen beendet"_s);
  ExpectReady();
}

}  // namespace
}  // namespace kalivor::test
