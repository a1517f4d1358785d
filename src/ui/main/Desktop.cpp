#include "ui/main/Desktop.h"

#include "base/Paths.h"
#include "commands/ExportCommands.h"
#include "commands/MenuCommands.h"
#include "commands/StartUp.h"
#include "core/Busy.h"
#include "core/DefinitionFiles.h"
#include "ui/about/frmAbout.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

const QString kRestoreItem = u"mnuWerkzeugeWiederherstellen"_s;

}  // namespace

Desktop::Desktop(const World& theWorld, const RunSettings& run)
    : world(theWorld),
      guard([this](const std::function<void()>& handler) { Run(handler); }),
      main(module, guard),
      editors(module),
      auswahl(module),
      achtung(module),
      timers(world.clock),
      report(module, reportDialog, world.events, timers),
      wiring(module, timers, world.line,
             {main, report, auswahl, editors, world.box, world.files, world.events}),
      files{core, world.dialogs, [this](const QString& path) { main.ShowFile(path); }} {
  Add(editors.number, true);
  Add(editors.text, true);
  Add(options, true);
  Add(reportDialog, false);
  Add(auswahl, false);
  Add(achtung, false);
  main.Connect(core);
  editors.Connect(core, guard);
  reportDialog.Connect(report, guard, world.printText);
  ConnectOptions();
  main.SetMenuActions(Actions());
  main.OnOutside = [this] { ShowList(&ParameterListWindow::OpenOutside); };
  main.OnUnload = [this] {
    EndRecovery();
    StoreSettings();
  };
  rest_.setSingleShot(true);
  rest_.setInterval(world.recovery.rest);
  QObject::connect(&rest_, &QTimer::timeout, &main, [this] { KeepUnsaved(); });
  LoadMain(run);
}

void Desktop::Add(Form& form, bool disabledWhileBusy) {
  form.SetOwner(main);
  main.AddCompanion(form, disabledWhileBusy);
}

MenuActions Desktop::Actions() {
  return {
      {u"mnuFileNew"_s, [this] { mnuFileNew_Click(world.box); }},
      {u"mnuFileOpen"_s, [this] { mnuFileOpen_Click(files); }},
      {u"mnuFileClose"_s, [this] { mnuFileClose_Click(files); }},
      {u"mnuFileSave"_s, [this] { mnuFileSave_Click(files); }},
      {u"mnuFileSaveAs"_s, [this] { mnuFileSaveAs_Click(files); }},
      {u"mnuFilePrint"_s, world.print},
      {u"mnuFileSend"_s, [this] { mnuFileSend_Click(world.box); }},
      {u"mnuFileExit"_s, [this] { main.close(); }},
      {u"mnuDatenEdit"_s, mnuDatenEdit_Click},
      {u"mnuOptioenSchnittstelle"_s, [this] { ShowOptions(0); }},
      {u"mnuOptioenRegler"_s, [this] { ShowOptions(1); }},
      {u"mnuOptioenFiles"_s, [this] { ShowOptions(2); }},
      {u"mnuWerkzeugeListe"_s, [this] { ShowList(&ParameterListWindow::Open); }},
      {u"mnuWerkzeugeSuchen"_s, [this] { ShowList(&ParameterListWindow::OpenSearch); }},
      {u"mnuWerkzeugeRueckgaengig"_s, [this] { TakeBack(&UndoStack::Undo); }},
      {u"mnuWerkzeugeWiederholen"_s, [this] { TakeBack(&UndoStack::Redo); }},
      {u"mnuWerkzeugePruefen"_s, [this] { ShowFindings(); }},
      {kRestoreItem, [this] { Restore(); }},
      {u"mnuHelpContents"_s, [this] { mnuHelpContents_Click(world.box, world.help); }},
      {u"mnuHelpSearchForHelpOn"_s, [this] { mnuHelpSearchForHelpOn_Click(world.box, world.help); }},
      {u"mnuHelpAbout"_s, [this] { ShowAbout(); }},
  };
}

void Desktop::ConnectOptions() {
  options.OnApply = [this](const OptionsContent& content) {
    return Run([&] { ApplyOptions(core, content); });
  };
  options.OnBrowse = [this] {
    return world.dialogs.OpenFile(u"Parameterfile"_s, module.Inipath, u"Alle Dateien (*.*)|*.*"_s);
  };
  options.DeviceOfPort = world.deviceOfPort;
}

void Desktop::ShowOptions(int page) {
  if (module.BusyDepth == 0) options.Open(OptionsOf(module), page);
}

void Desktop::ShowFindings() {
  if (module.BusyDepth > 0) return;
  if (!findings) {
    const FindingsWindow::Check check{
        [this] { return VersionTablePath(module); },
        [this] { return CheckDefinitions(world.files, module.Inipath, module.Inifile); }};
    findings = std::make_unique<FindingsWindow>(check, guard, world.settings);
    Add(*findings, true);
  }
  findings->CheckAndShow();
}

