#include "ui/main/Desktop.h"

#include "base/Paths.h"
#include "commands/MenuCommands.h"
#include "commands/StartUp.h"
#include "core/Busy.h"
#include "ui/about/frmAbout.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {

Desktop::Desktop(const World& theWorld, const RunSettings& run)
    : world(theWorld),
      guard([this](const std::function<void()>& handler) { RunHandler(world.box, handler); }),
      main(module, guard),
      editors(module),
      auswahl(module),
      achtung(module),
      timers(world.clock),
      report(module, reportDialog, world.events, timers),
      wiring(module, timers, world.line,
             {main, report, auswahl, editors, world.box, world.files, world.events}),
      files{core, world.dialogs, [this](const QString& path) { main.ShowFile(path); }} {
  main.AddCompanion(editors.number, true);
  main.AddCompanion(editors.text, true);
  main.AddCompanion(options, true);
  main.AddCompanion(reportDialog, false);
  main.AddCompanion(auswahl, false);
  main.AddCompanion(achtung, false);
  main.Connect(core);
  editors.Connect(core, guard);
  reportDialog.Connect(report, guard, world.printText);
  editors.SetOwner(main);
  options.SetOwner(main);
  auswahl.SetOwner(main);
  achtung.SetOwner(main);
  reportDialog.SetOwner(main);

  ConnectOptions();
  main.SetMenuActions(Actions());
  main.OnUnload = [this] { StoreSettings(); };
  LoadMain(run);
}

MenuActions Desktop::Actions() {
  MenuActions actions;
  actions.FileNew = [this] { mnuFileNew_Click(world.box); };
  actions.FileOpen = [this] { mnuFileOpen_Click(files); };
  actions.FileClose = [this] { mnuFileClose_Click(files); };
  actions.FileSave = [this] { mnuFileSave_Click(files); };
  actions.FileSaveAs = [this] { mnuFileSaveAs_Click(files); };
  actions.FilePrint = world.print;
  actions.FileSend = [this] { mnuFileSend_Click(world.box); };
  actions.FileExit = [this] { main.close(); };
  actions.DatenEdit = mnuDatenEdit_Click;
  actions.OptioenSchnittstelle = [this] { ShowOptions(0); };
  actions.OptioenRegler = [this] { ShowOptions(1); };
  actions.OptioenFiles = [this] { ShowOptions(2); };
  actions.HelpContents = [this] { mnuHelpContents_Click(world.box, world.help); };
  actions.HelpSearchForHelpOn = [this] { mnuHelpSearchForHelpOn_Click(world.box, world.help); };
  actions.HelpAbout = [this] { ShowAbout(); };
  return actions;
}

void Desktop::ConnectOptions() {
  options.OnApply = [this](const OptionsContent& content) {
    return RunHandler(world.box, [&] { ApplyOptions(core, content); });
  };
  options.OnBrowse = [this] {
    return world.dialogs.OpenFile(u"Parameterfile"_s, module.Inipath, u"Alle Dateien (*.*)|*.*"_s);
  };
  options.DeviceOfPort = world.deviceOfPort;
}

void Desktop::ShowOptions(int page) {
  if (module.BusyDepth == 0) options.Open(OptionsOf(module), page);
}

void Desktop::OpenFile(const QString& path) {
  guard([&] { OpenValueFile(files, path); });
}

void Desktop::LoadMain(const RunSettings& run) {
  main.LoadPlace(world.settings, world.box);
  LoadSettings(module, world.settings, world.box, world.programFolder);
  stored_ = static_cast<const Settings&>(module);
  TakeRunSettings(module, run);
  // The form that reading the version table gives the folder.
  if (run.iniPath) module.Inipath = WithSeparator(*run.iniPath);
  begun_ = static_cast<const Settings&>(module);
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
  SaveSettings(SettingsToStore(module, begun_, stored_), world.settings);
  const QString error = world.settings.Flush();
  // Nobody answers a box any more when the session ends.
  if (!error.isEmpty() && !main.EndsSession()) world.box.Show(error);
}

void Desktop::ShowAbout() {
  if (module.BusyDepth > 0) return;
  auto* about =
      new frmAbout(&main, [this] { guard([this] { StartSysInfo(world.systemInformation, world.box); }); });
  about->setAttribute(Qt::WA_DeleteOnClose);
  // Modal, but without an event loop of its own: the menu item has done its work when the box is there.
  about->setModal(true);
  about->show();
}

}  // namespace kalivor::ui
