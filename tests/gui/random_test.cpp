// Random events on all windows, against a faulty controller: nothing hangs, nothing stays as it must not.
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QTimer>
#include <QWindow>
#include <iostream>
#include <optional>
#include <random>

#include "base/Numbers.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

constexpr int kEvents = 20'000;
// Handlers can run inside each other: a transfer, its question, the about box. More than this is a fault.
constexpr int kDeepestNesting = 12;

class RandomEvents : public GuiTest, public testing::WithParamInterface<quint32> {
 protected:
  RandomEvents() : random_(GetParam()) {}

  int Below(int bound) { return static_cast<int>(random_() % static_cast<quint32>(bound)); }

  template <typename List>
  auto& OneOf(const List& list) {
    return list[Below(static_cast<int>(list.size()))];
  }

  void AddFaults() {
    for (const QString& fault :
         {u"silent:0.01"_s, u"lost-byte:0.01"_s, u"doubled-byte:0.01"_s, u"flipped-bit:0.01"_s,
          u"bad-checksum:0.01"_s, u"noise:0.01"_s, u"error-04:0.01"_s, u"wrong-length:0.01"_s,
          u"echo-only:0.01"_s, u"foreign-reply:0.01"_s, u"late:350:0.3"_s}) {
      const auto rule = sim::ParseFault(fault);
      ASSERT_TRUE(rule) << fault.toStdString();
      far->faults.Add(*rule);
    }
  }

