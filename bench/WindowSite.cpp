#include "WindowSite.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace kalivor::bench {

WindowSite::WindowSite(int parameters, const QString& historyFile) {
  files.files = {{kVersionTable, VersionTable(false)}, {kDefinitions, DefinitionFile(parameters)}};
  RunSettings run;
  run.iniPath = u"bench"_s;
  desktop = std::make_unique<ui::Desktop>(
      ui::World{
          settings, box,   files, line, clock, events, u"bench"_s, {}, [](const QString&) {}, dialogs, help,
          ports,    [] {}, {},    {},   {},    {},     {},         {}, {historyFile, {}, {}}},
      run);
  desktop->Start();
  desktop->main.show();
  QApplication::processEvents();
}

void WindowSite::Repaint() {
  QApplication::processEvents();
  desktop->main.repaint();
}

}  // namespace kalivor::bench
