#include "gui/GuiFixture.h"

namespace kalivor::test {

SimulatedController::SimulatedController(platform::FileSystem& files, const QString& folder,
                                         const QString& version) {
  definitions.Inipath = folder;
  EXPECT_EQ(sim::LoadDefinitions(definitions, files, version), QString());
  memory.LoadStandards(definitions);
  controller = std::make_unique<sim::Controller>(memory, 1, definitions.SelectedVersion().Kennung,
                                                 *sim::VersionPayload(version));
  model = std::make_unique<sim::LineModel>(*controller, faults);
}

void AddDefinitions(FakeFileSystem& files) {
  const QString plantNumber = u"NoRubrik  Anlagenart  0  9  0  -  0  0  int  1E00  ANL  -  -\r\n"_s;
  const QString parameters =
      u"Antrieb  Drehzahl  0  30000  1500  1/m  1  0  int  1F00  n  A B  Drehzahl des Motors\\in 1/m\r\n"
      "Antrieb  Druck  0  99990  1000  mbar  1  1  long  1F02  p  A  -\r\n"
      "Antrieb  Name  0  0  Anna  -  0  0  string8  1F10  name  A B  Name des\\Antriebs\r\n"
      "Heizung  Solltemperatur  -100  1000  200  °C  1  0  int  1F20  soll  A B  -\r\n"
      "Heizung  Zähler  0  120  17  -  0  0  char  1F23  z  B  -\r\n"
      "Heizung  Vorlauf & Rücklauf  0  100000  1234  -  2  0  long  1F24  vr  A B  -\r\n"
      "Kurz  Kennwort  0  20  5  -  0  0  str20  1F30  k  A B  -\r\n"_s;
  files.AddText(kFolder + u"VF.INI"_s,
                u"Version  Adressen  Definitionen  Anlagen  Kennung\r\n"
                "AB1-123.4  -  EINS.TXT  A B -  WR\r\n"
                "AB1-012.0  -  ZWEI.TXT  A B -  WR\r\n"
                "LFT-020.5  -  DREI.TXT  -  WR\r\n"_s);
  files.AddText(kFolder + u"/EINS.TXT"_s, u"Kopf\r\n"_s + plantNumber + parameters);
  files.AddText(kFolder + u"/ZWEI.TXT"_s,
                u"Kopf\r\n"_s + plantNumber + parameters +
                    u"Zusatz  Neu  0  100  7  s  0  0  int  1F60  neu  A B  -\r\n"_s);
  files.AddText(kFolder + u"/DREI.TXT"_s, u"Kopf\r\n"_s + parameters);
}

GuiTest::GuiTest() {
  AddDefinitions(files);
  settings.values[u"Inipath"_s] = kFolder;
  UseController(u"AB1-123.4"_s);
}

GuiTest::~GuiTest() {
  desktop.reset();
  line.reset();
}

void GuiTest::UseController(const QString& version) {
  desktop.reset();
  line.reset();
  far = std::make_unique<SimulatedController>(files, kFolder, version);
  line = std::make_unique<sim::SimulatedLine>(clock, *far->model);
}

ui::World GuiTest::World() {
  return {settings,
          box,
          files,
          otherLine != nullptr ? *otherLine : *line,
          clock,
          events,
          u"/programm"_s,
          {},
          [this](const QString& text) {
            if (onPrint) onPrint();
            printed.append(text);
          },
          dialogs,
          help,
          ports,
          {},
          u"/einstellungen/Auswahlen.json"_s,
          recovery,
          {},
          {},
          safe,
          computer,
          historyStore,
          {}};
}

void GuiTest::Load(const RunSettings& run) {
  desktop = std::make_unique<ui::Desktop>(World(), run);
}

void GuiTest::Start(const RunSettings& run) {
  Load(run);
  desktop->Start();
  desktop->main.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&desktop->main));
  files.reads.clear();
}

void GuiTest::Click(QWidget& window, const QString& button) {
  QTest::mouseClick(&In<QPushButton>(window, button), Qt::LeftButton);
}

QString GuiTest::State() {
  return Main<QLabel>(u"state"_s).text();
}

QString GuiTest::ReportText() {
  QCoreApplication::sendPostedEvents(&desktop->reportDialog, QEvent::User);
  return In<QPlainTextEdit>(desktop->reportDialog, u"TextBox"_s).toPlainText();
}

int GuiTest::Node(const QString& key) {
  for (int node = 1; node <= Tree().Count(); ++node) {
    if (Tree().Key(node) == key) return node;
  }
  return 0;
}

void GuiTest::GoTo(const QString& key) {
  TreeWidget().setCurrentIndex(static_cast<platform::QtTreeView&>(Tree()).Index(Node(key)));
}

void GuiTest::Toggle(const QString& key) {
  GoTo(key);
  QTest::keyClick(&TreeWidget(), Qt::Key_Space);
}

void GuiTest::Open(const QString& key) {
  GoTo(key);
  QTest::keyClick(&TreeWidget(), Qt::Key_Return);
}

void GuiTest::ExpectReady() {
  EXPECT_EQ(desktop->module.BusyDepth, 0);
  EXPECT_EQ(State(), u"Ready"_s);
  EXPECT_TRUE(desktop->main.isEnabled());
  EXPECT_TRUE(desktop->editors.number.isEnabled());
  EXPECT_TRUE(desktop->editors.text.isEnabled());
  EXPECT_FALSE(TreeWidget().isHidden());
  EXPECT_TRUE(In<QPushButton>(desktop->reportDialog, u"OKButton"_s).isEnabled());
  EXPECT_FALSE(In<QPushButton>(desktop->reportDialog, u"Command_Abbruch"_s).isEnabled());
  EXPECT_EQ(desktop->module.Abbruch, kFalse);
}

}  // namespace kalivor::test
