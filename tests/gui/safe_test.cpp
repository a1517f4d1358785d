// Sending, receiving and restoring safely: the windows, from the first key to the account.
#include <QAction>
#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableView>
#include <QTableWidget>
#include <array>
#include <utility>

#include "commands/ListCommands.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

constexpr int kSend = Qt::Key_S;

// By parameter 1, 4 and 6.
constexpr quint16 kSpeed = 0x1F00;
constexpr quint16 kTarget = 0x1F20;
constexpr quint16 kFlow = 0x1F24;

class SafeTest : public GuiTest {
 public:
  ~SafeTest() override { desktop.reset(); }

 protected:
  SafeTest() {
    settings.values[u"Userpath"_s] = u"/werte"_s;
    safe.stateFolder = u"/zustand"_s;
    safe.programVersion = u"1.2.3"_s;
    safe.take = [this](const QString& path) {
      if (taken.contains(path)) return false;
      taken.append(path);
      return true;
    };
    safe.now = [this] { return now; };
  }

  /// With all marked that have a place in the controller.
  void Start() {
    GuiTest::Start();
    desktop->guard([this] { MarkOnly(desktop->core, std::array{1, 2, 3, 4, 5, 6}); });
  }

  void Edit(int index, qint32 number) {
    desktop->guard([&] { desktop->module.SetNumber(index, number, ValueSource::Edited); });
  }

  [[nodiscard]] QAction& Item(const QString& name) { return Main<QAction>(name); }
  void Trigger(const QString& name) { Item(name).trigger(); }
  /// The caption as long as the item is offered.
  [[nodiscard]] QString OfferedSending() {
    QAction& item = Item(u"mnuWerkzeugeUnterbrochen"_s);
    return item.isVisible() && item.isEnabled() ? item.text() : QString();
  }

  void Send() { Trigger(u"mnuWerkzeugeSicherSenden"_s); }

  [[nodiscard]] ui::SafeWindow& Safe() {
    if (!desktop->safe) throw std::runtime_error("no safe window");
    return *desktop->safe;
  }
  [[nodiscard]] bool IsOpen() { return desktop->safe && desktop->safe->isVisible(); }
  [[nodiscard]] QTableView& View() { return In<QTableView>(Safe(), u"values"_s); }
  [[nodiscard]] QAbstractItemModel& Model() { return *View().model(); }
  [[nodiscard]] QString Text(const QString& label) { return In<QLabel>(Safe(), label).text(); }
  [[nodiscard]] QPushButton& Button(const QString& name) { return In<QPushButton>(Safe(), name); }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&View(), key, modifiers);
  }

  /// The row of a parameter as the user sees it: the cells that are shown, a mark as x, - or nothing.
  [[nodiscard]] QString Row(int row) {
    QStringList cells;
    for (int column = 0; column < kSafeColumns; ++column) {
      if (View().isColumnHidden(column)) continue;
      const QModelIndex cell = Model().index(row, column);
      if (column == static_cast<int>(SafeColumn::Mark)) {
        const QVariant state = cell.data(Qt::CheckStateRole);
        cells.append(!state.isValid() ? QString() : state == Qt::Checked ? u"x"_s : u"-"_s);
      } else {
        cells.append(cell.data().toString());
      }
    }
    return cells.join(u'|');
  }
  [[nodiscard]] QStringList Rows() {
    QStringList rows;
    for (int row = 0; row < Model().rowCount(); ++row)
      rows.append(Row(row));
    return rows;
  }
  void GoToRow(int row) { View().setCurrentIndex(Model().index(row, static_cast<int>(SafeColumn::Name))); }

  /// The text of the one box that was shown.
  [[nodiscard]] QString Box() {
    const auto boxes = box.Take();
    EXPECT_EQ(boxes.size(), 1U);
    return boxes.empty() ? QString() : boxes.front().text;
  }

  [[nodiscard]] QStringList Backups() {
    QStringList names;
    for (const QString& name : files.List(u"/werte/Sicherungen"_s).names) {
      if (name.endsWith(u".qpf"_s)) names.append(name);
    }
    return names;
  }

  /// From here on the controller does not answer.
  void Unplug() { far->faults.Add({{sim::FaultKind::Silent}, 1, {}}); }
  /// Presses "Abbrechen" of the progress as soon as it says that this is being done.
  void AbortWhen(const QString& work) {
    events.onPending = [this, work] {
      ui::ProgressDialog& progress = Safe().Progress();
      if (aborts > 0 || !progress.isVisible() || progress.windowTitle() != work) return;
      ++aborts;
      EXPECT_FALSE(desktop->main.isEnabled());
      EXPECT_FALSE(Safe().isEnabled());
      QTest::keyClick(&progress, Qt::Key_Escape);
    };
  }

  /// The program is gone, without closing its window.
  void Crash() {
    desktop.reset();
    taken.clear();
  }
  /// A sending of two values of which nobody knows what has become of it.
  void LeaveUnfinished() {
    Start();
    Edit(1, 1600);
    Edit(4, 300);
    Send();
    ASSERT_TRUE(IsOpen());
    // After the first write.
    bool unplugged = false;
    events.onPending = [&] {
      if (far->memory.Word(kSpeed) == 1600 && !std::exchange(unplugged, true)) Unplug();
    };
    Press(Qt::Key_Return);
    events.onPending = {};
    ASSERT_EQ(far->memory.Word(kSpeed), 1600);
    Crash();
    far->faults = sim::Faults();
  }
  /// As the process starts the program.
  void StartAgain() {
    ui::frmSplash splash;
    desktop = ui::Launch(splash, World(), {});
    EXPECT_EQ(desktop->unfinished, nullptr) << "not before the splash screen is gone";
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&desktop->main));
    QCoreApplication::processEvents();
  }

  QDateTime now = QDateTime(QDate(2026, 11, 12), QTime(16, 40));
  QStringList taken;
  int aborts = 0;
};