  /// What is open and takes input now.
  QList<QWidget*> OpenWindows() {
    QList<QWidget*> open;
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->isVisible() && window->windowHandle() != nullptr) open.append(window);
    }
    return open;
  }

  void RandomMouse(QWidget& window) {
    QPoint point(Below(window.width()), Below(window.height()));
    // Half of the clicks go to a control, as a user's would.
    QList<QWidget*> controls;
    for (QWidget* child : window.findChildren<QWidget*>(Qt::FindChildrenRecursively)) {
      if (child->isVisible() && child->window() == &window) controls.append(child);
    }
    if (Below(2) == 0 && !controls.isEmpty()) {
      const QWidget* control = OneOf(controls);
      point = control->mapTo(&window, QPoint(Below(control->width() + 1), Below(control->height() + 1)));
    }
    ClickAt(window, point);
  }

  void ClickAt(QWidget& window, QPoint point) {
    QWindow* target = window.windowHandle();
    const QPoint global = window.mapToGlobal(point);
    qt_handleMouseEvent(target, point, global, Qt::LeftButton, Qt::LeftButton, QEvent::MouseButtonPress, {},
                        Now());
    if (!StillOpen(target)) return;
    qt_handleMouseEvent(target, point, global, Qt::NoButton, Qt::LeftButton, QEvent::MouseButtonRelease, {},
                        Now());
  }

  // The check box, the branch sign or the text of a node, as far as the node is in sight.
  void ClickTree() {
    if (Tree().Count() == 0) return;
    QTreeView& tree = TreeWidget();
    const int node = 1 + Below(Tree().Count());
    const QRect row = tree.visualRect(static_cast<platform::QtTreeView&>(Tree()).Index(node));
    if (!tree.viewport()->rect().intersects(row)) return;
    static const QList<int> offsets{-tree.indentation() / 2, 9, 9, 9, 40};
    ClickAt(desktop->main,
            tree.viewport()->mapTo(&desktop->main, QPoint(row.left() + OneOf(offsets), row.center().y())));
  }

  // Else most events would meet windows that wait for an answer, or open menus.
  void ClickOk() {
    if (QWidget* popup = QApplication::activePopupWidget()) {
      popup->close();
      return;
    }
    if (desktop->auswahl.isVisible()) {
      ClickAt(desktop->auswahl,
              In<QPushButton>(desktop->auswahl, u"Button%1"_s.arg(1 + Below(2))).geometry().center());
      return;
    }
    for (QDialog* editor :
         std::initializer_list<QDialog*>{&desktop->editors.number, &desktop->editors.text}) {
      if (!editor->isVisible()) continue;
      ClickAt(*editor, In<QPushButton>(*editor, u"OKButton"_s).geometry().center());
      return;
    }
  }

  void RandomKey(QWidget& window) {
    static const QList<int> keys{
        Qt::Key_Tab,    Qt::Key_Backtab,   Qt::Key_Space,    Qt::Key_Return, Qt::Key_Escape,
        Qt::Key_Up,     Qt::Key_Down,      Qt::Key_Left,     Qt::Key_Right,  Qt::Key_Plus,
        Qt::Key_Minus,  Qt::Key_Home,      Qt::Key_End,      Qt::Key_PageUp, Qt::Key_PageDown,
        Qt::Key_0,      Qt::Key_7,         Qt::Key_Period,   Qt::Key_Comma,  Qt::Key_A,
        Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Asterisk, Qt::Key_F10,    Qt::Key_N};
    const int key = OneOf(keys);
    const Qt::KeyboardModifiers modifiers = Below(8) == 0 ? Qt::ControlModifier : Qt::NoModifier;
    const QString text = key < 0x100 && modifiers == Qt::NoModifier ? QString(QChar(key)) : QString();
    QWindow* target = window.windowHandle();
    qt_handleKeyEvent(target, QEvent::KeyPress, key, modifiers, text);
    if (StillOpen(target)) qt_handleKeyEvent(target, QEvent::KeyRelease, key, modifiers, text);
  }

  static bool StillOpen(QWindow* target) {
    return QGuiApplication::topLevelWindows().contains(target) && target->isVisible();
  }

  // A user's clicks are far enough apart not to be double clicks, mostly.
  int Now() { return now_ms_ += 200 + Below(400); }

  void RandomEvent() {
    const QList<QWidget*> open = OpenWindows();
    if (open.isEmpty()) return;
    QWidget& window = *OneOf(open);
    switch (Below(20)) {
      case 0:
        window.close();
        return;
      case 1:
        window.activateWindow();
        return;
      case 2:
        desktop->main.resize(300 + Below(700), 200 + Below(600));
        return;
      case 3:
        PressTransfer();
        return;
      case 4:
        ChangeLine();
        return;
      case 5:
      case 6:
        ClickTree();
        return;
      case 7:
        ClickOk();
        return;
      case 8:
        if (Below(4) == 0) TakeBackOrRepeat();
        return;
      default:
        if (Below(3) == 0) {
          RandomKey(window);
        } else {
          RandomMouse(window);
        }
    }
  }

  void PressTransfer() {
    static const QStringList buttons{u"CommandEmpfangen"_s, u"CommandSenden"_s, u"CommandVergleichen"_s,
                                     u"CommandStandard"_s};
    Main<QPushButton>(OneOf(buttons)).click();
  }

  void TakeBackOrRepeat() {
    if (!desktop->main.isEnabled() || QApplication::activeModalWidget() != nullptr) return;
    const QString item = Below(2) == 0 ? u"mnuWerkzeugeWiederholen"_s : u"mnuWerkzeugeRueckgaengig"_s;
    desktop->main.findChild<QAction*>(item)->trigger();
  }

  // The controller's plant type changes, or the cable is pulled or put back.
  void ChangeLine() {
    switch (Below(4)) {
      case 0:
        far->memory.SetWord(0x1E00, static_cast<quint16>(Below(4)));
        return;
      case 1:
        if (Below(4) == 0) line->Unplug();
        return;
      case 2:
        line->openable = Below(4) != 0;
        return;
      default:
        line->PlugIn();
        line->openable = true;
    }
  }

  // One event after the other, also inside the event loops of the handlers: the next one is due before this
  // one is delivered.
  void Step() {
    if (count_ >= kEvents && depth_ == 0) return;
    QTimer::singleShot(0, &timers_, [this] { Step(); });
    if (count_ >= kEvents) {
      EndNestedLoop();
      return;
    }
    ++count_;
    if (depth_ >= kDeepestNesting) return;
    deepest_ = std::max(deepest_, ++depth_);
    RandomEvent();
    --depth_;
    if (depth_ == 0) CheckIdle();
  }

  void EndNestedLoop() {
    if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
    if (desktop->auswahl.isVisible()) Click(desktop->auswahl, u"Button1"_s);
  }

  void CheckIdle() {
    ExpectReady();
    const Module1& module = desktop->module;
    const bool editing = desktop->editors.number.isVisible() || desktop->editors.text.isVisible();
    EXPECT_TRUE(module.TreeUpdating == kFalse || editing);
    EXPECT_FALSE(desktop->auswahl.isVisible());
    EXPECT_EQ(module.VersionIndex, desktop->module.VersionList.Position() + 1);
    CheckMarks();
    idleMarks_ = marks_;
    // Files that were read and did not come into the tree: the check of definitions, the report for a support
    // desk.
    files.reads.clear();
    boxes_seen_ += box.Take().size();
    if (HasFailure()) {
      std::cerr << "first wrong after event " << count_ << '\n';
      count_ = kEvents;
    }
  }

  void CheckMarks() {
    for (int slot = 0; slot < desktop->module.ParCount; ++slot)
      EXPECT_EQ(desktop->module.ParNode[slot] != kFalse, marks_.at(static_cast<std::size_t>(slot)))
          << "mark " << slot;
    for (int node = 1; node <= Tree().Count(); ++node)
      EXPECT_EQ(Tree().Checked(node), shown_.value(Tree().Key(node))) << Tree().Key(node).toStdString();
  }

  // Keeps marks and boxes as the rules have them, from nothing but what the user did and that the tables were
  // read or the tree was rebuilt.
  void WatchMarks() {
    marks_.fill(true);
    TakeMarksOver();
    const auto check = Tree().OnCheck;
    Tree().OnCheck = [this, check](int node) {
      check(node);
      const bool on = Tree().Checked(node);
      for (int other = 1; other <= Tree().Count(); ++other) {
        if (other != node && !IsBelow(other, node)) continue;
        shown_[Tree().Key(other)] = on;
        Mark(Tree().Key(other)) = on;
      }
      ++checks_;
    };
    const auto ok = desktop->editors.number.OnOk;
    desktop->editors.number.OnOk = [this, ok] {
      const NumberEdit content = desktop->editors.number.Content();
      ok();
      const double value = LeadingNumber(content.TextWert);
      if (LeadingNumber(content.TextVon) > value || LeadingNumber(content.TextBis) < value) return;
      const QString key = u"sK "_s + content.Nr;
      Mark(key) = true;
      shown_[key] = true;
      ++edits_;
    };
    QObject::connect(TreeWidget().model(), &QAbstractItemModel::modelReset, &timers_, [this] {
      // Reading the definitions checks everything.
      if (!files.reads.isEmpty()) marks_.fill(true);
      files.reads.clear();
      TakeMarksOver();
    });
  }

  // Steps in which the definitions were read exchange all marks, the others none.
  void WatchSteps() {
    idleMarks_ = marks_;
    const auto onStep = desktop->changes.OnStep;
    desktop->changes.OnStep = [this, onStep](ChangeStep step) {
      steps_.resize(position_++);
      steps_.push_back(step.otherSide ? std::optional(idleMarks_) : std::nullopt);
      onStep(std::move(step));
    };
    const auto exchange = [this](std::size_t step) {
      if (!steps_.at(step)) return;
      std::swap(marks_, *steps_.at(step));
      TakeMarksOver();
    };
    const auto after = [this](const QString& item, const std::function<void()>& action) {
      QObject::connect(desktop->main.findChild<QAction*>(item), &QAction::triggered, &timers_, action);
    };
    after(u"mnuWerkzeugeRueckgaengig"_s, [this, exchange] {
      exchange(--position_);
      ++undone_;
    });
    after(u"mnuWerkzeugeWiederholen"_s, [this, exchange] {
      exchange(position_++);
      ++repeated_;
    });
  }

  // A rebuilt tree shows the marks; a group's box that of its first parameter.
  void TakeMarksOver() {
    shown_.clear();
    for (int node = 1; node <= Tree().Count(); ++node) {
      const QString key = Tree().Key(node);
      shown_[key] = Mark(key.startsWith(u'K') ? Tree().Key(Tree().FirstChild(node)) : key);
    }
  }

  // A group's mark shares the slot of the parameter of its number.
  bool& Mark(const QString& key) { return marks_.at(key == u"R" ? 0 : key.section(u' ', 1).toUInt()); }

  bool IsBelow(int node, int ancestor) {
    const QString key = Tree().Key(ancestor);
    if (key == u"R") return true;
    return key.startsWith(u'K') && node >= Tree().FirstChild(ancestor) && node <= Tree().LastChild(ancestor);
  }

  using Marks = std::array<bool, 2001>;
  Marks marks_{};
  Marks idleMarks_{};                        // before the event that is being delivered
  std::vector<std::optional<Marks>> steps_;  // the marks on their other sides
  std::size_t position_ = 0;                 // behind the last step that was not taken back
  QMap<QString, bool> shown_;                // the boxes of the present tree by key
  std::mt19937 random_;
  int now_ms_ = 1000;
  int count_ = 0;
  int depth_ = 0;
  // What the run came to, to tell a thorough one from an idle one.
  int deepest_ = 0;
  int checks_ = 0;
  int edits_ = 0;
  int questions_ = 0;
  int undone_ = 0;
  int repeated_ = 0;
  std::size_t boxes_seen_ = 0;
  QObject timers_;
};

