// The window "Verbindung": the live list of ports, the search, what is taken over, and numbers that are
// bound.
#include "ui/line/ConnectionWindow.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableView>
#include <QTableWidget>

#include "fakes/LinesByDevice.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

using platform::PortEntry;
using platform::PortState;
using ui::PortModel;

PortEntry Adapter(int number, const QString& device, const QString& serialNumber) {
  PortEntry entry{number, device, u"Hersteller Adapter"_s, serialNumber, u"Buchse 1"_s};
  entry.bySerialNumber = u"usb:0403:6001:"_s + serialNumber + u":0"_s;
  entry.byPlace = u"ort:1-1:1.0"_s;
  return entry;
}

/// The controller is at the second of three ports.
class ConnectionTest : public GuiTest {
 public:
  ~ConnectionTest() override { desktop.reset(); }

 protected:
  LinesByDevice lines{ports};

  ConnectionTest() {
    ports.entries = {PortEntry{1, u"/dev/ttyS0"_s}, Adapter(2, u"/dev/ttyUSB0"_s, u"A1"_s),
                     Adapter(3, u"/dev/ttyUSB1"_s, u"A2"_s)};
    lines.lines[u"/dev/ttyUSB0"_s] = line.get();
    otherLine = &lines;
  }

  void StartHere() {
    Load();
    desktop->Start();
    TakeBoxes();
    desktop->main.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&desktop->main));
  }
  void TakeBoxes() { (void)box.Take(); }

  void Open() {
    StartHere();
    Main<QAction>(u"mnuWerkzeugeVerbindung"_s).trigger();
    ASSERT_NE(desktop->connection, nullptr);
  }
  ui::ConnectionWindow& Window() { return *desktop->connection; }
  QTableView& Ports() { return In<QTableView>(Window(), u"ports"_s); }
  QTableWidget& Answers() { return In<QTableWidget>(Window(), u"answers"_s); }
  QString Label(const QString& name) { return In<QLabel>(Window(), name).text(); }
  QString Findings() { return In<QPlainTextEdit>(Window(), u"findings"_s).toPlainText(); }
  QString Cell(int row, int column) { return Ports().model()->index(row, column).data().toString(); }
  QStringList Devices() {
    QStringList devices;
    for (int row = 0; row < Ports().model()->rowCount(); ++row)
      devices << Cell(row, PortModel::Device);
    return devices;
  }
  bool Marked(int row) {
    return Ports().model()->index(row, PortModel::Mark).data(Qt::CheckStateRole).value<Qt::CheckState>() ==
           Qt::Checked;
  }
  void Mark(int row, bool marked) {
    Ports().model()->setData(Ports().model()->index(row, PortModel::Mark),
                             marked ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
  }
  void GoToPort(int row) { Ports().setCurrentIndex(Ports().model()->index(row, PortModel::Device)); }
  QStringList AnswerRow(int row) {
    QStringList texts;
    for (int column = 0; column < Answers().columnCount(); ++column)
      texts << Answers().item(row, column)->text();
    return texts;
  }
  void Search() { Click(Window(), u"find"_s); }
  ui::BindingDialog& Binding() { return Window().Binding(); }
  void Choose(const QString& button) { In<QRadioButton>(Binding(), button).setChecked(true); }
};

TEST_F(ConnectionTest, ShowsThePortsWithTheirStates) {
  ports.entries[0].state = PortState::InUse;
  ports.entries[0].remark = u"Das Programm minicom hat sie geöffnet."_s;
  Open();
  EXPECT_TRUE(Window().isVisible());
  EXPECT_EQ(Window().windowTitle(), u"Verbindung"_s);
  EXPECT_EQ(Devices(), QStringList({u"/dev/ttyS0"_s, u"/dev/ttyUSB0"_s, u"/dev/ttyUSB1"_s}));
  EXPECT_EQ(Cell(1, PortModel::Number), u"COM2"_s);
  EXPECT_EQ(Cell(1, PortModel::Description), u"Hersteller Adapter"_s);
  EXPECT_EQ(Cell(1, PortModel::SerialNumber), u"A1"_s);
  EXPECT_EQ(Cell(1, PortModel::Place), u"Buchse 1"_s);
  EXPECT_EQ(Cell(0, PortModel::State), u"belegt"_s);
  EXPECT_EQ(Cell(1, PortModel::State), u"frei"_s);
  EXPECT_EQ(Label(u"remark"_s), u"COM1 (/dev/ttyS0): belegt. Das Programm minicom hat sie geöffnet."_s);
  EXPECT_EQ(Ports().model()->index(0, PortModel::State).data(Qt::ToolTipRole).toString(),
            u"belegt: Das Programm minicom hat sie geöffnet."_s);
  GoToPort(1);
  EXPECT_EQ(Label(u"remark"_s), u"COM2 (/dev/ttyUSB0): frei"_s);
  EXPECT_EQ(Window().focusWidget(), &Ports());
}