// --- sending ---

TEST_F(SafeTest, SendsByKeyboardAndTakesBack) {
  Start();
  Edit(1, 1600);
  Edit(4, 300);
  desktop->main.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&desktop->main));
  QTest::keyClick(desktop->main.windowHandle(), Qt::Key(kSend), Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_TRUE(IsOpen());
  EXPECT_TRUE(Safe().isModal());
  EXPECT_EQ(Safe().windowTitle(), u"Sicher senden"_s);
  EXPECT_TRUE(View().hasFocus());
  EXPECT_EQ(Text(u"sentence"_s),
            u"2 von 6 angekreuzten Werten sind verschieden; sie werden in den Regler geschrieben."_s);
  EXPECT_EQ(Rows(), (QStringList{u"x|1|Drehzahl|150.0|160.0|1/m|verschieden"_s,
                                 u"x|4|Solltemperatur|20.0|30.0|°C|verschieden"_s}));
  EXPECT_EQ(Button(u"doIt"_s).text(), u"2 Werte &senden"_s);
  EXPECT_EQ(Backups(), QStringList()) << "before anything is written";

  Press(Qt::Key_Space);
  EXPECT_EQ(Row(0), u"-|1|Drehzahl|150.0|160.0|1/m|verschieden"_s);
  EXPECT_EQ(Text(u"sentence"_s),
            u"2 von 6 angekreuzten Werten sind verschieden; 1 davon wird in den Regler geschrieben."_s);
  Press(Qt::Key_Return);
  ExpectReady();
  EXPECT_EQ(far->memory.Word(kTarget), 300);
  EXPECT_EQ(far->memory.Word(kSpeed), 1500);
  EXPECT_EQ(Text(u"sentence"_s), u"1 geprüft"_s);
  EXPECT_EQ(Text(u"advice"_s), u"Was geschrieben wurde, ist zurückgelesen: Es steht so im Regler."_s);
  EXPECT_EQ(Rows(), QStringList{u"4|Solltemperatur|20.0|30.0|30.0|°C|geprüft"_s});
  ASSERT_EQ(Backups().size(), 1);
  EXPECT_TRUE(In<QLineEdit>(Safe(), u"backup"_s).text().endsWith(Backups().front()));
  EXPECT_FALSE(Button(u"repeat"_s).isEnabled());
  Press(Qt::Key_Return);
  EXPECT_TRUE(IsOpen()) << "a key too many must not close the account";

  QTest::keyClick(&View(), Qt::Key_Z, Qt::AltModifier);
  QTest::mouseClick(&Button(u"takeBack"_s), Qt::LeftButton);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Safe().windowTitle(), u"Zurücknehmen"_s);
  EXPECT_EQ(Rows(), QStringList{u"x|4|Solltemperatur|30.0|20.0|°C|verschieden"_s});
  EXPECT_EQ(Button(u"doIt"_s).text(), u"1 Wert &zurückschreiben"_s);
  Press(Qt::Key_Return);
  EXPECT_EQ(far->memory.Word(kTarget), 200);
  EXPECT_EQ(Text(u"sentence"_s), u"1 geprüft"_s);
  Press(Qt::Key_Escape);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(OfferedSending(), QString());
  EXPECT_EQ(desktop->module.Par[4].Wert, 300) << "the PC keeps its value";
  ExpectReady();
}

TEST_F(SafeTest, NothingToSend) {
  Start();
  Send();
  EXPECT_EQ(Box(), u"Nichts zu senden: Alle 6 Werte sind gleich."_s);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(Backups(), QStringList());
  ExpectReady();
}

