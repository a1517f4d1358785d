// The menus of the main window.
#pragma once

#include <QHash>
#include <QMainWindow>
#include <functional>

#include "platform/qt/EventGuard.h"

namespace kalivor::ui {

/// What the menu items do, by their names. An item without an action is disabled. All of them run inside the
/// event guard and not while an operation is under way.
using MenuActions = QHash<QString, std::function<void()>>;

/// Builds the menu bar of `window`, hidden items included; their shortcuts do nothing. `actions` is read at
/// every use and must outlive the window.
void BuildMenus(QMainWindow& window, const MenuActions& actions, const platform::EventGuard& guard);

/// Enables the items that have an action by now, and disables the others.
void UpdateMenus(QMainWindow& window, const MenuActions& actions);

/// Enables an item to do something about `detail`, which its caption names: "&Rückgängig: Empfangen, 312
/// Werte". Without a detail it is disabled and has its own caption. An item that is hidden otherwise is shown
/// as long as it is offered.
void OfferItem(QMainWindow& window, const QString& name, const QString& detail);

}  // namespace kalivor::ui
