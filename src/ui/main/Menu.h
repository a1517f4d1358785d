// The menus of the main window.
#pragma once

#include <QMainWindow>
#include <functional>

#include "platform/qt/EventGuard.h"

namespace kalivor::ui {

/// What the menu items do. An item without an action is disabled. All of them run inside the event guard and
/// not while an operation is under way.
struct MenuActions {
  std::function<void()> FileNew;
  std::function<void()> FileOpen;
  std::function<void()> FileClose;
  std::function<void()> FileSave;
  std::function<void()> FileSaveAs;
  std::function<void()> FilePrint;
  std::function<void()> FileSend;
  std::function<void()> FileExit;
  std::function<void()> DatenEdit;
  std::function<void()> OptioenSchnittstelle;
  std::function<void()> OptioenRegler;
  std::function<void()> OptioenFiles;
  std::function<void()> HelpContents;
  std::function<void()> HelpSearchForHelpOn;
  std::function<void()> HelpAbout;
};

/// Builds the menu bar of `window`, hidden items included; their shortcuts do nothing. `actions` is read at
/// every use and must outlive the window.
void BuildMenus(QMainWindow& window, const MenuActions& actions, const platform::EventGuard& guard);

/// Enables the items that have an action by now, and disables the others.
void UpdateMenus(QMainWindow& window, const MenuActions& actions);

}  // namespace kalivor::ui
