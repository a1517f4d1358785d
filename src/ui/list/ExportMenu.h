// The menu "Ausgeben" of the added tables.
#pragma once

#include <QMenu>
#include <functional>
#include <vector>

#include "core/ListTable.h"
#include "platform/qt/EventGuard.h"

namespace kalivor::ui {

/// A way in which a table leaves the program: an item of the menu.
struct ListExport {
  QString name;  ///< of the menu item
  QString caption;
  std::function<void(const ListTable& table)> run;
};

/// "Kopieren", which is `copy`, and the exports of what `table` returns then. `guard` runs the exports.
QMenu* NewExportMenu(QWidget* parent, const std::vector<ListExport>& exports,
                     const platform::EventGuard& guard, const std::function<void()>& copy,
                     const std::function<ListTable()>& table);

}  // namespace kalivor::ui