// A window that cannot be closed for now.
class KeptOpen final : public QObject {
 public:
  explicit KeptOpen(QWidget& window) : window_(window) { window.installEventFilter(this); }
  void Release() { window_.removeEventFilter(this); }

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() != QEvent::Close) return false;
    event->ignore();
    return true;
  }

 private:
  QWidget& window_;
};

TEST_P(RandomEvents, NeverBringTheProgramIntoAWrongState) {
  UseController(GetParam() % 2 == 0 ? u"AB1-123.4"_s : u"AB1-012.0"_s);
  Start();
  // The parameter list has random events of its own, with a model of its marks. Checking the definitions
  // reads their files, by which the model here tells that the table was read anew.
  for (const QString& name : {u"mnuWerkzeugeListe"_s, u"mnuWerkzeugeSuchen"_s, u"mnuWerkzeugePruefen"_s})
    Main<QAction>(name).setEnabled(false);
  desktop->main.OnOutside = {};
  AddFaults();
  WatchMarks();
  WatchSteps();
  KeptOpen keptOpen(desktop->main);
  dialogs.cancelsFurther = true;
  // A path typed at random would leave the program without definitions, and most of the run without work.
  desktop->options.OnApply = [this](OptionsContent content) {
    content.pathChanged = false;
    ApplyOptions(desktop->core, content);
    return true;
  };
  events.onePass = true;
  events.onWait = [this] { ++questions_; };
  Step();
  while (count_ < kEvents)
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  EndNestedLoop();

  CheckIdle();
  // Each kind of thing has happened, in nested event loops too.
  EXPECT_GE(deepest_, 2);
  EXPECT_GE(checks_, 50);
  EXPECT_GE(edits_, 5);
  EXPECT_GE(questions_, 5);
  EXPECT_GE(undone_, 5);
  EXPECT_GE(repeated_, 1);
  EXPECT_GE(line->openings, 1000);
  keptOpen.Release();
  EXPECT_TRUE(desktop->main.close());
  std::cout << "checks " << checks_ << ", edits " << edits_ << ", waits for answers " << questions_
            << ", undone " << undone_ << ", repeated " << repeated_ << ", boxes " << boxes_seen_
            << ", telegrams " << line->openings << ", deepest " << deepest_ << '\n';
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEvents, testing::Values(1U, 2U));

}  // namespace
}  // namespace kalivor::test
