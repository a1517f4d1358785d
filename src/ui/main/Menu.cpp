#include "ui/main/Menu.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <vector>

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

using Action = std::function<void()> MenuActions::*;

struct Item {
  QStringView name;
  QStringView caption;  // "-" is a separator
  Action action = nullptr;
  bool visible = true;
  Qt::Key controlKey = Qt::Key_unknown;  // the key that works together with Ctrl
};

struct TopMenu {
  QStringView name;
  QStringView caption;
  bool visible;
  std::vector<Item> items;
};

// kept: the items that are never visible; what calls them by name still finds them.
const std::vector<TopMenu>& Menus() {
  static const std::vector<TopMenu> menus = {
      {u"mnuFile",
       u"&Datei",
       true,
       {{u"mnuFileNew", u"&Neu", &MenuActions::FileNew, false, Qt::Key_N},
        {u"mnuFileOpen", u"Ö&ffnen...", &MenuActions::FileOpen, true, Qt::Key_O},
        {u"mnuFileClose", u"S&chließen", &MenuActions::FileClose},
        {u"mnuFileSave", u"&Speichern", &MenuActions::FileSave, true, Qt::Key_S},
        {u"mnuFileSaveAs", u"Speichern &unter...", &MenuActions::FileSaveAs},
        {u"mnuFileBar0", u"-"},
        {u"mnuFilePrint", u"Dru&cken...", &MenuActions::FilePrint, true, Qt::Key_P},
        {u"mnuFileBar1", u"-", nullptr, false},
        {u"mnuFileSend", u"Sen&den...", &MenuActions::FileSend, false},
        {u"mnuFileBar2", u"-"},
        {u"mnuFileMRU_1", u"", nullptr, false},
        {u"mnuFileMRU_2", u"", nullptr, false},
        {u"mnuFileMRU_3", u"", nullptr, false},
        {u"mnuFileBar3", u"-", nullptr, false},
        {u"mnuFileExit", u"&Beenden", &MenuActions::FileExit}}},
      {u"mnuDaten", u"&Daten", false, {{u"mnuDatenEdit", u"Parameter Editieren", &MenuActions::DatenEdit}}},
      {u"mnuOptioen",
       u"&Optionen",
       true,
       {{u"mnuOptioenSchnittstelle", u"&Schnittstelle", &MenuActions::OptioenSchnittstelle},
        {u"mnuOptioenRegler", u"&Regler", &MenuActions::OptioenRegler, true, Qt::Key_R},
        {u"mnuOptioenFiles", u"&Dateien", &MenuActions::OptioenFiles}}},
      {u"mnuHelp",
       u"&?",
       true,
       {{u"mnuHelpContents", u"&Inhalt", &MenuActions::HelpContents, false},
        {u"mnuHelpSearchForHelpOn", u"&Suchen in der Hilfe...", &MenuActions::HelpSearchForHelpOn, false},
        {u"mnuHelpBar0", u"-", nullptr, false},
        {u"mnuHelpAbout", u"Inf&o ", &MenuActions::HelpAbout}}},
  };
  return menus;
}

QAction* NewAction(QMenu& menu, const Item& item) {
  QAction* action = item.caption == u"-" ? menu.addSeparator() : menu.addAction(item.caption.toString());
  action->setObjectName(item.name.toString());
  action->setVisible(item.visible);
  // The toolkit would move "Beenden" and "Info" elsewhere on some systems.
  action->setMenuRole(QAction::NoRole);
  if (item.controlKey != Qt::Key_unknown) action->setShortcut(QKeySequence(Qt::CTRL | item.controlKey));
  return action;
}

}  // namespace

void BuildMenus(QMainWindow& window, const MenuActions& actions, const platform::EventGuard& guard) {
  for (const TopMenu& top : Menus()) {
    QMenu* menu = window.menuBar()->addMenu(top.caption.toString());
    menu->setObjectName(top.name.toString());
    menu->menuAction()->setVisible(top.visible);
    for (const Item& item : top.items) {
      QAction* action = NewAction(*menu, item);
      if (item.action == nullptr) continue;
      QObject::connect(action, &QAction::triggered, &window, [&actions, guard, which = item.action] {
        if (actions.*which) guard(actions.*which);
      });
    }
  }
  UpdateMenus(window, actions);
}

void UpdateMenus(QMainWindow& window, const MenuActions& actions) {
  for (const TopMenu& top : Menus()) {
    for (const Item& item : top.items) {
      if (item.caption == u"-") continue;
      const bool works = item.action != nullptr && actions.*item.action;
      window.findChild<QAction*>(item.name.toString())->setEnabled(works);
    }
  }
}

}  // namespace kalivor::ui
