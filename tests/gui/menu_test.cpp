// The menus: every item with its name, caption, shortcut and visibility, and what it runs.
#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

struct Item {
  QString menu, name, caption, shortcut;
  bool visible;
};

const QList<Item>& Items() {
  static const QList<Item> items{
      {u"mnuFile"_s, u"mnuFileNew"_s, u"&Neu"_s, u"Ctrl+N"_s, false},
      {u"mnuFile"_s, u"mnuFileOpen"_s, u"Ö&ffnen..."_s, u"Ctrl+O"_s, true},
      {u"mnuFile"_s, u"mnuFileClose"_s, u"S&chließen"_s, {}, true},
      {u"mnuFile"_s, u"mnuFileSave"_s, u"&Speichern"_s, u"Ctrl+S"_s, true},
      {u"mnuFile"_s, u"mnuFileSaveAs"_s, u"Speichern &unter..."_s, {}, true},
      {u"mnuFile"_s, u"mnuFileBar0"_s, u"-"_s, {}, true},
      {u"mnuFile"_s, u"mnuFilePrint"_s, u"Dru&cken..."_s, u"Ctrl+P"_s, true},
      {u"mnuFile"_s, u"mnuFileBar1"_s, u"-"_s, {}, false},
      {u"mnuFile"_s, u"mnuFileSend"_s, u"Sen&den..."_s, {}, false},
      {u"mnuFile"_s, u"mnuFileBar2"_s, u"-"_s, {}, true},
      {u"mnuFile"_s, u"mnuFileMRU_1"_s, u""_s, {}, false},
      {u"mnuFile"_s, u"mnuFileMRU_2"_s, u""_s, {}, false},
      {u"mnuFile"_s, u"mnuFileMRU_3"_s, u""_s, {}, false},
      {u"mnuFile"_s, u"mnuFileBar3"_s, u"-"_s, {}, false},
      {u"mnuFile"_s, u"mnuFileExit"_s, u"&Beenden"_s, {}, true},
      {u"mnuDaten"_s, u"mnuDatenEdit"_s, u"Parameter Editieren"_s, {}, true},
      {u"mnuOptioen"_s, u"mnuOptioenSchnittstelle"_s, u"&Schnittstelle"_s, {}, true},
      {u"mnuOptioen"_s, u"mnuOptioenRegler"_s, u"&Regler"_s, u"Ctrl+R"_s, true},
      {u"mnuOptioen"_s, u"mnuOptioenFiles"_s, u"&Dateien"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeListe"_s, u"&Parameterliste"_s, u"Ctrl+L"_s, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeSuchen"_s, u"&Suchen"_s, u"Ctrl+F"_s, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeBar0"_s, u"-"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeRueckgaengig"_s, u"&Rückgängig"_s, u"Ctrl+Z"_s, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeWiederholen"_s, u"&Wiederholen"_s, u"Ctrl+Y"_s, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeWiederherstellen"_s, u"Wieder&herstellen"_s, {}, false},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeBar1"_s, u"-"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugePruefen"_s, u"&Definitionen prüfen"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeBar2"_s, u"-"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeSicherSenden"_s, u"Sicher se&nden…"_s, u"Ctrl+Shift+S"_s, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeSicherEmpfangen"_s, u"Sicher &empfangen…"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeSicherungen"_s, u"S&icherungen…"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeUnterbrochen"_s, u"&Unterbrochene Sendung"_s, {}, false},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeBar3"_s, u"-"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeVerbindung"_s, u"&Verbindung…"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeTelegramme"_s, u"&Telegramme"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeDiagnose"_s, u"Diagnose&bericht…"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeBar4"_s, u"-"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeVerlauf"_s, u"Ver&lauf"_s, {}, true},
      {u"mnuWerkzeuge"_s, u"mnuWerkzeugeServiceprotokoll"_s, u"Servicepr&otokoll…"_s, {}, true},
      {u"mnuHelp"_s, u"mnuHelpContents"_s, u"&Inhalt"_s, {}, false},
      {u"mnuHelp"_s, u"mnuHelpSearchForHelpOn"_s, u"&Suchen in der Hilfe..."_s, {}, false},
      {u"mnuHelp"_s, u"mnuHelpBar0"_s, u"-"_s, {}, false},
      {u"mnuHelp"_s, u"mnuHelpAbout"_s, u"Inf&o "_s, {}, true},
  };
  return items;
}

class MenuTest : public GuiTest {
 protected:
  QAction& Action(const QString& name) {
    auto* action = desktop->main.findChild<QAction*>(name);
    if (action == nullptr) throw std::runtime_error("no action " + name.toStdString());
    return *action;
  }

  /// An action for every item that counts how often it ran.
  ui::MenuActions Counting() {
    ui::MenuActions actions;
    for (const Item& item : Items()) {
      if (item.caption.size() > 1 && item.name != u"mnuFileExit")
        actions[item.name] = [this, name = item.name] { runs.append(name); };
    }
    return actions;
  }

  void Press(Qt::Key key) {
    desktop->main.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&desktop->main));
    QTest::keyClick(desktop->main.windowHandle(), key, Qt::ControlModifier);
  }

  QStringList runs;
};

TEST_F(MenuTest, TheMenusStandInTheirOrder) {
  Start();
  QStringList names, captions;
  QList<bool> visible;
  for (QAction* action : desktop->main.menuBar()->actions()) {
    names.append(action->menu()->objectName());
    captions.append(action->text());
    visible.append(action->isVisible());
  }
  EXPECT_EQ(names.join(u' '), u"mnuFile mnuDaten mnuOptioen mnuWerkzeuge mnuHelp"_s);
  EXPECT_EQ(captions.join(u' '), u"&Datei &Daten &Optionen &Werkzeuge &?"_s);
  EXPECT_EQ(visible, (QList<bool>{true, false, true, true, true}));
}