void Desktop::ShowList(void (ParameterListWindow::*open)()) {
  if (module.BusyDepth > 0) return;
  if (!list) MakeList();
  (*list.*open)();
}

void Desktop::MakeList() {
  progress = std::make_unique<ProgressDialog>(module);
  list = std::make_unique<ParameterListWindow>(ListWorld{core, world.dialogs, *progress, selections, guard,
                                                         [this](int index) { return changes.Changed(index); },
                                                         Exports()});
  list->Load(world.settings);
  progress->SetOwner(*list);
  main.AddCompanion(*list, true);
  main.AddCompanion(*progress, false);
  // Their keys work there as well.
  for (const QString& item : {u"mnuWerkzeugeListe"_s, u"mnuWerkzeugeSuchen"_s, u"mnuWerkzeugeRueckgaengig"_s,
                              u"mnuWerkzeugeWiederholen"_s})
    list->addAction(main.findChild<QAction*>(item));
}

std::vector<ListExport> Desktop::Exports() {
  const auto toFile = [this](ExportKind kind) {
    return [this, kind](const ListTable& table) {
      ExportTable({world.files, world.box, world.dialogs, world.tablePdf}, table, kind);
    };
  };
  std::vector<ListExport> exports{{u"exportCsv"_s, u"&CSV…"_s, toFile(ExportKind::Csv)},
                                  {u"exportHtml"_s, u"&HTML…"_s, toFile(ExportKind::Html)}};
  if (world.tablePdf) exports.push_back({u"exportPdf"_s, u"&PDF…"_s, toFile(ExportKind::Pdf)});
  if (world.printTable) exports.push_back({u"exportPrint"_s, u"&Drucken…"_s, world.printTable});
  return exports;
}

// What is being typed in the list would be stored behind the step.
void Desktop::TakeBack(void (UndoStack::*step)()) {
  if (list) list->CloseEditor();
  (undo.*step)();
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

// The table as it is by then is where undo ends.
void Desktop::Start() {
  Run([this] { StartUp(core); });
  Tell(recovery.Load());
  OfferRecovery();
}

bool Desktop::Run(const std::function<void()>& handler) {
  changes.Begin();
  const bool done = RunHandler(world.box, handler);
  RunHandler(world.box, [this] { changes.End(); });
  if (!changes.Open()) Settled();
  return done;
}

void Desktop::Settled() {
  if (std::exchange(settled_, changes.Revision()) != changes.Revision()) {
    OfferItem(main, u"mnuWerkzeugeRueckgaengig"_s, undo.UndoName());
    OfferItem(main, u"mnuWerkzeugeWiederholen"_s, undo.RedoName());
    main.ShowOutside(changes.Outside());
    if (recovery.Works()) rest_.start();
  }
  if (list) list->Update();
}

void Desktop::StoreSettings() {
  main.SavePlace(world.settings);
  if (list) list->Store(world.settings);
  // What the command line set for this run is not stored, unless the user has changed it since.
  SaveSettings(SettingsToStore(module, begun_, stored_), world.settings);
  Tell(world.settings.Flush());
}

void Desktop::Tell(const QString& failure) {
  // Nobody answers a box any more when the session ends.
  if (!failure.isEmpty() && !main.EndsSession()) world.box.Show(failure);
}

KeptTable Desktop::Kept() const {
  return KeptTableOf(
      module, [this](int index) { return changes.Unsaved(index); }, world.recovery.now());
}

void Desktop::KeepUnsaved() {
  if (module.BusyDepth > 0) {
    rest_.start();
    return;
  }
  guard([this] { Tell(recovery.Keep(Kept())); });
}

void Desktop::EndRecovery() {
  if (!recovery.Works()) return;
  const KeptTable kept = Kept();
  // What has rested is kept already, with its time.
  if (rest_.isActive() || kept.UnsavedCount() == 0) Tell(recovery.Keep(kept, true));
  rest_.stop();
}

void Desktop::OfferRecovery() {
  const std::optional<KeptTable>& offered = recovery.Offered();
  OfferItem(main, kRestoreItem, offered ? RecoveryText(*offered, world.recovery.now()) : QString());
}

void Desktop::Restore() {
  if (module.BusyDepth > 0 || !recovery.Offered()) return;
  if (!RestoreTable(files, *recovery.Offered(), [this](int index) { changes.TakeAsSaved(index); })) return;
  recovery.ForgetOffered();
  OfferRecovery();
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

std::unique_ptr<Desktop> Launch(frmSplash& splash, const World& world, const RunSettings& run,
                                const std::function<void(Desktop&)>& loaded) {
  splash.ShowNow();
  auto desktop = std::make_unique<Desktop>(world, run);
  if (loaded) loaded(*desktop);
  desktop->Start();
  desktop->main.show();
  splash.close();
  return desktop;
}

}  // namespace kalivor::ui