TEST_F(ConnectionTest, PluggingShowsWithinASecondAndLosesNothing) {
  Open();
  GoToPort(1);
  Mark(2, false);
  ports.entries.prepend(PortEntry{0, u"/dev/ttyACM0"_s});
  ASSERT_TRUE(QTest::qWaitFor([this] { return Devices().size() == 4; }, 1000));
  EXPECT_EQ(Devices().first(), u"/dev/ttyACM0"_s);
  EXPECT_EQ(Cell(Ports().currentIndex().row(), PortModel::Device), u"/dev/ttyUSB0"_s);
  EXPECT_EQ(Ports().selectionModel()->selectedRows().size(), 1);
  EXPECT_TRUE(Marked(0)) << "what is plugged in is to be searched";
  EXPECT_FALSE(Marked(3));
  EXPECT_EQ(Cell(0, PortModel::Number), u"–"_s);

  ports.entries.removeAt(0);
  ports.entries[1].state = PortState::Missing;
  ASSERT_TRUE(QTest::qWaitFor(
      [this] { return Devices().size() == 3 && Cell(1, PortModel::State) == u"fehlt"; }, 1000));
  EXPECT_FALSE(Marked(1));
  EXPECT_FALSE(Ports().model()->flags(Ports().model()->index(1, PortModel::Mark)) & Qt::ItemIsUserCheckable);
}

TEST_F(ConnectionTest, TheListRestsWhileTheWindowIsHidden) {
  Open();
  QTest::keyClick(&Window(), Qt::Key_Escape);
  EXPECT_FALSE(Window().isVisible());
  ports.entries.clear();
  QTest::qWait(700);
  EXPECT_EQ(Devices().size(), 3);
  Main<QAction>(u"mnuWerkzeugeVerbindung"_s).trigger();
  EXPECT_EQ(Devices().size(), 0);
}

TEST_F(ConnectionTest, WithoutAPortItSaysWhatToDo) {
  ports.entries.clear();
  Open();
  EXPECT_TRUE(Label(u"summary"_s).startsWith(u"Es ist keine serielle Schnittstelle da."_s));
  EXPECT_FALSE(In<QPushButton>(Window(), u"find"_s).isEnabled());
  EXPECT_TRUE(In<QPushButton>(Window(), u"assign"_s).isEnabled()) << "a network line needs none";
}

TEST_F(ConnectionTest, SpaceMarks) {
  Open();
  GoToPort(0);
  QTest::keyClick(&Ports(), Qt::Key_Space);
  EXPECT_FALSE(Marked(0));
  QTest::keyClick(&Ports(), Qt::Key_Space);
  EXPECT_TRUE(Marked(0));
}

TEST_F(ConnectionTest, FindsTheControllerAndSaysWhatTheOthersDid) {
  far->memory.SetWord(0x1E00, 1);
  Open();
  const auto position = desktop->module.VersionList.Position();
  Search();
  ASSERT_EQ(Answers().rowCount(), 1);
  EXPECT_EQ(AnswerRow(0), QStringList({u"COM2 (/dev/ttyUSB0)"_s, u"9600"_s, u"1"_s, u"AB1-123.4"_s,
                                       u"bekannt"_s, u"nein"_s, u"0"_s, u"A (1)"_s}));
  EXPECT_EQ(Label(u"result"_s), u"1 Regler gefunden."_s);
  EXPECT_TRUE(Findings().contains(u"COM1 (/dev/ttyS0): Die Schnittstelle ließ sich nicht öffnen."_s));
  EXPECT_TRUE(Findings().contains(u"COM3 (/dev/ttyUSB1): "_s));
  EXPECT_FALSE(Findings().contains(u"COM2"_s));
  EXPECT_EQ(desktop->module.Schnittstelle, 1) << "nothing is changed by itself";
  EXPECT_EQ(desktop->module.VersionList.Position(), position);
  EXPECT_FALSE(desktop->connection->Progress().isVisible());
  EXPECT_TRUE(Window().isEnabled());
  ExpectReady();
}