TEST_F(MenuTest, TheItemsStandInTheirOrder) {
  Start();
  QStringList expected, found;
  for (const Item& item : Items())
    expected.append(item.menu + u'/' + item.name);
  for (QAction* top : desktop->main.menuBar()->actions()) {
    for (QAction* action : top->menu()->actions())
      found.append(top->menu()->objectName() + u'/' + action->objectName());
  }
  EXPECT_EQ(found.join(u'\n'), expected.join(u'\n'));
}

TEST_F(MenuTest, EveryItemHasItsCaptionShortcutAndVisibility) {
  Start();
  for (const Item& item : Items()) {
    const QAction& action = Action(item.name);
    const std::string name = item.name.toStdString();
    EXPECT_EQ(action.isSeparator(), item.caption == u"-") << name;
    if (!action.isSeparator()) {
      EXPECT_EQ(action.text(), item.caption) << name;
    }
    EXPECT_EQ(action.shortcut().toString(QKeySequence::PortableText), item.shortcut) << name;
    // Items inside a hidden menu are visible themselves, as seen by their property.
    EXPECT_EQ(action.property("visible").toBool(), item.visible) << name;
  }
}

TEST_F(MenuTest, OpenSaveAndPrintHaveAPicture) {
  Start();
  const QStringList items{u"mnuFileOpen"_s, u"mnuFileSave"_s, u"mnuFilePrint"_s};
  for (qsizetype i = 0; i < items.size(); ++i) {
    const QIcon icon = Action(items[i]).icon();
    EXPECT_EQ(icon.cacheKey(), desktop->main.imlToolbarIcons.at(static_cast<std::size_t>(i)).cacheKey());
    EXPECT_EQ(icon.availableSizes().size(), 3) << items[i].toStdString();
    EXPECT_FALSE(icon.pixmap(16).isNull()) << items[i].toStdString();
  }
  EXPECT_NE(Action(items[0]).icon().cacheKey(), Action(items[1]).icon().cacheKey());
}

TEST_F(MenuTest, OnlyWhatHasNoWorkIsDisabled) {
  Start();
  for (const Item& item : Items()) {
    if (item.caption == u"-") continue;
    // A hidden item counts as disabled, whatever its action.
    const bool works = item.visible && item.name != u"mnuFilePrint" &&
                       item.name != u"mnuWerkzeugeRueckgaengig" && item.name != u"mnuWerkzeugeWiederholen";
    EXPECT_EQ(Action(item.name).isEnabled(), works) << item.name.toStdString();
  }
}

TEST_F(MenuTest, EveryItemRunsItsAction) {
  Start();
  desktop->main.SetMenuActions(Counting());
  QStringList expected;
  for (const Item& item : Items()) {
    if (item.caption.size() < 2 || item.name == u"mnuFileExit") continue;
    // The toolkit calls hidden items disabled whatever they can do.
    EXPECT_EQ(Action(item.name).isEnabled(), item.visible) << item.name.toStdString();
    Action(item.name).trigger();
    expected.append(item.name);
  }
  EXPECT_EQ(runs.join(u' '), expected.join(u' '));
}

TEST_F(MenuTest, ShortcutsRunTheirItems) {
  Start();
  desktop->main.SetMenuActions(Counting());
  for (const Qt::Key key :
       {Qt::Key_O, Qt::Key_S, Qt::Key_P, Qt::Key_R, Qt::Key_L, Qt::Key_F, Qt::Key_Z, Qt::Key_Y})
    Press(key);
  EXPECT_EQ(runs.join(u' '),
            u"mnuFileOpen mnuFileSave mnuFilePrint mnuOptioenRegler mnuWerkzeugeListe mnuWerkzeugeSuchen "
            "mnuWerkzeugeRueckgaengig mnuWerkzeugeWiederholen"_s);
  runs.clear();
  QTest::keyClick(desktop->main.windowHandle(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(runs, QStringList{u"mnuWerkzeugeSicherSenden"_s});
}

TEST_F(MenuTest, TheShortcutOfAHiddenItemDoesNothing) {
  Start();
  desktop->main.SetMenuActions(Counting());
  Press(Qt::Key_N);
  EXPECT_EQ(runs, QStringList());
}

TEST_F(MenuTest, ShortcutsDoNothingWhileBusy) {
  Start();
  desktop->main.SetMenuActions(Counting());
  desktop->main.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&desktop->main));
  const BusyGuard busy(desktop->core);
  QTest::keyClick(desktop->main.windowHandle(), Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(runs, QStringList());
}

TEST_F(MenuTest, AnErrorOfAnItemIsShownAndTheProgramGoesOn) {
  Start();
  ui::MenuActions actions;
  actions[u"mnuDatenEdit"_s] = [] { throw RuntimeError(RuntimeError::Kind::MissingObject); };
  desktop->main.SetMenuActions(actions);
  Action(u"mnuDatenEdit"_s).trigger();
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, RuntimeError(RuntimeError::Kind::MissingObject).Description());
  EXPECT_EQ(boxes[0].title, u"KALIVOR"_s);
  ExpectReady();
}

TEST_F(MenuTest, ExitClosesTheWindow) {
  Start();
  Action(u"mnuFileExit"_s).trigger();
  EXPECT_FALSE(desktop->main.isVisible());
  EXPECT_TRUE(settings.values.contains(u"Adresse"_s));
}

}  // namespace
}  // namespace kalivor::test
