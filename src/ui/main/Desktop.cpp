#include "ui/main/Desktop.h"

#include "base/Paths.h"
#include "commands/StartUp.h"
#include "core/Busy.h"
#include "ui/about/frmAbout.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {

Desktop::Desktop(const World& theWorld, const RunSettings& run)
    : world(theWorld),
      guard([this](const std::function<void()>& handler) { RunHandler(world.box, handler); }),
      main(guard),
      editors(module),
      auswahl(module),
      achtung(module),
      timers(world.clock),
      host(module, world.line, timers),
      report(module, reportDialog, world.events, timers),
      controller(module, host, main, report),
      core{module, main, report, auswahl, editors, world.box, world.files, world.events, controller} {
  main.AddCompanion(editors.number, true);
  main.AddCompanion(editors.text, true);
  main.AddCompanion(reportDialog, false);
  main.AddCompanion(auswahl, false);
  main.AddCompanion(achtung, false);
  main.Connect(core);
  editors.Connect(core, guard);
  reportDialog.Connect(report, guard, world.printText);
  editors.SetOwner(main);
  auswahl.SetOwner(main);
  achtung.SetOwner(main);
  reportDialog.SetOwner(main);

  MenuActions actions;
  actions.HelpAbout = [this] { ShowAbout(); };
  main.SetMenuActions(actions);
  main.OnUnload = [this] { StoreSettings(); };
  LoadMain(run);
}

void Desktop::LoadMain(const RunSettings& run) {
  main.LoadPlace(world.settings, world.box);
  LoadSettings(module, world.settings, world.box, world.programFolder);
  stored_.Schnittstelle = module.Schnittstelle;
  stored_.Inipath = module.Inipath;
  stored_.Inifile = module.Inifile;
  run_ = run;
  // The form that reading the version table gives the folder.
  if (run_.iniPath) module.Inipath = *(run_.iniPath = WithSeparator(*run_.iniPath));
  if (run_.iniFile) module.Inifile = *run_.iniFile;
  if (run_.port) module.Schnittstelle = *run_.port;
  FromBusy(core);
}

void Desktop::Start() {
  StartUp(core);
}

void Desktop::Show() {
  main.show();
}

void Desktop::StoreSettings() {
  main.SavePlace(world.settings);
  // What the command line set for this run is not stored, unless the user has changed it since.
  const qint16 port = module.Schnittstelle;
  const QString path = module.Inipath;
  const QString file = module.Inifile;
  if (run_.port == port) module.Schnittstelle = stored_.Schnittstelle;
  if (run_.iniPath == path) module.Inipath = stored_.Inipath;
  if (run_.iniFile == file) module.Inifile = stored_.Inifile;
  SaveSettings(module, world.settings);
  module.Schnittstelle = port;
  module.Inipath = path;
  module.Inifile = file;
}

void Desktop::ShowAbout() {
  if (module.BusyDepth > 0) return;
  frmAbout about(&main, [this] { guard([this] { StartSysInfo(world.systemInformation, world.box); }); });
  about.exec();
}

}  // namespace kalivor::ui