TEST_F(SafeTest, NothingIsCheckedNothingIsAsked) {
  Start();
  desktop->guard([this] { MarkOnly(desktop->core, {}); });
  const int before = far->faults.Exchanges();
  Send();
  EXPECT_EQ(Box(), u"Kein Parameter ist angekreuzt."_s);
  EXPECT_EQ(far->faults.Exchanges(), before);
}

TEST_F(SafeTest, WhatIsOutsideItsLimitsIsSentOnlyWhenTheUserMarksIt) {
  Start();
  Edit(1, 1600);
  Edit(4, 2000);
  Send();
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Rows(),
            (QStringList{
                u"x|1|Drehzahl|150.0|160.0|1/m|verschieden"_s,
                u"-|4|Solltemperatur|20.0|200.0|°C|verschieden: außerhalb der Grenzen -10.0 bis 100.0"_s}));
  EXPECT_EQ(Button(u"doIt"_s).text(), u"1 Wert &senden"_s);
  QTest::mouseClick(&Button(u"chooseAll"_s), Qt::LeftButton);
  EXPECT_EQ(Button(u"doIt"_s).text(), u"2 Werte &senden"_s);
  QTest::mouseClick(&Button(u"chooseNone"_s), Qt::LeftButton);
  EXPECT_FALSE(Button(u"doIt"_s).isEnabled());
  EXPECT_EQ(Text(u"sentence"_s), u"2 von 6 angekreuzten Werten sind verschieden; keiner wird geschrieben."_s);
  Press(Qt::Key_Return);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(far->memory.Word(kSpeed), 1500);
}

TEST_F(SafeTest, WhatCannotBeSentCannotBeMarked) {
  Start();
  Edit(1, 1600);
  desktop->guard([&] { desktop->module.SetText(3, u"Zu lang für acht"_s, ValueSource::Edited); });
  Send();
  ASSERT_TRUE(IsOpen());
  ASSERT_EQ(Model().rowCount(), 2);
  EXPECT_EQ(Row(1), u"|3|Name|Anna|Zu lang für acht||verschieden: Text zu lang"_s);
  const QModelIndex mark = Model().index(1, 0);
  EXPECT_FALSE(mark.flags() & Qt::ItemIsUserCheckable);
  EXPECT_EQ(mark.data(Qt::AccessibleTextRole), u"nicht ankreuzbar"_s);
  GoToRow(1);
  Press(Qt::Key_Space);
  EXPECT_EQ(Button(u"doIt"_s).text(), u"1 Wert &senden"_s);
}

TEST_F(SafeTest, WhatCannotBeReadIsNamed) {
  GuiTest::Start();
  Send();
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Text(u"sentence"_s),
            u"Nichts zu senden: 6 Werte sind gleich. 1 Wert konnte nicht gelesen werden."_s);
  EXPECT_EQ(Rows(), QStringList{u"|7|Kennwort||5||nicht gelesen: Text ohne Länge"_s});
  EXPECT_TRUE(Button(u"doIt"_s).isHidden());
  EXPECT_EQ(Button(u"CloseButton"_s).text(), u"&Schließen"_s);
}

TEST_F(SafeTest, ReadingIsAborted) {
  Start();
  Edit(1, 1600);
  events.onPending = [this] {
    if (aborts > 0 || !desktop->safe || !Safe().Progress().isVisible()) return;
    ++aborts;
    EXPECT_EQ(Safe().Progress().windowTitle(), u"Regler lesen"_s);
    QTest::keyClick(&Safe().Progress(), Qt::Key_Escape);
  };
  Send();
  EXPECT_EQ(aborts, 1);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(far->memory.Word(kSpeed), 1500);
  EXPECT_EQ(Backups(), QStringList());
  ExpectReady();
}

TEST_F(SafeTest, WritingIsAbortedAndWhatWasWrittenIsChecked) {
  Start();
  Edit(1, 1600);
  Edit(4, 300);
  Edit(6, 5000);
  Send();
  ASSERT_TRUE(IsOpen());
  AbortWhen(u"Schreiben"_s);
  Press(Qt::Key_Return);
  EXPECT_EQ(aborts, 1);
  ExpectReady();
  EXPECT_TRUE(Safe().isEnabled());
  EXPECT_TRUE(Text(u"advice"_s).startsWith(u"Abgebrochen."_s)) << Text(u"advice"_s).toStdString();
  EXPECT_TRUE(Text(u"sentence"_s).contains(u"nicht geprüft"_s)) << Text(u"sentence"_s).toStdString();
  EXPECT_TRUE(Button(u"repeat"_s).isEnabled());
  QTest::mouseClick(&Button(u"repeat"_s), Qt::LeftButton);
  EXPECT_EQ(Text(u"sentence"_s), u"3 geprüft"_s);
  EXPECT_EQ(far->memory.Word(kSpeed), 1600);
  EXPECT_EQ(far->memory.Word(kTarget), 300);
  EXPECT_EQ(far->memory.Word(kFlow + 2), 5000);
  EXPECT_EQ(OfferedSending(), QString());
}

