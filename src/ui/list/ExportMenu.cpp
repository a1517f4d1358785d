#include "ui/list/ExportMenu.h"

#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {

QMenu* NewExportMenu(QWidget* parent, const std::vector<ListExport>& exports,
                     const platform::EventGuard& guard, const std::function<void()>& copy,
                     const std::function<ListTable()>& table) {
  auto* menu = Named(new QMenu(parent), u"exportMenu"_s);
  menu->addAction(u"&Kopieren\tStrg+C"_s, parent, copy)->setObjectName(u"exportCopy"_s);
  if (!exports.empty()) menu->addSeparator();
  for (const ListExport& item : exports) {
    QAction* action = menu->addAction(item.caption);
    action->setObjectName(item.name);
    QObject::connect(action, &QAction::triggered, parent,
                     [guard, table, run = item.run] { guard([&] { run(table()); }); });
  }
  return menu;
}

}  // namespace kalivor::ui