TEST_F(ConnectionTest, OnlyTheMarkedPortsAreAsked) {
  Open();
  Mark(0, false);
  Mark(2, false);
  lines.opened.clear();
  Search();
  for (const QString& opened : lines.opened)
    EXPECT_TRUE(opened.startsWith(u"/dev/ttyUSB0 "_s)) << opened.toStdString();
  EXPECT_FALSE(In<QPlainTextEdit>(Window(), u"findings"_s).isVisible());
  Mark(1, false);
  EXPECT_FALSE(In<QPushButton>(Window(), u"find"_s).isEnabled());
}

TEST_F(ConnectionTest, AsksEveryAddressIfWanted) {
  Open();
  Mark(0, false);
  Mark(2, false);
  far->faults.Add({});
  lines.opened.clear();
  Search();
  EXPECT_EQ(lines.opened.size(), 2);
  EXPECT_EQ(Label(u"result"_s), u"Kein Regler gefunden."_s);
  EXPECT_FALSE(Answers().isVisible());
  In<QCheckBox>(Window(), u"everyAddress"_s).setChecked(true);
  lines.opened.clear();
  Search();
  EXPECT_EQ(lines.opened.size(), 512);
  EXPECT_TRUE(Findings().contains(u"unter keiner Adresse"_s));
}

TEST_F(ConnectionTest, TheSearchShowsItsProgressAndCanBeAborted) {
  Open();
  far->faults.Add({});
  In<QCheckBox>(Window(), u"everyAddress"_s).setChecked(true);
  Mark(0, false);
  Mark(2, false);
  bool windowTookInput = false;
  int looks = 0;
  lines.opened.clear();
  events.onPending = [&] {
    if (lines.opened.size() < 20) return;
    windowTookInput = windowTookInput || Window().isEnabled();
    ++looks;
    auto& progress = desktop->connection->Progress();
    EXPECT_TRUE(progress.isVisible());
    EXPECT_EQ(progress.windowTitle(), u"Regler suchen"_s);
    EXPECT_TRUE(In<QLabel>(progress, u"count"_s).text().endsWith(u" von 512"_s));
    Click(progress, u"Command_Abbruch"_s);
  };
  Search();
  events.onPending = nullptr;
  EXPECT_GT(looks, 0);
  EXPECT_FALSE(windowTookInput);
  EXPECT_LE(lines.opened.size(), 22);
  EXPECT_EQ(Label(u"result"_s), u"Kein Regler gefunden. Die Suche wurde abgebrochen."_s);
  ExpectReady();
}

TEST_F(ConnectionTest, TakesOverPortAndAddressWhenTheUserWantsIt) {
  far->controller = std::make_unique<sim::Controller>(
      far->memory, 7, far->definitions.SelectedVersion().Kennung, *sim::VersionPayload(u"AB1-123.4"_s));
  desktop.reset();
  far->model = std::make_unique<sim::LineModel>(*far->controller, far->faults);
  line = std::make_unique<sim::SimulatedLine>(clock, *far->model);
  lines.lines[u"/dev/ttyUSB0"_s] = line.get();
  settings.values[u"Adresse"_s] = u"7"_s;
  Open();
  EXPECT_FALSE(In<QPushButton>(Window(), u"takeOver"_s).isEnabled());
  desktop->module.Adresse = 3;
  In<QCheckBox>(Window(), u"everyAddress"_s).setChecked(true);
  Mark(0, false);
  Mark(2, false);
  Search();
  ASSERT_EQ(Answers().rowCount(), 1);
  EXPECT_EQ(desktop->module.Adresse, 3);
  Click(Window(), u"takeOver"_s);
  EXPECT_EQ(desktop->module.Adresse, 7);
  EXPECT_EQ(desktop->module.Schnittstelle, 2);
  EXPECT_EQ(desktop->wiring.host.Ports[kSlot].PortNr, 2);
  EXPECT_EQ(desktop->wiring.host.Ports[kSlot].Adr, 7);
  EXPECT_EQ(Label(u"result"_s), u"Übernommen: COM2, Geräteadresse 7."_s);
  desktop->main.close();
  EXPECT_EQ(settings.values.value(u"Schnittstelle"_s), u"2"_s);
  EXPECT_EQ(settings.values.value(u"Adresse"_s), u"7"_s);
}