TEST_F(SafeTest, AWriteWithoutEffectIsFoundAndRepeated) {
  Start();
  Edit(1, 1600);
  Edit(4, 300);
  Send();
  ASSERT_TRUE(IsOpen());
  far->faults.Add({{sim::FaultKind::IgnoreWrite}, 1, 1});
  Press(Qt::Key_Return);
  EXPECT_EQ(Text(u"sentence"_s), u"1 geprüft, 1 abweichend"_s);
  EXPECT_EQ(Rows(), (QStringList{u"1|Drehzahl|150.0|160.0|150.0|1/m|abweichend"_s,
                                 u"4|Solltemperatur|20.0|30.0|30.0|°C|geprüft"_s}))
      << "what is not verified stands first";
  const QModelIndex state = Model().index(0, static_cast<int>(SafeColumn::State));
  EXPECT_FALSE(state.data(Qt::DecorationRole).value<QIcon>().isNull());
  EXPECT_TRUE(Text(u"advice"_s).startsWith(u"Nicht alle Werte stehen sicher im Regler."_s));
  QTest::mouseClick(&Button(u"repeat"_s), Qt::LeftButton);
  EXPECT_EQ(Text(u"sentence"_s), u"2 geprüft"_s);
  EXPECT_EQ(far->memory.Word(kSpeed), 1600);
}

TEST_F(SafeTest, LateRepliesDoNotConfuse) {
  Start();
  Edit(1, 1600);
  Edit(4, 300);
  const auto delay = [this](std::initializer_list<int> exchanges) {
    for (const int exchange : exchanges)
      far->faults.Plan(far->faults.Exchanges() + exchange, {sim::FaultKind::Late, 600});
  };
  delay({2, 5, 9});
  Send();
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Rows(), (QStringList{u"x|1|Drehzahl|150.0|160.0|1/m|verschieden"_s,
                                 u"x|4|Solltemperatur|20.0|30.0|°C|verschieden"_s}));
  delay({2, 4, 7, 10});
  Press(Qt::Key_Return);
  EXPECT_EQ(Text(u"sentence"_s), u"2 geprüft"_s);
  EXPECT_EQ(far->memory.Word(kSpeed), 1600);
  EXPECT_EQ(far->memory.Word(kTarget), 300);
}

TEST_F(SafeTest, WithoutAPlaceForTheJournalNothingIsWritten) {
  safe.stateFolder.clear();
  Start();
  Edit(1, 1600);
  Send();
  ASSERT_TRUE(IsOpen());
  Press(Qt::Key_Return);
  EXPECT_TRUE(Box().endsWith(u"\r\nEs wurde nichts geschrieben."_s));
  EXPECT_TRUE(IsOpen()) << "it can be tried again";
  EXPECT_TRUE(Button(u"doIt"_s).isVisible());
  EXPECT_EQ(far->memory.Word(kSpeed), 1500);
}

TEST_F(SafeTest, AControllerOfAnotherVersionEndsIt) {
  UseController(u"LFT-020.5"_s);
  Start();
  Edit(1, 1600);
  Send();
  EXPECT_EQ(Box(), u"Andere ReglerVersion: LFT-020.5\r\nAusgewählt ist AB1-123.4."_s);
  EXPECT_FALSE(IsOpen());
  ExpectReady();
}

TEST_F(SafeTest, AControllerOfAnotherPlantTypeEndsIt) {
  Start();
  far->memory.SetWord(0x1E00, 1);
  Send();
  EXPECT_TRUE(Box().startsWith(u"Andere Anlageart: "_s));
  EXPECT_FALSE(IsOpen());
}

TEST_F(SafeTest, IsRefusedDuringATransfer) {
  Start();
  int pending = 0;
  events.onPending = [&] {
    if (pending++ > 0) return;
    Send();
    Trigger(u"mnuWerkzeugeSicherEmpfangen"_s);
    Trigger(u"mnuWerkzeugeSicherungen"_s);
    EXPECT_EQ(desktop->safe, nullptr);
    EXPECT_EQ(desktop->backups, nullptr);
  };
  Click(desktop->main, u"CommandVergleichen"_s);
  EXPECT_GT(pending, 0);
}

TEST_F(SafeTest, TheTableCanBeCopied) {
  Start();
  Edit(1, 1600);
  Send();
  ASSERT_TRUE(IsOpen());
  QTest::keySequence(&View(), QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text(),
            u"Kreuz\tNr\tName\tRegler (alt)\tPC (neu)\tEinheit\tZustand\n"
            "x\t1\tDrehzahl\t150,0\t160,0\t1/m\tverschieden\n"_s);
}

