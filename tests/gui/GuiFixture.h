// The whole desktop program with real windows, on files in memory and a simulated controller in virtual time.
#pragma once

#include <gtest/gtest.h>
#include <QApplication>
#include <QLabel>
#include <QMap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <functional>
#include <memory>

#include "core/Busy.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFileDialogs.h"
#include "fakes/FakeFileSystem.h"
#include "fakes/FakeForms.h"
#include "fakes/FakeHelp.h"
#include "fakes/FakePortDirectory.h"
#include "fakes/QtPrinters.h"
#include "platform/qt/QtEvents.h"
#include "sim/Controller.h"
#include "sim/SimulatedLine.h"
#include "sim/Station.h"
#include "ui/main/Desktop.h"

namespace kalivor::test {

using namespace Qt::StringLiterals;

class MemorySettings final : public platform::SettingsStore {
 public:
  QMap<QString, QString> values;  ///< by key; those of another section than "Settings" by "section/key"

  [[nodiscard]] QString Get(const QString& section, const QString& key,
                            const QString& fallback) const override {
    return values.value(Place(section, key), fallback);
  }
  void Save(const QString& section, const QString& key, const QString& value) override {
    values[Place(section, key)] = value;
  }
  QString failure;  ///< why nothing can be brought to the disk
  [[nodiscard]] QString Flush() override { return failure; }

 private:
  static QString Place(const QString& section, const QString& key) {
    return section == u"Settings" ? key : section + u'/' + key;
  }
};

/// The real event queue, with a chance for the test to act at every moment at which a user could.
class TestEvents final : public platform::Events {
 public:
  std::function<void()> onPending;  ///< when a transfer lets events through
  std::function<void()> onWait;     ///< when a question waits for its answer

  std::function<void()> afterPending;  ///< when what had come until then has been delivered
  bool onePass = false;                ///< one pass through the queue instead of all that is in it

  void ProcessPending() override {
    if (onPending) onPending();
    if (onePass) {
      QCoreApplication::processEvents();
    } else {
      real_.ProcessPending();
    }
    if (afterPending) afterPending();
  }
  void WaitForNext() override {
    if (!onWait) {
      ADD_FAILURE() << "waits for an answer that no test gives";
      throw RuntimeError(RuntimeError::Kind::MissingObject);
    }
    onWait();
    QCoreApplication::processEvents();
  }

 private:
  platform::QtEvents real_;
};

/// A controller of version `version` at the other end of the line.
struct SimulatedController {
  SimulatedController(platform::FileSystem& files, const QString& folder, const QString& version) {
    definitions.Inipath = folder;
    EXPECT_EQ(sim::LoadDefinitions(definitions, files, version), QString());
    memory.LoadStandards(definitions);
    controller = std::make_unique<sim::Controller>(memory, 1, definitions.SelectedVersion().Kennung,
                                                   *sim::VersionPayload(version));
    model = std::make_unique<sim::LineModel>(*controller, faults);
  }

  Module1 definitions;
  sim::Memory memory;
  sim::Faults faults;
  std::unique_ptr<sim::Controller> controller;
  std::unique_ptr<sim::LineModel> model;
};

inline const QString kFolder = u"/def/"_s;

/// Three versions; the first and the second have two plant types, the third one.
inline void AddDefinitions(FakeFileSystem& files) {
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

/// Starts with the first version; the controller is of the same. A box that the test does not take fails it.
class GuiTest : public testing::Test {
 public:
  ~GuiTest() override {
    desktop.reset();
    line.reset();
  }

 protected:
  GuiTest() {
    AddDefinitions(files);
    settings.values[u"Inipath"_s] = kFolder;
    UseController(u"AB1-123.4"_s);
  }

  /// The controller to be found by the next Start().
  void UseController(const QString& version) {
    desktop.reset();
    line.reset();
    far = std::make_unique<SimulatedController>(files, kFolder, version);
    line = std::make_unique<sim::SimulatedLine>(clock, *far->model);
  }

  [[nodiscard]] ui::World World() {
    return {settings,
            box,
            files,
            *line,
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

  void Load(const RunSettings& run = {}) { desktop = std::make_unique<ui::Desktop>(World(), run); }

  void Start(const RunSettings& run = {}) {
    Load(run);
    desktop->Start();
    desktop->main.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&desktop->main));
    files.reads.clear();
  }

  /// The widget of that name in `window`; fails the test when there is none of that kind.
  template <typename Widget>
  Widget& In(QWidget& window, const QString& name) {
    auto* widget = window.findChild<Widget*>(name);
    if (widget == nullptr) throw std::runtime_error("no widget " + name.toStdString());
    return *widget;
  }
  template <typename Widget>
  Widget& Main(const QString& name) {
    return In<Widget>(desktop->main, name);
  }

  void Click(QWidget& window, const QString& button) {
    QTest::mouseClick(&In<QPushButton>(window, button), Qt::LeftButton);
  }

  [[nodiscard]] QString State() { return Main<QLabel>(u"state"_s).text(); }
  /// As the user sees it once the program lets the window paint.
  [[nodiscard]] QString ReportText() {
    QCoreApplication::sendPostedEvents(&desktop->reportDialog, QEvent::User);
    return In<QPlainTextEdit>(desktop->reportDialog, u"TextBox"_s).toPlainText();
  }
  [[nodiscard]] QStringList ReportLines() { return ReportText().trimmed().split(u'\n'); }

  [[nodiscard]] platform::TreeView& Tree() { return desktop->main.Tree(); }

  /// The number of the node whose key is `key`, 0 when there is none.
  [[nodiscard]] int Node(const QString& key) {
    for (int node = 1; node <= Tree().Count(); ++node) {
      if (Tree().Key(node) == key) return node;
    }
    return 0;
  }

  [[nodiscard]] QTreeView& TreeWidget() { return Main<QTreeView>(u"TreeView"_s); }

  /// Makes a node the current one, as the user does with the arrow keys.
  void GoTo(const QString& key) {
    TreeWidget().setCurrentIndex(static_cast<platform::QtTreeView&>(Tree()).Index(Node(key)));
  }

  /// Space on a node.
  void Toggle(const QString& key) {
    GoTo(key);
    QTest::keyClick(&TreeWidget(), Qt::Key_Space);
  }

  /// Enter on a node.
  void Open(const QString& key) {
    GoTo(key);
    QTest::keyClick(&TreeWidget(), Qt::Key_Return);
  }

  /// Idle: everything that an operation changes is as before.
  void ExpectReady() {
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

  FakeFileSystem files;
  MemorySettings settings;
  FakeMessageBox box;
  FakeClock clock;
  TestEvents events;
  QStringList printed;
  std::function<void()> onPrint;  ///< when a report is to be printed
  FakeFileDialogs dialogs;
  FakeHelp help;
  FakePortDirectory ports;
  RecoveryWorld recovery;                  ///< nothing is kept
  SafeWorld safe;                          ///< no journal can be kept, so nothing is written safely
  std::function<ui::Computer()> computer;  ///< nothing is known about it
  history::StoreWorld historyStore;        ///< no history can be kept
  std::unique_ptr<SimulatedController> far;
  std::unique_ptr<sim::SimulatedLine> line;
  std::unique_ptr<ui::Desktop> desktop;
};

}  // namespace kalivor::test