TEST_F(ConnectionTest, ADeviceWithoutANumberGetsTheOneThatTheUserChooses) {
  ports.entries = {PortEntry{1, u"/dev/ttyS0"_s}, Adapter(0, u"/dev/ttyUSB0"_s, u"A1"_s)};
  Open();
  Search();
  ASSERT_EQ(Answers().rowCount(), 1);
  Click(Window(), u"takeOver"_s);
  ASSERT_TRUE(Binding().isVisible());
  EXPECT_EQ(desktop->module.Schnittstelle, 1);
  EXPECT_TRUE(In<QLabel>(Binding(), u"reason"_s).text().startsWith(u"/dev/ttyUSB0 hat noch keine Nummer."_s));
  EXPECT_EQ(In<QComboBox>(Binding(), u"number"_s).currentText(), u"COM2"_s);
  EXPECT_TRUE(In<QRadioButton>(Binding(), u"bySerialNumber"_s).isChecked());
  Choose(u"counted"_s);
  Click(Binding(), u"OKButton"_s);
  EXPECT_TRUE(Binding().isVisible());
  EXPECT_FALSE(In<QLabel>(Binding(), u"fault"_s).text().isEmpty());
  Choose(u"bySerialNumber"_s);
  In<QComboBox>(Binding(), u"number"_s).setCurrentIndex(4);
  Click(Binding(), u"OKButton"_s);
  EXPECT_FALSE(Binding().isVisible());
  EXPECT_EQ(ports.Binding(5), u"usb:0403:6001:A1:0"_s);
  EXPECT_EQ(settings.values.value(u"Ports/COM5"_s), u"usb:0403:6001:A1:0"_s);
  EXPECT_EQ(desktop->module.Schnittstelle, 5);
}

TEST_F(ConnectionTest, BindsANumberToADeviceByWhatStays) {
  Open();
  GoToPort(2);
  Click(Window(), u"assign"_s);
  ASSERT_TRUE(Binding().isVisible());
  EXPECT_EQ(In<QComboBox>(Binding(), u"number"_s).currentText(), u"COM3"_s);
  EXPECT_EQ(In<QLabel>(Binding(), u"reason"_s).text(), u"Gerät: /dev/ttyUSB1 Hersteller Adapter"_s);
  const QPair<QString, QString> choices[] = {{u"bySerialNumber"_s, u"usb:0403:6001:A2:0"_s},
                                             {u"byPlace"_s, u"ort:1-1:1.0"_s},
                                             {u"byPath"_s, u"/dev/ttyUSB1"_s},
                                             {u"counted"_s, QString()}};
  for (const auto& [button, binding] : choices) {
    if (!Binding().isVisible()) Click(Window(), u"assign"_s);
    Choose(button);
    Click(Binding(), u"OKButton"_s);
    EXPECT_FALSE(Binding().isVisible());
    EXPECT_EQ(ports.Binding(3), binding);
    EXPECT_EQ(settings.values.value(u"Ports/COM3"_s), binding);
  }
}

TEST_F(ConnectionTest, ProposesWhatIsBoundOrElseWhatStays) {
  ports.Bind(2, u"ort:1-1:1.0"_s);
  ports.Bind(3, u"/dev/ttyUSB1"_s);
  Open();
  const QPair<int, QString> proposals[] = {{0, u"byPath"_s}, {1, u"byPlace"_s}, {2, u"byPath"_s}};
  for (const auto& [row, button] : proposals) {
    GoToPort(row);
    Click(Window(), u"assign"_s);
    EXPECT_TRUE(In<QRadioButton>(Binding(), button).isChecked()) << row;
    Click(Binding(), u"CancelButton"_s);
  }
  ports.Bind(3, {});
  Click(Window(), u"assign"_s);
  EXPECT_TRUE(In<QRadioButton>(Binding(), u"bySerialNumber"_s).isChecked());
  EXPECT_EQ(In<QLabel>(Binding(), u"now"_s).text(), u"Bisher: /dev/ttyUSB1, wie das System zählt"_s);
  In<QComboBox>(Binding(), u"number"_s).setCurrentIndex(7);
  EXPECT_EQ(In<QLabel>(Binding(), u"now"_s).text(), u"Bisher: nichts"_s);
}