TEST_F(SafeTest, TheTableLeavesTheProgramWithWhatItIsAbout) {
  Start();
  Edit(1, 1600);
  Send();
  ASSERT_TRUE(IsOpen());
  dialogs.answers = {u"/sendung"_s};
  In<QMenu>(Safe(), u"exportMenu"_s).findChild<QAction*>(u"exportCsv"_s)->trigger();
  const QString csv = QString::fromUtf8(files.files[u"/sendung.csv"_s].bytes);
  EXPECT_TRUE(
      csv.contains(u"Kreuz;Nr;Name;Regler (alt);PC (neu);Einheit;Zustand\r\n"
                   "x;1;Drehzahl;150,0;160,0;1/m;verschieden\r\n"_s))
      << csv.toStdString();
}

TEST_F(SafeTest, KeepsItsPlaceAndColumns) {
  Start();
  Edit(1, 1600);
  Send();
  ASSERT_TRUE(IsOpen());
  Safe().resize(700, 400);
  View().horizontalHeader()->resizeSection(static_cast<int>(SafeColumn::Name), 333);
  Press(Qt::Key_Escape);
  Crash();
  Start();
  Edit(1, 1600);
  Send();
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Safe().size(), QSize(700, 400));
  EXPECT_EQ(View().columnWidth(static_cast<int>(SafeColumn::Name)), 333);
}

TEST_F(SafeTest, ARuntimeErrorInTheMiddleLeavesAnAccount) {
  Start();
  Edit(1, 1600);
  Edit(4, 300);
  Send();
  ASSERT_TRUE(IsOpen());
  events.onPending = [this] {
    if (far->memory.Word(kSpeed) == 1600) throw RuntimeError(RuntimeError::Kind::Overflow);
  };
  Press(Qt::Key_Return);
  events.onPending = {};
  EXPECT_EQ(Box(), RuntimeError(RuntimeError::Kind::Overflow).Description());
  ExpectReady();
  EXPECT_TRUE(IsOpen());
  EXPECT_TRUE(Safe().isEnabled());
}

TEST_F(SafeTest, TheEndOfTheSessionEndsTheSendingAndAsksNothing) {
  Start();
  Edit(1, 1600);
  Edit(4, 300);
  Send();
  ASSERT_TRUE(IsOpen());
  events.onPending = [this] {
    if (far->memory.Word(kSpeed) == 1600) desktop->main.EndSession();
  };
  Press(Qt::Key_Return);
  events.onPending = {};
  QCoreApplication::processEvents();
  EXPECT_FALSE(desktop->main.isVisible());
  EXPECT_FALSE(IsOpen());
}

TEST_F(SafeTest, TheEndOfTheSessionClosesAnOpenWindow) {
  Start();
  Edit(1, 1600);
  Send();
  ASSERT_TRUE(IsOpen());
  desktop->main.EndSession();
  EXPECT_FALSE(desktop->main.isVisible());
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(far->memory.Word(kSpeed), 1500);
}

// --- receiving ---

TEST_F(SafeTest, ReceivingIsOneStep) {
  Start();
  far->memory.SetWord(kSpeed, 1700);
  far->memory.SetWord(kTarget, 350);
  Trigger(u"mnuWerkzeugeSicherEmpfangen"_s);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Safe().windowTitle(), u"Sicher empfangen"_s);
  EXPECT_EQ(Model().headerData(static_cast<int>(SafeColumn::Old), Qt::Horizontal, Qt::AccessibleTextRole),
            u"PC (alt)"_s);
  EXPECT_EQ(Text(u"sentence"_s),
            u"2 von 6 angekreuzten Werten sind verschieden; sie werden in den PC übernommen."_s);
  EXPECT_EQ(Rows(), (QStringList{u"x|1|Drehzahl|150.0|170.0|1/m|verschieden"_s,
                                 u"x|4|Solltemperatur|20.0|35.0|°C|verschieden"_s}));
  EXPECT_EQ(Button(u"doIt"_s).text(), u"2 Werte &übernehmen"_s);
  Press(Qt::Key_Return);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1700);
  EXPECT_EQ(desktop->module.Par[4].Wert, 350);
  EXPECT_EQ(desktop->undo.UndoName(), u"Empfangen, 2 Werte"_s);
  Trigger(u"mnuWerkzeugeRueckgaengig"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_EQ(desktop->module.Par[4].Wert, 200);
  EXPECT_EQ(Backups(), QStringList());
}

TEST_F(SafeTest, NothingToReceive) {
  Start();
  Trigger(u"mnuWerkzeugeSicherEmpfangen"_s);
  EXPECT_EQ(Box(), u"Nichts zu übernehmen: Alle 6 Werte sind gleich."_s);
}

