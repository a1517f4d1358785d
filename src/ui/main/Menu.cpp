#include "ui/main/Menu.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <vector>

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

struct Item {
  QStringView name;
  QStringView caption;  // "-" is a separator
  bool visible = true;
  Qt::Key controlKey = Qt::Key_unknown;  // the key that works together with Ctrl
  bool shift = false;                    // and with Shift
};

struct TopMenu {
  QStringView name;
  QStringView caption;
  bool visible;
  std::vector<Item> items;
};

// kept: the items of "Datei", "Daten" and "?" that are never visible; what calls them by name still finds
// them.
const std::vector<TopMenu>& Menus() {
  static const std::vector<TopMenu> menus = {
      {u"mnuFile",
       u"&Datei",
       true,
       {{u"mnuFileNew", u"&Neu", false, Qt::Key_N},
        {u"mnuFileOpen", u"Ö&ffnen...", true, Qt::Key_O},
        {u"mnuFileClose", u"S&chließen"},
        {u"mnuFileSave", u"&Speichern", true, Qt::Key_S},
        {u"mnuFileSaveAs", u"Speichern &unter..."},
        {u"mnuFileBar0", u"-"},
        {u"mnuFilePrint", u"Dru&cken...", true, Qt::Key_P},
        {u"mnuFileBar1", u"-", false},
        {u"mnuFileSend", u"Sen&den...", false},
        {u"mnuFileBar2", u"-"},
        {u"mnuFileMRU_1", u"", false},
        {u"mnuFileMRU_2", u"", false},
        {u"mnuFileMRU_3", u"", false},
        {u"mnuFileBar3", u"-", false},
        {u"mnuFileExit", u"&Beenden"}}},
      {u"mnuDaten", u"&Daten", false, {{u"mnuDatenEdit", u"Parameter Editieren"}}},
      {u"mnuOptioen",
       u"&Optionen",
       true,
       {{u"mnuOptioenSchnittstelle", u"&Schnittstelle"},
        {u"mnuOptioenRegler", u"&Regler", true, Qt::Key_R},
        {u"mnuOptioenFiles", u"&Dateien"}}},
      {u"mnuWerkzeuge",
       u"&Werkzeuge",
       true,
       {{u"mnuWerkzeugeListe", u"&Parameterliste", true, Qt::Key_L},
        {u"mnuWerkzeugeSuchen", u"&Suchen", true, Qt::Key_F},
        {u"mnuWerkzeugeBar0", u"-"},
        {u"mnuWerkzeugeRueckgaengig", u"&Rückgängig", true, Qt::Key_Z},
        {u"mnuWerkzeugeWiederholen", u"&Wiederholen", true, Qt::Key_Y},
        {u"mnuWerkzeugeWiederherstellen", u"Wieder&herstellen", false},
        {u"mnuWerkzeugeBar1", u"-"},
        {u"mnuWerkzeugePruefen", u"&Definitionen prüfen"},
        {u"mnuWerkzeugeBar2", u"-"},
        {u"mnuWerkzeugeSicherSenden", u"Sicher se&nden…", true, Qt::Key_S, true},
        {u"mnuWerkzeugeSicherEmpfangen", u"Sicher &empfangen…"},
        {u"mnuWerkzeugeSicherungen", u"S&icherungen…"},
        {u"mnuWerkzeugeUnterbrochen", u"&Unterbrochene Sendung", false},
        {u"mnuWerkzeugeBar3", u"-"},
        {u"mnuWerkzeugeVerbindung", u"&Verbindung…"},
        {u"mnuWerkzeugeTelegramme", u"&Telegramme"},
        {u"mnuWerkzeugeDiagnose", u"Diagnose&bericht…"},
        {u"mnuWerkzeugeBar4", u"-"},
        {u"mnuWerkzeugeVerlauf", u"Ver&lauf"},
        {u"mnuWerkzeugeServiceprotokoll", u"Servicepr&otokoll…"}}},
      {u"mnuHelp",
       u"&?",
       true,
       {{u"mnuHelpContents", u"&Inhalt", false},
        {u"mnuHelpSearchForHelpOn", u"&Suchen in der Hilfe...", false},
        {u"mnuHelpBar0", u"-", false},
        {u"mnuHelpAbout", u"Inf&o "}}},
  };
  return menus;
}

const Item* ItemNamed(const QString& name) {
  for (const TopMenu& top : Menus()) {
    for (const Item& item : top.items) {
      if (item.name == name) return &item;
    }
  }
  return nullptr;
}

// As a caption shows it: "&" would be a mnemonic, a TAB a shortcut, and a long name as wide as the screen.
QString InCaption(const QString& detail) {
  constexpr int kLongest = 60;
  QString text = detail.simplified();
  if (text.size() > kLongest) text = text.left(kLongest - 1) + u'…';
  return text.replace(u'&', u"&&"_s);
}

QAction* NewAction(QMenu& menu, const Item& item) {
  QAction* action = item.caption == u"-" ? menu.addSeparator() : menu.addAction(item.caption.toString());
  action->setObjectName(item.name.toString());
  action->setVisible(item.visible);
  // The toolkit would move "Beenden" and "Info" elsewhere on some systems.
  action->setMenuRole(QAction::NoRole);
  if (item.controlKey != Qt::Key_unknown)
    action->setShortcut(item.shift ? Qt::CTRL | Qt::SHIFT | item.controlKey : Qt::CTRL | item.controlKey);
  return action;
}

}  // namespace

void BuildMenus(QMainWindow& window, const MenuActions& actions, const platform::EventGuard& guard) {
  for (const TopMenu& top : Menus()) {
    QMenu* menu = window.menuBar()->addMenu(top.caption.toString());
    menu->setObjectName(top.name.toString());
    menu->menuAction()->setVisible(top.visible);
    for (const Item& item : top.items) {
      const auto run = [&actions, guard, name = item.name.toString()] {
        if (const auto action = actions.value(name)) guard(action);
      };
      QObject::connect(NewAction(*menu, item), &QAction::triggered, &window, run);
    }
  }
  UpdateMenus(window, actions);
}

void UpdateMenus(QMainWindow& window, const MenuActions& actions) {
  for (const TopMenu& top : Menus()) {
    for (const Item& item : top.items) {
      if (item.caption == u"-") continue;
      const QString name = item.name.toString();
      window.findChild<QAction*>(name)->setEnabled(static_cast<bool>(actions.value(name)));
    }
  }
}

void OfferItem(QMainWindow& window, const QString& name, const QString& detail) {
  const Item* item = ItemNamed(name);
  auto* action = window.findChild<QAction*>(name);
  const bool offered = !detail.isEmpty();
  action->setText(item->caption.toString() + (offered ? u": "_s + InCaption(detail) : QString()));
  action->setEnabled(offered);
  action->setVisible(item->visible || offered);
}

}  // namespace kalivor::ui