TEST_F(ConnectionTest, BindsANumberToANetworkAddress) {
  ports.entries.clear();
  Open();
  Click(Window(), u"assign"_s);
  ASSERT_TRUE(Binding().isVisible());
  for (const QString& button : {u"bySerialNumber"_s, u"byPlace"_s, u"byPath"_s})
    EXPECT_FALSE(In<QRadioButton>(Binding(), button).isEnabled()) << button.toStdString();
  auto& address = In<QLineEdit>(Binding(), u"address"_s);
  for (const QString& bad :
       {u"socket://"_s, u"192.0.2.7:4001"_s, u"socket://host:99999"_s, u"/dev/ttyUSB0"_s}) {
    address.clear();
    QTest::keyClicks(&address, bad);
    EXPECT_TRUE(In<QRadioButton>(Binding(), u"network"_s).isChecked());
    Click(Binding(), u"OKButton"_s);
    EXPECT_TRUE(Binding().isVisible()) << bad.toStdString();
    EXPECT_FALSE(In<QLabel>(Binding(), u"fault"_s).text().isEmpty()) << bad.toStdString();
    EXPECT_EQ(ports.Binding(1), QString());
  }
  address.clear();
  QTest::keyClicks(&address, u"socket://192.0.2.7:4001"_s);
  QTest::keyClick(&address, Qt::Key_Return);
  EXPECT_FALSE(Binding().isVisible());
  EXPECT_EQ(ports.Binding(1), u"socket://192.0.2.7:4001"_s);
}

TEST_F(ConnectionTest, WhatCannotBeStoredIsSaid) {
  Open();
  settings.failure = u"Die Einstellungen sind nicht zu schreiben."_s;
  GoToPort(1);
  Click(Window(), u"assign"_s);
  Click(Binding(), u"OKButton"_s);
  EXPECT_TRUE(Binding().isVisible());
  EXPECT_EQ(In<QLabel>(Binding(), u"fault"_s).text(), settings.failure);
  settings.failure.clear();
}

TEST_F(ConnectionTest, CancellingBindsNothing) {
  Open();
  GoToPort(1);
  Click(Window(), u"assign"_s);
  QTest::keyClick(&Binding(), Qt::Key_Escape);
  EXPECT_FALSE(Binding().isVisible());
  EXPECT_TRUE(Window().isVisible());
  EXPECT_EQ(ports.Binding(2), QString());
}

TEST_F(ConnectionTest, DoesNothingWhileAnOperationIsUnderWay) {
  StartHere();
  const BusyGuard busy(desktop->core);
  Main<QAction>(u"mnuWerkzeugeVerbindung"_s).trigger();
  EXPECT_EQ(desktop->connection, nullptr);
}

TEST_F(ConnectionTest, KeepsItsColumns) {
  Open();
  Ports().horizontalHeader()->moveSection(6, 1);
  Answers().horizontalHeader()->resizeSection(0, 321);
  Window().close();
  desktop.reset();
  Open();
  EXPECT_EQ(Ports().horizontalHeader()->visualIndex(6), 1);
  EXPECT_NEAR(Answers().horizontalHeader()->sectionSize(0), 321, 1);
  EXPECT_TRUE(settings.values.contains(u"VerbindungPlatz"_s));
}

TEST_F(ConnectionTest, EveryControlHasANameAndF1ItsPage) {
  Open();
  EXPECT_EQ(Ports().accessibleName(), u"Schnittstellen"_s);
  EXPECT_EQ(Answers().accessibleName(), u"Antworten"_s);
  EXPECT_EQ(In<QPlainTextEdit>(Window(), u"findings"_s).accessibleName(), u"Befunde"_s);
  EXPECT_EQ(Ports().model()->index(0, PortModel::Mark).data(Qt::AccessibleTextRole).toString(),
            u"angekreuzt"_s);
  EXPECT_EQ(ui::ManualPageOf(Ports()), u"verbindung"_s);
  EXPECT_EQ(ui::ManualPageOf(desktop->connection->Progress()), u"verbindung"_s);
  EXPECT_EQ(ui::ManualPageOf(Binding()), u"verbindung#binden"_s);
}

}  // namespace
}  // namespace kalivor::test