// --- backups ---

class BackupsTest : public SafeTest {
 protected:
  [[nodiscard]] ui::BackupsWindow& Window() { return *desktop->backups; }
  [[nodiscard]] QTableWidget& Table() { return In<QTableWidget>(Window(), u"backups"_s); }
  [[nodiscard]] QString Cell(int row, int column) { return Table().item(row, column)->text(); }
  [[nodiscard]] QString Summary() { return In<QLabel>(Window(), u"summary"_s).text(); }
  void Open() { Trigger(u"mnuWerkzeugeSicherungen"_s); }
  /// Sends this speed, which leaves a backup of what was there before.
  void SendSpeed(qint32 number) {
    Edit(1, number);
    Send();
    ASSERT_TRUE(IsOpen());
    Press(Qt::Key_Return);
    ASSERT_EQ(Text(u"sentence"_s), u"1 geprüft"_s);
    Press(Qt::Key_Escape);
  }
};

TEST_F(BackupsTest, AnEmptyFolderSaysHowBackupsComeAbout) {
  Start();
  Open();
  EXPECT_TRUE(Window().isVisible());
  EXPECT_TRUE(Summary().startsWith(u"Noch gibt es keine Sicherungen."_s));
  for (const QString& name : {u"compare"_s, u"restore"_s, u"tidy"_s})
    EXPECT_FALSE(In<QPushButton>(Window(), name).isEnabled()) << name.toStdString();
}

TEST_F(BackupsTest, ListsTheNewestFirstAndUnusableOnesWithTheirError) {
  Start();
  SendSpeed(1600);
  now = now.addSecs(60);
  SendSpeed(1700);
  files.AddText(u"/werte/Sicherungen/kaputt.txt"_s, u"kein Text"_s);
  files.AddText(u"/werte/Sicherungen/kaputt.qpf"_s, u"nichts"_s);
  Open();
  ASSERT_EQ(Table().rowCount(), 3);
  EXPECT_TRUE(Summary().startsWith(u"3 Sicherungen in "_s)) << Summary().toStdString();
  QStringList times;
  int unusable = -1;
  for (int row = 0; row < 3; ++row) {
    times.append(Cell(row, 0));
    if (Cell(row, 0).isEmpty()) unusable = row;
  }
  EXPECT_LT(times.indexOf(u"12.11.2026 16:41:00"_s), times.indexOf(u"12.11.2026 16:40:00"_s));
  const auto first = static_cast<int>(times.indexOf(u"12.11.2026 16:41:00"_s));
  EXPECT_EQ(Cell(first, 1), u"AB1-123.4"_s);
  EXPECT_EQ(Cell(first, 3), u"1"_s);
  ASSERT_GE(unusable, 0);
  EXPECT_TRUE(Cell(unusable, 5).startsWith(u"kaputt.qpf: "_s)) << Cell(unusable, 5).toStdString();
  Table().setCurrentCell(unusable, 0);
  EXPECT_FALSE(In<QPushButton>(Window(), u"compare"_s).isEnabled());
  EXPECT_FALSE(In<QPushButton>(Window(), u"restore"_s).isEnabled());
  EXPECT_TRUE(In<QPushButton>(Window(), u"tidy"_s).isEnabled());
}

TEST_F(BackupsTest, IsComparedWithThePcInTheList) {
  Start();
  SendSpeed(1600);
  Open();
  Click(Window(), u"compare"_s);
  ASSERT_NE(desktop->list, nullptr);
  EXPECT_TRUE(desktop->list->isVisible());
  EXPECT_TRUE(In<QComboBox>(*desktop->list, u"comparison"_s).currentText().startsWith(u"Datei: "_s));
  auto& model = *In<QTableView>(*desktop->list, u"parameters"_s).model();
  const auto cell = [&](ListColumn column) {
    return model.index(0, static_cast<int>(column)).data().toString();
  };
  EXPECT_EQ(cell(ListColumn::Value), u"160.0"_s);
  EXPECT_EQ(cell(ListColumn::Comparison), u"150.0"_s);
}

TEST_F(BackupsTest, IsRestored) {
  Start();
  SendSpeed(1600);
  Open();
  ASSERT_EQ(Table().rowCount(), 1);
  Click(Window(), u"restore"_s);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Safe().windowTitle(), u"Wiederherstellen"_s);
  EXPECT_EQ(Text(u"sentence"_s),
            u"1 von 6 Werten der Sicherung ist verschieden; er wird in den Regler geschrieben."_s);
  EXPECT_EQ(Rows(), QStringList{u"x|1|Drehzahl|160.0|150.0|1/m|verschieden"_s});
  EXPECT_EQ(Button(u"doIt"_s).text(), u"1 Wert &wiederherstellen"_s);
  now = now.addSecs(60);
  Press(Qt::Key_Return);
  EXPECT_EQ(far->memory.Word(kSpeed), 1500);
  EXPECT_EQ(Text(u"sentence"_s), u"1 geprüft"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1600) << "the PC keeps its value";
  EXPECT_EQ(Table().rowCount(), 2) << "what was there before the restoring is a backup too";
}

