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
  SimulatedController(platform::FileSystem& files, const QString& folder, const QString& version);

  Module1 definitions;
  sim::Memory memory;
  sim::Faults faults;
  std::unique_ptr<sim::Controller> controller;
  std::unique_ptr<sim::LineModel> model;
};

inline const QString kFolder = u"/def/"_s;

/// Three versions; the first and the second have two plant types, the third one.
void AddDefinitions(FakeFileSystem& files);

/// Starts with the first version; the controller is of the same. A box that the test does not take fails it.
class GuiTest : public testing::Test {
 public:
  ~GuiTest() override;

 protected:
  GuiTest();

  /// The controller to be found by the next Start().
  void UseController(const QString& version);

  [[nodiscard]] ui::World World();
  void Load(const RunSettings& run = {});
  void Start(const RunSettings& run = {});

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

  void Click(QWidget& window, const QString& button);

  [[nodiscard]] QString State();
  /// As the user sees it once the program lets the window paint.
  [[nodiscard]] QString ReportText();
  [[nodiscard]] QStringList ReportLines() { return ReportText().trimmed().split(u'\n'); }

  [[nodiscard]] platform::TreeView& Tree() { return desktop->main.Tree(); }
  /// The number of the node whose key is `key`, 0 when there is none.
  [[nodiscard]] int Node(const QString& key);
  [[nodiscard]] QTreeView& TreeWidget() { return Main<QTreeView>(u"TreeView"_s); }
  /// Makes a node the current one, as the user does with the arrow keys.
  void GoTo(const QString& key);
  /// Space on a node.
  void Toggle(const QString& key);
  /// Enter on a node.
  void Open(const QString& key);

  /// Idle: everything that an operation changes is as before.
  void ExpectReady();

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
  platform::SerialControl* otherLine = nullptr;  ///< in place of `line`
  std::unique_ptr<ui::Desktop> desktop;
};

}  // namespace kalivor::test