TEST_F(BackupsTest, OfAnotherVersionCannotBeRestored) {
  Start();
  SendSpeed(1600);
  desktop->guard([&] { desktop->module.VersionList.Select(1); });
  Open();
  Click(Window(), u"restore"_s);
  EXPECT_EQ(Box(), u"Andere ReglerVersion: AB1-123.4\r\nAusgewählt ist AB1-012.0."_s);
  EXPECT_FALSE(IsOpen());
}

TEST_F(BackupsTest, TidiesUpOnlyWhenItIsConfirmed) {
  Start();
  now = QDateTime(QDate(2026, 9, 1), QTime(10, 0));
  SendSpeed(1600);
  now = now.addDays(1);
  SendSpeed(1700);
  now = QDateTime(QDate(2026, 11, 12), QTime(16, 40));
  SendSpeed(1800);
  Open();
  ASSERT_EQ(Table().rowCount(), 3);
  box.answers = {false, true};
  Click(Window(), u"tidy"_s);
  ASSERT_EQ(box.asked.size(), 1U);
  EXPECT_EQ(box.asked[0].text,
            u"1 von 3 Sicherungen wird gelöscht.\r\n"
            "Alle der letzten 30 Tage bleiben, und aus jedem Monat davor die letzte jedes Reglers."_s);
  EXPECT_EQ(box.asked[0].action, u"Löschen"_s);
  EXPECT_EQ(Backups().size(), 3);
  Click(Window(), u"tidy"_s);
  EXPECT_EQ(Backups().size(), 2);
  EXPECT_EQ(Table().rowCount(), 2);
  Click(Window(), u"tidy"_s);
  EXPECT_TRUE(Box().startsWith(u"Es gibt nichts aufzuräumen."_s));
}

// --- an unfinished sending ---

class UnfinishedTest : public SafeTest {
 protected:
  [[nodiscard]] bool Asks() { return desktop->unfinished && desktop->unfinished->isVisible(); }
  [[nodiscard]] QString Sentence() { return In<QLabel>(*desktop->unfinished, u"sentence"_s).text(); }
  void Answer(const QString& button) { Click(*desktop->unfinished, button); }
};

TEST_F(UnfinishedTest, NothingIsOfferedWithoutOne) {
  StartAgain();
  EXPECT_FALSE(Asks());
  EXPECT_EQ(OfferedSending(), QString());
}

TEST_F(UnfinishedTest, IsOfferedAtTheNextStartAndFinished) {
  LeaveUnfinished();
  StartAgain();
  ASSERT_TRUE(Asks());
  EXPECT_TRUE(desktop->unfinished->isModal());
  EXPECT_TRUE(
      Sentence().startsWith(u"Eine Sendung an den Regler wurde unterbrochen: 1 von 2 Werten geschrieben."_s))
      << Sentence().toStdString();
  EXPECT_TRUE(Sentence().contains(u"Regler: AB1-123.4"_s));
  EXPECT_TRUE(Sentence().contains(u"Begonnen: 12.11.2026 16:40"_s));
  EXPECT_EQ(OfferedSending(), u"&Unterbrochene Sendung: 1 von 2 Werten geschrieben"_s);
  QTest::keyClick(desktop->unfinished.get(), Qt::Key_Return);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Rows(), QStringList{u"x|4|Solltemperatur|20.0|30.0|20.0|°C|verschieden"_s});
  Press(Qt::Key_Return);
  EXPECT_EQ(far->memory.Word(kSpeed), 1600);
  EXPECT_EQ(far->memory.Word(kTarget), 300);
  EXPECT_EQ(OfferedSending(), QString());
  Crash();
  StartAgain();
  EXPECT_FALSE(Asks());
}

TEST_F(UnfinishedTest, IsTakenBack) {
  LeaveUnfinished();
  StartAgain();
  Answer(u"takeBack"_s);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Rows(), QStringList{u"x|1|Drehzahl|160.0|150.0|1/m|verschieden"_s});
  Press(Qt::Key_Return);
  EXPECT_EQ(far->memory.Word(kSpeed), 1500);
  EXPECT_EQ(far->memory.Word(kTarget), 200);
  EXPECT_EQ(OfferedSending(), QString());
}

TEST_F(UnfinishedTest, IsForgottenOnlyWhenConfirmed) {
  LeaveUnfinished();
  StartAgain();
  box.answers = {false, true};
  Answer(u"forget"_s);
  EXPECT_NE(OfferedSending(), QString());
  Trigger(u"mnuWerkzeugeUnterbrochen"_s);
  ASSERT_TRUE(Asks());
  Answer(u"forget"_s);
  EXPECT_EQ(OfferedSending(), QString());
  EXPECT_EQ(Backups().size(), 1) << "the backup stays";
  Crash();
  StartAgain();
  EXPECT_FALSE(Asks());
}

TEST_F(UnfinishedTest, StaysUntilTheUserHasDecided) {
  LeaveUnfinished();
  StartAgain();
  QTest::keyClick(desktop->unfinished.get(), Qt::Key_Escape);
  EXPECT_FALSE(Asks());
  EXPECT_NE(OfferedSending(), QString());
  Edit(6, 5000);
  Send();
  ASSERT_TRUE(IsOpen());
  Press(Qt::Key_Return);
  EXPECT_NE(OfferedSending(), QString()) << "another sending does not take its place";
  Crash();
  StartAgain();
  EXPECT_TRUE(Asks());
}

TEST_F(UnfinishedTest, WhatTheControllerHoldsAlreadyIsNoLongerOffered) {
  LeaveUnfinished();
  far->memory.SetWord(kTarget, 300);
  StartAgain();
  Answer(u"finish"_s);
  EXPECT_EQ(Box(), u"Nichts zu senden: Alle 2 Werte sind gleich."_s);
  EXPECT_EQ(OfferedSending(), QString());
}

TEST_F(UnfinishedTest, OfAnotherVersionThatIsSelected) {
  LeaveUnfinished();
  StartAgain();
  QTest::keyClick(desktop->unfinished.get(), Qt::Key_Escape);
  desktop->guard([&] { desktop->module.VersionList.Select(1); });
  EXPECT_EQ(OfferedSending(), u"&Unterbrochene Sendung: AB1-123.4"_s);
  Trigger(u"mnuWerkzeugeUnterbrochen"_s);
  EXPECT_TRUE(Sentence().contains(u"Version und Anlageart der Sendung werden dafür gewählt"_s));
  Answer(u"finish"_s);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(desktop->module.VersionList.SelectedText(), u"AB1-123.4"_s);
}

TEST_F(UnfinishedTest, AnotherAddressIsPointedOut) {
  LeaveUnfinished();
  settings.values[u"Adresse"_s] = u"5"_s;
  StartAgain();
  desktop->module.Adresse = 5;
  desktop->guard([this] { desktop->ShowUnfinished(); });
  EXPECT_TRUE(Sentence().contains(u"Eingestellt ist jetzt die Adresse 5"_s));
}

TEST_F(UnfinishedTest, AnotherProgramsIsNotOffered) {
  LeaveUnfinished();
  safe.take = [](const QString&) { return false; };
  StartAgain();
  EXPECT_FALSE(Asks());
  EXPECT_EQ(OfferedSending(), QString());
}

// --- all windows ---

TEST_F(BackupsTest, TheWindowsCanBeReadAloudAndHaveTheirPages) {
  LeaveUnfinished();
  StartAgain();
  Open();
  QTest::keyClick(desktop->unfinished.get(), Qt::Key_F1);
  QTest::keyClick(&Window(), Qt::Key_F1);
  Click(*desktop->unfinished, u"finish"_s);
  ASSERT_TRUE(IsOpen());
  QTest::keyClick(&View(), Qt::Key_F1);
  EXPECT_EQ(help.pages,
            (QStringList{u"sichersenden#unterbrochen"_s, u"sichersenden#sicherungen"_s, u"sichersenden"_s}));
  EXPECT_EQ(ui::ManualPageOf(Safe().Progress()), u"sichersenden"_s);
  for (QWidget* window : std::initializer_list<QWidget*>{&Safe(), &Window(), desktop->unfinished.get()}) {
    EXPECT_FALSE(window->windowTitle().isEmpty());
    for (const QPushButton* button : window->findChildren<QPushButton*>()) {
      EXPECT_FALSE(button->objectName().isEmpty());
      EXPECT_TRUE(button->isHidden() || !button->text().isEmpty()) << button->objectName().toStdString();
    }
    for (const QTableView* table : window->findChildren<QTableView*>())
      EXPECT_FALSE(table->accessibleName().isEmpty());
    for (const QLineEdit* edit : window->findChildren<QLineEdit*>())
      EXPECT_FALSE(edit->accessibleName().isEmpty());
  }
  const QModelIndex cell = Model().index(0, static_cast<int>(SafeColumn::New));
  EXPECT_EQ(cell.data(Qt::AccessibleDescriptionRole), u"Sendung (neu), Solltemperatur"_s);
}

}  // namespace
}  // namespace kalivor::test
